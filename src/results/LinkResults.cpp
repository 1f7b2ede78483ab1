#include "results/LinkResults.h"

#include "app/NumericText.h"
#include "app/ParallelFor.h"
#include "app/PathComponents.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "links/LinkRecordKeys.h"
#include "results/LinkRuleTable.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillon::results {

namespace lk = quillon::links;

void QNLinksOutline::setItems(QVariantMap dataFile, const QVariantMap& preset, const QList<SortDescriptor>& sort)
{
    m_items = loadResultRows(std::move(dataFile), [&preset](QVariantMap doc) {
        return applyCurrPresetToArray(takeList(doc[app::kGroupChildrenKey]), preset);
    });
    sortRows(m_items, sort);
}

namespace {

// Judged anew: without link rules, the keys an earlier judging added go.
QVariantList judgedAgain(QVariantList records, const QVariantMap& preset)
{
    if (!preset.contains(kPresetLinksKey))
        for (QVariant& row : records) {
            QVariantMap record = takeMap(row);
            for (const QString& key : {kIconKey, kStatusImgKey, kBadFolderKey, kAlertsKey, kAlertKey, kAlertNameKey})
                record.remove(key);
            row = std::move(record);
        }
    return QNLinksOutline::applyCurrPresetToArray(std::move(records), preset);
}

} // namespace

void QNLinksOutline::reapplyPreset(const QVariantMap& preset)
{
    if (m_items.isEmpty() || !isGroupRow(m_items.front().toMap())) {
        m_items = judgedAgain(std::exchange(m_items, {}), preset);
        return;
    }
    for (QVariant& row : m_items) {
        QVariantMap group = takeMap(row);
        group.insert(app::kGroupChildrenKey, judgedAgain(takeList(group[app::kGroupChildrenKey]), preset));
        row = std::move(group);
    }
}

namespace {

// A record value as text without copying it: text values are viewed in place, other values
// are converted into `storage`.
QStringView textOf(const QVariantMap& record, const QString& key, QString& storage)
{
    const auto it = record.constFind(key);
    if (it == record.cend())
        return {};
    if (it->typeId() == QMetaType::QString)
        return *static_cast<const QString*>(it->constData());
    storage = it->toString();
    return storage;
}

// Text values only: anything else reads as empty.
QStringView onlyTextOf(const QVariantMap& record, const QString& key)
{
    const auto it = record.constFind(key);
    if (it == record.cend() || it->typeId() != QMetaType::QString)
        return {};
    return *static_cast<const QString*>(it->constData());
}

int intOf(const QVariantMap& record, const QString& key)
{
    const auto it = record.constFind(key);
    return it == record.cend() ? 0 : app::intValueOf(*it);
}

// A rule with its value and its alert text worked out once for a whole list.
struct CompiledRule {
    enum class Test { Contains, DoesntContain, Is, Never };
    Test test = Test::Never;
    QString value;
    QString alertText;
};

std::vector<CompiledRule> compileRules(const QVariantList& conditions, const QString& attrUIStr, bool isStatus)
{
    std::vector<CompiledRule> compiled;
    for (const QVariant& entry : conditions) {
        const QVariantMap rule = entry.toMap();
        const QVariant rawValue = rule.value(kRuleValueKey);
        CompiledRule c;
        if (rawValue.typeId() == QMetaType::QString)
            c.value = rawValue.toString();
        else if (isStatus)
            c.value = linkStatusForIndex(app::intValueOf(rawValue));
        if (c.value.isEmpty())
            continue;
        // Conditions compare as whole texts.
        const QString condition = rule.value(kRuleConditionKey).toString();
        if (condition == kConditionContains) {
            c.test = CompiledRule::Test::Contains;
            c.alertText = QStringLiteral("%1 contains \"%2\"").arg(attrUIStr, c.value);
        } else if (condition == kConditionDoesntContain) {
            c.test = CompiledRule::Test::DoesntContain;
            c.alertText = QStringLiteral("%1 doesn't contain \"%2\"").arg(attrUIStr, c.value);
        } else if (condition == kConditionIs) {
            c.test = CompiledRule::Test::Is;
            c.alertText = QStringLiteral("%1 is \"%2\"").arg(attrUIStr, c.value);
        } else {
            continue;
        }
        compiled.push_back(std::move(c));
    }
    return compiled;
}

// "contains" and "doesn't contain" ignore case; "is" is exact equality (which implies the
// case-insensitive containment the test starts from).
QStringList evaluateRules(QStringView text, const std::vector<CompiledRule>& rules)
{
    QStringList alerts;
    if (text.isEmpty())
        return alerts;
    for (const CompiledRule& rule : rules) {
        bool hit = false;
        switch (rule.test) {
        case CompiledRule::Test::Contains:
            hit = text.contains(rule.value, Qt::CaseInsensitive);
            break;
        case CompiledRule::Test::DoesntContain:
            hit = !text.contains(rule.value, Qt::CaseInsensitive);
            break;
        case CompiledRule::Test::Is:
            hit = text == rule.value;
            break;
        case CompiledRule::Test::Never:
            break;
        }
        if (hit)
            alerts.append(rule.alertText);
    }
    return alerts;
}

// One size limit of the preset; off when its field is empty.
struct SizeLimit {
    bool set = false;
    std::uint64_t bytes = 0;
    QString alertText;
};

SizeLimit readSizeLimit(const QVariantMap& links, const QString& fieldKey, const QString& bytesKey,
                        const QString& unitKey, const char* comparison)
{
    SizeLimit limit;
    const QString field = links.value(fieldKey).toString();
    limit.set = !field.isEmpty();
    if (limit.set) {
        limit.bytes = links.value(bytesKey).toULongLong();
        QString unit = links.value(unitKey).toString();
        if (unit.isEmpty())
            unit = kUnitMB;
        limit.alertText = QStringLiteral("Size %1 %2 %3").arg(QLatin1String(comparison), field, unit);
    }
    return limit;
}

struct ResolutionLimits {
    int below = 0;
    int above = 0;
    QString belowText;
    QString aboveText;

