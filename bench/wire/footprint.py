#!/usr/bin/env python3
"""What the device takes: file sizes, memory, and the time until its first answer.

docs/performance.md says how it ends.
"""

import os
import shutil
import statistics
import subprocess
import sys
import time

sys.dont_write_bytecode = True

from measuring import BenchDevice, Listener, Report, accepted, main, memory_of, temp_folder

PLAYLISTS, TRACKS_EACH = 1000, 10
MODULE, GATEWAY, FILES = "liborvo_playlists.so", "liborvo_gateway.so", "liborvo_files.so"


def sizes(build, scratch, report):
    libraries = sorted(file.path for file in os.scandir(f"{build}/lib") if file.name.endswith(".so"))
    programs = sorted(file.path for file in os.scandir(f"{build}/bin") if file.name.startswith(("orvo-", "orvoctl")))
    for file in programs + libraries:
        name = os.path.basename(file)
        subprocess.run(["strip", "--strip-all", "-o", f"{scratch}/{name}", file], check=True)
        report.add(f"{name}, stripped", os.path.getsize(f"{scratch}/{name}") / 1024, "KiB",
                   650 if name == MODULE else None)


def ask_first(device):
    client = device.connect()
    accepted(client.exchange(client.page("playlists:root", 0)))
    return client


def memory(host, bare, few, report):
    def after_start(folder, modules):
        with BenchDevice(host, folder, modules=modules) as device:
            if modules == [GATEWAY]:
                client = device.connect()
                accepted(client.exchange(client.text("GET", "/api/modules")))
            else:
                ask_first(device)
            return memory_of(device.pid)[0]

    figures = {"bare host, the gateway only": after_start(bare, [GATEWAY]),
               "with the playlists module": after_start(few, [MODULE, GATEWAY]),
               "with all modules": after_start(few, [])}
    for what, resident in figures.items():
        report.add(f"{what}, resident", resident, "MiB")
    without, module, _ = figures.values()
    report.add("the module over the bare host, 1,000 playlists, resident", module - without, "MiB", 5)


def views(host, folder, report):
    """A view is what an open page is to the device: an event stream, and a connection that has asked for rows."""
    count = 150  # two connections each; of one address 320 are taken
    with BenchDevice(host, folder, modules=[MODULE, GATEWAY]) as device:
        opened = [(Listener(device), ask_first(device))]
        before = memory_of(device.pid)[1]
        opened += [(Listener(device), ask_first(device)) for _ in range(count)]
        after = memory_of(device.pid)[1]
        report.add("an open view, an event stream and a connection", (after - before) * 1024 / count, "KiB")


def start_ms(host, folder, modules):
    begin = time.perf_counter()
    with BenchDevice(host, folder, modules=modules) as device:
        ask_first(device)
        return (time.perf_counter() - begin) * 1000


def starts(host, folder, report):
    for name, modules in (("all modules", []), ("playlists and gateway", [MODULE, GATEWAY]),
                          ("without the player", [MODULE, FILES, GATEWAY])):
        what = f"start to first answer, {name}"
        start_ms(host, folder, modules)
        report.add(f"{what}, median",
                   statistics.median(start_ms(host, folder, modules) for _ in range(15)), "ms", 150)


def run(options):
    report = Report(options.table)
    host = f"{options.build}/bin/orvo-host"
    with temp_folder(options.memory) as scratch, temp_folder(options.disk) as disk:
        few = f"{scratch}/few"
        with BenchDevice(host, few) as device:
            client = device.connect()
            for i in range(PLAYLISTS):
                client.add_tracks(client.create(f"Playlist {i}"), 0, TRACKS_EACH)
        shutil.copytree(few, f"{disk}/few")
        sizes(options.build, scratch, report)
        memory(host, f"{scratch}/bare", few, report)
        views(host, few, report)
        starts(host, f"{disk}/few", report)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main(run, "build"))
