"""A client without the token, which tries whatever it can think of."""

import collections
import random
import threading
import time

from orvo_device import Connection

# Of the page it may see what it likes: there is none here but a short text.
ADMITTED = ("GET /", "GET /index.html")
REFUSALS = (400, 401, 403, 404, 413, 429)


class Stranger(threading.Thread):
    """About twenty tries in a second from an address of its own, each over a new connection."""

    def __init__(self, port, seed, end):
        super().__init__(daemon=True)
        self._rng = random.Random(f"stranger {seed}")
        self._port = port
        self._end = end
        self._answers = collections.Counter()
        self.errors = []

    def run(self):
        try:
            while not self._end.is_set():
                time.sleep(self._rng.expovariate(20))
                self._try()
        except Exception as error:  # pylint: disable=broad-except
            self.errors.append(f"a stranger: {error!r}")

    def told(self):
        return ", ".join(f"{count} × {status or 'closed'}" for status, count in sorted(self._answers.items()))

    def _try(self):
        rng = self._rng
        what, body = rng.choice([
            ("POST /api/login", b'{"token": "%016x"}' % rng.randrange(1 << 64)),
            ("POST /api/login", b"x" * rng.randrange(1 << 20)),
            ("POST /api/data", b'{"path": "playlists:pl/create", "value": {"name": "stranger"}}'),
            ("POST /api/data", b"[" * rng.randrange(8 << 20)),
            ("PUT /api/value", b"{}"), ("GET /api/events", b""),
            ("GET /api/rows?path=playlists:pl/list", b"")] + [(page, b"") for page in ADMITTED])
        connection = Connection(self._port, address="127.0.0.2")
        head = f"{what} HTTP/1.1\r\nHost: {rng.choice(['127.0.0.1'] * 9 + ['evil.example'])}\r\n"
        connection.try_send(f"{head}Content-Length: {len(body)}\r\n\r\n".encode() +
                            body[:rng.choice([None, None, len(body) // 2])])
        answer = connection.receive(0.5)
        connection.close()
        self._answers[answer.status] += 1
        if answer.status and answer.status not in REFUSALS and not (what in ADMITTED and answer.status == 200):
            self.errors.append(f"a stranger's {what} was answered {answer.status}")
