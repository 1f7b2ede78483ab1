#pragma once

#include <QVariantList>
#include <QWidget>

class QLabel;
class QStackedLayout;
class QStandardItemModel;
class QTableView;

namespace quillon::ui {

// The selected link's metadata: a two-column table of readable tag names and values, each
// section ("EXIF", "TIFF", "IPTC", "GPS") opened by a header row across both columns.
class MetadataPane : public QWidget {
    Q_OBJECT

public:
    explicit MetadataPane(QWidget* parent = nullptr);

    QTableView* table() const { return m_table; }
    // Rows as shown: tag and value texts; a header row has an empty value.
    QList<QStringList> shownRows() const;
    bool isHeaderRow(int row) const;

public Q_SLOTS:
    // Shows a copy of the rows when there is a path and at least one row; else empties the table.
    void setMetadataForFile(const QString& path, const QVariantList& rows);

private:
    QStandardItemModel* m_model;
    QTableView* m_table;
    QLabel* m_empty; // shown instead of an empty table
    QStackedLayout* m_stack;
};

} // namespace quillon::ui
