"""A relay that adds latency to every reply of an SMTP server, for
bench/mail/suite.py: what the client sends goes on at once, what the server
answers arrives DELAY seconds later (a delay line: replies in flight overlap,
as on a network with that round trip).

    /usr/bin/python3 latency_relay.py UPSTREAM_PORT DELAY_SECONDS

Prints "port N" once it listens on 127.0.0.1; ends on SIGTERM, or after ten
minutes."""

import asyncio
import sys

UPSTREAM, DELAY = int(sys.argv[1]), float(sys.argv[2])


async def forward(reader, writer):
    while data := await reader.read(65536):
        writer.write(data)
        await writer.drain()
    writer.close()


async def forward_delayed(reader, writer):
    loop = asyncio.get_running_loop()
    queue = asyncio.Queue()

    async def deliver():
        while True:
            due, data = await queue.get()
            if data is None:
                break
            if due > loop.time():
                await asyncio.sleep(due - loop.time())
            writer.write(data)
            await writer.drain()
        writer.close()

    delivering = asyncio.create_task(deliver())
    while data := await reader.read(65536):
        queue.put_nowait((loop.time() + DELAY, data))
    queue.put_nowait((0, None))
    await delivering


async def relay(client_reader, client_writer):
    server_reader, server_writer = await asyncio.open_connection("127.0.0.1", UPSTREAM)
    await asyncio.gather(forward(client_reader, server_writer), forward_delayed(server_reader, client_writer),
                         return_exceptions=True)


async def main():
    server = await asyncio.start_server(relay, "127.0.0.1", 0)
    print(f"port {server.sockets[0].getsockname()[1]}", flush=True)
    await asyncio.sleep(600)


if __name__ == "__main__":
    asyncio.run(main())
