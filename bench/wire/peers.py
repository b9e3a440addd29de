#!/usr/bin/env python3
"""The same work by Debian's Music Player Daemon and by the device: prints a table with the ratios.

The daemon is a process of this script's own, asked over its line protocol. There are no bounds: the
figures are for people. Ends with 0, with 2 where something could not be measured.
"""

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
QUEUE = "playlists:pq/items"
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
    """The daemon with a configuration below `folder`. It has the same methods as OurDevice: prepare_… is not timed."""

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
        self._socket = self._connect(port)
        self._socket.recv(1 << 16)  # the greeting
        self.ask("update")
        while b"updating_db" in self.ask("status"):
            time.sleep(0.1)

    def _connect(self, port):
        while self._process.poll() is None:
            try:
                return socket.create_connection(("127.0.0.1", port), MAX_S)
            except ConnectionRefusedError:
                time.sleep(0.1)
        raise RuntimeError("mpd does not start")

    def end(self):
        self._process.terminate()
        self._process.wait()

    def pid(self):
        return self._process.pid

    def ask(self, *lines):
        """Sends one command, or several as a list, and returns the answer without its last line."""
        if len(lines) > 1:
            lines = ["command_list_begin", *lines, "command_list_end"]
        self._socket.sendall("".join(f"{line}\n" for line in lines).encode())
        answer = bytearray()
        while not (answer == b"OK\n" or answer.endswith(b"\nOK\n")):
            answer += self._socket.recv(1 << 18)
            refused = answer.startswith(b"ACK ") or b"\nACK " in answer
            if refused:
                raise RuntimeError(f"mpd refused: {answer[-200:].decode()}")
        return answer[:-3]

    def prepare_empty(self, _=0):
        self.ask("stop")
        self.ask("clear")

    def prepare_list(self, size):
        self.prepare_empty()
        self.add_folder(size)

    def add_folder(self, size, _=0):
        self.ask(f'add "n{size}"')

    def add_in_the_middle(self, size, _=0):
        self.ask(f'add "n{size}" {size // 2}')

    def read_page(self, size, step):
        first = size // 2 + step
        if f"Pos: {first + PAGE_ROWS - 1}\n".encode() not in self.ask(f"playlistinfo {first}:{first + PAGE_ROWS}"):
            raise RuntimeError("no whole page from mpd")

    def remove_every_second(self, size, _=0):
        self.ask(*(f"delete {row}" for row in range(size - 2, -1, -2)))

    def clear(self, *_):
        self.ask("clear")

    def prepare_saving(self, size):
        self.prepare_list(size)
        if self._saves:
            self.ask(f'rm "saved{self._saves}"')
        self._saves += 1

    def save(self, *_):
        self.ask(f'save "saved{self._saves}"')

    def load(self, *_):
        self.ask(f'load "saved{self._saves}"')

    def edit_saved(self, size, step):
        row = size // 2 + step
        self.ask(f'playlistmove "saved{self._saves}" {row} {row + 1}')

    def prepare_random(self, size):
        self.prepare_empty()
        self.ask(*[f'add "{LONG_TRACK}"'] * size)
        self.ask("random 1")
        self.ask("play 0")

    def next(self, *_):
        self.ask("next")


