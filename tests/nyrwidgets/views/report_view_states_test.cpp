// Where hidden, disabled and selected rows meet, and subscribers that change
// the view while they are told of a change.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <functional>

#include "nyr/frame/notifications.h"
#include "tests/nyrwidgets/views/views_test_p.h"

using nyr::test::Fill;
using nyr::test::Highlighted;
using nyr::test::SelectedOnScreen;
using nyr::test::StateLedger;
using nyr::test::Subscriber;
using nyr::test::W;
using Msg = Subscriber::Message;

namespace {

// A shown view of items P0 ... P6 with check boxes and disabling on, and a
// ledger of every state message.
struct StateView
{
    StateView()
    {
        Fill(view, 7, &log);
        view.SetDisableRealItemsEnabled(true);
        view.SetCheckBoxes(true);
        view.resize(400, 400);
        view.show();
        ledger.Attach(view);
    }
    bool Shown() { return QTest::qWaitForWindowExposed(&view); }
    QPoint RowPoint(unsigned int realItem) const
    {
        return view.visualRect(view.model()->index(view.ScreenItemFromReal(realItem), 1)).center();
    }
    void Click(unsigned int realItem, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, RowPoint(realItem));
    }
    // The messages of one kind since the last Clear, as real items.
    std::vector<qintptr> Told(unsigned int message) const
    {
        std::vector<qintptr> items;
        for (const Msg& m : ledger.received) {
            if (m.message == message)
                items.push_back(m.lParam);
        }
        return items;
    }
    void Clear()
    {
        ledger.received.clear();
        log.clear();
    }

    std::vector<std::string> log;
    CNyrReportView view;
    StateLedger ledger;
};

using Items = std::vector<qintptr>;

TEST(ReportViewStates, HiddenDisabledRowIsNeverSelectedWhateverTheWayIn)
{
    const struct
    {
        const char* name;
        std::function<void(StateView&)> run;
    } ways[] = {
        {"menu", [](StateView& s) { NyrSendMessage(&s.view, WM_NYR_REPORTVIEW_SELECT_ALL); }},
        {"Ctrl+A", [](StateView& s) { QTest::keyClick(&s.view, Qt::Key_A, Qt::ControlModifier); }},
        {"SelectAllItems", [](StateView& s) { s.view.SelectAllItems(1); }},
        {"InvertSelection", [](StateView& s) { s.view.InvertSelection(); }},
        {"SelectRealItem", [](StateView& s) { s.view.SelectRealItem(3, 1); }},
    };
    for (const auto& way : ways) {
        StateView s;
        ASSERT_TRUE(s.Shown());
        s.view.SetItemMenu(CNyrReportView::MenuDelete, CNyrReportView::MenuDelete);
        s.view.setFocus();
        s.view.DisableRealItem(3, 1);
        s.view.HideRealItem(3, 1);
        way.run(s);
        s.view.HideRealItem(3, 0);
        EXPECT_EQ(s.view.GetRealItem(3)->GetItemState(), unsigned(CNyrReportViewItem::StateDisabled)) << way.name;
        EXPECT_EQ(Highlighted(s.view), SelectedOnScreen(s.view)) << way.name;

        // The user picks one more row and deletes: P3 stays.
        s.Click(5, Qt::ControlModifier);
        QTest::keyClick(&s.view, Qt::Key_Delete);
        EXPECT_FALSE(s.view.GetRealItem(3)->IsDeleted()) << way.name;
        EXPECT_EQ(s.ledger.Faults(s.view), std::vector<std::string>()) << way.name;
    }
}

