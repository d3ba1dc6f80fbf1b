// The screen rows of CNyrReportView: the visible real items in sort order,
// the rows Qt shows of them, and Qt's selection kept equal to the items'.
#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <algorithm>

#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/sample_sort_p.h"
#include "nyrwidgets/views/sort_keys_p.h"

using nyr::views_detail::Ix;
using nyr::views_detail::IxInt;
using nyr::views_detail::kOffScreenItem;
using RealItem = nyr::views_detail::RealItem;
using ScreenItem = nyr::views_detail::ScreenItem;

// ---------------------------------------------------------------------------
// The row maps

void CNyrReportViewPrivate::GoLive()
{
    if (live)
        return;
    live = true;
    liveSection = q->InifileSection();
    if (autoRestore)
        q->RestoreLayout();
}

void CNyrReportViewPrivate::ResetRows(bool keepPosition, const std::function<void()>& change)
{
    const int focused = q->GetFocusedRealItem();
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        model->beginResetModel();
        change();
        model->endResetModel();
    }
    ResyncQtSelection();
    if (focused >= 0 && OnScreen(static_cast<RealItem>(focused))) {
        q->FocusRealItem(static_cast<unsigned int>(focused));
        if (keepPosition)
            q->EnsureRealItemVisible(static_cast<unsigned int>(focused));
    }
}

void CNyrReportViewPrivate::SortRows(bool inRealOrder)
{
    // Unsorted is real order: nothing to do for rows that are in it already.
    if (sortState.empty() && inRealOrder) {
        RenumberRows(0);
        return;
    }
    // Rows in order already, or in reverse (the same column clicked again),
    // are found in one pass that stops at the first pair out of place
    // (bench/views, BM_ReportViewSortDescending_1M). Otherwise the items'
    // keys are sorted as numbers, each item read once, and the comparison
    // checks the result (BM_ReportViewSort_1M); the comparison alone sorts
    // where that fails.
    if (!TakeRowsInOrderOrReversed() && !nyr::views_detail::SortRowsByKeys(screenToRealItem, items, sortState))
        SortRowsByComparison();
    RenumberRows(0);
}

bool CNyrReportViewPrivate::TakeRowsInOrderOrReversed()
{
    // With a consistent comparison the result is the one a full sort gives.
    const nyr::views_detail::LessRealItem less{sortState};
    const auto realAt = [this](std::size_t s) { return Ix(screenToRealItem[s]); };
    const std::size_t n = screenToRealItem.size();
    if (nyr::views_detail::NeighboursInOrder(n, realAt, items, less, false))
        return true;
    if (!nyr::views_detail::NeighboursInOrder(n, realAt, items, less, true))
        return false;
    std::reverse(screenToRealItem.begin(), screenToRealItem.end());
    return true;
}

void CNyrReportViewPrivate::SortRowsByComparison()
{
    using nyr::views_detail::SortEntry;
    std::vector<SortEntry> entries;
    entries.reserve(screenToRealItem.size());
    for (RealItem r : screenToRealItem)
        entries.push_back({Item(r), r});
    nyr::NyrSampleSort(entries.begin(), entries.end(), nyr::views_detail::LessRealItem{sortState},
                       nyr::views_detail::PrefetchItem());
    for (std::size_t s = 0; s < entries.size(); ++s)
        screenToRealItem[s] = entries[s].real;
}

void CNyrReportViewPrivate::RebuildScreen(bool keepPosition)
{
    ResetRows(keepPosition, [this] {
        std::size_t visible = 0;
        for (const CNyrReportViewItem* item : items)
            visible += item->IsVisible() ? 1 : 0;
        // Exact sizes: the maps are the view's whole per-item cost.
        std::vector<RealItem>().swap(screenToRealItem);
        screenToRealItem.reserve(visible);
        realToScreenItem.assign(items.size(), kOffScreenItem);
        for (std::size_t r = 0; r < items.size(); ++r) {
            if (items[r]->IsVisible())
                screenToRealItem.push_back(static_cast<RealItem>(r));
        }
        SortRows(true);
    });
}

