#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::results {

// The rows of a rules editor (font or link rules of the presets window): the rules being edited,
// which reach the preset file when the presets window writes the preset.
class RuleRows {
public:
    void startup() { m_items.clear(); }
    // Shows the selected preset's rules.
    void loadPresetData(const QVariantList& rules) { m_items = rules; }
    const QVariantList& items() const { return m_items; }
    // The note "no rules" and its plus button show exactly when there is no rule.
    bool emptyTableNoteVisible() const { return m_items.isEmpty(); }
    // Removes the rule of that row; nothing outside the rows.
    void minusBtn(qsizetype row)
    {
        if (row >= 0 && row < m_items.size())
            m_items.removeAt(row);
    }

protected:
    void appendRule(const QString& attribute, const QString& attributeKey, const QString& condition);
    // The rule of a row (empty outside the rows); setRule writes it back.
    bool hasRow(qsizetype row) const { return row >= 0 && row < m_items.size(); }
    QVariantMap rule(qsizetype row) const { return m_items.value(row).toMap(); }
    void setRule(qsizetype row, const QVariantMap& rule) { m_items[row] = rule; }
    // Stores one key of a row's rule; nothing outside the rows.
    void setRuleValue(qsizetype row, const QString& key, const QVariant& value);

    QVariantList m_items;
};

} // namespace quillon::results
