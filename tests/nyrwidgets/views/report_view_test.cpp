#include <gtest/gtest.h>

#include <QHeaderView>
#include <QImage>
#include <QItemSelectionModel>
#include <QPointer>
#include <QStyle>
#include <QTest>
#include <cmath>
#include <limits>

#include "nyr/frame/notifications.h"
#include "nyr/time/time.h"
#include "nyrwidgets/views/compare.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "tests/nyrwidgets/views/views_test_p.h"

using nyr::test::Fill;
using nyr::test::ScreenOrder;
using nyr::test::Subscriber;
using nyr::test::TextItem;
using nyr::test::W;
using Msg = Subscriber::Message;

namespace {

// ---------------------------------------------------------------------------
// Item and column rules, without a view

TEST(ReportViewItem, StateChangesFollowTheHooksAndTheVisibilityRules)
{
    std::vector<std::string> log;
    TextItem item({"a"}, &log);

    // A hidden item keeps its check mark but does not report it; CheckItem(0)
    // is then no change, CheckItem(1) is one (the hook is told).
    item.CheckItem(1, 1);
    ASSERT_EQ(item.HideItem(1, 1), 1);
    EXPECT_FALSE(item.IsChecked());
    item.CheckItem(0, 1);
    item.CheckItem(1, 1);
    ASSERT_EQ(item.HideItem(0, 1), 1);
    EXPECT_TRUE(item.IsChecked());
    EXPECT_EQ(log, (std::vector<std::string>{"check+", "hide+", "check+", "hide-"}));

    // Disabling a selected item deselects it first; a disabled item is never
    // selected, but may be deselected.
    log.clear();
    item.SelectItem(1, 1);
    item.DisableItem(1, 1);
    EXPECT_FALSE(item.IsSelected());
    item.SelectItem(1, 1);
    EXPECT_FALSE(item.IsSelected());
    EXPECT_EQ(log, (std::vector<std::string>{"select+", "select-", "disable+"}));
    EXPECT_EQ(item.GetItemState(), unsigned(CNyrReportViewItem::StateDisabled));

    // Vetoes leave the item as it was.
    item.vetoHide = true;
    item.vetoDelete = true;
    EXPECT_EQ(item.HideItem(1, 1), 0);
    EXPECT_EQ(item.HideItem(1, 0), 1);  // without notify the hook is not asked
    EXPECT_EQ(item.DeleteItem(1), 0);
    EXPECT_FALSE(item.IsDeleted());
    item.vetoDelete = false;
    EXPECT_EQ(item.DeleteItem(1), 1);

    // A deleted item ignores every change and reports delete as done.
    log.clear();
    EXPECT_EQ(item.HideItem(0, 1), 0);
    item.CheckItem(0, 1);
    item.SelectItem(1, 1);
    item.DisableItem(0, 1);
    EXPECT_EQ(item.DeleteItem(1), 1);
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(item.IsVisible() || item.IsChecked() || item.IsSelected() || item.IsDisabled());
}

class VetoCol : public CNyrReportViewCol
{
public:
    VetoCol() : CNyrReportViewCol(nullptr, 0, "c") {}
    int OnHideCol(int) override { return allow; }
    int OnDeleteCol() override { return allow; }
    int allow = 0;
};

TEST(ReportViewCol, HideAndDeleteRules)
{
    VetoCol col;
    EXPECT_EQ(col.HideCol(0, 1), 1);  // already so: no question asked
    EXPECT_EQ(col.HideCol(1, 1), 0);
    EXPECT_EQ(col.HideCol(1, 0), 1);
    EXPECT_EQ(col.DeleteCol(1), 0);
    col.allow = 1;
    EXPECT_EQ(col.DeleteCol(1), 1);
    EXPECT_EQ(col.HideCol(0, 1), 0);  // deleted
    EXPECT_EQ(col.DeleteCol(1), 1);
    EXPECT_EQ(col.GetUserData(), 0);
    EXPECT_EQ(col.GetUserIndex(), -1);
}

TEST(Compare, TextsNumbersAndNaN)
{
    struct Case
    {
        std::string a, b;
        int exact, ignoringCase;
    };
    const Case cases[] = {
        {"abc", "abd", -1, -1}, {"abc", "ABC", 1, 0},   {"_", "a", -1, -1}, {"_", "A", 1, -1},
        {"ab", "abc", -1, -1},  {"", "", 0, 0},         {"\xc3\xa9", "e", 1, 1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(NyrCompare(c.a, c.b), c.exact) << c.a << " " << c.b;
        EXPECT_EQ(NyrCompareIS(c.a, c.b), c.ignoringCase) << c.a << " " << c.b;
        EXPECT_EQ(NyrCompareIS(c.b, c.a), -c.ignoringCase) << c.a << " " << c.b;
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(NyrCompare(1.0, nan), -1);
    EXPECT_EQ(NyrCompare(nan, -INFINITY), 1);
    EXPECT_EQ(NyrCompare(nan, nan), 0);
    EXPECT_EQ(NyrCompare(-0.0, 0.0), 0);
    EXPECT_EQ(NyrCompare(4294967295u, 0u), 1);
    EXPECT_EQ(NyrCompare(-1L, 1L), -1);

    // The item's helpers reach the right time comparison.
    const CNyrTime morning(2021, 3, 4, 8, 0, 0);
    const CNyrTime evening(2021, 3, 4, 20, 0, 0);
    const CNyrTime nextMorning(2021, 3, 5, 7, 0, 0);
    EXPECT_EQ(CNyrReportViewItem::Compare(evening, nextMorning), -1);
    EXPECT_EQ(CNyrReportViewItem::CompareDatePart(morning, evening), 0);
    EXPECT_EQ(CNyrReportViewItem::CompareTimePart(evening, nextMorning), 1);
    EXPECT_EQ(CNyrReportViewItem::CompareDatePart(CTime(evening.GetTime()), CTime(nextMorning.GetTime())), -1);
}

TEST(ReportViewCols, AddedFromTextsOrTextNumbersWithShortParallelValues)
{
    CNyrReportView view;
    const int widths[] = {50, 60, 70};
    const int alignments[] = {LVCFMT_RIGHT, LVCFMT_CENTER, LVCFMT_LEFT};
    const int hidden[] = {0, 1, 0};
    EXPECT_EQ(view.AddRealCols(26047u, 3u, widths, alignments, hidden), 3);
    EXPECT_EQ(view.AddRealCols(std::vector<std::string>{"X", "Y"}, {90}), 2);
    const char* labels[] = {"Z", nullptr};
    EXPECT_EQ(view.AddRealCols(labels, 2), 2);
    const std::vector<unsigned int> ids{26008};
    EXPECT_EQ(view.AddRealCols(ids), 1);

    const char* expected[] = {"All", "Selected", "Checked", "X", "Y", "Z", "", "[All columns]"};
    ASSERT_EQ(view.GetRealColumns(), 8u);
    for (unsigned int c = 0; c < 8; ++c)
        EXPECT_EQ(view.GetRealCol(c)->GetLabel(), expected[c]) << c;
    EXPECT_EQ(view.GetRealCol(1)->GetAlignment(), LVCFMT_CENTER);
    EXPECT_TRUE(view.GetRealCol(1)->IsHidden() && view.GetRealCol(1)->GetHiddenDefault());
    EXPECT_EQ(view.GetRealCol(2)->GetWidthDefault(), 70);
    EXPECT_EQ(view.GetRealCol(3)->GetWidth(), 90);
    EXPECT_EQ(view.GetRealCol(4)->GetWidth(), 80);
    EXPECT_EQ(view.GetRealCol(4)->GetAlignment(), LVCFMT_LEFT);
    EXPECT_EQ(view.GetColumnCount(), 7);
    EXPECT_EQ(view.GetColumnLabel(1), "Checked");
    EXPECT_EQ(view.model()->headerData(0, Qt::Horizontal, Qt::TextAlignmentRole).toInt(),
              int(Qt::AlignRight | Qt::AlignVCenter));

    // The view owns what it holds: adding it again is refused.
    EXPECT_EQ(view.AddRealCol(view.GetRealCol(0)), 0xFFFFFFFFu);
    auto* item = new TextItem({"a"});
    EXPECT_EQ(view.AddRealItem(item), 0u);
    EXPECT_EQ(view.AppendRealItem(item), 0xFFFFFFFFu);
    EXPECT_EQ(view.AddRealItem(nullptr), 0xFFFFFFFFu);
    EXPECT_EQ(view.GetRealItemCount(), 1u);
}

// ---------------------------------------------------------------------------
// Notifications

TEST(ReportViewNotify, SubscribersGetTheViewAndTheRealIndexForTheirBitsOnly)
{
    CNyrReportView view;
    Fill(view, 5);
    view.SetCheckBoxes(true);
    Subscriber sub;
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemSelect | CNyrReportView::NotifyItemCheck);

    view.SelectRealItem(2, 1);
    view.SelectRealItem(2, 1);  // no change, no message
    view.CheckRealItem(4, 1);
    view.HideRealItem(3, 1);  // not subscribed
    view.SelectRealItem(2, 0);
    view.SelectRealItem(1, 1, 0);  // notify off
    EXPECT_EQ(sub.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 2},
                                              {WM_NYR_REPORTVIEW_ITEM_CHECK, W(view), 4},
                                              {WM_NYR_REPORTVIEW_ITEM_DESELECT, W(view), 2}}));

    sub.received.clear();
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemAll);
    view.HideRealItem(3, 0);
    view.RefreshRealItem(0);
    view.AppendRealItem(new TextItem({"new"}));
    view.DeleteRealItem(0);  // deleting is never told
    view.DisplayRealItems(0);
    view.CleanupRealItems(1);
    EXPECT_EQ(sub.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_VIEW, W(view), 3},
                                              {WM_NYR_REPORTVIEW_ITEM_REFRESH, W(view), 0},
                                              {WM_NYR_REPORTVIEW_ITEM_APPEND, W(view), 5},
                                              {WM_NYR_REPORTVIEW_ITEM_DISPLAY_BEGIN, W(view), 0},
                                              {WM_NYR_REPORTVIEW_ITEM_DISPLAY_END, W(view), 0},
                                              {WM_NYR_REPORTVIEW_ITEM_CLEANUP, W(view), 0}}));
    EXPECT_EQ(view.GetRealItemCount(), 0u);
}

