#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/list_view_find_dialog.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::MessageLog;
using nyr::test::TextItem;
using Crit = CNyrListViewFind::CSearchCrit;

namespace {

const std::string kNotFound = "Finished searching this view. The search item was not found.";
const std::string kNoMore = "Finished searching this view. No more matches found.";

// A shown report view with one row per entry, columns "A", "B", "C".
class FindView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CNyrListViewFind::SearchCrit(Crit{});
        NyrSetProfilePath(dir.File("views.ini"));
        view.SetInifileSection("Find");
        view.AddRealCols(std::vector<std::string>{"A", "B", "C"});
        view.SetCheckBoxes(true);
        view.resize(400, 300);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    void TearDown() override
    {
        CNyrListViewFind::SearchCrit(Crit{});
        NyrSetProfilePath("");
    }
    void Rows(const std::vector<std::vector<std::string>>& rows)
    {
        for (const auto& cells : rows)
            view.AddRealItem(new TextItem(cells));
        view.DisplayRealItems(1);
    }
    static Crit& C() { return CNyrListViewFind::StaticSearchCrit(); }
    std::vector<int> Selected()
    {
        std::vector<int> rows;
        view.GetSelectedItems(rows);
        return rows;
    }

    nyr::test::TempDir dir;
    CNyrReportView view;
    MessageLog messages;
};

TEST(ListViewFindMatch, WordCaseAndFoldRules)
{
    struct Case
    {
        const char* search;
        const char* cell;
        int word, matchCase;
        bool match;
    };
    const Case cases[] = {
        {"ab", "xab ab", 1, 0, false},  // only the first occurrence is tried (intended)
        {"ab", "xab ab", 0, 0, true},
        {"ab", ",ab", 1, 0, false},  // punctuation does not separate words (intended)
        {"ab", "ab,", 1, 0, false},
        {"ab", "x\tab", 1, 0, true},
        {"ab", "ab", 1, 0, true},
        {"ab", "ab cd", 1, 0, true},
        {"b c", "a b c d", 1, 0, true},
        {"ab", "abc", 1, 0, false},
        {"AB", "xaby", 0, 0, true},
        {"AB", "xaby", 0, 1, false},
        {"aB", "x AB", 1, 0, true},
        {"\xc3\xb6lm\xc3\xbchle", "\xc3\x96LM\xc3\x9cHLE", 0, 0, true},  // Unicode letters fold too
        {"\xc3\xb6lm\xc3\xbchle", "\xc3\x96LM\xc3\x9cHLE", 0, 1, false},
        {"\xc3\xa4 b", "X \xc3\x84 B", 1, 0, true},
        {"\xff", "a\xff" "b", 0, 0, true},  // bytes that are not UTF-8 compare as they are
        {"\xfe", "a\xff" "b", 0, 0, false},
        {"q", "", 0, 0, false},
        // Longer cells: every start position is tried, in blocks and at the end.
        {"NEEDLE", "0123456789abcdef@`[{needle", 0, 0, true},
        {"lf", "0123456789abcdef@`[{needlE", 0, 0, false},
        {"e@", "abcdefgh e`ijklmnoE@", 0, 0, true},
        {"9", "12345678123456789", 0, 0, true},
    };
    CNyrListView list;
    for (const Case& c : cases) {
        EXPECT_EQ(list.ItemStringMatches(c.word, c.matchCase, c.search, c.cell) != 0, c.match)
            << c.search << " in " << c.cell << " word " << c.word << " case " << c.matchCase;
    }

    // The matcher against the obvious one, on texts of letters in both cases,
    // the bytes next to them, blanks and a byte that is not UTF-8 (so the
    // ASCII rules hold), in cells of up to 40 bytes: each length up to and
    // past the sixteen bytes the matcher reads a step.
    const auto fold = [](std::string t) {
        for (char& ch : t)
            ch = (ch >= 'A' && ch <= 'Z') ? static_cast<char>(ch + ('a' - 'A')) : ch;
        return t;
    };
    const auto blank = [](const std::string& t, std::size_t at) { return at >= t.size() || t[at] == ' ' || t[at] == '\t'; };
    const auto reference = [&](int word, int matchCase, const std::string& search, const std::string& cell) {
        const std::string s = matchCase ? search : fold(search);
        const std::string c = matchCase ? cell : fold(cell);
        const std::size_t pos = c.find(s);
        return pos != std::string::npos && (!word || ((pos == 0 || blank(c, pos - 1)) && blank(c, pos + s.size())));
    };
    const char alphabet[] = "aAbB@`[{ \t\xff";
    std::uint64_t x = 88172645463325252ULL;
    const auto next = [&x] { return x ^= x << 13, x ^= x >> 7, x ^= x << 17; };
    const auto random = [&](std::size_t maxLength) {
        std::string t;
        for (std::size_t n = next() % (maxLength + 1); n > 0; --n)
            t += alphabet[next() % (sizeof alphabet - 1)];
        return t;
    };
    for (int i = 0; i < 40000; ++i) {
        const std::string search = random(3) + "a";
        const std::string cell = random(40);
        const int word = static_cast<int>(next() % 2);
        const int matchCase = static_cast<int>(next() % 2);
        ASSERT_EQ(list.ItemStringMatches(word, matchCase, search, cell) != 0, reference(word, matchCase, search, cell))
            << search << " in " << cell << " word " << word << " case " << matchCase;
    }
}

