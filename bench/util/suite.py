"""Settings store against Python's configparser, Base64 against OpenSSL."""
import configparser
import os
import random
import shutil
import tempfile
import time

from benchlib import Row, median_time


def section_name(s):
    return f"Report {s:03d}"


def entry_name(e):
    return f"Column {e:03d} Width Of The Adjusted Observations Table In The Report (###)"


def write_file(path):
    """The same file as util_bench.cpp writes (values drawn differently)."""
    rng = random.Random(42)
    with open(path, "w") as f:
        for s in range(100):
            f.write(f"[{section_name(s)}]\n")
            for e in range(100):
                f.write(f"{entry_name(e)}={rng.randint(-1000000, 1000000)}\n")
            f.write("\n")
    return [(section_name(rng.randrange(100)), entry_name(rng.randrange(100))) for _ in range(10000)]


def configparser_times(repetitions):
    folder = tempfile.mkdtemp(prefix="nyr-bench-py-")
    try:
        path = os.path.join(folder, "bench.ini")
        keys = write_file(path)
        size = os.path.getsize(path)

        def parse():
            cp = configparser.ConfigParser(interpolation=None)
            cp.read(path)
            return cp

        parse_time = median_time(parse, repetitions)
        cp = parse()

        def reads():
            total = 0
            for section, entry in keys:
                total += cp.getint(section, entry)
            return total

        read_time = median_time(reads, repetitions)

        rounds = [0]

        def writes():
            rounds[0] += 1
            for i in range(1000):
                section, entry = keys[i]
                cp.set(section, entry, str(rounds[0] * 1000 + i))
                with open(path, "w") as f:
                    cp.write(f)

        write_time = median_time(writes, max(1, min(repetitions, 3)))
        return size, parse_time, read_time, write_time
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def run(ctx):
    t = ctx.gbench("bench/util/bench_util")
    reps = 1 if ctx.quick else ctx.repetitions
    size, parse_time, read_time, write_time = configparser_times(reps)
    ctx.notes.append(f"util: settings file of 100 sections x 100 integer entries, {size / 1e6:.2f} MB; "
                     "configparser without interpolation; a configparser write is set + write the whole file")
    ns = 1e-6  # gbench medians are in ns, rows in ms
    rows = [
        Row("settings: 10,000 random integer reads, 100x100 entries", t["BM_ProfileReadInt_10000Random_100x100"] * ns,
            read_time * 1e3, other="Python configparser getint", target=">= 20"),
        Row("settings: 1,000 single-entry writes, 100x100 entries",
            t["BM_ProfileWriteInt_1000Random_100x100/iterations:1"] * ns, write_time * 1e3,
            other="Python configparser set + write", target=">= 1.0"),
        Row("settings: one cold parse, 100x100 entries", t["BM_ProfileColdParse_100x100"] * ns, parse_time * 1e3,
            other="Python configparser read"),
    ]
    for line in (0, 76):
        rows.append(Row(f"Base64 encode 64 MiB, line length {line}", t[f"BM_NyrEncodeBase64_64MiB/{line}"] * ns,
                        t[f"BM_OpenSSLEncodeBlock_64MiB/{line}"] * ns, other="OpenSSL EVP_EncodeBlock",
                        target=">= 1.0"))
    for line in (0, 76):
        rows.append(Row(f"Base64 decode 64 MiB, line length {line}", t[f"BM_NyrDecodeBase64_64MiB/{line}"] * ns,
                        t[f"BM_OpenSSLDecodeBlock_64MiB/{line}"] * ns, other="OpenSSL EVP_DecodeBlock",
                        target=">= 1.0"))
    return rows
