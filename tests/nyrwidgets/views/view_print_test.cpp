// What a printed list holds, read back from real PDFs with pdftotext.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <filesystem>

#include "nyr/frame/resource_module.h"
#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"

using namespace nyr::test;
using Info = CNyrListViewPrint::PRINT_INFO;

namespace {

class Print : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(dir.File("views.ini")); }
    void TearDown() override { NyrSetProfilePath(""); }
    std::string File(const std::string& name) const { return dir.File(name); }

    // Rows on a full A5 page of FillPoints, read from a printout.
    int RowsPerPage()
    {
        CNyrReportView view;
        FillPoints(view, 200);
        const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("probe.pdf")));
        return pages.empty() ? 0 : static_cast<int>(PointNames(pages[0]).size());
    }

    TempDir dir;
};

std::vector<std::string> Names(int from, int to)
{
    std::vector<std::string> names;
    for (int i = from; i < to; ++i)
        names.push_back("P" + std::to_string(i));
    return names;
}

TEST_F(Print, PageCountsHeaderAndFooterOnEveryPageEveryRowOnce)
{
    const int perPage = RowsPerPage();
    // 10 pt rows on 190 mm of A5 less the page header and footer.
    ASSERT_GE(perPage, 20);
    ASSERT_LE(perPage, 40);
    for (int rows : {0, 1, 57, 10000}) {
        SCOPED_TRACE(rows);
        CNyrReportView view;
        FillPoints(view, rows);
        const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("rows.pdf")));
        const int expected = rows == 0 ? 1 : (rows + perPage - 1) / perPage;
        ASSERT_EQ(static_cast<int>(pages.size()), expected);
        std::vector<std::string> printed;
        for (int p = 0; p < expected; ++p) {
            const std::string& page = pages[static_cast<std::size_t>(p)];
            EXPECT_EQ(CountLines(page, R"(^\s*Point\s+East\s+North\s*$)"), 1) << page;
            EXPECT_EQ(CountLines(page, "^Survey points +Printed on "), 1);
            EXPECT_EQ(CountLines(page, "^ +Page " + std::to_string(p + 1) + " of " + std::to_string(expected) + "$"),
                      1);
            const std::vector<std::string> names = PointNames(page);
            if (p + 1 < expected) {
                EXPECT_EQ(static_cast<int>(names.size()), perPage);
            }
            printed.insert(printed.end(), names.begin(), names.end());
        }
        EXPECT_EQ(printed, Names(0, rows));
    }
}

TEST_F(Print, ThirdPageOfSevenSaysSo)
{
    const int perPage = RowsPerPage();
    CNyrReportView view;
    FillPoints(view, 6 * perPage + 1);
    const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("seven.pdf")));
    ASSERT_EQ(pages.size(), 7u);
    EXPECT_EQ(CountLines(pages[2], "Page 3 of 7$"), 1);
    EXPECT_EQ(PointNames(pages[6]), Names(6 * perPage, 6 * perPage + 1));
}

TEST_F(Print, ColumnsInDisplayOrderWithoutHiddenOnesRowsInSortOrder)
{
    CNyrReportView view;
    FillPoints(view, 3);
    view.horizontalHeader()->moveSection(view.ScreenColFromReal(2), 0);  // North, Point, East
    view.HideRealCol(1, 1);                                              // North, Point
    view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{1, 0}});
    const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("order.pdf")));
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(CountLines(pages[0], R"(^\s*North\s+Point\s*$)"), 1) << pages[0];
    EXPECT_EQ(CountLines(pages[0], "East"), 0);
    const std::vector<std::string> lines = Lines(pages[0]);
    std::vector<std::string> rows;
    const std::regex row(R"(^\s*(\d+)\s+(P\d)\s*$)");
    std::smatch m;
    for (const std::string& line : lines) {
        if (std::regex_match(line, m, row))
            rows.push_back(std::string(m[1]) + " " + std::string(m[2]));
    }
    EXPECT_EQ(rows, (std::vector<std::string>{"40 P2", "20 P1", "0 P0"}));
}

