"""Waiting in tests: for a condition, never for a time."""

import time

DEADLINE = 20.0  # seconds


def wait_until(holds, deadline=DEADLINE):
    """Asks `holds` until it answers true or the deadline has passed; returns its last answer."""
    end = time.monotonic() + deadline
    while not (answer := holds()):
        if time.monotonic() >= end:
            break
        time.sleep(0.001)
    return answer
