import json
import statistics
import subprocess

from benchlib import Row

SMALL, LARGE = 10_000, 100_000


def extra_kb(ctx, mode, rows):
    """Peak memory a printout adds above what is in use before it (kB)."""
    out = subprocess.run([f"{ctx.build_dir}/bench/print/bench_print_memory", mode, str(rows)],
                         check=True, capture_output=True, text=True).stdout
    in_use, peak, _pages = (int(v) for v in out.strip().splitlines()[-1].split())
    return peak - in_use


def run(ctx):
    # QTextDocument needs minutes for 100,000 rows: one run, both ways.
    out = subprocess.run([f"{ctx.build_dir}/bench/print/bench_print", "--benchmark_format=json"],
                         check=True, capture_output=True, text=True).stdout
    runs = [b for b in json.loads(out)["benchmarks"] if b.get("run_type") != "aggregate"]
    ours = statistics.median(b["ours_ms"] for b in runs)
    theirs = statistics.median(b["theirs_ms"] for b in runs)
    pages = int(runs[0]["ours_pages"])
    ctx.notes.append(f"print: 100,000 rows on {pages} A4 pages, {1e5 / (ours / 1e3):,.0f} rows/s "
                     "(one run of each way: QTextDocument takes minutes)")
    rows = [Row("print 100,000 rows x 6 columns to a PDF (QPrinter, A4)", ours, theirs,
                other="QTextDocument with the same rows as an HTML table, printed to the same QPrinter",
                target=">= 5")]
    # Memory: what a printout adds above what is in use, per further row. The
    # library draws pages one at a time; what grows is the PDF's table of
    # objects (a few bytes per page).
    small, large = extra_kb(ctx, "ours", SMALL), extra_kb(ctx, "ours", LARGE)
    ours_slope = max(large - small, 0) * 1024 / (LARGE - SMALL)
    tenth = SMALL // 10
    theirs_slope = (extra_kb(ctx, "theirs", SMALL) - extra_kb(ctx, "theirs", tenth)) * 1024 / (SMALL - tenth)
    rows.append(Row("peak memory a printout adds per further row (ours: 10,000 to 100,000 rows)",
                    max(ours_slope, 0.1), theirs_slope,
                    other="QTextDocument's HTML table, 1,000 to 10,000 rows", unit="bytes", target=">= 100",
                    note="0.1 stands for no growth measured"))
    rows.append(Row("peak memory a printout of 100,000 rows adds", large, None, unit="kB"))
    return rows
