// Timings of nyr-survey on the offscreen platform, one measurement per run,
// printed as JSON for suite.py:
//   bench_survey open FILE      opens a points file through the window (as
//                               File > Open does) and draws the first screen
//                               (the list and the plan):
//                               {"ms", "points", "peak_bytes"} where peak_bytes
//                               is the growth of the peak resident size
//   bench_survey units COUNT    COUNT generated points on screen; the median
//                               time of a change of distance unit, drawn:
//                               {"ms", "points"}
#include <QApplication>
#include <QFile>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "apps/nyr-survey/app/settings.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"
#include "apps/nyr-survey/window/unit_bar.h"
#include "nyrwidgets/values/unit_combo_box.h"

namespace {

using Clock = std::chrono::steady_clock;

double Ms(Clock::time_point since)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - since).count();
}

// VmHWM of /proc/self/status, in bytes.
long long PeakBytes()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::atoll(line.c_str() + 6) * 1024;
    return 0;
}

// Resets the peak to the current size, so later peaks count from here.
void ResetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

// Everything a new project or a unit change redraws: the list (header and
// rows on screen) and the plan beside it.
void Draw(survey::CMainWindow& window)
{
    window.centralWidget()->repaint();
}

int Open(const char* path)
{
    survey::CMainWindow window;
    window.show();
    QApplication::processEvents();
    Draw(window);
    ResetPeak();
    const long long before = PeakBytes();
    const auto start = Clock::now();
    if (!window.OpenFile(QString::fromLocal8Bit(path)))
        return 1;
    Draw(window);
    const double ms = Ms(start);
    std::printf("{\"ms\": %.3f, \"points\": %d, \"peak_bytes\": %lld}\n", ms, window.View()->GetItemCount(),
                PeakBytes() - before);
    return 0;
}

int Units(long count)
{
    survey::CMainWindow window;
    window.GenerateTestData(static_cast<std::size_t>(count));
    window.show();
    QApplication::processEvents();
    Draw(window);
    QComboBox* box = window.UnitBar()->DistanceBox();
    std::vector<double> samples;
    for (int i = 0; i < 41; ++i) {
        const auto start = Clock::now();
        box->setCurrentIndex((box->currentIndex() + 1) % box->count());  // the library tells every view
        Draw(window);
        samples.push_back(Ms(start));
    }
    std::nth_element(samples.begin(), samples.begin() + 20, samples.end());
    std::printf("{\"ms\": %.4f, \"points\": %ld}\n", samples[20], count);
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    if (argc != 4 && argc != 3) {
        std::fprintf(stderr, "bench_survey open FILE | units COUNT  [SETTINGS]\n");
        return 2;
    }
    const std::string mode = argv[1];
    survey::InitializeApplication(argc == 4 ? argv[3] : "/tmp/nyr-bench-survey.ini");
    if (mode == "open")
        return Open(argv[2]);
    if (mode == "units")
        return Units(std::atol(argv[2]));
    return 2;
}
