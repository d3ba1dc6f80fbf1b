#include "nyrwidgets/views/header_ctrl_sort.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionHeader>
#include <algorithm>

struct CNyrHeaderCtrlSort::Private
{
    std::vector<SORT_COL> columns;  // in rank order: columns[0] is the primary key
};

namespace {

// Pixels, right to left from the section edge: margin, arrow, rank gap, the
// rank, label gap, the label. The rank sits close to its arrow and well clear
// of the label, so that "Northing [m]" and rank 2 do not read "Northing [m]2".
constexpr int kMarkMargin = 4;
constexpr int kMarkWidth = 9;
constexpr int kRankGap = 2;
constexpr int kLabelGap = 8;

}  // namespace

CNyrHeaderCtrlSort::CNyrHeaderCtrlSort(QWidget* parent) : QHeaderView(Qt::Horizontal, parent), d(new Private)
{
    setSectionsClickable(true);
    setSectionsMovable(true);
    setHighlightSections(false);
    setSortIndicatorShown(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
}

CNyrHeaderCtrlSort::~CNyrHeaderCtrlSort() = default;

void CNyrHeaderCtrlSort::SetSortColumns(const std::vector<SORT_COL>& columns)
{
    d->columns = columns;
    UpdateCurrentSortedColumns();
}

void CNyrHeaderCtrlSort::SetSortColumn(int column, int ascending)
{
    SetSortColumns({SORT_COL{column, ascending}});
}

void CNyrHeaderCtrlSort::NoSort()
{
    SetSortColumns({});
}

const std::vector<CNyrHeaderCtrlSort::SORT_COL>& CNyrHeaderCtrlSort::GetSortColumns() const
{
    return d->columns;
}

void CNyrHeaderCtrlSort::UpdateCurrentSortedColumns()
{
    viewport()->update();
}

QSize CNyrHeaderCtrlSort::sectionSizeFromContents(int logicalIndex) const
{
    QSize size = QHeaderView::sectionSizeFromContents(logicalIndex);
    size.rwidth() += kMarkMargin + kMarkWidth + kRankGap + fontMetrics().horizontalAdvance(QLatin1Char('3')) + kLabelGap;
    return size;
}

void CNyrHeaderCtrlSort::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    std::size_t rank = 0;
    while (rank < d->columns.size() && d->columns[rank].column != logicalIndex)
        ++rank;
    if (rank == d->columns.size()) {
        QHeaderView::paintSection(painter, rect, logicalIndex);
        return;
    }
    // The section as usual, its label narrowed so that it ends a label gap
    // before the rank (or the arrow).
    const bool showRank = d->columns.size() > 1;
    const QString rankText = showRank ? QString::number(rank + 1) : QString();
    const int arrowLeft = rect.right() + 1 - kMarkMargin - kMarkWidth;
    const int rankWidth = showRank ? fontMetrics().horizontalAdvance(rankText) : 0;
    const int rankLeft = showRank ? arrowLeft - kRankGap - rankWidth : arrowLeft;
    QStyleOptionHeader opt;
    initStyleOption(&opt);
    initStyleOptionForIndex(&opt, logicalIndex);
    opt.rect = rect;
    painter->save();
    style()->drawControl(QStyle::CE_HeaderSection, &opt, painter, this);
    QStyleOptionHeader label = opt;
    label.rect = style()->subElementRect(QStyle::SE_HeaderLabel, &opt, this);
    label.rect.setRight(std::min(label.rect.right(), rankLeft - kLabelGap - 1));
    if (label.rect.width() > 0)
        style()->drawControl(QStyle::CE_HeaderLabel, &label, painter, this);
    painter->restore();
    if (rankLeft < rect.left() + kMarkMargin)
        return;

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QColor color = palette().color(QPalette::ButtonText);
    const int cy = rect.center().y();
    const int half = kMarkWidth / 2;
    QPainterPath arrow;
    const int ax = arrowLeft;
    if (d->columns[rank].ascending) {
        arrow.moveTo(ax, cy + half / 2 + 1);
        arrow.lineTo(ax + kMarkWidth, cy + half / 2 + 1);
        arrow.lineTo(ax + half + 0.5, cy - half / 2 - 1);
    } else {
        arrow.moveTo(ax, cy - half / 2 - 1);
        arrow.lineTo(ax + kMarkWidth, cy - half / 2 - 1);
        arrow.lineTo(ax + half + 0.5, cy + half / 2 + 1);
    }
    arrow.closeSubpath();
    painter->fillPath(arrow, color);
    if (showRank) {
        painter->setPen(color);
        painter->drawText(QRect(rankLeft, rect.top(), rankWidth, rect.height()), Qt::AlignCenter, rankText);
    }
    painter->restore();
}
