#include "nyr/time/time.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/nyr/time/scoped_zone_p.h"
#include "tests/support/temp_dir.h"
#include "nyr/platform/string_format.h"
#include "nyr/util/profile_entries.h"

namespace {

using nyr::test::ScopedZone;
using H = CNyrTimeHelper;

// Every test runs on a settings file of its own, so that the stored format
// of the machine never leaks in.
class TimeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NyrSetProfilePath(m_dir.File("Nyr240.INI"));
        CNyrTime::ReloadTimeFormat();
    }
    nyr::test::TempDir m_dir;
};

struct Civil
{
    int y, m, d, h, mi;
    double s;
    double mjd;
};

// Expected values from an independent proleptic Gregorian day count.
constexpr Civil kCivil[] = {
    {1858, 11, 17, 0, 0, 0, 0.0},     {1899, 12, 30, 0, 0, 0, 15018.0}, {1900, 1, 1, 0, 0, 0, 15020.0},
    {1970, 1, 1, 0, 0, 0, 40587.0},   {1980, 1, 6, 0, 0, 0, 44244.0},   {2000, 1, 1, 12, 0, 0, 51544.5},
    {2024, 2, 29, 6, 0, 0, 60369.25}, {2016, 12, 31, 18, 0, 0, 57753.75}, {1600, 3, 1, 0, 0, 0, -94493.0},
    {100, 1, 1, 0, 0, 0, -642416.0},  {1, 1, 1, 0, 0, 0, -678575.0},    {1, 3, 1, 0, 0, 0, -678516.0},
    {9999, 12, 31, 23, 59, 59.5, 2973483.0 + 86399.5 / 86400.0},
};

TEST_F(TimeTest, MjdOfCalendarReadingsMatchesTheGregorianDayCountBothWays)
{
    for (const Civil& c : kCivil) {
        SCOPED_TRACE(testing::Message() << c.y << "-" << c.m << "-" << c.d);
        unsigned long day = 0;
        double fraction = 0.0;
        EXPECT_NEAR(CNyrTime::Mjd(c.y, c.m, c.d, c.h, c.mi, c.s, day, fraction), c.mjd, 1e-9);
        EXPECT_EQ(static_cast<long>(day), static_cast<long>(std::floor(c.mjd)));
        EXPECT_NEAR(fraction, c.mjd - std::floor(c.mjd), 1e-9);

        long y, m, d, h, mi, s;
        double frac;
        ASSERT_TRUE(H::Mjd2Ymd(c.mjd, y, m, d, h, mi, s, frac));
        EXPECT_EQ(y, c.y);
        EXPECT_EQ(m, c.m);
        EXPECT_EQ(d, c.d);
        EXPECT_EQ(h, c.h);
        EXPECT_EQ(mi, c.mi);
        EXPECT_NEAR(s + frac, c.s, 1e-4);  // an MJD near 3e6 carries about 40 us
    }
}

TEST_F(TimeTest, MjdFromWholeSecondsReadsBackAsWholeSecondsAcrossTheYears)
{
    // The formula and the inverse are different algorithms; they must agree
    // on every day, and floating noise must never turn :37 into :36.999.
    for (int y = 1; y <= 9999; y += 7) {
        for (int m = 1; m <= 12; m += 5) {
            const int d = 1 + (y + m) % 28, h = y % 24, mi = (y * 7) % 60, s = (y * 13 + m) % 60;
            long ry, rm, rd, rh, rmi, rs;
            double frac;
            ASSERT_TRUE(H::Mjd2Ymd(CNyrTime::Mjd(y, m, d, h, mi, s), ry, rm, rd, rh, rmi, rs, frac));
            ASSERT_EQ((std::tuple{ry, rm, rd, rh, rmi, rs}), (std::tuple<long, long, long, long, long, long>{
                                                                  y, m, d, h, mi, s}));
            ASSERT_EQ(frac, 0.0);
        }
    }
}

TEST_F(TimeTest, Mjd2YmdRefusesWhatHasNoCalendarDay)
{
    long y = 1, m = 1, d = 1, h = 1, mi = 1, s = 1;
    double frac = 1.0;
    for (double bad : {double{NAN}, double{INFINITY}, -double{INFINITY}, 1e300, -1e20}) {
        EXPECT_FALSE(H::Mjd2Ymd(bad, y, m, d, h, mi, s, frac));
        EXPECT_EQ(y + m + d + h + mi + s, 0);
        EXPECT_EQ(frac, 0.0);
    }
}

