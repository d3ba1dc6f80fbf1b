#pragma once

// What the benchmarks of the Qt layer share: a main that runs them in a
// QApplication on the offscreen platform, and the peak memory of the
// process for the memory runs.

#include <benchmark/benchmark.h>

#include <QApplication>
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

// Runs the Google Benchmarks of this program (the flags left in argv) in a
// QApplication on the offscreen platform, after `setUp` (when given) has run
// with the application in place; main's result.
inline int RunQtBenchmarks(int argc, char** argv, void (*setUp)() = nullptr)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    if (setUp)
        setUp();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace nyr::bench
