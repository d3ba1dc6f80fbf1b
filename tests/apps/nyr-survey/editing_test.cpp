// Points edited in the list and in the point dialog, printing with the plan,
// long work cancelled, the recent files and a later start of the program.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <cmath>
#include <functional>
#include <numbers>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_columns.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/project/geodesy.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_dialog.h"
#include "apps/nyr-survey/window/point_view.h"
#include "nyr/app/recent_documents.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/app/progress_dialog.h"
#include "nyrwidgets/input/input_string.h"
#include "nyrwidgets/input/input_value.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/msgbox/message_box_dialog.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"
#include "nyrwidgets/views/view_print_dlg.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"
#include "tests/support/dialog_answer.h"
#include "tests/support/temp_dir.h"

namespace survey {
namespace {

constexpr double kDeg = std::numbers::pi / 180.0;

class Editing : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_dir = new nyr::test::TempDir;
        InitializeApplication(s_dir->File("editing.ini"));
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }
    void SetUp() override
    {
        window = std::make_unique<CMainWindow>();
        window->OpenSample();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    CPointView& View() const { return *window->View(); }
    unsigned int RealOf(const std::string& name) const
    {
        for (unsigned int r = 0; r < View().GetRealItemCount(); ++r)
            if (Point(r).Name() == name)
                return r;
        ADD_FAILURE() << "no point " << name;
        return 0;
    }
    CSurveyPoint& Point(unsigned int real) const { return *static_cast<CSurveyPoint*>(View().GetRealItem(real)); }
    // Types `text` into the cell's editor and presses Enter; the message the
    // editor shows when it stays open.
    std::string EditCell(unsigned int real, unsigned int col, const QString& text)
    {
        if (View().EditRealItem(real, col) != 1)
            return "not editable";
        CNyrInputControl* editor = View().GetInplaceEditor();
        editor->selectAll();
        QTest::keyClicks(editor, text);
        if (text.isEmpty())
            QTest::keyClick(editor, Qt::Key_Delete);
        QTest::keyClick(editor, Qt::Key_Return);
        if (!View().GetInplaceEditor())
            return {};
        std::string message = editor->GetMessage();
        View().EndInplaceEdit(0);
        return message;
    }
    // Latitude and longitude agree with the grid position in the project's zone.
    static void ExpectWhole(const CSurveyPoint& point)
    {
        const CSurveyPoint::Data& d = point.GetData();
        double lat = 0, lon = 0;
        ASSERT_TRUE(UtmToLatLon(UtmPosition{32, true, d.easting, d.northing}, lat, lon)) << point.Name();
        EXPECT_NEAR(lat, d.lat, 1e-10) << point.Name();
        EXPECT_NEAR(lon, d.lon, 1e-10) << point.Name();
    }

    static nyr::test::TempDir* s_dir;
    std::unique_ptr<CMainWindow> window;
};

nyr::test::TempDir* Editing::s_dir = nullptr;

TEST_F(Editing, EveryCellOfAPointTakesItsTypedValueAndThePointStaysWhole)
{
    const unsigned int real = RealOf("TP 106");
    const struct
    {
        unsigned int col;
        QString typed;
        std::function<bool(const CSurveyPoint::Data&, const CSurveyPoint&)> check;
    } cases[] = {
        {ColPoint, "TP 106x", [](auto& d, auto&) { return d.name == "TP 106x"; }},
        {ColCode, "XY", [](auto&, auto& p) { return p.Code() == "XY"; }},
        {ColEasting, "471100.25", [](auto& d, auto&) { return d.easting == 471100.25; }},
        {ColNorthing, "5470000", [](auto& d, auto&) { return d.northing == 5470000.0; }},
        {ColHeight, "12.5", [](auto& d, auto&) { return d.height == 12.5; }},
        {ColHeight, "", [](auto& d, auto&) { return std::isnan(d.height); }},
        {ColLatitude, "49 25 00 N", [](auto& d, auto&) { return std::abs(d.lat - (49 + 25 / 60.0) * kDeg) < 1e-12; }},
        {ColLongitude, "8 30 00 E", [](auto& d, auto&) { return std::abs(d.lon - 8.5 * kDeg) < 1e-12; }},
        {ColObserved, "", [](auto& d, auto&) { return d.observed.GetTime().GetTime() == kNoTime; }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ColumnLabel(c.col) + " " + c.typed.toStdString());
        EXPECT_EQ(EditCell(real, c.col, c.typed), "");
        EXPECT_TRUE(c.check(Point(real).GetData(), Point(real)));
        ExpectWhole(Point(real));
        EXPECT_TRUE(window->windowTitle().startsWith('*'));
    }
    // The new code got a symbol of its own; the GPS columns follow the time.
    EXPECT_EQ(View().GetItemText(View().ScreenItemFromReal(real), View().ScreenColFromReal(ColGpsWeek)), "");
    for (unsigned int derived : {ColGpsWeek, ColGpsSeconds, ColDistance, ColAzimuth})
        EXPECT_EQ(EditCell(real, derived, "1"), "not editable");
}

TEST_F(Editing, AValueThePointCannotTakeKeepsTheEditorOpenAndThePointAsItWas)
{
    const unsigned int real = RealOf("TP 107");
    const CSurveyPoint::Data before = Point(real).GetData();
    const struct
    {
        unsigned int col;
        QString typed;
        std::string message;
    } cases[] = {
        {ColPoint, "", "Field must not be empty"},
        {ColPoint, "   ", "Field must not be empty"},
        {ColEasting, "12345678901", "This position lies outside the grid of UTM zone 32."},
        {ColLatitude, "89 00 00 N", "This position lies outside the grid of UTM zone 32."},
        {ColHeight, "-", "Invalid distance"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        EXPECT_EQ(EditCell(real, c.col, c.typed), c.message);
        EXPECT_EQ(Point(real).Name(), before.name);
        EXPECT_EQ(Point(real).GetData().easting, before.easting);
        EXPECT_EQ(Point(real).GetData().lat, before.lat);
    }
    EXPECT_FALSE(View().IsModified());
    // A program's change is held to the same rules.
    CSurveyPoint::Data blank = before;
    blank.name = " \t";
    std::string error;
    EXPECT_FALSE(Point(real).Change(blank, CSurveyPoint::PlacedByGrid, error));
    EXPECT_EQ(error, "A point needs a name.");
}

TEST_F(Editing, MovingOrRenamingTheBasePointMeasuresEveryPointAnew)
{
    const unsigned int base = RealOf("TP 101");
    const unsigned int other = RealOf("TP 102");
    const std::string before = View().GetItemText(View().ScreenItemFromReal(other), View().ScreenColFromReal(ColDistance));
    ASSERT_EQ(EditCell(base, ColEasting, QString::number(Point(base).GetData().easting + 1000.0, 'f', 3)), "");
    EXPECT_EQ(View().Project().BaseName(), "TP 101");
    EXPECT_NE(View().GetItemText(View().ScreenItemFromReal(other), View().ScreenColFromReal(ColDistance)), before);
    EXPECT_EQ(View().GetItemText(View().ScreenItemFromReal(base), View().ScreenColFromReal(ColDistance)), " 0.000");
    ASSERT_EQ(EditCell(base, ColPoint, "TP 1"), "");
    EXPECT_EQ(View().Project().BaseName(), "TP 1");
    EXPECT_NEAR(View().Project().BaseLat(), Point(base).GetData().lat, 1e-15);
}

TEST_F(Editing, ThePointDialogValidatesEveryFieldBeforeItChangesThePoint)
{
    const unsigned int real = RealOf("GNSS 502");
    View().SelectAllItems(0);
    View().SelectRealItem(real, 1);
    View().FocusRealItem(real);
    int shown = 0;
    nyr::test::DialogAnswer answer([&](QDialog& d) {
        auto& dialog = dynamic_cast<CPointDialog&>(d);
        ++shown;
        EXPECT_EQ(dialog.windowTitle(), "Point GNSS 502");
        EXPECT_EQ(dialog.EastingField()->GetValue(), Point(real).GetData().easting);
        dialog.NameField()->setText("GNSS 502b");
        dialog.EastingField()->setText("1e12");  // not a distance the field reads
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(Point(real).Name(), "GNSS 502");  // nothing taken yet
        dialog.EastingField()->setText("99999999");  // a distance, but off the zone's grid
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.EastingField()->GetMessage(), "This position lies outside the grid of UTM zone 32.");
        dialog.EastingField()->setText("480000");
        dialog.CodeField()->setText("CP");
        QTest::mouseClick(dialog.Button(CNyrDialog::eOK), Qt::LeftButton);
    });
    window->Action(CMainWindow::ActEditPoint)->trigger();
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(Point(real).Name(), "GNSS 502b");
    EXPECT_EQ(Point(real).Code(), "CP");
    EXPECT_EQ(Point(real).GetData().easting, 480000.0);
    ExpectWhole(Point(real));
    // A double click opens it too; Cancel changes nothing.
    nyr::test::DialogAnswer cancel([](QDialog& d) { d.reject(); });
    const QModelIndex cell = View().model()->index(View().ScreenItemFromReal(real), 0);
    emit View().doubleClicked(cell);
    EXPECT_EQ(cancel.opened, 1);
    EXPECT_EQ(Point(real).Name(), "GNSS 502b");
}

TEST_F(Editing, PrintoutsEndWithThePlanAndStartFromTheProjectsName)
{
    const std::string stem = s_dir->File("network");
    View().SetFileStem(stem);
    nyr::test::AnswerNext<CNyrListViewPrintDlg>([&stem](CNyrListViewPrintDlg& dialog) {
        EXPECT_EQ(dialog.FileNameEdit()->text().toStdString(), stem + ".pdf");
        dialog.accept();
    });
    const int pages = View().ExportPdf();
    EXPECT_GE(pages, 2);
    const std::vector<std::string> text = nyr::test::PdfPages(stem + ".pdf");
    ASSERT_EQ(static_cast<int>(text.size()), pages);
    EXPECT_EQ(nyr::test::CountLines(text.back(), "Easting \\[m\\]"), 0);
    EXPECT_EQ(nyr::test::CountLines(text.front(), "Easting \\[m\\]"), 1);
    nyr::test::AnswerNext<CNyrReportViewSaveAsDlgCV>([&stem](CNyrReportViewSaveAsDlgCV& dialog) {
        EXPECT_EQ(dialog.FileNameEdit()->text().toStdString(), stem + "-list.csv");
        dialog.reject();
    });
    EXPECT_EQ(View().SaveAs(), 0);
}

TEST_F(Editing, CancelledLongWorkLeavesTheProjectAsItWas)
{
    const std::string big = s_dir->File("big.csv");
    {
        std::string error;
        ASSERT_TRUE(WritePointsFile(big, MakeTestData(20000).Pointers(), error)) << error;
    }
    CNyrProgressDialog::MinimumDurationDefault(0);
    nyr::test::DialogAnswer cancel([](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);
    });
    const int recent = static_cast<int>(window->RecentFiles().Files().size());
    EXPECT_FALSE(window->OpenFile(QString::fromStdString(big)));
    EXPECT_FALSE(window->GenerateTestData(100000));
    CNyrProgressDialog::MinimumDurationDefault(1000);
    EXPECT_EQ(cancel.opened, 2);
    EXPECT_EQ(View().GetItemCount(), 300);
    EXPECT_EQ(window->FilePath(), "");
    EXPECT_EQ(static_cast<int>(window->RecentFiles().Files().size()), recent);
    EXPECT_EQ(window->statusBar()->currentMessage(), QText(TxtGenerateCancelled));
    // Not cancelled, it opens; the file is the newest of the recent files.
    EXPECT_TRUE(window->OpenFile(QString::fromStdString(big)));
    EXPECT_EQ(View().GetItemCount(), 20000);
    EXPECT_EQ(window->RecentFiles().Files().front(), big);
}

