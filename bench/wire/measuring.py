"""What the measurements over HTTP share: a quick client, made-up tracks, and a table with bounds."""

import argparse
import gc
import json
import os
import platform
import select
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tests/support"))

from orvo_device import Connection, Device, DeviceError

PAGE_ROWS = 50
# Of one processor, taken by other processes or by the hypervisor.
MAX_DISTURBED_PERCENT = 10
HELD, BROKEN, FAILED, DISTURBED = 0, 1, 2, 4  # exit statuses


class Client(Connection):
    """Sends requests that were made beforehand, so that the clock sees the exchange alone."""

    def post(self, path, value):
        return self.text("POST", "/api/data", {"path": path, "value": value})

    def page(self, path, first):
        # The roles that the web page asks for.
        return self.text("GET", f"/api/rows?path={path}&from={first}&to={first + PAGE_ROWS - 1}&roles="
                         "title,path,type,containerType,value,modifiable,id,context,mediaData")

    def send_text(self, text):
        self._socket.sendall(text)

    def read(self):
        """Waits for something. The answer once it is whole, None before."""
        more = self._socket.recv(1 << 16)
        if not more:
            raise ConnectionError("the connection was closed before the answer was complete")
        self._buffer += more
        return self._take_answer()

    def exchange(self, text):
        self._socket.sendall(text)
        return self.receive()

    def must(self, path, value):
        """A command that has to succeed; returns what it answered."""
        return accepted(self.exchange(self.post(path, value))).result()

    def create(self, name):
        return self.must("playlists:pl/create", {"name": name})

    def add_tracks(self, plid, first, count):
        most_at_once = 5000  # what the device takes in one body
        for begin in range(first, first + count, most_at_once):
            end = min(begin + most_at_once, first + count)
            self.must("playlists:pl/addExternalItems",
                      {"plid": plid, "mode": 2, "items": [track(i) for i in range(begin, end)]})


class Listener(Client):
    """A stream of events. Looks at nothing but whether a text has come."""

    def __init__(self, device):
        super().__init__(device.port)
        self._heard = b""
        self.send("GET", "/api/events")
        while not self.hears(b"retry:"):
            pass

    def clear(self):
        self._heard = b""

    def hears(self, text):
        """Reads once. Whether the text has come since clear()."""
        more = self._socket.recv(1 << 16)
        if not more:
            raise ConnectionError("a stream of events has ended")
        self._heard += more
        return text in self._heard

    def settle(self, seconds):
        """Takes whatever comes until it is quiet for so long."""
        while select.select([self], [], [], seconds)[0]:
            self.hears(b"")
        self.clear()


class BenchDevice(Device):
    """A silent host over folder/device, for `with`: started at its beginning, ended at its end."""

    def __init__(self, host, folder, music=None, modules=()):
        arguments = ["--audio-sink", "null", "--log-level", "warn"]
        for module in modules:
            arguments += ["--module", module]
        super().__init__(host, str(folder), arguments)
        self.music = music or self.music

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.end()

    def connect(self):
        return Client(self.port)


def ms_of(work):
    begin = time.perf_counter()
    work()
    return (time.perf_counter() - begin) * 1000


def accepted(answer):
    if answer.status != 200:
        raise RuntimeError(f"status {answer.status}: {answer.body[:200].decode()}")
    return answer


def items_path(plid):
    return f"playlists:pl/items/{plid}"


def track(number):
    """A made-up track with everything that one of the music folder has, as the add command takes it."""
    title = f"Track number {number}"
    artist, album = f"Artist {number // 60}", f"Album {number // 12}"
    folder = f"{artist}/{album}/".replace(" ", "%20")
    file = f"{folder}Track%20number%20{number}.flac"
    url, cover = f"file:///srv/music/{file}", f"file:///srv/music/{folder}cover.png"
    roles = {"mediaData": {"metaData": {"album": album, "artist": artist, "artworkUrl": cover,
                                        "duration": 215000, "genre": "Folk",
                                        "prePlayPath": "files:prePlay", "serviceId": "files",
                                        "trackNumber": number % 12 + 1},
                           "resources": [{"mimeType": "audio/flac", "uri": url}]},
             "path": f"files:tree/{file}", "title": title, "type": 3}
    return {"title": title, "artist": artist, "album": album, "artworkUrl": cover, "genre": "Folk",
            "durationSeconds": 215, "serviceId": "files", "url": url,
            "orvoRoles": json.dumps(roles, separators=(",", ":"))}


