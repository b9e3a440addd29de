#!/usr/bin/env python3
"""Attacks on built devices, each on one of its own: see README.md."""

import argparse
import glob
import os
import shutil
import sys
import tempfile
import traceback
from typing import Callable, NamedTuple

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../support"))

import attacks_by_request as request
import attacks_by_surroundings as surroundings
from attacked_device import MIB, MAX_KEPT, AttackedDevice
from attacks_by_request import FIRST_ITEM, bodies, command

MAX_TAKEN = 256 * MIB  # resident, above what it was
MAX_LOG = MIB
MAX_WAIT_S = 2.0  # of another client with a small request; small counts are for beside other tests
MAX_WAIT_FEW_S = 5.0

PREPARE, ADD = "playlists:prepareItems", "playlists:pl/addItems"


class Attack(NamedTuple):
    name: str
    run: Callable
    due: tuple  # nothing else may be answered, and each of these must be, but for those with a "?"
    has_token: bool = False
    others_wait: bool = False  # another client need not be answered meanwhile


ATTACKS = (
    Attack("5,000 × the largest item prepared", request.prepare_largest, ("422 TooManyItems",)),
    Attack("5,000 × an old item of 500 kB prepared", command(PREPARE, [FIRST_ITEM] * 5000, 500_000),
           ("422 TooManyItems",)),
    Attack("330 × an old item of 7 MB prepared", command(PREPARE, [FIRST_ITEM] * 330, 7_000_000),
           ("422 TooManyItems",)),
    Attack("rows of 330 old items of 7 MB", request.rows_of_old, ("422 AnswerTooLarge?", "422 TooManyItems?")),
    Attack("1,000 × an old item of 500 kB added",
           command(ADD, {"plid": 1, "items": [FIRST_ITEM] * 1000}, 500_000), ("422 Error",)),
    Attack("330 × an old item of 7 MB added",
           command(ADD, {"plid": 1, "items": [FIRST_ITEM] * 330}, 7_000_000), ("422 Error",)),
    Attack("300 bodies of 8 MiB to the login", bodies("/api/login", 300), ("413 TooLarge",), has_token=True),
    Attack("512 bodies of 8 MiB to the login, from two addresses", bodies("/api/login", 512),
           ("413 TooLarge", "closed?"), has_token=True),
    Attack("300 bodies of 8 MiB to commands, without the token", bodies("/api/data", 300),
           ("401 Unauthorized",), has_token=True),
    Attack("300 bodies of 8 MiB to the page", bodies("/", 300), ("413 TooLarge",), has_token=True),
    Attack("8 MiB of tiny values", request.tiny_values, ("400 Malformed",)),
    Attack("600,000 and 20,000 made-up modules", request.made_up_modules, ("400 Malformed", "422 Error")),
    Attack("a name of 8 MB", command("playlists:pl/create", {"name": "n" * 8_000_000}), ("422 Error",)),
    Attack("300 pictures of 16 MiB that are not read", request.unread_pictures,
           ("HTTP/1.1 200 OK", "HTTP/1.1 503 Service Unavailable?")),
    Attack("lengths and hosts with two readings", request.broken_heads, ("400 Malformed", "400?")),
    Attack("3,000 guessed tokens", request.guessed_tokens, ("401 Unauthorized", "429 TooManyAttempts"), has_token=True),
    Attack("2,000 plays of sounds that were cut off", surroundings.cut_sounds, ("fails", "ends")),
    Attack("8,000 quick plays", surroundings.quick_plays, ("200",)),
    Attack("sounds from elsewhere", surroundings.foreign_sounds, ("t1 cannot be played.",)),
    Attack("play logics that are none", surroundings.false_play_logics, ("422 InvalidValue",)),
    Attack("another process reads the store", surroundings.store_is_read, ("422 Error",), others_wait=True),
    Attack("another process reads the store at the start", surroundings.reader_at_the_start,
           ("starts when the reader ends", "ends when the reader does not?"), others_wait=True),
    Attack("64 descriptors, taken by silent connections", surroundings.few_descriptors, ("was played", "200")),
    Attack("pipes in place of settings and token", surroundings.pipes, ("refuses to start",), has_token=True),
    Attack("the lock file removed, a second host", surroundings.removed_lock, ("in use",)),
)
HEAD = ("attack", "answered", "s", "longest wait of another client, s", "resident before / most / after, MiB",
        "log, KiB")


def attacked(attack, options, folder):
    device = AttackedDevice(options.host, folder, options.few, not options.sanitized, attack.has_token)
    try:
        attack.run(device)
    except Exception as error:  # pylint: disable=broad-except
        traceback.print_exc()
        device.problems.append(f"broken off: {error!r}")
    try:
        device.finish()
    finally:
        device.close()
    return device


def problems_of(attack, device, options):
    figures = device.figures
    problems = list(device.problems)
    known = [name.rstrip("?") for name in attack.due]
    problems += [f"answered {name}" for name in device.answers if name not in known]
    problems += [f"never answered {name}" for name in attack.due if name[-1] != "?" and name not in device.answers]
    for report in glob.glob(os.path.join(device.folder, "report*")):
        with open(report, encoding="utf-8", errors="replace") as file:
            problems.append(file.read())
    if figures["log"] > MAX_LOG:
        problems.append("the log grows")
    if options.sanitized:
        return problems
    if not attack.others_wait and figures["wait"] > (MAX_WAIT_FEW_S if options.few else MAX_WAIT_S):
        problems.append("another client waits")
    if figures["most"] > figures["before"] + MAX_TAKEN:
        problems.append("memory is taken beyond the bound")
    if figures["after"] > figures["before"] + MAX_KEPT:
        problems.append("memory is kept")
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("host", help="the built orvo-host")
    parser.add_argument("--few", action="store_true", help="small counts")
    parser.add_argument("--sanitized", action="store_true", help="judge neither memory nor waiting")
    parser.add_argument("--only", default="", help="attacks with this text in their name")
    options = parser.parse_args()
    sys.stdout.reconfigure(line_buffering=True)

    base = tempfile.mkdtemp(prefix="orvo-attacks-")
    print(f"| {' | '.join(HEAD)} |\n|{' --- |' * len(HEAD)}")
    failed = 0
    for number, attack in enumerate(each for each in ATTACKS if options.only in each.name):
        folder = os.path.join(base, str(number))
        if options.sanitized:
            os.environ["ASAN_OPTIONS"] = os.environ["UBSAN_OPTIONS"] = f"log_path={folder}/report"
            # What the libraries keep for good is told by its whole stack.
            known = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "lsan.supp")
            os.environ["LSAN_OPTIONS"] = (
                f"suppressions={known}:fast_unwind_on_malloc=0:print_suppressions=0")
        device = attacked(attack, options, folder)
        figures = device.figures
        answers = ", ".join(f"{count} × {name}" for name, count in sorted(device.answers.items()))
        wait = "–" if attack.others_wait else f"{figures['wait']:.2f}"
        memory = " / ".join(f"{figures[name] / MIB:.0f}" for name in ("before", "most", "after"))
        print(f"| {attack.name} | {answers} | {figures['s']:.1f} | {wait} | {memory} | {figures['log'] / 1024:.0f} |")
        problems = problems_of(attack, device, options)
        for problem in problems:
            print(f"FAILED: {attack.name}: {problem}")
        if problems:
            failed += 1
        else:
            shutil.rmtree(folder)
    if failed:
        print(f"FAILED: {failed} attacks; their folders are kept in {base}")
        return 1
    os.rmdir(base)
    return 0


if __name__ == "__main__":
    sys.exit(main())
