#pragma once

#include <string>

#include "nyr/frame/resource_module.h"
#include "nyr/platform/export.h"
#include "nyr/platform/framework_time.h"
#include "nyr/time/time_helper.h"

// A duration: whole seconds (a CTimeSpan) and a fraction of a second
// 0 <= f < 1. Its numeric form is a day count (the span's "MJD"). Spans are
// meant to be non-negative; the range checks of CNyrTimeSpanHelper keep them
// so.
class NYR_EXPORT CNyrTimeSpan
{
public:
    CNyrTimeSpan() = default;
    CNyrTimeSpan(const CTimeSpan& span);  // NOLINT(google-explicit-constructor): a CTimeSpan is a CNyrTimeSpan without fraction
    CNyrTimeSpan(long seconds);  // NOLINT(google-explicit-constructor): a count of seconds is a span
    CNyrTimeSpan(int seconds) : CNyrTimeSpan(static_cast<long>(seconds)) {}  // NOLINT(google-explicit-constructor): CNyrTimeSpan(60) is 60 s
    CNyrTimeSpan(long days, int hours, int minutes, int seconds);
    // Split by Mjd2Hms: the whole seconds to the span, the rest to the
    // fraction (1.5 gives 129600 s and fraction 0). A day count that is not
    // finite or beyond 2^40 days gives 0.
    explicit CNyrTimeSpan(double days);
    CNyrTimeSpan(int gpsWeek, const double& gpsSecondsOfWeek);  // see SetGpsTimeSpan

    const CTimeSpan& GetTimeSpan() const { return m_span; }
    void SetTimeSpan(const CTimeSpan& span) { m_span = span; }
    double GetFracSecond() const { return m_fracSecond; }
    // Kept in [0, 1): values outside (or not finite) give 0.
    void SetFracSecond(double fraction);

    // Days: fraction / 86400 + seconds / 86400.
    double Mjd() const;
    operator double() const { return Mjd(); }  // NOLINT(google-explicit-constructor): the numeric form, in days
    void Mjd(double days);

    // 7 w + s / 86400 days.
    void SetGpsTimeSpan(int week, const double& secondsOfWeek);
    // Week (truncated toward zero) and seconds of week; always true (a span
    // checks nothing, unlike a time point).
    bool GetGpsTimeSpan(int& week, double& secondsOfWeek) const;

    // Rounds in place (CNyrTimeSpanHelper::Round) and returns the day count.
    double Round(int flag);

    // See CNyrTimeSpanHelper::Format. The second form takes the pattern from
    // text `id` of `module`.
    std::string Format(const std::string& pattern, int round = CNyrTimeHelper::eRoundSecond) const;
    std::string Format(NyrResourceHandle module, unsigned id, int round = CNyrTimeHelper::eRoundSecond) const;

    bool operator==(const CNyrTimeSpan& other) const
    {
        return m_span == other.m_span && m_fracSecond == other.m_fracSecond;
    }
    bool operator<(const CNyrTimeSpan& other) const
    {
        return m_span < other.m_span || (m_span == other.m_span && m_fracSecond < other.m_fracSecond);
    }

private:
    CTimeSpan m_span;
    double m_fracSecond = 0.0;
};

// Static operations on CNyrTimeSpan, CTimeSpan and COleDateTimeSpan.
class NYR_EXPORT CNyrTimeSpanHelper
{
public:
    // The rounding flags of time points, applied to the span's seconds and
    // fraction (seconds and minutes of a span: its whole seconds mod 60 and
    // whole minutes mod 60).
    using eRoundFlag = CNyrTimeHelper::eRoundFlag;
    using enum CNyrTimeHelper::eRoundFlag;

    enum eRangeType : int {
        eRangeCOleDateTimeSpan = 0,  // 0 .. 1.7976931348623157e308 days
        eRangeTimeSpanCtrl = 1,      // 0 .. 0 days 23:59:59
        eRangeCTimeSpan = 2,         // 0 .. 2147483647 s (also any other value)
    };

    static double GetMjd(const CTimeSpan& span);
    static double GetMjd(const CNyrTimeSpan& span);
    static double GetMjd(const COleDateTimeSpan& span);  // 0.0 unless valid
    // False (and a zero span, or status invalid) for a day count that is not
    // finite or beyond 2^40 days. CTimeSpan drops the fraction (toward the
    // earlier second); CNyrTimeSpan keeps it in [0, 1).
    static bool SetMjd(double days, CTimeSpan& span);
    static bool SetMjd(double days, CNyrTimeSpan& span);
    static bool SetMjd(double days, COleDateTimeSpan& span);
    // Days truncated toward zero, then of the rest: hours, minutes, seconds
    // and the fraction of the second (resolved as CNyrTimeHelper::Mjd2Ymd
    // resolves it, so whole seconds stay whole). All
    // parts carry the sign of a negative count. False, all 0, for a count
    // that is not finite or beyond 2^40 days.
    static bool Mjd2Hms(double days, long& d, long& hours, long& minutes, long& seconds, double& fraction);

