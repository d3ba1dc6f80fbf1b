// The application's parts where they meet the library: GPS time across the
// leap second, time texts of every format row, point names in natural
// order, dropped files, unit changes, the language switch with remembered
// answers, and the SMTP send to a real server.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <random>
#include <set>

#include "apps/nyr-survey/app/language.h"
#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/mail/send_points.h"
#include "apps/nyr-survey/project/gps_time.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyr/time/time_helper.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/values/unit_combo_box.h"
#include "tests/nyr/mail/smtp_test_server.h"
#include "tests/support/temp_dir.h"

namespace survey {
namespace {

class SurveyApp : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_dir = new nyr::test::TempDir;
        InitializeApplication(s_dir->File("app.ini"));
        for (const auto& [mjd, count] : {std::pair{54832.0, 15}, {56109.0, 16}, {57204.0, 17}, {57754.0, 18}})
            CNyrTimeHelper::AddLeapSeconds(mjd, static_cast<uint8_t>(count));
    }
    static void TearDownTestSuite()
    {
        SetLanguage(LanguageEnglish);
        delete s_dir;
        s_dir = nullptr;
    }
    static CNyrTime Utc(const char* iso)
    {
        CNyrTime t;
        EXPECT_TRUE(ParseIsoTime(iso, true, t)) << iso;
        return t;
    }
    static nyr::test::TempDir* s_dir;
};

nyr::test::TempDir* SurveyApp::s_dir = nullptr;

TEST_F(SurveyApp, GpsTimeStepsOverTheLeapSecond)
{
    const struct
    {
        const char* utc;
        int week;
        double seconds;
    } cases[] = {
        {"2016-12-31T23:59:59.500Z", 1930, 16.5},  // GPS - UTC 17 s
        {"2017-01-01T00:00:00.000Z", 1930, 18.0},  // 18 s: GPS second 17 was the leap second
        {"2017-01-01T00:00:00.500Z", 1930, 18.5},
        {"2016-12-31T23:59:43.000Z", 1930, 0.0},   // the week starts
        {"2016-12-31T23:59:42.999Z", 1929, 604799.999},
        {"1980-01-06T00:00:00.000Z", 0, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.utc);
        int week = -1;
        double seconds = -1;
        ASSERT_TRUE(GpsFromTime(Utc(c.utc), week, seconds));
        EXPECT_EQ(week, c.week);
        EXPECT_NEAR(seconds, c.seconds, 1e-6);
        CNyrTime back;
        ASSERT_TRUE(TimeFromGps(c.week, c.seconds, back));
        EXPECT_EQ(FormatIsoUtc(back), c.utc);
    }
    // Inside the leap second: the first instant after it.
    CNyrTime inside;
    ASSERT_TRUE(TimeFromGps(1930, 17.25, inside));
    EXPECT_EQ(FormatIsoUtc(inside), "2017-01-01T00:00:00.000Z");
    int week = 0;
    double seconds = 0;
    EXPECT_FALSE(GpsFromTime(Utc("1980-01-05T23:59:59.000Z"), week, seconds));
    for (double bad : {-1.0, 604800.0, std::nan("")})
        EXPECT_FALSE(TimeFromGps(1930, bad, inside)) << bad;
}

// The sample shows what the time types are for: observations in the hour
// that the end of daylight saving time repeats, and on both sides of the
// leap second, half a second away, two GPS seconds apart.
TEST_F(SurveyApp, TheSampleIsObservedThroughTheDstChangeAndTheLeapSecond)
{
    const ProjectData sample = MakeSampleProject();
    ASSERT_EQ(sample.points.size(), 300u);
    const int64_t repeatedHour = Utc("2016-10-30T00:00:00Z").GetTime().GetTime();  // 02:00 CEST, again at 01:00Z
    std::set<std::string> names;
    int inRepeatedHour = 0;
    std::vector<std::string> nearLeap;
    for (const auto& point : sample.points) {
        names.insert(point->Name());
        const CNyrTime& observed = point->GetData().observed;
        const int64_t t = observed.GetTime().GetTime();
        inRepeatedHour += t >= repeatedHour && t < repeatedHour + 3600;
        const std::string iso = FormatIsoUtc(observed);
        if (iso == "2016-12-31T23:59:59.500Z" || iso == "2017-01-01T00:00:00.500Z") {
            int week = 0;
            double seconds = 0;
            ASSERT_TRUE(GpsFromTime(observed, week, seconds));
            nearLeap.push_back(iso + " " + std::to_string(week) + " " + std::to_string(seconds));
        }
    }
    EXPECT_EQ(names.size(), 300u);
    EXPECT_GE(inRepeatedHour, 2);
    EXPECT_EQ(nearLeap, (std::vector<std::string>{"2016-12-31T23:59:59.500Z 1930 16.500000",
                                                  "2017-01-01T00:00:00.500Z 1930 18.500000"}));
}

