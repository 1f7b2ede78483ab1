#include "results/LinkResults.h"

#include "app/NumericText.h"
#include "app/PathComponents.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "links/LinkRecordKeys.h"
#include "results/LinkRuleTable.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace quillon::results {

namespace lk = quillon::links;

void QNLinksOutline::setItems(const QVariantMap& dataFile, const QVariantMap& preset,
                              const QList<SortDescriptor>& sort)
{
    m_items = loadResultRows(dataFile, [&preset](const QVariantMap& doc) {
        return applyCurrPresetToArray(doc.value(app::kGroupChildrenKey).toList(), preset);
    });
    sortRows(m_items, sort);
}

QString QNLinksOutline::headerTitle() const
{
    return listHeaderTitle(QStringLiteral("LINKS"), m_items.size());
}

namespace {

// One size limit of the preset; off when its field is empty.
struct SizeLimit {
    bool set = false;
    std::uint64_t bytes = 0;
    QString fieldText;
    QString unit;
};

SizeLimit readSizeLimit(const QVariantMap& links, const QString& fieldKey, const QString& bytesKey,
                        const QString& unitKey)
{
    SizeLimit limit;
    limit.fieldText = links.value(fieldKey).toString();
    limit.set = !limit.fieldText.isEmpty();
    if (limit.set) {
        limit.bytes = links.value(bytesKey).toULongLong();
        limit.unit = links.value(unitKey).toString();
        if (limit.unit.isEmpty())
            limit.unit = kUnitMB;
    }
    return limit;
}

struct ResolutionLimits {
    int below = 0;
    int above = 0;
    bool set() const { return std::int64_t(below) + std::int64_t(above) >= 1; }
};

// The thresholds and rules of a preset's "Links", read once for a whole list.
struct LinkChecks {
    struct AttributeRules {
        QString displayName;
        QString recordKey;
        QVariantList rules;
    };
    std::vector<AttributeRules> attributes;
    SizeLimit sizeBelow;
    SizeLimit sizeAbove;
    ResolutionLimits colorRes;
    ResolutionLimits bwRes;
    bool fontsEps = false;
    bool anyEpsFont = false;
    bool scaledNonProp = false;
    bool nonPrint = false;

    explicit LinkChecks(const QVariantMap& links)
    {
        const QVariantList conditions = links.value(kConditionsKey).toList();
        for (const LinkAttribute& a : linkAttributes()) {
            AttributeRules entry{a.displayName, a.recordKey, {}};
            for (const QVariant& rule : conditions)
                if (rule.toMap().value(kRuleAttributeKey).toString() == a.displayName)
                    entry.rules.append(rule);
            if (!entry.rules.isEmpty())
                attributes.push_back(std::move(entry));
        }
        sizeBelow = readSizeLimit(links, kSizeBelowFieldKey, kSizeBelowBytesKey, kSizeBelowUnitsKey);
        sizeAbove = readSizeLimit(links, kSizeAboveFieldKey, kSizeAboveBytesKey, kSizeAboveUnitsKey);
        colorRes = {app::intValueOf(links.value(kResBelowFieldKey)), app::intValueOf(links.value(kResAboveFieldKey))};
        bwRes = {app::intValueOf(links.value(kResBWBelowFieldKey)), app::intValueOf(links.value(kResBWAboveFieldKey))};
        fontsEps = app::variantToBool(links.value(kFontsEpsBtnKey));
        anyEpsFont = app::intValueOf(links.value(kFontsEpsMtrxKey)) == 0;
        scaledNonProp = app::variantToBool(links.value(kScaledNonPropBtnKey));
        nonPrint = app::variantToBool(links.value(kNonPrintBtnKey));
    }