TEST_F(Editing, RecentFilesFollowOpensAndAFileThatNoLongerReadsLeavesThem)
{
    nyr::test::WriteFile(s_dir->File("a.csv"), "Point,Latitude,Longitude\nA,49.5,8.5\n");
    nyr::test::WriteFile(s_dir->File("b.csv"), "Point,Latitude,Longitude\nB,49.6,8.6\n");
    ASSERT_TRUE(window->OpenFile(QString::fromStdString(s_dir->File("a.csv"))));
    window->OpenHandedOver({"b.csv"}, QString::fromStdString(s_dir->Path()));  // relative to the later start
    EXPECT_EQ(window->FilePath().toStdString(), s_dir->File("b.csv"));
    const std::vector<std::string> files = window->RecentFiles().Files();
    ASSERT_GE(files.size(), 2u);
    EXPECT_EQ(files[0], s_dir->File("b.csv"));
    EXPECT_EQ(files[1], s_dir->File("a.csv"));
    EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileString(kRecentSection, "Doc_1", ""), s_dir->File("b.csv"));

    nyr::test::WriteFile(s_dir->File("a.csv"), "Point,Latitude\nA,49.5\n");
    CNyrMessageBoxDialog::SetAnswerHook([](CNyrMessageBoxDialog&) { return NYR_IDOK; });
    EXPECT_FALSE(window->OpenFile(QString::fromStdString(s_dir->File("a.csv"))));
    CNyrMessageBoxDialog::SetAnswerHook({});
    EXPECT_EQ(window->RecentFiles().Files().front(), s_dir->File("b.csv"));
    for (const std::string& f : window->RecentFiles().Files())
        EXPECT_NE(f, s_dir->File("a.csv"));
}

