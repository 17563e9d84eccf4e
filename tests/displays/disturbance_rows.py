"""What other clients, users and window managers do to windows while a model runs."""

import time

import servers
from disturbers import disturber
from table import only_ours, row, with_commands

SECTION = "Disturbances"
PATIENCE = 40.0  # seconds; a window waits for its manager, and a manager that was killed does not answer


def with_disturber(stage, context=None):
    """A server, the program's windows on it, and a client that may do what it wants with them."""
    server = stage.enter(context or servers.xvfb())
    client = stage.enter(disturber(server))
    stage.shows(server)
    return server, client, client.windows([window.title for window in stage.kind.windows])


def each(stage, deed):
    """Does the deed to each of the program's windows; then a new picture must be shown."""
    _, client, windows = with_disturber(stage)
    for window in windows:
        deed(client, window)
    stage.still_shows()


@row(SECTION, "another client destroys the windows", short=True)
def destroyed(stage):
    server, client, windows = with_disturber(stage)
    stage.screen = None
    for window in windows:
        client.destroy(window)
    stage.runs_on(frames=100)
    if stage.kind.is_ours:
        stage.open_again(server)


@row(SECTION, "windows put into frames and taken out 1,000 times (short: 100)", short=True)
def reframed(stage):
    _, client, windows = with_disturber(stage)
    for window in windows:
        client.reframe(window, stage.times(100, 1000))
    stage.still_shows()


def replace_managers(stage, program):
    """Window managers are killed and started again while windows open and close."""
    server = stage.enter(servers.xvfb())
    stage.shows(server)
    stage.churn(True)
    for _ in range(stage.times(5, 20)):
        with servers.manager(program, server):
            stage.watch(0.05, PATIENCE)
    stage.churn(False, PATIENCE)
    stage.runs_on(patience=PATIENCE)


@row(SECTION, "openbox killed and started 20 times while windows open and close", waits=True,
     kinds=with_commands)
def openbox(stage):
    replace_managers(stage, "openbox")


@row(SECTION, "metacity killed and started 20 times while windows open and close", waits=True,
     kinds=with_commands)
def metacity(stage):
    replace_managers(stage, "metacity")


@row(SECTION, "screen of another size (RandR)")
def resized_screen(stage):
    _, client, _ = with_disturber(stage, servers.xvnc(stage.folder))  # others have one size only
    for width, height in [(800, 600), (640, 480), (1024, 768)] * 5:
        client.set_screen_size(width, height)
    stage.still_shows()


def is_never_to_wait(stage):
    """Calls that concern synchronous windows wait for the display, and other libraries' calls do."""
    return stage.kind.name == "threaded"


def check_no_call_waited(stage):
    longest = stage.outcome.longest
    stage.check(longest < 500, f"{stage.outcome.longest_call} took {longest:.0f} ms")


@row(SECTION, "another client keeps the server for itself for 3 s", waits=True)
def grabbed(stage):
    _, client, _ = with_disturber(stage)
    client.grab_server(3, stage.facts if is_never_to_wait(stage) else lambda: None)
    if is_never_to_wait(stage):
        check_no_call_waited(stage)
    stage.still_shows()


@row(SECTION, "windows hidden and shown 200 times")
def hidden(stage):
    each(stage, lambda client, window: client.unmap_and_map(window, 200))


@row(SECTION, "windows moved and resized 200 times")
def resized(stage):
    each(stage, lambda client, window: client.resize(window, 200))


@row(SECTION, "input focus taken and given 200 times")
def focus(stage):
    each(stage, lambda client, window: client.steal_focus(window, 200))


@row(SECTION, "1,000 pings and senseless messages")
def messages(stage):
    each(stage, lambda client, window: client.flood(window, 1000))


@row(SECTION, "200 requests to close a window", kinds=only_ours)
def closing(stage):
    server, client, windows = with_disturber(stage)
    stage.screen = None
    for window in windows:
        client.ask_to_close(window)
    stage.open_again(server)


# ---- Displays that stop ----


@row(SECTION, "X server stopped for 6 s", short=True, waits=True)
def stopped(stage):
    server = stage.enter(servers.xvfb())
    stage.shows(server)
    server.stop()
    if is_never_to_wait(stage):
        stage.watch(6)
        check_no_call_waited(stage)
    else:
        time.sleep(6)  # the length of the stop, not a wait for something
    server.resume()
    stage.runs_on(patience=20)
    stage.change_picture()
    stage.look()
