from benchlib import Row

# The typed texts of bench_input, in the order of its kTexts.
KINDS = ["an integer", "a floating", "a string", "a file name", "an angle (DMS)", "a distance", "a latitude (DMS)",
         "a longitude (DMS)", "a date/time", "a time span"]
BUDGET_NS = 5000.0


def run(ctx):
    t = ctx.gbench("bench/input/bench_input")
    rows = []
    for i, kind in enumerate(KINDS):
        ours = t[f"BM_Nyr_Keystroke/{i}"]
        rows.append(Row(f"validate one keystroke in {kind} field (the prefixes of a typical text in turn)",
                        ours, t[f"BM_QDoubleValidator_Keystroke/{i}"],
                        other="QDoubleValidator on the same prefixes", unit="ns"))
        rows.append(Row("the same against the budget of 5 us per keystroke", ours, BUDGET_NS,
                        other="budget", unit="ns", target=">= 1.0"))
    return rows
