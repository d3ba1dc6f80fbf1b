// The real columns of CNyrReportView and the screen columns that show the
// visible ones.
#include <QFontMetrics>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "nyr/frame/resource_module.h"
#include "nyr/views/stored_layout_p.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::Ix;
using nyr::views_detail::IxInt;
using nyr::views_detail::kOffScreenCol;
using RealCol = nyr::views_detail::RealCol;
using ScreenCol = nyr::views_detail::ScreenCol;

// ---------------------------------------------------------------------------
// Screen columns

void CNyrReportViewPrivate::AdoptColumn(CNyrReportViewCol& col, RealCol r)
{
    col.m_owner = q;
    col.m_orderDefault = IxInt(r);
}

void CNyrReportViewPrivate::InsertScreenCol(RealCol r)
{
    // After every visible column of a smaller real index.
    const auto pos = static_cast<int>(std::lower_bound(screenToRealCol.begin(), screenToRealCol.end(), r) -
                                      screenToRealCol.begin());
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        model->beginInsertColumns({}, pos, pos);
        screenToRealCol.insert(screenToRealCol.begin() + pos, r);
        RenumberCols();
        model->endInsertColumns();
    }
    q->horizontalHeader()->resizeSection(pos, Col(r)->GetWidth());
    ScreenColsChanged();
}

void CNyrReportViewPrivate::RemoveScreenCol(RealCol r)
{
    const ScreenCol s = realToScreenCol[Ix(r)];
    if (s == kOffScreenCol)
        return;
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        model->beginRemoveColumns({}, IxInt(s), IxInt(s));
        screenToRealCol.erase(screenToRealCol.begin() + Ix(s));
        RenumberCols();
        model->endRemoveColumns();
    }
    ScreenColsChanged();
}

void CNyrReportViewPrivate::SetScreenCols(std::vector<RealCol> visible)
{
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        if (!screenToRealCol.empty()) {
            model->beginRemoveColumns({}, 0, static_cast<int>(screenToRealCol.size()) - 1);
            screenToRealCol.clear();
            RenumberCols();
            model->endRemoveColumns();
        }
        if (!visible.empty()) {
            model->beginInsertColumns({}, 0, static_cast<int>(visible.size()) - 1);
            screenToRealCol = std::move(visible);
            RenumberCols();
            model->endInsertColumns();
        }
    }
    for (std::size_t s = 0; s < screenToRealCol.size(); ++s)
        q->horizontalHeader()->resizeSection(static_cast<int>(s), Col(screenToRealCol[s])->GetWidth());
}

void CNyrReportViewPrivate::ScreenColsChanged()
{
    ResyncQtSelection();
    UpdateSortMarks();
}

void CNyrReportViewPrivate::OnColumnChanged(const CNyrReportViewCol& col, bool width)
{
    for (std::size_t c = 0; c < cols.size(); ++c) {
        if (cols[c].get() != &col || realToScreenCol[c] == kOffScreenCol)
            continue;
        const int s = IxInt(realToScreenCol[c]);
        if (width)
            q->horizontalHeader()->resizeSection(s, col.GetWidth());
        else
            model->headerDataChanged(Qt::Horizontal, s, s);
        q->viewport()->update();
    }
}

// ---------------------------------------------------------------------------
// Adding

unsigned int CNyrReportView::AddRealCol(CNyrReportViewCol* col)
{
    if (!col || std::any_of(d->cols.begin(), d->cols.end(), [col](const auto& c) { return c.get() == col; }))
        return NYR_NO_INDEX;
    const auto r = static_cast<RealCol>(d->cols.size());
    d->AdoptColumn(*col, r);
    d->cols.emplace_back(col);
    d->realToScreenCol.push_back(kOffScreenCol);
    if (col->IsVisible())
        d->InsertScreenCol(r);
    return Ix(r);
}

namespace {

std::vector<int> Values(const int* values, unsigned int count)
{
    return values ? std::vector<int>(values, values + count) : std::vector<int>();
}

int At(const std::vector<int>& values, std::size_t i, int fallback)
{
    return i < values.size() ? values[i] : fallback;
}

std::vector<unsigned int> Ids(unsigned int first, unsigned int count)
{
    std::vector<unsigned int> ids(count);
    for (unsigned int i = 0; i < count; ++i)
        ids[i] = first + i;
    return ids;
}

}  // namespace