TEST_F(FindView, FindNextWalksWithoutWrappingAndStartsAgainAfterTheMessage)
{
    Rows({{"a x"}, {"b"}, {"x c"}, {"d"}, {"X"}});
    C().searchString = "x";
    EXPECT_EQ(view.FindNext(1), 0);
    EXPECT_EQ(C().searchFromBeginning, 0);
    EXPECT_EQ(view.FindNext(1), 2);
    EXPECT_EQ(Selected(), std::vector<int>{2});
    EXPECT_EQ(view.GetFocusedItem(), 2);
    EXPECT_EQ(view.FindNext(1), 4);
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(view.FindNext(1), -1);  // no wrap-around
    EXPECT_EQ(messages.texts, std::vector<std::string>{kNoMore});
    EXPECT_EQ(messages.styles, std::vector<unsigned>{0});
    EXPECT_EQ(C().searchFromBeginning, 1);
    EXPECT_EQ(view.FindNext(1), 0);  // the failure set the option

    // Backward: from row 0 there is no row before it.
    EXPECT_EQ(view.FindNext(0), -1);
    EXPECT_EQ(messages.texts.back(), kNoMore);
    EXPECT_EQ(view.FindNext(0), 4);
    EXPECT_EQ(view.FindNext(0), 2);

    // A row the user focused is searched itself.
    view.FocusRealItem(4);
    EXPECT_EQ(view.FindNext(1), 4);

    // A search that began at the beginning and found nothing says so; the
    // first row is then focused and selected.
    C().searchString = "zzz";
    C().searchFromBeginning = 1;
    EXPECT_EQ(view.FindNext(1), -1);
    EXPECT_EQ(messages.texts.back(), kNotFound);
    EXPECT_EQ(view.GetFocusedItem(), 0);
    EXPECT_EQ(Selected(), std::vector<int>{0});

    // An empty text finds nothing and says nothing.
    const std::size_t shown = messages.texts.size();
    C().searchString.clear();
    EXPECT_EQ(view.FindNext(1), -1);
    EXPECT_EQ(messages.texts.size(), shown);
}

TEST_F(FindView, ColumnChoiceSearchesScreenColumnsOnly)
{
    Rows({{"k", "", ""}, {"", "k", ""}, {"", "", "k"}});
    C().searchString = "k";
    C().searchAll = 0;
    C().column = 2;
    EXPECT_EQ(view.FindNext(1), 2);
    C().column = -1;  // -1 means all columns
    C().searchFromBeginning = 1;
    EXPECT_EQ(view.FindNext(1), 0);
    // A hidden column is not on screen and not searched; screen column 1 is
    // now real column 2.
    view.HideRealCol(1, 1);
    C().searchAll = 1;
    EXPECT_EQ(view.FindNext(1), 2);
    EXPECT_EQ(view.ItemMatches(2, C()), 1);
    C().searchAll = 0;
    C().column = 5;
    EXPECT_EQ(view.ItemMatches(2, C()), -1);
}