TEST_F(Print, AllSelectedOrCheckedRowsAsSaveAsChoosesThem)
{
    CNyrReportView view;
    view.SetCheckBoxes(true);
    view.SetDisableRealItemsEnabled(true);
    FillPoints(view, 6);
    view.SelectRealItems({1, 2, 4}, 1);
    view.CheckRealItems({2, 3, 4}, 1);
    view.HideRealItem(4, 1);  // selected and checked, but hidden: never printed
    view.DisableRealItem(3, 1);
    struct Case
    {
        int what;
        std::vector<std::string> names;
        int checked;
    };
    for (const Case& c : {Case{CNyrListViewPrint::PrintAll, {"P0", "P1", "P2", "P3", "P5"}, 2},
                          Case{CNyrListViewPrint::PrintSelected, {"P1", "P2"}, 1},
                          Case{CNyrListViewPrint::PrintChecked, {"P2", "P3"}, 2}}) {
        Info info = PrintInfo(view, File("rows.pdf"));
        info.printWhat = c.what;
        const std::vector<std::string> pages = ExportPages(info);
        ASSERT_EQ(pages.size(), 1u);
        EXPECT_EQ(PointNames(pages[0]), c.names) << c.what;
        // Checked rows carry the check mark, the others only its box.
        EXPECT_EQ(CountLines(pages[0], R"(^\s*✓\s*P[23]\b)"), c.checked) << pages[0];
        EXPECT_EQ(CountLines(pages[0], "✓"), c.checked);
    }
}

TEST_F(Print, KeptWidthsContinueOnFurtherPagesRepeatingTheFirstColumn)
{
    CNyrReportView view;
    view.setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    std::vector<std::string> labels{"Point"};
    for (int c = 1; c <= 6; ++c)
        labels.push_back("Col" + std::to_string(c));
    view.AddRealCols(labels, {90, 220, 220, 220, 220, 220, 220});
    for (int i = 0; i < 3; ++i) {
        std::vector<std::string> cells{"P" + std::to_string(i)};
        for (int c = 1; c <= 6; ++c)
            cells.push_back("v" + std::to_string(i) + "_" + std::to_string(c));
        view.AddRealItem(new TextItem(cells));
    }
    view.DisplayRealItems(0);
    Info info = PrintInfo(view, File("wide.pdf"));
    info.fitToWidth = false;
    const std::vector<std::string> bands = ExportPages(info);
    ASSERT_GE(bands.size(), 3u);
    int shown = 0;
    for (std::size_t p = 0; p < bands.size(); ++p) {
        EXPECT_EQ(CountLines(bands[p], R"(^\s*Point\s+Col)"), 1) << bands[p];
        EXPECT_EQ(PointNames(bands[p]), Names(0, 3));
        for (int c = 1; c <= 6; ++c)
            shown += CountLines(bands[p], "v1_" + std::to_string(c) + "\\b");
    }
    EXPECT_EQ(shown, 6);  // every column once

    info.fitToWidth = true;
    const std::vector<std::string> fitted = ExportPages(info);
    ASSERT_EQ(fitted.size(), 1u);
    EXPECT_EQ(CountLines(fitted[0], R"(^\s*Point\s+Col1\s+Col2\s+Col3\s+Col4\s+Col5\s+Col6\s*$)"), 1) << fitted[0];
}

TEST_F(Print, LongTextsEndInAnEllipsisAndNumbersStayRightAligned)
{
    CNyrReportView view;
    view.setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    view.AddRealCols(std::vector<std::string>{"Note", "East"}, {80, 120}, {LVCFMT_LEFT, LVCFMT_RIGHT});
    const std::vector<std::string> values{"7", "1234567", "42"};
    for (const std::string& v : values)
        view.AddRealItem(new TextItem({"a rather long remark\tacross\nlines " + v, v}));
    view.DisplayRealItems(0);
    const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("cut.pdf")));
    ASSERT_EQ(pages.size(), 1u);
    std::vector<std::size_t> starts, ends;
    const std::regex row(R"(^\s*a rather\s*…\s+(\d+)\s*$)");
    std::smatch m;
    for (const std::string& line : Lines(pages[0])) {
        if (!std::regex_match(line, m, row))
            continue;
        starts.push_back(static_cast<std::size_t>(m.position(1)));
        ends.push_back(static_cast<std::size_t>(m.position(1) + m.length(1)));
        EXPECT_EQ(m[1], values[starts.size() - 1]);
    }
    ASSERT_EQ(ends.size(), 3u) << pages[0];
    EXPECT_EQ(CountLines(pages[0], "remark"), 0);
    // Right edges in one place (to a character), left edges apart.
    EXPECT_LE(*std::max_element(ends.begin(), ends.end()) - *std::min_element(ends.begin(), ends.end()), 1u);
    EXPECT_GE(*std::max_element(starts.begin(), starts.end()) - *std::min_element(starts.begin(), starts.end()), 4u);
}

// The darkest grey of each band of ink, from the top of the image.
std::vector<int> InkBands(const QImage& image)
{
    std::vector<int> bands;
    bool inBand = false;
    for (int y = 0; y < image.height(); ++y) {
        int darkest = 255;
        for (int x = 0; x < image.width(); ++x)
            darkest = std::min(darkest, qGray(image.pixel(x, y)));
        if (darkest < 220) {
            if (!inBand)
                bands.push_back(255);
            bands.back() = std::min(bands.back(), darkest);
        }
        inBand = darkest < 220;
    }
    return bands;
}

