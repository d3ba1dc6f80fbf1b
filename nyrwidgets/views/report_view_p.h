#pragma once

// Private parts of CNyrReportView shared by its source files.

#include <QAbstractTableModel>
#include <QItemSelection>
#include <QPointer>
#include <QStyledItemDelegate>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_item.h"

class CNyrReportViewInplace;

namespace nyr::views_detail {

// The two index spaces as distinct types, so that the bookkeeping cannot mix
// a real index with a screen position. Ix() is the one way back to a number.
enum class RealItem : std::uint32_t {};
enum class ScreenItem : std::uint32_t {};
enum class RealCol : std::uint32_t {};
enum class ScreenCol : std::uint32_t {};

inline constexpr ScreenItem kOffScreenItem{0xFFFFFFFFu};
inline constexpr ScreenCol kOffScreenCol{0xFFFFFFFFu};

template <class E>
constexpr std::uint32_t Ix(E e)
{
    return static_cast<std::uint32_t>(e);
}
template <class E>
constexpr int IxInt(E e)
{
    return static_cast<int>(static_cast<std::uint32_t>(e));
}

// What the sort moves: an item with its real index. Carrying the pointer
// saves a look-up in the item vector per comparison; a large sort spends
// most of its time waiting for memory.
struct SortEntry
{
    CNyrReportViewItem* item;
    RealItem real;
};

// The sort's less-than rule on real items.
//  1. Empty state: the smaller real index first (insertion order).
//  2. An item compared with itself: the first key's ascending flag. True
//     under an ascending key, so this is not a strict order; kept as it is on
//     purpose (the sort never asks it, and stays in bounds if asked).
//  3. Keys in order, up to one of column 0xFFFFFFFF: the first non-zero
//     OnCompareItem decides, negated for a descending key.
//  4. All equal: real index in the first key's direction.
struct LessRealItem
{
    const std::vector<CNyrReportView::SORT_STATE_REALCOL>& keys;

    bool operator()(const SortEntry& a, const SortEntry& b) const
    {
        if (keys.empty())
            return Ix(a.real) < Ix(b.real);
        const bool ascending = keys.front().ascending != 0;
        if (a.real == b.real)
            return ascending;
        for (const CNyrReportView::SORT_STATE_REALCOL& key : keys) {
            if (key.realCol == 0xFFFFFFFFu)
                break;
            const int r = a.item->OnCompareItem(b.item, key.realCol);
            if (r != 0)
                return key.ascending ? r < 0 : r > 0;
        }
        return ascending ? Ix(a.real) < Ix(b.real) : Ix(a.real) > Ix(b.real);
    }
};

// Prefetches the item object a comparison will read (its first two cache
// lines, where the base part and usually the compared values lie).
struct PrefetchItem
{
    void operator()(const SortEntry& e) const
    {
        __builtin_prefetch(e.item);
        __builtin_prefetch(reinterpret_cast<const char*>(e.item) + 64);
    }
};

// Sets a flag for its lifetime and then puts back what it was, so that a
// nested change does not clear the flag of the change around it.
class ScopedFlag
{
public:
    explicit ScopedFlag(bool& flag) : m_flag(flag), m_saved(flag) { m_flag = true; }
    ~ScopedFlag() { m_flag = m_saved; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& m_flag;
    bool m_saved;
};

// Sets a flag while the outermost of nested scopes lives and, as that one
// ends, clears it and runs `atEnd`: for work that a batch of changes does
// once, at its end.
class OutermostScope
{
public:
    OutermostScope(bool& flag, std::function<void()> atEnd)
        : m_flag(flag), m_atEnd(std::move(atEnd)), m_outer(!flag)
    {
        m_flag = true;
    }
    ~OutermostScope()
    {
        if (m_outer) {
            m_flag = false;
            m_atEnd();
        }
    }
    OutermostScope(const OutermostScope&) = delete;
    OutermostScope& operator=(const OutermostScope&) = delete;

private:
    bool& m_flag;
    std::function<void()> m_atEnd;
    bool m_outer;
};

}  // namespace nyr::views_detail

// The screen side of a report view: the visible real items in screen order,
// computed on demand from the view's maps.
class CNyrReportViewModel : public QAbstractTableModel
{
public:
    explicit CNyrReportViewModel(CNyrReportView* view) : QAbstractTableModel(view), m_view(view) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The structural changes, made by the view around its map updates.
    using QAbstractTableModel::beginInsertColumns;
    using QAbstractTableModel::beginInsertRows;
    using QAbstractTableModel::beginRemoveColumns;
    using QAbstractTableModel::beginRemoveRows;
    using QAbstractTableModel::beginResetModel;
    using QAbstractTableModel::endInsertColumns;
    using QAbstractTableModel::endInsertRows;
    using QAbstractTableModel::endRemoveColumns;
    using QAbstractTableModel::endRemoveRows;
    using QAbstractTableModel::endResetModel;

private:
    CNyrReportView* m_view;
};

// Paints a cell through the item's owner-draw hook when it wants to.
class CNyrReportViewDelegate : public QStyledItemDelegate
{
public:
    explicit CNyrReportViewDelegate(CNyrReportView* view) : QStyledItemDelegate(view), m_view(view) {}
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    CNyrReportView* m_view;
};

struct CNyrReportView::Private
{
    using RealItem = nyr::views_detail::RealItem;
    using ScreenItem = nyr::views_detail::ScreenItem;
    using RealCol = nyr::views_detail::RealCol;
    using ScreenCol = nyr::views_detail::ScreenCol;

