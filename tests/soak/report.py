#!/usr/bin/env python3
"""Draws the curves of a soak test: reads soak.csv in the given folder and writes soak.png there. With --record
it also writes docs/soak.md and its plot, with the test's output (soak.txt)."""

import argparse
import csv
import datetime
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

ROOT = Path(__file__).resolve().parent.parent.parent
CURVES = ["resident KiB", "descriptors", "threads", "X resources"]


def read(path):
    with open(path) as file:
        return list(csv.DictReader(file))


def draw_curve(axes, rows, curve):
    loads = max(int(row["load"]) for row in rows) + 1
    # Each load is a separate line, because the library is unloaded between them.
    for load in range(loads):
        own = [row for row in rows if int(row["load"]) == load]
        axes.plot([load + float(row["age"]) for row in own], [float(row[curve]) for row in own], color="C0",
                  linewidth=0.8)
    axes.set_xlim(0, loads)
    axes.margins(y=0.1)
    axes.set_ylim(bottom=0)


def draw(rows, path):
    drawings = list(dict.fromkeys(row["servers"] for row in rows))
    figure, grid = pyplot.subplots(len(CURVES), len(drawings), figsize=(15, 9), squeeze=False)
    for column, servers in enumerate(drawings):
        own = [row for row in rows if row["servers"] == servers]
        for line, curve in enumerate(CURVES):
            draw_curve(grid[line][column], own, curve)
            grid[line][column].set_ylabel(curve)
        grid[0][column].set_title(servers)
        grid[-1][column].set_xlabel("loads of the library")
    figure.tight_layout()
    path.parent.mkdir(exist_ok=True)
    figure.savefig(path, dpi=80, metadata={"Software": None})


PAGE = """# Soak test

`./dev soak --minutes N --record` runs this test and writes this page; do not edit it. Recorded on {day}.

The test runs a host for N minutes and fails if the host's memory, descriptors, threads or X resources grow. The host
sends frames of every kind and sample type to eight windows, 33 times per second. Meanwhile:

- A simulated user closes, moves, resizes, maximises, iconifies and covers the windows in quick bursts, and presses
  Escape in full screen.
- The host destroys its blocks and creates new ones, renames its windows and opens closed windows again.
- The host unloads the library and loads it again.

The test has three parts:

| part | share of the time | windows |
|---|---|---|
| both | half | threaded and synchronous |
| threaded | a quarter | threaded |
| synchronous | a quarter | synchronous |

Each load of the library uses a display without or with a window manager, in turn.

![Resident memory, descriptors, threads and X resources of the host over time](images/soak.png)

```text
{text}```

Each line of the output compares two medians. In the lines *quarters of the run* these are the medians of the second
and the last quarter of the run. For the lines *quarters of each load* the test overlays all loads and compares the
second and the last quarter of a load. A curve is flat if the median called *last* exceeds the one called *second* by
at most the number after *may grow by*.
The X resources do not include colour maps, because SDL 2.26 keeps one per window until SDL shuts down.
"""


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=Path)
    parser.add_argument("--record", action="store_true")
    arguments = parser.parse_args()
    rows = read(arguments.folder / "soak.csv")
    draw(rows, arguments.folder / "soak.png")
    if arguments.record:
        draw(rows, ROOT / "docs/images/soak.png")
        text = (arguments.folder / "soak.txt").read_text()
        (ROOT / "docs/soak.md").write_text(PAGE.format(day=datetime.date.today(), text=text))


if __name__ == "__main__":
    main()
