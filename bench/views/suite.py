import subprocess

from benchlib import Row

ITEMS = 1_000_000


def peak_kb(ctx, mode):
    out = subprocess.run([f"{ctx.build_dir}/bench/views/bench_views_memory", mode, str(ITEMS)],
                         check=True, capture_output=True, text=True).stdout
    return int(out.strip().splitlines()[-1])


def run(ctx):
    t = ctx.gbench("bench/views/bench_views")
    ms = 1e6
    rows = []
    for col, kind in ((1, "double"), (2, "text"), (3, "CNyrTime")):
        rows.append(Row(f"sort 1,000,000 items x 6 columns by a {kind} column, ascending",
                        t[f"BM_ReportViewSort_1M/{col}/iterations:3/manual_time"] / ms,
                        t[f"BM_QtProxySort_1M/{col}/iterations:1/manual_time"] / ms,
                        other="QSortFilterProxyModel over QAbstractTableModel", target=">= 4"))
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
    return rows
