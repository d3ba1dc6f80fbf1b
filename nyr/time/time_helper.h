#pragma once

#include <cstdint>
#include <string>

#include "nyr/platform/export.h"
#include "nyr/platform/framework_time.h"

class CNyrTime;

// Static operations on the three kinds of time point: CNyrTime, CTime
// (whole seconds, local breakdown) and COleDateTime (days since 1899-12-30,
// no zone). MJD values are local civil time in days (MJD 0 is 1858-11-17
// 00:00); a point that cannot be broken down (local year outside 1..9999, a
// non-valid COleDateTime) has the MJD 0.0.
class NYR_EXPORT CNyrTimeHelper
{
public:
    // Rounding flags. Bit 128 of a flag is masked off before it is read; any
    // other value leaves the point unchanged.
    enum eRoundFlag : int {
        eRoundSecond = 0,      // fraction >= 0.5 adds a second; fraction 0
        eRoundMinute = 1,      // seconds >= 30 add a minute; seconds, fraction 0
        eRoundHour = 2,        // minutes >= 30 add an hour; minutes, seconds, fraction 0
        eRoundThousandth = 3,  // fraction to the nearest 1/1000 s
        eRoundTenth = 4,       // fraction to the nearest 1/10 s
        eRoundHundredth = 5,   // fraction to the nearest 1/100 s
        eRoundNone = -1,
    };

    // Physical ranges; earliest and latest as local civil time.
    enum eRangeType : int {
        eRangeCOleDateTime = 0,  // 0100-01-01 00:00:00 .. 9999-12-31 00:00:00
        eRangeDateTimeCtrl = 1,  // 1601-01-01 00:00:00 .. 9999-12-31 00:00:00
        eRangeCTime = 2,         // 1970-01-02 00:00:00 .. 2030-01-18 23:59:59 (also any other value)
    };
    // The latest instant of types 0 and 1 is the start of the last day, and
    // the CTime range keeps a day clear of the ends of the 32-bit era: both
    // intended.

    // --- MJD ----------------------------------------------------------------
    static double GetMjd(const CNyrTime& time);
    static double GetMjd(const CTime& time);
    static double GetMjd(const COleDateTime& time);
    // The MJD of the point's instant in UTC, from its seconds count and
    // fraction: days since 1858-11-17 00:00 UTC, whatever the zone (unlike
    // CNyrTime::MjdUTC, which adds the zone offset to the local MJD). The
    // leap-second table is kept by UTC day: look a point up with this.
    static double GetMjdUTC(const CNyrTime& time);
    // Sets the target to the local civil MJD; false (target: seconds count 0,
    // or status invalid) when the MJD names no instant of that kind. A CTime
    // drops the fraction of a second.
    static bool SetMjd(double mjd, CNyrTime& time);
    static bool SetMjd(double mjd, CTime& time);
    static bool SetMjd(double mjd, COleDateTime& time);
    // Calendar fields of an MJD (proleptic Gregorian). The time of day is
    // resolved to the microsecond, or more coarsely where the double carries
    // less (an MJD of today about 0.6 us, of year 9999 about 40 us), so that
    // a value made from whole seconds reads back as whole seconds. False, and
    // all outputs 0, when the MJD is not finite or beyond year +-10^9.
    static bool Mjd2Ymd(double mjd, long& year, long& month, long& day, long& hour, long& minute, long& second,
                        double& fraction);

