#!/usr/bin/env python3
"""Draws the curves of a soak: soak.csv of the folder given becomes soak.png beside it. With --record the
plot and what the soak said (soak.txt) become docs/soak.md, too."""

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
    # Lines end where the library is unloaded.
    for load in range(loads):
        own = [row for row in rows if int(row["load"]) == load]
        axes.plot([load + float(row["age"]) for row in own], [float(row[curve]) for row in own], color="C0",
                  linewidth=0.8)
    axes.set_xlim(0, loads)
    axes.margins(y=0.1)
    axes.set_ylim(bottom=0)


def draw(rows, path):
    drawings = list(dict.fromkeys(row["drawing"] for row in rows))
    figure, grid = pyplot.subplots(len(CURVES), len(drawings), figsize=(15, 9), squeeze=False)
    for column, drawing in enumerate(drawings):
        own = [row for row in rows if row["drawing"] == drawing]
        for line, curve in enumerate(CURVES):
            draw_curve(grid[line][column], own, curve)
            grid[line][column].set_ylabel(curve)
        grid[0][column].set_title(drawing)
        grid[-1][column].set_xlabel("loads of the library")
    figure.tight_layout()
    path.parent.mkdir(exist_ok=True)
    figure.savefig(path, dpi=80, metadata={"Software": None})


PAGE = """# Hours of use

A host with eight windows, fed 33 times a second with frames of every kind and sample type, while a user closes,
moves, resizes, maximises, iconifies and covers them in storms and presses Escape in full screen. Blocks are
destroyed and made again, windows renamed and opened again, and the library is unloaded and loaded again; by turns
without a window manager and with one. Half of the time SDL draws with OpenGL, threaded windows and synchronous ones
by themselves; with threaded ones the library stays loaded. `./dev soak --minutes N --record`
runs this and writes this page; recorded on {day}.

![What the host holds, over time](images/soak.png)

```text
{text}```

Judged are medians: the last quarter of the run against the second, and the last quarter of each load against its
second, all loads laid over each other. Colour maps are left out of the X resources: SDL 2.26 leaves one of each window
behind until it is shut down.
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
