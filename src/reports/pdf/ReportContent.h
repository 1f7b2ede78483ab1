#pragma once

#include "inspection/DocInfo.h"
#include "results/Summary.h"

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>

namespace quillon::reportpdf {

// One line of a summary field: a bold section header or a "\t<title>:  <value>" row.
struct SummaryLine {
    QString text;
    bool bold = false;
};

// One row of a print outline: its cells in column order, the columns that carry alerts, and the
// alert texts shown beside it.
struct OutlineRow {
    QStringList cells;
    QList<int> alertedColumns;
    QStringList alerts;
    std::optional<QColor> swatch; // a colour row's colour, drawn as a chip before its name
};

// A print outline: the same items as the result list it mirrors, in its order.
struct PrintOutline {
    QString title;
    QStringList headers;
    QList<double> columnWidths; // fractions of the printable width, summing to 1
    QList<OutlineRow> rows;
    QString legend; // beside the title: what the rows' marks mean
};

// The colour of a colour record, approximately, for its chip: CMYK and RGB values; nothing for
// other spaces.
std::optional<QColor> swatchColor(const QVariantMap& colorRecord);

// What a link row's text annotation says.
struct LinkNote {
    QString name;
    QString application;
    QString fonts;  // "-" when the file lists none
    QString colors; // "-" when the file lists none
    QString document;
    QString warning; // the rules the link broke, "-" when none
    QString path;

    QString contents() const;
};

// The report of one document as the report view lays it out, ready to paint.
struct ReportSection {
    QString creditLine; // "Created with Quillon <version>"
    QString pathLabel;  // "Path:"
    QString docName;
    QString docPath;
    QString presetLine; // the checkup preset's name, "[Default]" when none is chosen
    QString userLine;   // "<full name> • <medium date and time>"
    QString statusLine; // "No errors found" or the alert counts
    bool hasAlerts = false;
    QList<SummaryLine> summaryField1;
    QList<SummaryLine> summaryField2;
    PrintOutline fonts;
    PrintOutline colors;
    PrintOutline links;
    QList<LinkNote> linkNotes; // one per row of `links`
    QString paraStyles;        // empty unless the paragraph styles are printed
};

// What a report is made from: the judged lists as the result views hold them, the loaded summary
// sections (Document, Fonts, Colors, Links) and the document's name and path.
struct ReportInputs {
    QVariantList fonts;
    QVariantList colors;
    QVariantList links;
    QList<results::QNSummaryItem> summary;
    QString statusLine;
    bool hasAlerts = false;
    QString docName;
    QString docPath;
    QString presetName; // empty: "[Default]"
    QString userName;
    QDateTime reportDate;
    QString paraStyles;
};

// "\t<title>:  <value>", a value "0" shown as "-".
QString summaryRowText(const QString& title, const QString& value);

// The two summary fields. The first holds the Document rows without Name and Path, then Fonts;
// the second Colors then Fonts again. The Links rows are left out: the printed summary has always
// shown the font counts twice and no link counts, and readers compare reports across versions.
QList<SummaryLine> summaryField1(const QList<results::QNSummaryItem>& sections);
QList<SummaryLine> summaryField2(const QList<results::QNSummaryItem>& sections);

// "<full name> • <date and time>" in the medium styles of the user's locale.
QString userLine(const QString& fullName, const QDateTime& when);

// The full name of the user running the program (the login name when the account has none).
QString currentUserFullName();

// The inputs of a document's report from its judged lists and document information: the summary
// loaded from them as the summary view loads it. The preset, user, date and paragraph styles are
// left for the caller.
ReportInputs reportInputs(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                          const inspection::QNDocInfo& docInfo);
// The same with the summary and status a caller has already loaded from those lists.
ReportInputs reportInputs(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                          const inspection::QNDocInfo& docInfo, QList<results::QNSummaryItem> summary,
                          const results::PreflightStatus& status);

// The report made now, by the user running the program, judged by `presetName`.
void stampReport(ReportInputs& inputs, const QString& presetName);

ReportSection reportSection(const ReportInputs& inputs);

// Marks links whose file is used by more than one of the sections with "Multiple documents".
void markSharedLinks(QList<ReportSection>& sections);

} // namespace quillon::reportpdf
