#pragma once

#include "results/Summary.h"

#include <QAbstractItemModel>
#include <QList>

namespace quillon::ui {

// The summary as an outline: four sections (document, fonts, colours, links), each with its rows
// of title and value; counts of 0 show as "-".
class SummaryModel : public QAbstractItemModel {
    Q_OBJECT

public:
    explicit SummaryModel(QObject* parent = nullptr);

    // Replaces the sections in one go (a reset).
    void setSections(QList<results::QNSummaryItem> sections);
    const QList<results::QNSummaryItem>& sections() const { return m_sections; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    const results::QNSummaryItem* itemAt(const QModelIndex& index) const;

    QList<results::QNSummaryItem> m_sections;
};

} // namespace quillon::ui
