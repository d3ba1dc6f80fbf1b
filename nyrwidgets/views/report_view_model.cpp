// The screen side of CNyrReportView: every answer is computed from the view's
// maps and the items' hooks when Qt asks for it.
#include <QBrush>
#include <QColor>

#include "nyrwidgets/views/list_view_p.h"
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::Ix;
using RealItem = nyr::views_detail::RealItem;
using ScreenItem = nyr::views_detail::ScreenItem;
using RealCol = nyr::views_detail::RealCol;
using ScreenCol = nyr::views_detail::ScreenCol;

namespace {

QColor FromRgb(unsigned int rgb)
{
    return QColor(static_cast<int>(rgb & 0xFFu), static_cast<int>((rgb >> 8) & 0xFFu),
                  static_cast<int>((rgb >> 16) & 0xFFu));
}

}  // namespace

int CNyrReportViewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(d.screenToRealItem.size());
}

int CNyrReportViewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(d.screenToRealCol.size());
}

QVariant CNyrReportViewModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !d.ValidScreen(index.row()) || !d.ValidScreenCol(index.column()))
        return {};
    const auto screenItem = static_cast<ScreenItem>(index.row());
    const auto screenCol = static_cast<ScreenCol>(index.column());
    const RealItem realItem = d.RealOf(screenItem);
    const RealCol realCol = d.RealColOf(screenCol);
    CNyrReportViewItem* item = d.Item(realItem);

    switch (role) {
    case Qt::DisplayRole: {
        std::string text;
        nyr::views_detail::CellText(*item, realCol, screenCol, text);
        return QString::fromStdString(text);
    }
    case Qt::CheckStateRole:
        if (Ix(screenCol) == 0 && d.q->HasCheckBoxes())
            return item->IsChecked() ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::DecorationRole: {
        const int image = item->OnGetItemImage(Ix(realCol), Ix(screenCol));
        const std::vector<QIcon>& images = d.q->GetImageList();
        if (image >= 0 && static_cast<std::size_t>(image) < images.size())
            return images[static_cast<std::size_t>(image)];
        return {};
    }
    case Qt::ToolTipRole: {
        std::string text;
        if (item->OnGetItemToolTip(Ix(realCol), Ix(screenCol), text))
            return QString::fromStdString(text);
        return {};
    }
    case Qt::ForegroundRole:
    case Qt::BackgroundRole: {
        unsigned int textColor = NYR_CLR_DEFAULT;
        unsigned int backColor = NYR_CLR_DEFAULT;
        item->OnGetItemColor(Ix(realItem), Ix(screenItem), Ix(realCol), Ix(screenCol), textColor, backColor);
        const unsigned int color = role == Qt::ForegroundRole ? textColor : backColor;
        if (color == NYR_CLR_DEFAULT)
            return {};
        return QBrush(FromRgb(color));
    }
    case Qt::TextAlignmentRole:
        return static_cast<int>(nyr::views_detail::QtAlignment(d.Col(realCol)->GetAlignment()));
    default:
        return {};
    }
}

bool CNyrReportViewModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || !index.isValid() || !d.ValidScreen(index.row()))
        return false;
    // A click on the check box: a user action, so it notifies.
    d.q->CheckRealItem(Ix(d.RealOf(static_cast<ScreenItem>(index.row()))), value.toInt() == Qt::Checked ? 1 : 0, 1);
    return true;
}

Qt::ItemFlags CNyrReportViewModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !d.ValidScreen(index.row()))
        return Qt::NoItemFlags;
    // A disabled item is greyed, cannot be selected and takes no clicks.
    if (d.Item(d.RealOf(static_cast<ScreenItem>(index.row())))->IsDisabled())
        return Qt::ItemNeverHasChildren;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() == 0 && d.q->HasCheckBoxes())
        f |= Qt::ItemIsUserCheckable;
    return f;
}

QVariant CNyrReportViewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || !d.ValidScreenCol(section))
        return {};
    const CNyrReportViewCol* col = d.Col(d.RealColOf(static_cast<ScreenCol>(section)));
    if (role == Qt::DisplayRole)
        return QString::fromStdString(col->GetLabel());
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(nyr::views_detail::QtAlignment(col->GetAlignment()));
    return {};
}

void CNyrReportViewDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    if (index.isValid() && d.ValidScreen(index.row()) && d.ValidScreenCol(index.column())) {
        const auto screenItem = static_cast<ScreenItem>(index.row());
        const auto screenCol = static_cast<ScreenCol>(index.column());
        const RealItem realItem = d.RealOf(screenItem);
        if (d.Item(realItem)->OnGetItemOwnerDraw(Ix(realItem), Ix(screenItem), Ix(d.RealColOf(screenCol)),
                                                 Ix(screenCol), painter, option))
            return;
    }
    QStyledItemDelegate::paint(painter, option, index);
}
