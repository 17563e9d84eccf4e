"""What shows the pictures: framesink's windows of either kind or both, and other libraries' windows."""

import os
import shutil
import subprocess
from typing import NamedTuple

import host
import pictures


class Window(NamedTuple):
    title: str
    synchronous: int
    size: tuple
    place: tuple


FIRST = Window("first", 0, (321, 239), (20, 20))
SECOND = Window("second", 1, (320, 240), (20, 310))
EVEN = Window("first", 0, (320, 240), (20, 20))  # ffplay shows an odd width as an even one


class Kind(NamedTuple):
    name: str
    windows: tuple
    is_ours: bool = True
    program: str = "display_host"

    @property
    def churn(self):
        """Which kinds of windows the command `churn` opens and closes."""
        return [int(any(window.synchronous == kind for window in self.windows)) for kind in (0, 1)]

    @property
    def takes_commands(self):
        return self.program != "ffplay"

    def start(self, environment, folder, prefix=(), carrier=()):
        if self.takes_commands:
            arguments = [host.FRAMESINK] if self.is_ours else []
            program = host.Program([*prefix, host.HOSTS / self.program, *arguments], environment, folder, carrier)
        else:
            program = host.FixedProgram([*prefix, *_ffplay_command(folder)], environment, folder, carrier)
        return program


def _ffplay_command(folder):
    (width, height), (x, y) = EVEN.size, EVEN.place
    pictures.write_raw(folder / "picture", EVEN.size, 1)
    return ["ffplay", "-loglevel", "error", "-nostats", "-an", "-loop", "0", "-window_title", EVEN.title,
            "-left", str(x), "-top", str(y), "-f", "rawvideo", "-pixel_format", "bgr0",
            "-video_size", f"{width}x{height}", str(folder / "picture")]


OURS = [Kind("threaded", (FIRST,)), Kind("synchronous", (SECOND,)), Kind("both", (FIRST, SECOND))]
PEERS = [Kind("OpenCV", (FIRST,), False, "peer_opencv"), Kind("CImg", [FIRST], False, "peer_cimg"),
         Kind("ffplay", (EVEN,), False, "ffplay")]


def peers_here():
    """The peers that are built and installed."""
    return [kind for kind in PEERS
            if (shutil.which("ffplay") if kind.program == "ffplay" else os.access(host.HOSTS / kind.program, os.X_OK))]


def versions():
    """Name and version of each other library."""
    packages = {"OpenCV": "libopencv-dev", "CImg": "cimg-dev", "ffplay": "ffmpeg"}
    return {name: version_of(package) for name, package in packages.items()}


def version_of(package):
    command = ["dpkg-query", "-W", "-f", "${Version}", package]
    return subprocess.run(command, text=True, stdout=subprocess.PIPE).stdout or "not installed"
