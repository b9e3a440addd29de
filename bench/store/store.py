#!/usr/bin/env python3
"""The store and the model beside SQLite alone: runs orvo_bench and holds its figures against their bounds.

With --short 1,000 and 10,000 entries, in memory-backed storage, with slack.
"""

import math
import os
import subprocess
import sys
from operator import truediv
from statistics import median

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../wire"))

from measuring import Report, main

# How far the guard lets a bound be passed: a ratio or a time by the factor, a growth by so much more.
GUARD_FACTOR, GUARD_GROWTH = 1.5, 0.25


def duration(us):
    """Three digits in the unit that suits."""
    value, unit = (us, "µs") if us < 1e3 else (us / 1e3, "ms") if us < 1e6 else (us / 1e6, "s")
    return f"{value:.{2 if value < 10 else 1 if value < 100 else 0}f} {unit}"


def figure_of(text):
    """Size, our median and the median of the turns' own ratios."""
    size, *turns = text.split(" ")
    ours, theirs = zip(*(map(float, turn.split(":")) for turn in turns))
    return int(size), median(ours), median(map(truediv, ours, theirs))


def growth(figures):
    """The slope of log cost against log size: 0 costs the same at any size, 1 grows with the list."""
    (first, first_us, _), (last, last_us, _) = figures[0], figures[-1]
    return math.log(last_us / first_us) / math.log(last / first)


def add(report, storage, fields, sizes, short):
    """A row of the table from what the program has printed: the row, its bounds, and the turns at each size."""
    factor, more = (GUARD_FACTOR, GUARD_GROWTH) if short else (1, 0)
    name, against = fields[:2]
    max_ratio, max_us, max_growth = (None if field == "-" else float(field) for field in fields[2:5])
    figures = [figure_of(field) for field in fields[5:]]
    cells = [name, storage]
    for size, us, ratio in figures:
        cell = duration(us) + report.judged(us, max_us and max_us * factor)
        if against:
            cell += f", {ratio:.2f}" + report.judged(ratio, max_ratio and max_ratio * factor)
        cells.append(cell if len(figures) == sizes else f"{size}: {cell}")
    cells += [""] * (2 + sizes - len(cells))
    cells.append(f"{max_ratio:g} × {against}" if max_ratio else duration(max_us) if max_us else "")
    if max_growth and len(figures) > 1:
        cells.append(f"{growth(figures):.2f} (≤ {max_growth:g})" + report.judged(growth(figures), max_growth + more))
    report.row(cells + [""] * (4 + sizes - len(cells)))


def run(options):
    sizes = (options.sizes or ("1000,10000" if options.short else "1000,10000,100000")).split(",")
    report = Report(options.table, ["work", "storage", *(f"n = {size}" for size in sizes), "at most", "growth"],
                    counts_processes=not options.short)
    for storage in ("memory",) if options.short else ("memory", "disk"):
        command = [options.program, "short" if options.short else storage, getattr(options, storage),
                   ",".join(sizes), options.filter]
        with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as program:
            for line in program.stdout:
                add(report, storage, line.rstrip("\n").split("\t"), len(sizes), options.short)
        if program.returncode:
            raise RuntimeError("orvo_bench could not measure everything")
    return report.finish()


if __name__ == "__main__":
    sys.exit(main(run, "program", filter="", sizes="", short=False))
