"""Runs cells: a row of the table with one kind of windows."""

import multiprocessing
from concurrent.futures import ThreadPoolExecutor
from typing import NamedTuple

import disturbance_rows  # noqa: F401  (these three fill ROWS)
import kinds
import loss_rows  # noqa: F401
import setting_rows  # noqa: F401
from stage import Outcome, play
from table import ROWS, Row

LIMIT = 300.0  # seconds that a cell may take


class Cell(NamedTuple):
    row: Row
    kind: kinds.Kind


def cells(columns, rows):
    return [Cell(row, kind) for row in rows for kind in columns if row.kinds(kind)]


def matching(words):
    """The rows whose names hold one of these words; all rows if there are none."""
    return [row for row in ROWS if not words or any(word in row.name for word in words)]


def run_all(chosen, done, size="long", at_once=2, waiting_at_once=8):
    """Runs the cells, those that only wait beside the others. Calls `done` with each cell and its outcome, and returns
    all of these pairs. Each cell runs in a separate process, because the X library does not allow several threads."""
    context = multiprocessing.get_context("forkserver")
    context.set_forkserver_preload(["cells"])

    def run(cell):
        outcome = _in_own_process(context, cell, size)
        done(cell, outcome)
        return cell, outcome

    with ThreadPoolExecutor(at_once) as busy, ThreadPoolExecutor(waiting_at_once) as waiting:
        runs = [(waiting if cell.row.waits else busy).submit(run, cell) for cell in chosen]
    return [finished.result() for finished in runs]


def _in_own_process(context, cell, size):
    receiver, sender = context.Pipe(duplex=False)
    process = context.Process(target=_play, args=(sender, ROWS.index(cell.row), cell.kind, size))
    process.start()
    sender.close()
    try:
        return receiver.recv() if receiver.poll(LIMIT) else Outcome(life=f"not run: no end within {LIMIT:.0f} s")
    except EOFError:
        return Outcome(life="not run: the test itself ended")
    finally:
        process.kill()
        process.join()


def _play(sender, number, kind, size):
    try:
        sender.send(play(ROWS[number].act, kind, size))
    except Exception as trouble:  # of the test itself: it must not end the others
        sender.send(Outcome(life=f"not run: {trouble!r}"))
