#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <vector>

#include "nyr/time/time.h"
#include "nyr/util/base64.h"
#include "nyr/util/profile_entries.h"
#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/support/temp_dir.h"

namespace {

using H = CNyrTimeHelper;
using nyr::test::ReadFile;
using nyr::test::TempDir;
using nyr::test::WriteFile;

constexpr double kMjd2009 = 54832, kMjd2012Jul = 56109, kMjd2015Jul = 57204, kMjd2017 = 57754;

// The stored form, built here from its definition: Base64 of little-endian
// doubles, MJD then offset in days, for each row.
std::string StoredForm(const std::vector<std::pair<double, double>>& rows)
{
    std::vector<unsigned char> bytes;
    for (const auto& [mjd, offset] : rows)
        for (double value : {mjd, offset})
            for (int i = 0; i < 8; ++i)
                bytes.push_back(static_cast<unsigned char>(std::bit_cast<uint64_t>(value) >> (8 * i)));
    return NyrEncodeBase64(bytes.data(), bytes.size(), 0);
}

class LeapSecondsTest : public ::testing::Test
{
protected:
    void SetUp() override { Use(""); }
    // A new settings file each time: the store may trust what it read a
    // moment ago, and these files are changed behind its back.
    void Use(const std::string& stored)
    {
        m_file = m_dir.File("Nyr240-" + std::to_string(++m_files) + ".INI");
        WriteFile(m_file, stored.empty() ? "" : "[LeapSeconds]\nKnownLeapSeconds=" + stored + "\n");
        NyrSetProfilePath(m_file);
        H::LoadLeapSeconds();
    }
    TempDir m_dir;
    std::string m_file;
    int m_files = 0;
    nyr::test::ScopedZone m_zone{"UTC"};
};

TEST_F(LeapSecondsTest, BuiltInRowsAnswerByTheLastRowAtOrBefore)
{
    const struct
    {
        double mjd;
        double seconds;
        double row;
    } cases[] = {
        {53736.0, 14, 53736}, {53735.99, 13, 51179}, {44238, 0, 0},       {44239, 0, 44239},
        {44786.5, 1, 44786},  {60000, 14, 53736},    {-1e300, 0, 0},      {1e300, 14, 53736},
        {NAN, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mjd);
        double row = -1;
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(c.mjd, &row), c.seconds / 86400.0);
        EXPECT_EQ(row, c.row);
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(c.mjd), c.seconds / 86400.0);
    }
}

TEST_F(LeapSecondsTest, AddingChecksCountDayAndRangeAndPersists)
{
    const struct
    {
        double mjd;
        int count;
        bool result;
        bool added;
    } cases[] = {
        {kMjd2009, 13, true, false},       // covered by the built-in rows
        {kMjd2009, 51, false, false},
        {54891, 15, false, false},         // 2009-03-01
        {kMjd2009 + 0.75, 15, true, true}, // the day counts
        {62502, 19, true, true},           // 2030-01-01, just inside the range
        {62867, 19, false, false},         // 2031-01-01 is beyond it
        {40587, 14, false, false},         // 1970-01-01: before the range
        {NAN, 20, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.mjd << " count " << c.count);
        Use("");
        EXPECT_EQ(H::AddLeapSeconds(c.mjd, static_cast<uint8_t>(c.count)), c.result);
        double row = 0;
        const double offset = H::GetLeapSeconds(std::floor(c.mjd) + 0.5, &row);
        EXPECT_EQ(row == std::floor(c.mjd), c.added);
        EXPECT_EQ(ReadFile(m_file).find("KnownLeapSeconds") != std::string::npos, c.added);
        if (c.added) {
            EXPECT_DOUBLE_EQ(offset, c.count / 86400.0);
        }
    }
    // The saved table reads back in a fresh load, built-in rows included.
    Use("");
    ASSERT_TRUE(H::AddLeapSeconds(kMjd2012Jul, 16));
    ASSERT_TRUE(H::AddLeapSeconds(kMjd2009, 15));
    const std::string stored =
        CNyrProfileEntries::ReadNyrProfileString("LeapSeconds", "KnownLeapSeconds", "");
    H::LoadLeapSeconds();
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2012Jul), 16 / 86400.0);
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2012Jul - 1), 15 / 86400.0);
    std::vector<std::pair<double, double>> all;
    for (double mjd : {44239., 44786., 45151., 45516., 46247., 47161., 47892., 48257., 48804., 49169., 49534.,
                       50083., 50630., 51179., 53736.})
        all.emplace_back(mjd, H::GetLeapSeconds(mjd));
    all.emplace_back(kMjd2009, 15 / 86400.0);
    all.emplace_back(kMjd2012Jul, 16 / 86400.0);
    EXPECT_EQ(stored, StoredForm(all));
}

