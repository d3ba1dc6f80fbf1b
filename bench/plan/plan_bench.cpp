// The plan view with 1,000,000 points, 800 x 600 pixels: drawing it at
// "zoom to all" (the first draw, which reads every item, and a redraw), a
// frame of panning and a frame of zooming by one wheel step. The same
// points as QGraphicsEllipseItems in a QGraphicsScene drawn by a
// QGraphicsView of the same size, fitted to the scene, in the same process.
#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <chrono>
#include <cmath>
#include <memory>

#include "bench/plan/plan_points_p.h"
#include "bench/qt_bench_p.h"

namespace {

using nyr::bench::kHeight;
using nyr::bench::kPoints;
using nyr::bench::kWidth;

std::vector<nyr::bench::PlanPosition> Positions()
{
    std::vector<nyr::bench::PlanPosition> positions;
    nyr::bench::PositionStream stream;
    for (int i = 0; i < kPoints; ++i)
        positions.push_back(stream.Next());
    return positions;
}

template <class F>
double Seconds(F&& f)
{
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Plan
{
    Plan()
    {
        nyr::bench::FillReport(report, kPoints);
        nyr::bench::SetUpPlan(plan, report);
    }
    CNyrReportView report;
    CNyrPlanView plan;
};

// The plan every benchmark after the first draw shares, drawn once.
Plan& SharedPlan()
{
    static Plan* shared = [] {
        auto* p = new Plan;
        (void)p->plan.grab();
        return p;
    }();
    return *shared;
}

void BM_PlanFirstDraw_1M(benchmark::State& state)
{
    for (auto _ : state) {
        Plan p;
        state.SetIterationTime(Seconds([&] { benchmark::DoNotOptimize(p.plan.grab()); }));
    }
}

void BM_PlanRedraw_1M(benchmark::State& state)
{
    CNyrPlanView& plan = SharedPlan().plan;
    plan.ZoomToAll();
    for (auto _ : state)
        state.SetIterationTime(Seconds([&] { benchmark::DoNotOptimize(plan.grab()); }));
}

// One frame of a drag: the plan moves 7 pixels (back and forth, so that it
// stays at "zoom to all") and is drawn.
void BM_PlanPanFrame_1M(benchmark::State& state)
{
    CNyrPlanView& plan = SharedPlan().plan;
    plan.ZoomToAll();
    int step = 0;
    for (auto _ : state) {
        const double dx = (step++ / 8) % 2 ? -7.0 : 7.0;
        state.SetIterationTime(Seconds([&] {
            plan.Pan(dx, 3.0);
            benchmark::DoNotOptimize(plan.grab());
        }));
    }
}

// One wheel step around a point off the centre and the frame, from "zoom
// to all" in to 1.25^16 (about 36 times) and out again.
void BM_PlanZoomFrame_1M(benchmark::State& state)
{
    CNyrPlanView& plan = SharedPlan().plan;
    plan.ZoomToAll();
    const QPointF cursor(kWidth * 0.3, kHeight * 0.6);
    int step = 0;
    for (auto _ : state) {
        const double factor = (step++ / 16) % 2 ? 1 / 1.25 : 1.25;
        state.SetIterationTime(Seconds([&] {
            plan.ZoomAt(cursor, factor);
            benchmark::DoNotOptimize(plan.grab());
        }));
    }
}

// The same points as a Qt application would draw them with the graphics
// view: an ellipse item per point, 7 pixels across at the fitted scale,
// filled with its code's colour.
struct Scene
{
    Scene()
    {
        const std::vector<nyr::bench::PlanPosition> positions = Positions();
        double e0 = INFINITY, n0 = INFINITY, e1 = -INFINITY, n1 = -INFINITY;
        for (const auto& p : positions) {
            e0 = std::min(e0, p.e), e1 = std::max(e1, p.e);
            n0 = std::min(n0, p.n), n1 = std::max(n1, p.n);
        }
        const double metresPerPixel = std::max((e1 - e0) / (kWidth * 0.9), (n1 - n0) / (kHeight * 0.9));
        const double r = 3.5 * metresPerPixel;
        for (const auto& p : positions) {
            auto* item = new QGraphicsEllipseItem(p.e - r, -p.n - r, 2 * r, 2 * r);
            item->setBrush(nyr::bench::CodeColor(p.code));
            item->setPen(QPen(Qt::black, 0));
            scene.addItem(item);
        }
        view.resize(kWidth, kHeight);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setFrameShape(QFrame::NoFrame);
        view.fitInView(scene.itemsBoundingRect(), Qt::KeepAspectRatio);
    }
    QGraphicsScene scene;
    QGraphicsView view{&scene};
};

Scene& SharedScene()
{
    static Scene* shared = new Scene;
    return *shared;
}

void BM_SceneFirstDraw_1M(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto s = std::make_unique<Scene>();
        state.ResumeTiming();
        state.SetIterationTime(Seconds([&] { benchmark::DoNotOptimize(s->view.grab()); }));
    }
}

void BM_SceneRedraw_1M(benchmark::State& state)
{
    Scene& s = SharedScene();
    (void)s.view.grab();
    for (auto _ : state)
        state.SetIterationTime(Seconds([&] { benchmark::DoNotOptimize(s.view.grab()); }));
}

BENCHMARK(BM_PlanFirstDraw_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_PlanRedraw_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_PlanPanFrame_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(32);
BENCHMARK(BM_PlanZoomFrame_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(32);
BENCHMARK(BM_SceneFirstDraw_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_SceneRedraw_1M)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

int main(int argc, char** argv)
{
    return nyr::bench::RunQtBenchmarks(argc, argv);
}
