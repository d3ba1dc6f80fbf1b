#pragma once

#include <cstddef>
#include <string>

// Number texts independent of the process locale. The C library's printf and
// strtod follow LC_NUMERIC, which a Qt application takes from the user's
// environment (a German desktop would turn 12.5 into "12,5"); the library's
// texts always use '.'.
namespace nyr::values {

// printf's "% .*f": '-' or a blank in front, '.' as the point.
void AppendFixed(std::string& out, double number, int decimals);

// The library's decimal text of a number: a precision of 0 or less gives 6
// decimals (a precision of 0 cannot be asked for here: intended); "% .*f",
// except that a number that rounds to zero has a blank and not '-';
// ".0" when the text has no point; with `trimTrailingZeros`, zeros after the
// first decimal are removed from the end (12.500000 -> 12.5, 3.000000 -> 3.0).
void AppendDecimalText(std::string& out, double number, int precision, bool trimTrailingZeros);

// Reads a number as strtod reads decimal text: leading white space, an
// optional sign, digits with an optional point and exponent, or "inf", "nan";
// reading stops at the first character that does not belong to the number.
// Hexadecimal forms are not read ("0x10" reads as 0). Returns the count of
// characters read, 0 when the text does not start with a number. A number
// beyond the range of a double (1e400, and 1e-400 too) reads as NaN.
std::size_t ReadNumber(const char* text, double& value);

// The shortest text that reads back as the same double ("12.3015", "-0.5").
std::string ShortestText(double number);

}  // namespace nyr::values