TEST_F(FindView, SelectAndCheckAllMatchingReplaceOrAdd)
{
    Rows({{"pa"}, {"q"}, {"pb"}, {"r"}, {"P"}});
    view.SelectRealItem(1, 1);
    view.CheckRealItem(3, 1);
    nyr::test::Subscriber subscriber;
    view.AddItemNotification(&subscriber, CNyrReportView::NotifyItemSelect);
    Crit crit;
    crit.searchString = "p";
    CNyrListViewFind& find = view.GetFind();
    EXPECT_EQ(find.SelectAllMatching(crit, 1), 3);
    EXPECT_EQ(Selected(), (std::vector<int>{0, 1, 2, 4}));
    EXPECT_EQ(find.SelectAllMatching(crit, 0), 3);
    EXPECT_EQ(Selected(), (std::vector<int>{0, 2, 4}));
    EXPECT_EQ(subscriber.received.size(), 4u);  // three selections, one deselection
    EXPECT_EQ(view.selectionModel()->selectedRows().size(), 3);

    EXPECT_EQ(find.CheckAllMatching(crit, 1), 3);
    std::vector<int> checked;
    view.GetCheckedItems(checked);
    EXPECT_EQ(checked, (std::vector<int>{0, 2, 3, 4}));
    crit.matchCase = 1;
    EXPECT_EQ(find.CheckAllMatching(crit, 0), 2);
    view.GetCheckedItems(checked);
    EXPECT_EQ(checked, (std::vector<int>{0, 2}));
    crit.searchString.clear();
    EXPECT_EQ(find.CheckAllMatching(crit, 0), 0);
    view.GetCheckedItems(checked);
    EXPECT_EQ(checked.size(), 2u);
}

TEST_F(FindView, KeysAndMenuCommandsDriveTheFinder)
{
    Rows({{"m1"}, {"n"}, {"m2"}});
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_F, Qt::ControlModifier);
    CNyrListViewFindDialog* dialog = view.GetFind().GetFindDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(dialog->FindNextButton()->isEnabled());
    QTest::keyClicks(dialog->SearchEdit(), "m");
    EXPECT_EQ(C().searchString, "m");
    EXPECT_TRUE(dialog->FindNextButton()->isEnabled());

    QTest::keyClick(&view, Qt::Key_F3);
    EXPECT_EQ(view.GetFocusedItem(), 0);
    QTest::keyClick(&view, Qt::Key_F3);
    EXPECT_EQ(view.GetFocusedItem(), 2);
    QTest::keyClick(&view, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(view.GetFocusedItem(), 0);
    QTest::keyClick(dialog, Qt::Key_F3);
    EXPECT_EQ(view.GetFocusedItem(), 2);
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_FIND_PREV);
    EXPECT_EQ(view.GetFocusedItem(), 0);
    NyrSendMessage(&view, WM_NYR_REPORTVIEW_FIND_NEXT);
    EXPECT_EQ(view.GetFocusedItem(), 2);
    EXPECT_TRUE(messages.texts.empty());

    // The item menu offers find; next and previous only with a text.
    CNyrReportViewMenuPopUp menu(&view);
    view.BuildRealItemContextMenu(menu, 0);
    ASSERT_NE(menu.FindCommand(WM_NYR_REPORTVIEW_FIND), nullptr);
    EXPECT_TRUE(menu.FindCommand(WM_NYR_REPORTVIEW_FIND_NEXT)->isEnabled());
    C().searchString.clear();
    CNyrReportViewMenuPopUp again(&view);
    view.BuildItemBkContextMenu(again);
    EXPECT_FALSE(again.FindCommand(WM_NYR_REPORTVIEW_FIND_PREV)->isEnabled());

    // Hidden by the view, shown again on restore; a user's close is not
    // restored.
    view.HideFindDialog();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(view.RestoreFindDialog(0), 1);
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(view.RestoreFindDialog(1), 0);
}

