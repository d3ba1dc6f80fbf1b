#pragma once

#include <QPointer>
#include <memory>
#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/list_view.h"

class CNyrInputControl;
class CNyrReportViewCol;
class CNyrReportViewItem;
class CNyrReportViewMenuPopUp;
class CNyrReportViewPrivate;
class QMenu;

// A multi-column report over a model of real items and real columns.
//
// The model holds every item and column the application added, in the order
// of adding: the real index of an item or column is its position there and
// stays valid while the view lives (deleted items and columns keep theirs).
// The screen shows the visible real items (neither hidden nor deleted) in the
// order of the sort state, and the visible real columns in real order, the
// header's display order on top. Screen rows are computed from the
// screen-to-real map when drawn, never created one by one. Per item the view
// keeps 16 bytes (the item pointer and one entry in each of the two maps),
// Qt's table 8 more for the row, and a sort 16 more while it runs.
//
// Two index spaces, never mixed: operations and hooks named ...Real... take
// and give real indexes (unsigned; -1 in an int result means none); all
// others speak of screen rows and columns (int, -1 for none).
//
// Subscribers (AddItemNotification) receive the WM_NYR_REPORTVIEW_ITEM_*
// messages synchronously through NyrSendMessage, wParam the view
// (CNyrReportView*), lParam as listed at eNotifyItem; their results are
// ignored. A subscriber runs after the model has changed.
//
// The state operations (Select..., Check..., Disable..., Hide...) take a
// `notify` argument: with 0 the subscribers and the view's On...RealItem
// hooks are not told (the item's own hooks always run). A suppress switch
// turns notify off for its kind of change. Changes made through the item's
// own operations (CNyrReportViewItem::SelectItem, ...) reach neither the
// screen nor the subscribers until the view redraws or rebuilds its rows.
//
// The rule every way of changing an item follows (the operations here, the
// menu commands, the keys, the mouse, the find dialog):
//  - Each change of an item's selected, checked, disabled or hidden bit is
//    told once, hidden item or not; a request that leaves the bit as it was
//    is not told (even where the item's hook runs, as for CheckItem(1) on a
//    hidden item). Deleting is never told.
//  - No item is ever selected and disabled at once: selecting a disabled
//    item is refused, disabling a selected one deselects it first (told
//    before the disabling), hidden or not.
//  - The "All" operations (SelectAllItems, InvertSelection,
//    SelectCheckedItems, CheckAllItems, InvertChecked, DisableAllItems) act
//    on the visible items, the rows the user sees, whichever way they are
//    reached (Ctrl+A is SelectAllItems): hidden items keep their bits and
//    show them again when viewed. HideAllItems(0) views the hidden ones.
//  - What Qt shows selected is always the model's selection of the items on
//    screen, also when a subscriber hides, shows or sorts rows while it is
//    told of the user's selection: the rows the user chose are turned into
//    items before anyone is told.
//  - A change a subscriber makes while it is told of another is told to all
//    subscribers after that one has reached them all, so that every
//    subscriber hears of the changes in the order they were made.
class NYR_EXPORT CNyrReportView : public CNyrListView
{
    Q_OBJECT
public:
    // One key of a sort state. realCol NYR_NO_INDEX ends the state early.
    struct SORT_STATE_REALCOL
    {
        unsigned int realCol = 0;
        int ascending = 1;  // non-zero: ascending
    };

    // Both indexes of an item, for operations that need the two.
    struct COMPLETE_ITEM
    {
        unsigned int realItem = NYR_NO_INDEX;
        int screenItem = -1;  // -1 while the item is not on screen
        CNyrReportViewItem* item = nullptr;
    };

