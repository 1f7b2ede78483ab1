#include "results/FontRuleTable.h"

#include "inspection/FontRecordKeys.h"
#include "results/PresetKeys.h"

using namespace quillon::inspection;

namespace quillon::results {

const QList<FontAttribute>& fontAttributes()
{
    static const QList<FontAttribute> attributes{
        {FontAttributeId::Name, QStringLiteral("Name"), inspection::kFontNameKey, FontRuleValueEntry::TextField,
         kConditionContains, QString()},
        {FontAttributeId::PostScriptName, QStringLiteral("PostScript Name"), inspection::kFontPsFontKey,
         FontRuleValueEntry::TextField, kConditionContains, QString()},
        {FontAttributeId::Location, QStringLiteral("Location"), inspection::kFontPathKey, FontRuleValueEntry::TextField,
         kConditionContains, QString()},
        {FontAttributeId::Type, QStringLiteral("Type"), inspection::kFontTypeKey, FontRuleValueEntry::TypeMenu,
         kConditionIs, QStringLiteral("TrueType")},
        {FontAttributeId::Status, QStringLiteral("Status"), inspection::kFontStatusKey, FontRuleValueEntry::StatusMenu,
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
    appendRule(QStringLiteral("Name"), inspection::kFontNameKey, kConditionContains);
}

void QNFontRulesTableController::attributePopup(qsizetype row, const QString& title)
{
    if (!hasRow(row))
        return;
    QVariantMap r = rule(row);
    r.insert(kRuleAttributeKey, title);
    const FontAttribute* attribute = fontAttributeNamed(title);
    r.insert(kRuleConditionKey, attribute ? attribute->initialCondition : kConditionContains);
    r.insert(kRuleValueKey, attribute ? attribute->initialValue : QString());
    setRule(row, r);
}

void QNFontRulesTableController::conditionsPopup(qsizetype row, const QString& title)
{
    setRuleValue(row, kRuleConditionKey, title);
}

void QNFontRulesTableController::typeAndStatusPopups(qsizetype row, const QString& title)
{
    setRuleValue(row, kRuleValueKey, title);
}

void QNFontRulesTableController::controlTextDidChange(qsizetype row, const QString& text)
{
    setRuleValue(row, kRuleValueKey, text);
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
