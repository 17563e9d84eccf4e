"""Acts like a reader who types a shell block in a clean clone that is built, and closes the windows that open."""

import os
import re
import sys
from pathlib import Path
from typing import NamedTuple

from blocks import DEADLINE, ROOT
from support import programs
from support.waiting import wait_until

BUILD = Path(os.environ["FRAMESINK_BUILD"])


class Outcome(NamedTuple):
    status: int
    output: str
    complaints: str
    titles: set  # titles of the windows that showed something


def commands_of(block):
    """The block's commands without comments. A command may continue on the next line."""
    lines = (re.sub(r"(^|\s+)#.*", "", line) for line in block.text.replace("\\\n", "").splitlines())
    return [re.sub(r"\s+", " ", line) for line in lines if line.strip()]


def make_clone(folder):
    """Puts the project into `folder`, with the build that these tests use as its release build."""
    for entry in ROOT.iterdir():
        if entry.name not in ("build", ".git"):
            (folder / entry.name).symlink_to(entry)
    (folder / "build").mkdir()
    (folder / "build/release").symlink_to(BUILD)
    (folder / ".tools").mkdir()
    python = folder / ".tools/python3"  # Debian's Python, whatever else is installed
    python.write_text(f'#!/bin/sh\nexec {sys.executable} "$@"\n')
    python.chmod(0o755)


def start(commands, clone, screen):
    """Runs the commands in one shell, which ends at the first that fails. End it with kill_group()."""
    tell = """trap 'printf "%s failed\\n" "$BASH_COMMAND" >&2' ERR"""
    script = "\n".join(["set -eE", tell, f"cd '{clone}'", f"PATH='{clone}/.tools':$PATH", *commands])
    return programs.start(["bash", "-c", script], screen.environment, process_group=0)


def type_in(commands, clone, screen, titles=frozenset()):
    """Runs the commands. Once the windows with these titles have shown something, closes all such windows."""
    program = start(commands, clone, screen)
    seen = set()

    def has_ended():
        if look(screen, seen) >= titles:
            close(screen, seen)
        return program.poll() is not None

    try:
        assert wait_until(has_ended, DEADLINE), f"the commands do not end; these windows opened: {sorted(seen)}"
        return Outcome(*programs.end(program), seen)
    finally:
        programs.kill_group(program)


def look(screen, seen):
    """Adds the titles of the windows that show something to `seen` and returns it."""
    for title, window in screen.windows().items():
        picture = screen.picture_of(window)
        if picture is not None and picture.any():
            seen.add(title)
    return seen


def close(screen, titles):
    for title, window in screen.windows().items():
        if title in titles:
            screen.ask_to_close(window)
