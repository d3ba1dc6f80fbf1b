#pragma once

#include <cstdint>

class CNyrTime;

// GPS time of the observations. GPS time runs without leap seconds from
// 1980-01-06 00:00 UTC; GPS - UTC comes from the library's leap-second table
// (CNyrTimeHelper::GetLeapSeconds), so it is right as far as that table is
// up to date (Tools > Time converter imports the system's list).
namespace survey {

// Seconds since 1970 (UTC, no leap seconds) of GPS week 0, second 0.
inline constexpr int64_t kGpsEpochUnix = 315964800;
inline constexpr double kSecondsPerWeek = 604800.0;

// GPS - UTC in whole seconds at the UTC instant `unixSeconds`.
int LeapSecondsAt(int64_t unixSeconds);

// The GPS week and seconds of week of an instant; false before the GPS epoch.
bool GpsFromTime(const CNyrTime& time, int& week, double& secondsOfWeek);

// The instant of a GPS week and seconds of week; false for a week below 0,
// seconds outside [0, 604800) or not finite, or an instant the time point
// cannot hold. An instant inside an inserted leap second has no UTC reading
// of its own (the time point counts no leap seconds) and comes out as the
// first instant after it.
bool TimeFromGps(int week, double secondsOfWeek, CNyrTime& time);

}  // namespace survey
