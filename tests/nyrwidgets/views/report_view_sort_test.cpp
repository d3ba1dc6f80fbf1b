#include <gtest/gtest.h>

#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QTest>
#include <numeric>

#include "nyr/frame/notifications.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/header_ctrl_sort.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::Fill;
using nyr::test::MessageLog;
using nyr::test::PlainItem;
using nyr::test::ScreenOrder;
using nyr::test::Subscriber;
using nyr::test::TextItem;
using SortKey = CNyrReportView::SORT_STATE_REALCOL;

namespace {

std::vector<std::pair<unsigned, int>> State(const CNyrReportView& view)
{
    std::vector<SortKey> state;
    view.GetSortState(state);
    std::vector<std::pair<unsigned, int>> out;
    for (const SortKey& k : state)
        out.emplace_back(k.realCol, k.ascending);
    return out;
}

std::vector<int> Marks(const CNyrReportView& view)
{
    std::vector<int> out;
    for (const auto& m : view.GetHeaderCtrl()->GetSortColumns()) {
        out.push_back(m.column);
        out.push_back(m.ascending);
    }
    return out;
}

void ClickHeader(CNyrReportView& view, int screenCol)
{
    QHeaderView* header = view.horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(screenCol) + 5, header->height() / 2));
}

TEST(ReportViewSort, HeaderClicksToggleTheDirectionAndNeverReturnToUnsorted)
{
    CNyrReportView view;
    Fill(view, 5);  // values 0, 2, 4, 1, 3
    view.resize(400, 200);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    Subscriber sub;
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemSortOrder);

    ClickHeader(view, 1);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{1, 1}}));
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 3, 1, 4, 2}));
    EXPECT_EQ(Marks(view), (std::vector<int>{1, 1}));
    ClickHeader(view, 1);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{2, 4, 1, 3, 0}));
    EXPECT_EQ(Marks(view), (std::vector<int>{1, 0}));
    ClickHeader(view, 1);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{1, 1}}));
    ClickHeader(view, 0);  // another column starts ascending
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{0, 1}}));
    EXPECT_EQ(sub.received.size(), 4u);
    EXPECT_EQ(sub.received.back().message, WM_NYR_REPORTVIEW_ITEM_SORT_ORDER);

    // The marks follow the columns on screen: a hidden sort column has none.
    view.SortList(std::vector<SortKey>{{1, 0}, {2, 1}});
    EXPECT_EQ(Marks(view), (std::vector<int>{1, 0, 2, 1}));
    view.HideRealCol(1, 1);
    EXPECT_EQ(Marks(view), (std::vector<int>{1, 1}));
}

// Column 0 keeps the default comparison (every item equal); column 1
// compares a scrambled key, to put the rows out of order first.
class ScrambledItem : public CNyrReportViewItem
{
public:
    explicit ScrambledItem(int key) : m_key(key) {}
    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override
    {
        if (realCol == 1)
            return Compare(m_key, static_cast<const ScrambledItem*>(other)->m_key);
        return CNyrReportViewItem::OnCompareItem(other, realCol);
    }

private:
    int m_key;
};

// With the default comparison every item is equal, so the index decides:
// insertion order ascending, its reverse descending. Hundreds of thousands of
// equal keys in scrambled rows also run the sort where an element compared
// with itself would answer "less" (the AddressSanitizer build checks the
// bounds).
TEST(ReportViewSort, EqualItemsKeepInsertionOrderAscendingAndReverseItDescending)
{
    for (int n : {1, 2, 33, 300000}) {
        CNyrReportView view;
        view.AddRealCols(std::vector<std::string>{"A", "B"});
        for (int i = 0; i < n; ++i)
            view.AddRealItem(new ScrambledItem(static_cast<int>((i * 7919LL) % n)));
        view.DisplayRealItems();
        std::vector<int> expected(static_cast<std::size_t>(n));
        std::iota(expected.begin(), expected.end(), 0);

        view.SortList(std::vector<SortKey>{{1, 1}});
        view.SortList(std::vector<SortKey>{{0, 1}});
        EXPECT_EQ(ScreenOrder(view), expected) << n;
        view.SortList(std::vector<SortKey>{{1, 1}});
        view.SortList(std::vector<SortKey>{{0, 0}});
        EXPECT_EQ(ScreenOrder(view), std::vector<int>(expected.rbegin(), expected.rend())) << n;
    }
    CNyrReportView view;
    view.AddRealCols(std::vector<std::string>{"A"});
    for (int i = 0; i < 5; ++i)
        view.AppendRealItem(new PlainItem);
    view.SortList(std::vector<SortKey>{{0, 0}});
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{4, 3, 2, 1, 0}));
}