    // --- Date-part and time-part tests ---------------------------------------
    // The date part is (year, month, day), the time part (hour, minute,
    // second), compared field by field on the local breakdown (COleDateTime:
    // fields rounded to the second). DatePartGreater is the same test as
    // TimePartGreater for all three kinds, intended: for a true date-part
    // "greater" use DatePartLess with the arguments swapped.
    static bool DatePartLess(const CNyrTime& a, const CNyrTime& b);
    static bool DatePartEqual(const CNyrTime& a, const CNyrTime& b);
    static bool DatePartGreater(const CNyrTime& a, const CNyrTime& b);
    static bool TimePartLess(const CNyrTime& a, const CNyrTime& b);
    static bool TimePartEqual(const CNyrTime& a, const CNyrTime& b);
    static bool TimePartGreater(const CNyrTime& a, const CNyrTime& b);
    static bool DatePartLess(const CTime& a, const CTime& b);
    static bool DatePartEqual(const CTime& a, const CTime& b);
    static bool DatePartGreater(const CTime& a, const CTime& b);
    static bool TimePartLess(const CTime& a, const CTime& b);
    static bool TimePartEqual(const CTime& a, const CTime& b);
    static bool TimePartGreater(const CTime& a, const CTime& b);
    static bool DatePartLess(const COleDateTime& a, const COleDateTime& b);
    static bool DatePartEqual(const COleDateTime& a, const COleDateTime& b);
    static bool DatePartGreater(const COleDateTime& a, const COleDateTime& b);
    static bool TimePartLess(const COleDateTime& a, const COleDateTime& b);
    static bool TimePartEqual(const COleDateTime& a, const COleDateTime& b);
    static bool TimePartGreater(const COleDateTime& a, const COleDateTime& b);

    // --- Calendar arithmetic --------------------------------------------------
    // Seconds, minutes and hours are elapsed time; days, weeks, months and
    // years step the local calendar and keep the time of day (a day that is
    // too short for the month takes its last day: Jan 31 + 1 month = Feb 28
    // or 29) and, where the new day runs that time twice (a clock turned
    // back), the point's side of it: adding 0 leaves the instant as it is. Each returns true when the result lies within the range (CTime
    // and CNyrTime: the CTime range) and otherwise returns false and leaves
    // the point unchanged. Negative counts go back. A CNyrTime keeps its
    // fraction of a second.
    static bool AddSeconds(CTime& time, long count);
    static bool AddMinutes(CTime& time, long count);
    static bool AddHours(CTime& time, long count);
    static bool AddDays(CTime& time, long count);
    static bool AddWeeks(CTime& time, long count);
    static bool AddMonths(CTime& time, long count);
    static bool AddYears(CTime& time, long count);
    static bool AddSeconds(CNyrTime& time, long count);
    static bool AddMinutes(CNyrTime& time, long count);
    static bool AddHours(CNyrTime& time, long count);
    static bool AddDays(CNyrTime& time, long count);
    static bool AddWeeks(CNyrTime& time, long count);
    static bool AddMonths(CNyrTime& time, long count);
    static bool AddYears(CNyrTime& time, long count);
    // A non-valid COleDateTime is never changed (false).
    static bool AddSeconds(COleDateTime& time, long count, eRangeType range);
    static bool AddMinutes(COleDateTime& time, long count, eRangeType range);
    static bool AddHours(COleDateTime& time, long count, eRangeType range);
    static bool AddDays(COleDateTime& time, long count, eRangeType range);
    static bool AddWeeks(COleDateTime& time, long count, eRangeType range);
    static bool AddMonths(COleDateTime& time, long count, eRangeType range);
    static bool AddYears(COleDateTime& time, long count, eRangeType range);

    static void GetPhysicalRange(CTime& earliest, CTime& latest, eRangeType range);
    static void GetPhysicalRange(CNyrTime& earliest, CNyrTime& latest, eRangeType range);
    static void GetPhysicalRange(double& earliestMjd, double& latestMjd, eRangeType range);
    static void GetPhysicalRange(COleDateTime& earliest, COleDateTime& latest, eRangeType range);
    static void GetPhysicalRange(SYSTEMTIME& earliest, SYSTEMTIME& latest, eRangeType range);

