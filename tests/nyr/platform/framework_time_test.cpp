#include "nyr/platform/framework_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "nyr/platform/system_time.h"
#include "tests/nyr/time/scoped_zone_p.h"

namespace {

using nyr::test::ScopedZone;

// 2024-07-01 10:00:00 UTC: seconds since 1970 and 100-ns ticks since 1601.
constexpr int64_t kSummerNoonUtc = 1719828000;
constexpr uint64_t kSummerNoonTicks = (1719828000ULL + 11644473600ULL) * 10000000ULL;

TEST(FrameworkTime, FileTimeAndSystemTimeConvertExactlyAndRefuseWhatDoesNotFit)
{
    SYSTEMTIME st;
    ASSERT_TRUE(NyrFileTimeToSystemTime(NyrFileTimeFromTicks(kSummerNoonTicks + 1234567), st));
    EXPECT_EQ(st.wYear, 2024);
    EXPECT_EQ(st.wMonth, 7);
    EXPECT_EQ(st.wDay, 1);
    EXPECT_EQ(st.wDayOfWeek, 1);  // a Monday
    EXPECT_EQ(st.wHour, 10);
    EXPECT_EQ(st.wMinute, 0);
    EXPECT_EQ(st.wSecond, 0);
    EXPECT_EQ(st.wMilliseconds, 123);
    FILETIME ft;
    ASSERT_TRUE(NyrSystemTimeToFileTime(st, ft));
    EXPECT_EQ(NyrFileTimeTicks(ft), kSummerNoonTicks + 1230000);

    ASSERT_TRUE(NyrFileTimeToSystemTime(FILETIME{}, st));
    EXPECT_EQ(st.wYear, 1601);
    EXPECT_EQ(st.wDayOfWeek, 1);  // 1601-01-01 was a Monday
    EXPECT_FALSE(NyrFileTimeToSystemTime(NyrFileTimeFromTicks(1ULL << 63), st));

    const SYSTEMTIME bad[] = {{2023, 2, 0, 29, 0, 0, 0, 0}, {1600, 12, 0, 31, 0, 0, 0, 0},
                              {2024, 1, 0, 1, 24, 0, 0, 0}, {2024, 1, 0, 1, 0, 0, 0, 1000}};
    for (const SYSTEMTIME& b : bad) {
        FILETIME untouched{7, 7};
        EXPECT_FALSE(NyrSystemTimeToFileTime(b, untouched)) << b.wYear << "-" << b.wMonth << "-" << b.wDay;
        EXPECT_EQ(untouched.dwLowDateTime, 7u);
    }
}

TEST(FrameworkTime, LocalFileTimesUseTheOffsetInForceAtThatInstant)
{
    ScopedZone zone("Europe/Berlin");
    const struct
    {
        uint64_t utcTicks;
        int64_t offsetHours;
    } cases[] = {{kSummerNoonTicks, 2}, {kSummerNoonTicks - 180ULL * 86400 * 10000000, 1}};
    for (const auto& c : cases) {
        FILETIME local, back;
        ASSERT_TRUE(NyrFileTimeToLocalFileTime(NyrFileTimeFromTicks(c.utcTicks + 5), local));
        EXPECT_EQ(NyrFileTimeTicks(local), c.utcTicks + 5 + c.offsetHours * 3600 * 10000000ULL);
        ASSERT_TRUE(NyrLocalFileTimeToFileTime(local, back));
        EXPECT_EQ(NyrFileTimeTicks(back), c.utcTicks + 5);
    }
}

TEST(FrameworkTime, DosWordsPackTwoSecondStampsFrom1980To2107)
{
    FILETIME ft;
    // 2024-07-01 12:34:56: (44 << 9 | 7 << 5 | 1), (12 << 11 | 34 << 5 | 28)
    const uint16_t date = 44 << 9 | 7 << 5 | 1, time = 12 << 11 | 34 << 5 | 28;
    ASSERT_TRUE(NyrDosDateTimeToFileTime(date, time, ft));
    SYSTEMTIME st;
    ASSERT_TRUE(NyrFileTimeToSystemTime(ft, st));
    EXPECT_EQ((std::tuple{st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond}),
              (std::tuple<uint16_t, uint16_t, uint16_t, uint16_t, uint16_t, uint16_t>{2024, 7, 1, 12, 34, 56}));
    uint16_t d2 = 0, t2 = 0;
    ASSERT_TRUE(NyrFileTimeToDosDateTime(ft, d2, t2));
    EXPECT_EQ(d2, date);
    EXPECT_EQ(t2, time);
    EXPECT_FALSE(NyrDosDateTimeToFileTime(0, 0, ft));                // month and day 0
    EXPECT_FALSE(NyrDosDateTimeToFileTime(44 << 9 | 2 << 5 | 30, 0, ft));  // 30 February
    EXPECT_FALSE(NyrDosDateTimeToFileTime(date, 24 << 11, ft));
    ASSERT_TRUE(NyrSystemTimeToFileTime(SYSTEMTIME{1979, 12, 0, 31, 0, 0, 0, 0}, ft));
    EXPECT_FALSE(NyrFileTimeToDosDateTime(ft, d2, t2));

    ScopedZone zone("America/New_York");
    const CTime stamp(date, time);
    EXPECT_EQ(stamp.GetHour(), 12);
    EXPECT_EQ(stamp.GetTime(), 1719851696);  // 16:34:56 UTC
}

TEST(FrameworkTime, CTimeBreaksDownLocallyAndRefusesFieldsThatNameNoInstant)
{
    ScopedZone zone("Asia/Kolkata");
    const CTime t(2024, 7, 1, 15, 30, 0);
    EXPECT_EQ(t.GetTime(), kSummerNoonUtc);
    EXPECT_EQ((std::tuple{t.GetYear(), t.GetMonth(), t.GetDay(), t.GetHour(), t.GetMinute(), t.GetSecond()}),
              (std::tuple{2024, 7, 1, 15, 30, 0}));
    EXPECT_EQ(t.GetDayOfWeek(), 2);  // Monday, counted from Sunday = 1
    SYSTEMTIME st;
    ASSERT_TRUE(t.GetAsSystemTime(st));
    EXPECT_EQ(CTime(st), t);
    EXPECT_EQ(CTime(NyrFileTimeFromTicks(kSummerNoonTicks + 9999999)), t);  // the fraction is dropped
    EXPECT_EQ(CTime(2024, 2, 30, 0, 0, 0).GetTime(), 0);
    EXPECT_EQ(CTime(2024, 1, 1, 0, 0, 60).GetTime(), 0);
    EXPECT_EQ(CTime(NyrFileTimeFromTicks(~0ULL)).GetTime(), 0);

    const CTime far(int64_t{1} << 45);
    struct tm fields {};
    EXPECT_FALSE(far.GetLocalTm(fields));
    EXPECT_EQ(far.GetYear(), 0);
    EXPECT_FALSE(far.GetAsSystemTime(st));

    EXPECT_EQ((CTime(100) - CTime(40)).GetTimeSpan(), 60);
    EXPECT_EQ(CTime(100) + CTimeSpan(0, 1, 0, 0), CTime(3700));
}

TEST(FrameworkTime, TimeSpanComponentsAndFormatter)
{
    const CTimeSpan span(2, 1, 5, 7);
    EXPECT_EQ(span.GetTimeSpan(), 2 * 86400 + 3600 + 5 * 60 + 7);
    EXPECT_EQ(span.GetDays(), 2);
    EXPECT_EQ(span.GetHours(), 1);
    EXPECT_EQ(span.GetTotalHours(), 49);
    EXPECT_EQ(span.GetMinutes(), 5);
    EXPECT_EQ(span.GetTotalMinutes(), 49 * 60 + 5);
    EXPECT_EQ(span.GetSeconds(), 7);
    EXPECT_EQ(span.Format("%D days %H:%M:%S 100%% %x %"), "2 days 01:05:07 100% %x %");
    EXPECT_EQ(CTimeSpan(-3661).Format("%D %H:%M:%S"), "0 -1:-1:-1");
}

TEST(FrameworkTime, OleDatesCountBackwardsWithAForwardFractionBeforeDayZero)
{
    const struct
    {
        double oleValue;
        int y, m, d, h, mi, s;
        double linear;
    } cases[] = {
        {0.0, 1899, 12, 30, 0, 0, 0, 0.0},
        {-1.25, 1899, 12, 29, 6, 0, 0, -0.75},
        {-0.5, 1899, 12, 30, 12, 0, 0, 0.5},
        {45474.75, 2024, 7, 1, 18, 0, 0, 45474.75},
        {-657434.0, 100, 1, 1, 0, 0, 0, -657434.0},
        {2958465.5, 9999, 12, 31, 12, 0, 0, 2958465.5},
        {1.0 / 86400 * 0.6, 1899, 12, 30, 0, 0, 1, 0.6 / 86400},  // fields round to the nearest second
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.oleValue);
        const COleDateTime t(c.oleValue);
        ASSERT_EQ(t.GetStatus(), COleDateTime::valid);
        EXPECT_EQ((std::tuple{t.GetYear(), t.GetMonth(), t.GetDay(), t.GetHour(), t.GetMinute(), t.GetSecond()}),
                  (std::tuple{c.y, c.m, c.d, c.h, c.mi, c.s}));
        EXPECT_DOUBLE_EQ(t.GetLinearDays(), c.linear);
        COleDateTime fromLinear;
        fromLinear.SetLinearDays(c.linear);
        EXPECT_DOUBLE_EQ(fromLinear.m_dt, c.oleValue == -0.5 ? 0.5 : c.oleValue);
    }
    // Order and arithmetic follow the line, not the raw value.
    EXPECT_LT(COleDateTime(-1.25), COleDateTime(-1.5) + COleDateTimeSpan(0.5));
    EXPECT_GT(COleDateTime(-1.5), COleDateTime(-1.25));
    EXPECT_DOUBLE_EQ((COleDateTime(1.0) - COleDateTime(-1.25)).GetTotalDays(), 1.75);
    EXPECT_DOUBLE_EQ((COleDateTime(0.25) - COleDateTimeSpan(1.0)).m_dt, -1.25);  // 1899-12-29 06:00