TEST(ReportViewNotify, MaskArithmeticOrsOnAddAndSubtractsFrom1023OnRemove)
{
    CNyrReportView view;
    Subscriber a;
    Subscriber b;
    view.AddItemNotification(&a, 64);
    view.AddItemNotification(&a, 128);
    view.AddItemNotification(&b, 4096 | 16);
    EXPECT_EQ(view.GetItemNotification(&a), 192);

    view.RemoveItemNotification(&a, 64);
    EXPECT_EQ(view.GetItemNotification(&a), 128);  // part removed: the entry stays
    view.RemoveItemNotification(&a, 128);
    EXPECT_EQ(view.GetItemNotification(&a), 0);  // the rest removed: the entry goes
    view.AddItemNotification(&a, 8);
    EXPECT_EQ(view.GetItemNotification(&a), 8);

    // Removing nothing still drops the bits beyond the defined ten.
    view.RemoveItemNotification(&b, 0);
    EXPECT_EQ(view.GetItemNotification(&b), 16);
}

TEST(ReportViewNotify, ASubscriberDeletedMidwayIsSkippedAndTheOthersStillHear)
{
    CNyrReportView view;
    Fill(view, 3);
    Subscriber first;
    auto* second = new Subscriber;
    Subscriber third;
    QPointer<Subscriber> guard(second);
    first.onMessage = [&](const Msg&) { delete guard.data(); };
    view.AddItemNotification(&first, CNyrReportView::NotifyItemAll);
    view.AddItemNotification(second, CNyrReportView::NotifyItemAll);
    view.AddItemNotification(&third, CNyrReportView::NotifyItemAll);

    view.SelectRealItem(1, 1);
    view.SelectRealItem(2, 1);
    EXPECT_TRUE(guard.isNull());
    EXPECT_EQ(first.received.size(), 2u);
    EXPECT_EQ(third.received.size(), 2u);
}