TEST(ReportViewSort, KeysInOrderUpToTheEndMarkerThenTheIndex)
{
    CNyrReportView view;
    view.AddRealCols(std::vector<std::string>{"Name", "Value"});
    const std::vector<std::vector<std::string>> rows = {
        {"b", "2"}, {"a", "10"}, {"B", "1"}, {"a", "2"}, {"c", "1"}, {"A", "10"},
    };
    for (const auto& r : rows)
        view.AddRealItem(new TextItem(r));
    view.DisplayRealItems();

    struct Case
    {
        std::vector<SortKey> state;
        std::vector<int> order;
    };
    const Case cases[] = {
        {{}, {0, 1, 2, 3, 4, 5}},
        {{{0, 1}}, {1, 3, 5, 0, 2, 4}},                      // names ignore case; ties by index
        {{{0, 0}}, {4, 2, 0, 5, 3, 1}},                      // descending: ties by index reversed
        {{{0, 1}, {1, 0}}, {1, 5, 3, 0, 2, 4}},              // then value descending, numerically
        {{{1, 1}, {0, 0}}, {4, 2, 0, 3, 1, 5}},
        {{{0, 1}, {0xFFFFFFFFu, 1}, {1, 0}}, {1, 3, 5, 0, 2, 4}},  // the end marker stops the keys
        {{{0xFFFFFFFFu, 0}}, {5, 4, 3, 2, 1, 0}},            // no key: the index, first key's direction
    };
    for (const Case& c : cases) {
        view.SortList(c.state);
        EXPECT_EQ(ScreenOrder(view), c.order) << c.state.size();
    }

    // Four keys: ignored altogether, no notification.
    Subscriber sub;
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemAll);
    view.SortList(std::vector<SortKey>{{0, 1}, {1, 1}, {0, 0}, {1, 0}});
    EXPECT_EQ(ScreenOrder(view), cases[6].order);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{0xFFFFFFFFu, 0}}));
    EXPECT_TRUE(sub.received.empty());
}

// The runs of dark pixel columns (text, marks) across a header section, left
// to right, as [first, last] x positions.
std::vector<std::pair<int, int>> InkRuns(const QImage& image, int left, int width)
{
    std::vector<std::pair<int, int>> runs;
    for (int x = left; x < left + width; ++x) {
        bool ink = false;
        for (int y = 2; y < image.height() - 2 && !ink; ++y)
            ink = qGray(image.pixel(x, y)) < 128;
        if (!ink)
            continue;
        if (!runs.empty() && runs.back().second == x - 1)
            runs.back().second = x;
        else
            runs.emplace_back(x, x);
    }
    return runs;
}

TEST(ReportViewSort, SortRankStaysClearOfARightAlignedLabel)
{
    CNyrReportView view;
    view.AddRealCols(std::vector<std::string>{"Name", "Northing [m]"}, {100, 140}, {LVCFMT_LEFT, LVCFMT_RIGHT});
    view.resize(400, 200);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.SortList(std::vector<SortKey>{{0, 1}, {1, 1}});
    QHeaderView* header = view.horizontalHeader();
    const auto runs = InkRuns(header->grab().toImage(), header->sectionViewportPosition(1), header->sectionSize(1));
    // From the right: the arrow, the rank "2", the label's last glyph.
    ASSERT_GE(runs.size(), 3u);
    const auto& arrow = runs[runs.size() - 1];
    const auto& rank = runs[runs.size() - 2];
    const auto& label = runs[runs.size() - 3];
    const int rankGap = arrow.first - rank.second - 1;
    const int labelGap = rank.first - label.second - 1;
    EXPECT_GE(labelGap, 6);
    EXPECT_GE(labelGap, 2 * rankGap) << "the rank reads as part of the label";
}

TEST(ReportViewSort, AppendedItemsGoToTheirSortedPlaceAndFocusSurvivesASort)
{
    CNyrReportView view;
    Fill(view, 5);  // values 0, 2, 4, 1, 3
    view.SortList(std::vector<SortKey>{{1, 1}});
    view.FocusRealItem(4);
    view.AppendRealItem(new TextItem({"x", "2"}));  // after the other 2: equal keys keep insertion order
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 3, 1, 5, 4, 2}));
    view.AppendRealItem(new TextItem({"y", "9"}), 0);  // model only
    EXPECT_EQ(view.GetItemCount(), 6);
    view.SortList(std::vector<SortKey>{{1, 0}});
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{2, 4, 5, 1, 3, 0}));
    EXPECT_EQ(view.GetFocusedRealItem(), 4);
    view.DisplayRealItems();
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{6, 2, 4, 5, 1, 3, 0}));
}