TEST_F(Editing, OneRememberedAnswerCoversEveryFileTheApplicationReplaces)
{
    const QString file = QString::fromStdString(s_dir->File("points.csv"));
    nyr::test::WriteFile(file.toStdString(), "old");
    int asked = 0;
    CNyrMessageBoxDialog::SetAnswerHook([&asked](CNyrMessageBoxDialog& box) {
        ++asked;
        box.SetDoNotPromptUser(true);
        return NYR_IDYES;
    });
    EXPECT_TRUE(window->SaveFile(file));
    EXPECT_EQ(asked, 1);
    // The export's question is the same one: answered already.
    nyr::test::AnswerNext<CNyrReportViewSaveAsDlgCV>([&file](CNyrReportViewSaveAsDlgCV& dialog) {
        dialog.FileNameEdit()->setText(file);
        dialog.accept();
    });
    EXPECT_EQ(View().SaveAs(), 1);
    EXPECT_EQ(asked, 1);
    CNyrMessageBoxDialog::SetAnswerHook({});
    CNyrMessageBox::DoNotPromptInFutureAllMessages(0);
}

// Every way of replacing the project, and closing the window, asks first
// when points were changed: Cancel keeps the project and its changes, No
// drops them, Yes saves them to the project's file before going on.
TEST_F(Editing, AChangedProjectIsReplacedOrClosedOnlyAsTheUserAnswers)
{
    const std::string file = s_dir->File("changed.csv");
    const QString other = QString::fromStdString(s_dir->File("other.csv"));
    nyr::test::WriteFile(other.toStdString(), "Point,Latitude,Longitude\nO,49.5,8.5\n");
    const std::pair<const char*, std::function<bool(CMainWindow&)>> actions[] = {
        {"open", [&other](CMainWindow& w) { return w.OpenFile(other); }},
        {"sample",
         [](CMainWindow& w) {
             w.OpenSample();
             return w.View()->GetItemCount() == 300;
         }},
        {"generate", [](CMainWindow& w) { return w.GenerateTestData(10); }},
        {"close", [](CMainWindow& w) { return w.close(); }},
    };
    int answer = 0, asked = 0;
    CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& box) {
        EXPECT_NE(box.Button(NYR_IDCANCEL), nullptr) << "the question offers Yes, No and Cancel";
        ++asked;
        return answer;
    });
    for (const auto& [what, act] : actions) {
        for (const int given : {NYR_IDCANCEL, NYR_IDNO, NYR_IDYES}) {
            SCOPED_TRACE(std::string(what) + " " + std::to_string(given));
            nyr::test::WriteFile(file, "Point,Latitude,Longitude\nA,49.5,8.5\nB,49.6,8.6\n");
            window->show();
            ASSERT_TRUE(window->OpenFile(QString::fromStdString(file)));
            ASSERT_EQ(EditCell(RealOf("A"), ColCode, "NEW"), "");
            ASSERT_TRUE(View().IsModified());
            answer = given;
            asked = 0;
            EXPECT_EQ(act(*window), given != NYR_IDCANCEL);
            EXPECT_EQ(asked, 1);
            EXPECT_EQ(nyr::test::ReadFile(file).find(",NEW,") != std::string::npos, given == NYR_IDYES);
            if (given == NYR_IDCANCEL) {
                EXPECT_EQ(window->FilePath().toStdString(), file);
                EXPECT_TRUE(View().IsModified());
                EXPECT_TRUE(window->isVisible());
                View().SetModified(false);
            }
        }
    }
    // Nothing changed: nothing asked.
    asked = 0;
    window->OpenSample();
    EXPECT_TRUE(window->close());
    EXPECT_EQ(asked, 0);
    CNyrMessageBoxDialog::SetAnswerHook({});
}

