// Angle texts and conversions over 1,000,000 angles.
//  - DMS text with symbols at precision 5 (seconds to 5 decimals), written and
//    read back: CNyrFormat::ConvertToString and CNyrValueAngle::ConvertToStd
//    against GeographicLib's DMS::Encode(SECOND, 5) and DMS::Decode on the
//    same angles. Both sides start from radians and end in radians.
//  - Conversion between every pair of the eight angle units.
#include <benchmark/benchmark.h>

#include <GeographicLib/DMS.hpp>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "nyr/values/format.h"
#include "nyr/values/unit_settings.h"
#include "nyr/values/units.h"
#include "nyr/values/value_angle.h"

namespace {

constexpr int kCount = 1'000'000;
constexpr double kPi = 3.141592653589793;
constexpr double kDegreesPerRadian = 180.0 / kPi;

// Angles spread over (-2 pi, 2 pi), the same for every run.
const std::vector<double>& Angles()
{
    static const std::vector<double> angles = [] {
        std::mt19937_64 random(240);
        std::uniform_real_distribution<double> spread(-2 * kPi, 2 * kPi);
        std::vector<double> values(kCount);
        for (double& v : values)
            v = spread(random);
        return values;
    }();
    return angles;
}

CNyrFormat& DmsFormat()
{
    static CNyrFormat format = [] {
        CNyrFormat f(NYR_UNIT_DMS);
        f.Precision(5);
        f.UseDmsSymbols(1);
        return f;
    }();
    return format;
}

const std::vector<std::string>& OurTexts()
{
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> all(kCount);
        for (int i = 0; i < kCount; ++i)
            DmsFormat().ConvertToString(Angles()[i], NYR_UNIT_DMS, all[i]);
        return all;
    }();
    return texts;
}

const std::vector<std::string>& TheirTexts()
{
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> all(kCount);
        for (int i = 0; i < kCount; ++i)
            all[i] = GeographicLib::DMS::Encode(Angles()[i] * kDegreesPerRadian, GeographicLib::DMS::SECOND, 5);
        return all;
    }();
    return texts;
}

void BM_Nyr_FormatDms_1M(benchmark::State& state)
{
    const std::vector<double>& angles = Angles();
    CNyrFormat& format = DmsFormat();
    std::string text;
    for (auto _ : state) {
        for (double angle : angles) {
            format.ConvertToString(angle, NYR_UNIT_DMS, text);
            benchmark::DoNotOptimize(text.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_Nyr_FormatDms_1M)->Unit(benchmark::kMillisecond);

void BM_GeographicLib_FormatDms_1M(benchmark::State& state)
{
    const std::vector<double>& angles = Angles();
    std::string text;
    for (auto _ : state) {
        for (double angle : angles) {
            text = GeographicLib::DMS::Encode(angle * kDegreesPerRadian, GeographicLib::DMS::SECOND, 5);
            benchmark::DoNotOptimize(text.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_GeographicLib_FormatDms_1M)->Unit(benchmark::kMillisecond);

void BM_Nyr_ParseDms_1M(benchmark::State& state)
{
    const std::vector<std::string>& texts = OurTexts();
    CNyrUnitSettingsAngle settings;
    CNyrValueAngle angle(0.0, settings);
    for (auto _ : state) {
        for (const std::string& text : texts) {
            angle.ConvertToStd(text.c_str(), NYR_UNIT_DMS);
            benchmark::DoNotOptimize(angle.GetDouble());
        }
    }
    if (!angle.IsValid())
        state.SkipWithError("a text was refused");
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_Nyr_ParseDms_1M)->Unit(benchmark::kMillisecond);

void BM_GeographicLib_ParseDms_1M(benchmark::State& state)
{
    const std::vector<std::string>& texts = TheirTexts();
    GeographicLib::DMS::flag indicator;
    for (auto _ : state) {
        for (const std::string& text : texts)
            benchmark::DoNotOptimize(GeographicLib::DMS::Decode(text, indicator) / kDegreesPerRadian);
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_GeographicLib_ParseDms_1M)->Unit(benchmark::kMillisecond);

// Every pair of the eight angle units (64 pairs, same-unit copies
// included) over the same million values given in the source unit.
void BM_Nyr_ConvertAngle_AllPairs_1M(benchmark::State& state)
{
    std::vector<std::vector<double>> inUnit;
    for (const NYR_UNIT_TEXT* from = NyrUnitTableAngle(); from->unit != -1; ++from) {
        std::vector<double> values(kCount);
        for (int i = 0; i < kCount; ++i)
            CNyrValue::Convert(Angles()[i], NYR_UNIT_RADIANS, values[i], from->unit, -1, 0);
        inUnit.push_back(std::move(values));
    }
    for (auto _ : state) {
        int f = 0;
        for (const NYR_UNIT_TEXT* from = NyrUnitTableAngle(); from->unit != -1; ++from, ++f)
            for (const NYR_UNIT_TEXT* to = NyrUnitTableAngle(); to->unit != -1; ++to)
                for (double value : inUnit[f]) {
                    double out;
                    CNyrValue::Convert(value, from->unit, out, to->unit, 8, 0);
                    benchmark::DoNotOptimize(out);
                }
    }
    state.SetItemsProcessed(state.iterations() * kCount * 64);
}
BENCHMARK(BM_Nyr_ConvertAngle_AllPairs_1M)->Unit(benchmark::kMillisecond)->Iterations(1);

// Single pairs: reading and writing the packed forms against plain scaling.
void BM_Nyr_ConvertAngle_Pair_1M(benchmark::State& state)
{
    const long from = state.range(0);
    const long to = state.range(1);
    std::vector<double> values(kCount);
    for (int i = 0; i < kCount; ++i)
        CNyrValue::Convert(Angles()[i], NYR_UNIT_RADIANS, values[i], from, -1, 0);
    for (auto _ : state) {
        for (double value : values) {
            double out;
            CNyrValue::Convert(value, from, out, to, 8, 0);
            benchmark::DoNotOptimize(out);
        }
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_Nyr_ConvertAngle_Pair_1M)
    ->Unit(benchmark::kMillisecond)
    ->Args({NYR_UNIT_DEGREE, NYR_UNIT_RADIANS})
    ->Args({NYR_UNIT_DMS, NYR_UNIT_RADIANS})
    ->Args({NYR_UNIT_RADIANS, NYR_UNIT_DMS})
    ->Args({NYR_UNIT_DMS, NYR_UNIT_GON});

}  // namespace

BENCHMARK_MAIN();