int CNyrReportView::AddRealCols(const std::vector<std::string>& labels, const std::vector<int>& widths,
                                const std::vector<int>& alignments, const std::vector<int>& hiddenDefaults)
{
    for (std::size_t i = 0; i < labels.size(); ++i) {
        AddRealCol(new CNyrReportViewCol(this, At(hiddenDefaults, i, 0), labels[i], At(alignments, i, LVCFMT_LEFT),
                                         At(widths, i, 80)));
    }
    return static_cast<int>(labels.size());
}

int CNyrReportView::AddRealCols(const char* const* labels, unsigned int count, const int* widths,
                                const int* alignments, const int* hiddenDefaults)
{
    if (!labels)
        return 0;
    std::vector<std::string> texts;
    for (unsigned int i = 0; i < count; ++i)
        texts.emplace_back(labels[i] ? labels[i] : "");
    return AddRealCols(texts, Values(widths, count), Values(alignments, count), Values(hiddenDefaults, count));
}

int CNyrReportView::AddRealCols(const std::vector<unsigned int>& labelIds, const std::vector<int>& widths,
                                const std::vector<int>& alignments, const std::vector<int>& hiddenDefaults)
{
    std::vector<std::string> labels;
    for (unsigned int id : labelIds)
        labels.push_back(NyrLoadString(id));
    return AddRealCols(labels, widths, alignments, hiddenDefaults);
}

int CNyrReportView::AddRealCols(const unsigned int* labelIds, unsigned int count, const int* widths,
                                const int* alignments, const int* hiddenDefaults)
{
    if (!labelIds)
        return 0;
    return AddRealCols(std::vector<unsigned int>(labelIds, labelIds + count), Values(widths, count),
                       Values(alignments, count), Values(hiddenDefaults, count));
}

int CNyrReportView::AddRealCols(unsigned int firstLabelId, unsigned int count, const int* widths,
                                const int* alignments, const int* hiddenDefaults)
{
    return AddRealCols(Ids(firstLabelId, count), Values(widths, count), Values(alignments, count),
                       Values(hiddenDefaults, count));
}

int CNyrReportView::AddRealCols(unsigned int firstLabelId, unsigned int count, const std::vector<int>& widths,
                                const std::vector<int>& alignments, const std::vector<int>& hiddenDefaults)
{
    return AddRealCols(Ids(firstLabelId, count), widths, alignments, hiddenDefaults);
}

// ---------------------------------------------------------------------------
// Hiding and deleting

int CNyrReportView::HideRealCol(unsigned int realCol, int hide, int notify)
{
    if (realCol >= d->cols.size())
        return 0;
    const auto r = static_cast<RealCol>(realCol);
    CNyrReportViewCol* col = d->Col(r);
    const bool wasVisible = col->IsVisible();
    if (!col->HideCol(hide, notify))
        return 0;
    if (wasVisible && !col->IsVisible())
        d->RemoveScreenCol(r);
    else if (!wasVisible && col->IsVisible())
        d->InsertScreenCol(r);
    return 1;
}

int CNyrReportView::DeleteRealCol(unsigned int realCol, int notify)
{
    if (realCol >= d->cols.size())
        return 0;
    if (!d->cols[realCol]->DeleteCol(notify))
        return 0;
    d->RemoveScreenCol(static_cast<RealCol>(realCol));
    return 1;
}

int CNyrReportView::HideAllCols(int hide, int notify, int keepRealCol)
{
    int changed = 0;
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        CNyrReportViewCol* col = d->cols[c].get();
        if (static_cast<int>(c) == keepRealCol || col->IsDeleted() || col->IsHidden() == (hide != 0))
            continue;
        if (HideRealCol(static_cast<unsigned int>(c), hide, notify) && col->IsHidden() == (hide != 0))
            ++changed;
    }
    return changed;
}

void CNyrReportView::CleanupRealCols()
{
    d->SetScreenCols({});
    d->cols.clear();
    d->RenumberCols();
    d->UpdateSortMarks();
}

// ---------------------------------------------------------------------------
// Look-ups