TEST_F(LeapSecondsTest, StoredRowsAreReadDefensively)
{
    Use(StoredForm({{kMjd2015Jul, 17 / 86400.0}, {53736, 99 / 86400.0}}));
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2015Jul), 17 / 86400.0);
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(53736), 14 / 86400.0);  // a built-in row wins

    // A value whose pairs do not all fit, or with a value that is not a
    // number, is ignored whole; the built-in rows stay.
    const std::vector<unsigned char> threeDoubles(24, 0x40);
    const std::string bad[] = {
        "!!!!", "QUJD", NyrEncodeBase64(threeDoubles.data(), threeDoubles.size(), 0),
        StoredForm({{kMjd2015Jul, 17 / 86400.0}, {NAN, 0.0}}),
        StoredForm({{INFINITY, 17 / 86400.0}}),
    };
    for (const std::string& value : bad) {
        SCOPED_TRACE(value);
        Use(value);
        double row = 0;
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(1e6, &row), 14 / 86400.0);
        EXPECT_EQ(row, 53736);
    }
}

TEST_F(LeapSecondsTest, BroadcastWeekLowBytesResolveAcrossThe256WeekWrap)
{
    const struct
    {
        uint16_t week;
        uint8_t weekLow, day, count;
        double mjd;  // the row expected, 0 when refused
    } cases[] = {
        {1930, 1929 & 0xFF, 7, 18, kMjd2017},     // same high byte
        {2048, 1929 & 0xFF, 7, 18, kMjd2017},     // 119 weeks later: candidate 2185 - 256
        {2032, 2053 & 0xFF, 50, 19, 58665},       // 21 weeks earlier: candidate 1797 + 256; 2019-07-01
        {1930, 1929 & 0xFF, 6, 18, 0},            // 2016-12-31 is no leap-second day
        {1930, 1929 & 0xFF, 7, 51, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.week << "/" << int{c.weekLow} << "/" << int{c.day});
        Use("");
        EXPECT_EQ(H::AddLeapSeconds(c.week, c.weekLow, c.day, c.count), c.mjd != 0);
        double row = 0;
        H::GetLeapSeconds(1e6, &row);
        EXPECT_EQ(row, c.mjd != 0 ? c.mjd : 53736);
    }
}

TEST_F(LeapSecondsTest, ImportsTheSystemListOnce)
{
    bool expired = true;
    const int added = H::ImportLeapSecondsList(H::SystemLeapSecondsList(), &expired);
    ASSERT_GE(added, 4) << "tzdata's leap-seconds.list is needed (apt-get install tzdata)";
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017), 18 / 86400.0);
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017 - 0.5), 17 / 86400.0);
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2009 - 1), 14 / 86400.0);
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2009), 15 / 86400.0);
    EXPECT_EQ(H::ImportLeapSecondsList(), 0);  // up to date
    H::LoadLeapSeconds();
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017), 18 / 86400.0);  // persisted
}

// Lists of the tzdata format. Their "#h" lines were computed with Python's
// hashlib: SHA-1 over the digits of "#$", "#@" and each row's two numbers.
const std::string kUpdated = "#$\t3960835200\n";
const std::string kRows =
    "3345062400\t33\t# 1 Jan 2006\n"  // covered by the built-in rows
    "3439756800\t34\t# 1 Jan 2009\n"
    "3550089600\t35\t# 1 Jul 2012\n"
    "3644697600\t36\t# 1 Jul 2015\n"
    "3692217600\t37\t# 1 Jan 2017\n";
const std::string kList = kUpdated + "#@\t5000000000\n" + kRows + "#h\t5a72dfd7 9a03f2d4 4696b531 201da6e2 ae4eea58\n";

TEST_F(LeapSecondsTest, ImportTakesAWholeListWithItsHash)
{
    const struct
    {
        std::string content;
        bool expired;
    } cases[] = {
        {kList, false},
        {kUpdated + "#@\t3000000000\n" + kRows + "#h\ta4895d47 66059084 73763d64 a6d00971 e237a788\n", true},
        // Words of the hash without their leading zeros, CR LF line ends.
        {"#$ 3960835201\r\n#@ 5000000000\r\n" + kRows + "#h 12b26b75 b55a3f9 13a4cb55 ab0090b b6eaefd3\r\n", false},
        {"# comment\n" + kList + "\n#\n", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.content);
        Use("");
        const std::string list = m_dir.File("leap-seconds.list");
        WriteFile(list, c.content);
        bool expired = !c.expired;
        std::string problem = "untouched";
        EXPECT_EQ(H::ImportLeapSecondsList(list, &expired, &problem), 4);
        EXPECT_EQ(expired, c.expired);
        EXPECT_EQ(problem, "untouched");
        H::LoadLeapSeconds();  // what was stored
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2009), 15 / 86400.0);
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017), 18 / 86400.0);
    }
}