TEST_F(Print, DisabledRowsPrintGreyOnAnyPaintDevice)
{
    CNyrReportView view;
    view.SetDisableRealItemsEnabled(true);
    FillPoints(view, 3);
    view.DisableRealItem(1, 1);
    // The part draws on a plain image as on a printer: a plan of points or
    // a picture of the list can take its pages.
    QImage image(600, 400, QImage::Format_RGB32);
    image.fill(Qt::white);
    CNyrListViewPrint part(PrintInfo(view, {}));
    std::string error;
    ASSERT_EQ(part.Paginate(image, QSizeF(image.size()), error), 1) << error;
    {
        QPainter painter(&image);
        part.DrawPage(painter, 0);
    }
    const std::vector<int> bands = InkBands(image);
    ASSERT_GE(bands.size(), 4u);
    const std::size_t last = bands.size() - 1;
    EXPECT_LT(bands[last - 2], 80);
    EXPECT_GE(bands[last - 1], 100);
    EXPECT_LT(bands[last], 80);
}

// A part of a host's own, as a plan of points would be: one page.
class PlanPart : public CNyrPrintPart
{
public:
    int Paginate(QPaintDevice&, const QSizeF& body, std::string&) override
    {
        size = body;
        return 1;
    }
    void DrawPage(QPainter& painter, int page) override
    {
        painter.drawText(QPointF(size.width() / 2, size.height() / 2), QStringLiteral("PLAN %1").arg(page));
    }
    QSizeF size;
};

TEST_F(Print, PartsFollowEachOtherUnderOneFrameDatedInTheCurrentFormat)
{
    CNyrTime::SaveTimeFormat(CNyrTime::eTimeFormatDMonY4Dot24);
    CNyrReportView view;
    FillPoints(view, 2);
    CNyrListViewPrint list(PrintInfo(view, {}));
    PlanPart plan;
    CNyrPrintout printout;
    printout.SetTitle("Job 17");
    printout.SetPrintedOn(CNyrTime(2024, 3, 5, 14, 7, 9));
    printout.AddPart(&list);
    printout.AddPart(&plan);
    {
        QPdfWriter writer(QString::fromStdString(File("parts.pdf")));
        EXPECT_EQ(printout.CountPages(writer), 2);
        EXPECT_EQ(printout.Print(writer), 2) << printout.GetError();
    }
    CNyrTime::SaveTimeFormat(CNyrTime::eTimeFormatMDY4Slash24);
    const std::vector<std::string> pages = PdfPages(File("parts.pdf"));
    ASSERT_EQ(pages.size(), 2u);
    for (int p = 0; p < 2; ++p) {
        const std::string& page = pages[static_cast<std::size_t>(p)];
        EXPECT_EQ(CountLines(page, R"(^Job 17 +Printed on 5\. Mar 2024 14:07:09$)"), 1) << page;
        EXPECT_EQ(CountLines(page, "Page " + std::to_string(p + 1) + " of 2$"), 1);
    }
    EXPECT_EQ(PointNames(pages[0]), Names(0, 2));
    EXPECT_EQ(CountLines(pages[1], "PLAN 0"), 1);
}

TEST_F(Print, GermanModuleTranslatesFrameAndMenus)
{
    std::string error;
    static auto german = CNyrResourceModule::LoadFromFile(NYR_SOURCE_DIR "/data/lang/de.lang", &error);
    ASSERT_TRUE(german) << error;
    NyrSetNyrResourceHandle(german.get());
    CNyrReportView view;
    FillPoints(view, 1);
    const std::vector<std::string> pages = ExportPages(PrintInfo(view, File("de.pdf")));
    CNyrReportViewMenuPopUp menu(&view);
    view.BuildItemBkContextMenu(menu);
    NyrSetNyrResourceHandle(CNyrResourceModule::Library());
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(CountLines(pages[0], "^Survey points +Gedruckt am "), 1) << pages[0];
    EXPECT_EQ(CountLines(pages[0], "Seite 1 von 1$"), 1);
    ASSERT_TRUE(menu.FindCommand(NyrListViewPrintMessage()));
    EXPECT_EQ(menu.FindCommand(NyrListViewPrintMessage())->text(), QStringLiteral("&Drucken\tStrg+P"));
    EXPECT_EQ(menu.FindCommand(NyrListViewPrintPreviewMessage())->text(), QStringLiteral("Druck&vorschau..."));
    EXPECT_EQ(menu.FindCommand(NyrListViewExportPdfMessage())->text(), QStringLiteral("Als PDF e&xportieren..."));
}

}  // namespace
