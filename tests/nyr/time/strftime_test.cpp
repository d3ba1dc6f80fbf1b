#include "nyr/time/strftime.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <random>
#include <string>

namespace {

struct tm Utc(int64_t seconds)
{
    struct tm fields {};
    const time_t t = static_cast<time_t>(seconds);
    gmtime_r(&t, &fields);
    return fields;
}

TEST(Strftime, AgreesWithTheCLocaleStrftimeOnEveryConversionBothDefine)
{
    // In the "C" locale glibc's names are the English ones, so wherever the
    // two define a conversion the same way the texts must be equal.
    setlocale(LC_TIME, "C");
    const char* patterns[] = {
        "%a %A %b %B %h %p",  "%d %e %H %I %j %m %M %S", "%y %Y %C %u %w",  "%U %W %V %G %g",
        "%D %F %T %R %r %X",  "%n%t%%",                  "%z %Z",           "plain text, no conversion",
        "%m/%d/%Y %H:%M:%S",  "%a, %d %b %y %H:%M:%S GMT",
    };
    std::mt19937_64 random(20240115);
    std::uniform_int_distribution<int64_t> seconds(-2208988800LL, 253402300799LL);  // 1900 .. 9999
    for (int i = 0; i < 20000; ++i) {
        const struct tm fields = Utc(i < 400 ? i * 86400LL * 366 / 4 : seconds(random));
        for (const char* pattern : patterns) {
            char theirs[128];
            const std::size_t n = strftime(theirs, sizeof theirs, pattern, &fields);
            ASSERT_EQ(NyrStrftime(pattern, fields), std::string(theirs, n)) << pattern;
        }
    }
}

TEST(Strftime, HashDropsLeadingZerosAndNamesStayEnglishInAnyLocale)
{
    setlocale(LC_ALL, "de_DE.UTF-8");  // without effect where the locale is not installed: the texts are fixed
    const struct tm morning = Utc(1704092645);  // 2024-01-01 07:04:05 UTC, a Monday
    const struct tm evening = Utc(1720039509);  // 2024-07-03 20:45:09 UTC, a Wednesday
    const struct
    {
        const char* pattern;
        const char* morning;
        const char* evening;
    } cases[] = {
        {"%#d. %b %Y %#I:%M:%S %p", "1. Jan 2024 7:04:05 AM", "3. Jul 2024 8:45:09 PM"},
        {"%#d-%b-%y %H:%M:%S", "1-Jan-24 07:04:05", "3-Jul-24 20:45:09"},
        {"%#m/%#d/%#y %#H:%#M:%#S %#j", "1/1/24 7:4:5 1", "7/3/24 20:45:9 185"},
        {"%#e|%e|%#Y|%#a|%#%", "1| 1|2024|Mon|%", "3| 3|2024|Wed|%"},
        {"%#c", "Monday, January 1, 2024 07:04:05", "Wednesday, July 3, 2024 20:45:09"},
        {"%#x / %c / %x", "Monday, January 1, 2024 / 01/01/24 07:04:05 / 01/01/24",
         "Wednesday, July 3, 2024 / 07/03/24 20:45:09 / 07/03/24"},
        {"%I %p", "07 AM", "08 PM"},
        {"%q %#q %", "%q %#q %", "%q %#q %"},  // unknown conversions stay as they are
    };
    for (const auto& c : cases) {
        EXPECT_EQ(NyrStrftime(c.pattern, morning), c.morning) << c.pattern;
        EXPECT_EQ(NyrStrftime(c.pattern, evening), c.evening) << c.pattern;
    }
    struct tm midnight = Utc(0), noon = Utc(43200);
    EXPECT_EQ(NyrStrftime("%I %p|%#I %p", midnight), "12 AM|12 AM");
    EXPECT_EQ(NyrStrftime("%I %p", noon), "12 PM");
    setlocale(LC_ALL, "C");
}

TEST(Strftime, TextsOf128CharactersOrMoreAreRefusedWhole)
{
    const struct tm fields = Utc(0);
    EXPECT_EQ(NyrStrftime(std::string(127, 'x'), fields).size(), 127u);
    EXPECT_EQ(NyrStrftime(std::string(128, 'x'), fields), "");
    EXPECT_EQ(NyrStrftime(std::string(120, 'x') + "%A", fields), "");  // 120 + "Thursday"
    EXPECT_EQ(NyrStrftime(std::string(119, 'x') + "%A", fields).size(), 127u);
    EXPECT_EQ(NyrStrftime("", fields), "");

    char small[8];
    EXPECT_EQ(NyrStrftime(small, sizeof small, "%Y-%m", fields), 7u);
    EXPECT_STREQ(small, "1970-01");
    EXPECT_EQ(NyrStrftime(small, sizeof small, "%Y-%m-", fields), 0u);
    EXPECT_EQ(NyrStrftime(small, sizeof small, nullptr, fields), 0u);
}

TEST(Strftime, FieldsOutOfRangeNeverReadOutsideTheNameTables)
{
    struct tm fields {};
    fields.tm_wday = 9;
    fields.tm_mon = -3;
    fields.tm_hour = -5;
    fields.tm_year = -3000;  // year -1100
    EXPECT_EQ(NyrStrftime("%a %A %b %B %Y %y %C %H", fields), "? ? ? ? -1100 00 -11 -5");
}

}  // namespace
