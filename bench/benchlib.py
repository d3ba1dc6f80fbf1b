"""Shared helpers of the benchmark suites run by bench/run.py.

A suite is bench/<subsystem>/suite.py with a function run(ctx) that returns a
list of Row. Figures are medians of repeated runs; a row compares our time
with another implementation's time for the same work in the same run."""

import json
import statistics
import subprocess
import time
from dataclasses import dataclass, field


@dataclass
class Row:
    benchmark: str          # the workload, in words
    ours: float             # our median, in `unit`
    theirs: float | None    # the other implementation's median, or None
    other: str = ""         # what we compare with
    unit: str = "ms"
    target: str = ""        # e.g. ">= 1.0" on the ratio theirs/ours
    note: str = ""

    @property
    def ratio(self):
        """How many times faster we are: theirs / ours."""
        if self.theirs is None or self.ours <= 0:
            return None
        return self.theirs / self.ours

    def met(self):
        if self.ratio is None or not self.target:
            return None
        op, value = self.target.split()
        value = float(value)
        return {">=": self.ratio >= value, ">": self.ratio > value}[op]


@dataclass
class Context:
    build_dir: str
    repetitions: int = 5
    quick: bool = False
    notes: list = field(default_factory=list)

    def gbench(self, binary, bench_filter=".", extra=()):
        """Runs a Google Benchmark binary; returns {name: median real time in ns}."""
        reps = 1 if self.quick else self.repetitions
        cmd = [f"{self.build_dir}/{binary}", f"--benchmark_filter={bench_filter}",
               "--benchmark_format=json", f"--benchmark_repetitions={reps}",
               "--benchmark_report_aggregates_only=false", *extra]
        out = subprocess.run(cmd, check=True, capture_output=True, text=True).stdout
        data = json.loads(out)
        times = {}
        for b in data["benchmarks"]:
            if b.get("run_type") == "aggregate":
                continue
            scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[b["time_unit"]]
            times.setdefault(b["run_name"], []).append(b["real_time"] * scale)
        return {name: statistics.median(v) for name, v in times.items()}


def median_time(fn, repetitions=5, setup=None):
    """Median wall time of fn() in seconds over `repetitions` runs."""
    samples = []
    for _ in range(repetitions):
        state = setup() if setup else None
        start = time.perf_counter()
        fn(state) if setup else fn()
        samples.append(time.perf_counter() - start)
    return statistics.median(samples)