    ResolutionLimits(int low, int high)
        : below(low), above(high), belowText(QStringLiteral("Effective res < %1 dpi").arg(low)),
          aboveText(QStringLiteral("Effective res > %1 dpi").arg(high))
    {
    }
    bool set() const { return std::int64_t(below) + std::int64_t(above) >= 1; }
};

// The thresholds and rules of a preset's "Links", read once for a whole list.
struct LinkChecks {
    struct AttributeRules {
        QString recordKey;
        std::vector<CompiledRule> rules;
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
        : sizeBelow(readSizeLimit(links, kSizeBelowFieldKey, kSizeBelowBytesKey, kSizeBelowUnitsKey, "<")),
          sizeAbove(readSizeLimit(links, kSizeAboveFieldKey, kSizeAboveBytesKey, kSizeAboveUnitsKey, ">")),
          colorRes(app::intValueOf(links.value(kResBelowFieldKey)), app::intValueOf(links.value(kResAboveFieldKey))),
          bwRes(app::intValueOf(links.value(kResBWBelowFieldKey)), app::intValueOf(links.value(kResBWAboveFieldKey))),
          fontsEps(app::variantToBool(links.value(kFontsEpsBtnKey))),
          anyEpsFont(app::intValueOf(links.value(kFontsEpsMtrxKey)) == 0),
          scaledNonProp(app::variantToBool(links.value(kScaledNonPropBtnKey))),
          nonPrint(app::variantToBool(links.value(kNonPrintBtnKey)))
    {
        const QVariantList conditions = links.value(kConditionsKey).toList();
        for (const LinkAttribute& a : linkAttributes()) {
            QVariantList rules;
            for (const QVariant& rule : conditions)
                if (rule.toMap().value(kRuleAttributeKey).toString() == a.displayName)
                    rules.append(rule);
            AttributeRules entry{a.recordKey, compileRules(rules, a.displayName, a.recordKey == lk::kLinkStatusKey)};
            if (!entry.rules.empty())
                attributes.push_back(std::move(entry));
        }
    }

    // The alerts the record raises, in the order of the checks.
    QVariantMap judge(const QVariantMap& record) const
    {
        QVariantMap alerts;
        QString storage;
        for (const AttributeRules& a : attributes) {
            if (a.recordKey == lk::kLinkColorKey && textOf(record, lk::kLinkColorKey, storage).size() < 2)
                continue;
            const QStringList texts = evaluateRules(onlyTextOf(record, a.recordKey), a.rules);
            if (!texts.isEmpty())
                alerts.insert(a.recordKey, texts);
        }
        checkSize(record, alerts);
        checkResolution(record, alerts);
        if (fontsEps) {
            const QStringView fonts = textOf(record, lk::kLinkEpsFontListKey, storage);
            if (!fonts.isEmpty() && fonts != QLatin1String("-")) {
                // A capital "E" marks an embedded font in the list.
                if (anyEpsFont)
                    alerts.insert(lk::kLinkEpsFontsKey, QStringLiteral("Contains fonts"));
                else if (fonts.contains(u'E'))
                    alerts.insert(lk::kLinkEpsFontsKey, QStringLiteral("Contains embedded fonts"));
            }
        }
        if (scaledNonProp && intOf(record, lk::kLinkHorScaleKey) != intOf(record, lk::kLinkVertScaleKey))
            alerts.insert(lk::kLinkScaleKey, QStringLiteral("Non-proportional scale"));
        if (nonPrint && textOf(record, lk::kLinkPrintKey, storage) == lk::kLinkNonPrinting)
            alerts.insert(lk::kLinkPrintKey, QStringLiteral("Non-printing"));
        return alerts;
    }

