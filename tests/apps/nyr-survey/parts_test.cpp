// Tables for the application's small parts (time texts, UTF-8, column
// labels, the converters, the secret store's hand-over) and a seeded random
// sequence over the main window that checks its invariants after every step.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QStatusBar>
#include <QTest>
#include <clocale>
#include <random>
#include <sys/stat.h>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_columns.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/io/utf8.h"
#include "apps/nyr-survey/project/geodesy.h"
#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/mail/secret_store.h"
#include "apps/nyr-survey/tools/unit_converter.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyr/values/value_angle.h"
#include "nyrwidgets/input/input_control.h"
#include "nyrwidgets/msgbox/message_box.h"
#include "nyrwidgets/values/unit_combo_box.h"
#include "tests/support/temp_dir.h"

namespace survey {
namespace {

class Parts : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_dir = new nyr::test::TempDir;
        InitializeApplication(s_dir->File("parts.ini"));
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }
    static nyr::test::TempDir* s_dir;
};

nyr::test::TempDir* Parts::s_dir = nullptr;

TEST_F(Parts, IsoTimesAreReadWholeAndCheckedField)
{
    const struct
    {
        const char* text;
        const char* utc;  // nullptr: refused
    } cases[] = {
        {"2016-10-30T00:30:00Z", "2016-10-30T00:30:00.000Z"},
        {"2016-10-30 00:30Z", "2016-10-30T00:30:00.000Z"},
        {"2016-10-30T02:30:00.125+02:00", "2016-10-30T00:30:00.125Z"},
        {"2016-10-29T20:30:00-04:00", "2016-10-30T00:30:00.000Z"},
        {"2017-02-29T00:00:00Z", nullptr},  // not a leap year
        {"2016-02-29T00:00:00Z", "2016-02-29T00:00:00.000Z"},
        {"2016-02-30T00:00:00Z", nullptr},
        {"2016-12-31T24:00:00Z", nullptr},
        {"2016-12-31T23:60:00Z", nullptr},
        {"2016-12-31T23:59:60Z", nullptr},  // the leap second: no instant of its own
        {"2016-12-31T23:59:59.Z", nullptr},
        {"2016-12-31T23:59:59Zx", nullptr},
        {"2016-12-31T23:59:59+15:00", nullptr},
        {"2016-12-31", nullptr},
        {"16-12-31T23:59:59Z", nullptr},
        {"", nullptr},
        {"0000-01-01T00:00:00Z", nullptr},
    };
    for (const auto& c : cases) {
        CNyrTime t;
        EXPECT_EQ(ParseIsoTime(c.text, true, t), c.utc != nullptr) << c.text;
        if (c.utc) {
            EXPECT_EQ(FormatIsoUtc(t), c.utc) << c.text;
        }
    }
    CNyrTime far(int64_t{-100000000000});
    EXPECT_EQ(FormatIsoUtc(far), "");  // no observation time
}

TEST_F(Parts, Utf8IsCheckedToTheByte)
{
    const struct
    {
        std::string text;
        std::size_t bad;
    } cases[] = {
        {"plain ASCII text, long enough for the fast path", std::string::npos},
        {"H\xC3\xB6he 49\xC2\xB0 \xE2\x82\xAC \xF0\x9F\x93\x8D", std::string::npos},  // ö ° € and a pin
        {"12345678\x80", 8},                  // a lone continuation byte after a full word
        {"\xC1\xBF", 0},                       // overlong two-byte form
        {"ab\xE0\x9F\xBF", 2},                 // overlong three-byte form
        {"\xF4\x90\x80\x80", 0},               // above U+10FFFF
        {"\xF0\x8F\xBF\xBF", 0},               // overlong four-byte form
        {"abc\xF0\x9F\x93", 3},                // cut short
        {"\xFF", 0},
        {std::string("nul\0ok", 6), std::string::npos},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FirstInvalidUtf8(c.text), c.bad) << c.text;
}

