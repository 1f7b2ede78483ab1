#pragma once

#include "results/RuleRows.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <array>

namespace quillon::results {

// The font rule attributes and the font-rules editor of the presets window. The editor's table
// shows `items()`; its pop-ups and fields call the operations below, which apply the effects a
// choice has on the rule.

enum class FontAttributeId { Name, PostScriptName, Location, Type, Status };

// How a rule's value is entered.
enum class FontRuleValueEntry { TextField, TypeMenu, StatusMenu };

struct FontAttribute {
    FontAttributeId id;
    QString displayName; // stored in the rule's "attribute"
    QString recordKey;   // the font record key the rule tests
    FontRuleValueEntry entry;
    QString initialCondition; // condition and value when the attribute is chosen
    QString initialValue;
};

// Every attribute, in the order of the attributes menu.
const QList<FontAttribute>& fontAttributes();
const FontAttribute& fontAttribute(FontAttributeId id);
// The attribute with that display name, or nullptr.
const FontAttribute* fontAttributeNamed(const QString& displayName);

// The order in which the rule pass tests the attributes.
inline constexpr std::array<FontAttributeId, 5> kFontAttributeEvaluationOrder{
    FontAttributeId::Name, FontAttributeId::Type, FontAttributeId::Status, FontAttributeId::PostScriptName,
    FontAttributeId::Location};

class QNFontRulesTableController : public RuleRows {
public:
    // Appends {"Name", "name", "contains", ""}.
    void plusBtn();
    // Stores the chosen attribute and resets condition and value to the attribute's initial
    // ones; "attributeKey" stays as it was (other readers keep it, the engine ignores it).
    void attributePopup(qsizetype row, const QString& title);
    void conditionsPopup(qsizetype row, const QString& title);
    void typeAndStatusPopups(qsizetype row, const QString& title);
    // Every edit of a value field is stored at once.
    void controlTextDidChange(qsizetype row, const QString& text);

    // How the row's value is entered, and whether its condition is a pop-up (conditions holding
    // "contain") or fixed text.
    static FontRuleValueEntry valueEntryForRule(const QVariantMap& rule);
    static bool conditionIsChoosable(const QVariantMap& rule);

    // Menu titles. Type and status titles are matched against the record values with the
    // case-insensitive "is" pattern test ("OpenType*" catches every OpenType flavour).
    static QStringList attributeMenuTitles();
    static QStringList conditionMenuTitles();
    static QStringList typeMenuTitles();
    static QStringList statusMenuTitles();
};

} // namespace quillon::results
