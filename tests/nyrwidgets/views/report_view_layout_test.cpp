#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>

#include "nyr/frame/notifications.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/report_view_col.h"
#include "nyrwidgets/views/report_view_columns_dlg.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "tests/nyrwidgets/views/views_test_p.h"
#include "tests/support/temp_dir.h"

using nyr::test::ReadFile;
using nyr::test::TextItem;

namespace {

class Layout : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(dir.File("views.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }

    // A view of the given columns (widths 100, 60, 70, 50, ...) with two
    // items, not yet shown.
    static void Make(CNyrReportView& view, std::vector<std::string> labels, bool serialize = true)
    {
        view.SetInifileSection("Layout");
        view.SerializeColWidthAndHidden(serialize);
        view.SerializeColOrder(serialize);
        const int widths[] = {100, 60, 70, 50, 40};
        for (std::size_t c = 0; c < labels.size(); ++c)
            view.AddRealCol(new CNyrReportViewCol(&view, 0, labels[c], LVCFMT_LEFT, widths[c]));
        view.AddRealItem(new TextItem({"a", "b", "c", "d", "e"}));
        view.AddRealItem(new TextItem({"f", "g", "h", "i", "j"}));
    }
    // The labels on screen in display order.
    static std::string Shown(const CNyrReportView& view)
    {
        std::string out;
        const QHeaderView* header = view.horizontalHeader();
        for (int v = 0; v < view.GetColumnCount(); ++v)
            out += view.GetColumnLabel(header->logicalIndex(v));
        return out;
    }
    static int Width(const CNyrReportView& view, unsigned int realCol)
    {
        return view.horizontalHeader()->sectionSize(view.ScreenColFromReal(realCol));
    }
    std::string Ini() const { return ReadFile(dir.File("views.ini")); }

    nyr::test::TempDir dir;
};

TEST_F(Layout, StoredAsWrittenAndLoadedWithTheFillRules)
{
    CNyrReportView view;
    Make(view, {"A", "B", "C", "D"});
    view.DisplayRealItems();
    view.HideRealCol(1, 1);
    view.DeleteRealCol(3);
    view.horizontalHeader()->moveSection(1, 0);  // C before A
    ASSERT_EQ(Shown(view), "CA");
    ASSERT_TRUE(view.StoreColWidthAndHidden());
    ASSERT_TRUE(view.StoreColOrder());
    EXPECT_NE(Ini().find("ColWidth=100;-1;70;-2;"), std::string::npos) << Ini();
    EXPECT_NE(Ini().find("ColOrder=1;1;0;3;"), std::string::npos) << Ini();
    EXPECT_EQ(view.GetRealCol(0)->GetOrder(), 1);
    EXPECT_EQ(view.GetRealCol(2)->GetOrder(), 0);

    std::vector<int> values;
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColWidth", "120;90;");
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColOrder", "");
    CNyrReportView other;
    Make(other, {"A", "B", "C"}, false);
    EXPECT_EQ(other.LoadColWidthAndHidden(values), 1);
    EXPECT_EQ(values, (std::vector<int>{120, 90, 80}));  // a column added since: 80 pixels
    EXPECT_EQ(other.LoadColOrder(values), 1);
    EXPECT_EQ(values, (std::vector<int>{0, 1, 2}));
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColOrder", "2;");
    other.LoadColOrder(values);
    EXPECT_EQ(values, (std::vector<int>{2, 1, 2}));  // missing: the own index
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColOrder", "0;1;2;3;4;");
    other.LoadColOrder(values);
    EXPECT_EQ(values.size(), 5u);  // passed on as stored
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColWidth", "");
    EXPECT_EQ(other.LoadColWidthAndHidden(values), 0);

    CNyrReportView empty;
    empty.SetInifileSection("Layout");
    EXPECT_EQ(empty.LoadColWidthAndHidden(values), 0);
    EXPECT_EQ(empty.LoadColOrder(values), 0);
    EXPECT_EQ(empty.StoreColOrder(), 0);
}

TEST_F(Layout, StoredByOneViewRestoredByANewViewWithAnAddedColumn)
{
    {
        CNyrReportView view;
        Make(view, {"A", "B", "C"});
        view.DisplayRealItems();
        view.horizontalHeader()->resizeSection(0, 150);
        view.HideRealCol(1, 1);
        view.horizontalHeader()->moveSection(1, 0);
        ASSERT_EQ(Shown(view), "CA");
    }  // stored as the view goes
    EXPECT_NE(Ini().find("ColWidth=150;-1;70;"), std::string::npos) << Ini();

    CNyrReportView view;
    Make(view, {"A", "B", "C", "D"});
    EXPECT_EQ(Shown(view), "ABCD");  // restored only as the items first show
    view.DisplayRealItems();
    EXPECT_EQ(Shown(view), "CAD");
    EXPECT_TRUE(view.GetRealCol(1)->IsHidden());
    EXPECT_EQ(Width(view, 0), 150);
    EXPECT_EQ(Width(view, 2), 70);
    EXPECT_EQ(Width(view, 3), 80);
    EXPECT_EQ(view.GetItemText(0, 0), "a");  // screen column 0 is real column 0

    // Without the switches nothing is restored, and nothing is stored by a
    // view that never showed its items.
    CNyrReportView plain;
    Make(plain, {"A", "B", "C", "D"}, false);
    plain.DisplayRealItems();
    EXPECT_EQ(Shown(plain), "ABCD");
    const std::string before = Ini();
    { CNyrReportView unused; Make(unused, {"X"}); }
    EXPECT_EQ(Ini(), before);
}

TEST_F(Layout, OddStoredValuesShowEveryColumnOnce)
{
    struct Case
    {
        const char* widths;
        const char* order;
        const char* shown;
    };
    const Case cases[] = {
        {"", "0;0;0;0;", "ABCD"},         // duplicates: real order
        {"", "3;2;1;0;9;9;", "DCBA"},     // extra entries ignored
        {"", "-5;7;7;-5;", "ADBC"},       // keys, not positions
        {"", "2;", "BACD"},               // missing: the own index
        {"-2;-1;", "", "CD"},             // deleted, hidden
        {"0;-7;99999;", "1;0;", "BACD"},  // -7 ignored, widths clamped
        {"-1;-1;-2;-1;", "", "ABCD"},  // no column left on screen: refused whole
    };
    for (const Case& c : cases) {
        CNyrProfileEntries::WriteNyrProfileString("Layout", "ColWidth", c.widths);
        CNyrProfileEntries::WriteNyrProfileString("Layout", "ColOrder", c.order);
        CNyrReportView view;
        Make(view, {"A", "B", "C", "D"});
        view.DisplayRealItems();
        EXPECT_EQ(Shown(view), c.shown) << c.widths << " / " << c.order;
        // The order fields are the display positions now.
        for (int s = 0; s < view.GetColumnCount(); ++s)
            EXPECT_EQ(view.GetCol(s)->GetOrder(), view.GetColumnOrder(s));
    }
    CNyrProfileEntries::WriteNyrProfileString("Layout", "ColWidth", "0;-7;99999;");
    CNyrReportView view;
    Make(view, {"A", "B", "C", "D"});
    view.DisplayRealItems();
    EXPECT_EQ(Width(view, 0), view.horizontalHeader()->minimumSectionSize());
    EXPECT_EQ(Width(view, 1), 60);
    EXPECT_EQ(Width(view, 2), 32767);
}

TEST_F(Layout, ColumnsDialogShowsAndAppliesTheLayout)
{
    CNyrReportView view;
    Make(view, {"A", "B", "C"});
    view.GetRealCol(2)->SetHiddenDefault(true);
    view.HideRealCol(2, 1);
    view.DisplayRealItems();
    view.horizontalHeader()->moveSection(1, 0);  // B, A; C hidden

    CNyrReportViewColumnsDlg dialog(&view);
    QTableWidget* list = dialog.ColumnList();
    ASSERT_EQ(list->rowCount(), 3);
    EXPECT_EQ(list->item(0, 0)->text(), "B");
    EXPECT_EQ(list->item(2, 0)->text(), "C");
    EXPECT_EQ(list->item(2, 0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(list->item(1, 1)->data(Qt::EditRole).toInt(), 100);
    EXPECT_EQ(dialog.AllColumnsBox()->text(), "[All columns]");
    EXPECT_EQ(dialog.AllColumnsBox()->checkState(), Qt::PartiallyChecked);
    dialog.AllColumnsBox()->click();
    EXPECT_EQ(list->item(2, 0)->checkState(), Qt::Checked);
    dialog.AllColumnsBox()->click();
    EXPECT_FALSE(dialog.OkButton()->isEnabled());  // a view keeps a column
    dialog.SetDefaults();
    EXPECT_EQ(list->item(0, 0)->text(), "A");
    EXPECT_EQ(list->item(2, 0)->checkState(), Qt::Unchecked);
    EXPECT_TRUE(dialog.OkButton()->isEnabled());
    list->setCurrentCell(0, 0);
    EXPECT_FALSE(dialog.MoveUpButton()->isEnabled());
    dialog.MoveDown();
    EXPECT_EQ(list->item(1, 0)->text(), "A");
    EXPECT_EQ(list->currentRow(), 1);

    // Through the menu command: C shown first with 90 pixels, B hidden.
    nyr::test::DialogAnswer answer([](QDialog& shown) {
        auto* d = qobject_cast<CNyrReportViewColumnsDlg*>(&shown);
        ASSERT_NE(d, nullptr);
        QTableWidget* rows = d->ColumnList();
        rows->setCurrentCell(2, 0);
        d->MoveUp();
        d->MoveUp();
        rows->item(0, 0)->setCheckState(Qt::Checked);
        rows->item(0, 1)->setData(Qt::EditRole, 90);
        rows->item(1, 0)->setCheckState(Qt::Unchecked);  // B
        d->accept();
    });
    CNyrReportViewMenuPopUp menu(&view);
    view.BuildHeaderContextMenu(menu, 0);
    ASSERT_NE(menu.FindCommand(WM_NYR_REPORTVIEW_COLUMNS_DLG), nullptr);
    menu.FindCommand(WM_NYR_REPORTVIEW_COLUMNS_DLG)->trigger();
    EXPECT_EQ(answer.opened, 1);
    EXPECT_EQ(Shown(view), "CA");
    EXPECT_EQ(Width(view, 2), 90);
    EXPECT_NE(Ini().find("ColWidth=100;-1;90;"), std::string::npos) << Ini();
    EXPECT_NE(Ini().find("ColOrder=1;1;0;"), std::string::npos) << Ini();

    // The held layout becomes what Defaults goes back to.
    view.HoldRealColsDefaults();
    CNyrReportViewColumnsDlg again(&view);
    again.SetDefaults();
    EXPECT_EQ(again.ColumnList()->item(0, 0)->text(), "C");
    EXPECT_EQ(again.ColumnList()->item(0, 1)->data(Qt::EditRole).toInt(), 90);
    EXPECT_EQ(again.ColumnList()->item(2, 0)->checkState(), Qt::Unchecked);

    // The style decides what the dialog offers; 0 offers no dialog.
    view.SetColumnsDlgStyle(CNyrReportView::ColumnsDlgVisibility);
    CNyrReportViewColumnsDlg limited(&view);
    EXPECT_TRUE(limited.MoveUpButton()->isHidden());
    EXPECT_TRUE(limited.DefaultsButton()->isHidden());
    EXPECT_FALSE(limited.ColumnList()->item(0, 1)->flags() & Qt::ItemIsEditable);
    view.SetColumnsDlgStyle(0);
    EXPECT_EQ(view.ColumnsDialog(), 0);
    CNyrReportViewMenuPopUp none(&view);
    view.BuildHeaderContextMenu(none, 0);
    EXPECT_FALSE(none.FindCommand(WM_NYR_REPORTVIEW_COLUMNS_DLG)->isEnabled());
}

}  // namespace