class OurDevice:
    """The device over HTTP: the daemon's queue is the play queue, its stored list a playlist."""

    def __init__(self, host, folder, music):
        self._device = BenchDevice(host, folder, music)
        self._device.start()
        self._client = self._device.connect()
        self._device.wait_for_scan(self._client)
        self._saved = 0
        self._paths = []

    def end(self):
        self._device.end()

    def pid(self):
        return self._device.pid

    def _add(self, items, mode=2, plid=0):
        self._client.must("playlists:pl/addItems", {"plid": plid, "mode": mode, "items": items})

    def _play_paused(self, index):
        self._client.must("player:playContainer", {
            "mediaRoles": {"type": 1, "containerPlayable": True, "path": QUEUE,
                           "mediaData": {"metaData": {"playLogicPath": "playlists:playlogic"}}},
            "type": 1, "startPosition": 0, "paused": True, "index": index})

    def prepare_empty(self, _=0):
        self._client.command("player:stop", {})  # refused where nothing plays
        self.clear()

    def prepare_list(self, size):
        self.prepare_empty()
        self.add_folder(size)
        self._play_paused(size // 2 - 1)
        self._client.must("player:stop", {})  # the place in the list stays

    def add_folder(self, size, _=0):
        self._add([f"files:tree/n{size}"])

    def add_in_the_middle(self, size, _=0):
        self._add([f"files:tree/n{size}"], mode=1)

    def read_page(self, size, step):
        first = size // 2 + step
        body = accepted(self._client.exchange(self._client.page(QUEUE, first))).body
        if f'"value":{{"i32":{first + PAGE_ROWS - 1}}}'.encode() not in body:
            raise RuntimeError("no whole page from the device")

    def remove_every_second(self, size, _=0):
        self._client.must("playlists:pl/removeItems", {"plid": 0, "items": list(range(0, size, 2))})

    def clear(self, *_):
        self._client.must("playlists:pl/clear", {"plid": 0})

    def _paths_of(self, path):
        body = accepted(self._client.ask("GET", f"/api/rows?roles=path&path={path}")).body
        return re.findall(r'"(playlists:item/[^"]*)"', body.decode())

    def prepare_saving(self, size):
        self.prepare_list(size)
        if self._saved:
            self._client.must("playlists:pl/delete", {"plid": self._saved})
        self._saved = self._client.create("Saved")
        self._paths = self._paths_of(QUEUE)

    def save(self, *_):
        self._add(self._paths, plid=self._saved)

    def load(self, *_):
        # Asking for the paths is a part of it: a client that loads a list does not have them.
        self._add(self._paths_of(items_path(self._saved)))

    def edit_saved(self, size, step):
        row = size // 2 + step
        self._client.must("playlists:pl/moveItems", {"plid": self._saved, "items": [row], "to": row + 1})

    def prepare_random(self, size):
        self.prepare_empty()
        self._add([f"files:tree/{LONG_TRACK}"] * size)
        self._client.must("playlists:pl/setShuffle", {"plid": 0, "mode": 1})
        self._play_paused(0)

    def next(self, *_):
        self._client.must("player:next", {})


def prepare_saved(peer, size):
    peer.prepare_saving(size)
    peer.save()
    peer.prepare_empty()


# Name, what is prepared for each run, the work, how often it is done in a run.
WORKS = (
    ("add n to an empty list", "prepare_empty", "add_folder", 1),
    ("add n in the middle of n", "prepare_list", "add_in_the_middle", 1),
    ("page of 50", "prepare_list", "read_page", 100),
    ("remove every second", "prepare_list", "remove_every_second", 1),
    ("clear", "prepare_list", "clear", 1),
    ("save", "prepare_saving", "save", 1),
    ("load", prepare_saved, "load", 1),
    ("edit of a stored list", prepare_saved, "edit_saved", 20),
    ("next in random mode", "prepare_random", "next", 20),
)


class Contestant:
    """A peer, made anew when it has taken too long."""

    def __init__(self, make):
        self._make = make
        self.peer = make()

    def median(self, size, prepare, work, steps):
        """In seconds; None when it took too long."""
        prepare = getattr(type(self.peer), prepare) if isinstance(prepare, str) else prepare
        times = []
        try:
            for _ in range(5 if size <= 1000 else 3 if size <= 10_000 else 1):
                prepare(self.peer, size)
                for step in range(steps):
                    begin = time.perf_counter()
                    getattr(self.peer, work)(size, step)
                    times.append(time.perf_counter() - begin)
        except socket.timeout:
            self.peer.end()
            self.peer = self._make()
            return None
        return statistics.median(times)

    def resident_mib(self):
        with open(f"/proc/{self.peer.pid()}/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / (1 << 20)


def time_text(seconds):
    if seconds is None:
        return f"> {MAX_S} s, stopped"
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1e3:.2f} ms" if seconds >= 1e-3 \
        else f"{seconds * 1e6:.0f} µs"


def cells(figures, text):
    theirs, *ours = figures
    return [text(figure) for figure in figures] + \
        ["" if None in (theirs, figure) else f"{figure / theirs:.2f}" for figure in ours]


def run(options):
    folders = []

    def folder(parent):
        folders.append(temp_folder(parent))
        return folders[-1].name

    music = os.path.abspath(options.music)
    if not os.path.exists(f"{music}/{LONG_TRACK}"):
        write_silence(f"{music}/{LONG_TRACK}", 86400)
    contestants = []
    try:
        contestants += [Contestant(lambda: Daemon(folder(options.disk), music)),
                        Contestant(lambda: OurDevice(options.host, folder(options.memory), music)),
                        Contestant(lambda: OurDevice(options.host, folder(options.disk), music))]
        table = Table(options.table, ["work", "n", "daemon", "ours, memory", "ours, disk",
                                      "memory / daemon", "disk / daemon"])
        resident = {}
        for name, *work in WORKS:
            for size in (size for size in (1000, 10_000, 100_000) if size <= options.largest):
                table.row([name, str(size), *cells([each.median(size, *work) for each in contestants], time_text)])
                if name == "page of 50":
                    resident[size] = [each.resident_mib() for each in contestants]
        for size, figures in resident.items():
            table.row(["resident memory then", str(size), *cells(figures, lambda mib: f"{mib:.1f} MiB")])
    finally:
        for contestant in contestants:
            contestant.peer.end()
        for each in folders:
            each.cleanup()
    return 0


if __name__ == "__main__":
    sys.exit(main(run, "host", "music", largest=100_000))