void CNyrReportViewPrivate::ResortScreen()
{
    ResetRows(true, [this] { SortRows(false); });
}

void CNyrReportViewPrivate::InsertRowOnScreen(RealItem r)
{
    const int pos = q->GetInsertPos(Ix(r));
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        model->beginInsertRows({}, pos, pos);
        screenToRealItem.insert(screenToRealItem.begin() + pos, r);
        RenumberRows(static_cast<std::size_t>(pos));
        model->endInsertRows();
    }
    if (Item(r)->IsSelected())
        MirrorRowSelection(static_cast<ScreenItem>(pos), true);
}

void CNyrReportViewPrivate::RemoveRowFromScreen(RealItem r)
{
    const ScreenItem s = ScreenOf(r);
    if (s == kOffScreenItem)
        return;
    const QScopedValueRollback syncing(syncingSelection, true);
    model->beginRemoveRows({}, IxInt(s), IxInt(s));
    screenToRealItem.erase(screenToRealItem.begin() + Ix(s));
    realToScreenItem[Ix(r)] = kOffScreenItem;
    RenumberRows(Ix(s));
    model->endRemoveRows();
}

void CNyrReportViewPrivate::RowChanged(ScreenItem s)
{
    const int row = IxInt(s);
    if (batch) {
        batchFirstRow = batchFirstRow <= batchLastRow ? std::min(batchFirstRow, row) : row;
        batchLastRow = std::max(batchLastRow, row);
        return;
    }
    const int lastCol = std::max(0, static_cast<int>(screenToRealCol.size()) - 1);
    emit model->dataChanged(model->index(row, 0), model->index(row, lastCol));
}

void CNyrReportViewPrivate::EndBatch()
{
    ResyncQtSelection();
    // Rows may have left the screen meanwhile: the range is cut to the rows
    // there are (telling Qt of more rows than changed is harmless).
    const int last = std::min(batchLastRow, static_cast<int>(screenToRealItem.size()) - 1);
    if (batchFirstRow <= last) {
        const int lastCol = std::max(0, static_cast<int>(screenToRealCol.size()) - 1);
        emit model->dataChanged(model->index(batchFirstRow, 0), model->index(last, lastCol));
    }
    batchFirstRow = 0;
    batchLastRow = -1;
}

// ---------------------------------------------------------------------------
// Qt's selection

