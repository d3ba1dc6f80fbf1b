// Find and save-as export on the report view with 1,000,000 items of six
// columns. The find passes (one that matches nothing, so every cell of every
// row is searched, and one that matches only the last row) run beside a
// plain loop that fetches the same cell texts through the view and searches
// them with std::string::find: the difference is the find engine's own
// cost. The export writes all rows with a header line as CSV.
//
// --export_file=PATH keeps the last export there, for the comparison run of
// pandas' DataFrame.to_csv on the same table.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <cstdio>
#include <cstring>
#include <string>

#include "bench/qt_bench_p.h"
#include "bench/views/bench_items_p.h"
#include "nyrwidgets/views/report_view_save_as_dlg_cv.h"

using nyr::bench::BenchItem;
using nyr::bench::Row;
using nyr::bench::Seconds;
using Crit = CNyrListViewFind::CSearchCrit;

namespace {

constexpr int kRows = 1000000;
std::string g_exportFile;

CNyrReportView& SharedView()
{
    static CNyrReportView* view = [] {
        auto* v = new CNyrReportView;
        nyr::bench::AddColumns(*v);
        for (const Row& r : nyr::bench::MakeRows(kRows))
            v->AddRealItem(new BenchItem(r));
        v->DisplayRealItems(0);
        return v;
    }();
    return *view;
}

// The text searched for: absent from every cell, or the last row's id
// (which no other cell holds: ids have at most six digits, values five
// before the point).
std::string Needle(int matchLast)
{
    return matchLast ? std::to_string(kRows - 1) : std::string("qxqx");
}

// The plain loop: the same cells fetched through the view and searched with
// std::string::find, nothing else. Returns the first matching row or -1.
int PlainLoop(const CNyrReportView& view, const std::string& needle)
{
    const int rows = view.GetItemCount();
    const int cols = view.GetColumnCount();
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            if (view.GetItemText(r, c).find(needle) != std::string::npos)
                return r;
        }
    }
    return -1;
}

// The engine (one search from the first row over all columns) and the plain
// loop, run back to back in alternating order so that both see the same
// load on a shared machine. The time is the engine's; the counters carry
// both (ms). Arguments: match the last row, match case.
void BM_Find_1M(benchmark::State& state)
{
    CNyrReportView& view = SharedView();
    CNyrListViewFind& find = view.GetFind();
    Crit crit;
    crit.searchString = Needle(static_cast<int>(state.range(0)));
    crit.matchCase = static_cast<int>(state.range(1));
    const int expected = state.range(0) ? kRows - 1 : -1;
    double engine = 0;
    double plain = 0;
    bool engineFirst = true;
    for (auto _ : state) {
        int found = 0;
        int looped = 0;
        const auto runEngine = [&] {
            crit.startFromBeginning = 1;
            return Seconds([&] { found = find.FindNextScreenItem(crit, 0); });
        };
        const auto runPlain = [&] { return Seconds([&] { looped = PlainLoop(view, crit.searchString); }); };
        double e;
        if (engineFirst) {
            e = runEngine();
            plain += runPlain();
        } else {
            plain += runPlain();
            e = runEngine();
        }
        engineFirst = !engineFirst;
        engine += e;
        state.SetIterationTime(e);
        if (found != expected || looped != expected)
            state.SkipWithError("a search found the wrong row");
    }
    const auto n = static_cast<double>(state.iterations());
    state.counters["engine_ms"] = 1e3 * engine / n;
    state.counters["plain_ms"] = 1e3 * plain / n;
    state.SetItemsProcessed(state.iterations() * kRows);
}

// All rows with the header line to a CSV file.
void BM_ExportCsv_1M(benchmark::State& state)
{
    CNyrReportView& view = SharedView();
    CNyrListViewSaveAsDlgCV::SAVE_AS_INFO info;
    info.list = &view;
    info.fileType = CNyrListViewSaveAsDlgCV::FileTypeCsv;
    info.fileName = g_exportFile.empty() ? std::string(P_tmpdir) + "/nyr_bench_export.csv" : g_exportFile;
    CNyrReportViewSaveAsDlgCV dialog(info);
    for (auto _ : state) {
        int ok = 0;
        state.SetIterationTime(Seconds([&] { ok = dialog.SaveData(); }));
        if (!ok)
            state.SkipWithError("the export failed");
    }
    if (g_exportFile.empty())
        std::remove(info.fileName.c_str());
    state.SetItemsProcessed(state.iterations() * kRows);
}

BENCHMARK(BM_Find_1M)->Args({0, 0})->Args({1, 0})->Args({0, 1})->UseManualTime()->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK(BM_ExportCsv_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv)
{
    // Our own flag, taken out before Google Benchmark reads the rest.
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--export_file=", 14) == 0)
            g_exportFile = argv[i] + 14;
        else
            argv[kept++] = argv[i];
    }
    return nyr::bench::RunQtBenchmarks(kept, argv);
}