TEST(ReportViewStates, SelectedRowDisabledWhileHiddenLosesItsSelectionWithNotice)
{
    StateView s;
    ASSERT_TRUE(s.Shown());
    s.view.SelectRealItem(2, 1);
    s.view.HideRealItem(2, 1);
    s.Clear();
    s.view.DisableRealItem(2, 1);
    EXPECT_EQ(s.ledger.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_DESELECT, W(s.view), 2},
                                                   {WM_NYR_REPORTVIEW_ITEM_DISABLE, W(s.view), 2}}));
    EXPECT_EQ(s.log, (std::vector<std::string>{"select-", "disable+"}));

    s.view.HideRealItem(2, 0);
    EXPECT_FALSE(s.view.GetRealItemSelected(2));
    EXPECT_EQ(Highlighted(s.view), std::vector<int>());
    s.view.DisableRealItem(2, 0);
    s.view.SelectRealItem(2, 1);
    EXPECT_EQ(Highlighted(s.view), std::vector<int>{2});
    EXPECT_EQ(s.ledger.Faults(s.view), std::vector<std::string>());
}

// Hidden: P1 (checked, selected) and P4 (disabled). Visible: P0, P2, P3, P5
// (disabled), P6.
void HideTwoMarkedItems(StateView& s)
{
    s.view.CheckRealItem(1, 1);
    s.view.SelectRealItem(1, 1);
    s.view.DisableRealItem(4, 1);
    s.view.DisableRealItem(5, 1);
    s.view.HideRealItems({1, 4}, 1);
    s.Clear();
}

TEST(ReportViewStates, AllCommandsActOnTheVisibleItemsAndTellEachChangeOnce)
{
    const struct
    {
        const char* name;
        unsigned int told;  // the message expected for the visible items
        Items items;
        std::function<void(StateView&)> run;
    } commands[] = {
        {"menu select all", WM_NYR_REPORTVIEW_ITEM_SELECT, {0, 2, 3, 6},
         [](StateView& s) { NyrSendMessage(&s.view, WM_NYR_REPORTVIEW_SELECT_ALL); }},
        {"Ctrl+A", WM_NYR_REPORTVIEW_ITEM_SELECT, {0, 2, 3, 6},
         [](StateView& s) { QTest::keyClick(&s.view, Qt::Key_A, Qt::ControlModifier); }},
        {"SelectAllItems", WM_NYR_REPORTVIEW_ITEM_SELECT, {0, 2, 3, 6}, [](StateView& s) { s.view.SelectAllItems(1); }},
        {"menu check all", WM_NYR_REPORTVIEW_ITEM_CHECK, {0, 2, 3, 5, 6},
         [](StateView& s) { NyrSendMessage(&s.view, WM_NYR_REPORTVIEW_CHECK_ALL); }},
        {"CheckAllItems", WM_NYR_REPORTVIEW_ITEM_CHECK, {0, 2, 3, 5, 6}, [](StateView& s) { s.view.CheckAllItems(1); }},
        {"DisableAllItems", WM_NYR_REPORTVIEW_ITEM_DISABLE, {0, 2, 3, 6},
         [](StateView& s) { s.view.DisableAllItems(1); }},
        {"enable all", WM_NYR_REPORTVIEW_ITEM_ENABLE, {5}, [](StateView& s) { s.view.DisableAllItems(0); }},
    };
    for (const auto& command : commands) {
        StateView s;
        ASSERT_TRUE(s.Shown());
        s.view.setFocus();
        HideTwoMarkedItems(s);
        command.run(s);
        EXPECT_EQ(s.Told(command.told), command.items) << command.name;
        // The hidden items keep their bits, untold.
        EXPECT_EQ(s.view.GetRealItem(1)->GetItemState(), unsigned(CNyrReportViewItem::StateSelected)) << command.name;
        EXPECT_EQ(s.view.GetRealItem(4)->GetItemState(), unsigned(CNyrReportViewItem::StateDisabled)) << command.name;
        // A second run changes nothing and tells nothing.
        s.Clear();
        command.run(s);
        EXPECT_EQ(s.ledger.received, std::vector<Msg>()) << command.name;
        // Shown again, every item is as the subscriber was told.
        s.view.HideAllItems(0);
        s.view.DisableAllItems(0);
        EXPECT_EQ(Highlighted(s.view), SelectedOnScreen(s.view)) << command.name;
        EXPECT_EQ(s.ledger.Faults(s.view), std::vector<std::string>()) << command.name;
    }
}

