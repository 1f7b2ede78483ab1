#pragma once

#include <QStyledItemDelegate>

namespace quillon::ui {

// Draws what the result cells add to Qt's own: a border round a judged picture, and a pull-down
// arrow on the cells that list fonts or spot colours, whose lines a click shows in a menu (the
// first line red when the column has an alert).
class ResultDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace quillon::ui
