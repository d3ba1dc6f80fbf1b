#pragma once

#include <cstdarg>
#include <string>
#include <string_view>
#include <vector>

#include "nyr/platform/export.h"

// printf into a std::string of any length (the framework's CString::Format).
// Never empty for a non-empty format: where printf fails (a conversion it
// does not know, a result longer than INT_MAX, no memory), the format comes
// back as it stands.
NYR_EXPORT std::string NyrFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));
NYR_EXPORT std::string NyrFormatV(const char* format, va_list args);

// The conversions of a text-table text in order, each whole as written:
// "%d", "%-8.*f", "%ls" (flags "-+ #0", width and precision as digits or "*",
// length hh h l ll L j z t, a conversion letter of d i o u x X e E f F g G a A
// c s p), and the library's named placeholders "%MIN" and "%MAX". "%%" is
// text, not a conversion. False, with `conversions` holding those before it,
// at the first "%" that starts none of these: a lone "%" at the end, "%z",
// "%.66", "%n", "%1$d", a zero byte. Language modules are checked with it,
// so that a translated text takes exactly the arguments the library passes.
NYR_EXPORT bool NyrFormatConversions(std::string_view format, std::vector<std::string>& conversions);
