"""What a person sees: the windows' titles, and how many shades the screen has."""

import re
import subprocess
import time

import numpy as np

# In xwd's form.
FRAMEBUFFER = "framebuffer/Xvfb_screen0"


def titles():
    """Of the windows that are on the screen."""
    tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
    return re.findall(r'^ +0x\w+ "(.*)": \("python3', tree, re.MULTILINE)


def shades():
    """How many different pixels there are."""
    header = np.fromfile(FRAMEBUFFER, ">u4", 20)
    header_bytes, colours = int(header[0]), int(header[19])
    return len(np.unique(np.fromfile(FRAMEBUFFER, "<u4", offset=header_bytes + 12 * colours)))


def until(holds):
    """Whether it comes to hold within 20 seconds."""
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        if holds():
            return True
        time.sleep(0.01)
    return False
