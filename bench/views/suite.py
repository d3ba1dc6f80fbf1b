import json
import os
import shutil
import statistics
import subprocess
import tempfile

from benchlib import Row

ITEMS = 1_000_000


def peak_kb(ctx, mode):
    out = subprocess.run([f"{ctx.build_dir}/bench/views/bench_views_memory", mode, str(ITEMS)],
                         check=True, capture_output=True, text=True).stdout
    return int(out.strip().splitlines()[-1])


# pandas' DataFrame.to_csv on the table our export wrote: once with every
# column as text (the cells exactly as we wrote them), once with the column
# types pandas infers (int, float, text). Prints the medians in ms as JSON.
PANDAS = r"""
import json, sys, time, statistics
import pandas as pd
src, out, reps = sys.argv[1], sys.argv[2], int(sys.argv[3])
result = {}
for name, frame in (("text", pd.read_csv(src, dtype=str, keep_default_na=False)),
                    ("typed", pd.read_csv(src, keep_default_na=False))):
    samples = []
    for _ in range(reps):
        start = time.perf_counter()
        frame.to_csv(out, index=False, lineterminator="\r\n")
        samples.append((time.perf_counter() - start) * 1e3)
    result[name] = statistics.median(samples)
print(json.dumps(result))
"""


def find_and_export(ctx):
    reps = 1 if ctx.quick else ctx.repetitions
    work = tempfile.mkdtemp(prefix="nyr-bench-views-")
    try:
        ours = os.path.join(work, "ours.csv")
        out = subprocess.run([f"{ctx.build_dir}/bench/views/bench_views_find", f"--export_file={ours}",
                              "--benchmark_format=json", f"--benchmark_repetitions={reps}"],
                             check=True, capture_output=True, text=True).stdout
        runs = {}
        for b in json.loads(out)["benchmarks"]:
            if b.get("run_type") != "aggregate":
                runs.setdefault(b["run_name"], []).append(b)
        pandas = json.loads(subprocess.run(["/usr/bin/python3", "-c", PANDAS, ours, os.path.join(work, "pandas.csv"),
                                            str(reps)], check=True, capture_output=True, text=True).stdout)
    finally:
        shutil.rmtree(work, ignore_errors=True)

    def median(name, key):
        return statistics.median(b[key] for b in runs[name])

    rows = []
    plain = "plain loop: the same cell texts from the view, std::string::find"
    for args, what in (("0/0", "matching nothing (letters, case folded)"),
                       ("1/0", "matching the last row only"),
                       ("0/1", "matching nothing, match case")):
        name = f"BM_Find_1M/{args}/iterations:2/manual_time"
        engine = median(name, "engine_ms")
        ctx.notes.append(f"views: find {what}: {1e6 / (engine / 1e3):,.0f} rows/s")
        rows.append(Row(f"find in 1,000,000 rows x 6 columns, {what}", engine, median(name, "plain_ms"),
                        other=plain, target=">= 0.77", note=f"{1e6 / (engine / 1e3):,.0f} rows/s; "
                        "target: engine at most 1.3x the plain loop"))
    export = median("BM_ExportCsv_1M/iterations:1/manual_time", "real_time")
    rows.append(Row("export 1,000,000 rows x 6 columns to CSV (all rows, header)", export, pandas["text"],
                    other="pandas DataFrame.to_csv, columns as text", target=">= 2"))
    rows.append(Row("the same export", export, pandas["typed"],
                    other="pandas DataFrame.to_csv, int/float/text columns", target=">= 2"))
    return rows


def run(ctx):
    t = ctx.gbench("bench/views/bench_views")
    ms = 1e6
    rows = []
    for col, kind in ((1, "double"), (2, "text"), (3, "CNyrTime")):
        keyed = " (the items offer sort keys)" if col != 2 else ""
        rows.append(Row(f"sort 1,000,000 items x 6 columns by a {kind} column, ascending{keyed}",
                        t[f"BM_ReportViewSort_1M/{col}/iterations:3/manual_time"] / ms,
                        t[f"BM_QtProxySort_1M/{col}/iterations:1/manual_time"] / ms,
                        other="QSortFilterProxyModel over QAbstractTableModel", target=">= 4"))
        if col != 2:
            rows.append(Row(f"the same by the items' comparison alone, without keys ({kind})",
                            t[f"BM_ReportViewSortByComparison_1M/{col}/iterations:3/manual_time"] / ms,
                            t[f"BM_QtProxySort_1M/{col}/iterations:1/manual_time"] / ms,
                            other="QSortFilterProxyModel over QAbstractTableModel"))
        rows.append(Row(f"sort the same again descending ({kind})",
                        t[f"BM_ReportViewSortDescending_1M/{col}/iterations:3/manual_time"] / ms,
                        t[f"BM_QtProxySortDescending_1M/{col}/iterations:1/manual_time"] / ms,
                        other="QSortFilterProxyModel over QAbstractTableModel", target=">= 4"))
    rows.append(Row("add 1,000,000 items and display them", t["BM_AddAndDisplay_1M/iterations:2/manual_time"] / ms,
                    None))
    rows.append(Row("append 1,000,000 items one by one, each displayed",
                    t["BM_AppendDisplayed_1M/iterations:2/manual_time"] / ms, None))
    rows.append(Row("first paint, 1,000,000 items (theirs: the same view with 1,000 items)",
                    t[f"BM_FirstPaint/{ITEMS}/iterations:3/manual_time"] / ms,
                    t["BM_FirstPaint/1000/iterations:3/manual_time"] / ms,
                    other="first paint of 1,000 items", target=">= 0.5"))
    # Bookkeeping: the view's peak minus the items' peak; the items' own
    # vector of pointers (8 bytes each) is counted back in, since the view
    # holds its own.
    per_item = (peak_kb(ctx, "view") - peak_kb(ctx, "items")) * 1024 / ITEMS + 8
    rows.append(Row("view bookkeeping per item beyond the item object (peak memory)", per_item, 48.0,
                    other="budget of 48 bytes", unit="bytes", target=">= 1.0"))
    return rows + find_and_export(ctx)