TEST_F(TimeTest, PointsKeepLocalCivilMjdAndTheirUtcInstantInEveryZone)
{
    struct Case
    {
        const char* zone;
        int y, m, d, h, mi;
        int64_t utcSeconds;
        double mjd;
    };
    const Case cases[] = {
        {"UTC", 2024, 1, 15, 14, 30, 1705329000, 60324.0 + 14.5 / 24},
        {"America/New_York", 2024, 1, 15, 9, 30, 1705329000, 60324.0 + 9.5 / 24},
        {"Asia/Kolkata", 2024, 1, 15, 20, 0, 1705329000, 60324.0 + 20.0 / 24},
        {"Europe/Berlin", 2024, 7, 1, 12, 0, 1719828000, 60492.5},  // CEST: UTC 10:00
        {"Europe/Berlin", 2024, 1, 1, 12, 0, 1704106800, 60310.5},  // CET: UTC 11:00
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.zone);
        ScopedZone zone(c.zone);
        const CNyrTime t(c.y, c.m, c.d, c.h, c.mi, 0);
        EXPECT_EQ(t.GetTime().GetTime(), c.utcSeconds);
        EXPECT_NEAR(t.Mjd(), c.mjd, 1e-9);
        EXPECT_NEAR(CNyrTime(c.mjd).GetTime().GetTime(), c.utcSeconds, 0);
        EXPECT_EQ(CNyrTime(CTime(c.utcSeconds)).Format("%Y-%m-%d %H:%M"),
                  NyrFormat("%04d-%02d-%02d %02d:%02d", c.y, c.m, c.d, c.h, c.mi));
        // The library's UTC form: the MJD plus the stored zone.
        EXPECT_NEAR(t.MjdUTC(), t.Mjd() + t.Timezone() / 24, 1e-12);
    }
}

TEST_F(TimeTest, LocalTimeZoneTakesItsSignFromTheWholeHourQuotient)
{
    struct Case
    {
        const char* zone;
        double hours;
        bool negativeZero;
        double daylight;
    };
    const Case cases[] = {
        {"UTC", 0.0, true, 0.0},
        {"Europe/Berlin", 1.0, false, -1.0},  // daylight depends on today
        {"America/New_York", -5.0, false, -1.0},
        {"Asia/Kolkata", 5.5, false, 0.0},
        {"Asia/Kathmandu", 5.75, false, 0.0},
        {"America/St_Johns", -3.5, false, -1.0},
        // Less than an hour east: the quotient is 0, so the sign is minus.
        {"<+0030>-0:30", -0.5, false, 0.0},
        {"<-0030>0:30", -0.5, false, 0.0},
        // Daylight saving time all year round.
        {"<+01>-1<+02>,0/0,J365/25", 1.0, false, 1.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.zone);
        ScopedZone zone(c.zone);
        double daylight = -2.0;
        const double hours = CNyrTime::LocalTimeZone(daylight);
        EXPECT_EQ(hours, c.hours);
        EXPECT_EQ(std::signbit(hours), c.negativeZero || c.hours < 0);
        if (c.daylight >= 0.0) {
            EXPECT_EQ(daylight, c.daylight);
        }
        EXPECT_EQ(CNyrTime::SystemTimezone(), hours);
        EXPECT_EQ(CNyrTime::SystemTimezone(1), hours + daylight);
        EXPECT_EQ(CNyrTime(CTime(0)).Timezone(), hours);
    }
}

