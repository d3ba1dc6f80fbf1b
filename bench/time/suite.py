from benchlib import Row


def run(ctx):
    t = ctx.gbench("bench/time/bench_time")
    rows = []
    for row, pattern in ((17, "%d.%m.%Y %H:%M:%S"), (26, "%#d. %b %Y %#I:%M:%S %p")):
        rows.append(Row(f"format 1,000,000 broken-down times, row {row} ({pattern})",
                        t[f"BM_NyrStrftime_1MTimes/{row}"] / 1e6, t[f"BM_GlibcStrftime_1MTimes/{row}"] / 1e6,
                        other="glibc strftime, same texts", unit="ms", target=">= 1.5"))
        rows.append(Row(f"CNyrTime::Format of 1,000,000 points, row {row} (local breakdown included)",
                        t[f"BM_CNyrTimeFormat_1MPoints/{row}"] / 1e6, t[f"BM_LocaltimeStrftime_1MPoints/{row}"] / 1e6,
                        other="localtime_r + strftime + std::string", unit="ms"))
    rows.append(Row("MJD -> calendar fields -> MJD", t["BM_MjdRoundTrip"], t["BM_GmtimeTimegmRoundTrip"],
                    other="gmtime_r + timegm", unit="ns"))
    return rows