    // Round in place and return the new day count; a carry that would leave
    // the span's range (CTimeSpan, CNyrTimeSpan: the CTimeSpan range;
    // COleDateTimeSpan: finite values) leaves it unchanged.
    static double Round(CTimeSpan& span, eRoundFlag flag);
    static double Round(CNyrTimeSpan& span, eRoundFlag flag);
    static double Round(COleDateTimeSpan& span, eRoundFlag flag);

    // a += b, a -= b, a += count units. Each returns false and leaves a
    // unchanged when the result would leave the range [shortest, longest]
    // of the kind (CTimeSpan and CNyrTimeSpan: the CTimeSpan range); a
    // non-valid COleDateTimeSpan is never changed. AddTimeSpan and
    // SubtractTimeSpan on CNyrTimeSpan move whole seconds only: b's fraction
    // is not added, intended; a keeps its own.
    static bool AddTimeSpan(CTimeSpan& a, const CTimeSpan& b);
    static bool AddTimeSpan(CNyrTimeSpan& a, const CNyrTimeSpan& b);
    static bool AddTimeSpan(COleDateTimeSpan& a, const COleDateTimeSpan& b, eRangeType range);
    static bool SubtractTimeSpan(CTimeSpan& a, const CTimeSpan& b);
    static bool SubtractTimeSpan(CNyrTimeSpan& a, const CNyrTimeSpan& b);
    static bool SubtractTimeSpan(COleDateTimeSpan& a, const COleDateTimeSpan& b, eRangeType range);
    static bool AddSeconds(CTimeSpan& span, long count);
    static bool AddMinutes(CTimeSpan& span, long count);
    static bool AddHours(CTimeSpan& span, long count);
    static bool AddDays(CTimeSpan& span, long count);
    static bool AddSeconds(CNyrTimeSpan& span, long count);
    static bool AddMinutes(CNyrTimeSpan& span, long count);
    static bool AddHours(CNyrTimeSpan& span, long count);
    static bool AddDays(CNyrTimeSpan& span, long count);
    static bool AddSeconds(COleDateTimeSpan& span, long count, eRangeType range);
    static bool AddMinutes(COleDateTimeSpan& span, long count, eRangeType range);
    static bool AddHours(COleDateTimeSpan& span, long count, eRangeType range);
    static bool AddDays(COleDateTimeSpan& span, long count, eRangeType range);

    // The shortest and longest span of a range type. As CTimeSpan (and
    // CNyrTimeSpan) the longest of type 0 is the largest count of seconds.
    // In doubles types 0 and 1 are in days but the CTimeSpan range is in
    // seconds, intended; GetPhysicalRangeMjd gives all three in days.
    static void GetPhysicalRange(CTimeSpan& shortest, CTimeSpan& longest, eRangeType range);
    static void GetPhysicalRange(CNyrTimeSpan& shortest, CNyrTimeSpan& longest, eRangeType range);
    static void GetPhysicalRange(double& shortest, double& longest, eRangeType range);
    static void GetPhysicalRange(COleDateTimeSpan& shortest, COleDateTimeSpan& longest, eRangeType range);
    static void GetPhysicalRangeMjd(double& shortest, double& longest, eRangeType range);

    // Text of a rounded copy with the CTimeSpan pattern language ("%D" total
    // days, "%H" hours 00..23, "%M", "%S", "%%"), except that "%h" (or, when
    // there is none, "%H") stands for the total hours of the span, unpadded
    // and never wrapped at 24: with 2 days 1:05:07, "%h:%M:%S" gives
    // "49:05:07" and "%D %H:%M:%S" gives "2 49:05:07" (intended). A
    // COleDateTimeSpan that is not valid, or longer than 2^40 days, gives an
    // empty text.
    static std::string Format(const CTimeSpan& span, const std::string& pattern, eRoundFlag flag = eRoundSecond);
    static std::string Format(const CNyrTimeSpan& span, const std::string& pattern, eRoundFlag flag = eRoundSecond);
    static std::string Format(const COleDateTimeSpan& span, const std::string& pattern,
                              eRoundFlag flag = eRoundSecond);
};