TEST_F(TimeTest, BerlinDaylightSavingChangesMoveTheClockNotTheCount)
{
    ScopedZone zone("Europe/Berlin");
    // Spring forward: 02:00 CET becomes 03:00 CEST.
    CNyrTime before(2024, 3, 31, 1, 59, 59);
    CNyrTime after = before;
    ASSERT_TRUE(H::AddSeconds(after, 1));
    EXPECT_EQ(after.Format("%H:%M:%S"), "03:00:00");
    EXPECT_NEAR(after.Mjd() - before.Mjd(), 3601.0 / 86400, 1e-9);

    // A calendar day across the change is 23 hours long.
    CNyrTime noon(2024, 3, 30, 12, 0, 0);
    const int64_t start = noon.GetTime().GetTime();
    ASSERT_TRUE(H::AddDays(noon, 1));
    EXPECT_EQ(noon.GetTime().GetTime() - start, 23 * 3600);
    EXPECT_EQ(noon.Format("%d %H:%M"), "31 12:00");

    // Fall back: 02:30 happens twice; the flag picks the reading.
    const CNyrTime summer(2024, 10, 27, 2, 30, 0, 1), winter(2024, 10, 27, 2, 30, 0, 0);
    EXPECT_EQ(winter.GetTime().GetTime() - summer.GetTime().GetTime(), 3600);
    EXPECT_LT(summer, winter);
    EXPECT_EQ(NyrCompare(summer, winter), 0);  // same local civil MJD
    EXPECT_EQ(summer.FormatUTC("%H:%M"), "00:30");
    EXPECT_EQ(winter.FormatUTC("%H:%M"), "01:30");
}

TEST_F(TimeTest, GpsWeekAndSecondsFollowThePointsOwnMjd)
{
    ScopedZone zone("UTC");
    struct Case
    {
        CNyrTime time;
        int week;
        double seconds;
        bool valid;
    };
    const Case cases[] = {
        {CNyrTime(1980, 1, 6, 0, 0, 0), 0, 0.0, true},
        {CNyrTime(1980, 1, 5, 23, 59, 59), 0, -1.0, false},  // truncation toward zero
        {CNyrTime(1980, 1, 12, 23, 59, 59), 0, 604799.0, true},
        {CNyrTime(1980, 1, 13, 0, 0, 0), 1, 0.0, true},
        {CNyrTime(2017, 1, 1, 0, 0, 0), 1930, 0.0, true},
        {CNyrTime(1979, 12, 30, 0, 0, 0), -1, 0.0, false},
        {CNyrTime(1979, 12, 29, 0, 0, 0), -1, -86400.0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.time.Format("%Y-%m-%d %H:%M:%S"));
        int week = 99;
        double seconds = 99.0;
        EXPECT_EQ(c.time.GetGpsTime(week, seconds), c.valid);
        EXPECT_EQ(week, c.week);
        EXPECT_NEAR(seconds, c.seconds, 1e-4);
    }
    CNyrTime t;
    EXPECT_NEAR(t.SetGpsTime(2300, 345600.5), 7.0 * 2300 + 4 + 0.5 / 86400 + 44244, 1e-9);
    EXPECT_NEAR(t.GetFracSecond(), 0.5, 1e-6);
    int week = 0;
    double seconds = 0.0;
    EXPECT_TRUE(CNyrTime(2300, 345600.5).GetGpsTime(week, seconds));
    EXPECT_EQ(week, 2300);
    EXPECT_NEAR(seconds, 345600.5, 1e-5);
}

TEST_F(TimeTest, BadFieldsGiveTheNeutralPoint)
{
    ScopedZone zone("Europe/Berlin");
    const int bad[][6] = {{2024, 2, 30, 0, 0, 0}, {2024, 13, 1, 0, 0, 0}, {2023, 2, 29, 0, 0, 0},
                          {0, 1, 1, 0, 0, 0},     {10000, 1, 1, 0, 0, 0}, {2024, 1, 1, 24, 0, 0},
                          {2024, 1, 1, 0, 60, 0}, {2024, 1, 1, 0, 0, 60}, {2024, 1, 0, 0, 0, 0}};
    for (const auto& f : bad) {
        const CNyrTime t(f[0], f[1], f[2], f[3], f[4], f[5]);
        EXPECT_EQ(t.GetTime().GetTime(), 0) << f[0] << "-" << f[1] << "-" << f[2] << " " << f[3] << ":" << f[4];
    }
    const CNyrTime far(CTime(int64_t{1} << 50));  // beyond year 9999
    EXPECT_EQ(far.Mjd(), 0.0);
    EXPECT_EQ(far.MjdUTC(), 0.0);
    EXPECT_EQ(far.Format("%Y"), "");
    EXPECT_EQ(CNyrTime(NAN).GetTime().GetTime(), 0);
}

