#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Number texts independent of the process locale. The C library's printf and
// strtod follow LC_NUMERIC, which a Qt application takes from the user's
// environment (a German desktop would turn 12.5 into "12,5"); the library's
// texts always use '.'.
namespace nyr::values {

// printf's "% .*f": '-' or a blank in front, '.' as the point.
void AppendFixed(std::string& out, double number, int decimals);

// The library's decimal text of a number: a precision of 0 or less gives 6
// decimals (a precision of 0 cannot be asked for here: intended); "% .*f",
// so a negative number that rounds to zero keeps its '-' ("-0.00"), as
// printf shows it; ".0" when the text has no point; with
// `trimTrailingZeros`, zeros after the first decimal are removed from the
// end (12.500000 -> 12.5, 3.000000 -> 3.0).
void AppendDecimalText(std::string& out, double number, int precision, bool trimTrailingZeros);

// Removes "0" characters from the end of a decimal text while more than one
// decimal stays after the point at `point`: 12.500000 -> 12.5, 3.000 -> 3.0.
void DropTrailingZeros(std::string& out, std::size_t point);

// Reads a number as strtod reads it in the C locale: leading white space, an
// optional sign, decimal digits with an optional point and exponent,
// hexadecimal ("0x10" is 16, "0x1p-2" 0.25), "inf", "infinity", "nan";
// reading stops at the first character that does not belong to the number.
// Returns the count of characters read, 0 when the text does not start with
// a number. Beyond the range of a double the result is +-HUGE_VAL (1e400);
// below it, zero or a subnormal number (1e-400 reads as 0, "-1e-400" as -0).
std::size_t ReadNumber(const char* text, double& value);

// The text without the white space (blank, \t, \n, \v, \f, \r) around it.
// The readers' length limit counts what is left: strtod skips white space
// before a number, and a reader ignores what follows one.
std::string_view TrimWhiteSpace(const char* text);

// The shortest text that reads back as the same double ("12.3015", "-0.5").
std::string ShortestText(double number);

}  // namespace nyr::values
