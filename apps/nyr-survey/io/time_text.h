#pragma once

#include <string>
#include <string_view>

class CNyrTime;

// Observation times as points files write them.
namespace survey {

// "2016-12-31T23:59:59.250Z": the instant in UTC, milliseconds rounded down.
// Empty for a point outside years 1..9999.
std::string FormatIsoUtc(const CNyrTime& time);

// Reads "YYYY-MM-DD[T| ]HH:MM[:SS[.fff...]]" followed by "Z", "+HH:MM",
// "-HH:MM" (an instant) or nothing (UTC when `bareIsUtc`, else local time).
// The text is read whole or not at all; fields are checked (month 1..12,
// the day against the month, hour 0..23, minute and second 0..59; a second
// of 60, the leap second itself, is refused: the time point cannot hold it).
bool ParseIsoTime(std::string_view text, bool bareIsUtc, CNyrTime& time);

// Reads local time written with a pattern of the time-format table
// (CNyrTime::TimeFormatPattern): %d %#d %m %Y %y %H %#H %I %#I %M %S %p %b
// and literal characters; two-digit years below 71 are 20yy. Seconds may
// carry a fraction. The text is read whole or not at all.
bool ParsePatternTime(std::string_view text, const char* pattern, CNyrTime& time);

// An observation time in any form a points file may hold: ISO first, then
// the current time format, then every row of the table.
bool ParseObservedTime(std::string_view text, CNyrTime& time);

}  // namespace survey