TEST_F(TimeTest, ComparisonsOrderInstantsAndThePartTestsKeepTheGreaterQuirk)
{
    ScopedZone zone("UTC");
    const CNyrTime laterDayEarlierTime(2024, 5, 2, 8, 0, 0), earlierDayLaterTime(2024, 5, 1, 9, 0, 0);
    const CTime ctA = laterDayEarlierTime.GetTime(), ctB = earlierDayLaterTime.GetTime();
    const COleDateTime oleA(2024, 5, 2, 8, 0, 0), oleB(2024, 5, 1, 9, 0, 0);

    // DatePartGreater is the time-part test for all kinds: 08:00 is not
    // after 09:00 although 2 May is after 1 May.
    EXPECT_FALSE(H::DatePartGreater(laterDayEarlierTime, earlierDayLaterTime));
    EXPECT_FALSE(H::DatePartGreater(ctA, ctB));
    EXPECT_FALSE(H::DatePartGreater(oleA, oleB));
    EXPECT_TRUE(H::DatePartGreater(earlierDayLaterTime, laterDayEarlierTime));
    EXPECT_TRUE(H::DatePartLess(earlierDayLaterTime, laterDayEarlierTime));
    EXPECT_TRUE(H::DatePartLess(ctB, ctA));
    EXPECT_TRUE(H::DatePartLess(oleB, oleA));
    EXPECT_TRUE(H::TimePartLess(laterDayEarlierTime, earlierDayLaterTime));
    EXPECT_TRUE(H::TimePartGreater(oleB, oleA));
    EXPECT_TRUE(H::DatePartEqual(CNyrTime(2024, 5, 1, 0, 0, 0), earlierDayLaterTime));
    EXPECT_TRUE(H::TimePartEqual(COleDateTime(1999, 1, 1, 9, 0, 0), oleB));

    // The free comparisons are true three-way comparisons for every kind.
    EXPECT_EQ(NyrCompareDatePart(laterDayEarlierTime, earlierDayLaterTime), 1);
    EXPECT_EQ(NyrCompareDatePart(ctA, ctB), 1);
    EXPECT_EQ(NyrCompareDatePart(oleA, oleB), 1);
    EXPECT_EQ(NyrCompareTimePart(laterDayEarlierTime, earlierDayLaterTime), -1);
    EXPECT_EQ(NyrCompareTimePart(ctA, ctB), -1);
    EXPECT_EQ(NyrCompareTimePart(oleA, oleB), -1);
    EXPECT_EQ(NyrCompare(laterDayEarlierTime, earlierDayLaterTime), 1);
    EXPECT_EQ(NyrCompare(ctB, ctA), -1);
    EXPECT_EQ(NyrCompare(oleA, oleA), 0);

    CNyrTime withFraction = earlierDayLaterTime;
    withFraction.SetFracSecond(0.25);
    EXPECT_LT(earlierDayLaterTime, withFraction);
    EXPECT_NE(earlierDayLaterTime, withFraction);
    EXPECT_EQ(NyrCompare(withFraction, earlierDayLaterTime), 1);

    // Empty and broken cells of a date column sort first: null, invalid, valid.
    COleDateTime null, invalid(1e9);
    null.SetStatus(COleDateTime::null);
    EXPECT_EQ(NyrCompare(null, invalid), -1);
    EXPECT_EQ(NyrCompare(invalid, oleB), -1);
    EXPECT_EQ(NyrCompare(oleB, null), 1);
    EXPECT_EQ(NyrCompare(invalid, COleDateTime(-1e9)), 0);
}

TEST_F(TimeTest, RoundingTableForPointsWithTheFlagBit128Ignored)
{
    ScopedZone zone("UTC");
    struct Case
    {
        int flag;
        int mi, s;
        double fraction;
        const char* expected;  // %H:%M:%S after rounding
        double expectedFraction;
    };
    const Case cases[] = {
        {0, 29, 29, 0.5, "10:29:30", 0.0},     {0, 29, 29, 0.49, "10:29:29", 0.0},
        {1, 29, 29, 0.9, "10:29:00", 0.0},     {1, 29, 30, 0.0, "10:30:00", 0.0},
        {2, 29, 59, 0.9, "10:00:00", 0.0},     {2, 30, 0, 0.0, "11:00:00", 0.0},
        {3, 29, 29, 0.12345, "10:29:29", 0.123}, {3, 29, 59, 0.9996, "10:30:00", 0.0},
        {4, 29, 29, 0.25, "10:29:29", 0.3},    {4, 59, 59, 0.96, "11:00:00", 0.0},
        {5, 29, 29, 0.125, "10:29:29", 0.13},  {128 | 3, 29, 29, 0.12345, "10:29:29", 0.123},
        {128, 29, 29, 0.7, "10:29:30", 0.0},   {6, 29, 29, 0.7, "10:29:29", 0.7},
        {-1, 29, 29, 0.7, "10:29:29", 0.7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "flag " << c.flag << " " << c.mi << ":" << c.s << " + " << c.fraction);
        CNyrTime t(2024, 1, 15, 10, c.mi, c.s);
        t.SetFracSecond(c.fraction);
        const double mjd = t.Round(c.flag);
        EXPECT_EQ(t.Format("%H:%M:%S", CNyrTimeHelper::eRoundNone), c.expected);
        EXPECT_NEAR(t.GetFracSecond(), c.expectedFraction, 1e-12);
        EXPECT_DOUBLE_EQ(mjd, t.Mjd());
    }
}

