#include "nyrwidgets/views/report_view.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>
#include <algorithm>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyr/views/stored_layout_p.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_inplace_p.h"
#include "nyrwidgets/views/report_view_p.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/sample_sort_p.h"

using nyr::views_detail::Ix;
using nyr::views_detail::IxInt;
using nyr::views_detail::kOffScreenCol;
using nyr::views_detail::kOffScreenItem;
using nyr::views_detail::OutermostScope;
using nyr::views_detail::ScopedFlag;
using RealItem = nyr::views_detail::RealItem;
using ScreenItem = nyr::views_detail::ScreenItem;
using RealCol = nyr::views_detail::RealCol;
using ScreenCol = nyr::views_detail::ScreenCol;

namespace {

// Holds the messages back while several changes made together are told, so
// that a change a subscriber makes meanwhile is told after all of them.
class HeldNotifications : public OutermostScope
{
public:
    explicit HeldNotifications(CNyrReportView::Private& d) : OutermostScope(d.dispatching, [&d] { d.DeliverPending(); })
    {
    }
};

}  // namespace

// ---------------------------------------------------------------------------
// Screen rows

template <class F>
void CNyrReportView::Private::ResetRows(bool keepPosition, F change)
{
    const int focused = q->GetFocusedRealItem();
    {
        const ScopedFlag syncing(syncingSelection);
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

void CNyrReportView::Private::GoLive()
{
    if (live)
        return;
    live = true;
    liveSection = q->InifileSection();
    if (autoRestore)
        q->RestoreLayout();
}

void CNyrReportView::Private::SortRows(bool inRealOrder)
{
    using nyr::views_detail::SortEntry;
    // Unsorted is real order: nothing to do for rows that are in it already.
    if (sortState.empty() && inRealOrder) {
        RenumberRows(0);
        return;
    }
    std::vector<SortEntry> entries;
    entries.reserve(screenToRealItem.size());
    for (RealItem r : screenToRealItem)
        entries.push_back({Item(r), r});
    const nyr::views_detail::LessRealItem less{sortState};
    // Rows in order already, or in reverse (the same column clicked again):
    // checked in one pass that stops at the first pair out of place. With a
    // consistent comparison the result is the one the full sort gives.
    const auto reversed = [&less](const SortEntry& a, const SortEntry& b) { return less(b, a); };
    if (std::is_sorted(entries.begin(), entries.end(), less)) {
        // In order: nothing to move.
    } else if (std::is_sorted(entries.begin(), entries.end(), reversed)) {
        std::reverse(entries.begin(), entries.end());
    } else {
        nyr::NyrSampleSort(entries.begin(), entries.end(), less, nyr::views_detail::PrefetchItem());
    }
    for (std::size_t s = 0; s < entries.size(); ++s)
        screenToRealItem[s] = entries[s].real;
    RenumberRows(0);
}

void CNyrReportView::Private::RebuildScreen(bool keepPosition)
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

void CNyrReportView::Private::ResortScreen()
{
    ResetRows(true, [this] { SortRows(false); });
}

void CNyrReportView::Private::InsertRowOnScreen(RealItem r)
{
    const int pos = q->GetInsertPos(Ix(r));
    {
        const ScopedFlag syncing(syncingSelection);
        model->beginInsertRows({}, pos, pos);
        screenToRealItem.insert(screenToRealItem.begin() + pos, r);
        RenumberRows(static_cast<std::size_t>(pos));
        model->endInsertRows();
    }
    if (Item(r)->IsSelected())
        MirrorRowSelection(static_cast<ScreenItem>(pos), true);
}

void CNyrReportView::Private::RemoveRowFromScreen(RealItem r)
{
    const ScreenItem s = ScreenOf(r);
    if (s == kOffScreenItem)
        return;
    const ScopedFlag syncing(syncingSelection);
    model->beginRemoveRows({}, IxInt(s), IxInt(s));
    screenToRealItem.erase(screenToRealItem.begin() + Ix(s));
    realToScreenItem[Ix(r)] = kOffScreenItem;
    RenumberRows(Ix(s));
    model->endRemoveRows();
}

void CNyrReportView::Private::MirrorRowSelection(ScreenItem s, bool selected)
{
    // A batch rebuilds Qt's selection once at its end.
    if (batchSelection || screenToRealCol.empty())
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
    const ScopedFlag syncing(syncingSelection);
    q->selectionModel()->select(range, selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}

void CNyrReportView::Private::ResyncQtSelection()
{
    // Runs of selected rows become one range each; clearing first keeps Qt's
    // change computation linear.
    QItemSelection selection;
    const int lastCol = static_cast<int>(screenToRealCol.size()) - 1;
    if (lastCol >= 0 && selectedBits > 0) {
        int runStart = -1;
        const int rows = static_cast<int>(screenToRealItem.size());
        for (int s = 0; s <= rows; ++s) {
            const bool selected = s < rows && items[Ix(screenToRealItem[static_cast<std::size_t>(s)])]->IsSelected();
            if (selected && runStart < 0) {
                runStart = s;
            } else if (!selected && runStart >= 0) {
                selection.append(QItemSelectionRange(model->index(runStart, 0), model->index(s - 1, lastCol)));
                runStart = -1;
            }
        }
    }
    const ScopedFlag syncing(syncingSelection);
    qtSelectionStale = false;
    q->selectionModel()->clearSelection();
    if (!selection.isEmpty())
        q->selectionModel()->select(selection, QItemSelectionModel::Select);
}

void CNyrReportView::Private::OnQtSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
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
        const ScopedFlag syncing(syncingSelection);
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
// Construction

CNyrReportView::CNyrReportView(QWidget* parent) : CNyrListView(parent, nullptr), d(new Private(this))
{
    d->TakeClassDefaults();

    d->model = new CNyrReportViewModel(this);
    setModel(d->model);
    setItemDelegate(new CNyrReportViewDelegate(this));

    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection& selected, const QItemSelection& deselected) {
                d->OnQtSelectionChanged(selected, deselected);
            });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int screenCol, int, int width) {
        if (screenCol >= 0 && static_cast<std::size_t>(screenCol) < d->screenToRealCol.size())
            d->Col(d->RealColOf(static_cast<ScreenCol>(screenCol)))->m_width = width;
    });
    // The order is read once the header has applied the move.
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, [this] {
        if (!d->applyingColumns)
            NyrPostMessage(this, WM_NYR_REPORTVIEW_POST_HDN_ENDDRAG, reinterpret_cast<quintptr>(this));
    });
    connect(horizontalHeader(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pos) { ShowContextMenu(horizontalHeader()->mapToGlobal(pos)); });
    d->inplace = new CNyrReportViewInplace(this);
}