    // Subscription mask bits and what each brings (lParam in brackets).
    // Bit 32 is not used: WM_NYR_REPORTVIEW_ITEM_DELETE is registered but
    // never sent. Intended; the gap is kept.
    enum eNotifyItem : long {
        NotifyItemDisplay = 1,      // ..._DISPLAY_BEGIN / _DISPLAY_END [argument of DisplayRealItems]
        NotifyItemCleanup = 2,      // ..._CLEANUP [0]
        NotifyItemRefresh = 4,      // ..._REFRESH [real item]
        NotifyItemAppend = 8,       // ..._APPEND [real item]
        NotifyItemHide = 16,        // ..._HIDE / _VIEW [real item]
        NotifyItemSelect = 64,      // ..._SELECT / _DESELECT [real item]
        NotifyItemCheck = 128,      // ..._CHECK / _UNCHECK [real item]
        NotifyItemDisable = 256,    // ..._DISABLE / _ENABLE [real item]
        NotifyItemSortOrder = 512,  // ..._SORT_ORDER [0]
        NotifyItemAll = 1023,
    };

    // Pieces of the context menus (bits of a menu style).
    enum eMenuStyle : unsigned int {
        MenuAutoArrange = 0x0001,  // "&Auto arrange" (header)
        MenuSort = 0x0002,         // "&Sort" sub-menu (header)
        MenuViewHide = 0x0004,     // "&Hide", "Hi&de all", "View a&ll", "&View" sub-menu (header)
        MenuColumns = 0x0008,      // "&Columns..." (header; enabled while ColumnsDlgStyle is not 0)
        MenuSelect = 0x0010,       // select all, invert selection, select checked items
        MenuCheck = 0x0020,        // check all, invert checked (only with check boxes)
        MenuModify = 0x0040,       // "&Modify..." (item menu: OnModifyRealItem)
        MenuDelete = 0x0080,       // "&Delete\tDEL"; in either item menu, lets the Delete key delete the selection
        MenuGlobal = 0x0100,       // the application's global menu of that kind
        MenuFind = 0x0200,         // "&Find...\tCtrl+F"
        MenuFindNP = 0x0400,       // "Find &Next", "Find P&revious"
        MenuSaveAs = 0x0800,       // "Save &As..."
        MenuPrint = 0x1000,        // "&Print\tCtrl+P", "Print Previe&w...", "E&xport PDF..."
    };

    // What the columns dialog lets the user change (bits of ColumnsDlgStyle).
    enum eColumnsDlgStyle : unsigned int {
        ColumnsDlgVisibility = 0x1,  // view and hide columns (check boxes, "[All columns]")
        ColumnsDlgWidth = 0x2,       // column widths
        ColumnsDlgOrder = 0x4,       // the display order (move up, move down)
        ColumnsDlgDefaults = 0x8,    // back to the defaults
        ColumnsDlgAll = 0xF,
    };

    explicit CNyrReportView(QWidget* parent = nullptr);
    ~CNyrReportView() override;

    // ---- Columns ----

    // Adds a column (the view takes ownership and becomes its owner); it
    // shows at once unless hidden. Returns its real index; NYR_NO_INDEX (and
    // nothing happens) for null or a column the view holds already.
    unsigned int AddRealCol(CNyrReportViewCol* col);
    // Adds one column per label. The optional parallel widths (pixels),
    // alignments (LVCFMT_...) and hidden-by-default flags may be shorter than
    // the labels or absent: missing widths are 80, alignments left, flags 0.
    // Labels come as texts or as text-table numbers (loaded with
    // NyrLoadString). Returns the number of columns added.
    int AddRealCols(const char* const* labels, unsigned int count, const int* widths = nullptr,
                    const int* alignments = nullptr, const int* hiddenDefaults = nullptr);
    int AddRealCols(const std::vector<std::string>& labels, const std::vector<int>& widths = {},
                    const std::vector<int>& alignments = {}, const std::vector<int>& hiddenDefaults = {});
    int AddRealCols(const unsigned int* labelIds, unsigned int count, const int* widths = nullptr,
                    const int* alignments = nullptr, const int* hiddenDefaults = nullptr);
    int AddRealCols(const std::vector<unsigned int>& labelIds, const std::vector<int>& widths = {},
                    const std::vector<int>& alignments = {}, const std::vector<int>& hiddenDefaults = {});
    // Labels firstLabelId, firstLabelId + 1, ... (count of them).
    int AddRealCols(unsigned int firstLabelId, unsigned int count, const int* widths = nullptr,
                    const int* alignments = nullptr, const int* hiddenDefaults = nullptr);
    int AddRealCols(unsigned int firstLabelId, unsigned int count, const std::vector<int>& widths,
                    const std::vector<int>& alignments = {}, const std::vector<int>& hiddenDefaults = {});