TEST_F(TimeTest, RoundingUsesLocalFieldsAndStopsAtTheEndOfTheCTimeRange)
{
    {
        ScopedZone zone("Asia/Kolkata");
        // 20:40 IST is 15:10 UTC: the hour is rounded on the local clock.
        CNyrTime t(2024, 1, 15, 20, 40, 0);
        t.Round(H::eRoundHour);
        EXPECT_EQ(t.Format("%H:%M"), "21:00");
        EXPECT_EQ(t.FormatUTC("%H:%M"), "15:30");
        // ... and FormatUTC rounds on the UTC clock.
        EXPECT_EQ(CNyrTime(2024, 1, 15, 20, 40, 0).FormatUTC("%H:%M", H::eRoundHour), "15:00");
    }
    ScopedZone zone("UTC");
    CNyrTime last(2030, 1, 18, 23, 59, 59);
    last.SetFracSecond(0.75);
    const CNyrTime before = last;
    last.Round(H::eRoundSecond);
    EXPECT_EQ(last, before);  // the carry would leave the range: nothing changes
    last.Round(H::eRoundTenth);
    EXPECT_NEAR(last.GetFracSecond(), 0.8, 1e-12);  // no carry, so it rounds

    COleDateTime ole(2024, 1, 15, 10, 29, 59);
    ole.SetLinearDays(ole.GetLinearDays() + 0.6 / 86400);
    H::Round(ole, H::eRoundSecond);
    EXPECT_EQ(ole.GetMinute(), 30);
    EXPECT_EQ(ole.GetSecond(), 0);
    CTime ct = CTime(2024, 1, 15, 10, 44, 31);
    EXPECT_DOUBLE_EQ(H::Round(ct, H::eRoundHour), CNyrTime::Mjd(2024, 1, 15, 11, 0, 0));
}