CNyrReportView::~CNyrReportView()
{
    d->inplace->Detach();
    StoreLayoutOnClose();
    // Items and columns go with the view; the model must not read them while
    // Qt takes the view apart.
    setModel(nullptr);
    for (CNyrReportViewItem* item : d->items)
        delete item;
}

// ---------------------------------------------------------------------------
// Columns

unsigned int CNyrReportView::AddRealCol(CNyrReportViewCol* col)
{
    if (!col || std::any_of(d->cols.begin(), d->cols.end(), [col](const auto& c) { return c.get() == col; }))
        return 0xFFFFFFFFu;
    col->m_owner = this;
    const auto r = static_cast<RealCol>(d->cols.size());
    col->m_orderDefault = static_cast<int>(Ix(r));
    d->cols.emplace_back(col);
    d->realToScreenCol.push_back(kOffScreenCol);
    if (col->IsVisible()) {
        // Its screen position: after the visible columns of smaller real index.
        const auto pos = static_cast<int>(d->screenToRealCol.size());
        d->model->beginInsertColumns({}, pos, pos);
        d->screenToRealCol.push_back(r);
        d->RenumberCols();
        d->model->endInsertColumns();
        horizontalHeader()->resizeSection(pos, col->m_width);
        d->ResyncQtSelection();
    }
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

namespace {

// Where a real column goes among the screen columns: after every visible
// column of a smaller real index.
template <class Cols>
int ScreenPositionFor(const Cols& screenToRealCol, RealCol r)
{
    return static_cast<int>(std::lower_bound(screenToRealCol.begin(), screenToRealCol.end(), r) -
                            screenToRealCol.begin());
}

}  // namespace

int CNyrReportView::HideRealCol(unsigned int realCol, int hide, int notify)
{
    if (realCol >= d->cols.size())
        return 0;
    const auto r = static_cast<RealCol>(realCol);
    CNyrReportViewCol* col = d->Col(r);
    const bool wasVisible = col->IsVisible();
    if (!col->HideCol(hide, notify))
        return 0;
    if (wasVisible == col->IsVisible())
        return 1;
    const ScreenCol s = d->realToScreenCol[realCol];
    if (!col->IsVisible()) {
        d->model->beginRemoveColumns({}, IxInt(s), IxInt(s));
        d->screenToRealCol.erase(d->screenToRealCol.begin() + Ix(s));
        d->RenumberCols();
        d->model->endRemoveColumns();
    } else {
        const int pos = ScreenPositionFor(d->screenToRealCol, r);
        d->model->beginInsertColumns({}, pos, pos);
        d->screenToRealCol.insert(d->screenToRealCol.begin() + pos, r);
        d->RenumberCols();
        d->model->endInsertColumns();
        horizontalHeader()->resizeSection(pos, col->m_width);
    }
    d->ResyncQtSelection();
    d->UpdateSortMarks();
    return 1;
}

int CNyrReportView::DeleteRealCol(unsigned int realCol, int notify)
{
    if (realCol >= d->cols.size())
        return 0;
    CNyrReportViewCol* col = d->cols[realCol].get();
    const bool wasVisible = col->IsVisible();
    if (!col->DeleteCol(notify))
        return 0;
    if (wasVisible) {
        const ScreenCol s = d->realToScreenCol[realCol];
        d->model->beginRemoveColumns({}, IxInt(s), IxInt(s));
        d->screenToRealCol.erase(d->screenToRealCol.begin() + Ix(s));
        d->RenumberCols();
        d->model->endRemoveColumns();
        d->ResyncQtSelection();
        d->UpdateSortMarks();
    }
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
    const int r = RealColFromScreen(screenCol);
    return r >= 0 ? d->cols[static_cast<std::size_t>(r)].get() : nullptr;
}

int CNyrReportView::ScreenColFromReal(unsigned int realCol) const
{
    if (realCol >= d->cols.size() || d->realToScreenCol[realCol] == kOffScreenCol)
        return -1;
    return IxInt(d->realToScreenCol[realCol]);
}

int CNyrReportView::RealColFromScreen(int screenCol) const
{
    if (screenCol < 0 || static_cast<std::size_t>(screenCol) >= d->screenToRealCol.size())
        return -1;
    return IxInt(d->RealColOf(static_cast<ScreenCol>(screenCol)));
}

int CNyrReportView::GetRealColAlignment(unsigned int realCol) const
{
    return realCol < d->cols.size() ? d->cols[realCol]->GetAlignment() : LVCFMT_LEFT;
}

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
    for (std::size_t s = 0; s < d->screenToRealItem.size(); ++s) {
        CNyrReportViewItem* item = d->Item(d->screenToRealItem[s]);
        if (screenCol == 0)
            item->OnGetMainItemText(realCol, text);
        else
            item->OnGetItemText(realCol, static_cast<unsigned int>(screenCol), text);
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
    QHeaderView* header = horizontalHeader();
    std::vector<RealCol> visible;
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        if (d->cols[c]->IsVisible())
            visible.push_back(static_cast<RealCol>(c));
    }
    {
        const ScopedFlag syncing(d->syncingSelection);
        if (!d->screenToRealCol.empty()) {
            d->model->beginRemoveColumns({}, 0, static_cast<int>(d->screenToRealCol.size()) - 1);
            d->screenToRealCol.clear();
            d->RenumberCols();
            d->model->endRemoveColumns();
        }
        if (!visible.empty()) {
            d->model->beginInsertColumns({}, 0, static_cast<int>(visible.size()) - 1);
            d->screenToRealCol = visible;
            d->RenumberCols();
            d->model->endInsertColumns();
        }
    }
    // Display order: by the columns' order fields, ties in real order.
    std::vector<int> order;
    std::vector<bool> shown;
    for (const auto& col : d->cols) {
        order.push_back(col->GetOrder());
        shown.push_back(col->IsVisible());
    }
    const std::vector<unsigned int> byOrder = nyr::detail::DisplayOrder(order, shown);
    // The order fields are the source here: no end-of-drag reading back.
    d->applyingColumns = true;
    for (std::size_t v = 0; v < byOrder.size(); ++v) {
        const int logical = IxInt(d->realToScreenCol[byOrder[v]]);
        header->moveSection(header->visualIndex(logical), static_cast<int>(v));
    }
    d->applyingColumns = false;
    for (std::size_t s = 0; s < d->screenToRealCol.size(); ++s)
        header->resizeSection(static_cast<int>(s), d->Col(d->screenToRealCol[s])->GetWidth());
    d->ResyncQtSelection();
    d->UpdateSortMarks();
}

