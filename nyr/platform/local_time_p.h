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

// Of the instants whose local reading is the given calendar fields, the one
// on the same side of a repeated reading (the hour a clock turned back runs
// twice) as the instant `like`: the one with like's offset from UTC, else
// with its daylight flag, else the platform's choice. A reading the clock
// skipped (turned forward) gives the platform's choice. False as MakeLocal.
bool MakeLocalLike(int64_t year, int month, int day, int hour, int minute, int second, int64_t like,
                   int64_t& seconds);

// The zone's offset at an instant (local reading minus UTC, in seconds) and,
// when asked, the breakdown; false where Breakdown fails.
bool OffsetAt(int64_t seconds, int64_t& offset, struct tm* breakdown = nullptr);

// Orders two instants (seconds since 1970 UTC) by their local clock
// readings, each the instant plus the zone's offset then: -1 or 1 when the
// readings lie two or more seconds apart, 0 when they are nearer or one
// cannot be read (where Breakdown fails). Sorted time columns ask this
// millions of times, so there is no full breakdown each time: offsets are
// kept per UTC day, and two instants inside the latest stretch of days of
// one offset compare by their seconds alone. Both caches are lock-free and
// shared by all threads. The zone is taken as fixed for the process, as
// everywhere in the library: after a deliberate change of TZ,
// ForgetLocalOffsets() (CNyrTime::RefreshSystemTimezone calls it).
int CompareLocalReadings(int64_t a, int64_t b);
void ForgetLocalOffsets();

}  // namespace nyr::local
