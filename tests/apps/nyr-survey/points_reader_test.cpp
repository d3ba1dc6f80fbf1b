// Reading points files: bad input gives a clear error naming its line and
// leaves the open project as it was; good input in every form the
// application and the library write loads whole.
#include <gtest/gtest.h>

#include <cmath>
#include <fcntl.h>
#include <numbers>
#include <unistd.h>

#include "apps/nyr-survey/app/texts.h"
#include "apps/nyr-survey/io/points_file.h"
#include "apps/nyr-survey/io/time_text.h"
#include "apps/nyr-survey/project/sample_project.h"
#include "nyr/app/progress.h"
#include "nyr/time/time_helper.h"
#include "nyr/util/profile_entries.h"
#include "tests/support/temp_dir.h"

namespace survey {
namespace {

class PointsReader : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        InstallEnglishTexts();
        // A settings file of the test's own, whose leap-second table knows
        // the leap seconds up to 2017 (GPS - UTC = 18 s from 2017-01-01).
        s_settings = new nyr::test::TempDir;
        NyrSetProfilePath(s_settings->File("test.ini"));
        for (const auto& [mjd, count] : {std::pair{54832.0, 15}, {56109.0, 16}, {57204.0, 17}, {57754.0, 18}})
            CNyrTimeHelper::AddLeapSeconds(mjd, static_cast<uint8_t>(count));
    }
    static void TearDownTestSuite()
    {
        delete s_settings;
        s_settings = nullptr;
    }
    static nyr::test::TempDir* s_settings;

    // A project that a failed read must leave alone.
    static ProjectData OpenProject()
    {
        ProjectData open;
        CSurveyPoint::Data p;
        p.name = "KEEP 1";
        open.points.push_back(std::make_unique<CSurveyPoint>(*open.project, p));
        return open;
    }
};

nyr::test::TempDir* PointsReader::s_settings = nullptr;

struct BadCase
{
    const char* what;
    std::string text;
    const char* expected;  // a part of the message
};

TEST_F(PointsReader, BadInputGivesAClearErrorAndLosesNothing)
{
    const std::string header = "Point,Code,Easting,Northing\n";
    const BadCase cases[] = {
        {"empty file", "", "The file is empty."},
        {"blank lines only", "\n\r\n  \n\t\n", "The file is empty."},
        {"missing name column", "Code,Easting,Northing\nA,1,2\n", "Line 1: the column \"Point\" is missing."},
        {"missing position", "Point,Code\nA,B\n", "Line 1: the header names neither"},
        {"non-number", header + "A,x,1,2\nB,y,12a.5,3\n", "Line 3, column \"Easting\": \"12a.5\" is not a number."},
        {"not finite", header + "A,x,nan,2\n", "Line 2, column \"Easting\": \"nan\" is out of range."},
        {"wrong delimiter in the data", header + "A\tx\t1\t2\n", "Line 2: 1 fields where the header has 4."},
        {"wrong delimiter everywhere", "Point;Code;Easting;Northing\nA;x;1;2\n", "Line 1: the column \"Point\" is missing"},
        {"too many fields", header + "A,x,1,2,3\n", "Line 2: 5 fields where the header has 4."},
        {"no name", header + " ,x,1,2\n", "Line 2: the point has no name."},
        {"invalid UTF-8", header + "A,x,1,2\n\xC3\x28,x,1,2\n", "Line 3: the text is not valid UTF-8."},
        {"overlong UTF-8", header + "\xC0\xAF,x,1,2\n", "Line 2: the text is not valid UTF-8."},
        {"UTF-16 surrogate", header + "\xED\xA0\x80,x,1,2\n", "Line 2: the text is not valid UTF-8."},
        {"UTF-8 cut at the end", header + "A,x,1,2\xE2\x82", "Line 2: the text is not valid UTF-8."},
        {"latitude beyond the pole", "Point,Latitude,Longitude\nA,91,8\n", "\"91\" is out of range."},
        {"DMS beyond the pole", "Point,Latitude,Longitude\nA,89 60 01,8\n", "\"89 60 01\" is out of range."},
        {"not an angle", "Point,Latitude,Longitude\nA,north,8\n", "Line 2, column \"Latitude\": \"north\" is not an angle."},
        {"unknown unit", "Point,Easting [yards],Northing,Latitude,Longitude\nA,1,2,x,8\n", "\"x\" is not an angle"},
        {"not a time", header.substr(0, header.size() - 1) + ",Observed [UTC]\nA,x,1,2,2016-13-01T00:00:00Z\n",
         "column \"Observed [UTC]\": \"2016-13-01T00:00:00Z\" is not a time."},
        {"leap second text", header.substr(0, header.size() - 1) + ",Observed [UTC]\nA,x,1,2,2016-12-31T23:59:60Z\n",
         "is not a time."},
        {"GPS seconds beyond the week", header.substr(0, header.size() - 1) + ",GPS week,GPS seconds\nA,x,1,2,1930,604800\n",
         "\"604800\" is out of range."},
        {"quote not closed", header + "\"A,x,1,2\n", "Line 2: a quoted field does not end."},
        {"text after a quote", header + "\"A\"B,x,1,2\n", "Line 2: a quoted field does not end."},
        {"duplicate column", "Point,Easting,Northing,easting\nA,1,2,3\n", "Line 1: the column \"easting\" appears twice."},
        {"line too long", header + "A,x,1,2\n" + std::string(70000, 'B') + ",x,1,2\n", "Line 3 is longer than 65536 bytes."},
    };
    for (const BadCase& c : cases) {
        SCOPED_TRACE(c.what);
        ProjectData open = OpenProject();
        std::string error;
        EXPECT_FALSE(ReadPointsText(c.text, open, error));
        EXPECT_NE(error.find(c.expected), std::string::npos) << error;
        ASSERT_EQ(open.points.size(), 1u);
        EXPECT_EQ(open.points[0]->Name(), "KEEP 1");
    }
}