    void judge(QVariantMap& record, QVariantMap& alerts) const
    {
        for (const AttributeRules& a : attributes) {
            if (a.recordKey == lk::kLinkColorKey && record.value(lk::kLinkColorKey).toString().size() < 2)
                continue;
            const QStringList texts = QNLinksOutline::alertsForFile(record, a.recordKey, a.displayName, a.rules);
            if (!texts.isEmpty())
                alerts.insert(a.recordKey, texts);
        }
        checkSize(record, alerts);
        checkResolution(record, alerts);
        if (fontsEps) {
            const QString fonts = record.value(lk::kLinkEpsFontListKey).toString();
            if (!fonts.isEmpty() && fonts != QLatin1String("-")) {
                // A capital "E" marks an embedded font in the list.
                if (anyEpsFont)
                    alerts.insert(lk::kLinkEpsFontsKey, QStringLiteral("Contains fonts"));
                else if (fonts.contains(u'E'))
                    alerts.insert(lk::kLinkEpsFontsKey, QStringLiteral("Contains embedded fonts"));
            }
        }
        if (scaledNonProp &&
            app::intValueOf(record.value(lk::kLinkHorScaleKey)) != app::intValueOf(record.value(lk::kLinkVertScaleKey)))
            alerts.insert(lk::kLinkScaleKey, QStringLiteral("Non-proportional scale"));
        if (nonPrint && record.value(lk::kLinkPrintKey).toString() == lk::kLinkNonPrinting)
            alerts.insert(lk::kLinkPrintKey, QStringLiteral("Non-printing"));
    }

    void checkSize(const QVariantMap& record, QVariantMap& alerts) const
    {
        if (!sizeBelow.set && !sizeAbove.set)
            return;
        // The size is read as a signed 32-bit number and compared unsigned after sign extension:
        // a file of 2 GiB or more never counts as small and always counts as large. Kept so.
        const std::int32_t size32 = app::intValueOf(record.value(lk::kLinkSizeBytesKey));
        const auto size = static_cast<std::uint64_t>(static_cast<std::int64_t>(size32));
        if (sizeBelow.set && size < sizeBelow.bytes)
            alerts.insert(lk::kLinkSizeKey, QStringLiteral("Size < %1 %2").arg(sizeBelow.fieldText, sizeBelow.unit));
        else if (sizeAbove.set && size > sizeAbove.bytes)
            alerts.insert(lk::kLinkSizeKey, QStringLiteral("Size > %1 %2").arg(sizeAbove.fieldText, sizeAbove.unit));
    }

    void checkResolution(const QVariantMap& record, QVariantMap& alerts) const
    {
        const bool blackAndWhite = record.value(lk::kLinkColorKey).toString() == lk::kLinkColorBlackAndWhite;
        const ResolutionLimits& limits = blackAndWhite ? bwRes : colorRes;
        if (!limits.set())
            return;
        const int effective = app::intValueOf(record.value(lk::kLinkEffectiveResKey));
        if (effective <= 0)
            return;
        if (effective < limits.below)
            alerts.insert(lk::kLinkEffectiveResKey, QStringLiteral("Effective res < %1 dpi").arg(limits.below));
        else if (limits.above >= 1 && effective > limits.above)
            alerts.insert(lk::kLinkEffectiveResKey, QStringLiteral("Effective res > %1 dpi").arg(limits.above));
    }
};

} // namespace

QVariantList QNLinksOutline::applyCurrPresetToArray(const QVariantList& records, const QVariantMap& preset)
{
    const auto linksIt = preset.constFind(kPresetLinksKey);
    if (linksIt == preset.cend())
        return records;
    const LinkChecks checks(linksIt->toMap());

    QVariantList judged;
    judged.reserve(records.size());
    for (const QVariant& input : records) {
        QVariantMap record = input.toMap();
        record.insert(kIconKey, iconForLink(record.value(lk::kLinkPathKey).toString()));
        record.insert(kStatusImgKey, statusImage(record.value(lk::kLinkStatusKey).toString()));
        record.insert(kBadFolderKey, kImageBlank);
        QVariantMap alerts;
        checks.judge(record, alerts);
        record.insert(kAlertsKey, alerts);
        setAlertDecoration(record, kImageWarning);
        judged.append(std::move(record));
    }
    return judged;
}

QStringList QNLinksOutline::alertsForFile(const QVariantMap& record, const QString& attribute,
                                          const QString& attrUIStr, const QVariantList& conditions)
{
    QStringList alerts;
    const QVariant subject = record.value(attribute);
    if (subject.typeId() != QMetaType::QString)
        return alerts;
    const QString text = subject.toString();
    if (text.isEmpty())
        return alerts;
    const bool isStatus = attribute == lk::kLinkStatusKey;
    for (const QVariant& entry : conditions) {
        const QVariantMap rule = entry.toMap();
        const QVariant rawValue = rule.value(kRuleValueKey);
        QString value;
        if (rawValue.typeId() == QMetaType::QString)
            value = rawValue.toString();
        else if (isStatus)
            value = linkStatusForIndex(app::intValueOf(rawValue));
        if (value.isEmpty())
            continue;
        const QString condition = rule.value(kRuleConditionKey).toString();
        const bool found = text.contains(value, Qt::CaseInsensitive);
        if (condition == kConditionContains && found)
            alerts.append(QStringLiteral("%1 contains \"%2\"").arg(attrUIStr, value));
        else if (condition == kConditionDoesntContain && !found)
            alerts.append(QStringLiteral("%1 doesn't contain \"%2\"").arg(attrUIStr, value));
        else if (condition == kConditionIs && found && text == value)
            alerts.append(QStringLiteral("%1 is \"%2\"").arg(attrUIStr, value));
    }
    return alerts;
}

