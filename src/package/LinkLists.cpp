#include "package/LinkLists.h"

#include "links/LinkRecordKeys.h"

#include <QSet>

namespace quillon::package {

namespace {

bool isMissing(const QVariantMap& record)
{
    return record.value(links::kLinkStatusKey).toString() == QLatin1String("Missing");
}

QVariantList nestedLinks(const QVariantMap& record)
{
    return record.value(links::kLinkNestedLinksKey).toList();
}

// Adds the record when it is not missing and its name is new.
void keepWhenNew(const QVariantMap& record, QSet<QString>& names, QVariantList& kept)
{
    const QString name = record.value(links::kLinkNameKey).toString();
    if (isMissing(record) || names.contains(name))
        return;
    names.insert(name);
    kept << record;
}

} // namespace

QVariantList addNestedLinksToLinksArr(const QVariantList& links)
{
    QVariantList nested;
    for (const QVariant& record : links)
        for (const QVariant& inner : nestedLinks(record.toMap()))
            if (!isMissing(inner.toMap()))
                nested << inner;
    return links + nested;
}

QVariantList removeDuplicatesFromLinksArr(const QVariantList& links)
{
    QSet<QString> names;
    QVariantList kept;
    for (const QVariant& record : links)
        keepWhenNew(record.toMap(), names, kept);
    return kept;
}

QVariantList composeArrOfLinksWithoutDuplicates(const QList<QVariantList>& linksOfDocuments)
{
    QSet<QString> names;
    QVariantList kept;
    for (const QVariantList& links : linksOfDocuments)
        for (const QVariant& record : links) {
            const qsizetype before = kept.size();
            keepWhenNew(record.toMap(), names, kept);
            if (kept.size() == before)
                continue;
            for (const QVariant& inner : nestedLinks(record.toMap()))
                keepWhenNew(inner.toMap(), names, kept);
        }
    return kept;
}

qint64 totalSizeFromArrOfLinks(const QVariantList& links)
{
    qint64 total = 0;
    for (const QVariant& record : links)
        total += record.toMap().value(links::kLinkSizeBytesKey).toLongLong();
    return total;
}

qint64 sizeOfLinksCountingDuplicates(const QList<QVariantList>& linksOfDocuments)
{
    qint64 total = 0;
    for (const QVariantList& links : linksOfDocuments)
        for (const QVariant& record : links) {
            if (isMissing(record.toMap()))
                continue;
            total += record.toMap().value(links::kLinkSizeBytesKey).toLongLong();
            for (const QVariant& inner : nestedLinks(record.toMap()))
                if (!isMissing(inner.toMap()))
                    total += inner.toMap().value(links::kLinkSizeBytesKey).toLongLong();
        }
    return total;
}

} // namespace quillon::package
