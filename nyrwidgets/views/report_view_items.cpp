// The real items of CNyrReportView: adding, deleting, hiding, and the
// queries over them.
#include "nyrwidgets/views/report_view_p.h"

using nyr::views_detail::Ix;
using nyr::views_detail::IxInt;
using nyr::views_detail::kOffScreenItem;
using RealItem = nyr::views_detail::RealItem;
using ScreenItem = nyr::views_detail::ScreenItem;

// ---------------------------------------------------------------------------
// Adding

bool CNyrReportViewPrivate::AdoptItem(CNyrReportViewItem& item)
{
    if (item.m_owner)
        return false;
    item.m_owner = q;
    if (item.m_itemState & CNyrReportViewItem::StateSelected)
        ++selectedBits;
    return true;
}

unsigned int CNyrReportView::AddRealItem(CNyrReportViewItem* item)
{
    if (!item || !d->AdoptItem(*item))
        return NYR_NO_INDEX;
    d->items.push_back(item);
    d->realToScreenItem.push_back(kOffScreenItem);
    return static_cast<unsigned int>(d->items.size() - 1);
}

unsigned int CNyrReportView::AppendRealItem(CNyrReportViewItem* item, int display)
{
    const unsigned int realItem = AddRealItem(item);
    if (realItem == NYR_NO_INDEX)
        return realItem;
    if (display) {
        d->GoLive();
        if (item->IsVisible())
            d->InsertRowOnScreen(static_cast<RealItem>(realItem));
    }
    OnAppendRealItem(realItem);
    return realItem;
}

// ---------------------------------------------------------------------------
// Deleting

int CNyrReportView::DeleteRealItem(unsigned int realItem, int)
{
    if (!d->ValidReal(realItem))
        return 0;
    const auto r = static_cast<RealItem>(realItem);
    if (!d->Item(r)->DeleteItem(1))
        return 0;
    d->RemoveRowFromScreen(r);
    return 1;
}

int CNyrReportView::DeleteRealItems(const std::vector<unsigned int>& realItems, int)
{
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

// ---------------------------------------------------------------------------
// Hiding

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
        const CNyrReportViewPrivate::HeldNotifications held(*d);
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

// ---------------------------------------------------------------------------
// Look-ups

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
