"""The list of rows, which the files *_rows.py fill."""

from typing import Callable, NamedTuple


class Row(NamedTuple):
    section: str
    name: str
    act: Callable  # gets the Stage
    is_short: bool  # part of ./dev test
    waits: bool  # spends its time waiting, so that many can run at once
    kinds: Callable  # which kinds of windows it is for
    known: str  # why the host may fare badly here, or ""

    def __str__(self):
        return self.name


ROWS = []


def row(section, name, short=False, waits=False, kinds=lambda kind: True, known=""):
    """Makes a function a row of the table."""

    def add(act):
        ROWS.append(Row(section, name, act, short, waits, kinds, known))
        return act

    return add


def only_ours(kind):
    return kind.is_ours


def on_wayland(kind):
    return kind.name != "CImg"


def with_commands(kind):
    return kind.takes_commands
