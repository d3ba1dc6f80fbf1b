// The selected, checked and disabled bits of CNyrReportView's items: the
// operations that change them, the screen and the subscribers following each
// change, and the queries over them.
#include "nyr/frame/notifications.h"
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::Ix;
using RealItem = nyr::views_detail::RealItem;
using ScreenItem = nyr::views_detail::ScreenItem;

// ---------------------------------------------------------------------------
// One change, told

void CNyrReportViewPrivate::TellItemChanges(unsigned int realItem, unsigned int stateBefore, unsigned int flagsBefore,
                                            int notify)
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
    if (OnScreen(static_cast<RealItem>(realItem))) {
        const ScreenItem s = ScreenOf(static_cast<RealItem>(realItem));
        // The row's flags (greyed, not selectable) and check mark follow from
        // the item; Qt's selection is set apart.
        RowChanged(s);
        if (selectChanged || disableChanged)
            MirrorRowSelection(s, item->IsSelected());
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
         CNyrReportView::NotifyItemSelect, WM_NYR_REPORTVIEW_ITEM_SELECT, WM_NYR_REPORTVIEW_ITEM_DESELECT);
    tell(disableChanged, suppressDisable, disabled, &CNyrReportView::OnDisableRealItem,
         CNyrReportView::NotifyItemDisable, WM_NYR_REPORTVIEW_ITEM_DISABLE, WM_NYR_REPORTVIEW_ITEM_ENABLE);
    tell(checkChanged, q->GetSuppressCheckNotifications(), checked, &CNyrReportView::OnCheckRealItem,
         CNyrReportView::NotifyItemCheck, WM_NYR_REPORTVIEW_ITEM_CHECK, WM_NYR_REPORTVIEW_ITEM_UNCHECK);
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

// ---------------------------------------------------------------------------
// Several items

template <class F>
void CNyrReportViewPrivate::ForEachItem(const std::vector<unsigned int>& realItems, F f)
{
    const std::uint64_t before = generation;
    for (unsigned int r : realItems) {
        if (generation != before)
            return;
        f(r);
    }
}

template <class F>
void CNyrReportViewPrivate::ForEachVisibleItem(F f)
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

namespace {

// The rows of `screenItems` that are on screen, as a flag per row.
std::vector<char> ChosenRows(const CNyrReportViewPrivate& d, const std::vector<int>& screenItems)
{
    std::vector<char> chosen(d.screenToRealItem.size(), 0);
    for (int s : screenItems) {
        if (d.ValidScreen(s))
            chosen[static_cast<std::size_t>(s)] = 1;
    }
    return chosen;
}

}  // namespace

// ---------------------------------------------------------------------------
// Checking

void CNyrReportView::CheckRealItem(unsigned int realItem, int check, int notify)
{
    if (d->ValidReal(realItem))
        OnCheckRealItemInternal(realItem, ScreenItemFromReal(realItem), check, d->items[realItem], notify);
}

void CNyrReportView::CheckRealItems(const std::vector<unsigned int>& realItems, int check, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachItem(realItems, [&](unsigned int r) { CheckRealItem(r, check, notify); });
}

void CNyrReportView::CheckSelectedItems(int check, int notify)
{
    std::vector<unsigned int> realItems;
    GetSelectedRealItems(realItems);
    CheckRealItems(realItems, check, notify);
}

void CNyrReportView::CheckAllItems(int check, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { CheckRealItem(r, check, notify); });
}

void CNyrReportView::InvertChecked(int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { CheckRealItem(r, !d->items[r]->IsChecked(), notify); });
}

void CNyrReportView::CheckScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    const std::vector<char> chosen = ChosenRows(*d, screenItems);
    const CNyrReportViewPrivate::StateBatch batch(*d);
    for (std::size_t s = 0; s < chosen.size(); ++s) {
        const RealItem r = d->screenToRealItem[s];
        if (chosen[s] || (!keepOthers && d->Item(r)->IsChecked()))
            CheckRealItem(Ix(r), chosen[s], 1);
    }
}

// ---------------------------------------------------------------------------
// Selecting

void CNyrReportView::SelectRealItem(unsigned int realItem, int select, int notify)
{
    if (d->ValidReal(realItem))
        OnSelectRealItemInternal(realItem, ScreenItemFromReal(realItem), select, d->items[realItem], notify);
}

void CNyrReportView::SelectRealItems(const std::vector<unsigned int>& realItems, int select, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachItem(realItems, [&](unsigned int r) { SelectRealItem(r, select, notify); });
}

void CNyrReportView::SelectAllItems(int select, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, select, notify); });
}

void CNyrReportView::selectAll()
{
    SelectAllItems(1, 1);
}

void CNyrReportView::InvertSelection(int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, !d->items[r]->IsSelected(), notify); });
}

void CNyrReportView::SelectCheckedItems(int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachVisibleItem([&](unsigned int r) { SelectRealItem(r, d->items[r]->IsChecked(), notify); });
}

void CNyrReportView::SelectScreenItems(const std::vector<int>& screenItems, int keepOthers)
{
    const std::vector<char> chosen = ChosenRows(*d, screenItems);
    const CNyrReportViewPrivate::StateBatch batch(*d);
    for (std::size_t s = 0; s < chosen.size(); ++s) {
        const RealItem r = d->screenToRealItem[s];
        if (chosen[s] || (!keepOthers && d->Item(r)->IsSelected()))
            SelectRealItem(Ix(r), chosen[s], 1);
    }
}

// ---------------------------------------------------------------------------
// Disabling

void CNyrReportView::DisableRealItem(unsigned int realItem, int disable, int notify)
{
    if (d->ValidReal(realItem))
        OnDisableRealItemInternal(realItem, ScreenItemFromReal(realItem), disable, d->items[realItem], notify);
}

void CNyrReportView::DisableRealItems(const std::vector<unsigned int>& realItems, int disable, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
    d->ForEachItem(realItems, [&](unsigned int r) { DisableRealItem(r, disable, notify); });
}

void CNyrReportView::DisableAllItems(int disable, int notify)
{
    const CNyrReportViewPrivate::StateBatch batch(*d);
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

// ---------------------------------------------------------------------------
// Queries

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

// How many items answer `pred`, counting stops at `enough` (-1: all).
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

template <class Pred>
void ScreenItemsWhere(const CNyrReportViewPrivate& d, Pred pred, std::vector<int>& out)
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