TEST_F(PointsReader, EveryWrittenFormReadsBack)
{
    const std::string iso = "Point,Code,Latitude [deg],Longitude [deg],Observed [UTC]\r\n";
    struct GoodCase
    {
        const char* what;
        std::string text;
        double lat;  // degrees of the first point
        const char* observed;  // its instant in ISO UTC
    };
    const GoodCase cases[] = {
        {"header only: an empty project", "Point,Easting,Northing\r\n", 0, ""},
        {"ISO UTC with BOM and CRLF", "\xEF\xBB\xBF" + iso + "A,x,49.5,8.5,2016-12-31T23:59:59.500Z\r\n", 49.5,
         "2016-12-31T23:59:59.500Z"},
        {"an offset", "Point,Latitude,Longitude,Observed\nA,49.5,8.5,2016-10-30T02:30:00+02:00\n", 49.5,
         "2016-10-30T00:30:00.000Z"},
        {"DMS with symbols and a hemisphere", "Point,Latitude [dms],Longitude\nA,49° 30' 00.00000\" S,8.5\n", -49.5, ""},
        {"DMS without a tag", "Point,Latitude,Longitude\nA,49 30 00,8 30 00 W\n", 49.5, ""},
        {"space-delimited export", "Point Latitude_[dms] Longitude_[deg] Observed GPS_week GPS_seconds\n"
                                   "A_1 49°_30'_00.00000\"_N 8.5 31.12.2016_23:59:59 1930 16.250\n",
         49.5, "2016-12-31T23:59:59.250Z"},
        {"tab-delimited with a quoted name", "Point\tLatitude\tLongitude\n\"A\t\"\"1\"\"\"\t49.5\t8.5\n", 49.5, ""},
        {"gon", "Point,Latitude [gon],Longitude [gon]\nA,55g 00c 00.0cc,10\n", 49.5, ""},
    };
    for (const GoodCase& c : cases) {
        SCOPED_TRACE(c.what);
        ProjectData read;
        std::string error;
        ASSERT_TRUE(ReadPointsText(c.text, read, error)) << error;
        if (c.lat == 0) {
            EXPECT_TRUE(read.points.empty());
            continue;
        }
        ASSERT_EQ(read.points.size(), 1u);
        EXPECT_NEAR(read.points[0]->GetData().lat * 180 / std::numbers::pi, c.lat, 1e-9);
        if (*c.observed) {
            EXPECT_EQ(FormatIsoUtc(read.points[0]->GetData().observed), c.observed);
        }
    }
}

TEST_F(PointsReader, TheSavedFormIsLossless)
{
    ProjectData sample = MakeSampleProject();
    const std::vector<const CSurveyPoint*> points = sample.Pointers();
    nyr::test::TempDir dir;
    std::string error;
    ASSERT_TRUE(WritePointsFile(dir.File("a.csv"), points, error)) << error;
    ProjectData read;
    ASSERT_TRUE(ReadPointsFile(dir.File("a.csv"), read, error)) << error;
    ASSERT_EQ(read.points.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CSurveyPoint::Data& a = points[i]->GetData();
        const CSurveyPoint::Data& b = read.points[i]->GetData();
        EXPECT_EQ(a.name, b.name);
        EXPECT_EQ(points[i]->Code(), read.points[i]->Code());
        EXPECT_NEAR(a.easting, b.easting, 1e-4);
        EXPECT_NEAR(a.lat, b.lat, 1e-11);
        EXPECT_NEAR(a.lon, b.lon, 1e-11);
        EXPECT_EQ(a.observed.GetTime().GetTime(), b.observed.GetTime().GetTime());
        EXPECT_EQ(a.observed.GetMilliSeconds(), b.observed.GetMilliSeconds());
    }
    // A second save of what was read is the same file, byte for byte.
    const std::vector<const CSurveyPoint*> again = read.Pointers();
    EXPECT_EQ(PointsText(again), nyr::test::ReadFile(dir.File("a.csv")));
}

