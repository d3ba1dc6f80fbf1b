#include <gtest/gtest.h>

#include <string>

#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"
#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/support/temp_dir.h"

namespace {

using nyr::test::ScopedZone;

class ScanTimeTest : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(m_dir.File("Nyr240.INI")); }
    nyr::test::TempDir m_dir;
    ScopedZone m_zone{"Europe/Berlin"};
};

const char* Row(int index)
{
    return CNyrTime::TimeFormatPattern(index);
}

TEST_F(ScanTimeTest, ReadsTheTableRowsBackFieldForField)
{
    const struct
    {
        const char* text;
        std::string pattern;
        const char* expected;  // "%Y-%m-%d %H:%M:%S", or "" for the neutral result
        double fraction;
    } cases[] = {
        {"07/03/2024 20:05:09", Row(0), "2024-07-03 20:05:09", 0},
        {"03-07-24 20:05:09", Row(13), "2024-07-03 20:05:09", 0},
        {"03/07/2024 8:05:09 PM", "%d/%m/%Y %I:%M:%S %p", "2024-07-03 20:05:09", 0},
        {"03/07/24 12:05:09 AM", "%d/%m/%y %I:%M:%S %p", "2024-07-03 12:05:09", 0},  // "12 AM" stays 12
        {"03/07/24 12:05:09 PM", "%d/%m/%y %I:%M:%S %p", "2024-07-03 12:05:09", 0},
        {"01/02/70 00:00:00", Row(5), "2070-02-01 00:00:00", 0},  // two-digit years: 70 is 2070 ...
        {"01/02/71 00:00:00", Row(5), "1971-02-01 00:00:00", 0},  // ... and 71 is 1971
        {"07/03/2024", Row(0), "2024-07-03 00:00:00", 0},         // the text ends: the rest stays 0
        {"07/03/2024 20:xx:09", Row(0), "2024-07-03 20:09:00", 0},  // words are separators ...
        {"07/03/2024 20:05:09", "%m/%d/%Y %H:%M:%s", "2024-07-03 20:05:09", 0},
        {"07/03/2024 inf", "%m/%d/%Y %D", "2024-07-03 00:00:00", 0},  // ... and never numbers
        {"2024-07-03 12:30:15.25", "%Y-%m-%d %H:%M:%s", "2024-07-03 12:30:15", 0.25},
        {"2024-07 3.5", "%Y-%m %D", "2024-07-03 12:00:00", 0},
        {"2024 3 7", "%Y %j %m", "2024-07-03 00:00:00", 0},
        {"31/03/2024 02:30:00", Row(1), "2024-03-31 03:30:00", 0},  // in the spring gap: moved on
        {"  07/03/2024 20:05:09", Row(0), "", 0},                   // a leading blank shifts the fields
        // "." belongs to a field (for fractions), so a dotted date is one
        // field; "%#" and month names reach the year branch. These rows
        // cannot be read back field for field, intended.
        {"03.07.2024 20:05:09", Row(17), "", 0},
        {"07/03/2024 8:05:09 PM", Row(2), "2008-07-03 12:05:09", 0},  // "%#I" read as the year
        {"3. Jul 2024 20:05:09", Row(24), "", 0},
        {"3-Jul-24 8:05:09 PM", Row(31), "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "'" << c.text << "' with '" << c.pattern << "'");
        CNyrTime t(CTime(12345));
        const double mjd = t.ScanTime(c.text, c.pattern);
        if (*c.expected == '\0') {
            EXPECT_EQ(mjd, 0.0);
            EXPECT_EQ(t.GetTime().GetTime(), 0);
            continue;
        }
        EXPECT_EQ(t.Format("%Y-%m-%d %H:%M:%S", CNyrTimeHelper::eRoundNone), c.expected);
        EXPECT_DOUBLE_EQ(t.GetFracSecond(), c.fraction);
        EXPECT_DOUBLE_EQ(mjd, t.Mjd());
        EXPECT_EQ(CNyrTime(c.text, c.pattern), t);
    }
}

TEST_F(ScanTimeTest, BadTextGivesTheNeutralResultWithBoundedReads)
{
    const std::string huge(100000, '9');
    const std::string longWord = "07/03/2024 8:05:09 PM" + std::string(100000, 'X');
    const struct
    {
        std::string text;
        std::string pattern;
    } garbage[] = {
        {"", Row(0)},
        {"hello world", Row(0)},
        {huge + "/03/2024 20:05:09", Row(0)},
        {"07/03/" + huge + " 20:05:09", Row(0)},
        {"-07/03/2024 20:05:09", Row(0)},
        {"07/03/2024 20:05:09.5e999", "%m/%d/%Y %H:%M:%s"},
        {"1e300", "%D"},
        {"07/03/2024 20:05:09", "%"},
        {"07/03/2024 20:05:09", "%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%%"},
    };
    for (const auto& g : garbage) {
        SCOPED_TRACE(g.text.substr(0, 40) + " / " + g.pattern);
        CNyrTime t(CTime(12345));
        EXPECT_EQ(t.ScanTime(g.text, g.pattern), 0.0);
        EXPECT_EQ(t.GetTime().GetTime(), 0);
        EXPECT_EQ(t.GetFracSecond(), 0.0);
    }
    // An AM/PM word of any length is read, and only its first two letters count.
    CNyrTime t;
    t.ScanTime(longWord, "%m/%d/%Y %I:%M:%S %p");
    EXPECT_EQ(t.Format("%H:%M:%S"), "20:05:09");
}

}  // namespace