    // 1 when the column is deleted; 0 for a veto (OnDeleteCol, with notify)
    // or a bad index.
    int DeleteRealCol(unsigned int realCol, int notify = 1);
    // 1 when the column's hidden flag equals `hide`; 0 for a deleted column, a
    // veto (OnHideCol, with notify) or a bad index.
    int HideRealCol(unsigned int realCol, int hide, int notify = 1);
    // Hides or views every column but `keepRealCol` (-1: none kept); returns
    // how many changed.
    int HideAllCols(int hide, int notify = 1, int keepRealCol = -1);
    unsigned int GetRealColumns() const;
    // Null for an index out of range.
    CNyrReportViewCol* GetRealCol(unsigned int realCol) const;
    CNyrReportViewCol* GetCol(int screenCol) const;
    int GetRealColAlignment(unsigned int realCol) const;
    // The width in pixels that shows the column's widest text (label and
    // every cell on screen; reads all rows). For a column not on screen: its
    // width.
    int GetRealColMaxWidth(unsigned int realCol) const;
    void EnsureRealColVisible(unsigned int realCol);
    // Rebuilds the screen columns from the model: the visible columns with
    // their widths, in the display order of their order fields (ties in real
    // order).
    void DisplayRealCols();
    // Gives every screen column the width of GetRealColMaxWidth.
    void AutoArrangeColumns();
    // Removes and destroys all columns.
    void CleanupRealCols();
    int ScreenColFromReal(unsigned int realCol) const;
    int RealColFromScreen(int screenCol) const;

    // ---- Items ----

