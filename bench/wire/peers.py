#!/usr/bin/env python3
"""The same work by Debian's Music Player Daemon and by the device: prints a table with the ratios.

The daemon is a process of this script's own, asked over its line protocol. There are no bounds.
"""

import os
import re
import socket
import statistics
import subprocess
import sys
import time
from contextlib import ExitStack, closing, suppress

sys.dont_write_bytecode = True

from measuring import PAGE_ROWS, BenchDevice, Report, accepted, items_path, main, ms_of, temp_folder

MAX_S = 60  # what takes longer has failed
CONFIGURATION = """\
music_directory "{music}"
playlist_directory "{folder}/playlists"
db_file "{folder}/database"
bind_to_address "127.0.0.1"
port "{port}"
zeroconf_enabled "no"
max_playlist_length "1000000"
max_command_list_size "262144"
max_output_buffer_size "262144"
connection_timeout "3600"
audio_output {{
  type "null"
  name "null"
  mixer_type "none"
}}
"""


class Daemon:
    """The daemon with a configuration below `folder`. Peers have the same functions for what is prepared."""

    def __init__(self, folder, music):
        os.makedirs(f"{folder}/playlists")
        with socket.create_server(("127.0.0.1", 0)) as probe:
            port = probe.getsockname()[1]
        with open(f"{folder}/mpd.conf", "w", encoding="utf-8") as out:
            out.write(CONFIGURATION.format(music=music, folder=folder, port=port))
        with open(f"{folder}/mpd.log", "wb") as log:
            self._process = subprocess.Popen(["mpd", "--no-daemon", "--stderr", f"{folder}/mpd.conf"],
                                             stdout=log, stderr=log)
        self._connect(port)
        self.ask("update")
        while b"updating_db" in self.ask("status"):
            time.sleep(0.1)

    def _connect(self, port):
        while self._process.poll() is None:
            try:
                self._socket = socket.create_connection(("127.0.0.1", port), MAX_S)
                self._socket.recv(1 << 16)  # the greeting
                return
            except ConnectionRefusedError:
                time.sleep(0.1)
        raise RuntimeError("mpd does not start")

    def close(self):
        self._process.terminate()
        self._process.wait()

    def ask(self, *lines):
        """Sends one command, or several as a list, and returns the answer without its last line."""
        if len(lines) > 1:
            lines = ["command_list_begin", *lines, "command_list_end"]
        self._socket.sendall("".join(f"{line}\n" for line in lines).encode())
        answer = bytearray()
        while not (answer == b"OK\n" or answer.endswith(b"\nOK\n")):
            answer += self._socket.recv(1 << 18)
            if answer.startswith(b"ACK ") or b"\nACK " in answer:
                raise RuntimeError(f"mpd refused: {answer[-200:].decode()}")
        return answer[:-3]

    def empty(self, _):
        self.ask("clear")

    def fill(self, size):
        self.ask("clear", f'add "n{size}"')

    def fill_to_save(self, size):
        self.fill(size)
        with suppress(RuntimeError):  # the first time there is none
            self.ask("rm saved")

    def fill_and_save(self, size):
        self.fill_to_save(size)
        self.ask("save saved", "clear")

    def page(self, first):
        rows = self.ask(f"playlistinfo {first}:{first + PAGE_ROWS}")
        if f"Pos: {first + PAGE_ROWS - 1}\n".encode() not in rows:
            raise RuntimeError("no whole page from mpd")


