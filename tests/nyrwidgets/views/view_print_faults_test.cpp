// Printing under bad input, and printouts of views in random states.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QPrinter>
#include <filesystem>
#include <random>
#include <set>

#include "nyr/frame/resource_module.h"
#include "nyrwidgets/views/report_view_col.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"

using namespace nyr::test;
using Info = CNyrListViewPrint::PRINT_INFO;

namespace {

class PrintFault : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return dir.File(name); }
    std::set<std::string> Entries() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }
    TempDir dir;
};

TEST_F(PrintFault, UnwritablePdfPathsFailClearlyAndLeaveNothingBehind)
{
    CNyrReportView view;
    FillPoints(view, 5);
    WriteFile(File("plain"), "x");
    std::filesystem::create_directory(File("folder"));
    const std::set<std::string> before = Entries();
    for (const std::string& path : {File("missing/out.pdf"), File("plain/out.pdf"), File("folder"), std::string()}) {
        SCOPED_TRACE(path);
        std::string error;
        EXPECT_EQ(NyrExportListViewPdf(PrintInfo(view, path), &error), 0);
        const std::string head = "The PDF file " + path + " cannot be written:\n";
        EXPECT_EQ(error.compare(0, head.size(), head), 0) << error;
        EXPECT_GT(error.size(), head.size()) << "the reason is missing";
    }
    EXPECT_EQ(Entries(), before);
    EXPECT_EQ(ReadFile(File("plain")), "x");
}

TEST_F(PrintFault, PageTooSmallForOneRowFailsAndKeepsTheOldFile)
{
    CNyrReportView view;
    FillPoints(view, 5);
    WriteFile(File("old.pdf"), "old");
    struct Case
    {
        QSizeF sizeMm;
        QMargins marginsMm;
    };
    for (const Case& c : {Case{{148, 210}, {10, 100, 10, 100}},  // margins larger than the page
                          Case{{60, 20}, {0, 0, 0, 0}},        // the frame fits, header row and a row do not
                          Case{{5, 100}, {0, 0, 0, 0}}}) {     // narrower than a cell
        SCOPED_TRACE(c.sizeMm.height());
        Info info = PrintInfo(view, File("old.pdf"));
        info.pageSize = QPageSize(c.sizeMm, QPageSize::Millimeter);
        info.marginsMm = c.marginsMm;
        std::string error;
        EXPECT_EQ(NyrExportListViewPdf(info, &error), 0);
        EXPECT_EQ(error, NyrLoadString(26414));
    }
    EXPECT_TRUE(ReadFile(File("old.pdf")) == "old");
    EXPECT_EQ(Entries(), std::set<std::string>{"old.pdf"});
    // A page just large enough prints, and replaces the old file.
    Info info = PrintInfo(view, File("old.pdf"));
    info.pageSize = QPageSize(QSizeF(60, 45), QPageSize::Millimeter);
    info.marginsMm = {};
    EXPECT_GE(ExportPages(info).size(), 1u);
}

TEST_F(PrintFault, PrinterThatCannotStartReportsIt)
{
    CNyrReportView view;
    FillPoints(view, 5);
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(File("missing/out.pdf")));
    std::string error;
    EXPECT_EQ(NyrPrintListView(PrintInfo(view, {}), printer, &error), 0);
    EXPECT_EQ(error, NyrLoadString(26416));
    EXPECT_TRUE(Entries().empty());
}

TEST_F(PrintFault, NothingToPrintStillGivesOneFramedPage)
{
    CNyrReportView empty;  // no columns, no rows
    std::vector<std::string> pages = ExportPages(PrintInfo(empty, File("empty.pdf")));
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(CountLines(pages[0], "Page 1 of 1$"), 1);
    Info none = PrintInfo(empty, File("none.pdf"));
    none.list = nullptr;
    pages = ExportPages(none);
    ASSERT_EQ(pages.size(), 1u);
}

// Random changes of a view's rows and columns; after each, the printout holds
// exactly the rows the view would save (the chosen ones in screen order)
// under the visible labels in display order.
TEST_F(PrintFault, RandomViewStatesPrintWhatTheViewShows)
{
    std::mt19937 random(20240611);
    CNyrReportView view;
    view.SetCheckBoxes(true);
    view.SetDisableRealItemsEnabled(true);
    FillPoints(view, 80);
    auto pick = [&random](unsigned n) { return static_cast<unsigned>(random() % n); };
    for (int step = 0; step < 40; ++step) {
        SCOPED_TRACE(step);
        const unsigned r = pick(80);
        switch (pick(8)) {
        case 0: view.SelectRealItem(r, !view.GetRealItemSelected(r)); break;
        case 1: view.CheckRealItem(r, !view.GetRealItemChecked(r)); break;
        case 2: view.HideRealItem(r, view.GetRealItem(r)->IsHidden() ? 0 : 1); break;
        case 3: view.DisableRealItem(r, !view.GetRealItemDisabled(r)); break;
        case 4: view.DeleteRealItem(r); break;
        case 5:
            view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{pick(3), static_cast<int>(pick(2))}});
            break;
        case 6: {
            const unsigned col = 1 + pick(2);
            view.HideRealCol(col, view.GetRealCol(col)->IsVisible() ? 1 : 0);
            break;
        }
        default:
            if (view.GetColumnCount() == 3)
                view.horizontalHeader()->moveSection(1, 2);  // the first column stays first
        }
        Info info = PrintInfo(view, File("random.pdf"));
        info.printWhat = static_cast<int>(pick(3));
        info.marginsMm = QMargins(10, 60, 10, 60);  // a few rows a page
        std::vector<std::string> expected;
        for (int s = 0; s < view.GetItemCount(); ++s) {
            const CNyrReportViewItem* item = view.GetItem(s);
            if (info.printWhat == 0 || (info.printWhat == 1 && item->IsSelected()) ||
                (info.printWhat == 2 && item->IsChecked()))
                expected.push_back(view.GetItemText(s, 0));
        }
        std::string header = R"(^\s*Point)";
        for (int visual = 1; visual < view.GetColumnCount(); ++visual)
            header += R"(\s+)" + view.GetColumnLabel(view.horizontalHeader()->logicalIndex(visual));
        std::vector<std::string> printed;
        for (const std::string& page : ExportPages(info)) {
            EXPECT_EQ(CountLines(page, header + R"(\s*$)"), 1) << page;
            const std::vector<std::string> names = PointNames(page);
            printed.insert(printed.end(), names.begin(), names.end());
        }
        ASSERT_EQ(printed, expected);
    }
}

}  // namespace