TEST(ReportViewNotify, SuppressSwitchesSaveAndRestore)
{
    CNyrReportView view;
    Fill(view, 4);
    view.SetDisableRealItemsEnabled(true);
    Subscriber sub;
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemAll);

    EXPECT_EQ(view.RestoreAllSuppressNotifications(), 0);  // nothing saved
    view.SetSuppressAllNotifications(true);
    EXPECT_TRUE(view.GetSuppressAllNotifications());
    view.SelectRealItem(0, 1);
    view.CheckRealItem(0, 1);
    view.HideRealItem(1, 1);
    view.DisableRealItem(2, 1);
    view.RefreshRealItem(3);
    EXPECT_TRUE(sub.received.empty());
    EXPECT_TRUE(view.GetRealItemSelected(0) && view.GetRealItemChecked(0) && view.GetRealItemDisabled(2));

    // One switch off: "all" is no longer true.
    view.SetSuppressRefreshNotifications(false);
    EXPECT_FALSE(view.GetSuppressAllNotifications());

    // The save holds the list view's switches, hide and refresh, not disable.
    view.SaveAllSuppressNotifications();
    view.SetSuppressAllNotifications(false);
    EXPECT_EQ(view.RestoreAllSuppressNotifications(), 1);
    EXPECT_TRUE(view.GetSuppressSelectNotifications());
    EXPECT_TRUE(view.GetSuppressCheckNotifications());
    EXPECT_TRUE(view.GetSuppressHideNotifications());
    EXPECT_FALSE(view.GetSuppressRefreshNotifications());
    EXPECT_FALSE(view.GetSuppressDisableNotifications());
    EXPECT_EQ(view.RestoreAllSuppressNotifications(), 0);  // the save is used up
}

