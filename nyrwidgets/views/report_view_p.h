#pragma once

// The parts of CNyrReportView that its source files share. One file a
// subject: report_view.cpp builds the view and answers the list view's
// screen access; _rows keeps the screen rows and Qt's selection, _columns the
// real columns, _items the real items, _states their selected, checked and
// disabled bits, _notify the subscribers; _sort, _layout, _menu, _commands
// and _model as named.

#include <QAbstractTableModel>
#include <QItemSelection>
#include <QPointer>
#include <QStyledItemDelegate>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_item.h"

class CNyrReportViewInplace;
class CNyrReportViewPrivate;

namespace nyr::views_detail {

// The two index spaces as distinct types, so that the bookkeeping cannot mix
// a real index with a screen position. Ix() is the one way back to a number.
enum class RealItem : std::uint32_t {};
enum class ScreenItem : std::uint32_t {};
enum class RealCol : std::uint32_t {};
enum class ScreenCol : std::uint32_t {};

inline constexpr ScreenItem kOffScreenItem{NYR_NO_INDEX};
inline constexpr ScreenCol kOffScreenCol{NYR_NO_INDEX};

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

// The text of a cell. The first screen column shows the item's label, whose
// text comes from OnGetMainItemText; the others from OnGetItemText.
inline void CellText(CNyrReportViewItem& item, RealCol realCol, ScreenCol screenCol, std::string& text)
{
    if (Ix(screenCol) == 0)
        item.OnGetMainItemText(Ix(realCol), text);
    else
        item.OnGetItemText(Ix(realCol), Ix(screenCol), text);
}

// What the sort moves: an item with its real index. Carrying the pointer
// saves a look-up in the item vector per comparison; a large sort spends
// most of its time waiting for memory (bench/views, BM_ReportViewSort_1M).
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
//  3. Keys in order, up to one of column NYR_NO_INDEX: the first non-zero
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
            if (key.realCol == NYR_NO_INDEX)
                break;
            const int r = a.item->OnCompareItem(b.item, key.realCol);
            if (r != 0)
                return key.ascending ? r < 0 : r > 0;
        }
        return ascending ? Ix(a.real) < Ix(b.real) : Ix(a.real) > Ix(b.real);
    }
};

// Prefetches the item object a comparison will read (its first two cache
// lines, where the base part and usually the compared values lie). Worth it
// in bench/views, BM_ReportViewSort_1M.
struct PrefetchItem
{
    void operator()(const SortEntry& e) const
    {
        __builtin_prefetch(e.item);
        __builtin_prefetch(reinterpret_cast<const char*>(e.item) + 64);
    }
};

// Sets a flag while the outermost of nested scopes lives and, as that one
// ends, clears it and runs `atEnd`: for work that a batch of changes does
// once, at its end. (A flag that only guards against re-entry is held with
// QScopedValueRollback, which puts back what it found.)
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
// computed on demand from the view's maps (report_view_model.cpp).
class CNyrReportViewModel : public QAbstractTableModel
{
public:
    CNyrReportViewModel(CNyrReportView* view, const CNyrReportViewPrivate& parts) : QAbstractTableModel(view), d(parts) {}

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
    const CNyrReportViewPrivate& d;
};

// Paints a cell through the item's owner-draw hook when it wants to.
class CNyrReportViewDelegate : public QStyledItemDelegate
{
public:
    CNyrReportViewDelegate(CNyrReportView* view, const CNyrReportViewPrivate& parts)
        : QStyledItemDelegate(view), d(parts)
    {
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const CNyrReportViewPrivate& d;
};

// The view's data and the work its public operations share. The one class
// the view, its columns and its items let inside.
class CNyrReportViewPrivate
{
public:
    using RealItem = nyr::views_detail::RealItem;
    using ScreenItem = nyr::views_detail::ScreenItem;
    using RealCol = nyr::views_detail::RealCol;
    using ScreenCol = nyr::views_detail::ScreenCol;

    struct Subscriber
    {
        QPointer<QObject> window;  // null once the window is gone; the entry stays (and matches no window)
        long mask;
    };
    using SubscriberList = std::vector<Subscriber>;

    // A command of the view's context menus (report_view_commands.cpp).
    struct Command
    {
        unsigned int (*message)();  // the registered message that names it; the menu entry sends it
        unsigned int textId;        // the text of its menu entry
        // Whether the menu offers it now; null: always.
        bool (*enabled)(const CNyrReportView& view);
        // What the view does on it; null where CNyrListView::event runs it
        // (the commands every list view knows).
        void (*run)(CNyrReportView& view);
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

    // In the order of subscription. Replaced, never changed in place, so
    // that a message being delivered holds on to the list it started with
    // without copying it.
    std::shared_ptr<const SubscriberList> subscribers = std::make_shared<const SubscriberList>();

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

    std::vector<CNyrReportView::SORT_STATE_REALCOL> sortState;  // at most three keys
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

    // Set while the view itself changes Qt's selection, rows or columns, so
    // that Qt's selection signals are not taken as the user's.
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
    // Set while a batch of state changes runs: Qt's selection is rebuilt and
    // the changed rows are told to Qt once at the end instead of row by row.
    bool batch = false;
    int batchFirstRow = 0;  // the rows changed in the batch, while first <= last
    int batchLastRow = -1;