TEST_F(TimeTest, CalendarArithmeticStaysInRangeOrLeavesThePointAlone)
{
    ScopedZone zone("Europe/Berlin");
    struct Case
    {
        const char* what;
        bool (*add)(CNyrTime&, long);
        CNyrTime start;
        long count;
        bool ok;
        const char* expected;
    };
    const Case cases[] = {
        {"month to a short month", H::AddMonths, CNyrTime(2024, 1, 31, 10, 0, 0), 1, true, "2024-02-29 10:00:00"},
        {"year from Feb 29", H::AddYears, CNyrTime(2024, 2, 29, 10, 0, 0), 1, true, "2025-02-28 10:00:00"},
        {"months back over a year", H::AddMonths, CNyrTime(2024, 3, 15, 0, 0, 0), -15, true, "2022-12-15 00:00:00"},
        {"weeks", H::AddWeeks, CNyrTime(2024, 12, 30, 6, 0, 0), 2, true, "2025-01-13 06:00:00"},
        {"hours across DST", H::AddHours, CNyrTime(2024, 3, 31, 1, 0, 0), 2, true, "2024-03-31 04:00:00"},
        {"minutes", H::AddMinutes, CNyrTime(2024, 1, 1, 0, 0, 0), -1, true, "2023-12-31 23:59:00"},
        {"past the latest", H::AddSeconds, CNyrTime(2030, 1, 18, 23, 59, 59), 1, false, "2030-01-18 23:59:59"},
        {"before the earliest", H::AddDays, CNyrTime(1970, 1, 2, 12, 0, 0), -1, false, "1970-01-02 12:00:00"},
        {"huge count", H::AddYears, CNyrTime(2024, 1, 1, 0, 0, 0), 1L << 60, false, "2024-01-01 00:00:00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CNyrTime t = c.start;
        t.SetFracSecond(0.25);
        EXPECT_EQ(c.add(t, c.count), c.ok);
        EXPECT_EQ(t.Format("%Y-%m-%d %H:%M:%S", H::eRoundNone), c.expected);
        EXPECT_EQ(t.GetFracSecond(), 0.25);
    }

    COleDateTime ole(9999, 12, 30, 0, 0, 0);
    EXPECT_TRUE(H::AddDays(ole, 1, H::eRangeCOleDateTime));
    EXPECT_FALSE(H::AddSeconds(ole, 1, H::eRangeCOleDateTime));  // the latest is the start of the last day
    EXPECT_EQ(ole.GetDay(), 31);
    COleDateTime early(1601, 1, 1, 0, 0, 0);
    EXPECT_FALSE(H::AddMinutes(early, -1, H::eRangeDateTimeCtrl));
    EXPECT_TRUE(H::AddMinutes(early, -1, H::eRangeCOleDateTime));
    EXPECT_EQ(early.GetYear(), 1600);
    COleDateTime leap(2024, 2, 29, 18, 30, 0);
    EXPECT_TRUE(H::AddYears(leap, -4, H::eRangeCTime));
    EXPECT_EQ(H::Format(leap, "%Y-%m-%d %H:%M"), "2020-02-29 18:30");
    EXPECT_FALSE(H::AddYears(leap, 20, H::eRangeCTime));
    COleDateTime broken(1e12);
    EXPECT_FALSE(H::AddDays(broken, 1, H::eRangeCOleDateTime));
}

TEST_F(TimeTest, OleDatesFormatWithTheirStatus)
{
    COleDateTime t(1899, 12, 29, 6, 0, 59);
    t.SetLinearDays(t.GetLinearDays() + 0.6 / 86400);
    EXPECT_EQ(H::Format(t, "%a %d.%m.%Y %H:%M:%S"), "Fri 29.12.1899 06:01:00");
    EXPECT_EQ(H::Format(t, "%H:%M:%S", H::eRoundNone), "06:00:59");
    EXPECT_EQ(H::Format(COleDateTime(1e12), "%Y"), "Invalid DateTime");
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    EXPECT_EQ(H::Format(null, "%Y"), "");
}

TEST_F(TimeTest, PhysicalRangesInEveryForm)
{
    ScopedZone zone("America/New_York");
    const struct
    {
        H::eRangeType type;
        double earliest, latest;
    } ranges[] = {
        {H::eRangeCOleDateTime, -642416.0, 2973483.0},
        {H::eRangeDateTimeCtrl, -94187.0, 2973483.0},
        {H::eRangeCTime, 40588.0, 62519.0 + 86399.0 / 86400},
        {static_cast<H::eRangeType>(7), 40588.0, 62519.0 + 86399.0 / 86400},
    };
    for (const auto& r : ranges) {
        SCOPED_TRACE(r.type);
        double e = 0, l = 0;
        H::GetPhysicalRange(e, l, r.type);
        EXPECT_NEAR(e, r.earliest, 1e-9);
        EXPECT_NEAR(l, r.latest, 1e-9);
        CTime ce, cl;
        H::GetPhysicalRange(ce, cl, r.type);
        EXPECT_NEAR(H::GetMjd(ce), r.earliest, 1e-9);
        EXPECT_NEAR(H::GetMjd(cl), r.latest, 1e-9);
        CNyrTime ne, nl;
        H::GetPhysicalRange(ne, nl, r.type);
        EXPECT_EQ(ne.GetTime(), ce);
        COleDateTime oe, ol;
        H::GetPhysicalRange(oe, ol, r.type);
        EXPECT_NEAR(H::GetMjd(oe), r.earliest, 1e-9);
        EXPECT_NEAR(H::GetMjd(ol), r.latest, 1e-6);
        SYSTEMTIME se, sl;
        H::GetPhysicalRange(se, sl, r.type);
        EXPECT_NEAR(CNyrTime::Mjd(se.wYear, se.wMonth, se.wDay, se.wHour, se.wMinute, se.wSecond), r.earliest, 1e-9);
        EXPECT_EQ(sl.wDayOfWeek, (static_cast<long>(std::floor(r.latest)) + 3) % 7);  // MJD 0 was a Wednesday
    }
    CTime e, l;
    H::GetPhysicalRange(e, l, H::eRangeCTime);
    EXPECT_EQ(l.GetTime(), 1895011199 + 5 * 3600);  // local New York time
}

TEST_F(TimeTest, FileStampsKeepTheFractionToTheTick)
{
    ScopedZone zone("Europe/Berlin");
    CNyrTime t(2024, 7, 1, 12, 0, 0);
    t.SetFracSecond(0.1234567);
    const FILETIME stamp = t.CduFilestamp();
    // 2024-07-01 10:00:00 UTC in 100-ns ticks since 1601.
    EXPECT_EQ(NyrFileTimeTicks(stamp), (1719828000ULL + 11644473600ULL) * 10000000ULL + 1234567);
    CNyrTime back;
    EXPECT_DOUBLE_EQ(back.SetCduFilestamp(stamp), t.Mjd());
    EXPECT_EQ(back.GetTime(), t.GetTime());
    EXPECT_NEAR(back.GetFracSecond(), 0.1234567, 1e-12);
    EXPECT_EQ(CNyrTime(stamp).GetTime(), t.GetTime());
    EXPECT_EQ(back.SetCduFilestamp(NyrFileTimeFromTicks(~0ULL)), 0.0);
    EXPECT_EQ(back.GetTime().GetTime(), 0);
    EXPECT_EQ(NyrFileTimeTicks(CNyrTime(CTime(-11644473601LL)).CduFilestamp()), 0u);
}

}  // namespace

