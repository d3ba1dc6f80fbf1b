import json
import os
import shutil
import statistics
import subprocess
import tempfile

from benchlib import Row

POINTS = 1_000_000

# pandas' read_csv of the same file, alone: the median time of the call in ms.
PANDAS = r"""
import json, sys, time, statistics
import pandas as pd
path, reps = sys.argv[1], int(sys.argv[2])
samples = []
for _ in range(reps):
    start = time.perf_counter()
    frame = pd.read_csv(path)
    samples.append((time.perf_counter() - start) * 1e3)
    del frame
print(json.dumps({"ms": statistics.median(samples)}))
"""


def _run(args, env):
    out = subprocess.run(args, check=True, capture_output=True, text=True, env=env).stdout
    return json.loads(out.strip().splitlines()[-1])


def run(ctx):
    reps = 1 if ctx.quick else ctx.repetitions
    bench = f"{ctx.build_dir}/bench/survey/bench_survey"
    app = f"{ctx.build_dir}/apps/nyr-survey/nyr-survey"
    work = tempfile.mkdtemp(prefix="nyr-bench-survey-")
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen", TZ="Europe/Berlin")
    try:
        points = os.path.join(work, "points.csv")
        ini = os.path.join(work, "bench.ini")
        subprocess.run([app, "--generate", str(POINTS), points], check=True, env=env)
        size = os.path.getsize(points)
        opens = [_run([bench, "open", points, ini], env) for _ in range(reps)]
        pandas = json.loads(subprocess.run(["/usr/bin/python3", "-c", PANDAS, points, str(reps)], check=True,
                                           capture_output=True, text=True).stdout)
        big = [_run([bench, "units", str(POINTS), ini], env)["ms"] for _ in range(reps)]
        small = [_run([bench, "units", "1000", ini], env)["ms"] for _ in range(reps)]
    finally:
        shutil.rmtree(work, ignore_errors=True)

    ours = statistics.median(o["ms"] for o in opens)
    peak = statistics.median(o["peak_bytes"] for o in opens)
    per_point = (peak - size) / POINTS
    ctx.notes.append(f"survey: open {POINTS:,} points ({size / 1e6:.0f} MB): peak memory grows {peak / 1e6:.0f} MB, "
                     f"{per_point:.0f} bytes per point beyond the file's size (target <= 256)")
    return [
        Row(f"open a {POINTS:,}-point CSV ({size / 1e6:.0f} MB) and draw the first screen", ours, pandas["ms"],
            other="pandas read_csv of the same file alone", target=">= 1.0",
            note=f"{per_point:.0f} B/point beyond the file (<= 256)"),
        Row(f"change the distance unit with {POINTS:,} points on screen, drawn", statistics.median(big),
            statistics.median(small), other="the same with 1,000 points", target=">= 0.5",
            note="ratio 1,000-point time / 1,000,000-point time: only the rows on screen are formatted"),
    ]
