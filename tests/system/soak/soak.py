#!/usr/bin/env python3
"""Runs a device for a long time with many readers and writers: see README.md."""

import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile
import threading
import time

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../support"))

from clients import Client
from measures import Samples, percentile, slope
from orvo_device import Device, write_silence
from stranger import Stranger
from streams import Streams

CLIENTS = 8
STREAMS = 200
TOKEN = "the-token-of-this-device"
# Events are kept up to a bound, pools and caches fill: memory is looked at from here on.
WARM_UP_S = 60
# Growth after the warm-up that is still called flat: a list that leaks one track per edit grows
# many times as fast.
MAX_BYTES_PER_S = 4096
# A short run is warm-up to its end.
MAX_BYTES_PER_S_WARMING_UP = 512 * 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("host", help="the built orvo-host")
    parser.add_argument("orvoctl", help="the built orvoctl")
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    options = parser.parse_args()
    sys.stdout.reconfigure(line_buffering=True)

    folder = tempfile.mkdtemp(prefix="orvo-soak-")
    print(f"{options.seconds:.0f} s, {STREAMS} event streams, {CLIENTS} clients,"
          f" seed {options.seed}, in {folder}")
    device = Device(options.host, folder, ["--audio-sink", "auto"], token=TOKEN)
    try:
        problems = run(device, options)
    finally:
        device.close()
    problems += check(options.orvoctl, device)
    for problem in problems:
        print(f"FAILED: {problem}")
    if problems:
        print(f"the folder of the failed run is kept: {folder}")
        return 1
    shutil.rmtree(folder)
    return 0


def run(device, options):
    # Short tracks: going on to the next one is part of what lasts.
    for number in range(1, 7):
        write_silence(os.path.join(device.music, f"{number:02} silence.wav"), 4 + number)
    silence = "file://" + os.path.join(device.music, "01 silence.wav")
    device.start()
    device.wait_for_scan(device.connect())
    streams = Streams(device.port, STREAMS, TOKEN)
    end = threading.Event()
    clients = [Client(device, number, options.seed, silence, end) for number in range(CLIENTS)]
    samples = Samples(device.pid)
    stranger = Stranger(device.port, options.seed, end)
    for each in (stranger, *clients):
        each.start()
    until = time.monotonic() + options.seconds
    while time.monotonic() < until and device.alive():
        samples.take()
        time.sleep(min(1, max(0, until - time.monotonic())))
    end.set()
    for each in (stranger, *clients):
        each.join(60)
    if not device.alive():
        return [f"the device has ended, see {device.log}"]
    return report(clients, stranger, samples, streams.close(), options.seconds)


def report(clients, stranger, samples, seen, seconds):
    problems = [error for client in clients for error in client.errors]
    problems += stranger.errors
    problems += ["a client hangs" for client in (stranger, *clients) if client.is_alive()]
    answered = [s for client in clients for s in client.answered]
    print(f"requests: {len(answered)}, {len(answered) / seconds:.1f} per second,"
          f" refused: {sum(client.refused for client in clients)}, errors: {len(problems)}")
    print("latency: " + ", ".join(f"{name} {1000 * percentile(answered, share):.1f} ms" for name, share in
                                  (("median", 0.5), ("90 %", 0.9), ("99 %", 0.99), ("99.9 %", 0.999),
                                   ("longest", 1))))
    print(f"a stranger was answered: {stranger.told()}")
    print(f"events: {seen['least']} to {seen['most']} per stream, resyncs: {seen['resyncs']},"
          f" gaps: {seen['gaps']}, streams lost: {seen['lost']}")
    if seen["lost"] or seen["gaps"] or not seen["least"]:
        problems.append("event streams ended, or missed something without being told")

    warm = min(WARM_UP_S, seconds / 2)
    rows = samples.after(warm)
    growth = slope([(row[0], row[1]) for row in rows])
    print(f"memory: {samples.rows[0][1] / 1e6:.1f} MB at first, {rows[0][1] / 1e6:.1f} MB after"
          f" {warm:.0f} s, {rows[-1][1] / 1e6:.1f} MB at the end; slope {growth / 1024:.2f} KiB/s")
    most = MAX_BYTES_PER_S if seconds >= 3 * WARM_UP_S else MAX_BYTES_PER_S_WARMING_UP
    if growth > most:
        problems.append(f"memory grows by more than {most / 1024:.0f} KiB/s")
    descriptors = [row[2] for row in rows]
    print(f"descriptors: {min(descriptors)} to {max(descriptors)}, {descriptors[-1]} at the end,"
          f" slope {60 * slope([(row[0], row[2]) for row in rows]):.2f} per minute")
    # Besides connections, streams and the store: a playing track and the one that comes next.
    if max(descriptors[-5:]) > max(descriptors[:max(5, len(descriptors) // 4)]) + 20:
        problems.append("descriptors are not given back")
    return problems


def check(orvoctl, device):
    result = subprocess.run([orvoctl, "check", device.data], capture_output=True, text=True, check=False)
    print("store: " + (result.stdout.strip() or result.stderr.strip()))
    return [] if result.returncode == 0 else [f"orvoctl check: {result.stderr.strip()}"]


if __name__ == "__main__":
    sys.exit(main())
