#!/usr/bin/env python3
"""Runs every benchmark suite (bench/*/suite.py) and writes a markdown table
of our figures, the other implementations' figures and their ratios.

    bench/run.py [--build-dir DIR] [--only NAME[,NAME]] [--quick] [--output FILE]

With no build dir it configures and builds one (Release, benchmarks on)."""

import argparse
import importlib.util
import os
import platform
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
from benchlib import Context  # noqa: E402


def build(build_dir):
    subprocess.run(["bash", "-c", f'source "{ROOT}/scripts/setup.sh" && nyr_setup bench "{build_dir}" '
                    "-DCMAKE_BUILD_TYPE=Release -DNYR_BUILD_BENCH=ON -DNYR_BUILD_TESTS=OFF"], check=True)


def fmt(value):
    if value is None:
        return "-"
    if value >= 100:
        return f"{value:,.0f}"
    return f"{value:.3g}"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", default=os.path.join(ROOT, "build-bench"))
    parser.add_argument("--no-build", action="store_true", help="use the build dir as it is")
    parser.add_argument("--only", default="", help="comma-separated suite names")
    parser.add_argument("--quick", action="store_true", help="one repetition; for trying a suite out")
    parser.add_argument("--output", default=None, help="markdown file (default: BUILD_DIR/bench-results.md)")
    args = parser.parse_args()

    if not args.no_build:
        build(args.build_dir)
    ctx = Context(build_dir=args.build_dir, quick=args.quick)
    only = {s for s in args.only.split(",") if s}
    suites = sorted(d for d in os.listdir(HERE) if os.path.isfile(os.path.join(HERE, d, "suite.py")))
    lines = [f"# Benchmark results", "",
             f"{time.strftime('%Y-%m-%d %H:%M')} on {platform.node()}, {os.cpu_count()} cores; "
             f"medians of {1 if args.quick else ctx.repetitions} runs. Ratio = their time / our time "
             "(above 1: we are faster).", "",
             "| suite | benchmark | ours | theirs | compared with | unit | ratio | target | met |",
             "|---|---|---|---|---|---|---|---|---|"]
    failed = False
    for name in suites:
        if only and name not in only:
            continue
        found = importlib.util.spec_from_file_location(f"suite_{name}", os.path.join(HERE, name, "suite.py"))
        module = importlib.util.module_from_spec(found)
        found.loader.exec_module(module)
        print(f"== {name}", flush=True)
        for row in module.run(ctx):
            met = row.met()
            failed |= met is False
            mark = {None: "", True: "yes", False: "**no**"}[met]
            ratio = f"{row.ratio:.2f}" if row.ratio is not None else "-"
            lines.append(f"| {name} | {row.benchmark} | {fmt(row.ours)} | {fmt(row.theirs)} | {row.other} | "
                         f"{row.unit} | {ratio} | {row.target} | {mark} |")
            print("  " + lines[-1], flush=True)
    if ctx.notes:
        lines += ["", "Notes:", ""] + [f"- {n}" for n in ctx.notes]
    output = args.output or os.path.join(args.build_dir, "bench-results.md")
    with open(output, "w") as f:
        f.write("\n".join(lines) + "\n")
    print(f"\nwritten to {output}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
