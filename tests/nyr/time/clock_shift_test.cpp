// Time points where the clock shifts: repeated readings after a clock is
// turned back, shifts of 30 minutes and of odd seconds. The zones come from
// the system's tzdata (zdump -v shows the shifts used here).
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <vector>

#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"
#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/support/temp_dir.h"

namespace {

using H = CNyrTimeHelper;
using nyr::test::ScopedZone;

struct Utc
{
    int year, month, day, hour, minute, second;
};

CNyrTime AtUtc(const Utc& u)
{
    struct tm f {};
    f.tm_year = u.year - 1900;
    f.tm_mon = u.month - 1;
    f.tm_mday = u.day;
    f.tm_hour = u.hour;
    f.tm_min = u.minute;
    f.tm_sec = u.second;
    return CNyrTime(static_cast<int64_t>(timegm(&f)));
}

std::string Local(const CNyrTime& t)
{
    return t.Format("%Y-%m-%d %H:%M:%S %z", H::eRoundNone);
}

class ClockShiftTest : public ::testing::Test
{
protected:
    void SetUp() override { NyrSetProfilePath(m_dir.File("Nyr240.INI")); }
    nyr::test::TempDir m_dir;
};

// Regression: a calendar step rebuilt the local reading without the point's
// side of a repeated hour, so AddMonths(0) moved Europe/Berlin 2024-10-27
// 02:30 +02:00 to +01:00, one hour later.
TEST_F(ClockShiftTest, CalendarStepsKeepTheSideOfARepeatedHour)
{
    using Add = bool (*)(CNyrTime&, long);
    const struct
    {
        const char* zone;
        Utc from;
        Add add;
        long count;
        const char* local;  // expected
    } cases[] = {
        // Adding nothing keeps the instant, on either side.
        {"Europe/Berlin", {2024, 10, 27, 0, 30, 0}, H::AddMonths, 0, "2024-10-27 02:30:00 +0200"},
        {"Europe/Berlin", {2024, 10, 27, 1, 30, 0}, H::AddMonths, 0, "2024-10-27 02:30:00 +0100"},
        {"Europe/Berlin", {2024, 10, 27, 0, 30, 0}, H::AddYears, 0, "2024-10-27 02:30:00 +0200"},
        {"Europe/Berlin", {2024, 10, 27, 1, 30, 0}, H::AddWeeks, 0, "2024-10-27 02:30:00 +0100"},
        {"Europe/Berlin", {2024, 10, 27, 0, 30, 0}, H::AddDays, 0, "2024-10-27 02:30:00 +0200"},
        {"America/New_York", {2024, 11, 3, 5, 30, 0}, H::AddYears, 0, "2024-11-03 01:30:00 -0400"},
        {"America/New_York", {2024, 11, 3, 6, 30, 0}, H::AddMonths, 0, "2024-11-03 01:30:00 -0500"},
        {"Australia/Lord_Howe", {2024, 4, 6, 14, 50, 0}, H::AddMonths, 0, "2024-04-07 01:50:00 +1100"},
        {"Australia/Lord_Howe", {2024, 4, 6, 15, 20, 0}, H::AddWeeks, 0, "2024-04-07 01:50:00 +1030"},
        // Both sides of Moscow's 2014 repeated hour are standard time.
        {"Europe/Moscow", {2014, 10, 25, 21, 30, 0}, H::AddMonths, 0, "2014-10-26 01:30:00 +0400"},
        {"Europe/Moscow", {2014, 10, 25, 22, 30, 0}, H::AddYears, 0, "2014-10-26 01:30:00 +0300"},
        // Steps into a repeated hour land on the side the point is on.
        {"Europe/Berlin", {2013, 10, 27, 0, 30, 0}, H::AddYears, 11, "2024-10-27 02:30:00 +0200"},
        {"Europe/Berlin", {2013, 10, 27, 1, 30, 0}, H::AddYears, 11, "2024-10-27 02:30:00 +0100"},
        {"Europe/Berlin", {2024, 9, 27, 0, 30, 0}, H::AddMonths, 1, "2024-10-27 02:30:00 +0200"},
        {"Europe/Berlin", {2024, 11, 27, 1, 30, 0}, H::AddMonths, -1, "2024-10-27 02:30:00 +0100"},
        {"Europe/Berlin", {2024, 10, 20, 0, 30, 0}, H::AddWeeks, 1, "2024-10-27 02:30:00 +0200"},
        {"Europe/Berlin", {2024, 10, 28, 1, 30, 0}, H::AddDays, -1, "2024-10-27 02:30:00 +0100"},
        {"Australia/Lord_Howe", {2024, 4, 5, 14, 50, 0}, H::AddDays, 1, "2024-04-07 01:50:00 +1100"},
        {"Europe/Moscow", {2014, 10, 24, 21, 30, 0}, H::AddDays, 1, "2014-10-26 01:30:00 +0400"},
        // Away from shifts a step keeps the reading.
        {"Europe/Berlin", {2024, 10, 27, 0, 30, 0}, H::AddDays, 1, "2024-10-28 02:30:00 +0100"},
        {"Europe/Berlin", {2024, 10, 27, 1, 30, 0}, H::AddMonths, -1, "2024-09-27 02:30:00 +0200"},
    };
    for (const auto& c : cases) {
        ScopedZone zone(c.zone);
        CNyrTime t = AtUtc(c.from);
        t.SetFracSecond(0.25);
        SCOPED_TRACE(testing::Message() << c.zone << " " << Local(t) << " + " << c.count);
        ASSERT_TRUE(c.add(t, c.count));
        EXPECT_EQ(Local(t), c.local);
        EXPECT_EQ(t.GetFracSecond(), 0.25);
    }
}

// Regression: hour rounding added the minutes to the next hour as elapsed
// time and landed on :30 where a 30-minute shift lay in between
// (Australia/Lord_Howe 2024-10-06 01:45 rounded to 02:30 +11).
TEST_F(ClockShiftTest, RoundingLandsOnAFullHourOrMinuteOfTheClock)
{
    const struct
    {
        const char* zone;
        Utc from;
        int flag;
        const char* local;  // expected
    } cases[] = {
        {"Australia/Lord_Howe", {2024, 10, 5, 15, 15, 0}, H::eRoundHour, "2024-10-06 03:00:00 +1100"},
        {"Australia/Lord_Howe", {2024, 4, 6, 14, 50, 0}, H::eRoundHour, "2024-04-07 02:00:00 +1030"},
        {"Australia/Lord_Howe", {2024, 4, 6, 14, 40, 0}, H::eRoundHour, "2024-04-07 02:00:00 +1030"},
        {"Australia/Lord_Howe", {2024, 4, 6, 15, 20, 0}, H::eRoundHour, "2024-04-07 02:00:00 +1030"},
        {"Australia/Lord_Howe", {2024, 4, 6, 14, 20, 0}, H::eRoundHour, "2024-04-07 01:00:00 +1100"},
        {"Europe/Berlin", {2024, 10, 27, 0, 40, 0}, H::eRoundHour, "2024-10-27 02:00:00 +0100"},
        {"Europe/Berlin", {2024, 3, 31, 0, 40, 0}, H::eRoundHour, "2024-03-31 03:00:00 +0200"},
        // Monrovia moved its clock on by 44:30 on 1972-01-07.
        {"Africa/Monrovia", {1972, 1, 7, 0, 44, 15}, H::eRoundMinute, "1972-01-07 00:45:00 +0000"},
        {"Africa/Monrovia", {1972, 1, 7, 0, 44, 25}, H::eRoundMinute, "1972-01-07 00:45:00 +0000"},
    };
    for (const auto& c : cases) {
        ScopedZone zone(c.zone);
        CNyrTime t = AtUtc(c.from);
        t.SetFracSecond(0.75);
        SCOPED_TRACE(testing::Message() << c.zone << " " << Local(t) << " flag " << c.flag);
        t.Round(c.flag);
        EXPECT_EQ(Local(t), c.local);
        EXPECT_EQ(t.GetFracSecond(), 0.0);
    }
}

// Around every shift of two years in zones with shifts of 30 and 60 minutes
// and offsets of 45 minutes: hour rounding gives a full hour of the clock,
// never earlier than the point when rounding up nor later when rounding
// down, and at most 90 minutes away.
TEST_F(ClockShiftTest, HourRoundingInvariantsNearEveryShift)
{
    for (const char* name : {"Australia/Lord_Howe", "Europe/Berlin", "Pacific/Chatham", "Asia/Kathmandu"}) {
        ScopedZone zone(name);
        const int64_t start = AtUtc({2023, 1, 1, 0, 0, 0}).GetTime().GetTime();
        std::vector<int64_t> shifts = {start};  // a zone without shifts is tried at its start
        for (int64_t hour = start; hour < start + 2 * 366 * 86400LL; hour += 3600) {
            struct tm a {}, b {};
            if (CTime(hour).GetLocalTm(a) && CTime(hour + 3600).GetLocalTm(b) && a.tm_gmtoff != b.tm_gmtoff)
                shifts.push_back(hour);
        }
        for (const int64_t shift : shifts)
            for (int64_t at = shift - 3 * 3600; at <= shift + 4 * 3600; at += 61) {
                CNyrTime t(at);
                t.SetFracSecond(0.5);
                struct tm before {}, after {};
                ASSERT_TRUE(t.GetTime().GetLocalTm(before));
                t.Round(H::eRoundHour);
                ASSERT_TRUE(t.GetTime().GetLocalTm(after));
                const int64_t moved = t.GetTime().GetTime() - at;
                SCOPED_TRACE(testing::Message() << name << " " << at);
                ASSERT_EQ(after.tm_min * 60 + after.tm_sec, 0);
                ASSERT_EQ(t.GetFracSecond(), 0.0);
                ASSERT_TRUE(before.tm_min >= 30 ? moved > 0 : moved <= 0);
                ASSERT_LE(std::abs(moved), 90 * 60);
            }
    }
}

}  // namespace
