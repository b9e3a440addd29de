#!/usr/bin/env python3
"""The device end to end over HTTP on this machine: prints a table and holds it against its bounds.

Device and clients share one processor. docs/performance.md says how it ends.
"""

import random
import re
import select
import statistics
import sys
import time

sys.dont_write_bytecode = True

from measuring import (PAGE_ROWS, BenchDevice, Listener, Report, accepted, items_path, main,
                       temp_folder, track)

PLAYLISTS = 1000
SMALL, BIG = 100, 100_000
FOLDER_TRACKS = 10_000
FIRST_POSITION = re.compile(rb'"value":\{"i32":(\d+)')


class Library:
    """The device that is asked, in memory-backed storage, and its lists."""

    def __init__(self, device):
        self.device = device
        client = device.connect()
        ids = [client.create(f"Playlist {i}") for i in range(PLAYLISTS)]
        self.small, self.big = ids[PLAYLISTS // 2], client.create("Everything")
        client.add_tracks(self.small, 0, SMALL)
        client.add_tracks(self.big, 0, BIG)

    def page(self, client, first):
        return client.page(items_path(self.big), first)


def us_since(begin):
    return (time.perf_counter() - begin) * 1e6


def check_page(answer, first):
    body = accepted(answer).body
    rows = body.count(b'"path":"playlists:item/')
    position = FIRST_POSITION.search(body, body.index(b'"rows":'))
    if rows != PAGE_ROWS or int(position[1]) != first:
        raise RuntimeError(f"a page of {rows} rows that begins at {position and position[1]}")


def pages(library, report):
    last = BIG - PAGE_ROWS
    client = library.device.connect()
    dice = random.Random(1)
    for place, low, high in (("at the beginning", 0, 0), ("in the middle", BIG // 2, BIG // 2),
                             ("at the end", last, last), ("at a random place", 0, last)):
        times = []
        for _ in range(2500):
            first = dice.randint(low, high)
            text = library.page(client, first)
            begin = time.perf_counter()
            answer = client.exchange(text)
            times.append(us_since(begin))
            check_page(answer, first)
        report.add_times(f"page of 50 {place}", times, "µs", 1000, 3000)


def edit(text, needle, editor, listener):
    """Microseconds until the edit is answered, and until the other client has its event."""
    listener.clear()
    waiting = {editor: editor.read, listener: lambda: listener.hears(needle)}
    times = {}
    begin = time.perf_counter()
    editor.send_text(text)
    while waiting:
        for ready in select.select(list(waiting), [], [])[0]:
            result = waiting[ready]()
            if result:
                times[ready] = us_since(begin)
                del waiting[ready]
                if ready is editor:
                    accepted(result)
    return times[editor], times[listener]


def edits(library, report):
    """Edits by one client, while another one listens."""
    warm_up = 10
    dice = random.Random(2)
    editor = library.device.connect()
    listener = Listener(library.device)

    def move_by_one(n, size):
        row = dice.randint(1, size - 2)
        return {"items": [row], "to": row + (-1 if n % 2 else 1)}

    kinds = (
        ("move a row by one", "moveItems", move_by_one, 400),
        ("add a row at the end", "addExternalItems", lambda n, _: {"mode": 2, "items": [track(n)]}, 100),
        # Those that were added, from behind.
        ("remove the last row", "removeItems", lambda n, size: {"items": [size + warm_up + 99 - n]}, 100),
        ("rename a list", "setName", lambda n, _: {"name": f"Renamed {n}"}, 200))
    for plid, size in ((library.small, SMALL), (library.big, BIG)):
        for name, command, arguments, count in kinds:
            event = "playlists:root" if command == "setName" else items_path(plid)
            needle = f'"path":"{event}"'.encode()
            listener.settle(0.05)
            times = [edit(editor.post(f"playlists:pl/{command}", {"plid": plid, **arguments(n, size)}),
                          needle, editor, listener) for n in range(warm_up + count)][warm_up:]
            answered, told = (statistics.median(column) for column in zip(*times))
            report.add(f"{name}, list of {size:,}, median until answered", answered, "µs", 1000)
            report.add(f"{name}, list of {size:,}, median until told", told, "µs", 2000)


def pages_behind_removals(library, report):
    """A page is asked for behind each removal, so that it waits for all of it."""
    removals = 100
    editor, reader = library.device.connect(), library.device.connect()
    editor.add_tracks(library.big, BIG, removals)
    page = library.page(reader, 0)
    times = []
    for row in range(BIG + removals - 1, BIG - 1, -1):
        removal = editor.post("playlists:pl/removeItems", {"plid": library.big, "items": [row]})
        editor.send_text(removal)
        begin = time.perf_counter()
        answer = reader.exchange(page)
        times.append(us_since(begin) / 1000)
        check_page(answer, 0)
        accepted(editor.receive())
    what = f"a page behind a removal, list of {BIG:,}"
    report.add(f"{what}, median", statistics.median(times), "ms")
    report.add(f"{what}, longest", max(times), "ms", 20)


def many_listeners(library, report):
    count = 200
    poll = select.epoll()
    listeners = {}
    for _ in range(count):
        listener = Listener(library.device)
        listener.settle(0)
        listeners[listener.fileno()] = listener
        poll.register(listener, select.EPOLLIN)
    editor = library.device.connect()
    needle = f'"path":"{items_path(library.small)}"'.encode()
    times = []
    for n in range(100):
        text = editor.post("playlists:pl/moveItems",
                           {"plid": library.small, "items": [n % 2], "to": 1 - n % 2})
        missing = set(listeners)
        begin = time.perf_counter()
        editor.send_text(text)
        while missing:
            for ready, _ in poll.poll():
                if listeners[ready].hears(needle):
                    missing.discard(ready)
        times.append(us_since(begin) / 1000)
        accepted(editor.receive())
        time.sleep(0.02)
        for listener in listeners.values():
            listener.settle(0)
    what = f"{count} event streams, all told of an edit"
    report.add_times(what, times, "ms", 20, 20)
    report.add(f"{what}, longest", max(times), "ms", 20)


class Reader:
    """Asks for one page of the long list after the other, and notes how long each took."""

    def __init__(self, library, dice):
        self._library = library
        self._dice = dice
        self.client = library.device.connect()
        self.times = []
        self.waits = False
        self.due = 0.0

    def fileno(self):
        return self.client.fileno()

    def ask(self):
        self._first = self._dice.randint(0, BIG - PAGE_ROWS)
        text = self._library.page(self.client, self._first)
        self._begin = time.perf_counter()
        self.client.send_text(text)
        self.waits = True

    def read(self):
        """Reads once. True when the page is whole."""
        answer = self.client.read()
        if answer:
            self.times.append(us_since(self._begin) / 1000)
            check_page(answer, self._first)
            self.waits = False
        return bool(answer)


def many_readers(library, report):
    count, seconds = 64, 5
    dice = random.Random(3)
    readers = [Reader(library, dice) for _ in range(count)]
    begin = time.perf_counter()
    for reader in readers:
        reader.ask()
    while waiting := [reader for reader in readers if reader.waits]:
        for ready in select.select(waiting, [], [])[0]:
            if ready.read() and us_since(begin) < seconds * 1e6:
                ready.ask()
    lasted = us_since(begin) / 1e6
    times = [each for reader in readers for each in reader.times]
    what = f"{count} clients read pages without a pause"
    report.add(f"{what}, pages in a second", len(times) / lasted, "")
    report.add(f"{what}, median", statistics.median(times), "ms")
    report.add(f"{what}, longest", max(times), "ms")


def answered_among_readers(library, client, request):
    """Sends the request while four clients read with a breath between two pages: its answer, how long
    that took, and how long the pages took, in milliseconds."""
    breath = 0.002
    dice = random.Random(4)
    readers = [Reader(library, dice) for _ in range(4)]
    begin = time.perf_counter()
    client.send_text(request)
    answer = None
    while answer is None or any(reader.waits for reader in readers):
        for reader in readers:
            if not reader.waits and answer is None and time.perf_counter() >= reader.due:
                reader.ask()
        waiting = [reader for reader in readers if reader.waits] + ([client] if answer is None else [])
        for ready in select.select(waiting, [], [], 0.001)[0]:
            read = ready.read()
            if read and ready is client:
                took = us_since(begin) / 1000
                answer = accepted(read)
            elif read:
                ready.due = time.perf_counter() + breath
    return answer, took, [each for reader in readers for each in reader.times]


def add_among_readers(report, what, took, times, longest, answered=None):
    report.add(f"{what}, until answered", took, "ms", answered)
    report.add(f"{what}, a page meanwhile, median", statistics.median(times), "ms")
    report.add(f"{what}, a page meanwhile, longest", max(times), "ms", longest)


def folder_added(library, report):
    """A folder goes into a new list."""
    editor = library.device.connect()
    new = editor.create("A folder")
    addition = editor.post("playlists:pl/addItems", {"plid": new, "mode": 2, "items": ["files:tree"]})
    _, took, times = answered_among_readers(library, editor, addition)
    rows = accepted(editor.exchange(editor.page(items_path(new), 0))).json()["rowsCount"]
    if rows != FOLDER_TRACKS:
        raise RuntimeError(f"the new list has {rows} of the folder's tracks")
    editor.must("playlists:pl/delete", {"plid": new})
    add_among_readers(report, f"a folder of {FOLDER_TRACKS:,} tracks is added", took, times, 100)


def list_imported(library, report):
    """A playlist file of another machine comes in, a line for each track of the folder."""
    editor = library.device.connect()
    everything = editor.create("Everything there is")
    editor.must("playlists:pl/addItems", {"plid": everything, "mode": 2, "items": ["files:tree"]})
    exported = accepted(editor.exchange(editor.post("lists:export", {"plid": everything}))).json()["result"]
    names = exported["text"].splitlines()
    text = "\n".join(name if name.startswith("#") else f"D:\\Music\\{name}" for name in names)
    answer, took, times = answered_among_readers(
        library, editor, editor.post("lists:import", {"text": text, "file": "theirs.m3u8"}))
    result = answer.json()["result"]
    if result["added"] != FOLDER_TRACKS:
        raise RuntimeError(f"{result['added']} tracks of the file were found")
    for plid in (everything, result["plid"]):
        editor.must("playlists:pl/delete", {"plid": plid})
    add_among_readers(report, f"a playlist file of {FOLDER_TRACKS:,} tracks is imported", took, times, 20, 2000)


def run(options):
    report = Report(options.table)
    with temp_folder(options.memory) as folder, BenchDevice(options.host, folder, options.music) as device:
        device.wait_for_scan(device.connect())
        library = Library(device)
        for scenario in (pages, edits, pages_behind_removals, many_listeners, many_readers, folder_added,
                         list_imported):
            scenario(library, report)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main(run, "host", "music"))
