#include "nyr/platform/system_time.h"

#include <ctime>

#include "nyr/platform/calendar_p.h"
#include "nyr/platform/local_time_p.h"

using namespace nyr::cal;

namespace {

constexpr uint64_t kTicksPerDay = kTicksPerSecond * kSecondsPerDay;
constexpr int64_t kTickOf1970 = kDaysFrom1601To1970 * kSecondsPerDay * kTicksPerSecond;
constexpr uint64_t kMaxTicks = uint64_t{1} << 63;

}  // namespace

bool NyrFileTimeToSystemTime(const FILETIME& fileTime, SYSTEMTIME& systemTime)
{
    const uint64_t ticks = NyrFileTimeTicks(fileTime);
    if (ticks >= kMaxTicks)
        return false;
    const auto days = static_cast<int64_t>(ticks / kTicksPerDay);
    const uint64_t dayTicks = ticks % kTicksPerDay;
    const Civil c = CivilFromDays(days - kDaysFrom1601To1970);
    const uint64_t secondOfDay = dayTicks / kTicksPerSecond;
    systemTime.wYear = static_cast<uint16_t>(c.year);
    systemTime.wMonth = static_cast<uint16_t>(c.month);
    systemTime.wDay = static_cast<uint16_t>(c.day);
    systemTime.wDayOfWeek = static_cast<uint16_t>(WeekdayFromDays(days - kDaysFrom1601To1970));
    systemTime.wHour = static_cast<uint16_t>(secondOfDay / 3600);
    systemTime.wMinute = static_cast<uint16_t>(secondOfDay / 60 % 60);
    systemTime.wSecond = static_cast<uint16_t>(secondOfDay % 60);
    systemTime.wMilliseconds = static_cast<uint16_t>(dayTicks % kTicksPerSecond / 10000);
    return true;
}

bool NyrSystemTimeToFileTime(const SYSTEMTIME& st, FILETIME& fileTime)
{
    if (!ValidFields(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond, 1601, 30827) ||
        st.wMilliseconds > 999)
        return false;
    const int64_t days = DaysFromCivil(st.wYear, st.wMonth, st.wDay) + kDaysFrom1601To1970;
    const int64_t seconds = days * kSecondsPerDay + st.wHour * 3600 + st.wMinute * 60 + st.wSecond;
    fileTime = NyrFileTimeFromTicks(static_cast<uint64_t>(seconds * kTicksPerSecond + st.wMilliseconds * 10000));
    return true;
}

bool NyrFileTimeToLocalFileTime(const FILETIME& fileTime, FILETIME& localFileTime)
{
    const uint64_t ticks = NyrFileTimeTicks(fileTime);
    if (ticks >= kMaxTicks)
        return false;
    const time_t seconds = static_cast<time_t>(FloorDiv(static_cast<int64_t>(ticks) - kTickOf1970, kTicksPerSecond));
    struct tm local {};
    if (!localtime_r(&seconds, &local))
        return false;
    const int64_t result = static_cast<int64_t>(ticks) + int64_t{local.tm_gmtoff} * kTicksPerSecond;
    if (result < 0 || static_cast<uint64_t>(result) >= kMaxTicks)
        return false;
    localFileTime = NyrFileTimeFromTicks(static_cast<uint64_t>(result));
    return true;
}

bool NyrLocalFileTimeToFileTime(const FILETIME& localFileTime, FILETIME& fileTime)
{
    SYSTEMTIME st;
    int64_t seconds = 0;
    if (!NyrFileTimeToSystemTime(localFileTime, st) ||
        !nyr::local::MakeLocal(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond, -1, seconds))
        return false;
    const int64_t result =
        seconds * kTicksPerSecond + kTickOf1970 + static_cast<int64_t>(NyrFileTimeTicks(localFileTime) % kTicksPerSecond);
    if (result < 0 || static_cast<uint64_t>(result) >= kMaxTicks)
        return false;
    fileTime = NyrFileTimeFromTicks(static_cast<uint64_t>(result));
    return true;
}

bool NyrDosDateTimeToFileTime(uint16_t dosDate, uint16_t dosTime, FILETIME& localFileTime)
{
    SYSTEMTIME st;
    st.wYear = static_cast<uint16_t>(1980 + (dosDate >> 9));
    st.wMonth = static_cast<uint16_t>((dosDate >> 5) & 0x0F);
    st.wDay = static_cast<uint16_t>(dosDate & 0x1F);
    st.wHour = static_cast<uint16_t>(dosTime >> 11);
    st.wMinute = static_cast<uint16_t>((dosTime >> 5) & 0x3F);
    st.wSecond = static_cast<uint16_t>((dosTime & 0x1F) * 2);
    return NyrSystemTimeToFileTime(st, localFileTime);
}

bool NyrFileTimeToDosDateTime(const FILETIME& localFileTime, uint16_t& dosDate, uint16_t& dosTime)
{
    SYSTEMTIME st;
    if (!NyrFileTimeToSystemTime(localFileTime, st) || st.wYear < 1980 || st.wYear > 2107)
        return false;
    dosDate = static_cast<uint16_t>((st.wYear - 1980) << 9 | st.wMonth << 5 | st.wDay);
    dosTime = static_cast<uint16_t>(st.wHour << 11 | st.wMinute << 5 | st.wSecond / 2);
    return true;
}
