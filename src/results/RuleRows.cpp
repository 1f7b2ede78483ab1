#include "results/RuleRows.h"

#include "results/PresetKeys.h"

namespace quillon::results {

void RuleRows::appendRule(const QString& attribute, const QString& attributeKey, const QString& condition)
{
    m_items.append(QVariantMap{{kRuleAttributeKey, attribute},
                               {kRuleAttributeKeyKey, attributeKey},
                               {kRuleConditionKey, condition},
                               {kRuleValueKey, QString()}});
}

void RuleRows::setRuleValue(qsizetype row, const QString& key, const QVariant& value)
{
    if (!hasRow(row))
        return;
    QVariantMap r = rule(row);
    r.insert(key, value);
    setRule(row, r);
}

} // namespace quillon::results
