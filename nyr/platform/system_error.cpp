#include "nyr/platform/system_error.h"

#include <cstring>

std::string NyrSystemErrorText(unsigned long code)
{
    char buffer[256];
    // The GNU strerror_r returns a pointer that may or may not be our buffer.
    const char* text = strerror_r(static_cast<int>(code), buffer, sizeof buffer);
    return text ? std::string(text) : std::string();
}