void CNyrReportView::AutoArrangeColumns()
{
    CNyrWaitCursor wait;
    for (std::size_t s = 0; s < d->screenToRealCol.size(); ++s) {
        const unsigned int realCol = Ix(d->screenToRealCol[s]);
        horizontalHeader()->resizeSection(static_cast<int>(s), GetRealColMaxWidth(realCol));
    }
}

void CNyrReportView::CleanupRealCols()
{
    if (!d->screenToRealCol.empty()) {
        const ScopedFlag syncing(d->syncingSelection);
        d->model->beginRemoveColumns({}, 0, static_cast<int>(d->screenToRealCol.size()) - 1);
        d->screenToRealCol.clear();
        d->model->endRemoveColumns();
    }
    d->cols.clear();
    d->RenumberCols();
    d->UpdateSortMarks();
}

void CNyrReportView::OnRealColChanged(const CNyrReportViewCol* col, bool width)
{
    for (std::size_t c = 0; c < d->cols.size(); ++c) {
        if (d->cols[c].get() != col || d->realToScreenCol[c] == kOffScreenCol)
            continue;
        const int s = IxInt(d->realToScreenCol[c]);
        if (width)
            horizontalHeader()->resizeSection(s, col->GetWidth());
        else
            d->model->headerDataChanged(Qt::Horizontal, s, s);
        viewport()->update();
    }
}

// ---------------------------------------------------------------------------
// Items

unsigned int CNyrReportView::AddRealItem(CNyrReportViewItem* item)
{
    if (!item || item->m_owner)
        return 0xFFFFFFFFu;
    item->m_owner = this;
    if (item->m_itemState & CNyrReportViewItem::StateSelected)
        ++d->selectedBits;
    d->items.push_back(item);
    d->realToScreenItem.push_back(kOffScreenItem);
    return static_cast<unsigned int>(d->items.size() - 1);
}

unsigned int CNyrReportView::AppendRealItem(CNyrReportViewItem* item, int display)
{
    const unsigned int realItem = AddRealItem(item);
    if (realItem == 0xFFFFFFFFu)
        return realItem;
    if (display) {
        d->GoLive();
        if (item->IsVisible())
            d->InsertRowOnScreen(static_cast<RealItem>(realItem));
    }
    OnAppendRealItem(realItem);
    return realItem;
}

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

int CNyrReportView::DeleteRealItem(unsigned int realItem, int notify)
{
    (void)notify;
    if (!d->ValidReal(realItem))
        return 0;
    const auto r = static_cast<RealItem>(realItem);
    if (!d->Item(r)->DeleteItem(1))
        return 0;
    d->RemoveRowFromScreen(r);
    return 1;
}

int CNyrReportView::DeleteRealItems(const std::vector<unsigned int>& realItems, int notify)
{
    (void)notify;
    int deleted = 0;
    bool screenChanged = false;
    for (unsigned int realItem : realItems) {
        if (!d->ValidReal(realItem))
            continue;
        const auto r = static_cast<RealItem>(realItem);
        CNyrReportViewItem* item = d->Item(r);
        if (item->IsDeleted() || !item->DeleteItem(1))
            continue;
        ++deleted;
        screenChanged |= d->OnScreen(r);
    }
    if (screenChanged) {
        // Drop the deleted rows; the others keep their order.
        d->ResetRows(true, [this] {
            std::erase_if(d->screenToRealItem, [this](RealItem r) {
                if (d->Item(r)->IsDeleted()) {
                    d->realToScreenItem[Ix(r)] = kOffScreenItem;
                    return true;
                }
                return false;
            });
            d->RenumberRows(0);
        });
    }
    return deleted;
}

int CNyrReportView::DeleteRealItems(const std::vector<COMPLETE_ITEM>& items, int notify)
{
    std::vector<unsigned int> realItems;
    realItems.reserve(items.size());
    for (const COMPLETE_ITEM& c : items)
        realItems.push_back(c.realItem);
    return DeleteRealItems(realItems, notify);
}

int CNyrReportView::DeleteItems(const std::vector<int>& screenItems, int notify)
{
    std::vector<unsigned int> realItems;
    realItems.reserve(screenItems.size());
    for (int s : screenItems) {
        if (d->ValidScreen(s))
            realItems.push_back(Ix(d->RealOf(static_cast<ScreenItem>(s))));
    }
    return DeleteRealItems(realItems, notify);
}

