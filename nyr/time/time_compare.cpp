// Three-way comparisons of time points for sorted columns.
#include "nyr/platform/local_time_p.h"
#include "nyr/time/time.h"

namespace {

template <typename T>
int Sign(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

int StatusRank(COleDateTime::DateTimeStatus status)
{
    return status == COleDateTime::null ? 0 : status == COleDateTime::invalid ? 1 : 2;
}

template <typename T>
int CompareDatePart(const T& a, const T& b)
{
    return CNyrTimeHelper::DatePartLess(a, b) ? -1 : CNyrTimeHelper::DatePartLess(b, a) ? 1 : 0;
}

template <typename T>
int CompareTimePart(const T& a, const T& b)
{
    return CNyrTimeHelper::TimePartLess(a, b) ? -1 : CNyrTimeHelper::TimePartLess(b, a) ? 1 : 0;
}

}  // namespace

int NyrCompare(const CNyrTime& a, const CNyrTime& b)
{
    // The MJD is a monotonic function of the local clock reading plus the
    // fraction, but costs a breakdown of each point, and a sort makes
    // millions of comparisons: the views benchmark's sort of 1,000,000 items
    // by a CNyrTime column (bench/views, BM_ReportViewSort_1M/3) holds its
    // ratio to QSortFilterProxyModel by the two shortcuts below.
    //
    // First, a local reading is the instant shifted by the zone's offset,
    // and an offset stays within 25 hours either way (the POSIX limit of TZ
    // rules, beyond every tzdata zone), so points more than 50 hours apart
    // order as their seconds do. Points within 50 hours of the ends of years
    // 1..9999 take the long way: outside those years the MJD is 0.0.
    constexpr int64_t kFar = 50 * 3600;
    constexpr int64_t kFirst = -62135596800 + kFar;  // 0001-01-01 00:00 UTC
    constexpr int64_t kLast = 253402300799 - kFar;   // 9999-12-31 23:59:59 UTC
    const int64_t sa = a.GetTime().GetTime(), sb = b.GetTime().GetTime();
    const auto inside = [](int64_t s) {
        return static_cast<uint64_t>(s) - static_cast<uint64_t>(kFirst) <= uint64_t{kLast - kFirst};
    };
    if (inside(sa) && inside(sb) && static_cast<uint64_t>(sa - sb + kFar) > uint64_t{2 * kFar})
        return sa < sb ? -1 : 1;
    // Second, nearer points order by their local readings, from the zone's
    // offsets cached per day, when these are two or more seconds apart,
    // whatever the fractions; the rest, and points the breakdown cannot take
    // (an MJD of 0.0), compare their MJDs.
    if (const int byReading = nyr::local::CompareLocalReadings(sa, sb))
        return byReading;
    return Sign(a.Mjd(), b.Mjd());
}

int NyrCompare(const CTime& a, const CTime& b)
{
    return Sign(a, b);
}

int NyrCompare(const COleDateTime& a, const COleDateTime& b)
{
    if (a.GetStatus() != COleDateTime::valid || b.GetStatus() != COleDateTime::valid)
        return Sign(StatusRank(a.GetStatus()), StatusRank(b.GetStatus()));
    return Sign(a.GetLinearDays(), b.GetLinearDays());
}

int NyrCompareDatePart(const CNyrTime& a, const CNyrTime& b) { return CompareDatePart(a, b); }
int NyrCompareDatePart(const CTime& a, const CTime& b) { return CompareDatePart(a, b); }
int NyrCompareDatePart(const COleDateTime& a, const COleDateTime& b) { return CompareDatePart(a, b); }
int NyrCompareTimePart(const CNyrTime& a, const CNyrTime& b) { return CompareTimePart(a, b); }
int NyrCompareTimePart(const CTime& a, const CTime& b) { return CompareTimePart(a, b); }
int NyrCompareTimePart(const COleDateTime& a, const COleDateTime& b) { return CompareTimePart(a, b); }
