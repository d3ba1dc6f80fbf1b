// Peak memory of the plan view's bookkeeping. Run twice with the same N:
//   bench_plan_memory report N   the points in a report view, shown and painted
//   bench_plan_memory plan N     the same, and a plan of them: drawn at "zoom
//                                to all", panned, zoomed in and out with
//                                labels, every point selected with the
//                                rubber band
// Both start the same Qt application and make the same report view, so the
// difference of the two peaks (VmHWM, kB) is what the plan spends on the
// points. Prints the peak in kB.
#include <QApplication>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/plan/plan_points_p.h"
#include "bench/qt_bench_p.h"

int main(int argc, char** argv)
{
    if (argc != 3 || (std::strcmp(argv[1], "report") != 0 && std::strcmp(argv[1], "plan") != 0)) {
        std::fprintf(stderr, "usage: %s report|plan N\n", argv[0]);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    const int n = std::atoi(argv[2]);
    auto plan = std::make_unique<CNyrPlanView>();
    plan->resize(nyr::bench::kWidth, nyr::bench::kHeight);
    (void)plan->grab();
    CNyrReportView report;
    report.resize(800, 600);
    nyr::bench::FillReport(report, n);
    (void)report.grab();
    if (std::strcmp(argv[1], "plan") == 0) {
        nyr::bench::SetUpPlan(*plan, report);
        (void)plan->grab();
        for (int i = 0; i < 8; ++i) {
            plan->Pan(7, 3);
            (void)plan->grab();
        }
        for (int i = 0; i < 40; ++i) {
            plan->ZoomAt(QPointF(240, 360), i < 20 ? 1.5 : 1 / 1.5);
            (void)plan->grab();
        }
        plan->SelectRect(QRectF(plan->rect()), false);
        (void)plan->grab();
    }
    std::printf("%ld\n", nyr::bench::PeakKilobytes());
    return 0;
}