int CNyrReportView::DeleteSelectedItems(int notify)
{
    std::vector<unsigned int> realItems;
    GetSelectedRealItems(realItems);
    return DeleteRealItems(realItems, notify);
}

int CNyrReportView::DeleteCheckedItems(int notify)
{
    std::vector<unsigned int> realItems;
    GetCheckedRealItems(realItems);
    return DeleteRealItems(realItems, notify);
}

int CNyrReportView::DeleteDisabledItems(int notify)
{
    std::vector<unsigned int> realItems;
    GetDisabledRealItems(realItems);
    return DeleteRealItems(realItems, notify);
}

int CNyrReportView::HideRealItem(unsigned int realItem, int hide, int notify)
{
    if (!d->ValidReal(realItem))
        return 0;
    const auto r = static_cast<RealItem>(realItem);
    CNyrReportViewItem* item = d->Item(r);
    const bool wasHidden = item->IsHidden();
    if (!item->HideItem(hide, 1))
        return 0;
    if (wasHidden == item->IsHidden())
        return 1;
    if (item->IsHidden())
        d->RemoveRowFromScreen(r);
    else if (d->live)
        d->InsertRowOnScreen(r);
    if (notify && !d->suppressHide)
        OnHideRealItem(realItem, hide);
    return 1;
}

int CNyrReportView::HideRealItems(const std::vector<unsigned int>& realItems, int hide, int notify)
{
    // Told to the subscribers once the screen agrees with the model.
    std::vector<RealItem> changed;
    for (unsigned int realItem : realItems) {
        if (!d->ValidReal(realItem))
            continue;
        const auto r = static_cast<RealItem>(realItem);
        CNyrReportViewItem* item = d->Item(r);
        const bool wasHidden = item->IsHidden();
        if (item->HideItem(hide, 1) && wasHidden != item->IsHidden())
            changed.push_back(r);
    }
    if (changed.empty())
        return 0;
    if (d->live)
        d->RebuildScreen(true);
    if (notify && !d->suppressHide) {
        const HeldNotifications held(*d);
        for (RealItem r : changed)
            OnHideRealItem(Ix(r), hide);
    }
    return static_cast<int>(changed.size());
}

int CNyrReportView::HideAllItems(int hide, int notify)
{
    std::vector<unsigned int> all(d->items.size());
    for (std::size_t r = 0; r < all.size(); ++r)
        all[r] = static_cast<unsigned int>(r);
    return HideRealItems(all, hide, notify);
}

void CNyrReportView::CheckRealItem(unsigned int realItem, int check, int notify)
{
    if (!d->ValidReal(realItem))
        return;
    const auto r = static_cast<RealItem>(realItem);
    OnCheckRealItemInternal(realItem, d->OnScreen(r) ? IxInt(d->ScreenOf(r)) : -1, check, d->Item(r), notify);
}

void CNyrReportView::CheckRealItems(const std::vector<unsigned int>& realItems, int check, int notify)
{
    d->ForEachItem(realItems, [&](unsigned int r) { CheckRealItem(r, check, notify); });
}

void CNyrReportView::CheckSelectedItems(int check, int notify)
{
    std::vector<unsigned int> realItems;
    GetSelectedRealItems(realItems);
    CheckRealItems(realItems, check, notify);
}

template <class F>
void CNyrReportView::Private::ForEachItem(const std::vector<unsigned int>& realItems, F f)
{
    const std::uint64_t before = generation;
    for (unsigned int r : realItems) {
        if (generation != before)
            return;
        f(r);
    }
}

template <class F>
void CNyrReportView::Private::ForEachVisibleItem(F f)
{
    std::vector<unsigned int> visible;
    for (std::size_t r = 0; r < items.size(); ++r) {
        if (items[r]->IsVisible())
            visible.push_back(static_cast<unsigned int>(r));
    }
    ForEachItem(visible, [&](unsigned int r) {
        if (items[r]->IsVisible())
            f(r);
    });
}

void CNyrReportView::CheckAllItems(int check, int notify)
{
    d->ForEachVisibleItem([&](unsigned int r) { CheckRealItem(r, check, notify); });
}

void CNyrReportView::InvertChecked(int notify)
{
    d->ForEachVisibleItem([&](unsigned int r) { CheckRealItem(r, !d->items[r]->IsChecked(), notify); });
}

namespace {

// Lets a batch of selection changes rebuild Qt's selection once at the end
// instead of row by row. Batches nest; the outermost one rebuilds.
class SelectionBatch : public OutermostScope
{
public:
    explicit SelectionBatch(CNyrReportView::Private& d)
        : OutermostScope(d.batchSelection, [&d] { d.ResyncQtSelection(); })
    {
    }
};

}  // namespace

void CNyrReportView::SelectRealItem(unsigned int realItem, int select, int notify)
{
    if (!d->ValidReal(realItem))
        return;
    const auto r = static_cast<RealItem>(realItem);
    OnSelectRealItemInternal(realItem, d->OnScreen(r) ? IxInt(d->ScreenOf(r)) : -1, select, d->Item(r), notify);
}

void CNyrReportView::SelectRealItems(const std::vector<unsigned int>& realItems, int select, int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachItem(realItems, [&](unsigned int r) { SelectRealItem(r, select, notify); });
}

void CNyrReportView::SelectAllItems(int select, int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, select, notify); });
}

void CNyrReportView::selectAll()
{
    SelectAllItems(1, 1);
}

void CNyrReportView::InvertSelection(int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, !d->items[r]->IsSelected(), notify); });
}

void CNyrReportView::SelectCheckedItems(int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, d->items[r]->IsChecked(), notify); });
}

