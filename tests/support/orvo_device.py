"""A built orvo-host as a process of its own, and a plain HTTP connection to it.

Used by the crash test, the soak, the attacks and the measurements over HTTP. A Device belongs to the script that made it and is killed by
its close(); everything is kept below the folder that it is given.
"""

import json
import os
import resource
import select
import signal
import socket
import struct
import subprocess
import time

PATIENCE_S = 60


class DeviceError(Exception):
    """The device did not start, or did not answer as HTTP does."""


class Answer:
    """One HTTP answer; status 0 when there was none."""

    def __init__(self, status=0, body=b""):
        self.status = status
        self.body = body

    def json(self):
        return json.loads(self.body) if self.body else {}

    def result(self):
        """What a command answered: its id, True, or what it prepared."""
        result = self.json().get("result")
        if isinstance(result, dict) and "xclass" in result:
            return next(iter(result["result"]["value"].values()))
        return result


class Connection:
    """One kept-alive connection. send() and receive() are apart, so that something may happen
    while a request is being carried out. `fields` are header fields that each request carries."""

    def __init__(self, port, fields="", address="127.0.0.1"):
        self._socket = socket.create_connection(("127.0.0.1", port), PATIENCE_S, (address, 0))
        self._socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self._fields = fields
        self._buffer = b""

    def close(self):
        self._socket.close()

    def try_send(self, text):
        """Any bytes. The device may have answered and closed before they have all left."""
        try:
            self._socket.sendall(text)
        except ConnectionError:
            pass

    def fileno(self):
        return self._socket.fileno()

    def text(self, method, target, value=None):
        """A request as it is sent."""
        body = b"" if value is None else json.dumps(value).encode()
        head = f"{method} {target} HTTP/1.1\r\nHost: 127.0.0.1\r\n{self._fields}"
        if value is not None:
            head += f"Content-Type: application/json\r\nContent-Length: {len(body)}\r\n"
        return head.encode() + b"\r\n" + body

    def send(self, method, target, value=None):
        self._socket.sendall(self.text(method, target, value))

    def receive(self, seconds=None):
        """The whole answer; what has not come when the connection ends, or the time is over, is status 0."""
        if seconds:
            self._socket.settimeout(seconds)
        try:
            while True:
                answer = self._take_answer()
                if answer:
                    return answer
                more = self._socket.recv(1 << 20)
                if not more:
                    return Answer()
                self._buffer += more
        except ConnectionError:
            return self._take_answer() or Answer()
        except socket.timeout:
            if seconds:
                return Answer()
            raise

    def first_line(self):
        """Reads no more of the answer than a little."""
        return self._socket.recv(64).split(b"\r\n")[0].decode()

    def _take_answer(self):
        head, separator, rest = self._buffer.partition(b"\r\n\r\n")
        if not separator:
            return None
        length = 0
        for line in head.split(b"\r\n")[1:]:
            name, _, value = line.partition(b":")
            if name.lower() == b"content-length":
                length = int(value)
        if len(rest) < length:
            return None
        self._buffer = rest[length:]
        return Answer(int(head.split(b" ", 2)[1]), rest[:length])

    def ask(self, method, target, value=None):
        self.send(method, target, value)
        return self.receive()

    def command(self, path, value):
        return self.ask("POST", "/api/data", {"path": path, "value": value})

    def rows(self, path, roles="title"):
        """`path` as it stands in an address."""
        return self.ask("GET", f"/api/rows?path={path}&roles={roles}").json().get("rows", [])


