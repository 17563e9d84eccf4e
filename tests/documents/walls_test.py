"""Checks the walls of docs/architecture.md: no include crosses a wall, and no units include each other in a circle."""

import re
from functools import cache
from graphlib import CycleError, TopologicalSorter

import pytest

from blocks import ROOT

PLAN = ROOT / "docs" / "architecture.md"
# Where the build looks up includes.
INCLUDE_FOLDERS = ["src", "include", "pixkit/include", "tools/framesink-play"]


PLAYER = "tools/framesink-play"
# The rooms that may include a library's headers.
KNOWN_BY = {
    r"SDL\.h": ["src/process", "src/display"],
    r"hwy/.*": ["src/simd", "src/convert"],
    r"CLI/.*": [PLAYER + "/command_line"],
    r"lib(av|sw).*": [PLAYER + "/video"],
}


def text_block(section):
    return re.search(rf"\n## {section}\n.*?```text\n(.*?)```", PLAN.read_text(), re.DOTALL)[1]


@cache
def walls():
    """Which rooms each room may include. The section Walls lists them in lines `room -> room room`. A folder of the
    player may include the folders that the section framesink-play lists below it."""
    lines = [line.split("->") for line in text_block("Walls").splitlines()]
    rooms = {room.strip(): allowed.split() for room, allowed in lines}
    folders = [f"{PLAYER}/{name}" for name in re.findall(r"^([a-z_]+)/ ", text_block("framesink-play"), re.MULTILINE)]
    below = {folder: [*folders[i + 1 :], *rooms[PLAYER]] for i, folder in enumerate(folders)}
    return {**rooms, **below, PLAYER: [*folders, *rooms[PLAYER]]}


def room_of(path):
    """The innermost room of the document that holds the file."""
    rooms = [room for room in walls() if path.is_relative_to(ROOT / room)]
    return max(rooms, key=len, default=None)


def sources():
    folders = ["include", "pixkit", "src", PLAYER]
    return [path for folder in folders for path in sorted((ROOT / folder).rglob("*")) if path.suffix in (".h", ".hpp", ".cpp")]


def includes_of(path):
    """The project's own files that a file includes."""
    for name in re.findall(r'^#include "([^"]+)"', path.read_text(), re.MULTILINE):
        found = [folder for folder in [path.parent, *(ROOT / f for f in INCLUDE_FOLDERS)] if (folder / name).is_file()]
        assert found, f"{path} includes {name}, which does not exist"
        yield (found[0] / name).resolve()


def unit_of(path):
    """The unit of a file. A header and its sources for all platforms are one unit."""
    return path.parent / re.sub(r"_(posix|windows)$|-inl$", "", path.stem)


def test_every_source_is_in_a_room():
    assert [path for path in sources() if room_of(path) is None] == []


@pytest.mark.parametrize("path", sources(), ids=lambda path: str(path.relative_to(ROOT)))
def test_no_include_crosses_a_wall(path):
    room = room_of(path)
    crossed = [str(file.relative_to(ROOT)) for file in includes_of(path) if room_of(file) not in [room, *walls()[room]]]
    assert crossed == []


@pytest.mark.parametrize("header", KNOWN_BY)
def test_only_its_rooms_include_a_library(header):
    users = {room_of(path) for path in sources() if re.search(rf'^#include [<"]{header}[>"]', path.read_text(), re.MULTILINE)}
    assert users and users <= set(KNOWN_BY[header])


def test_no_units_include_each_other_in_a_circle():
    graph = {}
    for path in sources():
        needed = graph.setdefault(unit_of(path), set())
        needed.update(unit_of(file) for file in includes_of(path) if unit_of(file) != unit_of(path))
    try:
        TopologicalSorter(graph).prepare()
    except CycleError as circle:
        pytest.fail("a circle: " + " -> ".join(str(unit.relative_to(ROOT)) for unit in circle.args[1]))


def test_the_walls_themselves_close_no_circle():
    TopologicalSorter(walls()).prepare()
