#pragma once

#include "app/Result.h"
#include "app/Settings.h"

#include <QDateTime>
#include <QString>
#include <QVariantList>

namespace quillon::reports {

// The two layouts of the text report: one labelled attribute per line with a blank line between
// items, or a header row and one tab-separated row per item (for spreadsheets).
enum class TextReportType {
    Regular = 0,
    TabDelimited = 1,
};

// The user default holding the title of the layout last chosen in the save panel.
inline const app::SettingKey kTextReportTypeSetting{"textReportType", QString()};

// The records of a result list, a document group (several documents in one list) given as its
// records.
QVariantList flattenedItems(const QVariantList& items);

// The save panel's layout titles, in the order its popup lists them: "Regular", "Tab-delimited".
QStringList textReportTypeTitles();
// The layout of a chosen title: regular when the title contains "Regular", tab-delimited otherwise.
TextReportType textReportTypeForTitle(const QString& title);
// The title the popup preselects: the stored one when it is set, otherwise the first.
QString preselectedTextReportTypeTitle(const app::Settings& settings);
// Keeps the chosen title for the next save panel.
void rememberTextReportTypeTitle(app::Settings& settings, const QString& title);

// What the header says of the document: the texts of the document-information box.
struct ReportDocumentInfo {
    QString docName;
    QString path;
    QString creationDate;
    QString modificationDate;
};

// The text report of one preflighted document: fonts, colours and links as the result lists hold
// them (judged records), and the paragraph-styles text when there is one.
class QNTextReport {
public:
    explicit QNTextReport(TextReportType type = TextReportType::Regular);

    TextReportType textReportType() const { return m_type; }
    const QString& attributeDelimiter() const { return m_attributeDelimiter; }
    const QString& itemDelimiter() const { return m_itemDelimiter; }

    // "<docName>_Quillon_Report.txt".
    static QString reportFileName(const QString& docName);

    // The font and colour status words of the report; "?" for anything else.
    static QString fontStatusForString(const QString& status);
    static QString spotStatusForString(const QString& model);

    // "label: value" in the regular layout, the value alone in the tab layout; "?" when missing.
    QString attribute(const QVariant& value, const QString& label) const;

    // The header, the same in both layouts. `reportDate` is shown in the short date and time
    // styles of the user's locale.
    QString docInfoReport(const ReportDocumentInfo& info, const QDateTime& reportDate) const;
    QString fontsReportFromItems(const QVariantList& items) const;
    QString colorsReportFromItems(const QVariantList& items) const;
    QString linksReportFromItems(const QVariantList& items) const;

    // The whole text: header, fonts, colours, links and, when not empty, the paragraph styles.
    QString reportText(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links,
                       const QString& paraStylesReport, const ReportDocumentInfo& info,
                       const QDateTime& reportDate) const;

    // Writes the report into `folder` as UTF-8 under reportFileName() (numbered when a file of
    // that name is there); returns the file's path.
    app::Result<QString> writeReport(const QString& folder, const QVariantList& fonts, const QVariantList& colors,
                                     const QVariantList& links, const QString& paraStylesReport,
                                     const ReportDocumentInfo& info, const QDateTime& reportDate) const;

    // What happens to a file already at the report's name.
    enum class ExistingFile { Number, Replace };
    // Writes `bytes` as `folder`/`fileName` through a temporary file in the same folder renamed
    // into place, so that a failed write (a full disk) leaves any earlier file whole. An existing
    // file is kept and the report numbered ("<name>_1.txt") unless it is to be replaced. The name
    // is claimed before the write, so that runs writing into one folder never take each other's.
    // Returns the path written.
    static app::Result<QString> saveReportFile(const QByteArray& bytes, const QString& folder, const QString& fileName,
                                               ExistingFile existing);

private:
    struct Column {
        QString key;
        QString header;
        QString label;
    };
    QString section(const QString& title, const QString& emptyMarker, const QVariantList& items,
                    const QList<Column>& columns, QString (*mapValue)(const QString& key, const QVariant& value)) const;

    TextReportType m_type;
    QString m_attributeDelimiter;
    QString m_itemDelimiter;
};

} // namespace quillon::reports