// ---------------------------------------------------------------------------
// Selection, focus, disabling, check boxes on screen

class ShownView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Fill(view, 6, &log);
        view.resize(400, 300);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        view.AddItemNotification(&sub, CNyrReportView::NotifyItemAll);
    }
    QPoint RowPoint(int screenRow, int screenCol = 1) const
    {
        return view.visualRect(view.model()->index(screenRow, screenCol)).center();
    }
    bool QtSelected(int screenRow) const
    {
        return view.selectionModel()->isSelected(view.model()->index(screenRow, 0));
    }

    std::vector<std::string> log;
    CNyrReportView view;
    Subscriber sub;
};

TEST_F(ShownView, ClickSelectsTheItemAndNotifiesAndSelectItemShowsOnScreen)
{
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, RowPoint(2));
    EXPECT_TRUE(view.GetRealItemSelected(2));
    EXPECT_EQ(view.GetFocusedRealItem(), 2);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, RowPoint(4));
    // The old selection is told before the new one.
    EXPECT_EQ(sub.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 2},
                                              {WM_NYR_REPORTVIEW_ITEM_DESELECT, W(view), 2},
                                              {WM_NYR_REPORTVIEW_ITEM_SELECT, W(view), 4}}));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ShiftModifier, RowPoint(5));
    std::vector<unsigned int> selected;
    view.GetSelectedRealItems(selected);
    EXPECT_EQ(selected, (std::vector<unsigned int>{4, 5}));

    // The model's side shows in Qt's selection, both ways.
    view.SelectRealItem(0, 1);
    view.SelectRealItem(5, 0);
    EXPECT_TRUE(QtSelected(0));
    EXPECT_TRUE(QtSelected(4));
    EXPECT_FALSE(QtSelected(5));
    view.InvertSelection();
    for (int s = 0; s < 6; ++s)
        EXPECT_EQ(QtSelected(s), s != 0 && s != 4) << s;
    EXPECT_EQ(view.GetSelectedCount(), 4);

    // Select all through the keyboard, as the user does it.
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view.GetSelectedCount(), 6);
}

