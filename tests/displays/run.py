#!/usr/bin/env python3
"""Runs framesink and other libraries on displays that refuse, stop and go away, and prints the table of all cells.
Fails if framesink harms its host in any. ./dev displays builds what this needs."""

import argparse
import sys
import threading
import time

import cells
import kinds
import report

printing = threading.Lock()


def say(cell, outcome):
    with printing:
        print(report.line_of(cell, outcome), flush=True)


def once_more_alone(results):
    """Runs the bad cells again, one at a time: two cells at once may leave a compositor too little time."""
    bad = [cell for cell, outcome in results if report.is_bad(cell, outcome)]
    if not bad:
        return results
    print(f"\n{len(bad)} bad cells once more, alone:")
    again = dict(cells.run_all(bad, say, at_once=1, waiting_at_once=1))
    return [(cell, again.get(cell, outcome)) for cell, outcome in results]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--record", action="store_true", help="write the table into docs/reliability.md")
    parser.add_argument("--ours", action="store_true", help="leave the other libraries out")
    parser.add_argument("rows", nargs="*", help="only rows whose names hold one of these words")
    arguments = parser.parse_args()
    if arguments.record and (arguments.rows or arguments.ours):
        parser.error("--record needs all cells")
    columns = kinds.OURS + ([] if arguments.ours else kinds.peers_here())
    if arguments.record and len(columns) < len(kinds.OURS) + len(kinds.PEERS):
        parser.error("--record needs all peers")
    start = time.monotonic()
    results = cells.run_all(cells.cells(columns, cells.matching(arguments.rows)), say)
    results = once_more_alone(results)
    seconds = time.monotonic() - start
    print(f"\n{report.table(results, columns)}\n\n{report.longest_calls(results)}\n")
    if arguments.record:
        report.record(results, columns, seconds)
    bad = [cell for cell, outcome in results if report.is_bad(cell, outcome)]
    print(f"{len(results)} cells in {seconds:.0f} s; framesink fares badly in {len(bad)}")
    sys.exit(1 if bad else 0)


if __name__ == "__main__":
    main()
