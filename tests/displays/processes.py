"""Processes that a cell starts, and how they end."""

import os
import signal
import subprocess
from contextlib import suppress
from pathlib import Path

from support.waiting import DEADLINE, wait_until


class Missing(Exception):
    """A program, or a right, that a cell needs is not here."""


def spawn(command, environment=None, **options):
    """Starts a program that ends with this one, in a process group of its own."""
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL} | options
    return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *map(str, command)], env=environment,
                            process_group=0, **options)


def end_group(process):
    """Ends a program and those that it started, also if they are stopped."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait(DEADLINE)


def children_of(pid):
    """The processes that its main thread has started; none if it is gone."""
    try:
        return [int(word) for word in Path(f"/proc/{pid}/task/{pid}/children").read_text().split()]
    except (FileNotFoundError, ProcessLookupError):
        return []


def kill(pid):
    """Does nothing if the process is gone."""
    with suppress(ProcessLookupError):
        os.kill(pid, signal.SIGKILL)


def kill_descendants(pid):
    for child in children_of(pid):
        kill_descendants(child)
        kill(child)


def await_file(path, process, what):
    """Waits until a file exists that a program makes when it is ready."""
    wait_until(lambda: path.exists() or process.poll() is not None)
    if not path.exists():
        raise Missing(f"{what} is not ready")


def without_display():
    """This environment without a display and without SDL's choice of one."""
    ours = ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SDL_VIDEODRIVER", "XDG_RUNTIME_DIR")
    return {key: value for key, value in os.environ.items() if key not in ours} | {"SDL_AUDIODRIVER": "dummy"}
