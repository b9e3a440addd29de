"""Many event streams in a process of its own, so that reading them delays no client."""

import multiprocessing
import selectors
import socket
import time


def _open(port, token):
    stream = socket.create_connection(("127.0.0.1", port), timeout=30)
    stream.sendall("GET /api/events?watch=player:position HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                   f"Authorization: Bearer {token}\r\n\r\n".encode())
    stream.setblocking(False)
    return stream


class _Stream:
    """Counts events by their lines. Ids must rise by one, except behind a resync."""

    def __init__(self):
        self.rest = b""
        self.events = 0
        self.resyncs = 0
        self.gaps = 0
        self.last_id = None

    def take(self, data):
        lines = (self.rest + data).split(b"\n")
        self.rest = lines.pop()
        for line in lines:
            if line.startswith(b"id: "):
                self._id(int(line[4:]))
            elif line.startswith(b"event: "):
                self.events += 1
                if line.startswith(b"event: resync"):
                    self.resyncs += 1
                    self.last_id = None

    def _id(self, number):
        if self.last_id is not None and number not in (self.last_id, self.last_id + 1):
            self.gaps += 1
        self.last_id = number


def _read(port, token, count, ready, end, results):
    selector = selectors.DefaultSelector()
    streams = {}
    for _ in range(count):
        opened = _open(port, token)
        streams[opened] = _Stream()
        selector.register(opened, selectors.EVENT_READ)
    ready.set()
    lost = 0
    drain_until = None
    while drain_until is None or time.monotonic() < drain_until:
        if end.is_set() and drain_until is None:
            drain_until = time.monotonic() + 2
        for key, _ in selector.select(timeout=0.2):
            try:
                data = key.fileobj.recv(1 << 18)
            except ConnectionError:
                data = b""
            if data:
                streams[key.fileobj].take(data)
            else:
                selector.unregister(key.fileobj)
                lost += 1
    read = [stream.events for stream in streams.values()]
    results.put({"lost": lost, "least": min(read), "most": max(read),
                 "resyncs": sum(stream.resyncs for stream in streams.values()),
                 "gaps": sum(stream.gaps for stream in streams.values())})


class Streams:
    def __init__(self, port, count, token):
        context = multiprocessing.get_context("fork")
        self._ready, self._end = context.Event(), context.Event()
        self._results = context.Queue()
        self._process = context.Process(
            target=_read, args=(port, token, count, self._ready, self._end, self._results), daemon=True)
        self._process.start()
        if not self._ready.wait(60):
            raise RuntimeError("the event streams could not be opened")

    def close(self):
        """Ends the streams; what they saw. Waits for what is still on its way."""
        self._end.set()
        result = self._results.get(timeout=60)
        self._process.join()
        return result
