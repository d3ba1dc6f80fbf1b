#pragma once

#include <cstdint>
#include <string>

#include "nyr/frame/resource_module.h"
#include "nyr/platform/export.h"
#include "nyr/platform/framework_time.h"
#include "nyr/time/time_helper.h"

class QWidget;  // the window of SaveCurrentSelection, which libNyr240Widgets defines

// A time point: whole seconds since 1970-01-01 00:00:00 UTC (a CTime), a
// fraction of a second 0 <= f < 1, and a time-zone offset in hours (east of
// UTC positive), set from the system time zone by every constructor. Its
// calendar fields are local civil time (the process's TZ zone), and so is its
// numeric form, the Modified Julian Date (MJD, days since 1858-11-17 00:00).
//
// Process-wide state, created on first use without locking (use the class
// from one thread): the system time zone, the current text format (loaded
// from the settings file by the first construction) and the leap-second
// table of CNyrTimeHelper.
//
// Bad input gives neutral values: a point that cannot be broken down
// (local year outside 1..9999) has the MJD 0.0 and formats as an empty text.
class NYR_EXPORT CNyrTime
{
public:
    // Rows of the format table; the index is what the settings file keeps.
    // M month, D day, Y4 / Y2 year digits, Mon month name, 24 / 12 clock.
    enum eTimeFormat : int {
        eTimeFormatMDY4Slash24 = 0,  // %m/%d/%Y %H:%M:%S
        eTimeFormatDMY4Slash24,      // %d/%m/%Y %H:%M:%S
        eTimeFormatMDY4Slash12,      // %m/%d/%Y %#I:%M:%S %p
        eTimeFormatDMY4Slash12,
        eTimeFormatMDY2Slash24,      // %m/%d/%y %H:%M:%S
        eTimeFormatDMY2Slash24,
        eTimeFormatMDY2Slash12,
        eTimeFormatDMY2Slash12,
        eTimeFormatMDY4Dash24,       // 8..15: as 0..7 with "-"
        eTimeFormatDMY4Dash24,
        eTimeFormatMDY4Dash12,
        eTimeFormatDMY4Dash12,
        eTimeFormatMDY2Dash24,
        eTimeFormatDMY2Dash24,
        eTimeFormatMDY2Dash12,
        eTimeFormatDMY2Dash12,
        eTimeFormatMDY4Dot24,        // 16..23: as 0..7 with "."
        eTimeFormatDMY4Dot24,
        eTimeFormatMDY4Dot12,
        eTimeFormatDMY4Dot12,
        eTimeFormatMDY2Dot24,
        eTimeFormatDMY2Dot24,
        eTimeFormatMDY2Dot12,
        eTimeFormatDMY2Dot12,
        eTimeFormatDMonY4Dot24,      // %#d. %b %Y %H:%M:%S
        eTimeFormatDMonY4Dash24,     // %#d-%b-%Y %H:%M:%S
        eTimeFormatDMonY4Dot12,      // %#d. %b %Y %#I:%M:%S %p
        eTimeFormatDMonY4Dash12,
        eTimeFormatDMonY2Dot24,      // 28..31: as 24..27 with %y
        eTimeFormatDMonY2Dash24,
        eTimeFormatDMonY2Dot12,
        eTimeFormatDMonY2Dash12,
        eTimeFormatCount,            // 32: in a Format call, the current format
    };

    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The drop-down list in which the user picks the format, a Qt widget
    // (nyrwidgets/time/time_format_combo_box.h); the core only names it.
    class CTimeFormatComboBox;

