#!/usr/bin/python3
"""Draws cost against size, one small plot per work: plot.py OUT.svg FIGURES.json…

Each file holds a list of {"work", "who", "size", "storage", "median_us"}, as the benchmarks write
it; works of the same name are drawn together, whoever did them. Works with one size are left out.
"""

import json
import math
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

COLOURS = {"orvo": "#b3541e", "ours": "#e3a06a", "MPD": "#3a6ea5"}
NAMES = {"ours": "orvo over HTTP", "MPD": "MPD over its protocol"}
LINES = {"memory": "-", "disk": "--"}


def read(files):
    works = {}
    for name in files:
        with open(name, encoding="utf-8") as file:
            for figure in json.load(file):
                curves = works.setdefault(figure["work"], {})
                curve = curves.setdefault((figure["who"], figure["storage"]), {})
                curve[figure["size"]] = figure["median_us"]
    return {work: curves for work, curves in works.items()
            if any(len(curve) > 1 for curve in curves.values())}


def draw(axes, work, curves):
    for (who, storage), curve in sorted(curves.items()):
        sizes = sorted(curve)
        axes.plot(sizes, [curve[size] for size in sizes], LINES.get(storage, ":"), marker="o",
                  markersize=3, linewidth=1.2, color=COLOURS.get(who, "#8a8a8a"),
                  label=f"{NAMES.get(who, who)}, {storage}")
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.set_title(work, fontsize=9)
    axes.tick_params(labelsize=7)
    axes.grid(True, which="major", linewidth=0.3)
    low, high = axes.get_ylim()
    if high / low < 20:  # a flat line should look flat
        middle = math.sqrt(low * high)
        axes.set_ylim(middle / 10, middle * 10)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    works = read(sys.argv[2:])
    if not works:
        sys.exit("plot.py: no work was measured at several sizes")
    columns = 4
    rows = math.ceil(len(works) / columns)
    plt.rcParams["svg.fonttype"] = "none"
    plt.rcParams["svg.hashsalt"] = "orvo"
    figure, all_axes = plt.subplots(rows, columns, figsize=(3 * columns, 2.5 * rows), squeeze=False)
    for axes in all_axes.flat[len(works):]:
        axes.axis("off")
    handles = {}
    for axes, (work, curves) in zip(all_axes.flat, works.items()):
        draw(axes, work, curves)
        for handle, label in zip(*axes.get_legend_handles_labels()):
            handles.setdefault(label, handle)
    for axes in all_axes[:, 0]:
        axes.set_ylabel("median, µs", fontsize=8)
    figure.legend(handles.values(), handles.keys(), loc="lower center", ncol=4, fontsize=8)
    figure.suptitle("Cost against the number of entries", fontsize=11)
    figure.tight_layout(rect=(0, 0.05, 1, 0.99))
    figure.savefig(sys.argv[1], metadata={"Date": None})


if __name__ == "__main__":
    main()
