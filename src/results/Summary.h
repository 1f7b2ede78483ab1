#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <cstdint>
#include <functional>

namespace quillon::results {

// The summary: four sections (document, fonts, colours, links) of counts over the judged result
// lists, and the preflight status line of the document-information box.

// A row of the summary: a section with children, or a child row with a value.
struct QNSummaryItem {
    QString title;
    QString value; // decimal counts and texts; empty until loaded
    QList<QNSummaryItem> children;

    static QNSummaryItem sectionItemWithTitle(const QString& title);
    static QNSummaryItem childItemWithTitle(const QString& title);
    static QList<QNSummaryItem> childrenForSectionTitle(const QString& title);
};

// The document's fields the summary shows, from the document information.
struct SummaryDocumentInfo {
    QString docName;
    QString docPath;
    QString creationDateStr;
    QString modDateStr;
    QString InDesignVersion;
    QString numberOfPagesStr;
    QString bleedStr;
    QString slugStr;
};

// Formats a byte count as the link records' "size" does (decimal units).
using FileSizeFormatter = std::function<QString(std::uint64_t bytes)>;

// The status line: alert counts per list and what the box shows.
struct PreflightStatus {
    qint64 document = 0; // alerts of the preset's document checks; 0 when it has none
    qint64 fonts = 0;
    qint64 colors = 0;
    qint64 links = 0;
    qint64 total = 0;
    // From the low eight bits of the total read as a signed byte, so a multiple of 256 reads as
    // no errors here while the line still counts them. Kept so.
    bool hasPreflightErrors = false;
    // "No errors found" or "4 errors found: Fonts: 3 • Links: 1" ("Document: n" first when the document
    // checks raised alerts); red when total is not 0
    QString text;
};

class QNSummaryOutlineController {
public:
    // Builds the four sections, in the order Document, Fonts, Colors, Links, with empty values.
    void startup();
    const QList<QNSummaryItem>& items() const { return m_items; }

    // Loads every section from the document information and the top-level rows of the three
    // result lists, and returns the status line, counting `documentAlerts` too.
    PreflightStatus loadSummary(const SummaryDocumentInfo& document, const QVariantList& fonts,
                                const QVariantList& colors, const QVariantList& links,
                                const FileSizeFormatter& fileSizeFormat, qint64 documentAlerts = 0);
    void loadDocSummary(const SummaryDocumentInfo& document);
    void loadFontsSummary(const QVariantList& fonts);
    void loadColorsSummary(const QVariantList& colors);
    void loadLinksSummary(const QVariantList& links, const FileSizeFormatter& fileSizeFormat);
    // Empties every value (before a new preflight).
    void clear();

    // The section with that title, or nullptr.
    QNSummaryItem* sectionItemWithTitle(const QString& title);

    // Section title -> {row title: value}, for output that is not an outline.
    QVariantMap toVariantMap() const;

    static PreflightStatus loadPreflightStatusResults(const QVariantList& fonts, const QVariantList& colors,
                                                      const QVariantList& links, qint64 documentAlerts = 0);

    // What a cell shows for a column ("title" or "value"): "?" for any other column, "-" for "0".
    static QString objectValueForColumn(const QNSummaryItem& item, const QString& column);

    // Counting rules: case-sensitive "contains" on text values; other values never count.
    static qsizetype numberOfDictsWhoseValueForKey(const QString& key, const QString& part, const QVariantList& rows);
    static QMap<QString, qsizetype> countDictsWhoseValueForKey(const QString& key, const QStringList& parts,
                                                               const QVariantList& rows);
    static QString numberOfUniqueLinksInLinksItems(const QVariantList& links);
    // The sum of the key's integer values, formatted; "-" with no rows or a sum of 0.
    static QString totalFileSizeFromDictsInArray(const QVariantList& rows, const QString& key,
                                                 const FileSizeFormatter& fileSizeFormat);
    // The first row with that title, or nullptr.
    static QNSummaryItem* childWithTitle(const QString& title, QList<QNSummaryItem>& rows);

private:
    void setValue(const QString& section, const QString& row, const QString& value);
    QList<QNSummaryItem> m_items;
};

} // namespace quillon::results