TEST_F(ShownView, DisabledItemsAreGreyedCannotBeSelectedAndLoseTheirSelectionWithNotice)
{
    view.DisableRealItem(1, 1);  // not enabled for this view: nothing happens
    EXPECT_FALSE(view.GetRealItemDisabled(1));
    view.SetDisableRealItemsEnabled(true);

    view.SelectRealItem(1, 1);
    sub.received.clear();
    log.clear();
    view.DisableRealItem(1, 1);
    EXPECT_EQ(sub.received, (std::vector<Msg>{{WM_NYR_REPORTVIEW_ITEM_DESELECT, W(view), 1},
                                              {WM_NYR_REPORTVIEW_ITEM_DISABLE, W(view), 1}}));
    EXPECT_EQ(log, (std::vector<std::string>{"select-", "disable+"}));
    EXPECT_FALSE(QtSelected(1));
    EXPECT_FALSE(view.model()->flags(view.model()->index(1, 0)) & Qt::ItemIsEnabled);

    sub.received.clear();
    view.SelectRealItem(1, 1);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, RowPoint(1));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, RowPoint(1));
    EXPECT_FALSE(view.GetRealItemSelected(1));
    EXPECT_FALSE(QtSelected(1));
    for (const Msg& m : sub.received)
        EXPECT_NE(m.lParam, 1) << "a message about the disabled item";

    // A shift range over it selects the others only.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, RowPoint(0));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ShiftModifier, RowPoint(2));
    std::vector<int> selected;
    view.GetSelectedItems(selected);
    EXPECT_EQ(selected, (std::vector<int>{0, 2}));

    view.DisableRealItem(1, 0);
    EXPECT_TRUE(view.model()->flags(view.model()->index(1, 0)) & Qt::ItemIsEnabled);
    EXPECT_FALSE(QtSelected(1));
}

TEST_F(ShownView, CheckBoxClickChecksAndHiddenItemsKeepTheirMark)
{
    view.SetCheckBoxes(true);
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.rect = view.visualRect(view.model()->index(3, 0));
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = "name3";
    const QRect box = view.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &view);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, box.center());
    EXPECT_TRUE(view.GetRealItemChecked(3));
    EXPECT_EQ(view.GetCheck(3), 1);
    ASSERT_FALSE(sub.received.empty());
    EXPECT_EQ(sub.received.back(), (Msg{WM_NYR_REPORTVIEW_ITEM_CHECK, W(view), 3}));

    // Hidden, it is not counted and unchecking it is no change; viewed again
    // it shows its mark.
    view.HideRealItem(3, 1);
    EXPECT_EQ(view.GetCheckedCount(), 0);
    sub.received.clear();
    view.CheckRealItem(3, 0);
    EXPECT_TRUE(sub.received.empty());
    view.HideRealItem(3, 0);
    EXPECT_EQ(view.GetCheck(view.ScreenItemFromReal(3)), 1);
    EXPECT_EQ(view.GetCheckedCount(), 1);
}

TEST_F(ShownView, HiddenRowsLeaveTheScreenDeletedOnesNeverReturn)
{
    view.SelectRealItem(4, 1);
    EXPECT_EQ(view.HideRealItem(2, 1), 1);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 3, 4, 5}));
    EXPECT_TRUE(QtSelected(3));  // item 4, one row up
    EXPECT_EQ(view.DeleteRealItem(4), 1);
    EXPECT_EQ(view.GetSelectedCount(), 0);
    EXPECT_EQ(view.HideRealItem(4, 1), 0);
    EXPECT_EQ(view.HideRealItem(4, 0), 1);  // the hidden bit is as asked already
    EXPECT_EQ(view.HideRealItem(2, 0), 1);
    view.DisplayRealItems();
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 2, 3, 5}));
    EXPECT_EQ(view.GetItem(4), view.GetRealItem(5));

    // Batches keep the screen in step as well; a selected item hidden and
    // viewed again is selected on screen again.
    view.SelectRealItem(1, 1);
    EXPECT_EQ(view.HideRealItems({0, 1, 4}, 1), 2);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{2, 3, 5}));
    EXPECT_EQ(view.GetSelectedCount(), 0);
    EXPECT_EQ(view.HideRealItems({1}, 0), 1);
    EXPECT_TRUE(QtSelected(view.ScreenItemFromReal(1)));
    EXPECT_EQ(view.HideRealItems({1}, 1), 1);
    view.CheckRealItems({2, 5}, 1);
    EXPECT_EQ(view.DeleteCheckedItems(), 2);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{3}));
    EXPECT_EQ(view.HideAllItems(0), 2);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 3}));

    // A veto keeps the row.
    static_cast<TextItem*>(view.GetRealItem(0))->vetoHide = true;
    EXPECT_EQ(view.HideRealItem(0, 1), 0);
    EXPECT_EQ(view.GetItemCount(), 3);

    CNyrReportView::COMPLETE_ITEM complete;
    ASSERT_EQ(view.CompleteItemFromScreen(2, complete), 1);
    EXPECT_EQ(complete.realItem, 3u);
    EXPECT_EQ(complete.item, view.GetRealItem(3));
    ASSERT_EQ(view.CompleteItemFromReal(2, complete), 1);
    EXPECT_EQ(complete.screenItem, -1);
    EXPECT_EQ(view.CompleteItemFromScreen(3, complete), 0);
}