    // Adds an item to the model only (it shows with the next
    // DisplayRealItems); the view takes ownership. Returns its real index;
    // NYR_NO_INDEX (and nothing happens) for null or an item that already
    // belongs to a view.
    unsigned int AddRealItem(CNyrReportViewItem* item);
    // Adds an item and, when `display` is set, shows it at its sorted place
    // (GetInsertPos); tells the subscribers (NotifyItemAppend).
    unsigned int AppendRealItem(CNyrReportViewItem* item, int display = 1);
    // The screen row where the item would go under the current sort state.
    int GetInsertPos(unsigned int realItem) const;
    // Rebuilds the screen from the model: every visible item, sorted. With
    // `keepPosition` the focused item stays focused and in view. Told to
    // subscribers before and after (NotifyItemDisplay, lParam keepPosition).
    void DisplayRealItems(int keepPosition = 1);
    // 1 when the item is deleted; 0 for a veto (OnDeleteItem) or a bad index.
    // `notify` is accepted for symmetry: deleting is never notified.
    int DeleteRealItem(unsigned int realItem, int notify = 1);
    // These return how many items were deleted.
    int DeleteRealItems(const std::vector<unsigned int>& realItems, int notify = 1);
    int DeleteRealItems(const std::vector<COMPLETE_ITEM>& items, int notify = 1);
    int DeleteItems(const std::vector<int>& screenItems, int notify = 1);
    int DeleteSelectedItems(int notify = 1);
    int DeleteCheckedItems(int notify = 1);
    int DeleteDisabledItems(int notify = 1);
    // 1 when the hidden bit equals `hide`; 0 for a deleted item, a veto
    // (OnHideItem) or a bad index.
    int HideRealItem(unsigned int realItem, int hide, int notify = 1);
    // These return how many items changed.
    int HideRealItems(const std::vector<unsigned int>& realItems, int hide, int notify = 1);
    int HideAllItems(int hide, int notify = 1);
    void CheckRealItem(unsigned int realItem, int check, int notify = 1);
    void CheckRealItems(const std::vector<unsigned int>& realItems, int check, int notify = 1);
    void CheckSelectedItems(int check, int notify = 1);
    void CheckAllItems(int check, int notify = 1);
    void InvertChecked(int notify = 1);
    // Selecting a disabled item is ignored.
    void SelectRealItem(unsigned int realItem, int select, int notify = 1);
    void SelectRealItems(const std::vector<unsigned int>& realItems, int select, int notify = 1);
    void SelectAllItems(int select, int notify = 1);
    // Ctrl+A and Qt's own select-all: SelectAllItems(1, 1).
    void selectAll() override;
    void InvertSelection(int notify = 1);
    // Selects exactly the checked items.
    void SelectCheckedItems(int notify = 1);
    // Nothing happens unless GetDisableRealItemsEnabled(). Disabling a
    // selected item deselects it first, with its own notification.
    void DisableRealItem(unsigned int realItem, int disable, int notify = 1);
    void DisableRealItems(const std::vector<unsigned int>& realItems, int disable, int notify = 1);
    void DisableAllItems(int disable, int notify = 1);
    void SetDisableRealItemsEnabled(bool enabled);
    bool GetDisableRealItemsEnabled() const;
    // Makes the item's row the focused row (the selection stays).
    void FocusRealItem(unsigned int realItem);
    void EnsureRealItemVisible(unsigned int realItem);
    // Redraws the item's row and tells the subscribers (NotifyItemRefresh)
    // that the application changed its data. The row keeps its place.
    void RefreshRealItem(unsigned int realItem, int notify = 1);
    // Removes and destroys all items; with `notify`, tells the subscribers
    // (NotifyItemCleanup).
    void CleanupRealItems(int notify = 1);
    unsigned int GetRealItemCount() const;
    CNyrReportViewItem* GetRealItem(unsigned int realItem) const;
    CNyrReportViewItem* GetItem(int screenItem) const;
    int ScreenItemFromReal(unsigned int realItem) const;
    int RealItemFromScreen(int screenItem) const;
    // The document the item stands for (OnGetItemDocument).
    QPointer<QObject> GetRealItemDocument(unsigned int realItem, unsigned int realCol = 0) const;

    int GetRealItemChecked(unsigned int realItem) const;
    int GetRealItemSelected(unsigned int realItem) const;
    int GetRealItemDisabled(unsigned int realItem) const;
    int GetRealItemFocused(unsigned int realItem) const;
    int GetCheckedCount() const;
    int GetSelectedCount() const;
    int GetDisabledCount() const;
    // At least one / more than one.
    int GetItemsChecked() const;
    int GetItemsSelected() const;
    int GetItemsDisabled() const;
    int GetMultipleItemsChecked() const;
    int GetMultipleItemsSelected() const;
    int GetMultipleItemsDisabled() const;
    // Screen rows, in screen order.
    void GetSelectedItems(std::vector<int>& screenItems) const;
    void GetCheckedItems(std::vector<int>& screenItems) const;
    void GetDisabledItems(std::vector<int>& screenItems) const;
    // Real indexes, in real order.
    void GetSelectedRealItems(std::vector<unsigned int>& realItems) const;
    void GetCheckedRealItems(std::vector<unsigned int>& realItems) const;
    void GetDisabledRealItems(std::vector<unsigned int>& realItems) const;
    // The real items of the first and last screen row; -1 for an empty screen.
    int GetFirstRealItemOnScreen() const;
    int GetLastRealItemOnScreen() const;
    int GetFocusedRealItem() const;
    // 1 and the record filled for an item of the model (screenItem -1 when
    // it is not on screen), 0 for a bad index.
    int CompleteItemFromReal(unsigned int realItem, COMPLETE_ITEM& complete) const;
    int CompleteItemFromScreen(int screenItem, COMPLETE_ITEM& complete) const;
    // Redraws one screen row.
    void InvalidateScreenItem(int screenItem);

    // ---- The list view's screen access, answered from the model ----

