#include "results/FontRuleTable.h"

#include "preflight/FontRecordKeys.h"
#include "results/PresetKeys.h"

namespace quillon::results {

namespace pf = quillon::preflight;

const QList<FontAttribute>& fontAttributes()
{
    static const QList<FontAttribute> attributes{
        {FontAttributeId::Name, QStringLiteral("Name"), pf::kFontNameKey, FontRuleValueEntry::TextField,
         kConditionContains, QString()},
        {FontAttributeId::PostScriptName, QStringLiteral("PostScript Name"), pf::kFontPsFontKey,
         FontRuleValueEntry::TextField, kConditionContains, QString()},
        {FontAttributeId::Location, QStringLiteral("Location"), pf::kFontPathKey, FontRuleValueEntry::TextField,
         kConditionContains, QString()},
        {FontAttributeId::Type, QStringLiteral("Type"), pf::kFontTypeKey, FontRuleValueEntry::TypeMenu, kConditionIs,
         QStringLiteral("TrueType")},
        {FontAttributeId::Status, QStringLiteral("Status"), pf::kFontStatusKey, FontRuleValueEntry::StatusMenu,
         kConditionIs, QStringLiteral("Missing")},
    };
    return attributes;
}

const FontAttribute& fontAttribute(FontAttributeId id)
{
    for (const FontAttribute& a : fontAttributes())
        if (a.id == id)
            return a;
    return fontAttributes().first();
}

const FontAttribute* fontAttributeNamed(const QString& displayName)
{
    for (const FontAttribute& a : fontAttributes())
        if (a.displayName == displayName)
            return &a;
    return nullptr;
}

void QNFontRulesTableController::plusBtn()
{
    m_items.append(QVariantMap{{kRuleAttributeKey, QStringLiteral("Name")},
                               {kRuleAttributeKeyKey, pf::kFontNameKey},
                               {kRuleConditionKey, kConditionContains},
                               {kRuleValueKey, QString()}});
}

void QNFontRulesTableController::minusBtn(qsizetype row)
{
    if (row >= 0 && row < m_items.size())
        m_items.removeAt(row);
}

void QNFontRulesTableController::attributePopup(qsizetype row, const QString& title)
{
    if (row < 0 || row >= m_items.size())
        return;
    QVariantMap rule = m_items.at(row).toMap();
    rule.insert(kRuleAttributeKey, title);
    const FontAttribute* attribute = fontAttributeNamed(title);
    rule.insert(kRuleConditionKey, attribute ? attribute->initialCondition : kConditionContains);
    rule.insert(kRuleValueKey, attribute ? attribute->initialValue : QString());
    m_items[row] = rule;
}

void QNFontRulesTableController::conditionsPopup(qsizetype row, const QString& title)
{
    setValue(row, kRuleConditionKey, title);
}

void QNFontRulesTableController::typeAndStatusPopups(qsizetype row, const QString& title)
{
    setValue(row, kRuleValueKey, title);
}

void QNFontRulesTableController::controlTextDidChange(qsizetype row, const QString& text)
{
    setValue(row, kRuleValueKey, text);
}

void QNFontRulesTableController::setValue(qsizetype row, const QString& key, const QString& value)
{
    if (row < 0 || row >= m_items.size())
        return;
    QVariantMap rule = m_items.at(row).toMap();
    rule.insert(key, value);
    m_items[row] = rule;
}

FontRuleValueEntry QNFontRulesTableController::valueEntryForRule(const QVariantMap& rule)
{
    const FontAttribute* attribute = fontAttributeNamed(rule.value(kRuleAttributeKey).toString());
    return attribute ? attribute->entry : FontRuleValueEntry::TextField;
}

bool QNFontRulesTableController::conditionIsChoosable(const QVariantMap& rule)
{
    return rule.value(kRuleConditionKey).toString().contains(QLatin1String("contain"));
}

QStringList QNFontRulesTableController::attributeMenuTitles()
{
    QStringList titles;
    for (const FontAttribute& a : fontAttributes())
        titles.append(a.displayName);
    return titles;
}

QStringList QNFontRulesTableController::conditionMenuTitles()
{
    return {kConditionContains, kConditionDoesntContain};
}

QStringList QNFontRulesTableController::typeMenuTitles()
{
    return {QStringLiteral("TrueType"), QStringLiteral("OpenType*"), QStringLiteral("Type 1"),
            QStringLiteral("Bitmap")};
}

QStringList QNFontRulesTableController::statusMenuTitles()
{
    return {QStringLiteral("Missing"), QStringLiteral("Substituted"), QStringLiteral("Fauxed"),
            QStringLiteral("Unknown")};
}

} // namespace quillon::results
