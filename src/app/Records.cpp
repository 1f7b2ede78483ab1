#include "app/Records.h"

#include "app/Log.h"

namespace quillon::app {

std::optional<QVariantMap> objectForName(const QVariantList& records, const QString& name)
{
    for (const QVariant& item : records) {
        const QVariantMap record = item.toMap();
        const auto it = record.constFind(kNameKey);
        if (it != record.cend() && it->toString() == name)
            return record;
    }
    return std::nullopt;
}

namespace {

QVariantList filterByValue(const QVariantList& records, const QString& key, const QVariant& value, bool wantEqual)
{
    QVariantList out;
    for (const QVariant& item : records) {
        const bool equal = item.toMap().value(key) == value;
        if (equal == wantEqual)
            out.append(item);
    }
    return out;
}

} // namespace

QVariantList everyDictWhoseValueForKey(const QVariantList& records, const QString& key, const QVariant& value)
{
    return filterByValue(records, key, value, true);
}

QVariantList everyDictWhoseValueForKeyIsNot(const QVariantList& records, const QString& key, const QVariant& value)
{
    return filterByValue(records, key, value, false);
}

bool removeObjectForName(QVariantList& records, const QString& name)
{
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QVariantMap record = records[i].toMap();
        const auto it = record.constFind(kNameKey);
        if (it != record.cend() && it->toString() == name) {
            records.removeAt(i);
            return true;
        }
    }
    return false;
}

void setObjectForKeyValueIfNil(QVariantMap& record, const QString& key, const QVariant& value, const QVariant& fallback)
{
    record.insert(key, value.isNull() ? fallback : value);
}

QVariant valueForKeyAtPath(const QVariantMap& record, const QString& keyPath)
{
    const QStringList keys = keyPath.split(u'.');
    QVariant current = record.value(keys.first());
    for (const QString& key : keys) {
        if (current.isNull() || current.typeId() != QMetaType::QVariantMap) {
            logLine(QStringLiteral("valueForKeyAtPath: valueForKey:%1 == nil").arg(key));
            return {};
        }
        current = current.toMap().value(key);
    }
    if (current.isNull())
        logLine(QStringLiteral("valueForKeyAtPath: valueForKey:%1 == nil").arg(keys.last()));
    return current;
}

bool isNumberValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

} // namespace quillon::app
