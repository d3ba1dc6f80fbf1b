// The cost of one keystroke in each typed field: the field's validator on
// every prefix of a typical text, as typing it produces them, against Qt's
// QDoubleValidator on the same prefixes.
#include <benchmark/benchmark.h>

#include <QDoubleValidator>
#include <memory>

#include "bench/qt_bench_p.h"
#include "nyr/util/profile_entries.h"
#include "nyr/values/unit_settings.h"
#include "nyrwidgets/input/input_control.h"
#include "nyrwidgets/input/input_time.h"

namespace {

// A typical text of each kind, in the units and format set up in main().
struct Typed
{
    int kind;
    const char* text;
};

constexpr Typed kTexts[] = {
    {NYR_INPUT_INTEGER, "-1234567"},
    {NYR_INPUT_FLOAT, "-12345.678901"},
    {NYR_INPUT_STRING, "Station 12 North"},
    {NYR_INPUT_FILENAME, "/home/surveyor/jobs/2024/points.csv"},
    {NYR_INPUT_ANGLE, "123\u00b0 45' 06.78900\""},
    {NYR_INPUT_DISTANCE, "1234.567890"},
    {NYR_INPUT_LATITUDE, "48\u00b0 30' 15.12345\" N"},
    {NYR_INPUT_LONGITUDE, "123\u00b0 30' 15.12345\" W"},
    {NYR_INPUT_DATETIME, "03/05/2024 13:02:03"},
    {NYR_INPUT_TIMESPAN, "49:05:07.25"},
};

QStringList Prefixes(const char* text)
{
    const QString whole = QString::fromUtf8(text);
    QStringList prefixes;
    for (qsizetype n = 1; n <= whole.size(); ++n)
        prefixes << whole.left(n);
    return prefixes;
}

// One keystroke per iteration: the prefixes in turn, as typing makes them.
void Run(benchmark::State& state, const QValidator& validator, const QStringList& prefixes)
{
    qsizetype next = 0;
    for (auto _ : state) {
        QString prefix = prefixes[next];
        next = next + 1 == prefixes.size() ? 0 : next + 1;
        int position = static_cast<int>(prefix.size());
        benchmark::DoNotOptimize(validator.validate(prefix, position));
    }
}

void BM_Nyr_Keystroke(benchmark::State& state)
{
    const Typed& typed = kTexts[state.range(0)];
    std::unique_ptr<CNyrInputControl> field(NyrCreateInputControl(typed.kind));
    Run(state, *field->validator(), Prefixes(typed.text));
}

void BM_QDoubleValidator_Keystroke(benchmark::State& state)
{
    QDoubleValidator validator;
    validator.setLocale(QLocale::c());
    Run(state, validator, Prefixes(kTexts[state.range(0)].text));
}

BENCHMARK(BM_Nyr_Keystroke)->DenseRange(0, std::size(kTexts) - 1);
BENCHMARK(BM_QDoubleValidator_Keystroke)->DenseRange(0, std::size(kTexts) - 1);

}  // namespace

int main(int argc, char** argv)
{
    // Units and format of the texts above; nothing is read from or written
    // to the user's settings.
    return nyr::bench::RunQtBenchmarks(argc, argv, [] {
        NyrSetProfilePath("/nonexistent/nyr-bench-input.ini");
        CNyrUnitSettingsAngle::Default().Unit(NYR_UNIT_DMS);
        CNyrUnitSettingsAngle::Default().Precision(5);
        CNyrUnitSettingsAngleLatLon::Default().Unit(NYR_UNIT_DMS);
        CNyrUnitSettingsAngleLatLon::Default().Precision(5);
        CNyrUnitSettingsDistance::Default().Unit(NYR_UNIT_METRES);
    });
}