TEST_F(SurveyApp, EveryRowOfTheTimeFormatTableReadsBack)
{
    // Afternoon and morning, single-digit days and hours, far from any DST change.
    for (const char* iso : {"2016-12-04T15:07:09Z", "2017-01-09T03:04:05Z"}) {
        const CNyrTime t = Utc(iso);
        for (int row = 0; row < CNyrTime::eTimeFormatCount; ++row) {
            const std::string text = t.Format(static_cast<CNyrTime::eTimeFormat>(row));
            CNyrTime back;
            ASSERT_TRUE(ParsePatternTime(text, CNyrTime::TimeFormatPattern(row), back)) << row << " " << text;
            EXPECT_EQ(back.GetTime().GetTime(), t.GetTime().GetTime()) << row << " " << text;
        }
    }
    CNyrTime t;
    for (const char* bad : {"31/02/2016 10:00:00", "12/31/2016 24:00:00", "12/31/2016 10:00", "12/31/2016 10:00:00 x"})
        EXPECT_FALSE(ParsePatternTime(bad, CNyrTime::TimeFormatPattern(1), t)) << bad;
}

TEST_F(SurveyApp, PointNamesSortInNaturalOrder)
{
    const std::vector<std::string> sorted = {"bm 7", "BM 10", "BM 010a", "GNSS 501", "PP 2", "PP 10", "pp 10", "TP"};
    for (std::size_t i = 0; i < sorted.size(); ++i)
        for (std::size_t j = 0; j < sorted.size(); ++j)
            EXPECT_EQ(CompareNames(sorted[i], sorted[j]) < 0, i < j) << sorted[i] << " / " << sorted[j];
}

TEST_F(SurveyApp, SortKeysOrderAsTheComparison)
{
    // Keys that disagree with OnCompareItem would make every sort fall back
    // to the slow path unseen; the base class's comparison compares keys.
    CMainWindow window;
    window.OpenSample();
    CPointView& view = *window.View();
    view.FocusRealItem(3);
    window.Action(CMainWindow::ActSetBase)->trigger();
    const unsigned count = view.GetRealItemCount();
    ASSERT_GT(count, 100u);
    std::mt19937 random(7);
    int keyed = 0;
    for (unsigned col = 0; col < ColCount; ++col) {
        CNyrReportViewItem::SORT_KEY key;
        if (!view.GetRealItem(0)->OnGetItemSortKey(col, key))
            continue;
        ++keyed;
        for (int n = 0; n < 2000; ++n) {
            CNyrReportViewItem* a = view.GetRealItem(static_cast<unsigned>(random() % count));
            CNyrReportViewItem* b = view.GetRealItem(static_cast<unsigned>(random() % count));
            ASSERT_EQ(a->OnCompareItem(b, col), a->CNyrReportViewItem::OnCompareItem(b, col)) << col;
        }
    }
    EXPECT_EQ(keyed, 10);  // every column but the name and the code
}

void Drop(QWidget& target, const QString& path)
{
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &drop);
    QApplication::processEvents();
}

TEST_F(SurveyApp, ADroppedFileOpensAndABadOneLeavesTheProject)
{
    CMainWindow window;
    window.OpenSample();
    nyr::test::WriteFile(s_dir->File("two.csv"), "Point,Latitude,Longitude\nA,49.5,8.5\nB,49.6,8.6\n");
    nyr::test::WriteFile(s_dir->File("bad.csv"), "Point,Latitude,Longitude\nA,49.5,8.5\nB,x,8.6\n");
    std::string shown;
    CNyrMessageBoxDialog::SetAnswerHook([&](CNyrMessageBoxDialog& d) {
        shown = d.windowTitle().toStdString();
        return NYR_IDOK;
    });
    Drop(window, QString::fromStdString(s_dir->File("two.csv")));
    EXPECT_EQ(window.View()->GetItemCount(), 2);
    EXPECT_EQ(window.View()->Project().BaseName(), "A");
    Drop(window, QString::fromStdString(s_dir->File("bad.csv")));
    CNyrMessageBoxDialog::SetAnswerHook({});
    EXPECT_EQ(shown, "Nyr Survey");  // the error was shown
    EXPECT_EQ(window.View()->GetItemCount(), 2);
    EXPECT_TRUE(window.FilePath().endsWith("two.csv"));
}

