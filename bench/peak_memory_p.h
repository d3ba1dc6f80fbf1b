#pragma once

// The peak resident memory of this process so far (VmHWM), for the memory
// benchmarks.

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace nyr::bench {

// In kB; -1 where /proc cannot tell.
inline long PeakKilobytes()
{
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f)
        return -1;
    char line[256];
    long kb = -1;
    while (std::fgets(line, sizeof line, f)) {
        if (std::strncmp(line, "VmHWM:", 6) == 0)
            kb = std::atol(line + 6);
    }
    std::fclose(f);
    return kb;
}

}  // namespace nyr::bench