void CNyrReportView::SelectScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    std::vector<char> chosen(d->screenToRealItem.size(), 0);
    for (int s : screenItems) {
        if (d->ValidScreen(s))
            chosen[static_cast<std::size_t>(s)] = 1;
    }
    const SelectionBatch batch(*d);
    for (std::size_t s = 0; s < chosen.size(); ++s) {
        const RealItem r = d->screenToRealItem[s];
        if (chosen[s] || (!keepOthers && d->Item(r)->IsSelected()))
            SelectRealItem(Ix(r), chosen[s], 1);
    }
}

void CNyrReportView::CheckScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    std::vector<char> chosen(d->screenToRealItem.size(), 0);
    for (int s : screenItems) {
        if (d->ValidScreen(s))
            chosen[static_cast<std::size_t>(s)] = 1;
    }
    for (std::size_t s = 0; s < chosen.size(); ++s) {
        const RealItem r = d->screenToRealItem[s];
        if (chosen[s] || (!keepOthers && d->Item(r)->IsChecked()))
            CheckRealItem(Ix(r), chosen[s], 1);
    }
}

int CNyrReportView::SaveAs()
{
    CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
    info.list = this;
    OnSaveAsBegin(info);
    CNyrReportViewSaveAsDlgCV dialog(info, this);
    return dialog.Run(InifileSection());
}

void CNyrReportView::DisableRealItem(unsigned int realItem, int disable, int notify)
{
    if (!d->ValidReal(realItem))
        return;
    const auto r = static_cast<RealItem>(realItem);
    OnDisableRealItemInternal(realItem, d->OnScreen(r) ? IxInt(d->ScreenOf(r)) : -1, disable, d->Item(r), notify);
}

void CNyrReportView::DisableRealItems(const std::vector<unsigned int>& realItems, int disable, int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachItem(realItems, [&](unsigned int r) { DisableRealItem(r, disable, notify); });
}

void CNyrReportView::DisableAllItems(int disable, int notify)
{
    const SelectionBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { DisableRealItem(r, disable, notify); });
}

void CNyrReportView::SetDisableRealItemsEnabled(bool enabled)
{
    d->disableEnabled = enabled;
}

bool CNyrReportView::GetDisableRealItemsEnabled() const
{
    return d->disableEnabled;
}

void CNyrReportView::Private::TellItemChanges(unsigned int realItem, unsigned int stateBefore,
                                              unsigned int flagsBefore, int notify)
{
    const CNyrReportViewItem* item = items[realItem];
    const unsigned int state = item->GetItemState();
    const bool selected = (state & CNyrReportViewItem::StateSelected) != 0;
    const bool disabled = (state & CNyrReportViewItem::StateDisabled) != 0;
    const bool checked = (item->GetModelFlags() & CNyrReportViewItem::FlagChecked) != 0;
    const bool selectChanged = ((stateBefore ^ state) & CNyrReportViewItem::StateSelected) != 0;
    const bool disableChanged = ((stateBefore ^ state) & CNyrReportViewItem::StateDisabled) != 0;
    const bool checkChanged = ((flagsBefore ^ item->GetModelFlags()) & CNyrReportViewItem::FlagChecked) != 0;
    if (!selectChanged && !disableChanged && !checkChanged)
        return;
    if (selectChanged)
        selectedBits += selected ? 1 : std::size_t(-1);
    const int screenItem = q->ScreenItemFromReal(realItem);
    if (screenItem >= 0) {
        if (disableChanged) {
            // The row's flags changed (greyed, not selectable).
            const int lastCol = std::max(0, static_cast<int>(screenToRealCol.size()) - 1);
            emit model->dataChanged(model->index(screenItem, 0), model->index(screenItem, lastCol));
        }
        if (selectChanged || disableChanged)
            MirrorRowSelection(static_cast<ScreenItem>(screenItem), item->IsSelected());
        q->InvalidateScreenItem(screenItem);
    }
    // Every change of a bit is told, hidden item or not. A subscriber may
    // change the view while it is told: the screen index is looked up anew.
    const HeldNotifications held(*this);
    const auto tell = [&](bool changed, bool suppressed, bool on, void (CNyrReportView::*hook)(unsigned int, int, int),
                          long bit, unsigned int onMessage, unsigned int offMessage) {
        if (!changed || !notify || suppressed)
            return;
        (q->*hook)(realItem, q->ScreenItemFromReal(realItem), on ? 1 : 0);
        q->SendNotificationToNotifyItems(bit, on ? onMessage : offMessage, static_cast<qintptr>(realItem));
    };
    tell(selectChanged, q->GetSuppressSelectNotifications(), selected, &CNyrReportView::OnSelectRealItem,
         NotifyItemSelect, WM_NYR_REPORTVIEW_ITEM_SELECT, WM_NYR_REPORTVIEW_ITEM_DESELECT);
    tell(disableChanged, suppressDisable, disabled, &CNyrReportView::OnDisableRealItem, NotifyItemDisable,
         WM_NYR_REPORTVIEW_ITEM_DISABLE, WM_NYR_REPORTVIEW_ITEM_ENABLE);
    tell(checkChanged, q->GetSuppressCheckNotifications(), checked, &CNyrReportView::OnCheckRealItem,
         NotifyItemCheck, WM_NYR_REPORTVIEW_ITEM_CHECK, WM_NYR_REPORTVIEW_ITEM_UNCHECK);
}

void CNyrReportView::OnSelectRealItemInternal(unsigned int realItem, int, int select, CNyrReportViewItem* item,
                                              int notify)
{
    const unsigned int state = item->GetItemState();
    item->SelectItem(select, 1);
    d->TellItemChanges(realItem, state, item->GetModelFlags(), notify);
}

void CNyrReportView::OnCheckRealItemInternal(unsigned int realItem, int, int check, CNyrReportViewItem* item,
                                             int notify)
{
    const unsigned int flags = item->GetModelFlags();
    item->CheckItem(check, 1);
    d->TellItemChanges(realItem, item->GetItemState(), flags, notify);
}

