#pragma once

#include "results/ResultRows.h"

#include <QAbstractItemModel>
#include <QFont>
#include <QList>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::ui {

// What a result cell tells its delegate and the tests beyond Qt's own roles.
enum ResultRole {
    RecordRole = Qt::UserRole + 1, // QVariantMap: the row's record (a group row for a document)
    ImageNameRole,                 // QString: the image name the cell shows, "" for none
    BorderColorRole,               // QColor: a border drawn round the cell, invalid for none
    PullDownItemsRole,             // QStringList: the lines of a pull-down cell, empty for none
    ColumnKeyRole,                 // QString: the column's identifier (a record key)
};

// One column of a result list: its identifier is the record key it shows.
struct ResultColumn {
    QString key;
    QString title; // header text; the first column's header counts the rows instead
    QString headerImage;
    QString headerToolTip;
    QString sortKey; // the record key the column sorts by (its own when empty)
    results::SortDescriptor::Comparison comparison = results::SortDescriptor::Comparison::CaseInsensitive;
    bool imageOnly = false; // shows a picture and no text
    int width = 80;         // its first width in pixels
};

// A result list as an outline: top-level rows (records, or document groups whose children are the
// document's records) over the judged rows of the lower layer. The cells of each list are its
// subclass's business; sorting, structure and headers are shared.
class ResultModel : public QAbstractItemModel {
    Q_OBJECT

public:
    ResultModel(QString headerWord, QList<ResultColumn> columns, QObject* parent = nullptr);

    // Replaces every row in one go (a reset).
    void setRows(QVariantList rows);
    const QVariantList& rows() const { return m_rows; }
    const QList<ResultColumn>& columns() const { return m_columns; }
    int columnOf(const QString& key) const;
    QVariantMap record(const QModelIndex& index) const;
    bool isGroup(const QModelIndex& index) const;
    // Puts `record` in the place of the row at `index` (a record that learnt something, such as
    // its metadata).
    void replaceRecord(const QModelIndex& index, const QVariantMap& record);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Sorts the top-level rows (a group's children keep their order) and resets the view.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    // The last sort the user chose, applied again to rows loaded later; empty when none.
    const QList<results::SortDescriptor>& sortDescriptors() const { return m_sort; }

protected:
    // A record cell's value for a role; `column` is one of columns().
    virtual QVariant recordData(const QVariantMap& record, const ResultColumn& column, int role) const = 0;
    // A document group's cell: its name in the first column.
    QVariant groupData(const QVariantMap& group, int column, int role) const;

public:
    // Red for alert text, the palette's text colour otherwise.
    static QVariant foregroundFor(bool alerted);
    // A picture cell: the icon of the image name, or nothing for "blank" and "".
    static QVariant imageDataFor(const QString& imageName, int role);

private:
    const QVariantMap* rowAt(const QModelIndex& index) const;

    QString m_headerWord;
    QList<ResultColumn> m_columns;
    QVariantList m_rows;
    QList<results::SortDescriptor> m_sort;
};

// Puts `record` in the place of row `row` of `rows` (of the children of group `groupRow` unless
// it is -1); nothing when there is no such row.
void replaceRecordIn(QVariantList& rows, int groupRow, int row, const QVariantMap& record);

} // namespace quillon::ui