// Sorting again in the other direction reverses the rows when they are in
// order; after the application changed values (without a new sort) they are
// not, and a reversal would be wrong.
TEST(ReportViewSort, StaleRowsAreSortedNotJustReversed)
{
    CNyrReportView view;
    view.AddRealCols(std::vector<std::string>{"Name", "Value"});
    std::vector<TextItem*> items;
    for (const char* v : {"5", "1", "4", "2", "3"}) {
        items.push_back(new TextItem({"n", v}));
        view.AddRealItem(items.back());
    }
    view.DisplayRealItems();
    view.SortList(std::vector<SortKey>{{1, 1}});
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{1, 3, 4, 2, 0}));
    view.SortList(std::vector<SortKey>{{1, 0}});
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 2, 4, 3, 1}));

    items[0]->SetCell(1, "0");
    view.RefreshRealItem(0);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 2, 4, 3, 1}));  // a refresh keeps the row in place
    view.SortList(std::vector<SortKey>{{1, 1}});
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 3, 4, 2}));
}

TEST(ReportViewSort, HeaderMenuSortCommands)
{
    CNyrReportView view;
    Fill(view, 4);
    Subscriber sub;
    view.AddItemNotification(&sub, CNyrReportView::NotifyItemSortOrder);
    auto run = [&view](unsigned int realCol, unsigned int message) {
        CNyrReportViewMenuPopUp menu(&view);
        view.BuildHeaderContextMenu(menu, realCol);
        QAction* action = menu.FindCommand(message);
        ASSERT_NE(action, nullptr);
        action->trigger();
    };
    run(1, WM_NYR_REPORTVIEW_SORT_DESCENDING);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{1, 0}}));
    run(1, WM_NYR_REPORTVIEW_SORT_DESCENDING);  // already so: nothing happens
    run(1, WM_NYR_REPORTVIEW_SORT_UNSORTED);
    run(1, WM_NYR_REPORTVIEW_SORT_UNSORTED);
    EXPECT_TRUE(State(view).empty());
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 2, 3}));
    run(2, WM_NYR_REPORTVIEW_SORT_ASCENDING);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{2, 1}}));
    EXPECT_EQ(sub.received.size(), 3u);
}

// ---------------------------------------------------------------------------
// The stored sort state

class SortStateStore : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(dir.File("views.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }
    nyr::test::TempDir dir;
};

TEST_F(SortStateStore, StoredOnEveryChangeAndRestoredWhenANewViewShows)
{
    {
        CNyrReportView view;
        view.SetInifileSection("Points");
        view.SetSerializeSortState(1);
        Fill(view, 5);
        view.SortList(std::vector<SortKey>{{1, 0}, {0, 1}});
        EXPECT_NE(nyr::test::ReadFile(dir.File("views.ini")).find("SortState=1;0;0;1;"), std::string::npos);
    }
    CNyrReportView view;
    view.SetInifileSection("Points");
    view.SetSerializeSortState(1);
    Fill(view, 5);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{1, 0}, {0, 1}}));
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{2, 4, 1, 3, 0}));

    // Without AutoRestore the stored state stays unused.
    CNyrReportView other;
    other.SetInifileSection("Points");
    other.SetSerializeSortState(1);
    other.SetAutoRestore(0);
    Fill(other, 5);
    EXPECT_TRUE(State(other).empty());
}

TEST_F(SortStateStore, StoredValuesAreCheckedWhole)
{
    struct Case
    {
        const char* stored;
        bool accepted;
    };
    const Case cases[] = {
        {"1;0;", true},
        {"3;1;", true},  // a column equal to the column count passes (intended)
        {"2;1;0;0;1;1;", true},
        {"4;1;", false},
        {"-1;1;", false},
        {"1;", false},
        {"1;0;2;", false},
        {"0;1;1;0;2;1;0;", false},  // seven integers
        {"1;0;9;1;", false},        // one bad pair refuses the whole value
        {"", false},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(CNyrProfileEntries::WriteNyrProfileString("Points", "SortState", c.stored));
        CNyrReportView view;
        view.SetInifileSection("Points");
        view.SetSerializeSortState(1);
        Fill(view, 4);
        std::vector<SortKey> loaded;
        EXPECT_EQ(view.LoadSortState(loaded), c.accepted ? 1 : 0) << c.stored;
        if (!c.accepted) {
            EXPECT_TRUE(loaded.empty()) << c.stored;
            EXPECT_TRUE(State(view).empty()) << c.stored;
            EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 1, 2, 3})) << c.stored;
        }
    }
}

