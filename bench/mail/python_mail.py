"""The same mail work through Python's standard library, for bench/mail/suite.py.

    python_mail.py compose FILE REPETITIONS   building the message with the
                                               email package
    python_mail.py send PORT REPETITIONS      sending 1,000 messages of 10 KB
                                               with smtplib
Prints the median wall and CPU seconds and the peak resident KiB."""

import resource
import smtplib
import statistics
import sys
import time
from email import encoders, policy
from email.mime.base import MIMEBase
from email.mime.multipart import MIMEMultipart
from email.mime.text import MIMEText


def compose(path):
    msg = MIMEMultipart()
    msg["From"] = "Ann Surveyor <ann@example.org>"
    msg["To"] = "bob@example.org"
    msg["Subject"] = "Scan data"
    msg.attach(MIMEText("The scan is attached.\r\n", "plain", "iso-8859-1"))
    part = MIMEBase("application", "octet-stream")
    with open(path, "rb") as f:
        part.set_payload(f.read())
    encoders.encode_base64(part)
    part.add_header("Content-Disposition", "attachment", filename=path.rsplit("/", 1)[-1])
    msg.attach(part)
    return msg.as_bytes(policy=policy.SMTP)


def message_10kb():
    body = ""
    while len(body) < 10 * 1024:
        body += f"P{len(body)},4500123.456,512345.678,123.456,2.345\r\n"
    return ("From: \"Ann Surveyor\" <ann@example.org>\r\nTo: \" \" <bob@example.org>\r\n"
            "X-Mailer: NyrMail\r\nSubject: Observation log\r\n\r\n" + body).encode()


def send(port):
    data = message_10kb()
    with smtplib.SMTP("127.0.0.1", port) as smtp:
        for _ in range(1000):
            smtp.sendmail("ann@example.org", ["bob@example.org"], data)


def main():
    mode, arg, repetitions = sys.argv[1], sys.argv[2], int(sys.argv[3])
    samples, cpu = [], []
    for _ in range(repetitions):
        start, start_cpu = time.perf_counter(), time.process_time()
        compose(arg) if mode == "compose" else send(int(arg))
        samples.append(time.perf_counter() - start)
        cpu.append(time.process_time() - start_cpu)
    print(f"seconds {statistics.median(samples)}")
    print(f"cpu {statistics.median(cpu)}")
    print(f"peak {resource.getrusage(resource.RUSAGE_SELF).ru_maxrss}")


if __name__ == "__main__":
    main()
