#pragma once

#include <cmath>
#include <string>

#include "nyr/platform/export.h"

// Three-way comparisons used by sorting: negative when a comes before b, 0
// when they are equal, positive when a comes after b (the results are -1, 0
// and 1). The overloads for the time types live beside those types
// (nyr/time/time.h). The plain ones are inline: a sort calls them millions of
// times.

namespace nyr::views_detail {

template <class T>
constexpr int Sign(T a, T b)
{
    return (a < b) ? -1 : (b < a) ? 1 : 0;
}

}  // namespace nyr::views_detail

// Texts in byte order (UTF-8 sorts by code point this way), case-sensitive.
inline int NyrCompare(const std::string& a, const std::string& b)
{
    const int r = a.compare(b);
    return (r > 0) - (r < 0);
}

// Texts ignoring the case of the ASCII letters: both are folded to lower case
// before the byte comparison, so "_" (0x5F) sorts before "a" and "A" alike.
// Other bytes, multibyte characters included, compare as they are.
NYR_EXPORT int NyrCompareIS(const std::string& a, const std::string& b);

inline int NyrCompare(int a, int b)
{
    return nyr::views_detail::Sign(a, b);
}

inline int NyrCompare(long a, long b)
{
    return nyr::views_detail::Sign(a, b);
}

inline int NyrCompare(unsigned int a, unsigned int b)
{
    return nyr::views_detail::Sign(a, b);
}

inline int NyrCompare(unsigned long a, unsigned long b)
{
    return nyr::views_detail::Sign(a, b);
}

// Numbers in their order; NaNs are equal to each other and come after every
// number, so that the comparison stays a total order.
inline int NyrCompare(double a, double b)
{
    const bool nanA = std::isnan(a);
    const bool nanB = std::isnan(b);
    if (nanA || nanB)
        return nyr::views_detail::Sign(nanA, nanB);
    return nyr::views_detail::Sign(a, b);
}