class Device:
    """One data folder and the host that runs in it, if any. Every start adds to its log, device.log.
    `limits` are resource limits of the process: RLIMIT_… -> number. With a token its connections carry it."""

    def __init__(self, host, folder, arguments=(), environment=None, token=None):
        self._host = host
        self._environment = {**os.environ, **(environment or {})}
        self.folder = folder
        self.music = os.path.join(folder, "music")
        self.data = os.path.join(folder, "device")
        self.database = os.path.join(self.data, "data-rw/playlists/playlists.sqlite")
        self.log = os.path.join(folder, "device.log")
        self.port = 0
        self._arguments = list(arguments)
        self.limits = {}
        self._fields = ""
        self._process = None
        os.makedirs(self.music, exist_ok=True)
        if token:
            self._take_token(token)

    def _take_token(self, token):
        file = os.path.join(self.folder, "token")
        with open(os.open(file, os.O_CREAT | os.O_WRONLY, 0o600), "w", encoding="ascii") as out:
            out.write(token)
        self._arguments += ["--token-file", file]
        self._fields = f"Authorization: Bearer {token}\r\n"

    @property
    def pid(self):
        return self._process.pid

    def spawn(self):
        """Starts the host without waiting for it."""
        with open(self.log, "ab") as log:
            self._process = subprocess.Popen(
                [self._host, "--data", self.data, "--music", self.music,
                 "--listen", "127.0.0.1:0", "--port-file", self._port_file(), *self._arguments],
                stdout=subprocess.PIPE, stderr=log, env=self._environment,
                preexec_fn=self._set_limits if self.limits else None)

    def _set_limits(self):
        for limit, number in self.limits.items():
            resource.setrlimit(limit, (number, number))

    def wait_until_ready(self, seconds=PATIENCE_S):
        readable, _, _ = select.select([self._process.stdout], [], [], seconds)
        if not readable or b"ready" not in self._process.stdout.readline():
            raise DeviceError(f"the device did not start, see {self.log}")
        with open(self._port_file(), encoding="ascii") as file:
            self.port = int(file.read())

    def start(self):
        self.spawn()
        self.wait_until_ready()

    def alive(self):
        return self._process is not None and self._process.poll() is None

    def status(self):
        """How it ended: the exit status, or a signal's number below zero. None while it runs or never ran."""
        return self._process.poll() if self._process else None

    def wait_for_end(self, seconds):
        """Until the host ends by itself, or patience does."""
        try:
            self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            pass

    def end(self, seconds=PATIENCE_S):
        """SIGTERM. The exit status, None when it takes longer and is killed."""
        self._process.send_signal(signal.SIGTERM)
        self.wait_for_end(seconds)
        status = self.status()
        self.kill()
        return status

    def kill(self):
        """SIGKILL: nothing in the process gets a chance to tidy up."""
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()

    def close(self):
        if self.alive():
            self.kill()

    def connect(self):
        return Connection(self.port, self._fields)

    def wait_for_scan(self, connection):
        until = time.monotonic() + PATIENCE_S
        while connection.ask("GET", "/api/value?path=files:scan").json()["value"].get("state") != "ready":
            if time.monotonic() > until:
                raise DeviceError("the music folder was not scanned in time")
            time.sleep(0.01)

    def _port_file(self):
        return os.path.join(self.folder, "port")


def write_silence(file, seconds):
    """A WAV file of silence that takes next to no room on the disk."""
    rate = 8000
    size = seconds * rate * 2
    os.makedirs(os.path.dirname(file), exist_ok=True)
    with open(file, "wb") as out:
        out.write(b"RIFF" + struct.pack("<I", 36 + size) + b"WAVEfmt " +
                  struct.pack("<IHHIIHH", 16, 1, 1, rate, rate * 2, 2, 16) +
                  b"data" + struct.pack("<I", size))
        out.truncate(44 + size)


def external_item(number, url):
    """A complete item as addExternalItems takes it."""
    title = f"t{number}"
    roles = {"type": 3, "title": title,
             "mediaData": {"resources": [{"uri": url}], "metaData": {"title": title}}}
    return {"title": title, "artist": f"artist {number % 17}", "album": f"album {number % 5}",
            "artworkUrl": "", "genre": "é♪" if number % 3 else "", "durationSeconds": number % 600,
            "url": url, "serviceId": "test", "orvoRoles": json.dumps(roles)}