TEST(ReportViewStates, SubscriberHidingRowsDuringARangeSelectionLeavesScreenAndModelAgreeing)
{
    StateView s;
    ASSERT_TRUE(s.Shown());
    Subscriber hider;
    hider.onMessage = [&s](const Msg& m) {
        if (m.message == WM_NYR_REPORTVIEW_ITEM_SELECT)
            s.view.HideRealItem(static_cast<unsigned int>(m.lParam), 1);
    };
    s.view.AddItemNotification(&hider, CNyrReportView::NotifyItemSelect);
    s.Click(0);
    s.Click(6, Qt::ShiftModifier);
    EXPECT_EQ(Highlighted(s.view), SelectedOnScreen(s.view));
    for (int r : Highlighted(s.view))
        EXPECT_TRUE(s.view.GetRealItemSelected(static_cast<unsigned int>(r))) << r;
    // Every row the user's range covered was selected and told (and then
    // hidden by the subscriber).
    for (unsigned int r = 1; r <= 6; ++r)
        EXPECT_TRUE(s.view.GetRealItem(r)->IsHidden()) << r;
    EXPECT_EQ(s.ledger.Faults(s.view), std::vector<std::string>());
}

TEST(ReportViewStates, ChangesMadeWhileATellingRunsReachEverySubscriberInOrder)
{
    // Subscribed before the ledger: it undoes every selection as it hears
    // of it, so the ledger hears of the undoing only after the selection.
    CNyrReportView view;
    Fill(view, 4);
    Subscriber undo;
    undo.onMessage = [&view](const Msg& m) {
        if (m.message == WM_NYR_REPORTVIEW_ITEM_SELECT)
            view.SelectRealItem(static_cast<unsigned int>(m.lParam), 0);
    };
    view.AddItemNotification(&undo, CNyrReportView::NotifyItemSelect);
    StateLedger ledger;
    ledger.Attach(view);
    view.SelectRealItem(2, 1);
    EXPECT_EQ(ledger.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 2},
                                                 {WM_NYR_REPORTVIEW_ITEM_DESELECT, W(view), 2}}));
    EXPECT_EQ(undo.received, ledger.received);
    EXPECT_EQ(ledger.Faults(view), std::vector<std::string>());
    EXPECT_FALSE(view.GetRealItemSelected(2));
}

TEST(ReportViewStates, ARowViewedWhileABatchOfHidingsIsToldIsToldAfterTheBatch)
{
    CNyrReportView view;
    Fill(view, 4);
    view.SetDisableRealItemsEnabled(true);
    Subscriber meddler;
    meddler.onMessage = [&view](const Msg& m) {
        if (m.message == WM_NYR_REPORTVIEW_ITEM_HIDE && m.lParam == 0)
            view.HideRealItem(2, 0);  // its own hiding is not told yet
        if (m.message == WM_NYR_REPORTVIEW_ITEM_DESELECT && m.lParam == 3)
            view.DisableRealItem(3, 0);  // its disabling is not told yet
    };
    view.AddItemNotification(&meddler, CNyrReportView::NotifyItemAll);
    StateLedger ledger;
    ledger.Attach(view);
    view.HideAllItems(1);
    EXPECT_EQ(ledger.Faults(view), std::vector<std::string>());
    EXPECT_EQ(nyr::test::ScreenOrder(view), std::vector<int>{2});

    // The same for the deselection told before the disabling of one item.
    view.HideAllItems(0);
    view.SelectRealItem(3, 1);
    ledger.received.clear();
    view.DisableRealItem(3, 1);
    EXPECT_EQ(ledger.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_DESELECT, W(view), 3},
                                                 {WM_NYR_REPORTVIEW_ITEM_DISABLE, W(view), 3},
                                                 {WM_NYR_REPORTVIEW_ITEM_ENABLE, W(view), 3}}));
    EXPECT_EQ(ledger.Faults(view), std::vector<std::string>());
}

