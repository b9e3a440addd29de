#!/usr/bin/env python3
"""The same work by Debian's Music Player Daemon and by the device: prints a table with the ratios.

The daemon is a process of this script's own, asked over its line protocol. There are no bounds: the
figures are for people. Ends with 0, with 2 where something could not be measured.
"""

import contextlib
import os
import re
import socket
import statistics
import subprocess
import sys
import time

sys.dont_write_bytecode = True

from measuring import PAGE_ROWS, BenchDevice, Table, accepted, items_path, main, temp_folder
from orvo_device import write_silence

MAX_S = 60  # what takes longer is stopped
LONG_TRACK = "long.wav"
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
        self._saves = 0
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

    def pid(self):
        return self._process.pid

    def saved(self):
        return f'"saved{self._saves}"'

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
        self.ask("stop", "clear")

    def fill(self, size):
        self.ask("stop", "clear", f'add "n{size}"')

    def fill_to_save(self, size):
        self.fill(size)
        if self._saves:
            self.ask(f"rm {self.saved()}")
        self._saves += 1

    def fill_and_save(self, size):
        self.fill_to_save(size)
        self.ask(f"save {self.saved()}", "clear")

    def play_random(self, size):
        self.ask("stop", "clear", *[f'add "{LONG_TRACK}"'] * size, "random 1", "play 0")

    def page(self, first):
        rows = self.ask(f"playlistinfo {first}:{first + PAGE_ROWS}")
        if f"Pos: {first + PAGE_ROWS - 1}\n".encode() not in rows:
            raise RuntimeError("no whole page from mpd")


