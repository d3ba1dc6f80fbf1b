"""Runs Postfix's smtp-sink for the mail tests so that it never outlives
them: it ends when this script gets SIGTERM, when the process that started
it ends, or after ten minutes.

    /usr/bin/python3 smtp_sink.py SMTP_SINK_ARGUMENTS..."""

import os
import signal
import subprocess
import sys
import time

parent = os.getppid()
sink = subprocess.Popen(["/usr/sbin/smtp-sink", *sys.argv[1:]])
signal.signal(signal.SIGTERM, lambda *_: sink.terminate())
for _ in range(3000):
    if sink.poll() is not None or os.getppid() != parent:
        break
    time.sleep(0.2)
sink.terminate()
sink.wait()
