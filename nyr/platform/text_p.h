#pragma once

// Blanks and trimming, written once for the whole library. Locale-free, like
// the case folding beside it (ascii_p.h): what counts as a blank must not
// change with the host's locale. Bytes from 0x80 up (parts of UTF-8
// characters) are never blanks.

#include <string_view>

namespace nyr::text {

// White space as the C locale has it: space, tab, LF, VT, FF and CR.
constexpr bool IsSpace(char c) noexcept
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// What the settings store trims from the ends of the names and values it
// reads: white space except LF, which ends a line there.
constexpr bool IsProfileBlank(char c) noexcept
{
    return c != '\n' && IsSpace(c);
}

// `text` without the characters `blank` accepts at either end.
template <class Blank>
constexpr std::string_view TrimmedBy(std::string_view text, Blank blank) noexcept
{
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && blank(text[first]))
        ++first;
    while (last > first && blank(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

// `text` without white space (IsSpace) at either end.
constexpr std::string_view Trimmed(std::string_view text) noexcept
{
    return TrimmedBy(text, IsSpace);
}

}  // namespace nyr::text
