#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

namespace quillon::results {

// What the font, colour and link lists share: loading a data file into rows, the alert
// decoration, tool tips, the rows a user acts on, and sorting.

// Judges the records of one document: given the document's dictionary from the data file
// ("children" and whatever else the file keeps per document), returns its judged records.
using DocumentJudge = std::function<QVariantList(QVariantMap documentDict)>;

// The rows of a data file: with exactly one document its judged records (a flat list);
// otherwise one group row per document in key order ("docPath", "name" = the path's last
// component, "isDock" = 1, "children" = its judged records). A data file handed over (moved in)
// hands its records on without copying them.
QVariantList loadResultRows(QVariantMap dataFile, const DocumentJudge& judge);

// The map or list a value holds, taken out of it: no copy when nothing else shares it (the value
// is left empty). A value of another type is converted.
QVariantMap takeMap(QVariant& value);
QVariantList takeList(QVariant& value);

// The dictionary of a data file in `folder`; empty (and logged) when the file is missing or
// unreadable.
QVariantMap readDataFile(const QString& folder, const QString& fileName);

// "FONTS • 12": the list's word, the bullet and the number of top-level rows.
QString listHeaderTitle(const QString& word, qsizetype rowCount);

// Whether a row is a document group ("isDock" true).
bool isGroupRow(const QVariantMap& row);
// The records of a list, the children of document groups in their place.
QVariantList flatRecords(const QVariantList& rows);

// Whether a judged record has any alert, or one on `key`.
bool hasAlerts(const QVariantMap& record);
bool hasAlertFor(const QVariantMap& record, const QString& key);

// The texts of one attribute's alerts: an array of texts, or a single text counting as one.
QStringList alertTexts(const QVariant& alerts);

// The tool tip of a record's alerts: per attribute (dictionary order) its texts joined by
// "\n", and those blocks joined by "\n"; attributes without texts are left out.
QString allAlertsOfItemForToolTip(const QVariantMap& alerts);
QString alertsOfAttributeForToolTip(const QStringList& alerts);

// Sets "alert" and "alertName" from whether "alerts" is empty: `alertImage` ("warning") and
// "warning" when there are alerts, "blank" and "" otherwise.
void setAlertDecoration(QVariantMap& record, const QString& alertImage);

// The rows of an outline as its user sees and selects them.
struct OutlineSelection {
    QVariantList rows;         // the record shown at each outline row, in row order
    QList<qsizetype> selected; // indexes of the selected rows
    qsizetype clickedRow = -1; // the right-clicked row, -1 when none
    bool clickedOutsideSelection() const { return clickedRow >= 0 && !selected.contains(clickedRow); }
};

// One sort key of a list, as the user chose it by clicking a column header.
struct SortDescriptor {
    enum class Comparison {
        Plain, // numbers by value, texts by code point
        CaseInsensitive,
        Natural, // case-insensitive with digit runs compared as numbers ("Page 9" < "page 10")
    };
    QString key;
    bool ascending = true;
    Comparison comparison = Comparison::Plain;
};

// Sorts rows by the descriptors, first descriptor first; stable, absent values first.
void sortRows(QVariantList& rows, const QList<SortDescriptor>& descriptors);

// The records a context-menu command acts on: with a right-clicked row outside the selection that
// row alone (taken from `clickedRows` by its row number), else the selected rows in row order;
// only records `accept` takes. Nothing without rows, or without a selection and a click.
QVariantList rowsToActOn(const OutlineSelection& selection, const QVariantList& clickedRows,
                         const std::function<bool(const QVariantMap& record)>& accept);

// What the font, colour and link lists share: the top-level rows and the header that counts them.
class ResultList {
public:
    const QVariantList& items() const { return m_items; }
    void clear() { m_items.clear(); }
    // "FONTS • n", "COLORS • n", "LINKS • n" with the number of top-level rows.
    QString headerTitle() const { return listHeaderTitle(m_headerWord, m_items.size()); }
    // Sorts the top-level rows; a group's children keep their order.
    void sortItems(const QList<SortDescriptor>& descriptors) { sortRows(m_items, descriptors); }

protected:
    explicit ResultList(QString headerWord) : m_headerWord(std::move(headerWord)) {}

    QString m_headerWord;
    QVariantList m_items;
};

} // namespace quillon::results
