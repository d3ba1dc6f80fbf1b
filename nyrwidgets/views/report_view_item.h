#pragma once

#include <QPointer>
#include <optional>
#include <string>

#include "nyr/platform/export.h"
#include "nyr/time/time.h"
#include "nyrwidgets/views/compare.h"

class CNyrInputControl;
class CNyrReportView;
class CNyrReportViewPrivate;
class QObject;
class QPainter;
class QStyleOptionViewItem;

// A colour as 0x00BBGGRR (red in the low byte), the form the colour hooks use.
inline constexpr unsigned int NyrRGB(unsigned r, unsigned g, unsigned b)
{
    return (r & 0xFFu) | ((g & 0xFFu) << 8) | ((b & 0xFFu) << 16);
}
// "Leave the colour as the view draws it": what the colour hook receives.
inline constexpr unsigned int NYR_CLR_DEFAULT = 0xFF000000u;

// One real item of a report view: the base of an application's item classes.
// A derived class holds the item's data and answers the hooks below; the view
// owns the item once it is added (AddRealItem / AppendRealItem).
//
// States: an item is visible when it is neither hidden nor deleted. Hidden and
// deleted items keep their checked, selected and disabled bits, but the
// predicates report them as unset, so that viewing an item again restores its
// marks. A deleted item stays in the view's model (its real index stays
// valid) and is skipped everywhere.
//
// The state operations here change the item only. Use the view's operations
// (CheckRealItem, SelectRealItem, ...) to have the screen and the subscribers
// follow; they call these with notify set.
class NYR_EXPORT CNyrReportViewItem
{
public:
    // Bits of the item state, in the layout of the list control's item state.
    enum eItemState : unsigned int { StateSelected = 2, StateDisabled = 4 };
    // Bits of the model flags.
    enum eModelFlags : unsigned int { FlagHidden = 1, FlagDeleted = 2, FlagChecked = 4 };

    // A cell's value in a form the library compares itself (OnGetItemSortKey).
    struct SORT_KEY
    {
        enum eKind : int
        {
            KindNone = 0,
            KindNumber,
            KindInteger,
            KindTime
        };
        eKind kind = KindNone;
        double number = 0.0;           // KindNumber: compares as Compare(double, double), NaN last
        long long integer = 0;         // KindInteger: compares as Compare(long, long)
        std::optional<CNyrTime> time;  // KindTime: compares as Compare(const CNyrTime&, const CNyrTime&)

        void SetNumber(double value) { kind = KindNumber, number = value; }
        void SetInteger(long long value) { kind = KindInteger, integer = value; }
        void SetTime(const CNyrTime& value) { kind = KindTime, time = value; }
    };

    CNyrReportViewItem() = default;
    virtual ~CNyrReportViewItem();
    CNyrReportViewItem(const CNyrReportViewItem&) = delete;
    CNyrReportViewItem& operator=(const CNyrReportViewItem&) = delete;

    // The view that holds the item; null until it is added to one.
    CNyrReportView* Owner() const { return m_owner; }
    unsigned int GetItemState() const { return m_itemState; }
    unsigned int GetModelFlags() const { return m_modelFlags; }

    bool IsHidden() const { return (m_modelFlags & FlagHidden) != 0; }
    bool IsDeleted() const { return (m_modelFlags & FlagDeleted) != 0; }
    bool IsVisible() const { return (m_modelFlags & (FlagHidden | FlagDeleted)) == 0; }
    // The checked bit, reported only while the item is visible.
    bool IsChecked() const { return (m_modelFlags & FlagChecked) != 0 && IsVisible(); }
    bool IsSelected() const { return (m_itemState & StateSelected) != 0 && IsVisible(); }
    bool IsDisabled() const { return (m_itemState & StateDisabled) != 0 && IsVisible(); }

    // 1 when the hidden bit equals `hide` (already, or after the change); 0
    // for a deleted item or when OnHideItem (called only with notify) vetoes.
    int HideItem(int hide, int notify);
    // 1 when the item is deleted (already, or now); 0 when OnDeleteItem
    // (called only with notify) vetoes.
    int DeleteItem(int notify);
    // Nothing happens when IsChecked() already equals `check` or the item is
    // deleted; otherwise OnCheckItem (with notify), then the bit is set or
    // cleared. On a hidden item IsChecked() is false, so CheckItem(1) runs
    // (the hook is told, the bit is set even when it already was) and
    // CheckItem(0) does nothing: the mark shows as it was once viewed again.
    void CheckItem(int check, int notify);
    // Nothing happens when IsSelected() equals `select` or the item is
    // deleted; a disabled item is never selected, hidden or not (deselecting
    // it goes through).
    void SelectItem(int select, int notify);
    // Nothing happens when IsDisabled() equals `disable` or the item is
    // deleted. Disabling an item whose selected bit is set, hidden or not,
    // deselects it first (OnSelectItem(0) with notify), so no item ever holds
    // both bits.
    void DisableItem(int disable, int notify);

    // Hooks, in this order. realCol / realItem are model indexes, screenCol /
    // screenItem the positions on screen.