TEST(ReportViewStates, ChangesMadeWithoutNoticeStillReachTheModelsObservers)
{
    // Subscribers are not told with notify 0, but anyone watching the
    // model (a plan of the points, a proxy) must still see the row change:
    // one change a row, and a batch told once at its end.
    const struct
    {
        const char* name;
        std::function<void(CNyrReportView&)> run;
        int told;
        std::vector<unsigned int> rows;  // real items whose rows are inside the signalled range
    } ways[] = {
        {"select", [](CNyrReportView& v) { v.SelectRealItem(2, 1, 0); }, 1, {2}},
        {"check", [](CNyrReportView& v) { v.CheckRealItem(4, 1, 0); }, 1, {4}},
        {"disable", [](CNyrReportView& v) { v.DisableRealItem(1, 1, 0); }, 1, {1}},
        {"select all", [](CNyrReportView& v) { v.SelectAllItems(1, 0); }, 1, {0, 1, 2, 3, 4, 5, 6}},
        {"check all", [](CNyrReportView& v) { v.CheckAllItems(1, 0); }, 1, {0, 1, 2, 3, 4, 5, 6}},
        {"check some", [](CNyrReportView& v) { v.CheckRealItems({5, 1}, 1, 0); }, 1, {1, 5}},
        {"unchanged", [](CNyrReportView& v) { v.CheckRealItem(0, 0, 0); }, 0, {}},
    };
    for (const auto& way : ways) {
        StateView s;
        s.view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{0, 0}});  // rows in reverse
        s.Clear();
        QSignalSpy changed(s.view.model(), &QAbstractItemModel::dataChanged);
        way.run(s.view);
        ASSERT_EQ(changed.size(), way.told) << way.name;
        EXPECT_TRUE(s.ledger.received.empty()) << way.name;
        for (unsigned int r : way.rows) {
            const int row = s.view.ScreenItemFromReal(r);
            const auto first = changed.front().at(0).value<QModelIndex>();
            const auto last = changed.front().at(1).value<QModelIndex>();
            EXPECT_TRUE(first.row() <= row && row <= last.row()) << way.name << ": item " << r;
            EXPECT_EQ(last.column(), s.view.GetColumnCount() - 1) << way.name;
        }
    }
}

TEST(ReportViewStates, SubscribersChangedWhileAMessageGoesRoundHearFromTheNextMessageOn)
{
    // While item 1's selection goes round, the first subscriber takes the
    // second off and subscribes a third. The message reaches the subscribers
    // it started with; the next one those that are subscribed then.
    CNyrReportView view;
    Fill(view, 3);
    Subscriber first, second, third;
    first.onMessage = [&](const Msg& m) {
        if (m.lParam != 1)
            return;
        view.RemoveItemNotification(&second, CNyrReportView::NotifyItemAll);
        for (int i = 0; i < 64; ++i)  // enough to move a list that grows in place
            view.AddItemNotification(&third, CNyrReportView::NotifyItemSelect);
    };
    view.AddItemNotification(&first, CNyrReportView::NotifyItemSelect);
    view.AddItemNotification(&second, CNyrReportView::NotifyItemSelect);
    view.SelectRealItem(1, 1);
    view.SelectRealItem(2, 1);
    const Msg one{WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 1};
    const Msg two{WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 2};
    EXPECT_EQ(first.received, (std::vector<Msg>{one, two}));
    EXPECT_EQ(second.received, std::vector<Msg>{one});
    EXPECT_EQ(third.received, std::vector<Msg>{two});
}

}  // namespace
