import subprocess

from benchlib import Row

POINTS = 1_000_000


def peak_kb(ctx, mode):
    out = subprocess.run([f"{ctx.build_dir}/bench/plan/bench_plan_memory", mode, str(POINTS)],
                         check=True, capture_output=True, text=True).stdout
    return int(out.strip().splitlines()[-1])


def run(ctx):
    t = ctx.gbench("bench/plan/bench_plan")
    ms = 1e6
    scene = "QGraphicsView of QGraphicsEllipseItems, same size, fitted"
    rows = [
        Row("draw 1,000,000 points at zoom to all, 800 x 600", t["BM_PlanRedraw_1M/iterations:10/manual_time"] / ms,
            t["BM_SceneRedraw_1M/iterations:2/manual_time"] / ms, other=scene, target=">= 10"),
        Row("first draw of the same (the plan reads every item; the scene builds its index)",
            t["BM_PlanFirstDraw_1M/iterations:2/manual_time"] / ms,
            t["BM_SceneFirstDraw_1M/iterations:1/manual_time"] / ms, other=scene),
        Row("one frame of panning (7 px) at zoom to all, 1,000,000 points",
            t["BM_PlanPanFrame_1M/iterations:32/manual_time"] / ms, 16.0, other="frame budget of 16 ms",
            target=">= 1"),
        Row("one frame of zooming (a wheel step, 1x to 36x and back), 1,000,000 points",
            t["BM_PlanZoomFrame_1M/iterations:32/manual_time"] / ms, 16.0, other="frame budget of 16 ms",
            target=">= 1"),
    ]
    # Bookkeeping: the peak with the plan minus the peak of the report view
    # alone, per point.
    per_point = (peak_kb(ctx, "plan") - peak_kb(ctx, "report")) * 1024 / POINTS
    rows.append(Row("plan bookkeeping per point beyond the items and the report view (peak memory)", per_point, 32.0,
                    other="budget of 32 bytes", unit="bytes", target=">= 1.0"))
    return rows