    int GetItemCount() const override;
    int GetColumnCount() const override;
    std::string GetItemText(int screenItem, int screenCol) const override;
    std::string GetColumnLabel(int screenCol) const override;
    unsigned int GetItemState(int screenItem, unsigned int mask) const override;
    // Goes through SelectRealItem / FocusRealItem (notifying).
    int SetItemState(int screenItem, unsigned int state, unsigned int mask) override;
    int GetCheck(int screenItem) const override;
    int SetCheck(int screenItem, int check) override;

    // ---- Subscriptions ----

    // ORs the mask into the window's entry, or appends an entry.
    void AddItemNotification(QObject* window, long mask);
    // The window's first entry keeps mask AND (1023 - mask) (only the ten
    // defined bits survive, intended) and goes when that is 0.
    void RemoveItemNotification(QObject* window, long mask);
    // The mask of the window's first entry; 0 when it has none.
    long GetItemNotification(QObject* window) const;

    void SetSuppressHideNotifications(bool suppress);
    bool GetSuppressHideNotifications() const;
    void SetSuppressRefreshNotifications(bool suppress);
    bool GetSuppressRefreshNotifications() const;
    void SetSuppressDisableNotifications(bool suppress);
    bool GetSuppressDisableNotifications() const;
    // True only when the list view's switches and hide, refresh and disable
    // are all on; setting sets them all.
    void SetSuppressAllNotifications(bool suppress) override;
    bool GetSuppressAllNotifications() const override;
    // Saves the list view's switches and hide and refresh; not disable.
    void SaveAllSuppressNotifications() override;
    // Restores what the save kept; 0 and nothing changes without a save.
    int RestoreAllSuppressNotifications() override;

    // ---- Sorting ----

    // Replaces the sort state and reorders the screen. A state of more than
    // three keys is ignored altogether (intended: three sort columns at
    // most). Keys compare with the items' OnCompareItem; rows equal on every
    // key keep insertion order under an ascending first key and reverse it
    // under a descending one; an empty state is insertion order. Stores the
    // state when SerializeSortState is on; tells the subscribers
    // (NotifyItemSortOrder).
    void SortList(const std::vector<SORT_STATE_REALCOL>& state);
    // The screen form: keys on hidden columns cannot be named and end the state.
    void SortList(const std::vector<SORT_STATE_SCREENCOL>& state) override;
    void GetSortState(std::vector<SORT_STATE_REALCOL>& state) const;
    using CNyrListView::GetSortState;
    // Forgets the sort state (and its marks) without reordering the screen.
    void SetUnsortedState();
    void RefreshHeaderSortedState();
    // Removes the header marks; the state stays.
    void HideHeaderSortedState();
    // Writes "SortState" (real column, ascending 1/0 per key) to the view's
    // section of the settings file. Returns the store's result.
    int StoreSortState();
    // Reads "SortState". Refused whole (empty state, 0) when absent or empty,
    // of an odd length, or with a column below 0 or above the number of real
    // columns. A column equal to that number passes (intended).
    int LoadSortState(std::vector<SORT_STATE_REALCOL>& state);
    void SetSerializeSortState(int serialize);
    int GetSerializeSortState() const;
    static void SetSerializeSortStateDefault(int serialize);
    static int GetSerializeSortStateDefault();
    // The sort state of the multiple-columns dialog, applied on OK; 1 when
    // applied.
    int SortMultiple();

    // ---- Column layout ----
    //
    // Stored per view in its settings section, one entry per real column in
    // real order:
    //   "ColWidth": -2 deleted, -1 hidden, else the width on screen (pixels);
    //   "ColOrder": a visible column's display position, a hidden or deleted
    //               column's own real index.
    // With SerializeColWidthAndHidden / SerializeColOrder on, the view
    // restores these when it opens (AutoRestore, before the items first
    // show) and stores them when the columns dialog changed the layout and
    // when the view goes away (if it went live; the section is the one it
    // had then).

