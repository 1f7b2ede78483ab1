#include "results/ResultRows.h"

#include "app/AppPaths.h"
#include "app/Log.h"
#include "app/PathComponents.h"
#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "app/Records.h"
#include "app/Settings.h"
#include "app/Strings.h"
#include "results/ResultKeys.h"

#include <algorithm>

namespace quillon::results {

QVariantMap takeMap(QVariant& value)
{
    if (value.typeId() != QMetaType::QVariantMap)
        return value.toMap();
    QVariantMap taken;
    taken.swap(*static_cast<QVariantMap*>(value.data()));
    return taken;
}

QVariantList takeList(QVariant& value)
{
    if (value.typeId() != QMetaType::QVariantList)
        return value.toList();
    QVariantList taken;
    taken.swap(*static_cast<QVariantList*>(value.data()));
    return taken;
}

QVariantList loadResultRows(QVariantMap dataFile, const DocumentJudge& judge)
{
    if (dataFile.size() == 1)
        return judge(takeMap(*dataFile.begin()));
    QVariantList rows;
    rows.reserve(dataFile.size());
    for (auto it = dataFile.begin(); it != dataFile.end(); ++it) {
        const QString docPath = it.key();
        QVariantMap group;
        group.insert(app::kGroupDocPathKey, docPath);
        group.insert(app::kGroupNameKey, app::lastPathComponent(docPath));
        group.insert(app::kGroupIsDockKey, 1);
        group.insert(app::kGroupChildrenKey, judge(takeMap(it.value())));
        rows.append(group);
    }
    return rows;
}

QVariantMap readDataFile(const QString& folder, const QString& fileName)
{
    const QString path = folder + u'/' + fileName;
    auto dict = app::readPropertyListDictionary(path, app::kMaxDataFileBytes);
    if (!dict) {
        app::logFailure(QStringLiteral("read data file: %1").arg(dict.error().text()));
        return {};
    }
    return dict.value();
}

QString listHeaderTitle(const QString& word, qsizetype rowCount)
{
    return QStringLiteral("%1 %2 %3").arg(word, kBullet).arg(rowCount);
}

bool isGroupRow(const QVariantMap& row)
{
    return app::variantToBool(row.value(app::kGroupIsDockKey));
}

QVariantList flatRecords(const QVariantList& rows)
{
    QVariantList records;
    for (const QVariant& row : rows) {
        const QVariantMap map = row.toMap();
        if (isGroupRow(map))
            records += map.value(app::kGroupChildrenKey).toList();
        else
            records += row;
    }
    return records;
}

bool hasAlerts(const QVariantMap& record)
{
    return !record.value(kAlertsKey).toMap().isEmpty();
}

bool hasAlertFor(const QVariantMap& record, const QString& key)
{
    return record.value(kAlertsKey).toMap().contains(key);
}

QStringList alertTexts(const QVariant& alerts)
{
    if (alerts.typeId() == QMetaType::QString)
        return {alerts.toString()};
    return alerts.toStringList();
}

QString alertsOfAttributeForToolTip(const QStringList& alerts)
{
    return alerts.join(u'\n');
}

QString allAlertsOfItemForToolTip(const QVariantMap& alerts)
{
    QStringList blocks;
    for (const QVariant& value : alerts) {
        const QStringList texts = alertTexts(value);
        if (!texts.isEmpty())
            blocks.append(alertsOfAttributeForToolTip(texts));
    }
    return blocks.join(u'\n');
}

void setAlertDecoration(QVariantMap& record, const QString& alertImage)
{
    const bool alerted = hasAlerts(record);
    record.insert(kAlertKey, alerted ? alertImage : kImageBlank);
    record.insert(kAlertNameKey, alerted ? kImageWarning : QString());
}

QVariantList rowsToActOn(const OutlineSelection& selection, const QVariantList& clickedRows,
                         const std::function<bool(const QVariantMap& record)>& accept)
{
    QVariantList rows;
    if (selection.rows.isEmpty() || (selection.selected.isEmpty() && selection.clickedRow < 0))
        return rows;
    if (selection.clickedOutsideSelection()) {
        if (selection.clickedRow < clickedRows.size()) {
            const QVariantMap clicked = clickedRows.at(selection.clickedRow).toMap();
            if (accept(clicked))
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
        if (accept(record))
            rows.append(record);
    }
    return rows;
}

namespace {

bool isNumber(const QVariant& v)
{
    return app::isNumberValue(v) || v.typeId() == QMetaType::Bool;
}

int compareValues(const QVariant& a, const QVariant& b, SortDescriptor::Comparison comparison)
{
    const bool aNull = a.isNull();
    const bool bNull = b.isNull();
    if (aNull || bNull)
        return aNull == bNull ? 0 : (aNull ? -1 : 1);
    if (isNumber(a) && isNumber(b)) {
        const double x = a.toDouble();
        const double y = b.toDouble();
        return x < y ? -1 : (x > y ? 1 : 0);
    }
    const QString x = a.toString();
    const QString y = b.toString();
    switch (comparison) {
    case SortDescriptor::Comparison::CaseInsensitive:
        return x.compare(y, Qt::CaseInsensitive);
    case SortDescriptor::Comparison::Natural:
        return app::numericCompare(x, y);
    case SortDescriptor::Comparison::Plain:
        break;
    }
    return x.compare(y);
}

} // namespace

void sortRows(QVariantList& rows, const QList<SortDescriptor>& descriptors)
{
    if (descriptors.isEmpty())
        return;
    std::stable_sort(rows.begin(), rows.end(), [&](const QVariant& left, const QVariant& right) {
        const QVariantMap a = left.toMap();
        const QVariantMap b = right.toMap();
        for (const SortDescriptor& d : descriptors) {
            const int order = compareValues(a.value(d.key), b.value(d.key), d.comparison);
            if (order != 0)
                return d.ascending ? order < 0 : order > 0;
        }
        return false;
    });
}

} // namespace quillon::results
