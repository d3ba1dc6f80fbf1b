#pragma once

// The platform's local-time conversions (localtime_r, mktime) behind the two
// rules every time type of the library shares: a breakdown succeeds only for
// local years 1..9999 (so every text field has its usual width and the MJD
// formula holds), and calendar fields are checked, never normalised (no
// "February 31st" becoming March 3rd).

#include <cstdint>
#include <ctime>

namespace nyr::local {

constexpr int64_t kMinYear = 1;
constexpr int64_t kMaxYear = 9999;

// Local breakdown of a seconds count since 1970 UTC; false outside the years.
bool Breakdown(int64_t seconds, struct tm& fields);
// UTC breakdown under the same rule.
bool BreakdownUtc(int64_t seconds, struct tm& fields);

// Seconds since 1970 UTC of a local calendar reading. `dst`: < 0 unknown
// (the platform picks), 0 standard time, > 0 daylight saving time. False
// when a field is out of range (years kMinYear..kMaxYear, the day checked
// against the month) or the platform cannot convert.
bool MakeLocal(int64_t year, int month, int day, int hour, int minute, int second, int dst, int64_t& seconds);

// The local clock reading of an instant as seconds since 1970 (the instant
// plus the zone's offset then), for ordering instants by local civil time
// without a full breakdown each time: the offset is kept per UTC day, in a
// small lock-free cache shared by all threads. False where Breakdown fails. The zone is taken as
// fixed for the process, as everywhere in the library: after a deliberate
// change of TZ, ForgetLocalOffsets() (CNyrTime::RefreshSystemTimezone calls it).
bool LocalSeconds(int64_t seconds, int64_t& local);
void ForgetLocalOffsets();

}  // namespace nyr::local