    // The current instant (whole seconds).
    CNyrTime();
    CNyrTime(const CTime& time);  // NOLINT(google-explicit-constructor): a CTime is a CNyrTime without fraction
    CNyrTime(int64_t seconds);  // NOLINT(google-explicit-constructor): seconds since 1970 UTC, as CTime takes them
    // A local calendar reading; `dst` < 0 unknown, 0 standard, > 0 daylight
    // saving time. Fields that name no instant (month 13, Feb 30, year 0,
    // second 60) give the seconds count 0.
    CNyrTime(int year, int month, int day, int hour, int minute, int second, int dst = -1);
    CNyrTime(uint16_t dosDate, uint16_t dosTime, int dst = -1);
    // Milliseconds dropped.
    CNyrTime(const SYSTEMTIME& systemTime, int dst = -1);  // NOLINT(google-explicit-constructor): as CTime
    // Seconds count 0 when it cannot convert.
    CNyrTime(const FILETIME& fileTime, int dst = -1);  // NOLINT(google-explicit-constructor): as CTime
    // Parsed by ScanTime.
    CNyrTime(const std::string& text, const std::string& format);
    // GPS week and seconds of week (see SetGpsTime).
    CNyrTime(int gpsWeek, double gpsSecondsOfWeek);
    explicit CNyrTime(double mjd);

    CNyrTime(const CNyrTime&) = default;
    CNyrTime& operator=(const CNyrTime&) = default;
    CNyrTime& operator=(const CTime& time);  // fraction 0, zone kept
    CNyrTime& operator=(double mjd);         // as Mjd(double)

    const CTime& GetTime() const { return m_time; }
    void SetTime(const CTime& time) { m_time = time; }
    double GetFracSecond() const { return m_fracSecond; }
    // Kept in [0, 1): values outside (or not finite) give 0.
    void SetFracSecond(double fraction);
    // The fraction in whole milliseconds 0..999 (truncated).
    int GetMilliSeconds() const;
    double Timezone() const { return m_timezone; }
    void Timezone(double hours) { m_timezone = hours; }

    // --- MJD ----------------------------------------------------------------
    double Mjd() const;
    operator double() const { return Mjd(); }  // NOLINT(google-explicit-constructor): the numeric form, the MJD
    // Sets the point to a local civil MJD; seconds count 0 when the MJD names
    // no instant.
    void Mjd(double mjd);
    // Mjd() + Timezone() / 24 (0.0 when the point cannot be broken down), and
    // the setter of that form. The sum is the library's definition; note
    // that with east-positive offsets it is not the UTC reading away from
    // UTC: for the instant in UTC use CurrentTimeUTC or FormatUTC.
    double MjdUTC() const;
    void MjdUTC(double mjd);
    // The MJD of a calendar reading: day number N = trunc(365.25 y) +
    // trunc(30.6001 (m + 1)) + B div 4 - B + d - 679004 with January and
    // February counted as months 13 and 14 of the year before and B = y div
    // 100; plus the day fraction h/24 + mi/1440 + s/86400. Meant for years
    // 1 and later; month and day are not checked.
    static double Mjd(int year, int month, int day, int hour, int minute, double second);
    // The same, handing out N and the day fraction.
    static double Mjd(int year, int month, int day, int hour, int minute, double second, unsigned long& dayNumber,
                      double& dayFraction);

    // --- GPS time -------------------------------------------------------------
    // No leap second or time zone is applied: the GPS week runs on the
    // point's own MJD, intended. Week 0 starts at MJD 44244 (1980-01-06).
    static double GpsTime(int week, double secondsOfWeek);  // 7 w + s / 86400 + 44244
    double SetGpsTime(int week, double secondsOfWeek);      // sets the point, returns its MJD
    // Week (truncated toward zero) and seconds of week of the point; both
    // are written in any case, true only for week >= 0 and 0 <= s < 604800.
    bool GetGpsTime(int& week, double& secondsOfWeek) const;

    // --- Time zone --------------------------------------------------------------
    // The zone in hours from the platform (TZ): whole hours q and minutes of
    // the standard-time offset; |q| + |minutes| / 60, positive when q < 0
    // (east of UTC) and negative otherwise. The sign comes from the
    // whole-hour quotient alone, intended: a zone less than an hour east of
    // UTC comes out negative and UTC itself gives -0.0. `daylightHours` is 1.0
    // when daylight saving time is in force now, else 0.0.
    static double LocalTimeZone(double& daylightHours);
    // The process-wide values computed once by LocalTimeZone. SystemTimezone
    // adds the daylight offset when `withDaylight` is non-zero. The Mjd forms
    // are in days.
    static double SystemTimezone(int withDaylight = 0);
    static double SystemDaylight();
    static double SystemTimezoneMjd(int withDaylight = 0);
    static double SystemDaylightMjd();
    // Computes the process-wide values again, for a host that changed TZ.
    static void RefreshSystemTimezone();
    // Now as a local civil MJD, and as the MJD of UTC (whole seconds).
    static double CurrentTime();
    static double CurrentTimeUTC();