TEST_F(ShownView, CellColoursAndOwnerDrawingComeFromTheItemHooks)
{
    auto* item = static_cast<TextItem*>(view.GetRealItem(1));
    item->colorCol = 2;
    item->backColor = NyrRGB(255, 0, 0);
    static_cast<TextItem*>(view.GetRealItem(3))->ownerDrawCol = 1;
    view.RefreshRealItem(1);
    const QImage image = view.viewport()->grab().toImage();
    auto pixel = [&](int row, int col) {
        const QRect cell = view.visualRect(view.model()->index(row, col));
        return image.pixelColor(cell.right() - 2, cell.center().y());
    };
    EXPECT_EQ(pixel(1, 2), QColor(255, 0, 0));
    EXPECT_NE(pixel(2, 2), QColor(255, 0, 0));
    EXPECT_NE(pixel(1, 1), QColor(255, 0, 0));
    EXPECT_EQ(pixel(3, 1), QColor(0, 0, 255));
    EXPECT_NE(pixel(3, 2), QColor(0, 0, 255));
}

// ---------------------------------------------------------------------------
// Columns

TEST_F(ShownView, ColumnsHideLabelAndOrderFollowTheModel)
{
    QHeaderView* header = view.horizontalHeader();
    EXPECT_EQ(view.HideRealCol(1, 1), 1);
    EXPECT_EQ(view.GetColumnCount(), 2);
    EXPECT_EQ(view.GetCol(1), view.GetRealCol(2));
    EXPECT_EQ(view.GetItemText(0, 1), "note");
    EXPECT_EQ(view.ScreenColFromReal(1), -1);

    view.GetRealCol(2)->SetLabel("Remark");
    EXPECT_EQ(view.model()->headerData(1, Qt::Horizontal).toString(), "Remark");
    view.GetRealCol(2)->SetWidth(123);
    EXPECT_EQ(header->sectionSize(1), 123);
    header->resizeSection(0, 77);
    EXPECT_EQ(view.GetRealCol(0)->GetWidth(), 77);

    EXPECT_EQ(view.HideRealCol(1, 0), 1);
    EXPECT_EQ(view.GetCol(1), view.GetRealCol(1));
    EXPECT_EQ(header->sectionSize(1), 80);

    // Dragging a header section: the new order is read after the move.
    const QPoint from(header->sectionViewportPosition(0) + 10, header->height() / 2);
    const QPoint to(header->sectionViewportPosition(2) + header->sectionSize(2) - 5, header->height() / 2);
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, from);
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(header->viewport(), from + (to - from) * step / 10);
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, to);
    ASSERT_EQ(header->visualIndex(0), 2);
    EXPECT_EQ(view.GetRealCol(0)->GetOrder(), 0);  // read only once the posted message arrives
    QCoreApplication::sendPostedEvents(&view);
    EXPECT_EQ(view.GetRealCol(0)->GetOrder(), 2);
    EXPECT_EQ(view.GetRealCol(1)->GetOrder(), 0);
    EXPECT_EQ(view.GetRealCol(2)->GetOrder(), 1);

    // Rebuilding the columns applies the order fields.
    view.DeleteRealCol(2);
    view.DisplayRealCols();
    EXPECT_EQ(view.GetColumnCount(), 2);
    EXPECT_EQ(header->visualIndex(view.ScreenColFromReal(1)), 0);
    EXPECT_EQ(header->visualIndex(view.ScreenColFromReal(0)), 1);
}

