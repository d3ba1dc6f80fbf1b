#pragma once

#include <cstdarg>
#include <string>

#include "nyr/platform/export.h"

// printf into a std::string of any length (the framework's CString::Format).
NYR_EXPORT std::string NyrFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));
NYR_EXPORT std::string NyrFormatV(const char* format, va_list args);

// The printf conversions of a format in order, each reduced to its letter
// after a '%' ("%d:%s" gives "ds", "%%" is skipped, "%-8.*f" gives "*f").
// Language modules are checked with it so that a translated format always
// takes the arguments the library passes.
NYR_EXPORT std::string NyrFormatConversions(const std::string& format);
