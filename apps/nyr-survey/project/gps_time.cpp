#include "apps/nyr-survey/project/gps_time.h"

#include <algorithm>
#include <cmath>

#include "nyr/time/time.h"
#include "nyr/time/time_helper.h"

namespace survey {

namespace {

constexpr double kMjdOfUnixEpoch = 40587.0;

}  // namespace

int LeapSecondsAt(int64_t unixSeconds)
{
    const double mjd = kMjdOfUnixEpoch + static_cast<double>(unixSeconds) / 86400.0;
    return static_cast<int>(std::lround(CNyrTimeHelper::GetLeapSeconds(mjd) * 86400.0));
}

bool GpsFromTime(const CNyrTime& time, int& week, double& secondsOfWeek)
{
    const int64_t unix = time.GetTime().GetTime();
    const int64_t gps = unix + LeapSecondsAt(unix) - kGpsEpochUnix;
    if (gps < 0)
        return false;
    week = static_cast<int>(gps / 604800);
    secondsOfWeek = static_cast<double>(gps % 604800) + time.GetFracSecond();
    return true;
}

bool TimeFromGps(int week, double secondsOfWeek, CNyrTime& time)
{
    if (week < 0 || week > 100000 || !std::isfinite(secondsOfWeek) || secondsOfWeek < 0.0 ||
        secondsOfWeek >= kSecondsPerWeek)
        return false;
    const double whole = std::floor(secondsOfWeek);
    const int64_t gps = int64_t{week} * 604800 + static_cast<int64_t>(whole) + kGpsEpochUnix;
    // GPS - UTC depends on the UTC instant sought: start from the offset at
    // the GPS reading and settle it with the offset at that guess. When the
    // offset at the result still disagrees, the reading lies inside an
    // inserted leap second.
    int64_t unix = gps - LeapSecondsAt(gps - LeapSecondsAt(gps));
    const bool insideLeap = LeapSecondsAt(unix) != gps - unix;
    time = CNyrTime(unix);
    // To the nanosecond: 604799.999 - 604799 is 0.99899999..., which would
    // read as 998 ms.
    const double fraction = std::min(std::round((secondsOfWeek - whole) * 1e9) / 1e9, 0.999999999);
    time.SetFracSecond(insideLeap ? 0.0 : fraction);
    return time.GetTime().GetTime() == unix;
}

}  // namespace survey
