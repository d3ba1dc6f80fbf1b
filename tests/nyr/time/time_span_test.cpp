#include "nyr/time/time_span.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <tuple>

namespace {

using S = CNyrTimeSpanHelper;

TEST(TimeSpan, FormatShowsTotalHoursForEitherHourToken)
{
    const CNyrTimeSpan twoDays(2, 1, 5, 7);
    CNyrTimeSpan withFraction(0L, 0, 0, 59);
    withFraction.SetFracSecond(0.6);
    const struct
    {
        CNyrTimeSpan span;
        const char* pattern;
        int flag;
        const char* text;
    } cases[] = {
        {twoDays, "%h:%M:%S", 0, "49:05:07"},
        {twoDays, "%D %H:%M:%S", 0, "2 49:05:07"},  // "%H" stands for total hours too, intended
        {twoDays, "%D days, %h h", 0, "2 days, 49 h"},
        {twoDays, "%h:%M / %h", 0, "49:05 / 49"},
        {twoDays, "%D %M:%S", 0, "2 05:07"},
        {twoDays, "100%% %h", 0, "100% 49"},
        {CNyrTimeSpan(0L), "%h:%M:%S", 0, "0:00:00"},  // no leading zero on the hours
        {withFraction, "%h:%M:%S", 0, "0:01:00"},
        {withFraction, "%h:%M:%S", 3, "0:00:59"},
        {withFraction, "%h:%M", 1, "0:01"},
        {CNyrTimeSpan(2147483647L), "%h:%M:%S", 0, "596523:14:07"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        EXPECT_EQ(c.span.Format(c.pattern, c.flag), c.text);
        EXPECT_EQ(S::Format(c.span.GetTimeSpan(), c.pattern, static_cast<S::eRoundFlag>(c.flag)),
                  S::Format(CNyrTimeSpan(c.span.GetTimeSpan()), c.pattern, static_cast<S::eRoundFlag>(c.flag)));
    }
    EXPECT_EQ(S::Format(COleDateTimeSpan(2.0 + (3600 + 5 * 60 + 7) / 86400.0), "%h:%M:%S"), "49:05:07");
    COleDateTimeSpan invalid(1.0);
    invalid.SetStatus(COleDateTimeSpan::invalid);
    EXPECT_EQ(S::Format(invalid, "%h"), "");
    EXPECT_EQ(S::Format(COleDateTimeSpan(DBL_MAX), "%h"), "");
}

TEST(TimeSpan, DayCountsSplitIntoDaysHoursMinutesSeconds)
{
    const struct
    {
        double days;
        long d, h, m, s;
        double fraction;
    } cases[] = {
        {1.5, 1, 12, 0, 0, 0.0},
        {37.0 / 86400, 0, 0, 0, 37, 0.0},  // whole seconds stay whole
        {2 + (3600 * 5 + 60 * 6 + 7.25) / 86400, 2, 5, 6, 7, 0.25},
        {-1.25, -1, -6, 0, 0, 0.0},  // toward zero, the sign on every part
        {0.0, 0, 0, 0, 0, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.days);
        long d = 9, h = 9, m = 9, s = 9;
        double f = 9;
        ASSERT_TRUE(S::Mjd2Hms(c.days, d, h, m, s, f));
        EXPECT_EQ((std::tuple{d, h, m, s}), (std::tuple{c.d, c.h, c.m, c.s}));
        EXPECT_NEAR(f, c.fraction, 1e-9);
    }
    long d, h, m, s;
    double f;
    EXPECT_FALSE(S::Mjd2Hms(NAN, d, h, m, s, f));
    EXPECT_FALSE(S::Mjd2Hms(1e300, d, h, m, s, f));

    const CNyrTimeSpan dayAndHalf(1.5);
    EXPECT_EQ(dayAndHalf.GetTimeSpan().GetTimeSpan(), 129600);
    EXPECT_EQ(dayAndHalf.GetFracSecond(), 0.0);
    const CNyrTimeSpan tiny(0.25 / 86400);
    EXPECT_EQ(tiny.GetTimeSpan().GetTimeSpan(), 0);
    EXPECT_DOUBLE_EQ(tiny.GetFracSecond(), 0.25);
    EXPECT_DOUBLE_EQ(tiny.Mjd(), 0.25 / 86400);
    const CNyrTimeSpan negative(-0.25 / 86400);  // the fraction stays in [0, 1)
    EXPECT_EQ(negative.GetTimeSpan().GetTimeSpan(), -1);
    EXPECT_DOUBLE_EQ(negative.GetFracSecond(), 0.75);
    EXPECT_EQ(CNyrTimeSpan(INFINITY).Mjd(), 0.0);
    COleDateTimeSpan ole;
    EXPECT_FALSE(S::SetMjd(NAN, ole));
    EXPECT_EQ(ole.GetStatus(), COleDateTimeSpan::invalid);
}

TEST(TimeSpan, GpsSpansConvertWithoutChecks)
{
    int week = -1;
    double seconds = -1;
    EXPECT_TRUE(CNyrTimeSpan(8.0).GetGpsTimeSpan(week, seconds));
    EXPECT_EQ(week, 1);
    EXPECT_DOUBLE_EQ(seconds, 86400);
    EXPECT_TRUE(CNyrTimeSpan(-8.0).GetGpsTimeSpan(week, seconds));  // checks nothing
    EXPECT_EQ(week, -1);
    EXPECT_DOUBLE_EQ(seconds, -86400);
    const CNyrTimeSpan gps(3, 1234.5);
    EXPECT_EQ(gps.GetTimeSpan().GetTimeSpan(), 3 * 604800 + 1234);
    EXPECT_EQ(gps.GetFracSecond(), 0.0);  // only the day-count constructor keeps a fraction
    CNyrTimeSpan set;
    set.SetGpsTimeSpan(3, 1234.5);
    EXPECT_DOUBLE_EQ(set.GetFracSecond(), 0.5);
}

TEST(TimeSpan, AdditionStaysWithinTheRangeOfItsKind)
{
    CNyrTimeSpan longest(2147483647L);
    EXPECT_FALSE(S::AddTimeSpan(longest, CNyrTimeSpan(1L)));
    EXPECT_EQ(longest.GetTimeSpan().GetTimeSpan(), 2147483647);

    CNyrTimeSpan a(10L);
    a.SetFracSecond(0.5);
    CNyrTimeSpan b(5L);
    b.SetFracSecond(0.75);
    EXPECT_TRUE(S::AddTimeSpan(a, b));
    EXPECT_EQ(a.GetTimeSpan().GetTimeSpan(), 15);
    EXPECT_EQ(a.GetFracSecond(), 0.5);  // b's fraction is not added, intended
    EXPECT_TRUE(S::SubtractTimeSpan(a, CNyrTimeSpan(15L)));
    EXPECT_FALSE(S::SubtractTimeSpan(a, CNyrTimeSpan(1L)));
    EXPECT_EQ(a.GetTimeSpan().GetTimeSpan(), 0);

    const struct
    {
        bool (*add)(CTimeSpan&, long);
        int64_t start;
        long count;
        bool ok;
        int64_t result;
    } cases[] = {
        {S::AddSeconds, 0, 2147483647, true, 2147483647},   {S::AddSeconds, 1, 2147483647, false, 1},
        {S::AddMinutes, 0, 35791394, true, 2147483640},     {S::AddMinutes, 0, 35791395, false, 0},
        {S::AddHours, 7200, -2, true, 0},                   {S::AddHours, 7199, -2, false, 7199},
        {S::AddDays, 0, 24855, true, 24855 * 86400LL},      {S::AddDays, 0, 24856, false, 0},
        {S::AddDays, 0, 1L << 62, false, 0},                {S::AddSeconds, 5, -(1L << 62), false, 5},
    };
    for (const auto& c : cases) {
        CTimeSpan span(c.start);
        EXPECT_EQ(c.add(span, c.count), c.ok) << c.start << " + " << c.count;
        EXPECT_EQ(span.GetTimeSpan(), c.result);
    }

    const struct
    {
        S::eRangeType range;
        double start;
        long hours;
        bool ok;
    } ole[] = {
        {S::eRangeTimeSpanCtrl, 0.5, 11, true},  {S::eRangeTimeSpanCtrl, 0.5, 12, false},
        {S::eRangeCTimeSpan, 24000.0, 20000, true}, {S::eRangeCTimeSpan, 24000.0, 21000, false},
        {S::eRangeCOleDateTimeSpan, 1e10, 1, true}, {S::eRangeCOleDateTimeSpan, 0.0, -1, false},
    };
    for (const auto& c : ole) {
        COleDateTimeSpan span(c.start);
        EXPECT_EQ(S::AddHours(span, c.hours, c.range), c.ok) << c.range << " " << c.start << " + " << c.hours;
        EXPECT_EQ(span.GetTotalDays() != c.start, c.ok);
    }
    COleDateTimeSpan x(1.0), y(0.25);
    EXPECT_TRUE(S::SubtractTimeSpan(x, y, S::eRangeCOleDateTimeSpan));
    EXPECT_DOUBLE_EQ(x.GetTotalDays(), 0.75);
    y.SetStatus(COleDateTimeSpan::null);
    EXPECT_FALSE(S::AddTimeSpan(x, y, S::eRangeCOleDateTimeSpan));
}

TEST(TimeSpan, RangesAndRounding)
{
    double shortest = -1, longest = -1;
    S::GetPhysicalRange(shortest, longest, S::eRangeCTimeSpan);
    EXPECT_EQ(longest, 2147483647.0);  // seconds in this form, intended
    S::GetPhysicalRangeMjd(shortest, longest, S::eRangeCTimeSpan);
    EXPECT_DOUBLE_EQ(longest, 2147483647.0 / 86400);
    S::GetPhysicalRange(shortest, longest, S::eRangeTimeSpanCtrl);
    EXPECT_DOUBLE_EQ(longest, 86399.0 / 86400);
    S::GetPhysicalRange(shortest, longest, S::eRangeCOleDateTimeSpan);
    EXPECT_EQ(shortest, 0.0);
    EXPECT_EQ(longest, DBL_MAX);
    CTimeSpan a, b;
    S::GetPhysicalRange(a, b, static_cast<S::eRangeType>(9));
    EXPECT_EQ(b.GetTimeSpan(), 2147483647);
    CNyrTimeSpan na, nb;
    S::GetPhysicalRange(na, nb, S::eRangeTimeSpanCtrl);
    EXPECT_EQ(nb.GetTimeSpan().GetTimeSpan(), 86399);
    COleDateTimeSpan oa, ob;
    S::GetPhysicalRange(oa, ob, S::eRangeCTimeSpan);
    EXPECT_DOUBLE_EQ(ob.GetTotalDays(), 2147483647.0 / 86400);

    const struct
    {
        int64_t seconds;
        double fraction;
        int flag;
        int64_t expectedSeconds;
        double expectedFraction;
    } rounding[] = {
        {89, 0.5, S::eRoundSecond, 90, 0},     {89, 0.2, S::eRoundMinute, 60, 0},
        {90, 0.0, S::eRoundMinute, 120, 0},    {5399, 0.0, S::eRoundHour, 3600, 0},
        {5400, 0.0, S::eRoundHour, 7200, 0},   {1, 0.1234, S::eRoundThousandth, 1, 0.123},
        {1, 0.96, S::eRoundTenth, 2, 0},       {1, 0.7, 128 | S::eRoundSecond, 2, 0},
        {1, 0.7, 9, 1, 0.7},
        {2147483647, 0.7, S::eRoundSecond, 2147483647, 0.7},  // the carry would leave the range
    };
    for (const auto& r : rounding) {
        SCOPED_TRACE(testing::Message() << r.seconds << " + " << r.fraction << " flag " << r.flag);
        CNyrTimeSpan span(static_cast<long>(r.seconds));
        span.SetFracSecond(r.fraction);
        EXPECT_DOUBLE_EQ(span.Round(r.flag), (r.expectedSeconds + r.expectedFraction) / 86400);
        EXPECT_EQ(span.GetTimeSpan().GetTimeSpan(), r.expectedSeconds);
        EXPECT_NEAR(span.GetFracSecond(), r.expectedFraction, 1e-12);
        COleDateTimeSpan ole((r.seconds + r.fraction) / 86400);
        if (r.seconds < 2147483647) {
            EXPECT_NEAR(S::Round(ole, static_cast<S::eRoundFlag>(r.flag)) * 86400,
                        r.expectedSeconds + r.expectedFraction, 1e-6);
        }
    }
}

}  // namespace