class OurDevice:
    """The device over HTTP: the daemon's queue is the play queue, its stored list a playlist."""

    QUEUE = "playlists:pq/items"

    def __init__(self, host, folder, music):
        self._device = BenchDevice(host, folder, music)
        self._device.start()
        self._client = self._device.connect()
        self._device.wait_for_scan(self._client)
        self.saved = 0
        self.queued = []

    def close(self):
        self._device.end()

    def pid(self):
        return self._device.pid

    def ask(self, command, plid=0, **arguments):
        return self._client.must(f"playlists:pl/{command}", {"plid": plid, **arguments})

    def add(self, items, mode=2, plid=0):
        self.ask("addItems", plid, mode=mode, items=items)

    def next(self):
        self._client.must("player:next", {})

    def _play_paused(self, index):
        self._client.must("player:playContainer", {
            "mediaRoles": {"type": 1, "containerPlayable": True, "path": self.QUEUE,
                           "mediaData": {"metaData": {"playLogicPath": "playlists:playlogic"}}},
            "type": 1, "startPosition": 0, "paused": True, "index": index})

    def empty(self, _):
        self._client.command("player:stop", {})  # refused where nothing plays
        self.ask("clear")

    def fill(self, size):
        self.empty(size)
        self.add([f"files:tree/n{size}"])
        self._play_paused(size // 2 - 1)
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

    def play_random(self, size):
        self.empty(size)
        self.add([f"files:tree/{LONG_TRACK}"] * size)
        self.ask("setShuffle", mode=1)
        self._play_paused(0)

    def paths(self, path):
        body = accepted(self._client.ask("GET", f"/api/rows?roles=path&path={path}")).body
        return re.findall(r'"(playlists:item/[^"]*)"', body.decode())

    def page(self, first):
        body = accepted(self._client.exchange(self._client.page(self.QUEUE, first))).body
        if f'"value":{{"i32":{first + PAGE_ROWS - 1}}}'.encode() not in body:
            raise RuntimeError("no whole page from the device")


def read_page(peer, size, step):
    peer.page(size // 2 + step)


# Name, what is prepared for each run, how often the work is done in a run, the daemon's, ours.
WORKS = (
    ("add n to an empty list", "empty", 1,
     lambda daemon, n, _: daemon.ask(f'add "n{n}"'),
     lambda ours, n, _: ours.add([f"files:tree/n{n}"])),
    ("add n in the middle of n", "fill", 1,
     lambda daemon, n, _: daemon.ask(f'add "n{n}" {n // 2}'),
     lambda ours, n, _: ours.add([f"files:tree/n{n}"], mode=1)),
    ("page of 50", "fill", 100, read_page, read_page),
    ("remove every second", "fill", 1,
     lambda daemon, n, _: daemon.ask(*(f"delete {row}" for row in range(n - 2, -1, -2))),
     lambda ours, n, _: ours.ask("removeItems", items=list(range(0, n, 2)))),
    ("clear", "fill", 1, lambda daemon, *_: daemon.ask("clear"), lambda ours, *_: ours.ask("clear")),
    ("save", "fill_to_save", 1,
     lambda daemon, *_: daemon.ask(f"save {daemon.saved()}"),
     lambda ours, *_: ours.add(ours.queued, plid=ours.saved)),
    # Asking for the paths is a part of it: a client that loads a list does not have them.
    ("load", "fill_and_save", 1,
     lambda daemon, *_: daemon.ask(f"load {daemon.saved()}"),
     lambda ours, *_: ours.add(ours.paths(items_path(ours.saved)))),
    ("edit of a stored list", "fill_and_save", 20,
     lambda daemon, n, i: daemon.ask(f"playlistmove {daemon.saved()} {n // 2 + i} {n // 2 + i + 1}"),
     lambda ours, n, i: ours.ask("moveItems", ours.saved, items=[n // 2 + i], to=n // 2 + i + 1)),
    ("next in random mode", "play_random", 20,
     lambda daemon, *_: daemon.ask("next"), lambda ours, *_: ours.next()),
)


class Contestant:
    """A peer, made anew when it has taken too long."""

    def __init__(self, make):
        self._make = make
        self.peer = make()

    def median(self, size, prepare, steps, work):
        """In seconds; None when it took too long."""
        times = []
        try:
            for _ in range(5 if size <= 1000 else 3 if size <= 10_000 else 1):
                getattr(self.peer, prepare)(size)
                for step in range(steps):
                    begin = time.perf_counter()
                    work(self.peer, size, step)
                    times.append(time.perf_counter() - begin)
        except socket.timeout:
            self.peer.close()
            self.peer = self._make()
            return None
        return statistics.median(times)

    def resident_mib(self):
        with open(f"/proc/{self.peer.pid()}/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / (1 << 20)


def time_text(seconds):
    if seconds is None:
        return f"> {MAX_S} s, stopped"
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1e3:.2f} ms"


def cells(figures, text):
    theirs, *ours = figures
    return [text(figure) for figure in figures] + \
        ["" if None in (theirs, figure) else f"{figure / theirs:.2f}" for figure in ours]


def compare(options, music, folders):
    contestants = [Contestant(lambda: Daemon(folders(options.disk), music)),
                   Contestant(lambda: OurDevice(options.host, folders(options.memory), music)),
                   Contestant(lambda: OurDevice(options.host, folders(options.disk), music))]
    table = Table(options.table, ["work", "n", "daemon", "ours, memory", "ours, disk",
                                  "memory / daemon", "disk / daemon"])
    resident = {}
    try:
        for name, prepare, steps, daemon, ours in WORKS:
            for size in (size for size in (1000, 10_000, 100_000) if size <= options.largest):
                medians = [contestant.median(size, prepare, steps, work)
                           for contestant, work in zip(contestants, (daemon, ours, ours))]
                table.row([name, str(size), *cells(medians, time_text)])
                if ours is read_page:
                    resident[size] = [each.resident_mib() for each in contestants]
        for size, figures in resident.items():
            table.row(["resident memory then", str(size), *cells(figures, "{:.1f} MiB".format)])
    finally:
        for contestant in contestants:
            contestant.peer.close()


def run(options):
    music = os.path.abspath(options.music)
    if not os.path.exists(f"{music}/{LONG_TRACK}"):
        write_silence(f"{music}/{LONG_TRACK}", 86400)
    with contextlib.ExitStack() as stack:
        compare(options, music, lambda parent: stack.enter_context(temp_folder(parent)))
    return 0


if __name__ == "__main__":
    sys.exit(main(run, "host", "music", largest=100_000))