TEST_F(PointsReader, AHundredMegabyteFileLoadsWholeOrNotAtAll)
{
    ProjectData data = MakeTestData(910000, 7);
    const std::vector<const CSurveyPoint*> points = data.Pointers();
    std::string text = PointsText(points);
    data = {};
    ASSERT_GT(text.size(), 100u << 20);
    ProjectData read;
    std::string error;
    ASSERT_TRUE(ReadPointsText(text, read, error)) << error;
    EXPECT_EQ(read.points.size(), points.size());
    EXPECT_EQ(read.points.back()->Name(), "P 910000");
    read = {};
    // One bad line at the very end: nothing of the other 909,999 is taken.
    text += "P X,TP,1,2,3,north,8,,,\r\n";
    ProjectData open = OpenProject();
    EXPECT_FALSE(ReadPointsText(text, open, error));
    EXPECT_NE(error.find("Line 910002, column \"Latitude [deg]\": \"north\""), std::string::npos) << error;
    EXPECT_EQ(open.points.size(), 1u);
}

TEST_F(PointsReader, FilesBeyondTheLimitAndNonFilesAreRefusedBeforeReading)
{
    nyr::test::TempDir dir;
    const std::string big = dir.File("big.csv");
    const int fd = ::open(big.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::ftruncate(fd, static_cast<off_t>(kMaxPointsFileBytes) + 1), 0);  // sparse: costs no disk
    ::close(fd);
    const std::pair<std::string, const char*> cases[] = {{big, "The file is larger than 1024 MB."},
                                                         {dir.Path(), "The file cannot be read"},
                                                         {dir.File("missing.csv"), "The file cannot be read"}};
    for (const auto& [path, expected] : cases) {
        ProjectData open = OpenProject();
        std::string error;
        EXPECT_FALSE(ReadPointsFile(path, open, error)) << path;
        EXPECT_NE(error.find(expected), std::string::npos) << error;
        EXPECT_EQ(open.points.size(), 1u);
    }
}

// Long work cancelled stops within one report of its progress, not after
// it has made or read everything: generating and reading a million points.
TEST_F(PointsReader, CancelledLongWorkStopsWithinOneProgressStep)
{
    CNyrProgress cancelled;
    cancelled.Cancel();
    const ProjectData made = MakeTestData(1000000, 3, &cancelled);
    EXPECT_LE(made.points.size(), 4096u);

    ProjectData data = MakeTestData(200000, 3);
    const std::vector<const CSurveyPoint*> points = data.Pointers();
    nyr::test::TempDir dir;
    std::string written;
    ASSERT_TRUE(WritePointsFile(dir.File("big.csv"), points, written)) << written;
    CNyrProgress reading;
    reading.Cancel();
    ProjectData open = OpenProject();
    ReadError error;
    EXPECT_FALSE(ReadPointsFile(dir.File("big.csv"), open, error, &reading));
    EXPECT_EQ(error.id, 0u);  // cancelled, not failed
    EXPECT_LE(reading.Read().position, reading.Read().total / 20);
    EXPECT_EQ(open.points.size(), 1u);
}

// Random damage to a good file: each read either fails with a message or
// loads points that all have a name and a finite position. Never a crash.
TEST_F(PointsReader, RandomlyDamagedFilesNeverLoadHalfOrCrash)
{
    ProjectData sample = MakeSampleProject();
    std::vector<const CSurveyPoint*> points;
    for (std::size_t i = 0; i < 20; ++i)
        points.push_back(sample.points[i * 13].get());
    const std::string good = PointsText(points);
    uint64_t state = 17;
    auto next = [&state] {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        return state >> 33;
    };
    const char noise[] = ",\t\"\n\r _;:.-+0123456789eE\xC3\xA4\xFF";
    for (int round = 0; round < 3000; ++round) {
        std::string text = good;
        for (int edits = 1 + static_cast<int>(next() % 4); edits > 0; --edits) {
            const std::size_t at = next() % text.size();
            switch (next() % 3) {
            case 0: text.erase(at, 1 + next() % 8); break;
            case 1: text.insert(at, 1, noise[next() % (sizeof noise - 1)]); break;
            default: text[at] = noise[next() % (sizeof noise - 1)]; break;
            }
        }
        ProjectData read;
        std::string error;
        if (!ReadPointsText(text, read, error)) {
            EXPECT_FALSE(error.empty());
            EXPECT_TRUE(read.points.empty());
            continue;
        }
        for (const auto& p : read.points) {
            EXPECT_FALSE(p->Name().empty());
            EXPECT_TRUE(std::isfinite(p->GetData().lat) && std::isfinite(p->GetData().lon));
        }
    }
}

}  // namespace
}  // namespace survey