void CNyrReportView::OnDisableRealItemInternal(unsigned int realItem, int, int disable, CNyrReportViewItem* item,
                                               int notify)
{
    if (!d->disableEnabled)
        return;
    // The item deselects itself first when it is disabled; the deselection
    // is told before the disabling.
    const unsigned int state = item->GetItemState();
    item->DisableItem(disable, 1);
    d->TellItemChanges(realItem, state, item->GetModelFlags(), notify);
}

void CNyrReportView::FocusRealItem(unsigned int realItem)
{
    if (!d->ValidReal(realItem) || !d->OnScreen(static_cast<RealItem>(realItem)))
        return;
    const int row = IxInt(d->ScreenOf(static_cast<RealItem>(realItem)));
    const ScopedFlag syncing(d->syncingSelection);
    selectionModel()->setCurrentIndex(d->model->index(row, std::max(0, currentIndex().column())),
                                      QItemSelectionModel::NoUpdate);
}

void CNyrReportView::EnsureRealItemVisible(unsigned int realItem)
{
    if (d->ValidReal(realItem) && d->OnScreen(static_cast<RealItem>(realItem)))
        EnsureVisible(IxInt(d->ScreenOf(static_cast<RealItem>(realItem))));
}

void CNyrReportView::RefreshRealItem(unsigned int realItem, int notify)
{
    if (!d->ValidReal(realItem))
        return;
    const auto r = static_cast<RealItem>(realItem);
    if (d->OnScreen(r))
        InvalidateScreenItem(IxInt(d->ScreenOf(r)));
    if (notify && !d->suppressRefresh)
        OnRefreshRealItem(realItem);
}

void CNyrReportView::CleanupRealItems(int notify)
{
    ++d->generation;
    d->ResetRows(false, [this] {
        for (CNyrReportViewItem* item : d->items)
            delete item;
        d->items.clear();
        d->selectedBits = 0;
        d->screenToRealItem.clear();
        d->realToScreenItem.clear();
    });
    if (notify)
        OnCleanupRealItems();
}

unsigned int CNyrReportView::GetRealItemCount() const
{
    return static_cast<unsigned int>(d->items.size());
}

CNyrReportViewItem* CNyrReportView::GetRealItem(unsigned int realItem) const
{
    return d->ValidReal(realItem) ? d->items[realItem] : nullptr;
}

CNyrReportViewItem* CNyrReportView::GetItem(int screenItem) const
{
    return d->ValidScreen(screenItem) ? d->Item(d->RealOf(static_cast<ScreenItem>(screenItem))) : nullptr;
}

int CNyrReportView::ScreenItemFromReal(unsigned int realItem) const
{
    if (!d->ValidReal(realItem) || !d->OnScreen(static_cast<RealItem>(realItem)))
        return -1;
    return IxInt(d->ScreenOf(static_cast<RealItem>(realItem)));
}

int CNyrReportView::RealItemFromScreen(int screenItem) const
{
    return d->ValidScreen(screenItem) ? IxInt(d->RealOf(static_cast<ScreenItem>(screenItem))) : -1;
}

QPointer<QObject> CNyrReportView::GetRealItemDocument(unsigned int realItem, unsigned int realCol) const
{
    return d->ValidReal(realItem) ? d->items[realItem]->OnGetItemDocument(realCol) : QPointer<QObject>();
}

int CNyrReportView::GetRealItemChecked(unsigned int realItem) const
{
    return d->ValidReal(realItem) && d->items[realItem]->IsChecked();
}

int CNyrReportView::GetRealItemSelected(unsigned int realItem) const
{
    return d->ValidReal(realItem) && d->items[realItem]->IsSelected();
}

int CNyrReportView::GetRealItemDisabled(unsigned int realItem) const
{
    return d->ValidReal(realItem) && d->items[realItem]->IsDisabled();
}

int CNyrReportView::GetRealItemFocused(unsigned int realItem) const
{
    return d->ValidReal(realItem) && GetFocusedRealItem() == static_cast<int>(realItem);
}

namespace {

template <class Pred>
int CountItems(const std::vector<CNyrReportViewItem*>& items, Pred pred, int enough)
{
    int n = 0;
    for (const CNyrReportViewItem* item : items) {
        if (pred(item) && ++n == enough)
            break;
    }
    return n;
}

constexpr int kAll = -1;
const auto kChecked = [](const CNyrReportViewItem* i) { return i->IsChecked(); };
const auto kSelected = [](const CNyrReportViewItem* i) { return i->IsSelected(); };
const auto kDisabled = [](const CNyrReportViewItem* i) { return i->IsDisabled(); };

}  // namespace

int CNyrReportView::GetCheckedCount() const
{
    return CountItems(d->items, kChecked, kAll);
}

int CNyrReportView::GetSelectedCount() const
{
    return CountItems(d->items, kSelected, kAll);
}

int CNyrReportView::GetDisabledCount() const
{
    return CountItems(d->items, kDisabled, kAll);
}

int CNyrReportView::GetItemsChecked() const
{
    return CountItems(d->items, kChecked, 1) >= 1;
}

int CNyrReportView::GetItemsSelected() const
{
    return CountItems(d->items, kSelected, 1) >= 1;
}

int CNyrReportView::GetItemsDisabled() const
{
    return CountItems(d->items, kDisabled, 1) >= 1;
}

int CNyrReportView::GetMultipleItemsChecked() const
{
    return CountItems(d->items, kChecked, 2) >= 2;
}

int CNyrReportView::GetMultipleItemsSelected() const
{
    return CountItems(d->items, kSelected, 2) >= 2;
}

int CNyrReportView::GetMultipleItemsDisabled() const
{
    return CountItems(d->items, kDisabled, 2) >= 2;
}

