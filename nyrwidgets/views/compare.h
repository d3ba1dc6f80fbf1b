#pragma once

#include <string>

#include "nyr/platform/export.h"

// Three-way comparisons used by sorting: negative when a comes before b, 0
// when they are equal, positive when a comes after b (the results are -1, 0
// and 1). The overloads for the time types live beside those types.

// Texts in byte order (UTF-8 sorts by code point this way), case-sensitive.
NYR_EXPORT int NyrCompare(const std::string& a, const std::string& b);
// Texts ignoring the case of the ASCII letters: both are folded to lower case
// before the byte comparison, so "_" (0x5F) sorts before "a" and "A" alike.
// Other bytes, multibyte characters included, compare as they are.
NYR_EXPORT int NyrCompareIS(const std::string& a, const std::string& b);

NYR_EXPORT int NyrCompare(int a, int b);
NYR_EXPORT int NyrCompare(long a, long b);
NYR_EXPORT int NyrCompare(unsigned int a, unsigned int b);
NYR_EXPORT int NyrCompare(unsigned long a, unsigned long b);
// Numbers in their order; NaNs are equal to each other and come after every
// number, so that the comparison stays a total order.
NYR_EXPORT int NyrCompare(double a, double b);
