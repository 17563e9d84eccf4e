#!/usr/bin/env python3
"""Shows waves on a square pond. Three drops fall in; their waves cross and return from the edges.

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
SPEED = 0.5  # grid points per step; stable below 0.7
DROPS = [(0.3, 0.3), (0.7, 0.4), (0.5, 0.8)]


def pond():
    """Returns the water's height, which is 0 except at the drops."""
    rows, columns = np.mgrid[0:SIZE, 0:SIZE] / SIZE
    height = np.zeros((SIZE, SIZE), order="F")
    for row, column in DROPS:
        height += np.exp(-((rows - row) ** 2 + (columns - column) ** 2) / 0.0004)
    return height


def frames():
    """Yields the picture of every frame. 0.5 is still water."""
    now = pond()
    before = now.copy(order="F")
    picture = np.empty_like(now)  # column-major, as Display needs it to show it without a copy
    while True:
        np.clip(0.5 + 0.8 * now, 0, 1, out=picture)
        yield picture
        for _ in range(STEPS_PER_FRAME):
            now, before = step(now, before), now


def step(now, before):
    """Returns the next height. The acceleration is proportional to the curvature; the edges stay at rest."""
    after = np.zeros_like(now)
    inside = now[1:-1, 1:-1]
    curvature = now[2:, 1:-1] + now[:-2, 1:-1] + now[1:-1, 2:] + now[1:-1, :-2] - 4 * inside
    after[1:-1, 1:-1] = 2 * inside - before[1:-1, 1:-1] + SPEED ** 2 * curvature
    return after


def main():
    parser = argparse.ArgumentParser(description="Shows waves on a square pond.")
    parser.add_argument("--frames", type=int, help="stop after FRAMES and show the last one until you close its window")
    parser.add_argument("--headless", action="store_true", help="run without a screen and end after the last frame")
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
