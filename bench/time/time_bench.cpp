// Formatting time points with rows 17 ("%d.%m.%Y %H:%M:%S") and 26
// ("%#d. %b %Y %#I:%M:%S %p") of the format table: the library's own
// strftime against glibc's strftime on the same broken-down times, producing
// the same texts (glibc spells "%#d" as "%-d"); then the whole CNyrTime::Format
// (rounding, local breakdown, text) against localtime_r + strftime. And MJD
// to calendar fields and back against gmtime_r + timegm.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "nyr/time/strftime.h"
#include "nyr/time/time.h"
#include "nyr/util/profile_entries.h"

namespace {

constexpr int kPoints = 1000000;
constexpr const char* kGlibcPattern26 = "%-d. %b %Y %-I:%M:%S %p";

// One million instants spread over 1970..2030, in a zone with daylight saving.
const std::vector<int64_t>& Seconds()
{
    static const std::vector<int64_t> seconds = [] {
        std::vector<int64_t> s(kPoints);
        uint64_t x = 88172645463325252ULL;
        for (auto& v : s) {
            x ^= x << 13, x ^= x >> 7, x ^= x << 17;
            v = static_cast<int64_t>(86400 + x % 1800000000ULL);
        }
        return s;
    }();
    return seconds;
}

const std::vector<struct tm>& Fields()
{
    static const std::vector<struct tm> fields = [] {
        std::vector<struct tm> f(kPoints);
        for (int i = 0; i < kPoints; ++i) {
            const time_t t = static_cast<time_t>(Seconds()[i]);
            localtime_r(&t, &f[i]);
        }
        return f;
    }();
    return fields;
}

// Both formatters must write the same texts, or the comparison means nothing.
void CheckSameTexts(const char* ours, const char* theirs, benchmark::State& state)
{
    char a[128], b[128];
    for (int i = 0; i < kPoints; i += 997) {
        NyrStrftime(a, sizeof a, ours, Fields()[i]);
        strftime(b, sizeof b, theirs, &Fields()[i]);
        if (std::string(a) != b) {
            state.SkipWithError(("texts differ: " + std::string(a) + " / " + b).c_str());
            return;
        }
    }
}

void FormatFields(benchmark::State& state, const char* pattern, bool glibc)
{
    CheckSameTexts(CNyrTime::TimeFormatPattern(static_cast<int>(state.range(0))),
                   state.range(0) == 26 ? kGlibcPattern26 : pattern, state);
    const auto& fields = Fields();
    char buffer[128];
    for (auto _ : state) {
        std::size_t total = 0;
        for (const struct tm& f : fields)
            total += glibc ? strftime(buffer, sizeof buffer, pattern, &f) : NyrStrftime(buffer, sizeof buffer, pattern, f);
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_NyrStrftime_1MTimes(benchmark::State& state)
{
    FormatFields(state, CNyrTime::TimeFormatPattern(static_cast<int>(state.range(0))), false);
}
BENCHMARK(BM_NyrStrftime_1MTimes)->Arg(17)->Arg(26)->Unit(benchmark::kMillisecond);

void BM_GlibcStrftime_1MTimes(benchmark::State& state)
{
    FormatFields(state, state.range(0) == 26 ? kGlibcPattern26 : CNyrTime::TimeFormatPattern(17), true);
}
BENCHMARK(BM_GlibcStrftime_1MTimes)->Arg(17)->Arg(26)->Unit(benchmark::kMillisecond);

void BM_CNyrTimeFormat_1MPoints(benchmark::State& state)
{
    std::vector<CNyrTime> points(Seconds().begin(), Seconds().end());
    const auto row = static_cast<CNyrTime::eTimeFormat>(state.range(0));
    for (auto _ : state) {
        std::size_t total = 0;
        for (const CNyrTime& t : points)
            total += t.Format(row).size();
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(BM_CNyrTimeFormat_1MPoints)->Arg(17)->Arg(26)->Unit(benchmark::kMillisecond);

void BM_LocaltimeStrftime_1MPoints(benchmark::State& state)
{
    const char* pattern = state.range(0) == 26 ? kGlibcPattern26 : CNyrTime::TimeFormatPattern(17);
    char buffer[128];
    for (auto _ : state) {
        std::size_t total = 0;
        for (int64_t s : Seconds()) {
            const time_t t = static_cast<time_t>(s);
            struct tm f;
            localtime_r(&t, &f);
            total += std::string(buffer, strftime(buffer, sizeof buffer, pattern, &f)).size();
        }
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(BM_LocaltimeStrftime_1MPoints)->Arg(17)->Arg(26)->Unit(benchmark::kMillisecond);

// MJD -> calendar fields -> MJD, per conversion pair.
void BM_MjdRoundTrip(benchmark::State& state)
{
    double mjd = 40588.123456;
    long y, m, d, h, mi, s;
    double fraction;
    for (auto _ : state) {
        CNyrTimeHelper::Mjd2Ymd(mjd, y, m, d, h, mi, s, fraction);
        mjd = CNyrTime::Mjd(y, m, d, h, mi, s + fraction) + 0.7316;
        if (mjd > 62500)
            mjd -= 21900;
        benchmark::DoNotOptimize(mjd);
    }
}
BENCHMARK(BM_MjdRoundTrip);

void BM_GmtimeTimegmRoundTrip(benchmark::State& state)
{
    time_t t = 86400;
    for (auto _ : state) {
        struct tm f;
        gmtime_r(&t, &f);
        t = timegm(&f) + 63210;
        if (t > 1890000000)
            t -= 1800000000;
        benchmark::DoNotOptimize(t);
    }
}
BENCHMARK(BM_GmtimeTimegmRoundTrip);

}  // namespace

int main(int argc, char** argv)
{
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    NyrSetProfilePath("/nonexistent/nyr-bench/Nyr240.INI");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
