"""Mail: composing a message with a 64 MiB attachment against Python's email
package, and sending 1,000 messages of 10 KB over one connection against
Python's smtplib, both to the same local sink in the same run, directly and
through a relay that adds 1 ms of latency to every reply."""

import json
import os
import shutil
import socket
import statistics
import subprocess
import tempfile
import time

from benchlib import Row

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
PYTHON = "/usr/bin/python3"
ATTACHMENT_MIB = 64


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def wait_listening(port, seconds=10):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            with socket.create_connection(("127.0.0.1", port), timeout=1):
                return True
        except OSError:
            time.sleep(0.05)
    return False


def start_sink(ctx, scratch):
    """Postfix's smtp-sink when installed, else the tests' aiosmtpd server."""
    sink = shutil.which("smtp-sink") or ("/usr/sbin/smtp-sink" if os.path.exists("/usr/sbin/smtp-sink") else None)
    if sink:
        port = free_port()
        user = ["-u", "postfix"] if os.geteuid() == 0 else []
        proc = subprocess.Popen([sink, *user, f"127.0.0.1:{port}", "256"], stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)
        if wait_listening(port):
            return proc, port, "smtp-sink"
        proc.kill()
    out = os.path.join(scratch, "sink")
    os.makedirs(out)
    proc = subprocess.Popen([PYTHON, os.path.join(ROOT, "tests/nyr/mail/smtp_server.py"), out, "--discard"],
                            stderr=subprocess.DEVNULL)
    port_file = os.path.join(out, "port")
    for _ in range(2000):
        if os.path.exists(port_file):
            break
        time.sleep(0.01)
    with open(port_file) as f:
        port = int(f.read())
    ctx.notes.append("mail: smtp-sink not installed; the aiosmtpd sink limits both clients alike")
    return proc, port, "aiosmtpd"


def real_and_cpu_ms(ctx, name):
    """Median real and CPU milliseconds of one benchmark of bench_mail."""
    reps = 1 if ctx.quick else ctx.repetitions
    out = subprocess.run([f"{ctx.build_dir}/bench/mail/bench_mail", f"--benchmark_filter={name}$",
                          "--benchmark_format=json", f"--benchmark_repetitions={reps}"],
                         check=True, capture_output=True, text=True).stdout
    runs = [b for b in json.loads(out)["benchmarks"] if b.get("run_type") != "aggregate"]
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[runs[0]["time_unit"]]
    return (statistics.median(b["real_time"] for b in runs) * scale,
            statistics.median(b["cpu_time"] for b in runs) * scale)


def python_figures(mode, arg, reps):
    """Median wall seconds, median CPU seconds and peak KiB of python_mail.py."""
    out = subprocess.run([PYTHON, os.path.join(HERE, "python_mail.py"), mode, str(arg), str(reps)],
                         check=True, capture_output=True, text=True).stdout
    values = dict(line.split() for line in out.splitlines())
    return float(values["seconds"]), float(values["cpu"]), int(values["peak"])


def run(ctx):
    reps = 1 if ctx.quick else ctx.repetitions
    scratch = tempfile.mkdtemp(prefix="nyr-bench-mail-")
    rows = []
    try:
        attachment = os.path.join(scratch, "scan.bin")
        with open(attachment, "wb") as f:
            f.write(os.urandom(ATTACHMENT_MIB << 20))
        os.environ["NYR_BENCH_ATTACHMENT"] = attachment

        composed = ctx.gbench("bench/mail/bench_mail", "BM_Compose")
        theirs, _, python_peak = python_figures("compose", attachment, reps)
        for name, form in (("BM_Compose_64MiBAttachment", "standard Base64"),
                           ("BM_Compose_64MiBAttachment_LibraryBase64", "the library's own Base64")):
            rows.append(Row(f"compose a message with a {ATTACHMENT_MIB} MiB attachment in {form}",
                            composed[name] / 1e6, theirs * 1e3, other="Python email package (as_bytes)", unit="ms",
                            target=">= 5"))
        peaks = {}
        for form, argument in (("standard Base64", []), ("the library's own Base64", ["library"])):
            out = subprocess.run([f"{ctx.build_dir}/bench/mail/mail_compose_peak", attachment, *argument],
                                 check=True, capture_output=True, text=True).stdout
            peaks[form] = int(dict(line.split() for line in out.splitlines())["peak"]) / 1024
            rows.append(Row(f"peak memory composing it in {form} (whole process)", peaks[form],
                            3.0 * ATTACHMENT_MIB, other="limit: 3 x attachment size", unit="MiB", target=">= 1"))
        rows.append(Row("peak memory composing it in standard Base64, against Python", peaks["standard Base64"],
                        python_peak / 1024, other="Python email package", unit="MiB"))

        sink, port, sink_name = start_sink(ctx, scratch)
        relay = subprocess.Popen([PYTHON, os.path.join(HERE, "latency_relay.py"), str(port), "0.001"],
                                 stdout=subprocess.PIPE, text=True)
        try:
            relay_port = int(relay.stdout.readline().split()[1])
            figures = {}
            for route, route_port in (("direct", port), ("relay", relay_port)):
                os.environ["NYR_BENCH_SMTP_PORT"] = str(route_port)
                figures[route] = {name: real_and_cpu_ms(ctx, name) for name in
                                  ("BM_SendPipelined_1000Messages_10KB", "BM_Send_1000Messages_10KB")}
                figures[route]["smtplib"] = python_figures("send", route_port, reps)
            os.environ["NYR_BENCH_SMTP_PORT"] = str(port)
            floor, _ = real_and_cpu_ms(ctx, "BM_DialogueFloor_1000Messages_10KB")
        finally:
            relay.terminate()
            relay.wait(timeout=10)
            sink.terminate()
            sink.wait(timeout=10)
        # The targets hold against a sink that is not itself the bottleneck.
        target = ">= 3" if sink_name == "smtp-sink" else ""
        for route, words in (("direct", f"to {sink_name}"), ("relay", f"to {sink_name}, 1 ms added to every reply")):
            theirs, theirs_cpu, _ = figures[route]["smtplib"]
            ours, ours_cpu = figures[route]["BM_SendPipelined_1000Messages_10KB"]
            plain, _ = figures[route]["BM_Send_1000Messages_10KB"]
            rows.append(Row(f"send 1,000 messages of 10 KB over one connection {words}, pipelined", ours,
                            theirs * 1e3, other="Python smtplib", unit="ms", target=target))
            rows.append(Row("the same in the plain HELO dialogue, one message at a time", plain, theirs * 1e3,
                            other="Python smtplib", unit="ms"))
            rows.append(Row("client CPU time of the pipelined messages", ours_cpu, theirs_cpu * 1e3,
                            other="Python smtplib", unit="ms"))
        plain, _ = figures["direct"]["BM_Send_1000Messages_10KB"]
        rows.append(Row("the plain dialogue against its round trips alone", plain, floor,
                        other="bare blocking socket, nothing composed", unit="ms"))
        ours, _ = figures["direct"]["BM_SendPipelined_1000Messages_10KB"]
        theirs = figures["direct"]["smtplib"][0]
        ctx.notes.append(f"mail: {1000 / (ours / 1e3):,.0f} messages/s pipelined against smtplib's {1000 / theirs:,.0f}")
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    return rows
