#include "nyr/app/progress.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <algorithm>
#include <cmath>
#include <limits>

#include "nyr/app/about_report.h"
#include "nyr/frame/version_check.h"

namespace {

TEST(ProgressText, SizesInTheLibrarysUnitsAndDurations)
{
    const std::pair<std::uint64_t, const char*> sizes[] = {
        {0, "0 bytes"},
        {1023, "1023 bytes"},
        {1024, "1.0 KB"},
        {1536, "1.5 KB"},
        {1048575, "1.0 MB"},  // not "1024.0 KB"
        {1048576, "1.0 MB"},
        {5ull << 30, "5.0 GB"},
        {(3ull << 40) + (1ull << 39), "3.5 TB"},
        {std::numeric_limits<std::uint64_t>::max(), "16777216.0 TB"},
    };
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(NyrFormatSize(bytes), text) << bytes;

    const std::pair<double, const char*> durations[] = {
        {0, "0:00"},        {59.9, "0:59"},       {61, "1:01"},
        {3599, "59:59"},    {3600, "1:00:00"},   {90061, "25:01:01"},
        {-5, "0:00"},       {std::nan(""), "0:00"}, {std::numeric_limits<double>::infinity(), "0:00"},
    };
    for (const auto& [seconds, text] : durations)
        EXPECT_EQ(NyrFormatDuration(seconds), text) << seconds;
}

TEST(Progress, RemainingTimeIsKnownOnlyOnceWorkWasDone)
{
    CNyrProgress progress;
    EXPECT_LT(progress.Read().remainingSeconds, 0);  // no total
    progress.SetTotal(100, CNyrProgress::eBytes);
    EXPECT_LT(progress.Read().remainingSeconds, 0);  // nothing done yet
    EXPECT_TRUE(progress.Step(25));
    progress.SetText("reading");
    CNyrProgress::Snapshot s = progress.Read();
    EXPECT_EQ(s.position, 25u);
    EXPECT_EQ(s.unit, CNyrProgress::eBytes);
    EXPECT_EQ(s.text, "reading");
    EXPECT_DOUBLE_EQ(s.remainingSeconds, 3 * s.elapsedSeconds);  // the rate so far over what is left
    EXPECT_TRUE(progress.SetPosition(150));
    EXPECT_LT(progress.Read().remainingSeconds, 0);  // past the total: no estimate

    // Once cancelled, every report tells the job to stop.
    progress.Cancel();
    EXPECT_TRUE(progress.Read().cancelled);
    EXPECT_FALSE(progress.Step(1));
    EXPECT_FALSE(progress.SetPosition(160));
    EXPECT_FALSE(progress.Step(0));
    progress.Restart();
    s = progress.Read();
    EXPECT_FALSE(s.cancelled);
    EXPECT_EQ(s.position, 0u);
    EXPECT_EQ(s.total, 0u);
    EXPECT_EQ(s.text, "");
    EXPECT_TRUE(progress.SetPosition(1));
}

class OldLibraries : public CNyrVersionSource
{
public:
    bool Query(const std::string& fileName, VS_FIXEDFILEINFO& info, unsigned long& errorCode) override
    {
        if (fileName == "Shell32.Dll") {
            errorCode = ENOENT;
            return false;
        }
        info.dwProductVersionMS = fileName == "ComCtl32.Dll" ? (6u << 16) : (4u << 16 | 70u);
        return true;
    }
};

TEST(AboutReport, ApplicationLibraryExtrasSystemAndRequirementsInOneLineEach)
{
    NyrResetFixedFileInfoCache();
    std::vector<CNyrAboutLine> lines = NyrAboutLines("Survey", "1.2", {{"Extra", "value"}});
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], (CNyrAboutLine{"Application", "Survey 1.2"}));
    EXPECT_EQ(lines[1], (CNyrAboutLine{"Library", std::string("Nyr240 ") + NyrLibraryVersion()}));
    EXPECT_EQ(lines[2], (CNyrAboutLine{"Extra", "value"}));
    EXPECT_EQ(lines[3].first, "Operating system");
    EXPECT_EQ(lines[3].second.rfind("Linux ", 0), 0u);
    EXPECT_EQ(lines[4], (CNyrAboutLine{"System requirements", "All requirements are met."}));
    EXPECT_EQ(NyrAboutText({{"A", "1"}, {"B", "2"}}), "A: 1\nB: 2\n");

    OldLibraries old;
    NyrSetVersionSource(&old);
    NyrResetFixedFileInfoCache();
    lines = NyrAboutLines("Survey", "");
    NyrSetVersionSource(nullptr);
    NyrResetFixedFileInfoCache();
    EXPECT_EQ(lines[0].second, "Survey");
    EXPECT_EQ(lines.back().second, "Not met (2): Shell32.dll: No such file or directory");
    const std::string text = NyrAboutText(lines);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), static_cast<long>(lines.size()));
}

}  // namespace