class OurDevice(BenchDevice):
    """The device over HTTP: the daemon's queue is the play queue, its stored list a playlist."""

    QUEUE = "playlists:pq/items"

    def __init__(self, host, folder, music):
        super().__init__(host, folder, music)
        self.start()
        self._client = self.connect()
        self.wait_for_scan(self._client)
        self.saved, self.queued = 0, []

    def ask(self, command, plid=0, **arguments):
        return self._client.must(f"playlists:pl/{command}", {"plid": plid, **arguments})

    def add(self, items, mode=2, plid=0):
        self.ask("addItems", plid, mode=mode, items=items)

    def empty(self, _):
        self.ask("clear")

    def fill(self, size):
        self.empty(size)
        self.add([f"files:tree/n{size}"])
        self._client.must("player:playContainer", {
            "mediaRoles": {"type": 1, "containerPlayable": True, "path": self.QUEUE,
                           "mediaData": {"metaData": {"playLogicPath": "playlists:playlogic"}}},
            "type": 1, "startPosition": 0, "paused": True, "index": size // 2 - 1})
        self._client.must("player:stop", {})  # the place in the list stays

    def fill_to_save(self, size):
        self.fill(size)
        if self.saved:
            self.ask("delete", self.saved)
        self.saved = self._client.create("Saved")
        self.queued = self.paths(self.QUEUE)

    def fill_and_save(self, size):
        self.fill_to_save(size)
        self.add(self.queued, plid=self.saved)
        self.empty(size)

    def paths(self, path):
        body = accepted(self._client.ask("GET", f"/api/rows?roles=path&path={path}")).body
        return re.findall(r'"(playlists:item/[^"]*)"', body.decode())

    def page(self, first):
        body = accepted(self._client.exchange(self._client.page(self.QUEUE, first))).body
        if f'"value":{{"i32":{first + PAGE_ROWS - 1}}}'.encode() not in body:
            raise RuntimeError("no whole page from the device")


# Name, what is prepared for each run, how often the work is done in a run, the daemon's, ours.
WORKS = (
    ("add n to an empty list", "empty", 1,
     lambda daemon, n, _: daemon.ask(f'add "n{n}"'),
     lambda ours, n, _: ours.add([f"files:tree/n{n}"])),
    ("add n in the middle of n", "fill", 1,
     lambda daemon, n, _: daemon.ask(f'add "n{n}" {n // 2}'),
     lambda ours, n, _: ours.add([f"files:tree/n{n}"], mode=1)),
    ("page of 50", "fill", 100, *2 * [lambda peer, n, i: peer.page(n // 2 + i)]),
    ("remove every second", "fill", 1,
     lambda daemon, n, _: daemon.ask(*(f"delete {row}" for row in range(n - 2, -1, -2))),
     lambda ours, n, _: ours.ask("removeItems", items=list(range(0, n, 2)))),
    ("clear", "fill", 1, lambda daemon, *_: daemon.ask("clear"), lambda ours, *_: ours.ask("clear")),
    ("save", "fill_to_save", 1,
     lambda daemon, *_: daemon.ask("save saved"),
     lambda ours, *_: ours.add(ours.queued, plid=ours.saved)),
    # Asking for the paths is a part of it: a client that loads a list does not have them.
    ("load", "fill_and_save", 1,
     lambda daemon, *_: daemon.ask("load saved"),
     lambda ours, *_: ours.add(ours.paths(items_path(ours.saved)))),
    ("edit of a stored list", "fill_and_save", 20,
     lambda daemon, n, i: daemon.ask(f"playlistmove saved {n // 2 + i} {n // 2 + i + 1}"),
     lambda ours, n, i: ours.ask("moveItems", ours.saved, items=[n // 2 + i], to=n // 2 + i + 1)),
)


def median(peer, size, prepare, steps, work):
    """In milliseconds."""
    times = []
    for _ in range(5 if size <= 1000 else 3 if size <= 10_000 else 1):
        getattr(peer, prepare)(size)
        times += [ms_of(lambda: work(peer, size, step)) for step in range(steps)]
    return statistics.median(times)


def time_text(ms):
    return f"{ms / 1000:.2f} s" if ms >= 1000 else f"{ms:.2f} ms"


def run(options):
    with ExitStack() as stack:
        def started(peer, parent, *arguments):
            folder = stack.enter_context(temp_folder(parent))
            return stack.enter_context(closing(peer(*arguments, folder, os.path.abspath(options.music))))
        peers = [started(Daemon, options.disk), started(OurDevice, options.memory, options.host),
                 started(OurDevice, options.disk, options.host)]
        table = Report(options.table, ["work", "n", "daemon", "ours, memory", "ours, disk", "memory / daemon",
                                       "disk / daemon"], processors=os.cpu_count())
        for name, prepare, steps, daemon, ours in WORKS:
            for size in (size for size in (1000, 10_000, 100_000) if size <= options.largest):
                medians = [median(peer, size, prepare, steps, work)
                           for peer, work in zip(peers, (daemon, ours, ours))]
                ratios = [f"{ours_ms / medians[0]:.2f}" for ours_ms in medians[1:]]
                table.row([name, str(size), *map(time_text, medians), *ratios])
    return 0


if __name__ == "__main__":
    sys.exit(main(run, "host", "music", largest=100_000))