// ---------------------------------------------------------------------------
// The multiple-columns dialog

TEST(SortMultipleDlg, SameColumnTwiceIsRefusedAndEmptyChoicesAreSkipped)
{
    CNyrReportView view;
    Fill(view, 3);
    view.DeleteRealCol(2);
    MessageLog messages;
    CNyrReportViewSortMultipleDlg dialog(&view);
    ASSERT_EQ(dialog.ChoiceBox(0)->count(), 3);  // the empty choice and two columns
    EXPECT_EQ(dialog.ChoiceBox(0)->itemData(0).toInt(), -4711);
    dialog.show();

    dialog.SetChoice(0, 1, 1);
    dialog.SetChoice(2, 1, 0);
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(messages.texts, (std::vector<std::string>{"Same column selected twice"}));
    EXPECT_EQ(dialog.focusWidget(), dialog.ChoiceBox(2));

    dialog.SetChoice(1, 1, 1);
    dialog.SetChoice(2, CNyrReportViewSortMultipleDlg::kNoColumn, 1);
    dialog.accept();
    EXPECT_EQ(dialog.focusWidget(), dialog.ChoiceBox(1));
    EXPECT_EQ(messages.texts.size(), 2u);

    dialog.SetChoice(0, CNyrReportViewSortMultipleDlg::kNoColumn, 1);
    dialog.SetChoice(2, 0, 0);
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const std::vector<SortKey> state = dialog.GetSortState();
    ASSERT_EQ(state.size(), 2u);
    EXPECT_EQ(state[0].realCol, 1u);
    EXPECT_EQ(state[0].ascending, 1);
    EXPECT_EQ(state[1].realCol, 0u);
    EXPECT_EQ(state[1].ascending, 0);
}

TEST(SortMultipleDlg, TheMenuCommandSortsByTheChosenKeys)
{
    CNyrReportView view;
    Fill(view, 5);
    view.SortList(std::vector<SortKey>{{0, 0}});
    nyr::test::DialogAnswer answer([](QDialog& d) {
        auto* dialog = qobject_cast<CNyrReportViewSortMultipleDlg*>(&d);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->GetChoice(0), 0);  // starts from the view's state
        dialog->SetChoice(0, 1, 1);
        dialog->accept();
    });
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_SORT_MULTIPLE);
    EXPECT_EQ(answer.opened, 1);
    EXPECT_EQ(State(view), (std::vector<std::pair<unsigned, int>>{{1, 1}}));
}

// ---------------------------------------------------------------------------
// The plain list view

TEST(ListViewSort, HeaderClickSortsTextsInByteOrderAndRowsKeepTheirData)
{
    CNyrListView list;
    list.InsertColumn(0, "Name");
    list.InsertColumn(1, "Kind");
    const char* names[] = {"beta", "Alpha", "alpha", "Beta", "beta"};
    for (int i = 0; i < 5; ++i) {
        list.InsertItem(i, names[i]);
        list.SetItemText(i, 1, i % 2 ? "x" : "y");
        list.SetItemData(i, static_cast<quintptr>(i) + 100);
    }
    list.resize(300, 200);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    list.SetItemState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);

    QHeaderView* header = list.horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(5, header->height() / 2));
    auto data = [&list] {
        std::vector<int> out;
        for (int r = 0; r < list.GetItemCount(); ++r)
            out.push_back(static_cast<int>(list.GetItemData(r)) - 100);
        return out;
    };
    // Capitals first (byte order); equal texts keep their order.
    EXPECT_EQ(data(), (std::vector<int>{1, 3, 2, 0, 4}));
    EXPECT_EQ(list.GetItemState(3, LVIS_SELECTED | LVIS_FOCUSED), LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(list.GetItemState(0, LVIS_SELECTED | LVIS_FOCUSED), 0u);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(5, header->height() / 2));
    EXPECT_EQ(data(), (std::vector<int>{0, 4, 2, 3, 1}));

    list.SortList({{1, 1}, {0, 0}});
    EXPECT_EQ(data(), (std::vector<int>{3, 1, 0, 4, 2}));
    EXPECT_EQ(list.FindItemByData(102), 4);
}

}  // namespace