namespace {

template <class Pred>
void ScreenItemsWhere(const CNyrReportView::Private& d, Pred pred, std::vector<int>& out)
{
    out.clear();
    for (std::size_t s = 0; s < d.screenToRealItem.size(); ++s) {
        if (pred(d.Item(d.screenToRealItem[s])))
            out.push_back(static_cast<int>(s));
    }
}

template <class Pred>
void RealItemsWhere(const std::vector<CNyrReportViewItem*>& items, Pred pred, std::vector<unsigned int>& out)
{
    out.clear();
    for (std::size_t r = 0; r < items.size(); ++r) {
        if (pred(items[r]))
            out.push_back(static_cast<unsigned int>(r));
    }
}

}  // namespace

void CNyrReportView::GetSelectedItems(std::vector<int>& screenItems) const
{
    ScreenItemsWhere(*d, kSelected, screenItems);
}

void CNyrReportView::GetCheckedItems(std::vector<int>& screenItems) const
{
    ScreenItemsWhere(*d, kChecked, screenItems);
}

void CNyrReportView::GetDisabledItems(std::vector<int>& screenItems) const
{
    ScreenItemsWhere(*d, kDisabled, screenItems);
}

void CNyrReportView::GetSelectedRealItems(std::vector<unsigned int>& realItems) const
{
    RealItemsWhere(d->items, kSelected, realItems);
}

void CNyrReportView::GetCheckedRealItems(std::vector<unsigned int>& realItems) const
{
    RealItemsWhere(d->items, kChecked, realItems);
}

void CNyrReportView::GetDisabledRealItems(std::vector<unsigned int>& realItems) const
{
    RealItemsWhere(d->items, kDisabled, realItems);
}

int CNyrReportView::GetFirstRealItemOnScreen() const
{
    return d->screenToRealItem.empty() ? -1 : IxInt(d->screenToRealItem.front());
}

int CNyrReportView::GetLastRealItemOnScreen() const
{
    return d->screenToRealItem.empty() ? -1 : IxInt(d->screenToRealItem.back());
}

int CNyrReportView::GetFocusedRealItem() const
{
    return RealItemFromScreen(GetFocusedItem());
}

int CNyrReportView::CompleteItemFromReal(unsigned int realItem, COMPLETE_ITEM& complete) const
{
    if (!d->ValidReal(realItem))
        return 0;
    complete.realItem = realItem;
    complete.screenItem = ScreenItemFromReal(realItem);
    complete.item = d->items[realItem];
    return 1;
}

int CNyrReportView::CompleteItemFromScreen(int screenItem, COMPLETE_ITEM& complete) const
{
    if (!d->ValidScreen(screenItem))
        return 0;
    return CompleteItemFromReal(Ix(d->RealOf(static_cast<ScreenItem>(screenItem))), complete);
}

void CNyrReportView::InvalidateScreenItem(int screenItem)
{
    if (!d->ValidScreen(screenItem))
        return;
    // Only rows inside the viewport need painting; the others are drawn
    // afresh when they scroll in.
    const int y = rowViewportPosition(screenItem);
    const int h = rowHeight(screenItem);
    if (y + h >= 0 && y < viewport()->height())
        viewport()->update(0, y, viewport()->width(), h);
}

// ---------------------------------------------------------------------------
// The list view's screen access

int CNyrReportView::GetItemCount() const
{
    return static_cast<int>(d->screenToRealItem.size());
}

int CNyrReportView::GetColumnCount() const
{
    return static_cast<int>(d->screenToRealCol.size());
}

std::string CNyrReportView::GetItemText(int screenItem, int screenCol) const
{
    std::string text;
    if (!d->ValidScreen(screenItem) || screenCol < 0 || screenCol >= GetColumnCount())
        return text;
    CNyrReportViewItem* item = d->Item(d->RealOf(static_cast<ScreenItem>(screenItem)));
    const unsigned int realCol = Ix(d->RealColOf(static_cast<ScreenCol>(screenCol)));
    if (screenCol == 0)
        item->OnGetMainItemText(realCol, text);
    else
        item->OnGetItemText(realCol, static_cast<unsigned int>(screenCol), text);
    return text;
}

std::string CNyrReportView::GetColumnLabel(int screenCol) const
{
    const CNyrReportViewCol* col = GetCol(screenCol);
    return col ? col->GetLabel() : std::string();
}

unsigned int CNyrReportView::GetItemState(int screenItem, unsigned int mask) const
{
    if (!d->ValidScreen(screenItem))
        return 0;
    unsigned int state = GetItem(screenItem)->IsSelected() ? LVIS_SELECTED : 0;
    if (GetFocusedItem() == screenItem)
        state |= LVIS_FOCUSED;
    return state & mask;
}

int CNyrReportView::SetItemState(int screenItem, unsigned int state, unsigned int mask)
{
    if (!d->ValidScreen(screenItem))
        return 0;
    const unsigned int realItem = Ix(d->RealOf(static_cast<ScreenItem>(screenItem)));
    if (mask & LVIS_SELECTED)
        SelectRealItem(realItem, (state & LVIS_SELECTED) != 0, 1);
    if (mask & LVIS_FOCUSED) {
        if (state & LVIS_FOCUSED)
            FocusRealItem(realItem);
        else if (GetFocusedItem() == screenItem)
            selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    }
    return 1;
}

int CNyrReportView::GetCheck(int screenItem) const
{
    const CNyrReportViewItem* item = GetItem(screenItem);
    return item && item->IsChecked() ? 1 : 0;
}

int CNyrReportView::SetCheck(int screenItem, int check)
{
    if (!d->ValidScreen(screenItem))
        return 0;
    CheckRealItem(Ix(d->RealOf(static_cast<ScreenItem>(screenItem))), check, 1);
    return 1;
}

// ---------------------------------------------------------------------------
// Subscriptions

