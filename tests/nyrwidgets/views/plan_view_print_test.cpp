// The plan as a page of a list view's printout: the host's hooks before
// printing and saving, the page read back with pdftotext and as pixels.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPdfWriter>

#include "nyr/frame/resource_module.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/views/plan_view.h"
#include "nyrwidgets/views/plan_view_print.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/view_print_dlg.h"
#include "tests/nyrwidgets/views/plan_view_test_p.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"
#include "tests/support/dialog_answer.h"

using namespace nyr::test;

namespace {

const QColor kPurple(150, 0, 160);

// A host's list: its printouts end with the plan, and it names the files
// that printing and saving start from.
class HostView : public CNyrReportView
{
public:
    CNyrPlanViewPrint* planPage = nullptr;
    std::string pdfName, exportName;

    void OnPrintBegin(CNyrListViewPrint::PRINT_INFO& info) override
    {
        if (planPage)
            info.parts.push_back(planPage);
        if (info.fileName.empty())
            info.fileName = pdfName;
    }
    void OnSaveAsBegin(CNyrListViewSaveAsDlgCV::SAVE_AS_INFO& info) override { info.fileName = exportName; }
};

// Three points: A, B 100 m east of A, C 50 m north of A, in red, green and
// purple, on a plan of 400 x 300 pixels zoomed to all.
struct HostFixture
{
    HostFixture()
    {
        view.AddRealCols(std::vector<std::string>{"Name"}, {100});
        view.SetInifileSection("Host");
        view.SetPrintTitle("Control points");
        const struct
        {
            const char* name;
            double e, n;
        } points[] = {{"A", 500000, 5400000}, {"B", 500100, 5400000}, {"C", 500000, 5400050}};
        unsigned int code = 1;
        for (const auto& p : points)
            view.AddRealItem(new PlanItem(p.name, p.e, p.n, code++));
        view.DisplayRealItems(0);
        plan.resize(400, 300);
        plan.SetLabels(false);
        plan.SetSymbolSize(12);
        plan.SetSymbol(1, CNyrPlanView::ShapeCircle, kRed);
        plan.SetSymbol(2, CNyrPlanView::ShapeCircle, kGreen);
        plan.SetSymbol(3, CNyrPlanView::ShapeCircle, kPurple);
        plan.SetReportView(&view);
        plan.ZoomToAll();
        view.planPage = &page;
    }
    HostView view;
    CNyrPlanView plan;
    CNyrPlanViewPrint page{&plan};
};

// The centre of the pixels near `color`; (-1, -1) when there are none.
QPointF Centre(const QImage& image, const QColor& color)
{
    double x = 0, y = 0;
    int count = 0;
    for (int row = 0; row < image.height(); ++row)
        for (int col = 0; col < image.width(); ++col) {
            const QColor c = image.pixelColor(col, row);
            if (std::abs(c.red() - color.red()) + std::abs(c.green() - color.green()) +
                    std::abs(c.blue() - color.blue()) < 60) {
                x += col;
                y += row;
                ++count;
            }
        }
    return count ? QPointF(x / count, y / count) : QPointF(-1, -1);
}

// One page of a PDF as pixels at 72 dpi.
QImage PdfPageImage(const std::string& pdf, int page, const std::string& prefix)
{
    const std::string number = std::to_string(page);
    const ProcessResult r = RunProcess(
        {"/usr/bin/pdftoppm", "-r", "72", "-f", number, "-l", number, "-png", "-singlefile", pdf, prefix});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return QImage(QString::fromStdString(prefix + ".png")).convertToFormat(QImage::Format_RGB32);
}

TEST(PlanPrint, ThePlanFollowsTheRowsOnAPageOfItsOwnNorthUpAndUnstretched)
{
    TempDir dir;
    NyrSetProfilePath(dir.File("host.ini"));
    HostFixture f;
    f.view.pdfName = dir.File("points.pdf");
    std::string offered;
    AnswerNext<CNyrListViewPrintDlg>([&offered](CNyrListViewPrintDlg& dialog) {
        offered = dialog.FileNameEdit()->text().toStdString();
        dialog.accept();
    });
    EXPECT_EQ(f.view.ExportPdf(), 2);
    EXPECT_EQ(offered, dir.File("points.pdf"));  // the host's name, as nothing was stored yet

    const std::vector<std::string> pages = PdfPages(dir.File("points.pdf"));
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(PointNames(pages[0]), (std::vector<std::string>{}));  // PlanItems are no "P<n>" rows
    EXPECT_EQ(CountLines(pages[0], R"(^\s*[ABC]\s*$)"), 3) << pages[0];
    EXPECT_EQ(CountLines(pages[1], "^Control points +Printed on"), 1) << pages[1];
    EXPECT_EQ(CountLines(pages[1], R"(Page 2 of 2)"), 1);
    EXPECT_EQ(CountLines(pages[1], R"(^\s*[ABC]\s*$)"), 0);  // no rows on the plan's page

    const QImage list = PdfPageImage(dir.File("points.pdf"), 1, dir.File("list"));
    EXPECT_EQ(Centre(list, kRed), QPointF(-1, -1));
    const QImage plan = PdfPageImage(dir.File("points.pdf"), 2, dir.File("plan"));
    const QPointF a = Centre(plan, kRed), b = Centre(plan, kGreen), c = Centre(plan, kPurple);
    ASSERT_GT(a.x(), 0);
    ASSERT_GT(b.x(), 0);
    ASSERT_GT(c.x(), 0);
    // East to the right, north up, one scale: AC is half of AB.
    EXPECT_GT(b.x() - a.x(), 50);
    EXPECT_NEAR(b.y(), a.y(), 1.5);
    EXPECT_NEAR(c.x(), a.x(), 1.5);
    EXPECT_NEAR((a.y() - c.y()) / (b.x() - a.x()), 0.5, 0.03);
    NyrSetProfilePath("");
}

TEST(PlanPrint, SaveAsStartsFromTheHostsFileName)
{
    TempDir dir;
    NyrSetProfilePath(dir.File("host.ini"));
    HostFixture f;
    f.view.exportName = dir.File("export/points.csv");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(dir.File("export"))));
    std::string offered;
    AnswerNext<CNyrReportViewSaveAsDlgCV>([&offered](CNyrReportViewSaveAsDlgCV& dialog) {
        offered = dialog.FileNameEdit()->text().toStdString();
        dialog.accept();
    });
    EXPECT_EQ(f.view.SaveAs(), 1);
    EXPECT_EQ(offered, dir.File("export/points.csv"));
    EXPECT_EQ(ReadFile(dir.File("export/points.csv")), "Name\r\nA\r\nB\r\nC\r\n");
    NyrSetProfilePath("");
}

TEST(PlanPrint, APageWithoutRoomOrAPlanThatWentAwayPrintNothingOfIt)
{
    TempDir dir;
    auto plan = std::make_unique<CNyrPlanView>();
    CNyrPlanViewPrint page(plan.get());
    QImage device(100, 100, QImage::Format_RGB32);
    std::string error;
    EXPECT_EQ(page.Paginate(device, QSizeF(0, 100), error), 0);
    EXPECT_EQ(error, NyrLoadString(26414));
    plan.reset();
    QPdfWriter pdf(QString::fromStdString(dir.File("empty.pdf")));
    CNyrPrintout printout;
    printout.AddPart(&page);
    EXPECT_EQ(printout.Print(pdf), 1);
}

}  // namespace
