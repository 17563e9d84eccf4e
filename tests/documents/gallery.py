"""Makes the pictures of docs/gallery.md: runs the commands below each picture and captures the last frames."""

import subprocess
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

import reader
from blocks import ROOT, blocks_in
from managed_screen import ManagedScreen
from support import programs
from support.waiting import wait_until

PAGE = ROOT / "docs/gallery.md"
FOLDER = ROOT / "docs/images/gallery"
MARGIN = 12  # pixels around the windows
STILL = 1.5  # seconds without a change after which a frame is the last one
PATIENCE = 300  # seconds to wait for the windows, and for the last frame


class Picture(NamedTuple):
    name: str
    titles: set  # titles of the windows in it
    screen: tuple = (1280, 1024)


MODEL = "framesink: RGB double"

PICTURES = [
    Picture("rgb", {MODEL}),
    Picture("intensity", {"framesink: intensity double"}),
    Picture("ycbcr", {"framesink: YUY2 uint8"}),
    Picture("letterbox", {"clip.mkv"}),
    Picture("fullscreen", {MODEL}, screen=(640, 360)),
    Picture("eight", {"Spirals", *(f"Spirals ({number})" for number in range(2, 9))}),
    Picture("wave", {"Waves"}),
    Picture("reaction_diffusion", {"U", "V", "U and V"}),
    Picture("video_filter", {"Clip", "Edges"}),
]


def block_below(name):
    """The shell block that follows the picture on the page."""
    page = PAGE.read_text()
    line = page[: page.index(f"(images/gallery/{name}.png)")].count("\n") + 1
    return next(block for block in blocks_in(PAGE) if block.line > line)


def make(picture, folder):
    screen = ManagedScreen(*picture.screen)
    program = reader.start(reader.commands_of(block_below(picture.name)), folder, screen)
    try:
        seen = set()
        assert wait_until(lambda: reader.look(screen, seen) >= picture.titles, PATIENCE), f"there is only {seen}"
        wait_until_still(screen)
        take(picture, screen)
    finally:
        programs.kill_group(program)
        screen.close()


def wait_until_still(screen):
    changed, last = time.monotonic(), None

    def is_still():
        nonlocal changed, last
        now = screen.picture_of(screen.root).tobytes()
        if now != last:
            changed, last = time.monotonic(), now
        return time.monotonic() - changed >= STILL

    assert wait_until(is_still, PATIENCE), "the picture does not come to rest"


def take(picture, screen):
    """Captures the windows and a margin around them. Strips dates, so that the same picture gives the same bytes."""
    left, top, right, bottom = screen.outline()
    left, top = max(left - MARGIN, 0), max(top - MARGIN, 0)
    part = f"{right + MARGIN - left}x{bottom + MARGIN - top}+{left}+{top}"
    subprocess.run(["import", "-display", screen.name, "-window", "root", "-crop", part, "+repage", "-strip",
                    "-dither", "None", "-colors", "200", "-define", "png:compression-level=9",
                    f"PNG8:{FOLDER / picture.name}.png"], check=True)


def main():
    FOLDER.mkdir(exist_ok=True)
    for picture in PICTURES:
        with tempfile.TemporaryDirectory() as folder:
            reader.make_clone(Path(folder))
            make(picture, Path(folder))
        print(f"{FOLDER.relative_to(ROOT)}/{picture.name}.png", flush=True)


if __name__ == "__main__":
    main()