void CNyrReportView::AddItemNotification(QObject* window, long mask)
{
    if (!window)
        return;
    for (Private::Subscriber& s : d->subscribers) {
        if (s.window.data() == window) {
            s.mask |= mask;
            return;
        }
    }
    d->subscribers.push_back({window, mask});
}

void CNyrReportView::RemoveItemNotification(QObject* window, long mask)
{
    if (!window)
        return;
    for (auto it = d->subscribers.begin(); it != d->subscribers.end(); ++it) {
        if (it->window.data() != window)
            continue;
        // A subtraction from 1023, not a complement: bits above the ten
        // defined ones are dropped too. Intended.
        it->mask &= (NotifyItemAll - mask);
        if (it->mask == 0)
            d->subscribers.erase(it);
        return;
    }
}

long CNyrReportView::GetItemNotification(QObject* window) const
{
    for (const Private::Subscriber& s : d->subscribers) {
        if (window && s.window.data() == window)
            return s.mask;
    }
    return 0;
}

void CNyrReportView::SendNotificationToNotifyItems(long bit, unsigned int message, qintptr lParam)
{
    if (d->subscribers.empty())
        return;
    d->pending.push_back({bit, message, lParam});
    // A change made by a subscriber while it is told of another waits until
    // every subscriber has been told of that one, so that all of them hear
    // of the changes in the order they were made.
    if (!d->dispatching)
        d->DeliverPending();
}

void CNyrReportView::Private::DeliverPending()
{
    const ScopedFlag delivering(dispatching);
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const Pending next = pending[i];
        // The list as it stands now: a subscriber may subscribe or
        // unsubscribe windows while it handles the message.
        const std::vector<Subscriber> now = subscribers;
        for (const Subscriber& s : now) {
            if ((s.mask & next.bit) && NyrIsWindow(s.window))
                NyrSendMessage(s.window, next.message, reinterpret_cast<quintptr>(q), next.lParam);
        }
    }
    pending.clear();
}

void CNyrReportView::SetSuppressHideNotifications(bool suppress)
{
    d->suppressHide = suppress;
}

bool CNyrReportView::GetSuppressHideNotifications() const
{
    return d->suppressHide;
}

void CNyrReportView::SetSuppressRefreshNotifications(bool suppress)
{
    d->suppressRefresh = suppress;
}

bool CNyrReportView::GetSuppressRefreshNotifications() const
{
    return d->suppressRefresh;
}

void CNyrReportView::SetSuppressDisableNotifications(bool suppress)
{
    d->suppressDisable = suppress;
}

bool CNyrReportView::GetSuppressDisableNotifications() const
{
    return d->suppressDisable;
}

void CNyrReportView::SetSuppressAllNotifications(bool suppress)
{
    CNyrListView::SetSuppressAllNotifications(suppress);
    d->suppressHide = suppress;
    d->suppressRefresh = suppress;
    d->suppressDisable = suppress;
}

bool CNyrReportView::GetSuppressAllNotifications() const
{
    return CNyrListView::GetSuppressAllNotifications() && d->suppressHide && d->suppressRefresh &&
           d->suppressDisable;
}

void CNyrReportView::SaveAllSuppressNotifications()
{
    CNyrListView::SaveAllSuppressNotifications();
    d->savedHide = d->suppressHide;
    d->savedRefresh = d->suppressRefresh;
}

int CNyrReportView::RestoreAllSuppressNotifications()
{
    if (!CNyrListView::RestoreAllSuppressNotifications())
        return 0;
    d->suppressHide = d->savedHide;
    d->suppressRefresh = d->savedRefresh;
    return 1;
}

// ---------------------------------------------------------------------------
// Hooks that notify

void CNyrReportView::OnDisplayItemsBegin(int keepPosition)
{
    SendNotificationToNotifyItems(NotifyItemDisplay, WM_NYR_REPORTVIEW_ITEM_DISPLAY_BEGIN, keepPosition);
}

void CNyrReportView::OnDisplayItemsEnd(int keepPosition)
{
    SendNotificationToNotifyItems(NotifyItemDisplay, WM_NYR_REPORTVIEW_ITEM_DISPLAY_END, keepPosition);
}

void CNyrReportView::OnCleanupRealItems()
{
    SendNotificationToNotifyItems(NotifyItemCleanup, WM_NYR_REPORTVIEW_ITEM_CLEANUP, 0);
}

void CNyrReportView::OnRefreshRealItem(unsigned int realItem)
{
    SendNotificationToNotifyItems(NotifyItemRefresh, WM_NYR_REPORTVIEW_ITEM_REFRESH, static_cast<qintptr>(realItem));
}

void CNyrReportView::OnAppendRealItem(unsigned int realItem)
{
    SendNotificationToNotifyItems(NotifyItemAppend, WM_NYR_REPORTVIEW_ITEM_APPEND, static_cast<qintptr>(realItem));
}

void CNyrReportView::OnHideRealItem(unsigned int realItem, int hide)
{
    SendNotificationToNotifyItems(NotifyItemHide, hide ? WM_NYR_REPORTVIEW_ITEM_HIDE : WM_NYR_REPORTVIEW_ITEM_VIEW,
                                  static_cast<qintptr>(realItem));
}

void CNyrReportView::OnSortOrderChanged()
{
    SendNotificationToNotifyItems(NotifyItemSortOrder, WM_NYR_REPORTVIEW_ITEM_SORT_ORDER, 0);
}

void CNyrReportView::OnSelectRealItem(unsigned int, int, int) {}

void CNyrReportView::OnCheckRealItem(unsigned int, int, int) {}

void CNyrReportView::OnDisableRealItem(unsigned int, int, int) {}

void CNyrReportView::OnModifyRealItem(unsigned int) {}

void CNyrReportView::OnDeleteSelectedItems()
{
    DeleteSelectedItems(1);
}