    // Write "ColWidth" / "ColOrder" from the screen; the order is also
    // recorded in each column's order field. 0 when the store refuses (or
    // the view has no columns).
    int StoreColWidthAndHidden();
    int StoreColOrder();
    // Read "ColWidth": non-zero when a value is stored (and the view has
    // columns). A value shorter than the columns is filled up with 80 (the
    // columns added since show with 80 pixels); a longer one is passed on.
    int LoadColWidthAndHidden(std::vector<int>& widths);
    // Read "ColOrder": non-zero whenever the view has columns. Nothing
    // stored gives 0, 1, 2, ...; a shorter value is filled up with each
    // missing column's own real index. Duplicates, values out of range and
    // extra entries are passed on as they are (see ApplyColOrder).
    int LoadColOrder(std::vector<int>& order);
    // Applies a "ColWidth" value: -2 deletes the column, -1 hides it, any
    // other value of 0 or more shows it with that width (clamped to the
    // header's minimum section size and 32767). Other negative values and
    // entries past the last column are ignored. The columns' own hooks may
    // veto (OnHideCol, OnDeleteCol). A value that would leave no column on
    // screen is refused whole.
    void ApplyColWidthAndHidden(const std::vector<int>& widths);
    // Applies a "ColOrder" value. The values are sort keys, not checked
    // positions: the visible columns are shown in ascending order of their
    // values, equal values in real order. So a value with duplicate
    // positions, gaps, negative numbers or numbers past the column count
    // still shows every visible column exactly once; entries past the last
    // real column are ignored, missing ones keep the column's order field.
    // Afterwards every visible column's order field is its display position.
    void ApplyColOrder(const std::vector<int>& order);

    void SerializeColWidthAndHidden(int serialize);
    int GetSerializeColWidthAndHidden() const;
    void SerializeColOrder(int serialize);
    int GetSerializeColOrder() const;
    // Taken over by new views; both 0 unless set.
    static void SerializeColWidthAndHiddenDefault(int serialize);
    static int GetSerializeColWidthAndHiddenDefault();
    static void SerializeColOrderDefault(int serialize);
    static int GetSerializeColOrderDefault();

    // Sets a column's width in pixels (on screen when it shows, else for
    // when it shows again). 0 for a bad column or a negative width.
    int SetRealColWidth(unsigned int realCol, int width);
    // Reads the width, display position and left edge of every column on
    // screen into the column objects, so that a rebuild of the screen
    // columns (DisplayRealCols) keeps the layout the user made.
    void HoldAllColInfos();
    // Makes the current layout the defaults the columns dialog goes back to:
    // each column's hidden default and default width become its current
    // state, its default order its display position (a hidden column's: its
    // real index). Until called, the defaults are the columns' constructor
    // values and real order.
    void HoldRealColsDefaults();
    // The default order of a column (its real index unless
    // HoldRealColsDefaults set another); -1 for a bad index.
    int GetRealColOrderDefault(unsigned int realCol) const;

    // Opens the columns dialog (CNyrReportViewColumnsDlg) and applies it on
    // OK; then stores the layout as serialised. Returns 1 when applied; 0
    // (nothing shown) while ColumnsDlgStyle is 0.
    int ColumnsDialog();
    // eColumnsDlgStyle bits; new views take the class default (all).
    void SetColumnsDlgStyle(unsigned int style);
    unsigned int GetColumnsDlgStyle() const;
    static void SetColumnsDlgStyleDefault(unsigned int style);
    static unsigned int GetColumnsDlgStyleDefault();

    // The report view's save-as dialog (CNyrReportViewSaveAsDlgCV).
    int SaveAs() override;
    // Through the items' own states (notifying), in one batch.
    void SelectScreenItems(const std::vector<int>& screenItems, int keepOthers) override;
    void CheckScreenItems(const std::vector<int>& screenItems, int keepOthers) override;

    // ---- Menus and styles ----

