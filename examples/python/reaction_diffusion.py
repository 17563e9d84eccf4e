#!/usr/bin/env python3
"""Shows the Gray-Scott model in three windows: one for each of its two substances, and one for both as colours.

Substance U is fed, and V consumes it. Spots of V form and divide.

    FRAMESINK_LIBRARY=build/release/lib/libframesink.so.1 PYTHONPATH=bindings/python \
        python3 examples/python/reaction_diffusion.py
"""

import argparse
import itertools
import os
import time

import numpy as np

from framesink import Display

SIZE = 256
STEPS_PER_FRAME = 12
FEED, KILL = np.float32(0.0367), np.float32(0.0649)  # values for which spots divide
SPREAD_U, SPREAD_V = np.float32(0.2), np.float32(0.1)


def start():
    """Returns U everywhere, and V in some square spots."""
    u = np.ones((SIZE, SIZE), np.float32, order="F")
    v = np.zeros_like(u)
    for row, column in np.random.default_rng(1).integers(10, SIZE - 10, (20, 2)):
        u[row - 5:row + 5, column - 5:column + 5] = 0.5
        v[row - 5:row + 5, column - 5:column + 5] = 0.25
    return u, v


def frames():
    """Yields U and V of every frame."""
    u, v = start()
    while True:
        yield u, v
        for _ in range(STEPS_PER_FRAME):
            u, v = step(u, v)


def step(u, v):
    """Returns U and V after one step: U is fed, V consumes U and decays, and both spread."""
    eaten = u * v * v
    return (u + SPREAD_U * curvature(u) - eaten + FEED * (1 - u),
            v + SPREAD_V * curvature(v) + eaten - (FEED + KILL) * v)


def curvature(field):
    """Returns how much more the four neighbours hold than each point itself. Opposite edges are neighbours."""
    return np.roll(field, 1, 0) + np.roll(field, -1, 0) + np.roll(field, 1, 1) + np.roll(field, -1, 1) - 4 * field


def colours(u, v):
    """Returns colours from dark blue, where there is only U, to yellow, where V has consumed it."""
    picture = np.empty((SIZE, SIZE, 3), np.float32, order="F")
    picture[:, :, 0] = 1 - u
    picture[:, :, 1] = 2.5 * v
    picture[:, :, 2] = 0.4 * u
    return picture


def main():
    parser = argparse.ArgumentParser(description="Shows spots that divide, in three windows.")
    parser.add_argument("--frames", type=int, help="stop after FRAMES and show the last ones until you close a window")
    parser.add_argument("--headless", action="store_true", help="run without a screen and end after the last frame")
    options = parser.parse_args()
    if options.headless:
        os.environ["SDL_VIDEODRIVER"] = "dummy"

    plane, colour = (SIZE, SIZE), (SIZE, SIZE, 3)
    show_u = Display("examples/spots/u", plane, "float32", title="U", position=(20, 50))
    show_v = Display("examples/spots/v", plane, "float32", title="V", position=(320, 50))
    show_both = Display("examples/spots", colour, "float32", title="U and V", position=(20, 350), size=(512, 512))
    displays = [show_u, show_v, show_both]
    for u, v in itertools.islice(frames(), options.frames):
        if not all(display.is_open for display in displays):
            break
        show_u.show(u)
        show_v.show(2.5 * v)
        show_both.show(colours(u, v))
        time.sleep(0.005)
    while not options.headless and all(display.is_open for display in displays):
        time.sleep(0.05)
    print(f"{sum(display.copies for display in displays)} planes copied")


if __name__ == "__main__":
    main()
