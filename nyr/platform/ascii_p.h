#pragma once

// ASCII character classes, case folding and trimming that ignore the C
// locale: the one home of these helpers in the library. Names the library
// compares without regard to case (registered notifications, message keys,
// library names, find text) must give the same answer whatever locale the
// host set: under tr_TR, tolower('I') is not 'i'. Bytes from 0x80 up are
// left alone, so UTF-8 text passes through unchanged.

#include <cstddef>
#include <string>
#include <string_view>

namespace nyr::ascii {

constexpr char ToLower(char c) noexcept { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c; }
constexpr char ToUpper(char c) noexcept { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - ('a' - 'A')) : c; }
constexpr bool IsDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool IsAlnum(char c) noexcept { return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'z'); }
// Space, tab, line feed, vertical tab, form feed, carriage return: isspace in
// the C locale, whatever locale is set.
constexpr bool IsSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
// IsSpace but line feed: the blanks inside one line of a text file, the CR of
// a "\r\n" end included. The settings store trims these from names and
// values, so a value ending in one does not read back as written.
constexpr bool IsLineBlank(char c) noexcept { return c != '\n' && IsSpace(c); }

// `text` without the characters `isBlank` accepts at either end (IsSpace
// unless another class is given).
template <class IsBlankFn = bool (*)(char) noexcept>
constexpr std::string_view Trimmed(std::string_view text, IsBlankFn isBlank = IsSpace) noexcept
{
    std::size_t first = 0, last = text.size();
    while (first < last && isBlank(text[first]))
        ++first;
    while (last > first && isBlank(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

inline std::string ToLower(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = ToLower(c);
    return out;
}

inline std::string ToUpper(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = ToUpper(c);
    return out;
}

constexpr bool EqualsNoCase(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (ToLower(a[i]) != ToLower(b[i]))
            return false;
    return true;
}

// <0, 0, >0 as strcasecmp, but locale-free; shorter text first on a common prefix.
constexpr int CompareNoCase(std::string_view a, std::string_view b) noexcept
{
    const std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char x = static_cast<unsigned char>(ToLower(a[i]));
        const unsigned char y = static_cast<unsigned char>(ToLower(b[i]));
        if (x != y)
            return x < y ? -1 : 1;
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

}  // namespace nyr::ascii
