#pragma once

#include <string>

#include "nyr/platform/export.h"

// The system's message text for an error number (the counterpart of the
// Windows message table): strerror's English text for an errno value, without
// a trailing line break. Unknown numbers give "Unknown error N".
NYR_EXPORT std::string NyrSystemErrorText(unsigned long code);