TEST_F(FindView, DialogControlsEditTheSharedCriteria)
{
    Rows({{"s", "t", "u"}, {"v", "w", "s t"}});
    view.horizontalHeader()->moveSection(2, 0);  // display order C, A, B
    view.ShowFindDialog(1);
    CNyrListViewFindDialog* dialog = view.GetFind().GetFindDialog();
    QComboBox* columns = dialog->ColumnBox();
    ASSERT_EQ(columns->count(), 4);
    EXPECT_EQ(columns->itemText(0), "[All columns]");
    EXPECT_EQ(columns->itemText(1), "C");
    EXPECT_EQ(columns->itemData(1).toInt(), 2);
    EXPECT_EQ(columns->currentText(), "B");  // the column asked for
    EXPECT_EQ(C().searchAll, 0);
    EXPECT_EQ(C().column, 1);
    columns->setCurrentIndex(0);
    EXPECT_EQ(C().searchAll, 1);
    columns->setCurrentIndex(1);
    EXPECT_EQ(C().searchAll, 0);
    EXPECT_EQ(C().column, 2);

    dialog->MatchWordBox()->click();
    dialog->MatchCaseBox()->click();
    EXPECT_EQ(C().matchWord, 1);
    EXPECT_EQ(C().matchCase, 1);
    dialog->SearchEdit()->setText("s");
    dialog->FindNextButton()->click();
    EXPECT_EQ(view.GetFocusedItem(), 1);  // "s t" in column C
    EXPECT_FALSE(dialog->FromBeginningBox()->isChecked());  // a row was found
    dialog->FindNextButton()->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>{kNoMore});
    EXPECT_TRUE(dialog->FromBeginningBox()->isChecked());

    columns->setCurrentIndex(0);
    dialog->AddToCheckedButton()->click();
    std::vector<int> checked;
    view.GetCheckedItems(checked);
    EXPECT_EQ(checked, (std::vector<int>{0, 1}));
    dialog->SelectAllButton()->click();
    EXPECT_EQ(Selected(), (std::vector<int>{0, 1}));

    view.SetCheckBoxes(false);
    dialog->UpdateControls();
    EXPECT_TRUE(dialog->CheckAllButton()->isHidden());
}

TEST_F(FindView, OptionsPersistInTheViewsSectionAndTheTextSurvivesBlanks)
{
    Rows({{"x"}});
    // Absent values give the defaults: from beginning on, search all off.
    C().searchAll = 1;
    C().searchFromBeginning = 0;
    view.ShowFindDialog();
    EXPECT_EQ(C().searchFromBeginning, 1);
    EXPECT_EQ(C().searchAll, 0);
    EXPECT_EQ(C().matchWord, 0);

    CNyrListViewFindDialog* dialog = view.GetFind().GetFindDialog();
    dialog->SearchEdit()->setText("  two words ");
    dialog->MatchWordBox()->click();
    dialog->ColumnBox()->setCurrentIndex(0);
    dialog->hide();  // stores
    const std::string ini = nyr::test::ReadFile(dir.File("views.ini"));
    for (const char* line : {"SearchFromBeginning=1", "MatchWord=1", "MatchCase=0", "SearchAll=1",
                             "SearchString=\"  two words \""})
        EXPECT_NE(ini.find(line), std::string::npos) << line << "\n" << ini;

    // A new view loads them; the shared text is taken only while empty.
    C() = Crit{};
    C().searchString = "typed elsewhere";
    CNyrReportView other;
    other.SetInifileSection("Find");
    other.ShowFindDialog();
    EXPECT_EQ(C().matchWord, 1);
    EXPECT_EQ(C().searchString, "typed elsewhere");
    C().searchString.clear();
    CNyrListView third;
    third.SetInifileSection("Find");
    third.ShowFindDialog();
    EXPECT_EQ(C().searchString, "  two words ");
}

TEST(ListViewFind, PlainListSearchesItsTexts)
{
    CNyrListViewFind::SearchCrit(Crit{});
    MessageLog messages;
    CNyrListView list;
    list.InsertColumn(0, "Name");
    list.InsertColumn(1, "Code");
    for (int i = 0; i < 4; ++i) {
        list.InsertItem(i, "row" + std::to_string(i));
        list.SetItemText(i, 1, i % 2 ? "odd" : "even");
    }
    CNyrListViewFind::StaticSearchCrit().searchString = "ODD";
    EXPECT_EQ(list.FindNext(1), 1);
    EXPECT_EQ(list.FindNext(1), 3);
    EXPECT_EQ(list.GetItemState(3, LVIS_SELECTED | LVIS_FOCUSED), LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(list.GetItemState(1, LVIS_SELECTED), 0u);
    EXPECT_EQ(list.GetFind().SelectAllMatching(CNyrListViewFind::SearchCrit(), 0), 2);
    EXPECT_EQ(list.selectionModel()->selectedRows().size(), 2);
    EXPECT_EQ(list.GetFind().CheckAllMatching(CNyrListViewFind::SearchCrit(), 0), 2);
    EXPECT_EQ(list.GetCheck(1) + list.GetCheck(3), 2);
    EXPECT_EQ(list.GetCheck(0) + list.GetCheck(2), 0);
    EXPECT_TRUE(messages.texts.empty());
    CNyrListViewFind::SearchCrit(Crit{});
}

}  // namespace