    // --- Rounding -------------------------------------------------------------
    // Rounds in place (see eRoundFlag) and returns the new MJD. A carry into
    // the next second, minute or hour that would leave the range of the
    // point's kind (CTime and CNyrTime: the CTime range; COleDateTime: its
    // own) leaves the point unchanged. Minutes and seconds are the local
    // ones, and a point rounded to the minute (hour) lands on a full minute
    // (hour) of the local clock: the first after it when rounding up, the
    // last at or before it when rounding down, even where the clock shifts
    // by 30 minutes in between (02:30 is never the result of hour rounding).
    static double Round(CTime& time, eRoundFlag flag);
    static double Round(CNyrTime& time, eRoundFlag flag);
    static double Round(COleDateTime& time, eRoundFlag flag);

    // --- Text -----------------------------------------------------------------
    // A COleDateTime through the library's formatter after rounding a copy:
    // "Invalid DateTime" for status invalid, an empty text for status null or
    // when the text needs 128 characters or more.
    static std::string Format(const COleDateTime& time, const std::string& pattern, eRoundFlag flag = eRoundSecond);

    // --- Leap seconds -----------------------------------------------------------
    // The process-wide table of GPS-UTC offsets: MJD of the day from which an
    // offset applies -> offset in days. Built-in rows 1980-01-01 (0 s) to
    // 2006-01-01 (14 s); further rows are kept in the settings file
    // ("LeapSeconds" / "KnownLeapSeconds": Base64 of little-endian double
    // pairs, MJD then offset in days). Loaded on first use.

    // The offset in days of the last row at or before `mjd`, a UTC MJD (for
    // a time point GetMjdUTC, not its local MJD); the row's MJD goes to
    // *rowMjd. 0.0 (and *rowMjd 0.0) before the first row.
    static double GetLeapSeconds(const double& mjd, double* rowMjd = nullptr);
    // Adds the row (floor(mjd), count seconds) and saves the table. A count
    // below 14 is already covered by the built-in rows (true, nothing done);
    // above 50, a day outside the CTime range or not a 1st of January or of
    // July is refused (false). A day already in the table keeps its row.
    static bool AddLeapSeconds(const double& mjd, uint8_t count);
    // The broadcast GPS form: the week of the leap second comes as its low 8
    // bits `weekLow` next to the current full week; it is resolved to the
    // week within +-128 of `week` (16-bit arithmetic), the day is
    // GpsTime(resolved week, 0) + `dayNumber`; then as above.
    static bool AddLeapSeconds(uint16_t week, uint8_t weekLow, uint8_t dayNumber, uint8_t count);
    // Clears the table, installs the built-in rows and adds the stored ones.
    // A stored value that does not decode to whole finite pairs is ignored
    // whole; a stored row never replaces a built-in one.
    static void LoadLeapSeconds();

    // The leap-second list of the system's time-zone data.
    static const char* SystemLeapSecondsList();  // "/usr/share/zoneinfo/leap-seconds.list"

    // Imports a leap-second list in the NTP format of the time-zone data:
    // data lines "NTP-seconds TAI-UTC [# comment]" (seconds since 1900-01-01
    // UTC), "#$ NTP-seconds" (updated), "#@ NTP-seconds" (expires), the
    // "#h" hash line, other "#" lines comments. The list is checked whole
    // before any row is taken: every line readable, the "#h" line present
    // and equal to the SHA-1 of the data fields ("#$", "#@" and each row's
    // two numbers), each row a later day with TAI-UTC one second more. Each
    // row from 1980 on then goes through the checks of AddLeapSeconds(day,
    // TAI-UTC - 19), so that with a current list a day from 2017-01-01 on
    // reads 18 s, and the table is saved once.
    // Returns the number of rows the table gained (0 when it was up to
    // date), or -1 with nothing added and nothing stored when the list is
    // refused or the settings file cannot be written; `problem` then
    // receives the reason (text table NYR_IDS_LEAP_LIST_UNREADABLE to NYR_IDS_LEAP_TABLE_CANNOT_WRITE, with the
    // system's text where it has one). *expired tells whether the list's expiry date has passed (false without an
    // expiry line); a list past its expiry is still imported, its caller decides whether to warn.
    static int ImportLeapSecondsList(const std::string& path = SystemLeapSecondsList(), bool* expired = nullptr,
                                     std::string* problem = nullptr);
};
