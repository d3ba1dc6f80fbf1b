// The ways in that users take: right-click menus and their commands, the
// keys, the dialogs they open; the "All" and delete operations; the
// application's global menus and the class-wide defaults.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QHeaderView>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/list_view_find_dialog.h"
#include "nyrwidgets/views/list_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_columns_dlg.h"
#include "nyrwidgets/views/report_view_sort_multiple_dlg.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::DialogAnswer;
using nyr::test::Fill;
using nyr::test::ReadFile;
using nyr::test::RightClick;
using nyr::test::ScreenOrder;
using nyr::test::TextItem;

namespace {

using Reals = std::vector<unsigned int>;

// A view that records "&Modify..." requests.
class ModifyView : public CNyrReportView
{
public:
    std::vector<unsigned int> modified;

protected:
    void OnModifyRealItem(unsigned int realItem) override { modified.push_back(realItem); }
};

Reals Selected(const CNyrReportView& view)
{
    Reals items;
    view.GetSelectedRealItems(items);
    return items;
}

Reals Checked(const CNyrReportView& view)
{
    Reals items;
    view.GetCheckedRealItems(items);
    return items;
}

std::vector<std::pair<unsigned, int>> SortState(const CNyrReportView& view)
{
    std::vector<CNyrReportView::SORT_STATE_REALCOL> state;
    view.GetSortState(state);
    std::vector<std::pair<unsigned, int>> out;
    for (const auto& key : state)
        out.emplace_back(key.realCol, key.ascending);
    return out;
}

class Commands : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(dir.File("views.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }

    // A shown view of six items, items 0 and 5 checked.
    static void Show(ModifyView& view)
    {
        Fill(view, 6);
        view.SetCheckBoxes(true);
        view.CheckRealItems({0, 5}, 1);
        view.resize(500, 400);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    static QPoint RowPoint(const CNyrReportView& view, unsigned int realItem)
    {
        return view.visualRect(view.model()->index(view.ScreenItemFromReal(realItem), 1)).center();
    }
    static QPoint HeaderPoint(const CNyrReportView& view, unsigned int realCol)
    {
        const QHeaderView* header = view.horizontalHeader();
        const int section = view.ScreenColFromReal(realCol);
        return {header->sectionViewportPosition(section) + header->sectionSize(section) / 2, header->height() / 2};
    }

    nyr::test::TempDir dir;
};

// Picks the command entry of `message`.
std::function<QAction*(CNyrReportViewMenuPopUp&)> Command(unsigned int message)
{
    return [message](CNyrReportViewMenuPopUp& menu) { return menu.FindCommand(message); };
}

TEST_F(Commands, RightClickMenusRunWhatTheUserChooses)
{
    enum Where { kRow2, kBackground, kHeaderCol1 };
    const struct
    {
        const char* name;
        Where where;
        bool shift;
        std::function<void(ModifyView&)> before;
        std::function<QAction*(CNyrReportViewMenuPopUp&)> choose;
        std::function<void(QDialog&)> answer;  // for a command that opens a dialog
        std::function<void(ModifyView&)> check;
    } cases[] = {
        {"select all", kRow2, false, {}, Command(WM_NYR_REPORTVIEW_SELECT_ALL), {},
         [](ModifyView& v) { EXPECT_EQ(v.GetSelectedCount(), 6); }},
        {"invert selection", kRow2, false, [](ModifyView& v) { v.SelectRealItem(1, 1); },
         Command(WM_NYR_REPORTVIEW_INVERT_SELECTION), {},
         [](ModifyView& v) { EXPECT_EQ(Selected(v), (Reals{0, 2, 3, 4, 5})); }},
        {"select checked", kRow2, false, {}, Command(WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS), {},
         [](ModifyView& v) { EXPECT_EQ(Selected(v), (Reals{0, 5})); }},
        {"check all", kBackground, false, {}, Command(WM_NYR_REPORTVIEW_CHECK_ALL), {},
         [](ModifyView& v) { EXPECT_EQ(v.GetCheckedCount(), 6); }},
        {"invert checked", kRow2, false, {}, Command(WM_NYR_REPORTVIEW_INVERT_CHECKED), {},
         [](ModifyView& v) { EXPECT_EQ(Checked(v), (Reals{1, 2, 3, 4})); }},
        {"modify", kRow2, true, {}, Command(WM_NYR_REPORTVIEW_MODIFY), {},
         [](ModifyView& v) { EXPECT_EQ(v.modified, Reals{2}); }},
        {"delete", kRow2, true, [](ModifyView& v) { v.SelectRealItems({2, 4}, 1); },
         Command(WM_NYR_REPORTVIEW_DELETE_SELECTED), {},
         [](ModifyView& v) { EXPECT_EQ(ScreenOrder(v), (std::vector<int>{0, 1, 3, 5})); }},
        {"find", kRow2, false, {}, Command(WM_NYR_REPORTVIEW_FIND), {},
         [](ModifyView& v) {
             ASSERT_NE(v.GetFind().GetFindDialog(), nullptr);
             EXPECT_TRUE(v.GetFind().GetFindDialog()->isVisible());
             v.HideFindDialog();
         }},
        {"find next", kBackground, false,
         [](ModifyView&) {
             CNyrListViewFind::StaticSearchCrit() = {};
             CNyrListViewFind::StaticSearchCrit().searchString = "name3";
         },
         Command(WM_NYR_REPORTVIEW_FIND_NEXT), {}, [](ModifyView& v) { EXPECT_EQ(Selected(v), Reals{3}); }},
        {"find next without a text: disabled, chooses nothing", kRow2, false,
         [](ModifyView& v) {
             CNyrListViewFind::StaticSearchCrit().searchString.clear();
             v.SelectRealItem(1, 1);
         },
         Command(WM_NYR_REPORTVIEW_FIND_NEXT), {}, [](ModifyView& v) { EXPECT_EQ(Selected(v), Reals{1}); }},
        {"save as", kRow2, false, {}, Command(WM_NYR_REPORTVIEW_SAVE_AS),
         [this](QDialog& d) {
             auto& dialog = dynamic_cast<CNyrListViewSaveAsDlgCV&>(d);
             dialog.FileNameEdit()->setText(QString::fromStdString(dir.File("x.csv")));
             dialog.SaveWhatButton(CNyrListViewSaveAsDlgCV::SaveChecked)->click();
             dialog.accept();
         },
         [this](ModifyView&) {
             EXPECT_EQ(ReadFile(dir.File("x.csv")), "Name,Value,Note\r\nname0,0,note\r\nname5,5,note\r\n");
         }},
        {"ascending", kHeaderCol1, false, {}, Command(WM_NYR_REPORTVIEW_SORT_ASCENDING), {},
         [](ModifyView& v) { EXPECT_EQ(SortState(v), (std::vector<std::pair<unsigned, int>>{{1, 1}})); }},
        {"by multiple columns", kHeaderCol1, false, {}, Command(WM_NYR_REPORTVIEW_SORT_MULTIPLE),
         [](QDialog& d) {
             auto& dialog = dynamic_cast<CNyrReportViewSortMultipleDlg&>(d);
             dialog.SetChoice(0, 2, 0);
             dialog.SetChoice(1, 1, 1);
             dialog.accept();
         },
         [](ModifyView& v) { EXPECT_EQ(SortState(v), (std::vector<std::pair<unsigned, int>>{{2, 0}, {1, 1}})); }},
        {"hide this column", kHeaderCol1, false, {},
         [](CNyrReportViewMenuPopUp& menu) { return menu.FindText(26027); }, {},
         [](ModifyView& v) { EXPECT_TRUE(v.GetRealCol(1)->IsHidden()); }},
        {"columns dialog", kHeaderCol1, false, {}, Command(WM_NYR_REPORTVIEW_COLUMNS_DLG),
         [](QDialog& d) {
             auto& dialog = dynamic_cast<CNyrReportViewColumnsDlg&>(d);
             dialog.ColumnList()->item(2, 0)->setCheckState(Qt::Unchecked);
             dialog.accept();
         },
         [](ModifyView& v) { EXPECT_TRUE(v.GetRealCol(2)->IsHidden()); }},
    };
    for (const auto& c : cases) {
        ModifyView view;
        Show(view);
        if (c.before)
            c.before(view);
        DialogAnswer answer([&c](QDialog& dialog) {
            ASSERT_TRUE(c.answer) << c.name << ": an unexpected dialog " << dialog.metaObject()->className();
            c.answer(dialog);
        });
        QWidget* target = c.where == kHeaderCol1 ? view.horizontalHeader()->viewport() : view.viewport();
        const QPoint at = c.where == kRow2         ? RowPoint(view, 2)
                          : c.where == kHeaderCol1 ? HeaderPoint(view, 1)
                                                   : QPoint(10, view.viewport()->height() - 5);
        EXPECT_EQ(RightClick(target, at, c.shift, c.choose), 1) << c.name;
        EXPECT_EQ(answer.opened, c.answer ? 1 : 0) << c.name;
        if (c.check)
            c.check(view);
    }
}

TEST_F(Commands, DeleteKeyDeletesTheSelectionWithTheDefaultStyles)
{
    ModifyView view;
    Show(view);
    ASSERT_EQ(view.GetItemMenu(false) & CNyrReportView::MenuDelete, 0u);
    view.setFocus();
    view.SelectRealItems({1, 3}, 1);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{0, 2, 4, 5}));
    QTest::keyClick(&view, Qt::Key_Delete, Qt::ControlModifier);  // not the Delete command
    EXPECT_EQ(view.GetItemCount(), 4);
}

TEST_F(Commands, AutoArrangeFitsEachColumnToItsWidestText)
{
    ModifyView view;
    Show(view);
    static_cast<TextItem*>(view.GetRealItem(4))->SetCell(2, "a note much longer than the column is wide");
    const int before = view.horizontalHeader()->sectionSize(2);
    RightClick(view.horizontalHeader()->viewport(), HeaderPoint(view, 2), false,
               Command(WM_NYR_REPORTVIEW_AUTO_ARRANGE));
    const int width = view.horizontalHeader()->sectionSize(2);
    EXPECT_GT(width, before);
    EXPECT_GE(width, QFontMetrics(view.font()).horizontalAdvance("a note much longer than the column is wide"));
    EXPECT_EQ(width, view.GetRealColMaxWidth(2));
    // A column holding short texts under a long label keeps the label whole.
    view.GetRealCol(1)->SetLabel("A long heading for short values");
    view.AutoArrangeColumns();
    EXPECT_GE(view.horizontalHeader()->sectionSize(1),
              QFontMetrics(view.horizontalHeader()->font()).horizontalAdvance("A long heading for short values"));
}

TEST_F(Commands, DeleteOperationsTakeScreenRowsOrStatesAndRespectVetoes)
{
    ModifyView view;
    Show(view);
    view.SetDisableRealItemsEnabled(true);
    view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{0, 0}});  // name5 ... name0
    // Screen rows 0 and 2 are items 5 and 3; a row past the end is skipped.
    EXPECT_EQ(view.DeleteItems({0, 2, 99}), 2);
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{4, 2, 1, 0}));
    static_cast<TextItem*>(view.GetRealItem(1))->vetoDelete = true;
    view.DisableRealItems({1, 2, 4}, 1);
    view.HideRealItem(4, 1);
    // The hidden disabled item stays, the vetoing one too.
    EXPECT_EQ(view.DeleteDisabledItems(), 1);
    EXPECT_TRUE(view.GetRealItem(2)->IsDeleted());
    EXPECT_FALSE(view.GetRealItem(4)->IsDeleted());
    EXPECT_FALSE(view.GetRealItem(1)->IsDeleted());
    CNyrReportView::COMPLETE_ITEM complete;
    ASSERT_TRUE(view.CompleteItemFromScreen(0, complete));
    EXPECT_EQ(view.DeleteRealItems(std::vector<CNyrReportView::COMPLETE_ITEM>{complete}), 0);  // item 1 vetoes
    EXPECT_EQ(ScreenOrder(view), (std::vector<int>{1, 0}));
}