// The comparison orders by cached local clock readings instead of MJDs; it
// must answer exactly as the MJD comparison does: in every zone, after the
// zone changes, across clock changes, near the ends of the range and where
// fractions of a second decide.
namespace {

// NyrCompare both ways against the comparison of the MJDs.
void ExpectMjdOrder(int64_t sa, int64_t sb)
{
    const CNyrTime a(sa), b(sb);
    const double ma = a.Mjd(), mb = b.Mjd();
    const int expected = ma < mb ? -1 : (mb < ma ? 1 : 0);
    EXPECT_EQ(NyrCompare(a, b), expected) << sa << " " << sb;
    EXPECT_EQ(NyrCompare(b, a), -expected) << sa << " " << sb;
}

}  // namespace

TEST(TimeCompare, AnswersExactlyAsTheMjdComparison)
{
    const int64_t kDay = 86400;
    // Sitka went back a whole day when Alaska changed hands in 1867: there,
    // a later instant can have the earlier local time.
    const int64_t starts[] = {0, 1711846800 /* Berlin spring change */, 1729990800 /* fall back */,
                              -3225223727 - 12 * 3600 /* Sitka, 1867 */, -3225223727 - 600 /* mid-hour */,
                              -62135596800 + kDay, 253402300799 - 4 * kDay};
    const int64_t gaps[] = {0, 1, 2, 1200, 3599, 3600, 20 * 3600, kDay + 3600, 3 * kDay, 400 * kDay};
    const double fractions[] = {0.0, 0.5, 0.9999999999};
    for (const char* zone : {"UTC", "Europe/Berlin", "America/Sitka", "Asia/Kolkata", "UTC"}) {
        nyr::test::ScopedZone scoped(zone);
        for (int64_t start : starts) {
            for (int64_t gap : gaps) {
                for (int64_t sign : {-1, 1}) {
                    CNyrTime a(start), b(start + sign * gap);
                    for (double fa : fractions) {
                        a.SetFracSecond(fa);
                        b.SetFracSecond(fractions[0]);
                        const double ma = a.Mjd(), mb = b.Mjd();
                        const int expected = ma < mb ? -1 : (mb < ma ? 1 : 0);
                        EXPECT_EQ(NyrCompare(a, b), expected) << zone << " " << start << " " << sign * gap << " " << fa;
                        EXPECT_EQ(NyrCompare(b, a), -expected) << zone << " " << start << " " << sign * gap;
                    }
                }
            }
        }
    }
}

