// The tour of the real application on the offscreen platform, and what it
// leaves behind: the exported bytes, the settings file, the German window
// texts and the screenshots.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QSet>
#include <cmath>
#include <cstdlib>

#include "apps/nyr-survey/project/sample_project.h"
#include "nyr/util/profile_entries.h"
#include "tests/nyrwidgets/views/view_print_test_p.h"
#include "tests/support/temp_dir.h"

namespace survey {
namespace {

std::vector<std::string> Split(const std::string& text, const std::string& separator)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find(separator, start)) != std::string::npos; start = at + separator.size())
        parts.push_back(text.substr(start, at - start));
    parts.push_back(text.substr(start));
    return parts;
}

class Tour : public ::testing::Test
{
protected:
    // One run of the tour serves every test of the suite.
    static void SetUpTestSuite()
    {
        s_dir = new nyr::test::TempDir;
        setenv("TZ", "Europe/Berlin", 1);  // the sample's DST change shows in that zone
        s_result = nyr::test::RunProcess({NYR_SURVEY, "--tour", s_dir->File("out")});
        setenv("TZ", "UTC", 1);
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }
    static std::string Out(const std::string& name) { return s_dir->File("out/" + name); }

    static nyr::test::TempDir* s_dir;
    static nyr::test::ProcessResult s_result;
};

nyr::test::TempDir* Tour::s_dir = nullptr;
nyr::test::ProcessResult Tour::s_result;

TEST_F(Tour, RunsEveryStepAndSaysWhereTheFilesAre)
{
    EXPECT_EQ(s_result.exitCode, 0) << s_result.out << s_result.err;
    EXPECT_EQ(s_result.out.find("FAILED"), std::string::npos) << s_result.out;
    EXPECT_NE(s_result.out.find("The tour is done. Screenshots, exports and tour.txt are in"), std::string::npos);
    EXPECT_EQ(nyr::test::ReadFile(Out("tour.txt")).find("FAILED"), std::string::npos);
}

TEST_F(Tour, ExportsTheListAsShownByteForByte)
{
    const std::string csv = nyr::test::ReadFile(Out("export.csv"));
    ASSERT_FALSE(csv.empty());
    std::vector<std::string> lines = Split(csv, "\r\n");
    ASSERT_EQ(lines.back(), "");  // every line, the last too, ends in CR LF
    lines.pop_back();
    EXPECT_EQ(lines[0], "Point,Code,Easting [fts],Northing [fts],Height [fts],Latitude [deg],Longitude [deg],"
                        "Observed,GPS week,GPS seconds,Distance [fts],Azimuth [gon]");
    ASSERT_EQ(lines.size(), 1u + 298u);  // the sample less the two points deleted
    // The points edited in the list and in the point dialog, as edited.
    std::size_t edited = 0;
    for (const std::string& line : lines) {
        const std::vector<std::string> cells = Split(line, ",");
        if (cells[0] == "TP 105")
            edited += cells[4] == "1000.000";
        edited += cells[0] == "GNSS 502a" && cells[1] == "CP";
        EXPECT_NE(cells[0], "GNSS 502");
    }
    EXPECT_EQ(edited, 2u);
    for (const std::string& line : lines)
        EXPECT_EQ(line.find('\n'), std::string::npos);
    // Sorted by code, then by distance descending: the benchmarks first.
    EXPECT_EQ(lines[1].rfind("BM ", 0), 0u) << lines[1];
    // The base point's row, checked against the sample in other units.
    ProjectData sample = MakeSampleProject();
    const CSurveyPoint::Data& tp = sample.points[0]->GetData();
    const std::string* row = nullptr;
    for (const std::string& line : lines)
        if (line.rfind("TP 101,", 0) == 0)
            row = &line;
    ASSERT_NE(row, nullptr);
    const std::vector<std::string> cells = Split(*row, ",");
    ASSERT_EQ(cells.size(), 12u);
    EXPECT_NEAR(std::stod(cells[2]) * 1200.0 / 3937.0, tp.easting, 0.001);
    EXPECT_NEAR(std::stod(cells[5]), tp.lat * 180 / 3.14159265358979323846, 1e-9);
    EXPECT_EQ(cells[5].back(), 'N');
    EXPECT_EQ(cells[6].back(), 'E');
    EXPECT_EQ(cells[7], "14-12-2016 15:41:41");  // DD-MM-YYYY as chosen, CET
    EXPECT_EQ(cells[8], "1927");
    EXPECT_EQ(cells[10], "0.000");  // the base point itself
    // The tab-delimited export holds the same rows.
    const std::string txt = nyr::test::ReadFile(Out("export.txt"));
    EXPECT_EQ(Split(txt, "\r\n").size(), lines.size() + 1);
    EXPECT_NE(txt.find("TP 101\tTP\t"), std::string::npos);
}

