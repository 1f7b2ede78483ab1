#include "ui/MetadataPane.h"

#include "app/Log.h"
#include "fileinspect/PXMetadataController.h"

#include <QHeaderView>
#include <QLabel>
#include <QStackedLayout>
#include <QStandardItemModel>
#include <QTableView>

namespace quillon::ui {

namespace {

constexpr int kHeaderRole = Qt::UserRole + 1;

QList<QStandardItem*> headerRow(const QString& section, const QPalette& palette)
{
    auto* item = new QStandardItem(section);
    QFont font = item->font();
    font.setBold(true);
    item->setFont(font);
    const QColor band = palette.color(QPalette::Midlight).darker(108);
    item->setBackground(band);
    item->setForeground(palette.color(QPalette::Text));
    item->setData(true, kHeaderRole);
    auto* rest = new QStandardItem;
    rest->setBackground(band);
    rest->setData(true, kHeaderRole);
    return {item, rest};
}

} // namespace

MetadataPane::MetadataPane(QWidget* parent)
    : QWidget(parent), m_model(new QStandardItemModel(0, 2, this)), m_table(new QTableView),
      m_empty(new QLabel(QStringLiteral("No metadata"))), m_stack(new QStackedLayout(this))
{
    m_model->setHorizontalHeaderLabels({QStringLiteral("Tag"), QStringLiteral("Value")});
    m_table->setModel(m_model);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setShowGrid(false);
    m_table->setFocusPolicy(Qt::NoFocus);
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(18);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setEnabled(false);
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_table);
}

void MetadataPane::setMetadataForFile(const QString& path, const QVariantList& rows)
{
    app::logLine(QStringLiteral("-> setMetadataForFile: %1").arg(rows.size()));
    m_table->clearSpans();
    m_model->removeRows(0, m_model->rowCount());
    m_stack->setCurrentWidget(m_empty);
    if (path.isEmpty() || rows.isEmpty())
        return;
    m_stack->setCurrentWidget(m_table);
    for (const QVariant& value : rows) {
        const QVariantMap row = value.toMap();
        const QString tag = row.value(fileinspect::metadatakeys::kTag).toString();
        if (fileinspect::isMetadataHeaderRow(row)) {
            m_model->appendRow(headerRow(tag, palette()));
            m_table->setSpan(m_model->rowCount() - 1, 0, 1, 2);
            continue;
        }
        auto* name = new QStandardItem(tag.trimmed());
        name->setForeground(palette().color(QPalette::PlaceholderText));
        auto* text = new QStandardItem(fileinspect::metadataValueText(row.value(fileinspect::metadatakeys::kValue)));
        text->setToolTip(text->text());
        m_model->appendRow({name, text});
    }
    m_table->setCurrentIndex({});
}

QList<QStringList> MetadataPane::shownRows() const
{
    QList<QStringList> shown;
    for (int row = 0; row < m_model->rowCount(); ++row)
        shown.append({m_model->item(row, 0)->text(), m_model->item(row, 1)->text()});
    return shown;
}

bool MetadataPane::isHeaderRow(int row) const
{
    return m_model->item(row, 0)->data(kHeaderRole).toBool() && m_table->columnSpan(row, 0) == 2;
}

} // namespace quillon::ui
