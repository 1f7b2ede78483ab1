#include "ui/SummaryModel.h"

#include <QFont>

#include <utility>

namespace quillon::ui {

namespace {

// Rows of a section carry the section's row plus one as internal id; sections carry 0.
constexpr quintptr kSection = 0;
const QString kColumns[] = {QStringLiteral("title"), QStringLiteral("value")};

} // namespace

SummaryModel::SummaryModel(QObject* parent) : QAbstractItemModel(parent)
{
    results::QNSummaryOutlineController empty;
    empty.startup();
    m_sections = empty.items();
}

void SummaryModel::setSections(QList<results::QNSummaryItem> sections)
{
    beginResetModel();
    m_sections = std::move(sections);
    endResetModel();
}

const results::QNSummaryItem* SummaryModel::itemAt(const QModelIndex& index) const
{
    if (!index.isValid())
        return nullptr;
    if (index.internalId() == kSection)
        return index.row() < m_sections.size() ? &m_sections.at(index.row()) : nullptr;
    const qsizetype section = qsizetype(index.internalId() - 1);
    if (section >= m_sections.size() || index.row() >= m_sections.at(section).children.size())
        return nullptr;
    return &m_sections.at(section).children.at(index.row());
}

QModelIndex SummaryModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= columnCount() || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : kSection);
}

QModelIndex SummaryModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == kSection)
        return {};
    return createIndex(int(child.internalId() - 1), 0, kSection);
}

int SummaryModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_sections.size());
    if (parent.column() != 0 || parent.internalId() != kSection)
        return 0;
    const results::QNSummaryItem* item = itemAt(parent);
    return item ? int(item->children.size()) : 0;
}

int SummaryModel::columnCount(const QModelIndex& parent) const
{
    (void)parent;
    return int(std::size(kColumns));
}

QVariant SummaryModel::data(const QModelIndex& index, int role) const
{
    const results::QNSummaryItem* item = itemAt(index);
    if (!item)
        return {};
    const bool section = index.internalId() == kSection;
    switch (role) {
    case Qt::DisplayRole:
        if (section && index.column() == 1)
            return QString();
        return results::QNSummaryOutlineController::objectValueForColumn(*item, kColumns[index.column()]);
    case Qt::ToolTipRole:
        return index.column() == 1 && !section ? QVariant(item->value) : QVariant();
    case Qt::FontRole: {
        QFont font;
        font.setPointSizeF(font.pointSizeF() - 1);
        font.setBold(section);
        return font;
    }
    default:
        return {};
    }
}

QVariant SummaryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
        return {};
    return section == 0 ? QStringLiteral("SUMMARY") : QString();
}

} // namespace quillon::ui
