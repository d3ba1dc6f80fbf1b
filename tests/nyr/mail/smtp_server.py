"""A real SMTP server for the mail tests and benchmarks: aiosmtpd on
127.0.0.1, a free port chosen by the system.

    /usr/bin/python3 smtp_server.py OUT_DIR [--cert PEM --key PEM]
        [--implicit-tls] [--user NAME --password TEXT] [--no-plain]
        [--discard]

Prints "port N" on standard output once it listens. Each message received
is written to OUT_DIR as NNNN.eml (the data exactly as received, after
dot-unstuffing) and NNNN.json (envelope sender, recipients, login).
--discard keeps no files (a sink for benchmarks). The server ends when its
standard input closes, or after ten minutes at the latest, so it never
outlives the test that started it."""

import argparse
import asyncio
import json
import os
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult


class Recorder:
    def __init__(self, out_dir, discard):
        self.out_dir = out_dir
        self.discard = discard
        self.count = 0

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        if not self.discard:
            base = os.path.join(self.out_dir, f"{self.count:04d}")
            with open(base + ".eml", "wb") as f:
                f.write(envelope.original_content)
            login = session.auth_data.decode() if isinstance(session.auth_data, bytes) else None
            with open(base + ".json.tmp", "w") as f:
                json.dump({"from": envelope.mail_from, "to": envelope.rcpt_tos, "login": login}, f)
            os.rename(base + ".json.tmp", base + ".json")  # the .json marks a complete message
        return "250 OK"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("out_dir")
    parser.add_argument("--cert")
    parser.add_argument("--key")
    parser.add_argument("--implicit-tls", action="store_true")
    parser.add_argument("--user")
    parser.add_argument("--password")
    parser.add_argument("--no-plain", action="store_true", help="offer AUTH LOGIN only")
    parser.add_argument("--discard", action="store_true")
    args = parser.parse_args()

    context = None
    if args.cert:
        context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        context.load_cert_chain(args.cert, args.key)

    def authenticate(server, session, envelope, mechanism, auth_data):
        ok = auth_data.login.decode() == args.user and auth_data.password.decode() == args.password
        return AuthResult(success=ok, handled=False, auth_data=auth_data.login if ok else None)

    recorder = Recorder(args.out_dir, args.discard)

    def factory():
        options = dict(hostname="nyr-test", data_size_limit=None)
        if args.user:
            options.update(authenticator=authenticate, auth_required=True,
                           auth_exclude_mechanism=["PLAIN"] if args.no_plain else [])
        if context and not args.implicit_tls:
            options.update(tls_context=context, require_starttls=True)
        if args.implicit_tls:
            options.update(auth_require_tls=False)  # the whole connection is TLS already
        return SMTP(recorder, **options)

    async def serve():
        loop = asyncio.get_running_loop()
        server = await loop.create_server(factory, "127.0.0.1", 0,
                                          ssl=context if args.implicit_tls else None)
        print(f"port {server.sockets[0].getsockname()[1]}", flush=True)
        stdin_closed = loop.create_future()

        def on_stdin():
            if not os.read(sys.stdin.fileno(), 4096) and not stdin_closed.done():
                stdin_closed.set_result(None)

        loop.add_reader(sys.stdin.fileno(), on_stdin)
        try:
            await asyncio.wait_for(stdin_closed, timeout=600)
        except asyncio.TimeoutError:
            pass
        server.close()

    asyncio.run(serve())


if __name__ == "__main__":
    main()