TEST_F(Commands, PlainListDeletesRowsAndColumnsAndSavesItsRows)
{
    CNyrListView list;
    list.InsertColumn(0, "Name");
    list.InsertColumn(1, "Value");
    for (int i = 0; i < 4; ++i) {
        list.InsertItem(i, "row" + std::to_string(i));
        list.SetItemText(i, 1, std::to_string(i * 10));
    }
    EXPECT_EQ(list.DeleteItem(1), 1);
    EXPECT_EQ(list.DeleteItem(3), 0);
    EXPECT_EQ(list.GetItemText(1, 0), "row2");
    EXPECT_EQ(list.DeleteColumn(0), 1);
    EXPECT_EQ(list.DeleteColumn(1), 0);
    EXPECT_EQ(list.GetColumnLabel(0), "Value");
    EXPECT_EQ(list.GetItemText(2, 0), "30");

    const std::string file = dir.File("list.txt");
    {
        DialogAnswer answer([&file](QDialog& d) {
            auto& dialog = dynamic_cast<CNyrListViewSaveAsDlgCV&>(d);
            dialog.FileNameEdit()->setText(QString::fromStdString(file));
            dialog.FileTypeBox()->setCurrentIndex(1);
            dialog.accept();
        });
        EXPECT_EQ(list.SaveAs(), 1);
        EXPECT_EQ(answer.opened, 1);
    }
    EXPECT_EQ(ReadFile(file), "Value\r\n0\r\n20\r\n30\r\n");
    EXPECT_EQ(list.DeleteAllItems(), 1);
    EXPECT_EQ(list.GetItemCount(), 0);

    // A report view has none of the plain list's rows and columns.
    CNyrReportView view;
    Fill(view, 2);
    EXPECT_EQ(view.DeleteItem(0), 0);
    EXPECT_EQ(view.DeleteAllItems(), 0);
    EXPECT_EQ(view.DeleteColumn(0), 0);
    EXPECT_EQ(view.GetItemCount(), 2);
}