TEST_F(ShownView, HeaderMenuHidesAndViewsColumns)
{
    CNyrReportViewMenuPopUp menu(&view);
    view.BuildHeaderContextMenu(menu, 1);
    ASSERT_NE(menu.FindCommand(WM_NYR_REPORTVIEW_HIDE_ALL_COLS), nullptr);
    menu.FindCommand(WM_NYR_REPORTVIEW_HIDE_ALL_COLS)->trigger();
    EXPECT_EQ(view.GetColumnCount(), 1);  // the column under the menu stays
    EXPECT_EQ(view.GetCol(0), view.GetRealCol(1));

    CNyrReportViewMenuPopUp again(&view);
    view.BuildHeaderContextMenu(again, 1);
    QAction* viewMenu = again.FindText(26030);
    ASSERT_NE(viewMenu, nullptr);
    ASSERT_TRUE(viewMenu->menu());
    ASSERT_EQ(viewMenu->menu()->actions().size(), 2);
    EXPECT_EQ(viewMenu->menu()->actions().at(1)->text(), "Note");
    viewMenu->menu()->actions().at(1)->trigger();
    EXPECT_EQ(view.GetColumnCount(), 2);
    EXPECT_FALSE(again.FindText(26027)->isEnabled());  // "&Hide" would leave no column

    CNyrReportViewMenuPopUp third(&view);
    view.BuildHeaderContextMenu(third, 1);
    third.FindCommand(WM_NYR_REPORTVIEW_VIEW_ALL_COLS)->trigger();
    EXPECT_EQ(view.GetColumnCount(), 3);
}

TEST_F(ShownView, ItemMenuCommandsActOnTheItems)
{
    view.SetCheckBoxes(true);
    view.CheckRealItems({0, 5}, 1);
    CNyrReportViewMenuPopUp menu(&view);
    view.BuildRealItemContextMenu(menu, 2, true);
    ASSERT_NE(menu.FindCommand(WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS), nullptr);
    menu.FindCommand(WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS)->trigger();
    std::vector<unsigned int> selected;
    view.GetSelectedRealItems(selected);
    EXPECT_EQ(selected, (std::vector<unsigned int>{0, 5}));

    NyrSendMessage(&view, WM_NYR_REPORTVIEW_INVERT_CHECKED);
    EXPECT_EQ(view.GetCheckedCount(), 4);
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_DELETE_SELECTED);
    EXPECT_EQ(view.GetItemCount(), 4);

    // The Delete key works only where the menu offers deleting.
    view.SelectRealItem(1, 1);
    view.setFocus();
    view.SetItemMenu(CNyrReportView::MenuSelect, CNyrReportView::MenuSelect);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.GetItemCount(), 4);
    view.SetItemMenu(CNyrReportView::MenuDelete, CNyrReportView::MenuDelete);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.GetItemCount(), 3);
}

// A host that asks once before the selection goes: both the menu command and
// the Delete key must reach its hook, and a refusal must delete nothing.
class AskingView : public CNyrReportView
{
public:
    int asked = 0;
    bool allow = false;

protected:
    void OnDeleteSelectedItems() override
    {
        ++asked;
        if (allow)
            CNyrReportView::OnDeleteSelectedItems();
    }
};

TEST(ReportViewDelete, CommandAndKeyGoThroughTheHostsHookOncePerSelection)
{
    AskingView view;
    Fill(view, 6, nullptr);
    view.SetItemMenu(CNyrReportView::MenuDelete, CNyrReportView::MenuDelete);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.SelectRealItems({1, 2, 3}, 1);
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_DELETE_SELECTED);
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.asked, 2);
    EXPECT_EQ(view.GetItemCount(), 6);
    view.allow = true;
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.asked, 3);
    EXPECT_EQ(view.GetItemCount(), 3);
}

}  // namespace