void CNyrReportViewPrivate::MirrorRowSelection(ScreenItem s, bool selected)
{
    // A batch rebuilds Qt's selection once at its end.
    if (batch || screenToRealCol.empty())
        return;
    const int row = IxInt(s);
    if (syncingSelection) {
        // Inside a change of Qt's own (the user's selection being taken, a
        // subscriber acting on it): noted, and mended when that ends.
        if (q->selectionModel()->isSelected(model->index(row, 0)) != selected)
            qtSelectionStale = true;
        return;
    }
    const QItemSelection range(model->index(row, 0), model->index(row, static_cast<int>(screenToRealCol.size()) - 1));
    const QScopedValueRollback syncing(syncingSelection, true);
    q->selectionModel()->select(range, selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}

void CNyrReportViewPrivate::ResyncQtSelection()
{
    // Runs of selected rows become one range each; clearing first keeps Qt's
    // change computation linear.
    QItemSelection selection;
    const int lastCol = static_cast<int>(screenToRealCol.size()) - 1;
    if (lastCol >= 0 && selectedBits > 0) {
        int runStart = -1;
        const int rows = static_cast<int>(screenToRealItem.size());
        for (int s = 0; s <= rows; ++s) {
            const bool selected = s < rows && Item(screenToRealItem[static_cast<std::size_t>(s)])->IsSelected();
            if (selected && runStart < 0) {
                runStart = s;
            } else if (!selected && runStart >= 0) {
                selection.append(QItemSelectionRange(model->index(runStart, 0), model->index(s - 1, lastCol)));
                runStart = -1;
            }
        }
    }
    const QScopedValueRollback syncing(syncingSelection, true);
    qtSelectionStale = false;
    q->selectionModel()->clearSelection();
    if (!selection.isEmpty())
        q->selectionModel()->select(selection, QItemSelectionModel::Select);
}

void CNyrReportViewPrivate::OnQtSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    if (syncingSelection)
        return;
    // Qt's rows become real items before anyone is told: a subscriber may
    // hide, show or re-sort rows while it handles a message, and the same
    // screen row then holds another item. Deselections first, so that a
    // click that moves the selection reports the old item before the new.
    std::vector<std::pair<RealItem, int>> changes;
    const int rows = static_cast<int>(screenToRealItem.size());
    for (const auto* ranges : {&deselected, &selected}) {
        const int select = ranges == &selected ? 1 : 0;
        for (const QItemSelectionRange& range : *ranges) {
            for (int s = std::max(range.top(), 0); s <= range.bottom() && s < rows; ++s) {
                // Qt may report a row as selected that cannot be (a disabled
                // row inside a shift range): what it shows decides.
                if (q->selectionModel()->isSelected(model->index(s, 0)) == (select != 0))
                    changes.emplace_back(RealOf(static_cast<ScreenItem>(s)), select);
            }
        }
    }
    {
        const QScopedValueRollback syncing(syncingSelection, true);
        const std::uint64_t before = generation;
        for (const auto& [r, select] : changes) {
            // Stop when a subscriber removed all items; an item it took off
            // the screen meanwhile is no longer the user's to select.
            if (generation != before)
                break;
            if (OnScreen(r))
                q->SelectRealItem(Ix(r), select, 1);
        }
    }
    if (qtSelectionStale)
        ResyncQtSelection();
}

// ---------------------------------------------------------------------------
// The view's operations on rows

int CNyrReportView::GetInsertPos(unsigned int realItem) const
{
    // The first row that the item sorts before. The item itself is not
    // among the rows searched, so it is never compared with itself.
    if (!d->ValidReal(realItem))
        return -1;
    const nyr::views_detail::LessRealItem less{d->sortState};
    const auto r = static_cast<RealItem>(realItem);
    const nyr::views_detail::SortEntry entry{d->Item(r), r};
    std::size_t lo = 0;
    std::size_t hi = d->screenToRealItem.size();
    while (lo < hi) {
        const std::size_t mid = lo + (hi - lo) / 2;
        const RealItem other = d->screenToRealItem[mid];
        if (other == r || !less(entry, {d->Item(other), other}))
            lo = mid + 1;
        else
            hi = mid;
    }
    return static_cast<int>(lo);
}

void CNyrReportView::DisplayRealItems(int keepPosition)
{
    d->GoLive();
    OnDisplayItemsBegin(keepPosition);
    {
        CNyrWaitCursor wait;
        d->RebuildScreen(keepPosition != 0);
    }
    OnDisplayItemsEnd(keepPosition);
}

void CNyrReportView::FocusRealItem(unsigned int realItem)
{
    if (!d->ValidReal(realItem) || !d->OnScreen(static_cast<RealItem>(realItem)))
        return;
    const int row = IxInt(d->ScreenOf(static_cast<RealItem>(realItem)));
    const QScopedValueRollback syncing(d->syncingSelection, true);
    selectionModel()->setCurrentIndex(d->model->index(row, std::max(0, currentIndex().column())),
                                      QItemSelectionModel::NoUpdate);
}

void CNyrReportView::EnsureRealItemVisible(unsigned int realItem)
{
    if (d->ValidReal(realItem) && d->OnScreen(static_cast<RealItem>(realItem)))
        EnsureVisible(IxInt(d->ScreenOf(static_cast<RealItem>(realItem))));
}

void CNyrReportView::InvalidateScreenItem(int screenItem)
{
    if (d->ValidScreen(screenItem))
        d->RowChanged(static_cast<ScreenItem>(screenItem));
}
