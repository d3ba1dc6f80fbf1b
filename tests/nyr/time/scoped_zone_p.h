#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "nyr/time/time.h"

namespace nyr::test {

// Sets TZ for the test process (a zone of the system's tzdata such as
// "Europe/Berlin", or a POSIX rule) and puts the previous value back at the
// end of the scope. The library's process-wide zone is computed again both
// times.
class ScopedZone
{
public:
    explicit ScopedZone(const std::string& zone)
    {
        if (const char* old = std::getenv("TZ"))
            m_old = old;
        Apply(zone.c_str());
    }
    ~ScopedZone() { Apply(m_old ? m_old->c_str() : nullptr); }
    ScopedZone(const ScopedZone&) = delete;
    ScopedZone& operator=(const ScopedZone&) = delete;

private:
    static void Apply(const char* zone)
    {
        if (zone)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
        CNyrTime::RefreshSystemTimezone();
    }
    std::optional<std::string> m_old;
};

}  // namespace nyr::test
