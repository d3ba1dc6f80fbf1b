#include <gtest/gtest.h>

#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"
#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::ReadFile;
using nyr::test::ScopedZone;
using nyr::test::TempDir;
using nyr::test::WriteFile;

class TimeFormatTest : public ::testing::Test
{
protected:
    void SetUp() override { Use(""); }

    // A new settings file with the given text (the store may trust what it
    // read a moment ago); the current format is read again.
    void Use(const std::string& content)
    {
        m_file = m_dir.File("Nyr240-" + std::to_string(++m_files) + ".INI");
        WriteFile(m_file, content);
        NyrSetProfilePath(m_file);
        CNyrTime::ReloadTimeFormat();
    }
    std::string Stored() const { return ReadFile(m_file); }

    TempDir m_dir;
    std::string m_file;
    int m_files = 0;
    ScopedZone m_zone{"UTC"};
};

TEST_F(TimeFormatTest, EveryRowFormatsTheSameInstantAsTheTableSays)
{
    CNyrTime t(2024, 7, 3, 20, 5, 9);
    t.SetFracSecond(0.4);
    const char* expected[] = {
        "07/03/2024 20:05:09", "03/07/2024 20:05:09", "07/03/2024 8:05:09 PM", "03/07/2024 8:05:09 PM",
        "07/03/24 20:05:09",   "03/07/24 20:05:09",   "07/03/24 8:05:09 PM",   "03/07/24 8:05:09 PM",
        "07-03-2024 20:05:09", "03-07-2024 20:05:09", "07-03-2024 8:05:09 PM", "03-07-2024 8:05:09 PM",
        "07-03-24 20:05:09",   "03-07-24 20:05:09",   "07-03-24 8:05:09 PM",   "03-07-24 8:05:09 PM",
        "07.03.2024 20:05:09", "03.07.2024 20:05:09", "07.03.2024 8:05:09 PM", "03.07.2024 8:05:09 PM",
        "07.03.24 20:05:09",   "03.07.24 20:05:09",   "07.03.24 8:05:09 PM",   "03.07.24 8:05:09 PM",
        "3. Jul 2024 20:05:09", "3-Jul-2024 20:05:09", "3. Jul 2024 8:05:09 PM", "3-Jul-2024 8:05:09 PM",
        "3. Jul 24 20:05:09",  "3-Jul-24 20:05:09",   "3. Jul 24 8:05:09 PM",  "3-Jul-24 8:05:09 PM",
    };
    // Row, month-first flag of DateOrder, DateSeparator.
    for (int row = 0; row < CNyrTime::eTimeFormatCount; ++row) {
        SCOPED_TRACE(row);
        EXPECT_EQ(t.Format(static_cast<CNyrTime::eTimeFormat>(row)), expected[row]);
        CNyrTime::SaveTimeFormat(row);
        EXPECT_EQ(t.Format(), expected[row]);
        const char separator = row < 8 ? '/' : row < 16 ? '-' : row < 24 ? '.' : row % 2 ? '-' : ' ';
        EXPECT_EQ(CNyrTime::DateSeparator(), separator);
        // "%#d" is not "%d": rows 24-31 count as having no day, so month first.
        EXPECT_EQ(CNyrTime::DateOrder(), row >= 24 || row % 2 == 0 ? 1 : 0);
    }
    EXPECT_EQ(t.Format(CNyrTime::eTimeFormatCount), expected[31]);  // the current format
    EXPECT_EQ(t.Format(static_cast<CNyrTime::eTimeFormat>(500)), expected[31]);
}

TEST_F(TimeFormatTest, DatePartTimePartAndFractionFollowTheCurrentFormat)
{
    CNyrTime::SaveTimeFormat(CNyrTime::eTimeFormatDMonY4Dot12);
    CNyrTime t(2024, 12, 31, 23, 59, 59);
    t.SetFracSecond(0.9996);
    EXPECT_EQ(t.FormatDate(CNyrTimeHelper::eRoundNone), "31. Dec 2024");
    EXPECT_EQ(t.FormatTime(CNyrTimeHelper::eRoundNone), "11:59:59 PM");
    // The carry of the rounding moves date and time together.
    EXPECT_EQ(t.FormatDate(), "1. Jan 2025");
    EXPECT_EQ(t.FormatTime(CNyrTimeHelper::eRoundThousandth) + t.FormatFracSec(), "12:00:00 AM.000");
    const struct
    {
        double fraction;
        int flag;
        const char* text;
    } fractions[] = {{0.1234, 3, ".123"}, {0.125, 5, ".13"}, {0.25, 4, ".3"}, {0.123, 6, ".123"},
                     {0.7, 0, ".000"},    {0.05, 4, ".1"},   {0.999, 131, ".999"}};
    for (const auto& f : fractions) {
        CNyrTime u(2024, 1, 1, 0, 0, 0);
        u.SetFracSecond(f.fraction);
        EXPECT_EQ(u.FormatFracSec(f.flag), f.text) << f.fraction << " flag " << f.flag;
    }
    EXPECT_EQ(CNyrTime(CTime(int64_t{1} << 50)).FormatDate(), "");
}

