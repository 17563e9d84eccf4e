"""The commands of ./dev, as ./dev help lists them."""

import re
import subprocess

from blocks import ROOT


def is_chore(command):
    """Whether ./dev help lists `command`, a line that begins with ./dev, with all of its options."""
    chore, *rest = command.split()[1:]
    options = [word for word in rest if word.startswith("--")]
    return any(line.split()[0] == chore and all(option in line for option in options) for line in synopses())


def synopses():
    """The lines of ./dev help that begin with a command's name."""
    text = subprocess.run([ROOT / "dev", "help"], check=True, text=True, stdout=subprocess.PIPE).stdout
    return [line for line in text.splitlines() if re.match(r"  \w", line)]
