#!/usr/bin/env python3
"""Kills a device at random moments and compares what is left with a model: see README.md."""

import argparse
import collections
import os
import random
import shutil
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../support"))

import model
import store_file
from commands import Mix, is_placed
from kill_point import KillPoint
from orvo_device import Device, DeviceError, write_silence

FIELDS = ("title", "artist", "album", "artworkUrl", "genre", "durationSeconds", "url", "serviceId",
          "orvoRoles")
# How far behind the usual end of what is going on a kill may come.
OVERSHOOT = 1.3
# The least share of the kills that must end a placed edit, and the one that is aimed at.
LEAST_PLACED = 1 / 3
WANTED_PLACED = 0.4


class Broken(Exception):
    """What was found is not what was promised. `lost` acknowledged edits are missing, if the file
    is in an earlier state of this run."""

    def __init__(self, text, lost=None):
        super().__init__(text)
        self.lost = lost


class Durations:
    """How long things take, to aim kills at the middle of them."""

    def __init__(self):
        self._seconds = {}

    def note(self, name, seconds):
        self._seconds[name] = 0.7 * self._seconds.get(name, seconds) + 0.3 * seconds

    def usual(self, name, unknown):
        return self._seconds.get(name, unknown)

    def moment(self, rng, name, unknown):
        return rng.uniform(0, OVERSHOOT * self.usual(name, unknown))


def sleep_exactly(seconds):
    until = time.perf_counter() + seconds
    if seconds > 0.002:
        time.sleep(seconds - 0.001)
    while time.perf_counter() < until:
        pass


def stored_fields(item):
    """The columns of an item's row as they stand when the item was sent."""
    return tuple(item.get(name) or (0 if name == "durationSeconds" else "") for name in FIELDS)


def difference(expected, found):
    """What differs, in a few lines."""
    lines = []
    for part in ("lists", "collections"):
        before, after = getattr(expected, part), getattr(found, part)
        for uid in sorted({*before, *after}):
            if before.get(uid) != after.get(uid):
                lines.append(f"  {part} {uid}\n    due   {before.get(uid)}\n    found {after.get(uid)}")
    if expected.unused != found.unused:
        lines.append(f"  items without an entry: due {sorted(expected.unused)},"
                     f" found {sorted(found.unused)}")
    return "\n".join(lines)