TEST_F(Parts, ColumnLabelsAreFoundInEveryLocaleLanguageAndForm)
{
    const char* saved = std::setlocale(LC_ALL, nullptr);
    const std::string before = saved ? saved : "C";
    std::setlocale(LC_ALL, "tr_TR.UTF-8");  // where installed: "i" and "I" fold apart there
    const struct
    {
        const char* label;
        int column;
        long unit;
        bool utc;
    } cases[] = {
        {"Point", ColPoint, 0, false},
        {"POINT", ColPoint, 0, false},
        {"  point  ", ColPoint, 0, false},
        {"Punkt", ColPoint, 0, false},
        {"Easting [fts]", ColEasting, 22, false},
        {"Easting_[FTUS]", ColEasting, 22, false},
        {"Rechtswert [ft]", ColEasting, 23, false},
        {"Höhe [m]", ColHeight, 21, false},
        {"LATITUDE [DMS]", ColLatitude, 12, false},
        {"Longitude [g.cc]", ColLongitude, 16, false},
        {"Azimuth [rad]", ColAzimuth, 18, false},
        {"Observed [UTC]", ColObserved, 0, true},
        {"GPS_week", ColGpsWeek, 0, false},
        {"Easting [yards]", ColEasting, -1, false},
        {"Eastings", -1, 0, false},
        {"", -1, 0, false},
    };
    for (const auto& c : cases) {
        long unit = 99;
        bool utc = true;
        EXPECT_EQ(ColumnFromLabel(c.label, unit, utc), c.column) << c.label;
        EXPECT_EQ(unit, c.unit) << c.label;
        EXPECT_EQ(utc, c.utc) << c.label;
    }
    for (long u : {11L, 12L, 13L, 14L, 15L, 16L, 17L, 18L, 21L, 22L, 23L})
        EXPECT_EQ(UnitFromTag(UnitTag(u)), u) << u;
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(Parts, TheConverterShowsEveryUnitAndEachReadsBack)
{
    CUnitConverter converter;
    converter.AngleUnitBox()->setCurrentIndex(converter.AngleUnitBox()->findData(12));
    converter.AngleEdit()->setText("123 45 06.789");
    CNyrUnitSettingsAngle settings;
    for (long unit = 11; unit <= 18; ++unit) {
        const QString shown = converter.Result(unit);
        CNyrValueAngle back(0.0, settings);
        ASSERT_EQ(back.ConvertToStd(shown.toStdString().c_str(), unit), 0) << unit << " " << shown.toStdString();
        EXPECT_NEAR(back.GetDouble(), (123 + 45 / 60.0 + 6.789 / 3600.0) * 3.14159265358979323846 / 180, 1e-9)
            << unit;
    }
    converter.DistanceUnitBox()->setCurrentIndex(converter.DistanceUnitBox()->findData(22));
    converter.DistanceEdit()->setText("3937");
    EXPECT_EQ(converter.Result(21).trimmed(), "1200.000000");
    converter.DistanceEdit()->setText("feet");
    EXPECT_EQ(converter.Result(23), QText(TxtInvalidValue));
}

// The secret service itself does not run here; a stand-in for secret-tool
// records how it is called, so the test sees that the password travels on
// standard input and never on the command line.
TEST_F(Parts, ThePasswordReachesTheSecretStoreOnStandardInputOnly)
{
    const std::string script = s_dir->File("secret-tool");
    const std::string store = s_dir->File("secret");
    nyr::test::WriteFile(script, "#!/bin/sh\necho \"$@\" >> '" + s_dir->File("args") + "'\n"
                                 "case \"$1\" in\n"
                                 "  store) cat > '" + store + "' ;;\n"
                                 "  lookup) [ -f '" + store + "' ] && cat '" + store + "' ;;\n"
                                 "  clear) rm -f '" + store + "' ;;\n"
                                 "esac\n");
    ::chmod(script.c_str(), 0700);
    const QString previous = CSecretStore::Command();
    CSecretStore::SetCommand(QString::fromStdString(script));
    QString password;
    EXPECT_FALSE(CSecretStore::Lookup("smtp.example.org:587", "ann", password));
    ASSERT_TRUE(CSecretStore::Store("smtp.example.org:587", "ann", "s3cret pass"));
    ASSERT_TRUE(CSecretStore::Lookup("smtp.example.org:587", "ann", password));
    EXPECT_EQ(password, "s3cret pass");
    EXPECT_TRUE(CSecretStore::Clear("smtp.example.org:587", "ann"));
    EXPECT_FALSE(CSecretStore::Lookup("smtp.example.org:587", "ann", password));
    const std::string args = nyr::test::ReadFile(s_dir->File("args"));
    EXPECT_EQ(args.find("s3cret"), std::string::npos);
    EXPECT_NE(args.find("lookup application nyr-survey server smtp.example.org:587 user ann"), std::string::npos);
    CSecretStore::SetCommand(s_dir->File("missing").c_str());
    EXPECT_FALSE(CSecretStore::Available());
    EXPECT_FALSE(CSecretStore::Store("s", "u", "p"));
    CSecretStore::SetCommand(previous);
    EXPECT_EQ(ReadSetting("SmtpPassword", std::string("none")), "none");
}

// Types a random value into a random editable cell of the point and presses
// Enter (a value the point cannot take, Escape).
void EditRandomCell(CPointView& view, unsigned int real, std::mt19937& random)
{
    const auto* point = static_cast<const CSurveyPoint*>(view.GetRealItem(real));
    const CSurveyPoint::Data& d = point->GetData();
    const double shift = static_cast<double>(random() % 2001) - 1000.0;
    const struct
    {
        unsigned int col;
        QString text;
    } edits[] = {{ColPoint, QString::fromStdString(d.name) + "x"},
                 {ColCode, random() % 2 ? "TP" : "NEW"},
                 {ColEasting, QString::number(d.easting + shift, 'f', 3)},
                 {ColNorthing, QString::number(d.northing - shift, 'f', 3)},
                 {ColHeight, QString::number(shift, 'f', 1)}};
    const auto& edit = edits[random() % std::size(edits)];
    view.EnsureRealItemVisible(real);
    view.EnsureRealColVisible(edit.col);
    ASSERT_EQ(view.EditRealItem(real, edit.col), 1) << edit.text.toStdString();
    CNyrInputControl* editor = view.GetInplaceEditor();
    editor->selectAll();
    QTest::keyClicks(editor, edit.text);
    QTest::keyClick(editor, Qt::Key_Return);
    if (view.GetInplaceEditor())
        QTest::keyClick(view.GetInplaceEditor(), Qt::Key_Escape);
}

// Random user steps on the sample project, edits of cells among them; after
// each the status bar, the list and the project agree.
TEST_F(Parts, RandomStepsKeepTheWindowConsistent)
{
    // Yes to deleting; the changes dropped when the walk starts the sample anew.
    CNyrMessageBoxDialog::SetAnswerHook([](CNyrMessageBoxDialog& d) {
        return d.Button(NYR_IDCANCEL) ? NYR_IDNO : d.Button(NYR_IDYES) ? NYR_IDYES : NYR_IDOK;
    });
    CMainWindow window;
    window.OpenSample();
    window.show();
    CPointView& view = *window.View();
    std::mt19937 random(240);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int step = 0; step < 300; ++step) {
        if (view.GetItemCount() == 0)
            window.OpenSample();  // all deleted: the walk goes on with points
        const int count = view.GetItemCount();
        const int row = count ? pick(count) : -1;
        switch (pick(8)) {
        case 0: if (row >= 0) view.SelectRealItem(static_cast<unsigned>(view.RealItemFromScreen(row)), pick(2)); break;
        case 1: if (row >= 0) view.CheckRealItem(static_cast<unsigned>(view.RealItemFromScreen(row)), pick(2)); break;
        case 2: if (pick(10) == 0) window.Action(CMainWindow::ActDelete)->trigger(); break;
        case 3: window.UnitBar()->DistanceBox()->setCurrentIndex(pick(3)); break;
        case 4: view.SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{static_cast<unsigned>(pick(ColCount)), pick(2)}}); break;
        case 5: if (row >= 0) { view.FocusRealItem(static_cast<unsigned>(view.RealItemFromScreen(row))); window.Action(CMainWindow::ActSetBase)->trigger(); } break;
        case 6: if (row >= 0) EditRandomCell(view, static_cast<unsigned>(view.RealItemFromScreen(row)), random); break;
        default: window.Action(pick(2) ? CMainWindow::ActSelectAll : CMainWindow::ActInvertChecked)->trigger(); break;
        }
        QApplication::processEvents();
        ASSERT_EQ(static_cast<int>(view.Points().size()), view.GetItemCount()) << step;
        const QString status = window.StatusText();
        ASSERT_TRUE(status.contains(QText(TxtStatusPoints).arg(view.GetItemCount()))) << step << status.toStdString();
        ASSERT_TRUE(status.contains(QText(TxtStatusSelected).arg(view.GetSelectedCount()))) << step;
        ASSERT_TRUE(status.contains(QText(TxtStatusChecked).arg(view.GetCheckedCount()))) << step;
        const int base = [&] {
            for (int r = 0; r < view.GetItemCount(); ++r)
                if (view.GetItemText(r, view.ScreenColFromReal(ColPoint)) == view.Project().BaseName())
                    return r;
            return -1;
        }();
        if (base >= 0) {
            ASSERT_EQ(view.GetItemText(base, view.ScreenColFromReal(ColDistance)), " 0.000") << step;
        }
        for (const CSurveyPoint* point : view.Points()) {
            double lat = 0, lon = 0;
            const CSurveyPoint::Data& d = point->GetData();
            ASSERT_TRUE(UtmToLatLon(UtmPosition{32, true, d.easting, d.northing}, lat, lon)) << step;
            ASSERT_NEAR(lat, d.lat, 1e-9) << step << " " << d.name;
        }
    }
    CNyrMessageBoxDialog::SetAnswerHook({});
}

}  // namespace
}  // namespace survey
