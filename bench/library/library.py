#!/usr/bin/env python3
"""The library: starts with it, its lists and searches over HTTP, its memory; and a peer's search."""

import contextlib
import os
import random
import statistics
import sys
import time
from urllib.parse import quote

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../wire"))

from measuring import PAGE_ROWS, BenchDevice, Report, accepted, main, memory_of, ms_of, temp_folder
from peers import Daemon

SMALL, LARGE = 20_000, 100_000
# As a grandchild, so that the process is the device's.
TRACER = '#!/bin/sh\nexec strace -D -f -qq -e trace=open,openat,openat2 -o {calls} {host} "$@"\n'


def scan_state(client):
    state = accepted(client.ask("GET", "/api/value?path=files:scan")).json()["value"]
    if state["state"] == "ready" and state["done"] != SMALL:
        raise RuntimeError(f"the library has {state['done']} tracks, not {SMALL}")
    return state


def first_scan(device, report):
    """Another client asks for little every few milliseconds until the scan is over."""
    client, waits, state = device.connect(), [], {"state": ""}
    while state["state"] != "ready":
        waits.append(ms_of(lambda: state.update(scan_state(client))))
        time.sleep(0.003)
    report.add(f"a small request during the first scan of {SMALL:,}, median", statistics.median(waits), "ms")
    report.add(f"a small request during the first scan of {SMALL:,}, longest", max(waits), "ms", 20)


def later_starts(options, folder, music, report):
    """With tags that are kept: how long until all is known, and which files of the music are opened."""
    times = []
    for _ in range(5):
        device = BenchDevice(options.host, folder, music)
        times.append(ms_of(lambda: (device.start(), device.wait_for_scan(device.connect()))) / 1000)
        scan_state(device.connect())
        device.end()
    report.add(f"start until {SMALL:,} tracks are known again, longest of {len(times)}", max(times), "s", 1.0)
    tracer, calls = f"{folder}/tracer", f"{folder}/calls"
    with open(os.open(tracer, os.O_CREAT | os.O_WRONLY, 0o755), "w", encoding="utf-8") as out:
        out.write(TRACER.format(calls=calls, host=options.host))
    with BenchDevice(tracer, folder, music) as device:
        device.wait_for_scan(device.connect())
    with open(calls, encoding="utf-8", errors="replace") as file:
        opened = [line for line in file if music in line]
    if not opened:
        raise RuntimeError("strace saw no folder of the music")
    report.add("music files that it opens", sum(".flac" in line for line in opened), "", 0)


def pages(device, report):
    client, dice = device.connect(), random.Random(1)
    for name in ("albums", "artists"):
        count = accepted(client.exchange(client.page(f"files:{name}", 0))).json()["rowsCount"]
        requests = [client.page(f"files:{name}", dice.randint(0, count - PAGE_ROWS)) for _ in range(1000)]
        times = [ms_of(lambda: accepted(client.exchange(request))) for request in requests]
        report.add_times(f"a page of {count:,} {name}", times, "ms", 3, 3)


def typed_texts(device):
    """What is in the search field after each key, while words of titles are typed."""
    rows = device.connect().rows(f"files:select&from=0&to={PAGE_ROWS - 1}")
    words = [row["title"].split()[-1] for row in rows]
    return [word[:end] for word in words for end in range(1, len(word) + 1)]


def searches(device, texts, tracks, report, *bounds):
    """The answer to a key: the counts, and the first page of artists, albums and tracks."""
    client, times = device.connect(), []
    for text in texts:
        requests = [client.page(quote(f"files:search{part}?text={quote(text)}"), 0)
                    for part in ("", "/artists", "/albums", "/tracks")]
        times.append(ms_of(lambda: [accepted(client.exchange(request)) for request in requests]))
        if not accepted(client.exchange(requests[-1])).json()["rowsCount"]:
            raise RuntimeError(f"no track has {text}")
    report.add_times(f"search of {tracks:,} tracks, a key", times, "ms", *bounds)


def daemon_searches(folder, music, texts, report):
    with contextlib.closing(Daemon(folder, music)) as daemon:
        for what, window in (("the first page", f" window 0:{PAGE_ROWS}"), ("all", "")):
            times = [ms_of(lambda: daemon.ask(f'search any "{text}"{window}')) for text in texts]
            report.add_times(f"the daemon's search any, {what}", times, "ms")


def large(options, folder, texts, report):
    """Memory of a device whose tags are kept, beside one with as many files without tags; searches."""
    mib = {}
    for kind in ("untagged", "tagged"):
        for searching in (False, True):
            with BenchDevice(options.host, f"{folder}/{kind}", f"{options.music}-{LARGE}-{kind}") as device:
                device.wait_for_scan(device.connect())
                mib[kind] = memory_of(device.pid)[1]
                if searching and kind == "tagged":
                    searches(device, texts, LARGE, report, 40, 40)
        report.add(f"memory with {LARGE:,} {kind} tracks", mib[kind], "MiB")
    each = (mib["tagged"] - mib["untagged"]) * (1 << 20) / LARGE
    report.add("what the tags of a track take", each, "bytes", 600)


def run(options):
    report = Report(options.table, processors=2)
    music = f"{options.music}-{SMALL}-tagged"
    with temp_folder(options.memory) as folder:
        with BenchDevice(options.host, folder, music) as device:
            first_scan(device, report)
            pages(device, report)
            texts = typed_texts(device)
            searches(device, texts, SMALL, report, 10, 30)
        later_starts(options, folder, music, report)
        daemon_searches(f"{folder}/daemon", music, texts, report)
        large(options, folder, texts, report)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main(run, "host", "music"))
