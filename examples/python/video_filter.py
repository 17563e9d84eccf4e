#!/usr/bin/env python3
"""Shows a clip and its edges in two windows. The clip is computed here, or it is a file that ffmpeg reads.

    FRAMESINK_LIBRARY=build/release/lib/libframesink.so.1 PYTHONPATH=bindings/python \
        python3 examples/python/video_filter.py --input clip.mp4
"""

import argparse
import itertools
import os
import subprocess
import sys
import time

import numpy as np

from framesink import Display

HEIGHT, WIDTH = 270, 480


def made_clip():
    """Yields pictures of three discs of light, red, green and blue, which circle each other."""
    rows, columns = np.mgrid[0:HEIGHT, 0:WIDTH]
    for number in itertools.count():
        picture = np.full((HEIGHT, WIDTH, 3), 30, np.uint8, order="F")
        for index in range(3):
            angle = 0.05 * number + 2 * np.pi / 3 * index
            row, column = HEIGHT / 2 + 60 * np.sin(angle), WIDTH / 2 + 90 * np.cos(angle)
            picture[(rows - row) ** 2 + (columns - column) ** 2 < 80 ** 2, index] = 220
        yield picture


def read_clip(path):
    """Yields the pictures of a file, scaled to WIDTH x HEIGHT. ffmpeg decodes the file to row-major arrays."""
    command = ["ffmpeg", "-v", "error", "-i", path, "-vf", f"scale={WIDTH}:{HEIGHT}", "-f", "rawvideo",
               "-pix_fmt", "rgb24", "-"]
    size = HEIGHT * WIDTH * 3
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as ffmpeg:
        try:
            while len(data := ffmpeg.stdout.read(size)) == size:
                yield np.frombuffer(data, np.uint8).reshape(HEIGHT, WIDTH, 3)
        except GeneratorExit:  # the caller needs no more pictures
            ffmpeg.kill()
            raise
    if ffmpeg.returncode != 0:
        sys.exit(f"ffmpeg could not read {path}")


def edges(picture):
    """Returns four times the sum of each sample's differences from its left and upper neighbours."""
    samples = picture.astype(np.int16)
    along = np.abs(np.diff(samples, axis=1, prepend=samples[:, :1]))
    across = np.abs(np.diff(samples, axis=0, prepend=samples[:1]))
    return np.asfortranarray(np.minimum(4 * (along + across), 255).astype(np.uint8))


def main():
    parser = argparse.ArgumentParser(description="Shows a clip and its edges in two windows.")
    parser.add_argument("--input", help="a video that ffmpeg reads (default: a computed clip)")
    parser.add_argument("--frames", type=int, help="stop after FRAMES and show the last one until you close a window")
    parser.add_argument("--headless", action="store_true", help="run without a screen and end after the last frame")
    options = parser.parse_args()
    if options.headless:
        os.environ["SDL_VIDEODRIVER"] = "dummy"

    shape = (HEIGHT, WIDTH, 3)
    clip = Display("examples/clip", shape, title="Clip", position=(50, 50))
    filtered = Display("examples/edges", shape, title="Edges", position=(50, 380))
    pictures = read_clip(options.input) if options.input else made_clip()
    for picture in itertools.islice(pictures, options.frames):
        if not (clip.is_open and filtered.is_open):
            break
        clip.show(picture)
        filtered.show(edges(picture))
        time.sleep(0.03)
    while not options.headless and clip.is_open and filtered.is_open:
        time.sleep(0.05)
    print(f"{clip.copies + filtered.copies} planes copied")


if __name__ == "__main__":
    main()