    for (double bad : {-657435.0, 2958466.0, double{NAN}, double{INFINITY}})
        EXPECT_EQ(COleDateTime(bad).GetStatus(), COleDateTime::invalid) << bad;
    COleDateTime t;
    EXPECT_EQ(t.SetDateTime(99, 12, 31, 0, 0, 0), 1);
    EXPECT_EQ(t.GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(t.GetYear(), -1);
    EXPECT_EQ((t + COleDateTimeSpan(1.0)).GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(COleDateTime(2024, 2, 29, 0, 0, 0).GetDayOfYear(), 60);
    EXPECT_EQ(COleDateTime(2024, 7, 1, 0, 0, 0).GetDayOfWeek(), 2);
}

TEST(FrameworkTime, OleDatesFromOtherKindsAreLocalReadings)
{
    ScopedZone zone("Europe/Berlin");
    const COleDateTime fromCTime{CTime(kSummerNoonUtc)};
    EXPECT_EQ(fromCTime.GetHour(), 12);
    const COleDateTime fromFile(NyrFileTimeFromTicks(kSummerNoonTicks + 5000000));
    EXPECT_NEAR(fromFile.GetLinearDays(), 45474.5 + 0.5 / 86400, 1e-9);
    const COleDateTime fromSystem(SYSTEMTIME{2024, 7, 0, 1, 12, 0, 0, 250});
    EXPECT_NEAR(fromSystem.GetLinearDays(), 45474.5 + 0.25 / 86400, 1e-9);
    SYSTEMTIME st;
    ASSERT_TRUE(fromSystem.GetAsSystemTime(st));
    EXPECT_EQ(st.wHour, 12);

    const COleDateTimeSpan span(1, 2, 3, 4);
    EXPECT_EQ((std::tuple{span.GetDays(), span.GetHours(), span.GetMinutes(), span.GetSeconds()}),
              (std::tuple{1L, 2, 3, 4}));
    COleDateTimeSpan null;
    null.SetStatus(COleDateTimeSpan::null);
    EXPECT_EQ((span + null).GetStatus(), COleDateTimeSpan::null);
}

}  // namespace