    // Non-zero allows the change; the default allows.
    virtual int OnHideItem(int hide);
    // Non-zero allows the deletion; the default allows.
    virtual int OnDeleteItem();
    // Told of a change before it is made; no veto. The defaults do nothing.
    virtual void OnCheckItem(int check);
    virtual void OnSelectItem(int select);
    virtual void OnDisableItem(int disable);
    // Index into the view's image list of the cell's image; -1 (the default)
    // for none.
    virtual int OnGetItemImage(unsigned int realCol, unsigned int screenCol);
    // The text of a cell. The default empties `text` and returns 0.
    virtual int OnGetItemText(unsigned int realCol, unsigned int screenCol, std::string& text);
    // Kept for derived classes; the view never calls it. Does nothing.
    virtual void OnGetItemText(unsigned int realCol, unsigned int screenCol);
    // The text of the item's label cell (the first screen column). The default
    // answers OnGetItemText(realCol, 0, text).
    virtual int OnGetMainItemText(unsigned int realCol, std::string& text);
    // May change a cell's colours (0x00BBGGRR). Both arrive as NYR_CLR_DEFAULT;
    // whichever the hook leaves so is drawn as the view draws it. The default
    // changes nothing.
    virtual void OnGetItemColor(unsigned int realItem, unsigned int screenItem, unsigned int realCol,
                                unsigned int screenCol, unsigned int& textColor, unsigned int& backColor);
    // Custom drawing of a cell: return non-zero after painting the cell into
    // option.rect yourself; 0 (the default) lets the view draw it.
    virtual int OnGetItemOwnerDraw(unsigned int realItem, unsigned int screenItem, unsigned int realCol,
                                   unsigned int screenCol, QPainter* painter, const QStyleOptionViewItem& option);
    // The tool tip of a cell: non-zero with the text, 0 (the default) for none.
    virtual int OnGetItemToolTip(unsigned int realCol, unsigned int screenCol, std::string& text);
    // Three-way comparison with `other` on a column, for sorting: negative
    // when this item comes first in ascending order. The default compares the
    // two items' sort keys (OnGetItemSortKey) with the comparison of their
    // kind, and answers 0 when either has none or the kinds differ (so items
    // without keys are all equal, and sorting keeps insertion order).
    // `realCol` may be any number a stored sort state carries, even one past
    // the last column.
    virtual int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol);
    // The document object the item stands for, owned elsewhere; the default
    // has none.
    virtual QPointer<QObject> OnGetItemDocument(unsigned int realCol);
    // The value the item sorts by on a column: set `key` and return non-zero,
    // or 0 (the default) for none. A view sorts its rows by the keys, read
    // once per item, when every row has one of the same kind for each sort
    // column, and then checks the order with OnCompareItem, one call per
    // pair of neighbouring rows; where the comparison disagrees with the
    // keys, or a row has no key, it sorts through OnCompareItem alone. So an
    // item class may override OnCompareItem and still offer keys, and the
    // comparison always decides; keys that order as it does save the time.
    virtual int OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const;

    // In-place editing (CNyrReportView::EditRealItem, F2, a slow double click).
    // The typed field (eNyrInputKind) that edits the cell; 0 (NYR_INPUT_NONE,
    // the default) keeps the cell from being edited.
    virtual int OnEditItemKind(unsigned int realCol);
    // Prepares the field before it shows: its value, and its range or
    // precision as the cell needs. The default leaves it empty.
    virtual void OnEditItemBegin(unsigned int realCol, CNyrInputControl& field);
    // The field's new value, which passed the field's own rules (read it from
    // the field of the kind OnEditItemKind named): store it and return
    // non-zero, or refuse it with 0 and the message to show at the field in
    // `message` (empty: the field's own "invalid" text). The default refuses.
    virtual int OnEditItemSave(unsigned int realCol, CNyrInputControl& field, std::string& message);

    // Three-way comparisons for OnCompareItem (negative, 0, positive); each
    // forwards to the library's NyrCompare, NyrCompareIS, NyrCompareDatePart
    // or NyrCompareTimePart. The DatePart forms compare the calendar days
    // only, the TimePart forms the times of day only.
    static int Compare(const std::string& a, const std::string& b) { return NyrCompare(a, b); }
    static int CompareIS(const std::string& a, const std::string& b) { return NyrCompareIS(a, b); }
    static int Compare(int a, int b) { return NyrCompare(a, b); }
    static int Compare(long a, long b) { return NyrCompare(a, b); }
    static int Compare(unsigned int a, unsigned int b) { return NyrCompare(a, b); }
    static int Compare(unsigned long a, unsigned long b) { return NyrCompare(a, b); }
    static int Compare(double a, double b) { return NyrCompare(a, b); }
    static int Compare(const CNyrTime& a, const CNyrTime& b) { return NyrCompare(a, b); }
    static int Compare(const CTime& a, const CTime& b) { return NyrCompare(a, b); }
    static int Compare(const COleDateTime& a, const COleDateTime& b) { return NyrCompare(a, b); }
    static int CompareDatePart(const CNyrTime& a, const CNyrTime& b) { return NyrCompareDatePart(a, b); }
    static int CompareDatePart(const CTime& a, const CTime& b) { return NyrCompareDatePart(a, b); }
    static int CompareDatePart(const COleDateTime& a, const COleDateTime& b) { return NyrCompareDatePart(a, b); }
    static int CompareTimePart(const CNyrTime& a, const CNyrTime& b) { return NyrCompareTimePart(a, b); }
    static int CompareTimePart(const CTime& a, const CTime& b) { return NyrCompareTimePart(a, b); }
    static int CompareTimePart(const COleDateTime& a, const COleDateTime& b) { return NyrCompareTimePart(a, b); }

private:
    // The owning view's parts adopt the item (report_view_p.h).
    friend class CNyrReportViewPrivate;

    CNyrReportView* m_owner = nullptr;  // set by the view that adopts the item
    unsigned int m_itemState = 0;       // eItemState bits
    unsigned int m_modelFlags = 0;      // eModelFlags bits
};