TEST_F(SurveyApp, AUnitChangeRenamesAndReformatsEveryView)
{
    CMainWindow window;
    window.OpenSample();
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    CPointView& view = *window.View();
    const int easting = view.ScreenColFromReal(ColEasting);
    const double metres = static_cast<const CSurveyPoint*>(view.GetItem(0))->GetData().easting;
    QComboBox* box = window.UnitBar()->DistanceBox();
    for (long unit : {22L, 23L, 21L}) {
        box->setCurrentIndex(box->findData(static_cast<int>(unit)));
        const double factor = unit == 22 ? 1200.0 / 3937.0 : unit == 23 ? 0.3048 : 1.0;
        EXPECT_NEAR(std::stod(view.GetItemText(0, easting)) * factor, metres, 0.001) << unit;
        EXPECT_EQ(view.GetColumnLabel(easting), std::string("Easting [") + (unit == 22 ? "fts" : unit == 23 ? "fti" : "m") + "]");
        EXPECT_EQ(CNyrUnitSettingsDistance::Default().Unit(), unit);
    }
}

TEST_F(SurveyApp, TheLanguageSwitchesBackAndKeepsRememberedAnswers)
{
    CMainWindow window;
    CNyrMessageBoxDialog::SetAnswerHook([](CNyrMessageBoxDialog& d) {
        d.SetDoNotPromptUser(true);
        return NYR_IDNO;
    });
    EXPECT_EQ(CNyrMessageBox::ShowMessage(&window, kOverwriteKey), NYR_IDNO);
    CNyrMessageBoxDialog::SetAnswerHook({});
    ASSERT_TRUE(window.ChangeLanguage(LanguageGerman));
    EXPECT_EQ(window.Action(CMainWindow::ActOpen)->text(), "Ö&ffnen...");
    EXPECT_EQ(window.View()->GetColumnLabel(0), "Punkt");
    CNyrMessageBox::PERSISTENT_MSG msg;
    ASSERT_TRUE(CNyrMessageBox::LookUpMessage(kOverwriteKey, msg));
    EXPECT_EQ(msg.text, "Eine vorhandene Datei ersetzen?");
    EXPECT_EQ(msg.doNotPromptInFuture, 1);  // the answer outlives the new registration
    EXPECT_EQ(msg.defaultValue, NYR_IDNO);
    ASSERT_TRUE(window.ChangeLanguage(LanguageEnglish));
    EXPECT_EQ(window.Action(CMainWindow::ActOpen)->text(), "&Open...");
    EXPECT_EQ(NyrLoadString(26117), "Metres [ m ]");  // the library's texts came back too
    EXPECT_EQ(ReadSetting("Language", -1), LanguageEnglish);
}

TEST_F(SurveyApp, SendOverSmtpDeliversThePointsAsAnAttachment)
{
    nyr::test::SmtpTestServer server;
    ASSERT_NE(server.Port(), 0u);
    ProjectData sample = MakeSampleProject();
    std::vector<const CSurveyPoint*> points{sample.points[0].get(), sample.points[1].get()};
    std::string error;
    ASSERT_TRUE(WritePointsFile(s_dir->File("send.csv"), points, error));
    SmtpSettings smtp;
    smtp.server = "127.0.0.1";
    smtp.port = server.Port();
    smtp.security = 0;
    smtp.sender = "Ann <ann@example.org>";
    const PointsMail mail{"bob@example.org", "Control points", "Two points.", s_dir->File("send.csv")};
    ASSERT_TRUE(SendOverSmtp(smtp, "", mail, error)) << error;
    const std::vector<nyr::test::ReceivedMail> received = server.Messages(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_NE(received[0].data.find("Subject: Control points"), std::string::npos);
    EXPECT_NE(received[0].data.find("send.csv"), std::string::npos);
    EXPECT_NE(received[0].envelope.find("bob@example.org"), std::string::npos);
    // A server that is not there: the library's reason, not a hang.
    smtp.port = 1;
    EXPECT_FALSE(SendOverSmtp(smtp, "", mail, error));
    EXPECT_FALSE(error.empty());
}

}  // namespace
}  // namespace survey
