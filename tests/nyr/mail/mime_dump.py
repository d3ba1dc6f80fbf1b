"""Reads a mail message with Python's email package, as strict mail
filters do, and prints what a receiver gets from it.

    /usr/bin/python3 mime_dump.py compat32|default FILE

First line: "parts N DEFECTS" (N leaf parts, the message's own defects).
Then one line per leaf part: "FILENAME DEFECTS PAYLOAD", the file name and
the decoded payload as hex ("-" when empty), DEFECTS as a comma-separated
list of defect class names ("-" when none)."""

import email
import sys
from email import policy


def hexed(data):
    return data.hex() if data else "-"


def defects(part):
    return ",".join(type(d).__name__ for d in part.defects) or "-"


def main():
    chosen = policy.compat32 if sys.argv[1] == "compat32" else policy.default
    with open(sys.argv[2], "rb") as f:
        message = email.message_from_bytes(f.read(), policy=chosen)
    leaves = [p for p in message.walk() if not p.is_multipart()]
    print(f"parts {len(leaves)} {defects(message)}")
    for part in leaves:
        name = part.get_filename()
        payload = part.get_payload(decode=True) or b""
        print(hexed(name.encode("utf-8", "surrogateescape") if name else b""), defects(part), hexed(payload))


if __name__ == "__main__":
    main()