// The real program twice with one settings file: the second hands its file
// to the first and ends; the first opens it.
TEST(SingleInstance, ALaterStartOpensItsFileInTheFirstWindow)
{
    nyr::test::TempDir dir;
    nyr::test::WriteFile(dir.File("late.csv"), "Point,Latitude,Longitude\nL,49.5,8.5\n");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", QString::fromStdString(dir.Path()));
    env.insert("QT_QPA_PLATFORM", "offscreen");
    const QString settings = QString::fromStdString(dir.File("one.ini"));
    QProcess first;
    first.setProcessEnvironment(env);
    first.start(NYR_SURVEY, {"--settings", settings});
    ASSERT_TRUE(first.waitForStarted(10000));
    const auto logHas = [&dir](const std::string& text) {
        for (int i = 0; i < 300; ++i) {
            if (nyr::test::ReadFile(dir.File("nyr-survey.log")).find(text) != std::string::npos)
                return true;
            QTest::qWait(50);
        }
        return false;
    };
    ASSERT_TRUE(logHas("started"));
    QProcess second;
    second.setProcessEnvironment(env);
    second.setWorkingDirectory(QString::fromStdString(dir.Path()));
    second.start(NYR_SURVEY, {"--settings", settings, "late.csv"});
    ASSERT_TRUE(second.waitForFinished(20000));
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
    EXPECT_TRUE(logHas("Opened " + dir.File("late.csv") + ": 1 points"));
    EXPECT_EQ(nyr::test::CountLines(nyr::test::ReadFile(dir.File("nyr-survey.log")), " started"), 1);
    first.kill();
    first.waitForFinished(10000);
}

}  // namespace
}  // namespace survey