TEST_F(Commands, GlobalMenusAndClassDefaultsReachNewViews)
{
    const unsigned int header = CNyrReportView::GetHeaderMenuDefault();
    const unsigned int item[2] = {CNyrReportView::GetItemMenuDefault(false), CNyrReportView::GetItemMenuDefault(true)};
    const unsigned int background = CNyrReportView::GetItemBkMenuDefault();
    ModifyView before;
    Show(before);

    QMenu global;
    int ran = 0;
    global.addAction("Survey report", [&ran] { ++ran; });
    CNyrReportView::SetGlobalItemMenu(&global);
    CNyrReportView::SetGlobalHeaderMenu(&global);
    CNyrReportView::SetItemMenuDefault(CNyrReportView::MenuGlobal | CNyrReportView::MenuDelete,
                                       CNyrReportView::MenuGlobal);
    CNyrReportView::SetItemBkMenuDefault(0, 0);
    {
        ModifyView view;
        Show(view);
        EXPECT_EQ(view.GetItemMenu(false), unsigned(CNyrReportView::MenuGlobal | CNyrReportView::MenuDelete));
        EXPECT_EQ(view.GetItemBkMenu(true), 0u);
        EXPECT_EQ(before.GetItemMenu(false), item[0]);  // views made earlier keep theirs
        const auto byText = [](const char* text) {
            return [text](CNyrReportViewMenuPopUp& menu) -> QAction* {
                for (QAction* a : menu.actions())
                    if (a->text() == text)
                        return a;
                return nullptr;
            };
        };
        RightClick(view.viewport(), RowPoint(view, 1), false, byText("Survey report"));
        RightClick(view.horizontalHeader()->viewport(), HeaderPoint(view, 0), false, byText("Survey report"));
        EXPECT_EQ(ran, 2);
        // A style without MenuGlobal leaves the application's menu out; a
        // background menu of style 0 does not show at all.
        view.SetHeaderMenu(CNyrReportView::MenuSort, CNyrReportView::MenuSort);
        EXPECT_EQ(RightClick(view.horizontalHeader()->viewport(), HeaderPoint(view, 0), false, byText("Survey report")), 1);
        EXPECT_EQ(RightClick(view.viewport(), QPoint(10, view.viewport()->height() - 5), false, byText("x")), 0);
        EXPECT_EQ(ran, 2);
    }
    // A global menu that went away is left out.
    {
        auto* gone = new QMenu;
        gone->addAction("Gone", [&ran] { ran += 100; });
        CNyrReportView::SetGlobalItemMenu(gone);
        delete gone;
        ModifyView view;
        Show(view);
        int entries = -1;
        RightClick(view.viewport(), RowPoint(view, 1), false, [&entries](CNyrReportViewMenuPopUp& menu) {
            entries = static_cast<int>(menu.actions().size());
            return nullptr;
        });
        EXPECT_EQ(entries, 1);  // "&Delete" only
    }
    CNyrReportView::SetGlobalItemMenu(nullptr);
    CNyrReportView::SetGlobalHeaderMenu(nullptr);
    CNyrReportView::SetHeaderMenuDefault(header, header);
    CNyrReportView::SetItemMenuDefault(item[0], item[1]);
    CNyrReportView::SetItemBkMenuDefault(background, background);
}

TEST_F(Commands, ADialogLeftOpenByTheAnswerIsRejectedAndOneThatNeverOpensIsNoticed)
{
    ModifyView view;
    Show(view);
    {
        DialogAnswer leaveOpen([](QDialog&) {});
        EXPECT_EQ(view.ColumnsDialog(), 0);
        EXPECT_EQ(view.SortMultiple(), 0);
        EXPECT_EQ(leaveOpen.opened, 2);
        view.SetColumnsDlgStyle(0);
        EXPECT_EQ(view.ColumnsDialog(), 0);
        EXPECT_EQ(leaveOpen.opened, 2);  // style 0 offers no dialog
    }
    EXPECT_EQ(SortState(view), (std::vector<std::pair<unsigned, int>>{}));
}

}  // namespace