    // Which pieces each context menu holds; the shift variant is used when
    // Shift is held as the menu opens. New views take the class defaults.
    void SetHeaderMenu(unsigned int style, unsigned int shiftStyle);
    unsigned int GetHeaderMenu(bool shift = false) const;
    void SetItemMenu(unsigned int style, unsigned int shiftStyle);
    unsigned int GetItemMenu(bool shift = false) const;
    void SetItemBkMenu(unsigned int style, unsigned int shiftStyle);
    unsigned int GetItemBkMenu(bool shift = false) const;
    static void SetHeaderMenuDefault(unsigned int style, unsigned int shiftStyle);
    static unsigned int GetHeaderMenuDefault(bool shift = false);
    static void SetItemMenuDefault(unsigned int style, unsigned int shiftStyle);
    static unsigned int GetItemMenuDefault(bool shift = false);
    static void SetItemBkMenuDefault(unsigned int style, unsigned int shiftStyle);
    static unsigned int GetItemBkMenuDefault(bool shift = false);
    // The application's menus merged into every view's context menus of that
    // kind (MenuGlobal); not owned.
    static void SetGlobalHeaderMenu(QMenu* menu);
    static void SetGlobalItemMenu(QMenu* menu);
    static void SetGlobalItemBkMenu(QMenu* menu);

    // With AutoRestore the view restores its stored layout (the sort state,
    // when SerializeSortState is on) the first time it shows its items. Add
    // the columns before that.
    void SetAutoRestore(int autoRestore);
    int GetAutoRestore() const;
    static void SetAutoRestoreDefault(int autoRestore);
    static int GetAutoRestoreDefault();

    // Fill a context menu; `realCol` is the column under the header menu and
    // `realItem` the item under the item menu. Override to add your own.
    virtual void BuildHeaderContextMenu(CNyrReportViewMenuPopUp& menu, unsigned int realCol, bool shift = false);
    virtual void BuildRealItemContextMenu(CNyrReportViewMenuPopUp& menu, unsigned int realItem, bool shift = false);
    virtual void BuildItemBkContextMenu(CNyrReportViewMenuPopUp& menu, bool shift = false);
    void InsertMenuAutoArrange(CNyrReportViewMenuPopUp& menu);
    void InsertMenuSort(CNyrReportViewMenuPopUp& menu, unsigned int realCol);
    void InsertMenuViewHide(CNyrReportViewMenuPopUp& menu, unsigned int realCol);
    void InsertMenuColumns(CNyrReportViewMenuPopUp& menu);
    // Find (always enabled) and Find Next / Previous (enabled while there is
    // a search text and a row).
    void InsertMenuFind(CNyrReportViewMenuPopUp& menu);
    void InsertMenuFindNP(CNyrReportViewMenuPopUp& menu);
    void InsertMenuSaveAs(CNyrReportViewMenuPopUp& menu);
    // Print, print preview and PDF export (enabled while a column shows).
    void InsertMenuPrint(CNyrReportViewMenuPopUp& menu);
    void InsertMenuSelect(CNyrReportViewMenuPopUp& menu);
    void InsertMenuCheck(CNyrReportViewMenuPopUp& menu);
    void InsertMenuModify(CNyrReportViewMenuPopUp& menu);
    void InsertMenuDelete(CNyrReportViewMenuPopUp& menu);
    void InsertGlobalHeaderMenu(CNyrReportViewMenuPopUp& menu);
    void InsertGlobalItemMenu(CNyrReportViewMenuPopUp& menu);
    void InsertGlobalItemBkMenu(CNyrReportViewMenuPopUp& menu);
    // Builds and shows a context menu at a global position, as the mouse
    // does: over a header section, a row or the background; the shift
    // variant when Shift is held now, or when `shift` says so.
    void ShowContextMenu(const QPoint& globalPos);
    void ShowContextMenu(const QPoint& globalPos, bool shift);

