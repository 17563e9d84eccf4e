"""The cells that need only what packages/test.txt installs, with few repetitions."""

import pytest

import cells
import kinds

CELLS = cells.cells(kinds.OURS, [row for row in cells.ROWS if row.is_short])


@pytest.fixture(scope="session")
def outcomes(request):
    """The outcomes of the selected cells, which run beside each other."""
    chosen = [item.callspec.params["cell"] for item in request.session.items]
    return dict(zip([(cell.row.name, cell.kind.name) for cell in chosen],
                    [outcome for _, outcome in cells.run_all(chosen, lambda cell, outcome: None, "short")]))


@pytest.mark.parametrize("cell", CELLS, ids=lambda cell: f"{cell.row.name}-{cell.kind.name}")
def test_the_host_lives_and_shows_its_pictures_where_it_can(cell, outcomes):
    outcome = outcomes[cell.row.name, cell.kind.name]
    assert outcome.is_good, outcome
