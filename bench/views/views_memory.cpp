// Peak memory of a report view's bookkeeping. Run twice with the same N:
//   bench_views_memory items N   the items alone, held in a vector of pointers
//   bench_views_memory view N    the items in a report view: added, shown,
//                                sorted by a text column, painted once
// Both start the same Qt application and create an empty view first, so the
// difference of the two peaks (VmHWM, kB) is what the view spends on the
// items. Prints the peak in kB.
#include <QApplication>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/qt_bench_p.h"
#include "bench/views/bench_items_p.h"

int main(int argc, char** argv)
{
    if (argc != 3 || (std::strcmp(argv[1], "items") != 0 && std::strcmp(argv[1], "view") != 0)) {
        std::fprintf(stderr, "usage: %s items|view N\n", argv[0]);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    const int n = std::atoi(argv[2]);
    // The rows' own values are made and dropped before the measured part.
    std::vector<nyr::bench::Row> rows = nyr::bench::MakeRows(n);

    auto view = std::make_unique<CNyrReportView>();
    nyr::bench::AddColumns(*view);
    view->resize(800, 600);
    (void)view->grab();

    if (std::strcmp(argv[1], "items") == 0) {
        std::vector<nyr::bench::BenchItem*> items;
        items.reserve(rows.size());
        for (const nyr::bench::Row& r : rows)
            items.push_back(new nyr::bench::BenchItem(r));
        std::printf("%ld\n", nyr::bench::PeakKilobytes());
        for (auto* item : items)
            delete item;
        return 0;
    }
    for (const nyr::bench::Row& r : rows)
        view->AddRealItem(new nyr::bench::BenchItem(r));
    view->DisplayRealItems(0);
    view->SortList(std::vector<CNyrReportView::SORT_STATE_REALCOL>{{nyr::bench::kColText, 1}});
    (void)view->grab();
    std::printf("%ld\n", nyr::bench::PeakKilobytes());
    return 0;
}