    // ---- In-place editing ----
    //
    // A cell is edited in the typed field its item names
    // (CNyrReportViewItem::OnEditItemKind), laid over the cell. F2 edits the
    // focused row's current cell, or its first editable one. So does a slow
    // double click: a click on the current cell of a selected row that comes
    // more than a double-click interval after the click before and is not the
    // first of a double click; the view sends itself WM_NYR_DBLCLK_SLOW for
    // it (wParam the real item, lParam the real column; a host may send it
    // too; the result is 1 when the editor opened, as EditRealItem). Enter
    // saves, Escape cancels, Tab and Shift+Tab save and go on to the next
    // editable cell of the row in display order (editing ends after the
    // last); leaving the editor for elsewhere saves. The item stores or
    // refuses the value (OnEditItemSave); a refused value keeps the editor
    // open with its message. A stored value redraws the row at once
    // (RefreshRealItem, notifying), and when the view is sorted by that
    // column the rows are sorted again (DisplayRealItems), so the sort, find
    // and save-as see the new value. An editor whose cell leaves the screen
    // (its row or column hidden or deleted, the items cleaned up) is cancelled.

    // Starts editing a cell; 1 when the editor is open. 0 when the item
    // refuses (or is disabled), the cell is not on screen, or the value of a
    // cell being edited is refused (that editor stays).
    int EditRealItem(unsigned int realItem, unsigned int realCol);
    // The open editor; null when no cell is being edited.
    CNyrInputControl* GetInplaceEditor() const;
    // The cell being edited; 0 (and nothing set) when none is.
    int GetInplaceEditCell(unsigned int& realItem, unsigned int& realCol) const;
    // Ends editing: with `save` as Enter does (0 when the value is refused:
    // the editor stays open), without as Escape. 1 when no editor is open.
    int EndInplaceEdit(int save);

protected:
    // The hooks that tell subscribers; an override that does not call the
    // base keeps the message from being sent.
    virtual void OnDisplayItemsBegin(int keepPosition);
    virtual void OnDisplayItemsEnd(int keepPosition);
    virtual void OnCleanupRealItems();
    virtual void OnRefreshRealItem(unsigned int realItem);
    virtual void OnAppendRealItem(unsigned int realItem);
    virtual void OnHideRealItem(unsigned int realItem, int hide);
    virtual void OnSortOrderChanged();
    // Told of a change after it is made, before the subscribers; the
    // defaults do nothing.
    virtual void OnSelectRealItem(unsigned int realItem, int screenItem, int select);
    virtual void OnCheckRealItem(unsigned int realItem, int screenItem, int check);
    virtual void OnDisableRealItem(unsigned int realItem, int screenItem, int disable);
    // "&Modify..." on an item; the default does nothing.
    virtual void OnModifyRealItem(unsigned int realItem);
    // "&Delete" on an item and the Delete key (with MenuDelete) end here;
    // the default deletes the selected items (DeleteSelectedItems, notifying).
    // A host overrides it to ask once for the whole selection.
    virtual void OnDeleteSelectedItems();

    // The state changes behind the public operations: change the item (its
    // hook runs), redraw, then for each bit that changed (and with notify,
    // unless that kind's suppress switch is on) the view's hook and the
    // message. `screenItem` is not trusted: the row is looked up again.
    void OnSelectRealItemInternal(unsigned int realItem, int screenItem, int select, CNyrReportViewItem* item,
                                  int notify);
    void OnCheckRealItemInternal(unsigned int realItem, int screenItem, int check, CNyrReportViewItem* item,
                                 int notify);
    void OnDisableRealItemInternal(unsigned int realItem, int screenItem, int disable, CNyrReportViewItem* item,
                                   int notify);
    // Sends the message to each subscriber whose mask has `bit` and whose
    // window still exists, in the order of subscription; while another
    // message is being sent, after it (see the class comment).
    void SendNotificationToNotifyItems(long bit, unsigned int message, qintptr lParam);
    // The layout the view restores under AutoRestore; called once, before the
    // items first show: the stored column widths and visibility and column
    // order (as serialised), then the sort state (when SerializeSortState).
    virtual void RestoreLayout();

    void OnHeaderClick(int screenCol) override;
    bool event(QEvent* e) override;
    void contextMenuEvent(QContextMenuEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    // The view's parts (report_view_p.h): the one class that reaches inside.
    friend class CNyrReportViewPrivate;
    std::unique_ptr<CNyrReportViewPrivate> d;
};
