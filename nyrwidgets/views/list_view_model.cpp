// The plain list control's model.
#include <QAbstractItemModel>

#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/list_view_p.h"

Qt::Alignment nyr::views_detail::QtAlignment(int lvcfmt)
{
    switch (lvcfmt) {
    case LVCFMT_RIGHT: return Qt::AlignRight | Qt::AlignVCenter;
    case LVCFMT_CENTER: return Qt::AlignHCenter | Qt::AlignVCenter;
    default: return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

const std::string& CNyrListCtrlModel::Text(int row, int col) const
{
    static const std::string empty;
    const auto& texts = rows[static_cast<std::size_t>(row)].texts;
    return static_cast<std::size_t>(col) < texts.size() ? texts[static_cast<std::size_t>(col)] : empty;
}

int CNyrListCtrlModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

int CNyrListCtrlModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant CNyrListCtrlModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(Text(index.row(), index.column()));
    case Qt::CheckStateRole:
        if (index.column() == 0 && m_view->HasCheckBoxes())
            return rows[static_cast<std::size_t>(index.row())].checked ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            nyr::views_detail::QtAlignment(columns[static_cast<std::size_t>(index.column())].alignment));
    default:
        return {};
    }
}

bool CNyrListCtrlModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole)
        return false;
    rows[static_cast<std::size_t>(index.row())].checked = value.toInt() == Qt::Checked;
    emit dataChanged(index, index, {Qt::CheckStateRole});
    return true;
}

Qt::ItemFlags CNyrListCtrlModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() == 0 && m_view->HasCheckBoxes())
        f |= Qt::ItemIsUserCheckable;
    return f;
}

QVariant CNyrListCtrlModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const Column& c = columns[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole)
        return QString::fromStdString(c.label);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(nyr::views_detail::QtAlignment(c.alignment));
    return {};
}

void CNyrListCtrlModel::InsertColumnAt(int col, Column column)
{
    beginInsertColumns({}, col, col);
    columns.insert(columns.begin() + col, std::move(column));
    for (Row& r : rows) {
        if (static_cast<std::size_t>(col) < r.texts.size())
            r.texts.insert(r.texts.begin() + col, std::string());
    }
    endInsertColumns();
}

void CNyrListCtrlModel::RemoveColumnAt(int col)
{
    beginRemoveColumns({}, col, col);
    columns.erase(columns.begin() + col);
    for (Row& r : rows) {
        if (static_cast<std::size_t>(col) < r.texts.size())
            r.texts.erase(r.texts.begin() + col);
    }
    endRemoveColumns();
}

void CNyrListCtrlModel::InsertRowAt(int row, Row r)
{
    beginInsertRows({}, row, row);
    rows.insert(rows.begin() + row, std::move(r));
    endInsertRows();
}

void CNyrListCtrlModel::RemoveRowAt(int row)
{
    beginRemoveRows({}, row, row);
    rows.erase(rows.begin() + row);
    endRemoveRows();
}

void CNyrListCtrlModel::RemoveAllRows()
{
    beginResetModel();
    rows.clear();
    endResetModel();
}

void CNyrListCtrlModel::CellChanged(int row, int col)
{
    const QModelIndex i = index(row, col);
    emit dataChanged(i, i, {Qt::DisplayRole});
}

void CNyrListCtrlModel::ApplyRowOrder(const std::vector<int>& order)
{
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRowOf(order.size());
    std::vector<Row> sorted;
    sorted.reserve(rows.size());
    for (std::size_t newRow = 0; newRow < order.size(); ++newRow) {
        newRowOf[static_cast<std::size_t>(order[newRow])] = static_cast<int>(newRow);
        sorted.push_back(std::move(rows[static_cast<std::size_t>(order[newRow])]));
    }
    rows = std::move(sorted);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& i : from)
        to.append(index(newRowOf[static_cast<std::size_t>(i.row())], i.column()));
    changePersistentIndexList(from, to);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}
