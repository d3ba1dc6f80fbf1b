// A report view of 100,000 items of six columns printed to a PDF file, two
// ways, in one process and on one QPrinter: through the library's printout
// (NyrPrintListView), and the usual Qt way, the same cell texts as an HTML
// table in a QTextDocument printed with QTextDocument::print. Both run back
// to back, the one that goes first changing from run to run, so that both
// see the same load on a shared machine. The time is ours; the counters
// carry both (ms) and our pages.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <cstdio>

#include "bench/print/print_bench_p.h"

using nyr::bench::Seconds;

namespace {

constexpr int kRows = 100000;

CNyrReportView& SharedView()
{
    // The widgets need an application; the benchmark's main has none.
    static int argc = 1;
    static char name[] = "bench_print";
    static char* argv[] = {name, nullptr};
    static QApplication* app = (setenv("QT_QPA_PLATFORM", "offscreen", 0), new QApplication(argc, argv));
    static const std::unique_ptr<CNyrReportView> view = nyr::bench::MakeView(kRows);
    (void)app;
    return *view;
}

void BM_PrintPdf_100k(benchmark::State& state)
{
    CNyrReportView& view = SharedView();
    QPrinter printer(QPrinter::HighResolution);
    const std::string files[2] = {std::string(P_tmpdir) + "/nyr_bench_print_ours.pdf",
                                  std::string(P_tmpdir) + "/nyr_bench_print_theirs.pdf"};
    static int run = 0;
    double seconds[2] = {0, 0};
    int pages[2] = {0, 0};
    for (auto _ : state) {
        double taken[2] = {0, 0};
        for (int i = 0; i < 2; ++i) {
            const int way = (i + run) % 2;  // 0 ours, 1 theirs
            nyr::bench::SetUpPrinter(printer, files[way]);
            taken[way] = Seconds([&] {
                pages[way] = way == 0 ? nyr::bench::PrintOurs(view, printer) : nyr::bench::PrintTheirs(view, printer);
            });
            seconds[way] += taken[way];
        }
        ++run;
        state.SetIterationTime(taken[0]);
        if (pages[0] == 0 || pages[1] == 0)
            state.SkipWithError("a printout failed");
    }
    for (const std::string& file : files)
        std::remove(file.c_str());
    const auto n = static_cast<double>(state.iterations());
    state.counters["ours_ms"] = 1e3 * seconds[0] / n;
    state.counters["theirs_ms"] = 1e3 * seconds[1] / n;
    state.counters["ours_pages"] = pages[0];
    state.SetItemsProcessed(state.iterations() * kRows);
}

BENCHMARK(BM_PrintPdf_100k)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