def temp_folder(parent):
    os.makedirs(parent, exist_ok=True)
    return tempfile.TemporaryDirectory(prefix="orvo-bench-", dir=os.path.abspath(parent))


def memory_of(pid):
    """Resident and private memory in MiB: what the kernel says the process holds, and what it shares with none."""
    kib = {}
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        for line in file.readlines()[1:]:
            name, value = line.split()[:2]
            kib[name] = int(value)
    return kib["Rss:"] / 1024, (kib["Private_Clean:"] + kib["Private_Dirty:"]) / 1024


def figure(value):
    if value == int(value):
        return str(int(value))
    return f"{value:.0f}" if value >= 100 else f"{value:.1f}" if value >= 10 else f"{value:.2f}"


class Report:
    """Rows of Markdown, printed as they come and kept in a file, and how many break their bounds. A
    run is on one processor, which this chooses, or on more. Where waiting does not count
    (`counts_processes`) it is disturbed by the hypervisor alone."""

    def __init__(self, file, columns=("what", "measured", "bound"), processors=1, counts_processes=True):
        # One, because waking another of a virtual machine takes as long as a small answer.
        os.sched_setaffinity(0, sorted(os.sched_getaffinity(0))[-processors:])
        gc.disable()
        self._counts_processes = counts_processes
        self._begin = time.monotonic(), self._used_by_others()
        self._broken = 0
        os.makedirs(os.path.dirname(file), exist_ok=True)
        self._file = open(file, "w", encoding="utf-8")
        self.line(f"{os.cpu_count()} processors, {platform.platform()}\n")
        self.row(columns)
        self.row(["---"] + ["--:"] * (len(columns) - 1))

    def line(self, text):
        print(text, flush=True)
        print(text, file=self._file, flush=True)

    def row(self, cells):
        self.line(f"| {' | '.join(cells)} |")

    def judged(self, value, bound):
        """What is printed behind the value."""
        broken = bound is not None and value > bound
        self._broken += broken
        return " BROKEN" * broken

    def add(self, what, value, unit, bound=None):
        limit = "" if bound is None else f"{bound} {unit}".strip()
        self.row([what, f"{figure(value)} {unit}".strip(), limit + self.judged(value, bound)])

    def add_times(self, what, times, unit, median_bound=None, tail_bound=None):
        self.add(f"{what}, median", statistics.median(times), unit, median_bound)
        self.add(f"{what}, 99th percentile", statistics.quantiles(times, n=100)[-1], unit, tail_bound)

    def finish(self):
        """Call it when all processes of the run have ended. Returns the exit status."""
        seconds = time.monotonic() - self._begin[0]
        percent = 100 * max(0, self._used_by_others() - self._begin[1]) / seconds
        self.line(f"\nTaken by others: {percent:.1f} % of a processor.")
        if percent > MAX_DISTURBED_PERCENT:
            self.line(f"The machine was disturbed (more than {MAX_DISTURBED_PERCENT} %): not judged.")
            return DISTURBED
        self.line(f"{self._broken} bounds are broken." if self._broken else "Every bound was held.")
        return BROKEN if self._broken else HELD

    def _used_by_others(self):
        """Seconds of all processors that were stolen or that neither this process nor its ended children had."""
        with open("/proc/stat", encoding="ascii") as file:
            ticks = file.readline().split()[1:]
        user, nice, system, _, _, _, _, stolen = (int(tick) / os.sysconf("SC_CLK_TCK") for tick in ticks[:8])
        return stolen + (user + nice + system - sum(os.times()[:4])) * self._counts_processes


def main(run, *names, **defaults):
    """What each script is: `run` with its options, as the process's exit status."""
    script = sys.modules[run.__module__]
    parser = argparse.ArgumentParser(description=script.__doc__)
    for name in (*names, "memory", "disk", "table"):  # folders on the two storages, a file
        parser.add_argument(f"--{name}", required=True)
    for name, default in defaults.items():
        kind = {"action": "store_true"} if default is False else {"type": type(default), "default": default}
        parser.add_argument(f"--{name}", **kind)
    try:
        return run(parser.parse_args())
    except (OSError, RuntimeError, DeviceError, subprocess.CalledProcessError) as problem:
        print(f"{os.path.basename(script.__file__)}: {problem}", file=sys.stderr)
        return FAILED
