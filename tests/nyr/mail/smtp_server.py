"""A real SMTP server for the mail tests and benchmarks: aiosmtpd on
127.0.0.1, on a free port that it writes to OUT_DIR/port once it listens.

    /usr/bin/python3 smtp_server.py OUT_DIR [--cert PEM --key PEM]
        [--implicit-tls] [--user NAME --password TEXT] [--no-plain] [--discard]
        [--pipelining]

Each message goes to OUT_DIR as NNNN.eml (the data as received, after
dot-unstuffing) and NNNN.json (envelope and login; written last).
--discard keeps nothing. --pipelining adds PIPELINING to the EHLO reply
(aiosmtpd reads commands in order, however they arrive). The server ends on SIGTERM, when the process that
started it ends, or after ten minutes, so it never outlives its test."""

import argparse
import asyncio
import json
import os
import ssl

from aiosmtpd.smtp import SMTP, AuthResult

parser = argparse.ArgumentParser()
parser.add_argument("out_dir")
for option in ("--cert", "--key", "--user", "--password"):
    parser.add_argument(option)
for flag in ("--implicit-tls", "--no-plain", "--discard", "--pipelining"):
    parser.add_argument(flag, action="store_true")
args = parser.parse_args()


class Recorder:
    count = 0

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        if not args.discard:
            base = os.path.join(args.out_dir, f"{self.count:04d}")
            with open(base + ".eml", "wb") as f:
                f.write(envelope.original_content)
            login = session.auth_data.decode() if isinstance(session.auth_data, bytes) else None
            with open(base + ".tmp", "w") as f:
                json.dump({"from": envelope.mail_from, "to": envelope.rcpt_tos, "login": login}, f)
            os.rename(base + ".tmp", base + ".json")
        return "250 OK"


async def offer_pipelining(self, server, session, envelope, hostname, responses):
    session.host_name = hostname
    return responses[:-1] + ["250-PIPELINING"] + responses[-1:]


if args.pipelining:
    Recorder.handle_EHLO = offer_pipelining


def authenticate(server, session, envelope, mechanism, auth_data):
    ok = auth_data.login.decode() == args.user and auth_data.password.decode() == args.password
    return AuthResult(success=ok, handled=False, auth_data=auth_data.login if ok else None)


context = None
if args.cert:
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(args.cert, args.key)
recorder = Recorder()


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
    parent = os.getppid()
    server = await asyncio.get_running_loop().create_server(
        factory, "127.0.0.1", 0, ssl=context if args.implicit_tls else None)
    with open(os.path.join(args.out_dir, "port.tmp"), "w") as f:
        f.write(str(server.sockets[0].getsockname()[1]))
    os.rename(os.path.join(args.out_dir, "port.tmp"), os.path.join(args.out_dir, "port"))
    for _ in range(600):
        if os.getppid() != parent:
            break
        await asyncio.sleep(1)
    server.close()


asyncio.run(serve())