// Regression: a list cut off inside its last line was taken without its
// last row ("added 3 rows"); a list is now refused whole when its hash is
// missing or wrong or its rows do not rise by one second each.
TEST_F(LeapSecondsTest, ImportRefusesADamagedListWholeAndSaysWhy)
{
    const std::string list = m_dir.File("leap-seconds.list");
    const std::string head = kUpdated + "#@\t5000000000\n";
    const struct
    {
        std::string content;  // "" with `path` set: that path
        std::string problem;
    } cases[] = {
        {kList.substr(0, kList.find("7\t# 1 Jan 2017")), "has no hash line (#h): it may be cut off"},
        {kList.substr(0, kList.find("37\t# 1 Jan 2017")), "Line 7 of the leap-second list " + list + " cannot be read."},
        {kList.substr(0, kList.find("#h")), "has no hash line"},
        {"", "has no hash line"},
        {head + kRows.substr(0, kRows.find("3550089600")) + kRows.substr(kRows.find("3644697600")) +
             "#h\t5a72dfd7 9a03f2d4 4696b531 201da6e2 ae4eea58\n",
         "does not match its data"},
        {head + kRows + "#h\t5a72dfd7 9a03f2d4 4696b531 201da6e2 ae4eea59\n", "does not match its data"},
        {head + kRows.substr(0, kRows.find("3692217600")) + "3692217600\t38\n" +
             "#h\t1b7bfc48 eff58ba7 f67def9a 108b16e0 966feee0\n",
         "Line 7 of the leap-second list " + list + " does not follow the row before it by one second."},
        {head + "3345062400\t33\n3550089600\t34\n3439756800\t35\n#h\taca31d97 0a743682 adc20229 e1d886d0 265aa869\n",
         "Line 5 of the leap-second list " + list + " does not follow"},
        {head + "#h\tfc011c97 a4aa5e1e dec6a0c4 76938039 b55f9124\n", "holds no leap seconds"},
        {head + "3439756800 x\n" + kRows, "Line 3 of the leap-second list " + list + " cannot be read."},
        {head + "3439756801\t34\n", "Line 3 of"},  // not the start of a day
        {kUpdated + "#@ soon\n" + kRows, "Line 2 of"},
        {head + kRows + "#h\t5a72dfd7 9a03f2d4 4696b531 201da6e2\n", "Line 8 of"},
        {head + kRows + "#h\t5a72dfd7 9a03f2d4 4696b531 201da6e2 ae4eea58 1\n", "Line 8 of"},
        {"99999999999999999999999999 35\n", "Line 1 of"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.content);
        Use("");
        WriteFile(list, c.content);
        bool expired = true;
        std::string problem;
        EXPECT_EQ(H::ImportLeapSecondsList(list, &expired, &problem), -1);
        EXPECT_NE(problem.find(c.problem), std::string::npos) << problem;
        EXPECT_NE(problem.find(list), std::string::npos) << problem;
        EXPECT_FALSE(expired);
        EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017), 14 / 86400.0);
        EXPECT_EQ(ReadFile(m_file).find("KnownLeapSeconds"), std::string::npos);  // nothing stored
    }
    std::string problem;
    EXPECT_EQ(H::ImportLeapSecondsList(m_dir.File("missing.list"), nullptr, &problem), -1);
    EXPECT_EQ(problem, "The leap-second list cannot be read: " + m_dir.File("missing.list") +
                           ": No such file or directory");
    EXPECT_EQ(H::ImportLeapSecondsList(m_dir.Path(), nullptr, &problem), -1);
    EXPECT_NE(problem.find("not a regular file"), std::string::npos) << problem;
}

// Regression: when the settings file could not be written, the import
// still answered with the rows it had added (and kept them in memory).
TEST_F(LeapSecondsTest, ImportFailsWithTheSystemsTextWhenTheSettingsCannotBeWritten)
{
    const std::string list = m_dir.File("leap-seconds.list");
    WriteFile(list, kList);
    WriteFile(m_dir.File("file"), "");
    const std::string settings = m_dir.File("file") + "/Nyr240.INI";  // a folder that is a file: even root fails
    NyrSetProfilePath(settings);
    H::LoadLeapSeconds();
    std::string problem;
    EXPECT_EQ(H::ImportLeapSecondsList(list, nullptr, &problem), -1);
    EXPECT_EQ(problem, "The leap-second table cannot be written to the settings file " + settings + ": Not a directory");
    EXPECT_DOUBLE_EQ(H::GetLeapSeconds(kMjd2017), 14 / 86400.0);  // nothing taken either
}

}  // namespace
