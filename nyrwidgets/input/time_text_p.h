#pragma once

// Reading the texts of the date/time and time-span fields.

#include <string>
#include <string_view>

#include "nyr/time/time.h"
#include "nyr/time/time_span.h"

namespace nyr::input {

// Which part of a format a date/time field shows.
enum class TimePart { kDateTime, kDate, kTime };

// The part of a format-table pattern: the date up to the first hour
// conversion (blanks before it dropped), the time from there on.
std::string PatternPart(const std::string& pattern, TimePart part);

// Reads text written with a pattern of the format table's kind (or a part
// of one) field by field: %d %#d %m %b (English month names, or the month's
// number) %Y %y (two digits: below 71 is 20yy, else 19yy; four digits are
// the year itself) %H %I %#I %M %S (with an optional fraction ".ddd") %p
// (AM or PM, any case; 12 AM is midnight). Blanks in the pattern match any
// number of blanks, other characters themselves. The text may stop after
// the hour or the minute; what is missing is 0. `base` gives the time of day
// of a date part and the date of a time part. False when a field is out of
// range, the date does not exist, or the local clock never shows it.
// `base` is not read for a date and time.
bool ReadTimeText(std::string_view text, const std::string& pattern, TimePart part, const CNyrTime& base,
                  CNyrTime& out);

// "MJD 60310.25" (a Modified Julian Date of local time) or "GPS 2295 345600.5"
// (GPS week and seconds of week, separated by blanks, ',', ':' or '/'); the
// prefixes in any case. False for other texts and for a point outside years
// 1..9999 or, in GPS form, before week 0 or with seconds outside the week.
bool ReadTimeNumber(std::string_view text, CNyrTime& out);

// A time span: [days "d" | days blank] hours [":" minutes [":" seconds[.fraction]]],
// minutes and seconds below 60, the whole no longer than 2147483647 s:
// "49:05:07", "2 1:05:07", "2d", "0:00:00.25".
bool ReadSpanText(std::string_view text, CNyrTimeSpan& out);

// The fraction of the seconds in `digits` decimals (1 to 3), as a rounding
// flag of the time types.
CNyrTimeHelper::eRoundFlag FractionRounding(int digits);

// `pattern` with ".ddd" after each "%S": the fraction of `fraction` in
// `digits` decimals (none for 0).
std::string WithFraction(const std::string& pattern, double fraction, int digits);

}  // namespace nyr::input