    // --- Text -----------------------------------------------------------------
    // Every formatter rounds a copy of the point with `round`
    // (CNyrTimeHelper::eRoundFlag) and expands the pattern with the library's
    // strftime (nyr/time/strftime.h) on its local breakdown; the text is
    // empty when the point cannot be broken down or the text needs 128
    // characters or more.
    std::string Format(int round = CNyrTimeHelper::eRoundSecond) const;  // the current format
    std::string Format(const std::string& pattern, int round = CNyrTimeHelper::eRoundSecond) const;
    // A row of the format table; eTimeFormatCount and above: the current format.
    std::string Format(eTimeFormat format, int round = CNyrTimeHelper::eRoundSecond) const;
    // The pattern is text `id` of `module` (NyrLoadString(module, id)).
    std::string Format(NyrResourceHandle module, unsigned id, int round = CNyrTimeHelper::eRoundSecond) const;
    // The date and the time part of the current format: the pattern up to
    // its first hour conversion ("%H", "%I", "%#H", "%#I"; blanks before it
    // dropped), and from there on. A format without an hour is all date.
    std::string FormatDate(int round = CNyrTimeHelper::eRoundSecond) const;
    std::string FormatTime(int round = CNyrTimeHelper::eRoundSecond) const;
    // The fraction of a second of the rounded copy as "." and digits: 1 for
    // tenths, 2 for hundredths, 3 for thousandths and for every other flag
    // (".000" after whole-second rounding). Meant to follow FormatTime with
    // the same flag: "11:59:59 PM" + ".250".
    std::string FormatFracSec(int round = CNyrTimeHelper::eRoundThousandth) const;
    // The same on the UTC breakdown of the point's instant.
    std::string FormatUTC(int round = CNyrTimeHelper::eRoundSecond) const;
    std::string FormatUTC(const std::string& pattern, int round = CNyrTimeHelper::eRoundSecond) const;
    std::string FormatUTC(eTimeFormat format, int round = CNyrTimeHelper::eRoundSecond) const;
    std::string FormatDateUTC(int round = CNyrTimeHelper::eRoundSecond) const;
    std::string FormatTimeUTC(int round = CNyrTimeHelper::eRoundSecond) const;
    // The calendar fields of an MJD as they stand (no zone is applied), e.g.
    // FormatUTC(CurrentTimeUTC(), "%a, %d %b %y %H:%M:%S GMT").
    static std::string FormatUTC(double mjd, const std::string& pattern, int round = CNyrTimeHelper::eRoundSecond);
    static std::string FormatDateUTC(double mjd, int round = CNyrTimeHelper::eRoundSecond);
    static std::string FormatTimeUTC(double mjd, int round = CNyrTimeHelper::eRoundSecond);

    // Parses `text` with a pattern of the format table's kind, sets the point
    // and returns its MJD. Conversions: %m month, %d %j day, %H %I hour, %M
    // minute, %S second, %Y four-digit year, %y and any other letter a
    // two-digit year, %s seconds with fraction, %D day with fraction, %p the
    // AM/PM word. Each read takes a number from the start of the text and
    // then drops the field (digits, ".", "A", "P", "M") and the separators
    // after it. A two-digit year below 71 is 20yy, else 19yy; "PM" adds 12
    // to an hour below 12 ("12 AM" stays 12). Fields that name no local
    // instant give the seconds count 0, fraction 0 and the result 0.0; the
    // result 0.0 of a text that reads as MJD 0 (1858-11-17 00:00) comes with
    // the seconds count of that day, so a caller tells the two apart by it.
    // Intended, as the format table has always read: "%#d", "%#I" and "%b"
    // read as a year and a dotted date is one field, so of the table only
    // rows 0, 1, 4, 5, 8, 9, 12 and 13 read back field for field.
    double ScanTime(const std::string& text, const std::string& pattern);

