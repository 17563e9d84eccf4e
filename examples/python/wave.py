#!/usr/bin/env python3
"""Waves on a square pond: three drops fall in, and the waves run, cross and come back from the edges.

    FRAMESINK_LIBRARY=build/release/lib/libframesink.so.1 PYTHONPATH=bindings/python python3 examples/python/wave.py
"""

import argparse
import itertools
import os
import time

import numpy as np

from framesink import Display

SIZE = 400
STEPS_PER_FRAME = 4
SPEED = 0.5  # points of the grid in a step; stable below 0.7
DROPS = [(0.3, 0.3), (0.7, 0.4), (0.5, 0.8)]


def pond():
    """The water's height: flat but for the drops."""
    rows, columns = np.mgrid[0:SIZE, 0:SIZE] / SIZE
    height = np.zeros((SIZE, SIZE), order="F")
    for row, column in DROPS:
        height += np.exp(-((rows - row) ** 2 + (columns - column) ** 2) / 0.0004)
    return height


def frames():
    """The picture of every frame: 0.5 is still water."""
    now = pond()
    before = now.copy(order="F")
    picture = np.empty_like(now)  # column by column in memory, as windows take it: nothing is copied
    while True:
        np.clip(0.5 + 0.8 * now, 0, 1, out=picture)
        yield picture
        for _ in range(STEPS_PER_FRAME):
            now, before = step(now, before), now


def step(now, before):
    """The wave equation: acceleration is the curvature of the surface. The edges stay at rest."""
    after = np.zeros_like(now)
    inside = now[1:-1, 1:-1]
    curvature = now[2:, 1:-1] + now[:-2, 1:-1] + now[1:-1, 2:] + now[1:-1, :-2] - 4 * inside
    after[1:-1, 1:-1] = 2 * inside - before[1:-1, 1:-1] + SPEED ** 2 * curvature
    return after


def main():
    parser = argparse.ArgumentParser(description="Waves on a square pond.")
    parser.add_argument("--frames", type=int, help="stop after so many; the last one stays until its window is closed")
    parser.add_argument("--headless", action="store_true", help="run without a screen, and end after the last frame")
    options = parser.parse_args()
    if options.headless:
        os.environ["SDL_VIDEODRIVER"] = "dummy"

    with Display("examples/wave", (SIZE, SIZE), "float64", title="Waves", position=(50, 50)) as display:
        for frame in itertools.islice(frames(), options.frames):
            if not display.is_open:
                break
            display.show(frame)
            time.sleep(0.01)
        if not options.headless:
            display.wait_until_closed()
        print(f"{display.copies} planes copied")


if __name__ == "__main__":
    main()
