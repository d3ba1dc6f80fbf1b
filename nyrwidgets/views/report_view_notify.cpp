// The subscribers of CNyrReportView: subscribing, the suppress switches, and
// the hooks that send each kind of message.
#include <QScopedValueRollback>

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/report_view_p.h"

// ---------------------------------------------------------------------------
// Subscriptions

void CNyrReportView::AddItemNotification(QObject* window, long mask)
{
    if (!window)
        return;
    auto list = std::make_shared<CNyrReportViewPrivate::SubscriberList>(*d->subscribers);
    const auto it = std::find_if(list->begin(), list->end(), [window](const auto& s) { return s.window == window; });
    if (it != list->end())
        it->mask |= mask;
    else
        list->push_back({window, mask});
    d->subscribers = std::move(list);
}

void CNyrReportView::RemoveItemNotification(QObject* window, long mask)
{
    if (!window)
        return;
    auto list = std::make_shared<CNyrReportViewPrivate::SubscriberList>(*d->subscribers);
    const auto it = std::find_if(list->begin(), list->end(), [window](const auto& s) { return s.window == window; });
    if (it == list->end())
        return;
    // A subtraction from 1023, not a complement: bits above the ten defined
    // ones are dropped too. Intended.
    it->mask &= (NotifyItemAll - mask);
    if (it->mask == 0)
        list->erase(it);
    d->subscribers = std::move(list);
}

long CNyrReportView::GetItemNotification(QObject* window) const
{
    for (const CNyrReportViewPrivate::Subscriber& s : *d->subscribers) {
        if (window && s.window == window)
            return s.mask;
    }
    return 0;
}

void CNyrReportView::SendNotificationToNotifyItems(long bit, unsigned int message, qintptr lParam)
{
    if (d->subscribers->empty())
        return;
    d->pending.push_back({bit, message, lParam});
    // A change made by a subscriber while it is told of another waits until
    // every subscriber has been told of that one, so that all of them hear
    // of the changes in the order they were made.
    if (!d->dispatching)
        d->DeliverPending();
}

void CNyrReportViewPrivate::DeliverPending()
{
    const QScopedValueRollback delivering(dispatching, true);
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const Pending next = pending[i];
        // The list as it stands now, held (not copied) while the message goes
        // round: a subscriber may subscribe or unsubscribe windows meanwhile,
        // which replaces the list.
        const std::shared_ptr<const SubscriberList> now = subscribers;
        for (const Subscriber& s : *now) {
            if ((s.mask & next.bit) && NyrIsWindow(s.window))
                NyrSendMessage(s.window, next.message, reinterpret_cast<quintptr>(q), next.lParam);
        }
    }
    pending.clear();
}

// ---------------------------------------------------------------------------
// Suppress switches

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

void CNyrReportView::RefreshRealItem(unsigned int realItem, int notify)
{
    if (!d->ValidReal(realItem))
        return;
    InvalidateScreenItem(ScreenItemFromReal(realItem));
    if (notify && !d->suppressRefresh)
        OnRefreshRealItem(realItem);
}

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