QString QNLinksOutline::iconForLink(const QString& path)
{
    return (path.isEmpty() || path == lk::kLinkNoPath) ? kImageBlank : kImageFileIcon;
}

QString QNLinksOutline::statusImage(const QString& status)
{
    if (status == lk::kLinkStatusOK || status == lk::kLinkStatusModified || status == lk::kLinkStatusMissing ||
        status == lk::kLinkStatusEmbedded)
        return status;
    return kImageBlank;
}

namespace {

bool isExcludedStatus(const QVariantMap& record, bool excludeAbsentFiles)
{
    if (!excludeAbsentFiles)
        return false;
    const QString status = record.value(lk::kLinkStatusKey).toString();
    return status == lk::kLinkStatusMissing || status == lk::kLinkStatusEmbedded;
}

} // namespace

QVariantList QNLinksOutline::itemsForAction(const OutlineSelection& selection, const QVariantList& topLevelItems,
                                            const QString& sender)
{
    QVariantList rows;
    if (selection.rows.isEmpty() || (selection.selected.isEmpty() && selection.clickedRow < 0))
        return rows;
    const bool exclude = sender != QLatin1String("goToLink");
    if (selection.clickedOutsideSelection()) {
        if (selection.clickedRow < topLevelItems.size()) {
            const QVariantMap clicked = topLevelItems.at(selection.clickedRow).toMap();
            if (!isExcludedStatus(clicked, exclude))
                rows.append(clicked);
        }
        return rows;
    }
    QList<qsizetype> selected = selection.selected;
    std::sort(selected.begin(), selected.end());
    for (qsizetype row : selected) {
        if (row < 0 || row >= selection.rows.size())
            continue;
        const QVariantMap record = selection.rows.at(row).toMap();
        if (!isExcludedStatus(record, exclude))
            rows.append(record);
    }
    return rows;
}

std::optional<QList<qsizetype>> QNLinksOutline::indexesOfItemsWhosePathIs(const QVariantList& items,
                                                                          const QString& path)
{
    QList<qsizetype> indexes;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QVariantMap row = items.at(i).toMap();
        if (row.value(lk::kLinkPathKey).toString() == path && row.contains(lk::kLinkIdKey))
            indexes.append(i);
    }
    if (indexes.isEmpty())
        return std::nullopt;
    return indexes;
}

bool QNLinksOutline::emptyOrDash(const QVariant& value)
{
    if (value.isNull())
        return true;
    const QString text = value.toString();
    return text.isEmpty() || text.contains(u'-');
}

QStringList QNLinksOutline::epsPullDownItems(const QVariantMap& record, const QString& column)
{
    if (emptyOrDash(record.value(column)))
        return {};
    const QString listKey = column == lk::kLinkEpsColsKey ? lk::kLinkEpsColListKey : lk::kLinkEpsFontListKey;
    return record.value(listKey).toString().split(u'\r');
}

bool QNLinksOutline::shouldEditName(const QVariantMap& row, const QString& column, bool isExpandedGroup)
{
    if (column != lk::kLinkNameKey || isExpandedGroup)
        return false;
    const QString status = row.value(lk::kLinkStatusKey).toString();
    return status != lk::kLinkStatusMissing && status != lk::kLinkStatusEmbedded;
}

std::optional<QNLinksOutline::GoToLinkTarget> QNLinksOutline::goToLinkTarget(const QVariantList& rowsToActOn)
{
    if (rowsToActOn.isEmpty())
        return std::nullopt;
    const QVariantMap first = rowsToActOn.first().toMap();
    const QString docPath = first.value(lk::kLinkDocPathKey).toString();
    return GoToLinkTarget{first.value(lk::kLinkIdKey).toString(),
                          app::lastPathComponent(docPath)};
}

} // namespace quillon::results
