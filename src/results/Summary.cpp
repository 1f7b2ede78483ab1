#include "results/Summary.h"

#include "app/ParallelFor.h"
#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"
#include "links/LinkRecordKeys.h"
#include "results/ResultKeys.h"

#include <QSet>

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace quillon::inspection;

namespace quillon::results {

namespace lk = quillon::links;

namespace {

const QString kDocumentSection = QStringLiteral("Document");
const QString kFontsSection = QStringLiteral("Fonts");
const QString kColorsSection = QStringLiteral("Colors");
const QString kLinksSection = QStringLiteral("Links");
const QString kTotal = QStringLiteral("Total");

QString count(qsizetype n)
{
    return QString::number(n);
}

bool textContains(const QVariant& value, const QString& part)
{
    return value.typeId() == QMetaType::QString && value.toString().contains(part);
}

// The value under `key` of a record row, read in place: a copy of each of thousands of records
// costs more than the count made of it. Null when the row is not a record or has no such value.
const QVariant* valueInRow(const QVariant& row, const QString& key)
{
    if (row.typeId() != QMetaType::QVariantMap)
        return nullptr;
    const auto& record = *static_cast<const QVariantMap*>(row.constData());
    const auto found = record.constFind(key);
    return found == record.cend() ? nullptr : &*found;
}

// Sums `measure(row)` over the rows, thousands of them side by side, each worker into a total of
// its own.
template <typename Total, typename Measure> Total sumOverRows(const QVariantList& rows, Measure&& measure)
{
    struct alignas(64) Share {
        Total total{};
    };
    std::vector<Share> shares(static_cast<size_t>(app::parallelThreadLimit(0)));
    app::parallelFor(rows.size(), {.itemsPerThread = 2048}, [&](int worker, qsizetype index) {
        measure(rows.at(index), shares[static_cast<size_t>(worker)].total);
    });
    Total total{};
    for (const Share& share : shares)
        total += share.total;
    return total;
}

qint64 alertCount(const QVariantList& rows)
{
    return sumOverRows<qint64>(rows, [](const QVariant& row, qint64& total) {
        if (const QVariant* alerts = valueInRow(row, kAlertsKey); alerts && alerts->typeId() == QMetaType::QVariantMap)
            total += static_cast<const QVariantMap*>(alerts->constData())->size();
    });
}

// Counts, for each part, the rows whose text under a key contains it.
struct PartCounts {
    std::vector<qsizetype> counts;
    PartCounts& operator+=(const PartCounts& other)
    {
        counts.resize(std::max(counts.size(), other.counts.size()));
        for (size_t i = 0; i < other.counts.size(); ++i)
            counts[i] += other.counts[i];
        return *this;
    }
};

} // namespace

QNSummaryItem QNSummaryItem::sectionItemWithTitle(const QString& title)
{
    return {title, QString(), childrenForSectionTitle(title)};
}

QNSummaryItem QNSummaryItem::childItemWithTitle(const QString& title)
{
    return {title, QString(), {}};
}

QList<QNSummaryItem> QNSummaryItem::childrenForSectionTitle(const QString& title)
{
    QStringList titles;
    if (title == kDocumentSection)
        titles = {QStringLiteral("Name"),
                  QStringLiteral("Path"),
                  QStringLiteral("Date Created"),
                  QStringLiteral("Date Modified"),
                  QStringLiteral("InDesign Version"),
                  QStringLiteral("Pages"),
                  QStringLiteral("Bleed"),
                  QStringLiteral("Slug")};
    else if (title == kFontsSection)
        titles = {QStringLiteral("Missing"), QStringLiteral("Type 1"), QStringLiteral("TrueType"),
                  QStringLiteral("OpenType"), kTotal};
    else if (title == kColorsSection)
        titles = {QStringLiteral("Process"), QStringLiteral("Spot"), QStringLiteral("CMYK"), QStringLiteral("RGB"),
                  kTotal};
    else if (title == kLinksSection)
        titles = {QStringLiteral("Missing"), QStringLiteral("Modified"),  QStringLiteral("Embedded"),
                  QStringLiteral("CMYK"),    QStringLiteral("RGB"),       kTotal,
                  QStringLiteral("Unique"),  QStringLiteral("Total Size")};
    QList<QNSummaryItem> children;
    for (const QString& t : titles)
        children.append(childItemWithTitle(t));
    return children;
}

void QNSummaryOutlineController::startup()
{
    m_items = {QNSummaryItem::sectionItemWithTitle(kDocumentSection),
               QNSummaryItem::sectionItemWithTitle(kFontsSection), QNSummaryItem::sectionItemWithTitle(kColorsSection),
               QNSummaryItem::sectionItemWithTitle(kLinksSection)};
}

PreflightStatus QNSummaryOutlineController::loadSummary(const SummaryDocumentInfo& document, const QVariantList& fonts,
                                                        const QVariantList& colors, const QVariantList& links,
                                                        const FileSizeFormatter& fileSizeFormat, qint64 documentAlerts)
{
    loadDocSummary(document);
    loadFontsSummary(fonts);
    loadColorsSummary(colors);
    loadLinksSummary(links, fileSizeFormat);
    return loadPreflightStatusResults(fonts, colors, links, documentAlerts);
}

QNSummaryItem* QNSummaryOutlineController::sectionItemWithTitle(const QString& title)
{
    for (QNSummaryItem& section : m_items)
        if (section.title == title)
            return &section;
    return nullptr;
}

QNSummaryItem* QNSummaryOutlineController::childWithTitle(const QString& title, QList<QNSummaryItem>& rows)
{
    for (QNSummaryItem& row : rows)
        if (row.title == title)
            return &row;
    return nullptr;
}

void QNSummaryOutlineController::setValue(const QString& section, const QString& row, const QString& value)
{
    QNSummaryItem* s = sectionItemWithTitle(section);
    if (!s)
        return;
    if (QNSummaryItem* r = childWithTitle(row, s->children))
        r->value = value;
}

void QNSummaryOutlineController::loadDocSummary(const SummaryDocumentInfo& d)
{
    setValue(kDocumentSection, QStringLiteral("Name"), d.docName);
    setValue(kDocumentSection, QStringLiteral("Path"), d.docPath);
    setValue(kDocumentSection, QStringLiteral("Date Created"), d.creationDateStr);
    setValue(kDocumentSection, QStringLiteral("Date Modified"), d.modDateStr);
    setValue(kDocumentSection, QStringLiteral("InDesign Version"), d.InDesignVersion);
    setValue(kDocumentSection, QStringLiteral("Pages"), d.numberOfPagesStr);
    setValue(kDocumentSection, QStringLiteral("Bleed"), d.bleedStr);
    setValue(kDocumentSection, QStringLiteral("Slug"), d.slugStr);
}

void QNSummaryOutlineController::loadFontsSummary(const QVariantList& fonts)
{
    setValue(kFontsSection, kTotal, count(fonts.size()));
    setValue(kFontsSection, QStringLiteral("Missing"),
             count(numberOfDictsWhoseValueForKey(inspection::kFontStatusKey, QStringLiteral("miss"), fonts)));
    // "Type 1" is tested case-sensitively, so the record type "type 1" does not count here. Kept so.
    const auto types = countDictsWhoseValueForKey(
        inspection::kFontTypeKey, {QStringLiteral("Type 1"), QStringLiteral("True"), QStringLiteral("Open")}, fonts);
    setValue(kFontsSection, QStringLiteral("Type 1"), count(types.value(QStringLiteral("Type 1"))));
    setValue(kFontsSection, QStringLiteral("TrueType"), count(types.value(QStringLiteral("True"))));
    setValue(kFontsSection, QStringLiteral("OpenType"), count(types.value(QStringLiteral("Open"))));
}

void QNSummaryOutlineController::loadColorsSummary(const QVariantList& colors)
{
    setValue(kColorsSection, kTotal, count(colors.size()));
    const auto models = countDictsWhoseValueForKey(inspection::kColorModelKey,
                                                   {QStringLiteral("process"), QStringLiteral("spot")}, colors);
    setValue(kColorsSection, QStringLiteral("Process"), count(models.value(QStringLiteral("process"))));
    setValue(kColorsSection, QStringLiteral("Spot"), count(models.value(QStringLiteral("spot"))));
    const auto spaces =
        countDictsWhoseValueForKey(inspection::kColorSpaceKey, {QStringLiteral("CM"), QStringLiteral("RG")}, colors);
    setValue(kColorsSection, QStringLiteral("CMYK"), count(spaces.value(QStringLiteral("CM"))));
    setValue(kColorsSection, QStringLiteral("RGB"), count(spaces.value(QStringLiteral("RG"))));
}

void QNSummaryOutlineController::loadLinksSummary(const QVariantList& links, const FileSizeFormatter& fileSizeFormat)
{
    setValue(kLinksSection, kTotal, count(links.size()));
    setValue(kLinksSection, QStringLiteral("Unique"), numberOfUniqueLinksInLinksItems(links));
    const auto statuses = countDictsWhoseValueForKey(
        lk::kLinkStatusKey, {QStringLiteral("Miss"), QStringLiteral("Modi"), QStringLiteral("Embed")}, links);
    setValue(kLinksSection, QStringLiteral("Missing"), count(statuses.value(QStringLiteral("Miss"))));
    setValue(kLinksSection, QStringLiteral("Modified"), count(statuses.value(QStringLiteral("Modi"))));
    setValue(kLinksSection, QStringLiteral("Embedded"), count(statuses.value(QStringLiteral("Embed"))));
    const auto spaces =
        countDictsWhoseValueForKey(lk::kLinkColorKey, {QStringLiteral("CM"), QStringLiteral("RG")}, links);
    setValue(kLinksSection, QStringLiteral("CMYK"), count(spaces.value(QStringLiteral("CM"))));
    setValue(kLinksSection, QStringLiteral("RGB"), count(spaces.value(QStringLiteral("RG"))));
    setValue(kLinksSection, QStringLiteral("Total Size"),
             totalFileSizeFromDictsInArray(links, lk::kLinkSizeBytesKey, fileSizeFormat));
}

void QNSummaryOutlineController::clear()
{
    for (QNSummaryItem& section : m_items)
        for (QNSummaryItem& row : section.children)
            row.value.clear();
}

QVariantMap QNSummaryOutlineController::toVariantMap() const
{
    QVariantMap sections;
    for (const QNSummaryItem& section : m_items) {
        QVariantMap rows;
        for (const QNSummaryItem& row : section.children)
            rows.insert(row.title, row.value);
        sections.insert(section.title, rows);
    }
    return sections;
}

PreflightStatus QNSummaryOutlineController::loadPreflightStatusResults(const QVariantList& fonts,
                                                                       const QVariantList& colors,
                                                                       const QVariantList& links, qint64 documentAlerts)
{
    PreflightStatus status;
    status.document = documentAlerts;
    status.fonts = alertCount(fonts);
    status.colors = alertCount(colors);
    status.links = alertCount(links);
    status.total = status.document + status.fonts + status.colors + status.links;
    status.hasPreflightErrors = static_cast<std::int8_t>(status.total & 0xFF) != 0;
    if (status.total == 0) {
        status.text = QStringLiteral("No errors found");
        return status;
    }
    QStringList parts;
    if (status.document != 0)
        parts.append(QStringLiteral("Document: %1").arg(status.document));
    if (status.fonts != 0)
        parts.append(QStringLiteral("Fonts: %1").arg(status.fonts));
    if (status.colors != 0)
        parts.append(QStringLiteral("Colors: %1").arg(status.colors));
    if (status.links != 0)
        parts.append(QStringLiteral("Links: %1").arg(status.links));
    status.text = QStringLiteral("%1 errors found: ").arg(status.total) + parts.join(u' ' + kBullet + u' ');
    return status;
}

QString QNSummaryOutlineController::objectValueForColumn(const QNSummaryItem& item, const QString& column)
{
    QString value;
    if (column == QLatin1String("title"))
        value = item.title;
    else if (column == QLatin1String("value"))
        value = item.value;
    else
        return QStringLiteral("?");
    return value == QLatin1String("0") ? QStringLiteral("-") : value;
}

qsizetype QNSummaryOutlineController::numberOfDictsWhoseValueForKey(const QString& key, const QString& part,
                                                                    const QVariantList& rows)
{
    return countDictsWhoseValueForKey(key, {part}, rows).value(part);
}

QMap<QString, qsizetype> QNSummaryOutlineController::countDictsWhoseValueForKey(const QString& key,
                                                                                const QStringList& parts,
                                                                                const QVariantList& rows)
{
    const PartCounts found = sumOverRows<PartCounts>(rows, [&](const QVariant& row, PartCounts& total) {
        total.counts.resize(static_cast<size_t>(parts.size()));
        if (const QVariant* value = valueInRow(row, key))
            for (qsizetype i = 0; i < parts.size(); ++i)
                if (textContains(*value, parts.at(i)))
                    ++total.counts[static_cast<size_t>(i)];
    });
    QMap<QString, qsizetype> counts;
    for (qsizetype i = 0; i < parts.size(); ++i)
        counts.insert(parts.at(i),
                      static_cast<size_t>(i) < found.counts.size() ? found.counts[static_cast<size_t>(i)] : 0);
    return counts;
}

QString QNSummaryOutlineController::numberOfUniqueLinksInLinksItems(const QVariantList& links)
{
    // The records are looked up side by side; the set is made of what they hold.
    std::vector<const QVariant*> found(static_cast<size_t>(links.size()), nullptr);
    app::parallelFor(links.size(), {.itemsPerThread = 2048}, [&](int, qsizetype index) {
        found[static_cast<size_t>(index)] = valueInRow(links.at(index), lk::kLinkPathKey);
    });
    QSet<QString> paths;
    paths.reserve(links.size());
    for (const QVariant* path : found)
        if (path != nullptr && !path->isNull())
            paths.insert(path->toString());
    return count(paths.size());
}

QString QNSummaryOutlineController::totalFileSizeFromDictsInArray(const QVariantList& rows, const QString& key,
                                                                  const FileSizeFormatter& fileSizeFormat)
{
    const std::uint64_t sum = sumOverRows<std::uint64_t>(rows, [&key](const QVariant& row, std::uint64_t& total) {
        if (const QVariant* size = valueInRow(row, key))
            total += size->toULongLong();
    });
    if (rows.isEmpty() || sum == 0 || !fileSizeFormat)
        return QStringLiteral("-");
    return fileSizeFormat(sum);
}

} // namespace quillon::results