class CrashTest:
    def __init__(self, host, kill_at, folder, seed):
        self.rng = random.Random(seed)
        self.folder = folder
        self.counts = collections.Counter()
        self.by_command = collections.Counter()
        self.kills_by_command = collections.Counter()  # of those without an answer
        self.durations = Durations()
        self.operations = {}  # how many operations on the file things take
        self.kill_point = KillPoint(kill_at, os.path.join(folder, "kill-at"))
        self.tracks = {}  # title → the item that was sent
        self.state = model.State()
        self.history = []  # the states since the last start, one per acknowledged edit
        self.device = Device(host, folder, ["--audio-sink", "auto"], self.kill_point.environment)
        self.connection = None
        self.mix = self._prepare_music()

    def _prepare_music(self):
        files = []
        for number in range(1, 7):
            name = f"{number:02} silence"
            write_silence(os.path.join(self.device.music, name + ".wav"), 600)
            files.append((f"files:tree/{number:02}%20silence.wav", name))
        silence = "file://" + os.path.join(self.device.music, "01 silence.wav")
        return Mix(self.rng, files, silence, self.tracks)

    def learn_files(self):
        """What the files module prepares is what a playlist must have of it."""
        self.device.start()
        self.connection = self.device.connect()
        self.device.wait_for_scan(self.connection)
        paths = self.mix.file_paths()
        for item in self.connection.command("files:prepareItems", paths).result():
            self.tracks[item["title"]] = item
        self.mix.name_files(list(self.tracks))
        self.device.kill()

    def run(self, kills):
        self.first_starts(min(10, 1 + kills // 20))
        self.learn_files()
        while self.counts["kills"] < kills:
            self.start()
            if self.rng.random() < 0.1:
                self.kill_between()
            else:
                self.kill_within()
            if self.rng.random() < 0.2:
                self.kill_start()
        self.start()
        self.device.kill()

    # --- the moments of a kill ---

    def first_starts(self, count):
        """Killed while the file is being made, the next start makes it whole."""
        for _ in range(count):
            shutil.rmtree(self.device.data, ignore_errors=True)
            self.kill_during("first start", self.device.spawn, 0.1)
            self.timed("first start", self.device.start)
            found, _, broken = store_file.read(self.device.database)
            if broken or found != model.State():
                raise Broken(f"after a first start that was killed: {broken}\n"
                             + difference(model.State(), found))
            self.device.kill()

    def kill_start(self):
        self.kill_during("start", self.device.spawn, 0.1)
        self.settle("start", model.start(self.state), 0)

    def kill_between(self):
        for _ in range(self.rng.randint(1, 8)):
            self.edit()
        self.kill()
        self.settle("nothing", [self.state], 0)

    def kill_within(self):
        for _ in range(self.rng.randint(0, 8)):
            self.edit()
        command = self.draw_victim()
        victim = self.rng.randrange(len(command.requests))
        reached = 0
        for request in command.requests[:victim]:
            self.request(command, request)
            reached = request.reached
        request = command.requests[victim]
        self.name_revision(request)
        self.kill_during(
            (command.name, victim),
            lambda: self.connection.send(request.method, request.target, request.body), 0.005)
        answer = self.connection.receive()
        if answer.status:
            self.check_answer(command, request, answer)
            reached = request.reached
            self.counts["answered before the kill"] += 1
        else:
            self.kills_by_command[command.name] += 1
            self.counts["placed"] += is_placed(command.name)
        acknowledged = command.requests[0].reached <= reached and (victim or answer.status)
        self.settle(command.name, command.states, reached, bool(acknowledged))

    def draw_victim(self):
        """A placed edit while too few were ended. Of the others half of the time one that is
        several transactions, which are rare."""
        if self.counts["placed"] < WANTED_PLACED * self.counts["kills"]:
            return self.mix.draw_placed(self.state)
        command = self.mix.draw(self.state)
        if self.rng.random() < 0.5:
            for _ in range(30):
                if len(command.states) > 2:
                    break
                command = self.mix.draw(self.state)
        return command

    # --- what goes on between ---

    def timed(self, name, action):
        """Does it, and learns how long it takes and how much it does to the file."""
        begin = time.perf_counter()
        done = self.kill_point.done()
        result = action()
        self.durations.note(name, time.perf_counter() - begin)
        self.operations[name] = self.kill_point.done() - done
        return result

    def kill_during(self, name, action, usual):
        """At a moment spread over the time that it takes, or at one of its operations on the
        file: most of that time the file is left alone."""
        operations = self.operations.get(name, 3)
        if operations and self.rng.random() < 0.6:
            self.kill_point.arm(self.rng.randint(1, operations), self.rng.random() < 0.5)
            action()
            self.device.wait_for_end(3 * self.durations.usual(name, usual))
            self.counts["at an operation on the file"] += self.kill_point.reached()
        else:
            action()
            sleep_exactly(self.durations.moment(self.rng, name, usual))
        self.kill()

    def kill(self):
        self.device.kill()
        self.kill_point.disarm()
        self.counts["kills"] += 1

    def start(self):
        self.timed("start", self.device.start)
        self.state = model.start(self.state)[-1]
        self.history = [self.state]
        self.connection = self.device.connect()
        found, fields, broken = store_file.read(self.device.database)
        if broken or found != self.state:
            raise Broken(f"the file after a start: {broken}\n" + difference(self.state, found))
        for pl in found.lists.values():
            for uid, title in pl.entries:
                stored = tuple(column or "" if i != 5 else column or 0
                               for i, column in enumerate(fields[uid]))
                if stored != stored_fields(self.tracks[title]):
                    raise Broken(f"item {uid}: due {self.tracks[title]}, found {stored}")
        self.check_rows()

    def check_rows(self):
        """The device shows what the file holds, in order."""
        titles = lambda path: [row["title"] for row in self.connection.rows(path)]
        lists = [(uid, pl) for uid, pl in self.state.lists.items() if uid != model.QUEUE]
        due = {"playlists:pl/list": ["Create new playlist"] + [pl.name for _, pl in lists],
               "playlists:pq/items": []}
        for uid, pl in lists:
            due[f"playlists:pl/items/{uid}"] = [title for _, title in pl.entries]
        for path, expected in due.items():
            if titles(path) != expected:
                raise Broken(f"{path} shows {titles(path)}, due {expected}")
        for clid, collection in self.state.collections.items():
            shown = sorted(titles(f"playlists:cl/items%3Fclid%3D{clid}"))
            if shown != sorted(self.state.lists[uid].name for uid in collection.members):
                raise Broken(f"collection {clid} shows {shown}")

    def edit(self):
        command = self.mix.draw(self.state)
        for request in command.requests:
            self.request(command, request)
        self.acknowledged(command.name, command.states[-1])

    def name_revision(self, request):
        if request.revision_of is not None:
            path = f"pl/items/{request.revision_of}" if request.revision_of else "pq/items"
            rows = self.connection.ask("GET", f"/api/rows?path=playlists:{path}&to=0&roles=title")
            request.body["value"]["revision"] = rows.json()["revision"]

    def request(self, command, request):
        self.name_revision(request)
        answer = self.timed(
            (command.name, command.requests.index(request)),
            lambda: self.connection.ask(request.method, request.target, request.body))
        self.check_answer(command, request, answer)

    def check_answer(self, command, request, answer):
        if answer.status != request.status:
            raise Broken(f"{command.name} {request.body} was answered with {answer.status}"
                         f" {answer.body.decode(errors='replace')}")
        if command.creates and answer.result() != command.creates:
            raise Broken(f"{command.name} gave {answer.result()}, due {command.creates}")

    def acknowledged(self, name, state):
        self.state = state
        self.history.append(state)
        self.counts["edits acknowledged"] += 1
        self.by_command[name] += 1

    def settle(self, name, states, reached, acknowledged=False):
        """Compares a killed device's file with the states that it may be in, of which those before
        `reached` are over, and takes over the one that it is in."""
        copy, cut_off = store_file.copy_of(self.device.database, self.folder)
        found, _, broken = store_file.read(copy)
        self.counts["transactions cut off"] += cut_off
        if broken:
            raise Broken(f"after a kill in {name}: {broken}")
        allowed = states[reached:]
        if found not in allowed:
            lost = next((back for back, state in enumerate(reversed(self.history))
                         if state == found), None)
            if lost is not None and acknowledged:
                lost += 1  # the command itself
            text = f"after a kill in {name}, none of {len(allowed)} allowed states"
            raise Broken(f"{text}; the last of them:\n" + difference(allowed[-1], found), lost)
        if len(states) > 1 and not reached:
            place = states.index(found)
            self.counts["in flight: " + ("not there" if place == 0 else
                                         "all there" if found == states[-1] else "between")] += 1
        if acknowledged:
            self.acknowledged(name, found)
        self.state = found


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("host", help="the built orvo-host")
    parser.add_argument("kill_at", help="the built library of KillAt.cpp")
    parser.add_argument("--kills", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("--folder", help="where to work; the temporary folder by default")
    options = parser.parse_args()
    sys.stdout.reconfigure(line_buffering=True)

    folder = tempfile.mkdtemp(prefix="orvo-crash-", dir=options.folder)
    print(f"seed {options.seed}, {options.kills} kills, in {folder}")
    test = CrashTest(options.host, options.kill_at, folder, options.seed)
    begin = time.monotonic()
    failure = None
    try:
        test.run(options.kills)
    except (Broken, DeviceError) as broken:
        failure = broken
    finally:
        test.device.close()
    for name in ("at an operation on the file", "answered before the kill",
                 "in flight: not there", "in flight: between", "in flight: all there",
                 "transactions cut off"):
        print(f"  {name}: {test.counts[name]}")
    print(f"  commands: {dict(sorted(test.by_command.items()))}")
    print("  kills that ended a command, and their share:")
    for name, count in sorted(test.kills_by_command.items(), key=lambda row: (not is_placed(row[0]), row[0])):
        print(f"    {'+' if is_placed(name) else ' '} {name}: {count} ({count / test.counts['kills']:.1%})")
    placed = test.counts["placed"] / max(1, test.counts["kills"])
    print(f"  + placed edits together: {test.counts['placed']} ({placed:.1%})")
    if not failure and placed < LEAST_PLACED:
        failure = Broken(f"{placed:.1%} of the kills ended a placed edit, {LEAST_PLACED:.1%} are due", 0)
    print(f"  {time.monotonic() - begin:.0f} s")
    print(f"kills: {test.counts['kills']}")
    print(f"edits acknowledged: {test.counts['edits acknowledged']}")
    if failure:
        lost = getattr(failure, "lost", None)
        lost = "unknown" if lost is None else lost
        print(f"edits lost: {lost}\nFAILED: {failure}")
        print(f"the folder of the failed run is kept: {folder}; again with --seed {options.seed}")
        return 1
    print("edits lost: 0")
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
