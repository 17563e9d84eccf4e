"""Returns what a person sees: the windows' titles and the number of shades on the screen."""

import re
import subprocess
import time

import numpy as np

# Xvfb writes this file in xwd's format.
FRAMEBUFFER = "framebuffer/Xvfb_screen0"


def titles():
    """Returns the titles of the windows on the screen."""
    tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
    return re.findall(r'^ +0x\w+ "(.*)": \("python3', tree, re.MULTILINE)


def shades():
    """Returns the number of different pixel values on the screen."""
    header = np.fromfile(FRAMEBUFFER, ">u4", 20)
    header_bytes, colours = int(header[0]), int(header[19])
    return len(np.unique(np.fromfile(FRAMEBUFFER, "<u4", offset=header_bytes + 12 * colours)))


def until(holds):
    """Returns True as soon as holds() is true, or False after 20 seconds."""
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        if holds():
            return True
        time.sleep(0.01)
    return False
