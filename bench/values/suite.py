from benchlib import Row

PAIRS = [("11/18", "Degree -> Radians"), ("12/18", "DMS -> Radians"), ("18/12", "Radians -> DMS"),
         ("12/15", "DMS -> Gon")]


def run(ctx):
    t = ctx.gbench("bench/values/bench_values")
    rows = [
        Row("format 1,000,000 angles as DMS text with symbols, precision 5",
            t["BM_Nyr_FormatDms_1M"] / 1e6, t["BM_GeographicLib_FormatDms_1M"] / 1e6,
            other="GeographicLib DMS::Encode(SECOND, 5)", unit="ms", target=">= 1.0"),
        Row("parse 1,000,000 DMS texts back to radians",
            t["BM_Nyr_ParseDms_1M"] / 1e6, t["BM_GeographicLib_ParseDms_1M"] / 1e6,
            other="GeographicLib DMS::Decode", unit="ms", target=">= 1.0"),
        Row("convert 1,000,000 angles between every pair of the 8 angle units (64 pairs)",
            t["BM_Nyr_ConvertAngle_AllPairs_1M/iterations:1"] / 64e6, None, unit="ns/value"),
    ]
    for args, words in PAIRS:
        rows.append(Row(f"convert 1,000,000 angles {words}",
                        t[f"BM_Nyr_ConvertAngle_Pair_1M/{args}"] / 1e6, None, unit="ns/value"))
    return rows