TEST_F(TimeFormatTest, UtcFormsShowTheUtcClockWhateverTheZone)
{
    ScopedZone zone("America/New_York");
    CNyrTime::SaveTimeFormat(CNyrTime::eTimeFormatDMY4Dot24);
    const CNyrTime t(2024, 1, 15, 21, 30, 0);  // 02:30 UTC on the 16th
    EXPECT_EQ(t.FormatUTC(), "16.01.2024 02:30:00");
    EXPECT_EQ(t.FormatDateUTC(), "16.01.2024");
    EXPECT_EQ(t.FormatTimeUTC(), "02:30:00");
    EXPECT_EQ(t.FormatUTC(CNyrTime::eTimeFormatMDY2Slash12), "01/16/24 2:30:00 AM");
    EXPECT_EQ(t.FormatUTC("%a, %d %b %y %H:%M:%S GMT"), "Tue, 16 Jan 24 02:30:00 GMT");
    // From an MJD the fields are shown as they stand.
    EXPECT_EQ(CNyrTime::FormatUTC(60325.10416666667, "%a, %d %b %y %H:%M:%S GMT"), "Tue, 16 Jan 24 02:30:00 GMT");
    EXPECT_EQ(CNyrTime::FormatDateUTC(60325.999999), "17.01.2024");  // rounded to the second first
    EXPECT_EQ(CNyrTime::FormatTimeUTC(60325.999999, CNyrTimeHelper::eRoundNone), "23:59:59");
    EXPECT_EQ(CNyrTime::FormatUTC(1e300, "%Y"), "");
    const double now = CNyrTime::CurrentTimeUTC();
    EXPECT_NEAR(now, 40587.0 + static_cast<double>(time(nullptr)) / 86400, 2.0 / 86400);
    EXPECT_NEAR(CNyrTime::CurrentTime(), now - 5.0 / 24, 2.0 / 86400 + 1.0 / 24);  // EST or EDT
}

TEST_F(TimeFormatTest, StoredIndexIsReadWithItsBounds)
{
    const struct
    {
        const char* stored;
        int index;
        const char* pattern;
    } cases[] = {
        {"", 0, "%m/%d/%Y %H:%M:%S"},
        {"Time Format (###)=-1", 0, "%m/%d/%Y %H:%M:%S"},
        {"Time Format (###)=40", 0, "%m/%d/%Y %H:%M:%S"},
        {"Time Format (###)=-7", 0, "%m/%d/%Y %H:%M:%S"},
        {"Time Format (###)=5", 5, "%d/%m/%y %H:%M:%S"},
        {"Time Format (###)=31", 31, "%#d-%b-%y %#I:%M:%S %p"},
        // 32 passes the test for values above 32; it has no row and shows row 0.
        {"Time Format (###)=32", 32, "%m/%d/%Y %H:%M:%S"},
        {"Time Format (###)=abc", 0, "%m/%d/%Y %H:%M:%S"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        Use(std::string("[CNyrTime]\n") + c.stored + "\n");
        EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), c.index);
        EXPECT_EQ(CNyrTime::CurrentTimeFormat(), c.pattern);
    }
}

TEST_F(TimeFormatTest, DefaultSettingsNeverReplaceAUsersChoice)
{
    const struct
    {
        const char* stored;
        CNyrTime::eTimeFormat given;
        int current;
        bool written;
    } cases[] = {
        {"", CNyrTime::eTimeFormatDMY4Dot24, 17, true},
        {"Time Format (###)=5", CNyrTime::eTimeFormatDMY4Dot24, 5, false},
        {"Time Format (###)=32", CNyrTime::eTimeFormatDMY4Dot24, 17, true},
        {"Time Format (###)=-3", CNyrTime::eTimeFormatMDY4Slash24, 0, true},
        {"Time Format (###)=5", static_cast<CNyrTime::eTimeFormat>(32), 5, false},  // ignored
        {"", static_cast<CNyrTime::eTimeFormat>(-1), 0, false},                      // ignored
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.stored << " / " << c.given);
        Use(std::string("[CNyrTime]\n") + c.stored + "\n");
        const std::string before = Stored();
        CNyrTime::DefaultSettings(c.given);
        EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), c.current);
        if (c.written) {
            EXPECT_EQ(static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt("CNyrTime", "Time Format (###)", -9)), c.given);
            EXPECT_EQ(CNyrProfileEntries::ReadNyrProfileString("CNyrTime", "Time Format (str)", ""),
                      CNyrTime::TimeFormatPattern(c.given));
        } else {
            EXPECT_EQ(Stored(), before);
        }
    }
}

TEST_F(TimeFormatTest, SaveTimeFormatWritesBothKeysAndFirstConstructionLoads)
{
    EXPECT_EQ(CNyrTime::SaveTimeFormat(12), 0);
    EXPECT_EQ(CNyrTime::SaveTimeFormat(99), 12);  // outside the table: row 0
    EXPECT_EQ(CNyrTime::SaveTimeFormat(21), 0);
    const std::string file = Stored();
    EXPECT_NE(file.find("[CNyrTime]"), std::string::npos) << file;
    EXPECT_NE(file.find("Time Format (###)=21"), std::string::npos) << file;
    EXPECT_NE(file.find("Time Format (str)=%d.%m.%y %H:%M:%S"), std::string::npos) << file;

    // Another process (here: a fresh read) picks the choice up.
    CNyrTime::SaveTimeFormat(3);
    Use(file);
    EXPECT_EQ(CNyrTime::CurrentTimeFormatIndex(), 21);
}

TEST_F(TimeFormatTest, PatternsFromAResourceModule)
{
    std::string error;
    const auto module = CNyrResourceModule::LoadFromText("30001 \"%Y/%m/%d\"\n30002 \"%#H.%M\"\n", "test", &error);
    ASSERT_TRUE(module) << error;
    const CNyrTime t(2024, 7, 3, 8, 5, 9);
    EXPECT_EQ(t.Format(module.get(), 30001), "2024/07/03");
    EXPECT_EQ(t.Format(module.get(), 30002), "8.05");
    EXPECT_EQ(t.Format(module.get(), 30003), "");  // no such text: an empty pattern
    EXPECT_EQ(NyrGetCurrentResourceHandle(), CNyrResourceModule::Host());  // switched back
}

}  // namespace
