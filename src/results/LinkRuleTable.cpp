#include "results/LinkRuleTable.h"

#include "app/NumericText.h"
#include "links/LinkRecordKeys.h"
#include "results/PresetKeys.h"

#include <algorithm>

namespace quillon::results {

namespace lk = quillon::links;

namespace {

const QString kStatusAttribute = QStringLiteral("Status");

} // namespace

const QList<LinkAttribute>& linkAttributes()
{
    static const QList<LinkAttribute> attributes{
        {QStringLiteral("Name"), lk::kLinkNameKey},
        {QStringLiteral("Kind"), lk::kLinkKindKey},
        {kStatusAttribute, lk::kLinkStatusKey},
        {QStringLiteral("Color Mode"), lk::kLinkColorKey},
        {QStringLiteral("ICC Profile"), lk::kLinkProfileKey},
        {QStringLiteral("Path"), lk::kLinkPathKey},
    };
    return attributes;
}

QString linkAttributeKey(const QString& displayName)
{
    for (const LinkAttribute& a : linkAttributes())
        if (a.displayName == displayName)
            return a.recordKey;
    return {};
}

QString linkStatusForIndex(qint64 index)
{
    if (index == 1)
        return lk::kLinkStatusModified;
    if (index == 2)
        return lk::kLinkStatusEmbedded;
    return lk::kLinkStatusMissing;
}

void QNLinkRulesTable::plusBtn()
{
    appendRule(QStringLiteral("Kind"), lk::kLinkKindKey, kConditionContains);
}

void QNLinkRulesTable::setObjectValue(const QString& column, qsizetype row, const QVariant& value)
{
    if (!hasRow(row))
        return;
    QVariantMap rule = RuleRows::rule(row);
    if (column == kRuleValueKey) {
        const bool fromStatusMenu = valueIsStatusMenu(rule) && value.typeId() != QMetaType::QString;
        rule.insert(kRuleValueKey, fromStatusMenu ? linkStatusForIndex(value.toLongLong()) : value.toString());
    } else if (column == kRuleAttributeKey) {
        const QString title = value.toString();
        rule.insert(kRuleAttributeKey, title);
        rule.insert(kRuleAttributeKeyKey, linkAttributeKey(title));
        if (title == kStatusAttribute) {
            rule.insert(kRuleConditionKey, kConditionIs);
            rule.insert(kRuleValueKey, lk::kLinkStatusMissing);
        }
    } else if (column == kRuleConditionKey) {
        rule.insert(kRuleConditionKey, value.toString());
    } else {
        return;
    }
    setRule(row, rule);
}

bool QNLinkRulesTable::valueIsStatusMenu(const QVariantMap& rule)
{
    return rule.value(kRuleAttributeKey).toString() == kStatusAttribute;
}

int QNLinkRulesTable::statusMenuIndex(const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return static_cast<int>(statusMenuTitles().indexOf(linkStatusForIndex(app::intValueOf(value))));
    return static_cast<int>(std::max<qsizetype>(0, statusMenuTitles().indexOf(value.toString())));
}

QStringList QNLinkRulesTable::attributeMenuTitles()
{
    QStringList titles;
    for (const LinkAttribute& a : linkAttributes())
        titles.append(a.displayName);
    return titles;
}

QStringList QNLinkRulesTable::conditionMenuTitles()
{
    return {kConditionContains, kConditionDoesntContain, kConditionIs};
}

QStringList QNLinkRulesTable::statusMenuTitles()
{
    return {lk::kLinkStatusMissing, lk::kLinkStatusModified, lk::kLinkStatusEmbedded};
}

} // namespace quillon::results
