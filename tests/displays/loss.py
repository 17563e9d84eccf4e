"""What a host must do when its display is gone."""

import time

import servers
from stage import LOSS_LINE
from support.waiting import wait_until


def lose(stage, take_away, within=5.0, renewed=None):
    """Takes the display away and checks the host. `renewed` is a context manager for the server on which it shows
    windows after it has loaded the library again; without it, a new one."""
    before = len(stage.program.complaints())
    take_away()
    if not stage.kind.is_ours:
        return stage.watch(1.5)
    _check_windows_close(stage, within)
    _check_new_windows(stage, before)
    _check_costs(stage)
    _check_unloading(stage)
    _check_a_new_server(stage, renewed or servers.xvfb())


def _states(stage, patience):
    """isPlayerOpen, x, y, width and height of each window."""
    return [list(map(int, stage.program.command("ask", window.title, patience=patience)))
            for window in stage.kind.windows]


def _check_windows_close(stage, within):
    states = []

    def are_closed():
        states[:] = _states(stage, within + 10)
        time.sleep(0.01)
        return all(state[0] == 0 for state in states)

    wait_until(are_closed, within)
    stage.check(all(state == [0, -2, -2, -2, -2] for state in states), f"windows are {states}, not closed")
    stage.screen = None
    stage.runs_on()
    lines = stage.program.complaints()
    stage.check(lines.count(LOSS_LINE) == 1, f"said {lines.count(LOSS_LINE)} times that the display is gone")


def _check_new_windows(stage, before):
    """Windows that are requested now do not open; the library says so once. `before` is the number of lines that it
    wrote while the display was there."""
    for title in [window.title for window in stage.kind.windows] * 3:
        stage.program.command("again", title)
    said = stage.program.complaints()[before:]
    others = [line for line in said if line != LOSS_LINE]
    stage.check(len(others) == 1, f"said {others} about windows that cannot open")
    for number, window in enumerate(stage.kind.windows):
        stage.program.command("open", f"later{number}", window.synchronous, 33, 22, 400, 20)
        stage.check(stage.program.command("ask", f"later{number}")[0] == "0", "a window is open without a display")
    more = stage.program.complaints()[before + len(said):]
    stage.check(more == [], f"said {more} about further windows")


def _check_costs(stage):
    """Neither a thread that spins nor anything that grows with each request is left."""
    first = stage.facts()
    for _ in range(50):
        stage.program.command("again", stage.kind.windows[0].title)
    start = time.monotonic()
    stage.watch(1.0)
    last, seconds = stage.facts(), time.monotonic() - start
    busy = (last["others"] - first["others"]) / 10 / seconds
    stage.check(busy < 25, f"the library's threads use {busy:.0f} % of a processor")
    for what in ("descriptors", "threads"):
        stage.check(last[what] <= first[what], f"{what} grew from {first[what]} to {last[what]}")
    stage.check(last["resident"] < first["resident"] + 4096, "memory grew")


def _check_unloading(stage):
    milliseconds = float(stage.program.command("unload", patience=30)[0])
    stage.check(milliseconds < 1000, f"dlclose took {milliseconds / 1000:.1f} s")


def _check_a_new_server(stage, context):
    server = stage.enter(context)
    stage.program.command("display", server.name)
    stage.program.command("reload")
    stage.open_windows()
    stage.screen = server.screen
    seen = stage._seen()
    stage.check(seen == "right", f"picture after reloading: {seen}")