    explicit CNyrReportViewPrivate(CNyrReportView* view) : q(view) {}

    static CNyrReportViewPrivate& Of(CNyrReportView& view) { return *view.d; }
    static const CNyrReportViewPrivate& Of(const CNyrReportView& view) { return *view.d; }

    // Menu styles, the columns dialog style, AutoRestore and the Serialize...
    // switches from the class-wide defaults (report_view_menu.cpp).
    void TakeClassDefaults();

    // ---- Screen rows (report_view_rows.cpp) ----

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
    void ResetRows(bool keepPosition, const std::function<void()>& change);
    // Sorts screenToRealItem by the sort state (the maps are renumbered);
    // `inRealOrder` says the rows are in real order already.
    void SortRows(bool inRealOrder);
    // True when the rows are in order, or were in reverse and are turned
    // round now; false (and the rows as they were) otherwise.
    bool TakeRowsInOrderOrReversed();
    // SortRows through OnCompareItem alone, without the items' keys.
    void SortRowsByComparison();
    void InsertRowOnScreen(RealItem r);
    void RemoveRowFromScreen(RealItem r);
    // Qt's selection of one row (or of all rows) made to agree with the items.
    void MirrorRowSelection(ScreenItem s, bool selected);
    void ResyncQtSelection();
    // The user's selection in Qt onto the items (see report_view_rows.cpp).
    void OnQtSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    // Tells Qt, and so every observer of the model, that a row's cells or
    // states changed (in a batch, at its end); the row is drawn anew.
    void RowChanged(ScreenItem s);
    // The end of a batch: Qt's selection and the changed rows.
    void EndBatch();

    // ---- Screen columns (report_view_columns.cpp) ----

    // Adopts a column the view adds as its real column `r`.
    void AdoptColumn(CNyrReportViewCol& col, RealCol r);
    // A visible column onto the screen, after every visible column of a
    // smaller real index, with its width.
    void InsertScreenCol(RealCol r);
    void RemoveScreenCol(RealCol r);
    // The screen columns replaced by `visible` (in real order).
    void SetScreenCols(std::vector<RealCol> visible);
    // What every change of the screen columns ends with: Qt's selection
    // spans the new columns, the sort marks sit on them.
    void ScreenColsChanged();
    // A column's label, alignment or (with `width`) width changed.
    void OnColumnChanged(const CNyrReportViewCol& col, bool width);
    // The width the user gave a column on screen, kept in the column without
    // being sent back to the header.
    static void TakeColumnWidth(CNyrReportViewCol& col, int width) { col.m_width = width; }
    static int ColumnOrderDefault(const CNyrReportViewCol& col) { return col.m_orderDefault; }
    static void SetColumnOrderDefault(CNyrReportViewCol& col, int order) { col.m_orderDefault = order; }

    // ---- Items (report_view_items.cpp) ----

    // Adopts an item the view adds; false when it belongs to a view already.
    bool AdoptItem(CNyrReportViewItem& item);

    // ---- State changes (report_view_states.cpp) ----

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

    // Lets a batch of state changes bring Qt's selection and rows up to date
    // once at the end instead of row by row (a million rows selected at once
    // would otherwise cost a million selection ranges). Batches nest; the
    // outermost one ends them.
    class StateBatch : public nyr::views_detail::OutermostScope
    {
    public:
        explicit StateBatch(CNyrReportViewPrivate& d) : OutermostScope(d.batch, [&d] { d.EndBatch(); }) {}
    };

    // ---- Notifications (report_view_notify.cpp) ----

    // Sends the waiting messages, and those they cause, in order.
    void DeliverPending();

    // Holds the messages back while several changes made together are told,
    // so that a change a subscriber makes meanwhile is told after all of them.
    class HeldNotifications : public nyr::views_detail::OutermostScope
    {
    public:
        explicit HeldNotifications(CNyrReportViewPrivate& d)
            : OutermostScope(d.dispatching, [&d] { d.DeliverPending(); })
        {
        }
    };

    // ---- Sorting, layout, menus (report_view_sort.cpp, _layout, _menu) ----

    // The screen form of the sort state onto the header marks.
    void UpdateSortMarks();
    // The sort commands of the header menu on its column.
    void SortByMenuColumn(bool ascending);
    // Stores the serialised column layout into the section the view had as
    // it went live (nothing for a view that never did).
    void StoreLayoutOnClose();
    int StoreColWidthAndHiddenIn(const std::string& section);
    int StoreColOrderIn(const std::string& section);
    // The pieces both item menus offer as the style asks: select, check,
    // find, find next / previous, save-as and print.
    void InsertRowMenus(CNyrReportViewMenuPopUp& menu, unsigned int style);

    // ---- Commands (report_view_commands.cpp) ----

    // Every command of the view's menus.
    static std::span<const Command> Commands();
    // The command of `message`; null for none.
    static const Command* FindCommand(unsigned int message);
    // The menu entry of a command, enabled as the command says.
    QAction* AppendCommand(CNyrReportViewMenuPopUp& menu, unsigned int message) const;
    // Runs the command of `message`; false for a message the report view
    // leaves to the list view.
    bool RunCommand(unsigned int message);

    // ---- Look-ups ----

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
    bool ValidScreenCol(int screenCol) const
    {
        return screenCol >= 0 && static_cast<std::size_t>(screenCol) < screenToRealCol.size();
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