// Comparisons remember stretches of days with one offset; none may reach
// over a clock change. Casablanca's clocks went back for Ramadan in 2013 and
// forward again 34 days later, to the same offset as before.
TEST(TimeCompare, KnowsEveryClockChangeWhateverWasComparedBefore)
{
    const int64_t kHour = 3600;
    const int64_t ramadanStart = 1373162400;  // 2013-07-07 02:00 UTC: 02:59:59 +01 becomes 02:00 +00
    const int64_t ramadanEnd = 1376100000;    // 2013-08-10 02:00 UTC: 01:59:59 +00 becomes 03:00 +01
    ScopedZone zone("Africa/Casablanca");
    // Days before, then days after the break, both at +01...
    ExpectMjdOrder(ramadanStart - 4 * 24 * kHour, ramadanStart - 4 * 24 * kHour + kHour);
    ExpectMjdOrder(ramadanEnd + 2 * 24 * kHour, ramadanEnd + 2 * 24 * kHour + kHour);
    // ...and then the hour that came twice: 02:30 +01 before 02:10 +00.
    ExpectMjdOrder(ramadanStart - 30 * 60, ramadanStart + 10 * 60);
    // A sweep through the whole break, at every distance that matters.
    const int64_t gaps[] = {1, 2, 1500, 4800, 30 * kHour, 49 * kHour};
    for (int64_t t = ramadanStart - 3 * 24 * kHour; t < ramadanEnd + 3 * 24 * kHour; t += 5 * kHour + 17) {
        for (int64_t gap : gaps)
            ExpectMjdOrder(t, t + gap);
    }
}

// A zone whose clocks go back from UTC+0 to UTC-1 at 00:00 UTC: the days on
// either side of the change are whole days of different offsets.
TEST(TimeCompare, KeepsDaysOfDifferentOffsetsApart)
{
    const int64_t change = 1729987200;  // 2024-10-27 00:00 UTC
    ScopedZone zone("XST1XDT0,M3.5.0/0,M10.5.0/0");
    ExpectMjdOrder(change - 6 * 3600, change - 5 * 3600);    // the day before
    ExpectMjdOrder(change + 12 * 3600, change + 13 * 3600);  // the day after
    ExpectMjdOrder(change - 10 * 60, change + 20 * 60);      // 23:50 +00 after 23:20 -01
}

TEST(TimeCompare, ManyZoneRefreshesNeverReviveOldOffsets)
{
    // Berlin's fall back, 2024-10-27 01:00 UTC: 02:30 CEST comes before 02:10 CET.
    const int64_t fallBack = 1729990800, a = fallBack - 30 * 60, b = fallBack + 10 * 60;
    {
        // In UTC the days around it are plain days of one offset.
        ScopedZone utc("UTC");
        for (int64_t t = fallBack - 2 * 86400; t < fallBack + 2 * 86400; t += 3600)
            ExpectMjdOrder(t, t + 1800);
    }
    ScopedZone berlin("Europe/Berlin");
    for (int i = 0; i < 1100; ++i) {
        ASSERT_EQ(NyrCompare(CNyrTime(a), CNyrTime(b)), 1) << "after " << i << " more refreshes";
        CNyrTime::RefreshSystemTimezone();
    }
}

// The offset caches are shared by all threads without locks: threads that
// compare different stretches of time at once, filling and replacing each
// other's entries, still all answer as the MJDs do.
TEST(TimeCompare, ThreadsShareTheOffsetCachesAndAgree)
{
    ScopedZone zone("Europe/Berlin");
    struct Pair
    {
        int64_t a, b;
        int expected;
    };
    std::vector<Pair> pairs;
    std::mt19937_64 rng(11);
    for (int i = 0; i < 20000; ++i) {
        // Near pairs over forty years: more days than the day table holds.
        const int64_t a = 631152000 + static_cast<int64_t>(rng() % 1262304000);
        const int64_t b = a + static_cast<int64_t>(rng() % 360000) - 180000;
        const double ma = CNyrTime(a).Mjd(), mb = CNyrTime(b).Mjd();
        pairs.push_back({a, b, ma < mb ? -1 : (mb < ma ? 1 : 0)});
    }
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t) {
        threads.emplace_back([&pairs, &wrong, t] {
            std::vector<Pair> mine = pairs;
            std::shuffle(mine.begin(), mine.end(), std::mt19937(t));
            // Half of the threads sort by time first, so that they walk the
            // days in order and keep growing the run.
            if (t % 2 == 0)
                std::sort(mine.begin(), mine.end(), [](const Pair& x, const Pair& y) { return x.a < y.a; });
            for (int round = 0; round < 3; ++round) {
                for (const Pair& p : mine)
                    wrong += NyrCompare(CNyrTime(p.a), CNyrTime(p.b)) != p.expected ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
}
