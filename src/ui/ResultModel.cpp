#include "ui/ResultModel.h"

#include "app/RecordKeys.h"
#include "ui/Icons.h"

#include <QColor>

#include <utility>

namespace quillon::ui {

namespace {

// Children carry their group's row plus one as internal id; top-level rows carry 0.
constexpr quintptr kTopLevel = 0;

// The map a row holds, read in place: the views ask for every visible cell many times.
const QVariantMap* mapIn(const QVariant& value)
{
    return value.metaType() == QMetaType::fromType<QVariantMap>() ? static_cast<const QVariantMap*>(value.constData())
                                                                  : nullptr;
}

} // namespace

ResultModel::ResultModel(QString headerWord, QList<ResultColumn> columns, QObject* parent)
    : QAbstractItemModel(parent), m_headerWord(std::move(headerWord)), m_columns(std::move(columns))
{
}

void ResultModel::setRows(QVariantList rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    if (!m_sort.isEmpty())
        results::sortRows(m_rows, m_sort);
    endResetModel();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, 0);
}

int ResultModel::columnOf(const QString& key) const
{
    for (int i = 0; i < m_columns.size(); ++i)
        if (m_columns.at(i).key == key)
            return i;
    return -1;
}

const QVariantMap* ResultModel::rowAt(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != this)
        return nullptr;
    if (index.internalId() == kTopLevel) {
        if (index.row() >= m_rows.size())
            return nullptr;
        return mapIn(m_rows.at(index.row()));
    }
    const qsizetype groupRow = qsizetype(index.internalId() - 1);
    if (groupRow >= m_rows.size())
        return nullptr;
    const QVariantMap* group = mapIn(m_rows.at(groupRow));
    const auto children = group ? group->constFind(app::kGroupChildrenKey) : QVariantMap::const_iterator();
    if (!group || children == group->constEnd() || children->metaType() != QMetaType::fromType<QVariantList>())
        return nullptr;
    const auto* list = static_cast<const QVariantList*>(children->constData());
    return index.row() < list->size() ? mapIn(list->at(index.row())) : nullptr;
}

QVariantMap ResultModel::record(const QModelIndex& index) const
{
    const QVariantMap* row = rowAt(index);
    return row ? *row : QVariantMap();
}

bool ResultModel::isGroup(const QModelIndex& index) const
{
    const QVariantMap* row = rowAt(index);
    return row && index.internalId() == kTopLevel && results::isGroupRow(*row);
}

void ResultModel::replaceRecord(const QModelIndex& index, const QVariantMap& record)
{
    if (!rowAt(index))
        return;
    replaceRecordIn(m_rows, index.parent().isValid() ? index.parent().row() : -1, index.row(), record);
    Q_EMIT dataChanged(index.siblingAtColumn(0), index.siblingAtColumn(int(m_columns.size()) - 1));
}

void replaceRecordIn(QVariantList& rows, int groupRow, int row, const QVariantMap& record)
{
    if (groupRow < 0) {
        if (row >= 0 && row < rows.size())
            rows[row] = record;
        return;
    }
    if (groupRow >= rows.size())
        return;
    QVariantMap group = results::takeMap(rows[groupRow]);
    QVariantList children = results::takeList(group[app::kGroupChildrenKey]);
    if (row >= 0 && row < children.size())
        children[row] = record;
    group.insert(app::kGroupChildrenKey, children);
    rows[groupRow] = group;
}

QModelIndex ResultModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= m_columns.size() || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : kTopLevel);
}

QModelIndex ResultModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == kTopLevel)
        return {};
    return createIndex(int(child.internalId() - 1), 0, kTopLevel);
}

int ResultModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_rows.size());
    if (parent.column() != 0 || !isGroup(parent))
        return 0;
    return int(rowAt(parent)->value(app::kGroupChildrenKey).toList().size());
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    (void)parent;
    return int(m_columns.size());
}

bool ResultModel::hasChildren(const QModelIndex& parent) const
{
    return rowCount(parent) > 0;
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    const QVariantMap* row = rowAt(index);
    if (!row || index.column() >= m_columns.size())
        return {};
    const ResultColumn& column = m_columns.at(index.column());
    if (role == RecordRole)
        return *row;
    if (role == ColumnKeyRole)
        return column.key;
    if (isGroup(index))
        return groupData(*row, index.column(), role);
    return recordData(*row, column, role);
}

QVariant ResultModel::groupData(const QVariantMap& group, int column, int role) const
{
    if (column != 0)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return group.value(app::kGroupNameKey).toString();
    case Qt::ToolTipRole:
        return group.value(app::kGroupDocPathKey).toString();
    case Qt::FontRole: {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    default:
        return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size())
        return {};
    const ResultColumn& column = m_columns.at(section);
    switch (role) {
    case Qt::DisplayRole:
        return section == 0 ? results::listHeaderTitle(m_headerWord, m_rows.size()) : column.title;
    case Qt::DecorationRole:
        return column.headerImage.isEmpty() ? QVariant() : QVariant(namedIcon(column.headerImage));
    case Qt::ToolTipRole:
        return column.headerToolTip.isEmpty() ? QVariant() : QVariant(column.headerToolTip);
    case ImageNameRole:
        return column.headerImage;
    case ColumnKeyRole:
        return column.key;
    default:
        return {};
    }
}

void ResultModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= m_columns.size()) {
        m_sort.clear(); // rows loaded later keep the order they come in
        return;
    }
    const ResultColumn& chosen = m_columns.at(column);
    m_sort = {{chosen.sortKey.isEmpty() ? chosen.key : chosen.sortKey, order == Qt::AscendingOrder, chosen.comparison}};
    beginResetModel();
    results::sortRows(m_rows, m_sort);
    endResetModel();
}

QVariant ResultModel::foregroundFor(bool alerted)
{
    return alerted ? QVariant(QColor(0xCC, 0x10, 0x10)) : QVariant();
}

QVariant ResultModel::imageDataFor(const QString& imageName, int role)
{
    const bool shown = !imageName.isEmpty() && imageName != QLatin1String("blank");
    if (role == ImageNameRole)
        return shown ? imageName : QString();
    if (role == Qt::DecorationRole && shown)
        return namedIcon(imageName);
    return {};
}

} // namespace quillon::ui