TEST_F(Tour, KeepsUnitsLanguageAndTheRememberedAnswerInTheSettingsFile)
{
    const std::string ini = Out("nyr-survey.ini");
    const struct
    {
        const char* section;
        const char* entry;
        int value;
    } expected[] = {
        {"CNyrUnitSettingsDistance", "UnitDistance Format (###)", 22},
        {"CNyrUnitSettingsAngle", "UnitAngle Format (###)", 15},
        {"CNyrUnitSettingsAngleLatLon", "UnitAngle Format (###)", 11},
        {"CNyrTime", "Time Format (###)", 9},
        {"NyrSurvey", "Language", 1},
        {"@NyrMessageBox/Points/Delete", "DoNotPromptInFuture", 1},
        {"@NyrMessageBox/Points/Delete", "defaultvalue", 6},  // Yes
    };
    for (const auto& e : expected)
        EXPECT_EQ(static_cast<int>(CNyrProfileEntries::ReadProfileInt(ini, e.section, e.entry, -1)), e.value)
            << e.section << " " << e.entry;
    // The layout of the list is kept too: its sort state by code and distance.
    EXPECT_EQ(CNyrProfileEntries::ReadProfileString(ini, "NyrSurvey/PointList", "SortState", ""), "1;1;10;0;");
}

TEST_F(Tour, ShowsTheWindowInGerman)
{
    const std::string texts = nyr::test::ReadFile(Out("texts-de.txt"));
    for (const char* german : {"menu: &Datei", "menu: &Bearbeiten", "menu: Ein&stellungen", "column: Punkt",
                               "column: Rechtswert [fts]", "column: Höhe [fts]", "column: Azimut [gon]",
                               "298 Punkte", "Standpunkt: TP 101", "\nmessage: \n", "plan: O "})
        EXPECT_NE(texts.find(german), std::string::npos) << german << "\n" << texts;
}

TEST_F(Tour, PrintsTheListAndThePlanIntoOnePdf)
{
    const std::vector<std::string> pages = nyr::test::PdfPages(Out("sample.pdf"));
    ASSERT_GE(pages.size(), 2u);
    const std::string total = " of " + std::to_string(pages.size());
    for (std::size_t p = 0; p < pages.size(); ++p) {
        SCOPED_TRACE(p + 1);
        EXPECT_EQ(nyr::test::CountLines(pages[p], "^sample.csv - Nyr Survey +Printed on [0-9]{2}-[0-9]{2}-20"), 1);
        EXPECT_EQ(nyr::test::CountLines(pages[p], "Page " + std::to_string(p + 1) + total), 1);
    }
    std::string rows;
    for (std::size_t p = 0; p + 1 < pages.size(); ++p) {
        EXPECT_EQ(nyr::test::CountLines(pages[p], R"(^Point +Code +Easting \[fts\])"), 1) << pages[p];
        rows += pages[p];
    }
    // Every point of the list once, the edited ones as edited.
    EXPECT_EQ(nyr::test::CountLines(rows, R"(^ +[A-Z]+ [0-9]+a? +[A-Z]+ +[0-9])"), 298);
    EXPECT_EQ(nyr::test::CountLines(rows, R"(^ +TP 105 +TP +[0-9.]+ +[0-9.]+ +1000\.000 )"), 1);
    EXPECT_EQ(nyr::test::CountLines(rows, R"(^ +GNSS 502a +CP )"), 1);
    // The last page is the plan: no rows, its scale bar in the user's unit.
    const std::string& plan = pages.back();
    EXPECT_EQ(nyr::test::CountLines(plan, R"(Easting \[fts\])"), 0);
    EXPECT_EQ(nyr::test::CountLines(plan, R"((^| )[0-9]+ fts( |$))"), 1) << plan;
}

TEST_F(Tour, KeepsTheRecentFilesAndLogsWhatItDid)
{
    const std::string ini = Out("nyr-survey.ini");
    EXPECT_EQ(CNyrProfileEntries::ReadProfileString(ini, "NyrSurvey/RecentFiles", "Doc_1", ""), Out("sample.csv"));
    EXPECT_EQ(CNyrProfileEntries::ReadProfileString(ini, "NyrSurvey/RecentFiles", "Doc_2", ""), Out("export.csv"));
    EXPECT_EQ(CNyrProfileEntries::ReadProfileString(ini, "NyrSurvey/RecentFiles", "Doc_3", "none"), "none");
    const std::string log = nyr::test::ReadFile(Out("nyr-survey.log"));
    for (const std::string& line : {" INFO \\[[0-9]+\\] Saved " + Out("sample.csv") + ": 300 points",
                                    " INFO \\[[0-9]+\\] Opened " + Out("export.csv") + ": 298 points",
                                    " INFO \\[[0-9]+\\] Saved " + Out("sample.csv") + ": 298 points",
                                    std::string(" INFO \\[[0-9]+\\] Generating 1000000 test points was cancelled"),
                                    std::string(" INFO \\[[0-9]+\\] Generated 1000000 test points")})
        EXPECT_EQ(nyr::test::CountLines(log, line), 1) << line << "\n" << log;
}

TEST_F(Tour, WritesAScreenshotOfEveryStepAndNoneIsBlank)
{
    const QStringList shots = QDir(QString::fromStdString(Out(""))).entryList({"*.png"}, QDir::Files, QDir::Name);
    EXPECT_GE(shots.size(), 28) << shots.join(' ').toStdString();
    for (const QString& name : shots) {
        SCOPED_TRACE(name.toStdString());
        const QImage image(QString::fromStdString(Out(name.toStdString())));
        ASSERT_FALSE(image.isNull());
        EXPECT_GE(image.width(), 640);
        EXPECT_GE(image.height(), 400);
        // Text, lines and widgets give many colours; a blank or one-colour
        // capture gives one or two.
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 7)
            for (int x = 0; x < image.width(); x += 7)
                colours.insert(image.pixel(x, y));
        EXPECT_GE(colours.size(), 20);
    }
}

}  // namespace
}  // namespace survey
