#include "ui/ResultDelegate.h"

#include "ui/ResultModel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWidgetAction>

namespace quillon::ui {

namespace {

constexpr int kArrowWidth = 10;

} // namespace

void ResultDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    // A colour sample gets a thin frame, so white and light samples show on a white row.
    if (const QVariant sample = index.data(Qt::DecorationRole); sample.metaType() == QMetaType::fromType<QColor>()) {
        QPixmap swatch(option->decorationSize);
        swatch.fill(Qt::transparent);
        const QColor colour = sample.value<QColor>();
        if (colour.alpha() > 0) {
            QPainter painter(&swatch);
            painter.setPen(QColor(0x80, 0x80, 0x80));
            painter.setBrush(colour);
            painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
        }
        option->icon = QIcon(swatch);
    }
    // Picture-only cells centre their picture.
    if (option->text.isEmpty() && !option->icon.isNull()) {
        option->decorationAlignment = Qt::AlignCenter;
        option->decorationPosition = QStyleOptionViewItem::Top;
        option->displayAlignment = Qt::AlignCenter;
    }
    if (!index.data(PullDownItemsRole).toStringList().isEmpty())
        option->rect.adjust(0, 0, -kArrowWidth, 0);
}

void ResultDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const QVariant border = index.data(BorderColorRole);
    if (border.isValid()) {
        painter->save();
        painter->setPen(QPen(border.value<QColor>(), 1));
        painter->drawRect(option.rect.adjusted(2, 1, -3, -2));
        painter->restore();
    }
    if (!index.data(PullDownItemsRole).toStringList().isEmpty()) {
        QStyleOption arrow;
        arrow.rect = QRect(option.rect.right() - kArrowWidth, option.rect.top(), kArrowWidth, option.rect.height());
        arrow.palette = option.palette;
        const QWidget* widget = option.widget;
        (widget ? widget->style() : QApplication::style())
            ->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, painter, widget);
    }
}

bool ResultDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                                 const QModelIndex& index)
{
    const QStringList lines = index.data(PullDownItemsRole).toStringList();
    if (event->type() != QEvent::MouseButtonRelease || lines.isEmpty())
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const auto* click = static_cast<QMouseEvent*>(event);
    if (click->button() != Qt::LeftButton)
        return false;
    QMenu menu;
    qsizetype next = 0;
    if (index.data(Qt::ForegroundRole).isValid()) {
        auto* first = new QWidgetAction(&menu);
        auto* label = new QLabel(lines.first(), &menu);
        label->setStyleSheet(QStringLiteral("color: #cc1010; padding: 3px 18px;"));
        first->setDefaultWidget(label);
        menu.addAction(first);
        next = 1;
    }
    for (; next < lines.size(); ++next)
        menu.addAction(lines.at(next));
    auto* view = qobject_cast<QAbstractItemView*>(parent());
    const QPoint at =
        view ? view->viewport()->mapToGlobal(option.rect.bottomLeft()) : click->globalPosition().toPoint();
    menu.exec(at);
    return true;
}

} // namespace quillon::ui
