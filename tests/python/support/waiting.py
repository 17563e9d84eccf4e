"""Waits for conditions, never for a fixed time."""

import time

DEADLINE = 20.0  # seconds


def wait_until(holds, deadline=DEADLINE):
    """Calls `holds` until it returns a true value or the deadline has passed. Returns its last result."""
    end = time.monotonic() + deadline
    while not (answer := holds()):
        if time.monotonic() >= end:
            break
        time.sleep(0.001)
    return answer