    // --- Format selection -------------------------------------------------------
    // The pattern of a table row; null outside 0..31.
    static const char* TimeFormatPattern(int index);
    // The current format, loaded from the settings file on first use.
    static std::string CurrentTimeFormat();
    static int CurrentTimeFormatIndex();
    // Reads the stored index again: absent (-1) and values above 32 select
    // row 0. A stored 32 passes that test (the bound is kept as it is): it
    // stays the current index and selects the pattern of row 0.
    static void ReloadTimeFormat();
    // Stores `format` as the user's choice only when none is stored yet (or
    // the stored index is not a table row); then makes the stored choice
    // current. Ignored for rows 32 and above.
    static void DefaultSettings(eTimeFormat format);
    // Makes row `index` (0 when outside 0..31) current and writes it with its
    // pattern to the settings file; returns the previous current index.
    static int SaveTimeFormat(int index);
    // The character before the year in the current pattern ("%Y", else
    // "%y"); the pattern's third character when the year comes first; a
    // blank without a year.
    static char DateSeparator();
    // 1 when the month comes before the day in the current pattern (or there
    // is no day), 0 otherwise (or there is no month).
    static int DateOrder();

    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // Fills the list with the 32 rows, each showing the current instant in
    // that row's pattern, reloads the current format and selects it.
    static void InitializeTimeFormatComboBox(CTimeFormatComboBox& comboBox);
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // The selected row, -1 when none.
    static int GetCurrentSelection(const CTimeFormatComboBox& comboBox);
    // Widgets only: defined in libNyr240Widgets (link Nyr240::Widgets).
    // Saves the selected row as SaveTimeFormat does; when it differs from the
    // previous one and `window` exists, sends WM_NYR_FORMAT_CHANGED_TIME
    // (wParam old index, lParam new index) to all descendants of `window`.
    static void SaveCurrentSelection(CTimeFormatComboBox& comboBox, QWidget* window);

    // --- Rounding and file stamps -------------------------------------------------
    // Rounds in place (CNyrTimeHelper::Round) and returns the new MJD.
    double Round(int flag);
    // The point as a UTC file time stamp, fraction kept to 100 ns (a zero
    // stamp for instants before 1601), and the point set from one; the
    // setter returns the new MJD (0.0, seconds count 0, for a stamp of 2^63
    // ticks or more).
    FILETIME CduFilestamp() const;
    double SetCduFilestamp(const FILETIME& stamp);

    // Order of instants: seconds count, then fraction (the zone is not
    // compared).
    bool operator==(const CNyrTime& other) const;
    bool operator!=(const CNyrTime& other) const { return !(*this == other); }
    bool operator<(const CNyrTime& other) const;
    bool operator>(const CNyrTime& other) const { return other < *this; }
    bool operator<=(const CNyrTime& other) const { return !(other < *this); }
    bool operator>=(const CNyrTime& other) const { return !(*this < other); }

private:
    CTime m_time;
    double m_fracSecond;
    double m_timezone;
};

// Three-way comparisons for sorted columns: -1, 0, +1. NyrCompare orders
// CNyrTime by MJD (local civil time, so the repeated hour at the end of
// daylight saving time compares equal to its first reading), CTime by its
// seconds count, COleDateTime by its value with non-valid values first (null
// before invalid; equal statuses compare equal). The date-part and
// time-part forms use the ...PartLess tests both ways, so they are true
// three-way comparisons.
NYR_EXPORT int NyrCompare(const CNyrTime& a, const CNyrTime& b);
NYR_EXPORT int NyrCompare(const CTime& a, const CTime& b);
NYR_EXPORT int NyrCompare(const COleDateTime& a, const COleDateTime& b);
NYR_EXPORT int NyrCompareDatePart(const CNyrTime& a, const CNyrTime& b);
NYR_EXPORT int NyrCompareDatePart(const CTime& a, const CTime& b);
NYR_EXPORT int NyrCompareDatePart(const COleDateTime& a, const COleDateTime& b);
NYR_EXPORT int NyrCompareTimePart(const CNyrTime& a, const CNyrTime& b);
NYR_EXPORT int NyrCompareTimePart(const CTime& a, const CTime& b);
NYR_EXPORT int NyrCompareTimePart(const COleDateTime& a, const COleDateTime& b);
