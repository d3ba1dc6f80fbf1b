#pragma once

// Internals shared by the time point and time span sources.

#include <cstdint>
#include <ctime>
#include <string>

#include "nyr/platform/framework_time.h"

namespace nyr::time {

// Loads the current format from the settings file unless it is loaded.
void EnsureFormatLoaded();

// A day count split into whole days (floor, or toward zero when
// `towardZero`), whole seconds 0..86399 (or -86399..86399) and the fraction
// of the second, on a grid of 1 us or, where the double carries less, of the
// power of ten of microseconds just above its resolution. False, all zero,
// when not finite or beyond +-2^40 days.
struct DaySplit
{
    int64_t days = 0;
    int64_t seconds = 0;
    double fraction = 0.0;
};
bool SplitDays(double days, bool towardZero, DaySplit& split);

// A struct tm of a calendar day (days since 1970-01-01) and second of day
// 0..86399, weekday and day of year included, no zone (tm_gmtoff 0, tm_zone
// "UTC"). False when the year is outside 1..9999.
bool CivilTm(int64_t days1970, int64_t secondOfDay, struct tm& fields);

// One rounding step on a point or span given as its minute-of-hour and
// second-of-minute fields and fraction: `delta` seconds to add to the whole
// seconds (negative drops seconds or minutes), the new fraction, and whether
// the step carries forward (then the caller checks its range). False for a
// flag that rounds nothing. Bit 128 of the flag is ignored.
struct RoundStep
{
    int64_t delta = 0;
    double fraction = 0.0;
    bool carry = false;
};
bool PlanRound(int flag, int minute, int second, double fraction, RoundStep& step);

// Rounds a point given as its seconds count and fraction, with the minute
// and second fields taken from its local (or UTC) breakdown; a carry that
// would leave the CTime range leaves both unchanged.
void RoundPoint(CTime& time, double& fraction, int flag, bool utc);

// Whether a seconds count lies within the CTime range (local 1970-01-02
// 00:00:00 .. 2030-01-18 23:59:59).
bool InCTimeRange(int64_t seconds);

// The date part and the time part of a pattern: split at the first hour
// conversion (%H, %I, %#H, %#I), blanks before it dropped from the date.
void SplitPattern(const char* pattern, std::string* date, std::string* time);

}  // namespace nyr::time