    struct Subscriber
    {
        QPointer<QObject> window;  // null once the window is gone; the entry stays (and matches no window)
        long mask;
    };

    CNyrReportView* q;
    CNyrReportViewModel* model = nullptr;

    std::vector<std::unique_ptr<CNyrReportViewCol>> cols;  // real columns; real index = position
    // Owned items (raw pointers: 8 bytes each, deleted by the view).
    std::vector<CNyrReportViewItem*> items;  // real items; real index = position

    // Screen maps. For every screen row s: realToScreenItem[screenToRealItem[s]] == s.
    // realToScreenItem[r] == kOffScreenItem for an item not on screen (hidden,
    // deleted, or added and not displayed yet). realToScreenItem.size() == items.size().
    std::vector<RealItem> screenToRealItem;
    std::vector<ScreenItem> realToScreenItem;
    // The same for columns: screen columns are the visible real columns in
    // real order (the header's display order lies on top of that).
    std::vector<RealCol> screenToRealCol;
    std::vector<ScreenCol> realToScreenCol;

    std::vector<Subscriber> subscribers;  // in the order of subscription

    // Messages waiting while another one is being delivered: a change made
    // by a subscriber is told to everyone after the change it was told of.
    struct Pending
    {
        long bit;
        unsigned int message;
        qintptr lParam;
    };
    std::vector<Pending> pending;
    bool dispatching = false;  // messages wait in `pending` while set
    // Counts CleanupRealItems: a loop over real indexes that tells
    // subscribers stops when it changes (the indexes name other items then).
    std::uint64_t generation = 0;

    bool suppressHide = false;
    bool suppressRefresh = false;
    bool suppressDisable = false;
    bool savedHide = false;  // valid while the list view holds a save
    bool savedRefresh = false;
    bool disableEnabled = false;

    std::vector<SORT_STATE_REALCOL> sortState;  // at most three keys
    int serializeSortState = 0;
    int serializeColWidth = 0;
    int serializeColOrder = 0;
    unsigned int columnsDlgStyle = 0;
    int autoRestore = 0;
    // The settings section as the view went live: a view being taken apart
    // no longer knows its own class name, which names the default section.
    std::string liveSection;
    // The screen shows the model (DisplayRealItems or a displayed append has
    // run): changes of visibility update the rows from then on.
    bool live = false;

    CNyrReportViewInplace* inplace = nullptr;  // the in-place editing, a child of the view

    unsigned int menuStyles[3][2] = {};  // [header, item, item background][plain, shift]
    int menuRealCol = -1;                // the column under the last header menu
    int menuRealItem = -1;               // the item under the last item menu

    // Set while the view itself changes Qt's selection or the rows, so that
    // Qt's selection signals are not taken as the user's.
    bool syncingSelection = false;
    // A selection change made while syncingSelection was set left Qt's
    // selection behind the model's.
    bool qtSelectionStale = false;
    // Items whose selected bit is set (hidden and deleted ones included), as
    // far as the view changed them. While 0, rebuilding Qt's selection needs
    // no pass over the items.
    std::size_t selectedBits = 0;
    // Set while DisplayRealCols moves header sections to the order fields.
    bool applyingColumns = false;
    // Set while a batch of selection changes runs: Qt's selection is rebuilt
    // once at the end instead of row by row.
    bool batchSelection = false;

