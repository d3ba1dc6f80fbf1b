#pragma once

#include <cstddef>
#include <ctime>
#include <string>

#include "nyr/platform/export.h"

// The library's own strftime: the same text on every platform and in every
// locale, with English names. Conversions ("%#x" drops leading zeros or
// padding blanks where the letter has them; elsewhere "#" is ignored):
//   %a Sun..Sat            %A Sunday..Saturday      %b %h Jan..Dec
//   %B January..December   %p AM / PM               %d 01..31 (day)
//   %e day, blank padded   %H 00..23                %I 01..12
//   %j 001..366            %m 01..12                %M 00..59
//   %S 00..60              %y 00..99                %Y the year, unpadded
//   %C century, 2 digits   %u 1 (Monday)..7         %w 0 (Sunday)..6
//   %U %W week of the year 00..53 (weeks from the first Sunday / Monday)
//   %V %G %g ISO 8601 week, its year and 2-digit year
//   %z +hhmm from tm_gmtoff   %Z tm_zone (empty when unset)
//   %c  %m/%d/%y %H:%M:%S     %#c %A, %B %#d, %Y %H:%M:%S
//   %x  %m/%d/%y              %#x %A, %B %#d, %Y
//   %X %T %H:%M:%S   %D %m/%d/%y   %F %Y-%m-%d   %R %H:%M   %r %I:%M:%S %p
//   %n newline   %t tab   %% percent
// Any other "%" sequence is copied as it stands. Fields out of their ranges
// never read outside a table: a name index out of range gives "?".

// The buffer size of the library's formatting: a text of 128 characters or
// more does not fit (the formatters then give an empty text).
constexpr std::size_t kNyrStrftimeBufferSize = 128;

// Writes the zero-terminated text into `buffer` of `size` bytes and returns
// its length; returns 0 (buffer content unspecified) when text and
// terminator do not fit. A null pattern gives 0.
NYR_EXPORT std::size_t NyrStrftime(char* buffer, std::size_t size, const char* pattern, const struct tm& fields);

// The text, or empty when it needs kNyrStrftimeBufferSize characters or more.
NYR_EXPORT std::string NyrStrftime(const std::string& pattern, const struct tm& fields);