    void checkSize(const QVariantMap& record, QVariantMap& alerts) const
    {
        if (!sizeBelow.set && !sizeAbove.set)
            return;
        // The size is read as a signed 32-bit number and compared unsigned after sign extension:
        // a file of 2 GiB or more never counts as small and always counts as large. Kept so.
        const std::int32_t size32 = intOf(record, lk::kLinkSizeBytesKey);
        const auto size = static_cast<std::uint64_t>(static_cast<std::int64_t>(size32));
        if (sizeBelow.set && size < sizeBelow.bytes)
            alerts.insert(lk::kLinkSizeKey, sizeBelow.alertText);
        else if (sizeAbove.set && size > sizeAbove.bytes)
            alerts.insert(lk::kLinkSizeKey, sizeAbove.alertText);
    }

    void checkResolution(const QVariantMap& record, QVariantMap& alerts) const
    {
        QString storage;
        const bool blackAndWhite = textOf(record, lk::kLinkColorKey, storage) == lk::kLinkColorBlackAndWhite;
        const ResolutionLimits& limits = blackAndWhite ? bwRes : colorRes;
        if (!limits.set())
            return;
        const int effective = intOf(record, lk::kLinkEffectiveResKey);
        if (effective <= 0)
            return;
        if (effective < limits.below)
            alerts.insert(lk::kLinkEffectiveResKey, limits.belowText);
        else if (limits.above >= 1 && effective > limits.above)
            alerts.insert(lk::kLinkEffectiveResKey, limits.aboveText);
    }
};

} // namespace

QVariantList QNLinksOutline::applyCurrPresetToArray(QVariantList records, const QVariantMap& preset)
{
    const auto linksIt = preset.constFind(kPresetLinksKey);
    if (linksIt == preset.cend())
        return records;
    const LinkChecks checks(linksIt->toMap());

    // Each record is judged in place of its input, on as many threads as the list is worth: below
    // 2,000 records a thread costs more than it saves.
    QVariant* rows = records.data();
    std::vector<QString> storage(static_cast<size_t>(app::parallelThreadLimit(0)));
    app::parallelFor(records.size(), {.itemsPerThread = 2000}, [&](int worker, qsizetype i) {
        QString& text = storage[static_cast<size_t>(worker)];
        QVariantMap record = takeMap(rows[i]);
        const QVariantMap alerts = checks.judge(record);
        const bool alerted = !alerts.isEmpty();
        record.insert(kIconKey, iconForLink(textOf(record, lk::kLinkPathKey, text)));
        record.insert(kStatusImgKey, statusImage(textOf(record, lk::kLinkStatusKey, text)));
        record.insert(kBadFolderKey, kImageBlank);
        record.insert(kAlertsKey, alerts);
        record.insert(kAlertKey, alerted ? kImageWarning : kImageBlank);
        record.insert(kAlertNameKey, alerted ? kImageWarning : QString());
        rows[i] = std::move(record);
    });
    return records;
}

QStringList QNLinksOutline::alertsForFile(const QVariantMap& record, const QString& attribute, const QString& attrUIStr,
                                          const QVariantList& conditions)
{
    return evaluateRules(onlyTextOf(record, attribute),
                         compileRules(conditions, attrUIStr, attribute == lk::kLinkStatusKey));
}

QString QNLinksOutline::iconForLink(QStringView path)
{
    return (path.isEmpty() || path == lk::kLinkNoPath) ? kImageBlank : kImageFileIcon;
}

QString QNLinksOutline::statusImage(QStringView status)
{
    for (const QString& known :
         {lk::kLinkStatusOK, lk::kLinkStatusModified, lk::kLinkStatusMissing, lk::kLinkStatusEmbedded})
        if (status == known)
            return known;
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
    const bool exclude = sender != QLatin1String("goToLink");
    return rowsToActOn(selection, topLevelItems,
                       [exclude](const QVariantMap& record) { return !isExcludedStatus(record, exclude); });
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
    return GoToLinkTarget{first.value(lk::kLinkIdKey).toString(), app::lastPathComponent(docPath)};
}

void QNLinksOutline::acquireMetadata(QVariantMap& record,
                                     const std::function<QVariantList(const QString& path)>& readMetadata)
{
    if (app::variantToBool(record.value(lk::kLinkMetadataWasAquiredKey)))
        return;
    record.insert(lk::kLinkMetadataWasAquiredKey, true);
    record.insert(lk::kLinkMetadataKey,
                  readMetadata ? readMetadata(record.value(lk::kLinkPathKey).toString()) : QVariantList());
}

QString QNLinksOutline::openWithPlaceholder(const QVariantList& rowsToActOn)
{
    return rowsToActOn.isEmpty() ? QStringLiteral("Selected items cannot be open") : QStringLiteral("Fetching...");
}

} // namespace quillon::results