unsigned int CNyrReportView::GetRealColumns() const
{
    return static_cast<unsigned int>(d->cols.size());
}

CNyrReportViewCol* CNyrReportView::GetRealCol(unsigned int realCol) const
{
    return realCol < d->cols.size() ? d->cols[realCol].get() : nullptr;
}

CNyrReportViewCol* CNyrReportView::GetCol(int screenCol) const
{
    return d->ValidScreenCol(screenCol) ? d->Col(d->RealColOf(static_cast<ScreenCol>(screenCol))) : nullptr;
}

int CNyrReportView::ScreenColFromReal(unsigned int realCol) const
{
    if (realCol >= d->cols.size() || d->realToScreenCol[realCol] == kOffScreenCol)
        return -1;
    return IxInt(d->realToScreenCol[realCol]);
}

int CNyrReportView::RealColFromScreen(int screenCol) const
{
    return d->ValidScreenCol(screenCol) ? IxInt(d->RealColOf(static_cast<ScreenCol>(screenCol))) : -1;
}

int CNyrReportView::GetRealColAlignment(unsigned int realCol) const
{
    return realCol < d->cols.size() ? d->cols[realCol]->GetAlignment() : LVCFMT_LEFT;
}

// ---------------------------------------------------------------------------
// Widths and placing on screen

int CNyrReportView::GetRealColMaxWidth(unsigned int realCol) const
{
    if (realCol >= d->cols.size())
        return 0;
    const int screenCol = ScreenColFromReal(realCol);
    if (screenCol < 0)
        return d->cols[realCol]->GetWidth();
    const QFontMetrics metrics(font());
    int widest = 0;
    std::string text;
    for (const auto r : d->screenToRealItem) {
        nyr::views_detail::CellText(*d->Item(r), static_cast<RealCol>(realCol), static_cast<ScreenCol>(screenCol),
                                    text);
        widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(text)));
    }
    // Room for the cell margins, and for the check box and image that the
    // first screen column may carry.
    int extra = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + 8;
    if (screenCol == 0 && HasCheckBoxes())
        extra += style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) + 4;
    if (!GetImageList().empty())
        extra += iconSize().isValid() ? iconSize().width() + 4 : 20;
    return std::max(widest + extra, horizontalHeader()->sectionSizeHint(screenCol));
}

void CNyrReportView::EnsureRealColVisible(unsigned int realCol)
{
    const int screenCol = ScreenColFromReal(realCol);
    if (screenCol < 0)
        return;
    QHeaderView* header = horizontalHeader();
    const int x = header->sectionPosition(screenCol);
    const int w = header->sectionSize(screenCol);
    QScrollBar* bar = horizontalScrollBar();
    const int width = viewport()->width();
    if (x < bar->value())
        bar->setValue(x);
    else if (x + w > bar->value() + width)
        bar->setValue(std::min(x, x + w - width));
}

void CNyrReportView::DisplayRealCols()
{
    std::vector<RealCol> visible;
    std::vector<int> order;
    std::vector<bool> shown;
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        if (d->cols[c]->IsVisible())
            visible.push_back(static_cast<RealCol>(c));
        order.push_back(d->cols[c]->GetOrder());
        shown.push_back(d->cols[c]->IsVisible());
    }
    d->SetScreenCols(std::move(visible));
    // Display order: by the columns' order fields, ties in real order. The
    // order fields are the source here: no end-of-drag reading back.
    QHeaderView* header = horizontalHeader();
    const std::vector<unsigned int> byOrder = nyr::detail::DisplayOrder(order, shown);
    {
        const QScopedValueRollback applying(d->applyingColumns, true);
        for (std::size_t v = 0; v < byOrder.size(); ++v) {
            const int logical = IxInt(d->realToScreenCol[byOrder[v]]);
            header->moveSection(header->visualIndex(logical), static_cast<int>(v));
        }
    }
    d->ScreenColsChanged();
}

void CNyrReportView::AutoArrangeColumns()
{
    CNyrWaitCursor wait;
    for (std::size_t s = 0; s < d->screenToRealCol.size(); ++s) {
        const unsigned int realCol = Ix(d->screenToRealCol[s]);
        horizontalHeader()->resizeSection(static_cast<int>(s), GetRealColMaxWidth(realCol));
    }
}
