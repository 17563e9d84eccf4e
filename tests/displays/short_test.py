"""The cells that need only what packages/test.txt installs, with few repetitions."""

import pytest

import cells
import kinds
from stage import play

CELLS = [pytest.param(cell, id=f"{cell.row.name}-{cell.kind.name}")
         for cell in cells.cells(kinds.OURS, [row for row in cells.ROWS if row.is_short])]


@pytest.mark.parametrize("cell", CELLS)
def test_the_host_lives_and_its_windows_show_what_they_can(cell):
    outcome = play(cell.row.act, cell.kind, "short")
    assert outcome.is_good, outcome