    explicit Private(CNyrReportView* view) : q(view) {}

    // Menu styles, the columns dialog style, AutoRestore and the Serialize...
    // switches from the class-wide defaults (report_view_menu.cpp).
    void TakeClassDefaults();

    // ---- Screen rows (report_view.cpp) ----

    // Makes the screen live; the first time, restores the stored layout
    // (AutoRestore) before any row shows.
    void GoLive();
    // Rebuilds screenToRealItem from the visible items, sorted, and resets
    // the model; Qt's selection and the focused row follow the items.
    void RebuildScreen(bool keepPosition);
    // Re-sorts the rows on screen and resets the model the same way.
    void ResortScreen();
    // Resets the model around `change` (which rewrites the row maps), then
    // puts Qt's selection and focus back from the items.
    template <class F>
    void ResetRows(bool keepPosition, F change);
    // Sorts screenToRealItem by the sort state (the maps are renumbered);
    // `inRealOrder` says the rows are in real order already.
    void SortRows(bool inRealOrder);
    void InsertRowOnScreen(RealItem r);
    void RemoveRowFromScreen(RealItem r);
    // Qt's selection of one row (or of all rows) made to agree with the items.
    void MirrorRowSelection(ScreenItem s, bool selected);
    void ResyncQtSelection();
    // The user's selection in Qt onto the items (see report_view.cpp).
    void OnQtSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);

    // ---- State changes (report_view.cpp) ----

    // Sends the waiting messages, and those they cause, in order.
    void DeliverPending();

    // After an item operation: the screen follows each of the item's
    // selected, disabled and checked bits that differs from its value before,
    // and, with notify (and that kind's suppress switch off), the view's hook
    // and the subscribers are told of it: the selection first.
    void TellItemChanges(unsigned int realItem, unsigned int stateBefore, unsigned int flagsBefore, int notify);
    // Calls f(realItem) for each of these items in turn; stops when a
    // subscriber removes all items (CleanupRealItems), as the indexes then
    // name other items.
    template <class F>
    void ForEachItem(const std::vector<unsigned int>& realItems, F f);
    // The same for each item visible when the call starts that is still
    // visible when its turn comes (a subscriber may hide some).
    template <class F>
    void ForEachVisibleItem(F f);
    // The screen form of the sort state onto the header marks.
    void UpdateSortMarks();

    CNyrReportViewItem* Item(RealItem r) const { return items[nyr::views_detail::Ix(r)]; }
    ScreenItem ScreenOf(RealItem r) const { return realToScreenItem[nyr::views_detail::Ix(r)]; }
    RealItem RealOf(ScreenItem s) const { return screenToRealItem[nyr::views_detail::Ix(s)]; }
    CNyrReportViewCol* Col(RealCol c) const { return cols[nyr::views_detail::Ix(c)].get(); }
    RealCol RealColOf(ScreenCol s) const { return screenToRealCol[nyr::views_detail::Ix(s)]; }
    bool ValidReal(unsigned int realItem) const { return realItem < items.size(); }
    bool ValidScreen(int screenItem) const
    {
        return screenItem >= 0 && static_cast<std::size_t>(screenItem) < screenToRealItem.size();
    }
    bool OnScreen(RealItem r) const { return ScreenOf(r) != nyr::views_detail::kOffScreenItem; }

    // realToScreenItem from screenToRealItem, for rows [from, end).
    void RenumberRows(std::size_t from)
    {
        for (std::size_t s = from; s < screenToRealItem.size(); ++s)
            realToScreenItem[nyr::views_detail::Ix(screenToRealItem[s])] = static_cast<ScreenItem>(s);
    }
    void RenumberCols()
    {
        realToScreenCol.assign(cols.size(), nyr::views_detail::kOffScreenCol);
        for (std::size_t s = 0; s < screenToRealCol.size(); ++s)
            realToScreenCol[nyr::views_detail::Ix(screenToRealCol[s])] = static_cast<ScreenCol>(s);
    }
};
