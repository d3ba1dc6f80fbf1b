"""A mail client for the hand-off tests, installed by them as the mailto
handler or as a Thunderbird on PATH. It decodes what it is given, the way a
client reads it, and records the fields.

    HANDLER mailto:?to=...&subject=...          (a mailto handler)
    thunderbird -compose to=...,subject=...     (Thunderbird's -compose form)

Writes DIR/argv (the arguments, one per line) and DIR/received: one line
"NAME HEX" per field in order, the value decoded and as hex ("-" when
empty); lists (to, cc, bcc, attachment) give one line per element, an
attachment as the path of its file URL. DIR is the folder above the one this
file is in. Exits with the number in DIR/status (0 when missing); "cancel"
ends the parent with SIGTERM instead, as a user's cancel does."""

import os
import signal
import sys
from urllib.parse import unquote_to_bytes, urlsplit

DIR = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def mailto_fields(uri):
    """RFC 6068: addresses in the path, then name=value pairs after "?"."""
    path, _, query = uri[len("mailto:"):].partition("?")
    fields = [("to", unquote_to_bytes(a)) for a in path.split(",") if a]
    for pair in query.split("&"):
        if pair:
            name, _, value = pair.partition("=")
            fields.append((name.lower(), unquote_to_bytes(value)))
    return fields


def compose_pairs(argument):
    """Pairs split at commas outside quotes; a quote opens right after "="
    and closes before a comma or the end."""
    pairs, current, quote = [], "", ""
    for i, c in enumerate(argument):
        following = argument[i + 1] if i + 1 < len(argument) else ""
        if quote and c == quote and following in (",", ""):
            quote = ""
        elif not quote and c in "'\"" and current.endswith("="):
            quote = c
        elif c == "," and not quote:
            pairs.append(current)
            current = ""
            continue
        current += c
    pairs.append(current)
    return pairs


def compose_fields(argument):
    fields = []
    for pair in compose_pairs(argument):
        name, equals, value = pair.partition("=")
        if not equals:
            continue
        if len(value) >= 2 and value[0] == "'" and value[-1] == "'":
            data = value[1:-1].encode()
        else:
            data = unquote_to_bytes(value)
        if name in ("to", "cc", "bcc", "attachment"):
            for element in data.split(b","):
                if name == "attachment":
                    element = unquote_to_bytes(urlsplit(element.decode("utf-8", "surrogateescape")).path)
                fields.append((name, element))
        else:
            fields.append((name, data))
    return fields


def main():
    args = sys.argv[1:]
    with open(os.path.join(DIR, "argv"), "w", encoding="utf-8", errors="surrogateescape") as f:
        f.write("".join(a + "\n" for a in args))
    if args and args[0] == "-compose":
        fields = compose_fields(args[1] if len(args) > 1 else "")
    else:
        fields = mailto_fields(args[0] if args else "mailto:")
    with open(os.path.join(DIR, "received"), "w") as f:
        f.write("".join(f"{name} {value.hex() or '-'}\n" for name, value in fields))
    try:
        with open(os.path.join(DIR, "status")) as f:
            status = f.read().strip()
    except OSError:
        status = "0"
    if status == "cancel":
        os.kill(os.getppid(), signal.SIGTERM)
        sys.exit(0)
    sys.exit(int(status or "0"))


if __name__ == "__main__":
    main()
