"""Displays that go away while a model runs."""

import signal

import routes
import servers
from disturbers import disturber
from loss import lose
from setting_rows import start_over_forwarder, start_over_ssh
from stage import STATUS
from table import on_wayland, only_ours, row, with_commands

SECTION = "Displays that go away"


def on_server(stage, context):
    server = stage.enter(context)
    stage.shows(server)
    return server


@row(SECTION, "X server killed (SIGKILL)", short=True)
def killed(stage):
    lose(stage, on_server(stage, servers.xvfb()).kill)


@row(SECTION, "X server ended (SIGTERM)")
def terminated(stage):
    server = on_server(stage, servers.xvfb())
    lose(stage, lambda: server.kill(signal.SIGTERM))


@row(SECTION, "X server killed, and a new one under its name")
def renewed(stage):
    server = on_server(stage, servers.xvfb())
    lose(stage, server.kill, renewed=servers.xvfb_numbered(server.name))


@row(SECTION, "another client ends the connection (XKillClient)", short=True)
def kill_client(stage):
    server = on_server(stage, servers.xvfb())
    client = stage.enter(disturber(server))
    lose(stage, lambda: client.kill_client_of(client.windows([stage.kind.windows[0].title])[0]))


@row(SECTION, "ssh -Y, its client killed")
def ssh_trusted_cut(stage):
    start_over_ssh(stage, trusted=True)
    lose(stage, stage.cut_carrier)


@row(SECTION, "ssh -X, untrusted, its client killed")
def ssh_untrusted_cut(stage):
    start_over_ssh(stage, trusted=False)
    lose(stage, stage.cut_carrier)


@row(SECTION, "ssh -Y, its sshd killed")
def sshd_cut(stage):
    connection = start_over_ssh(stage, trusted=True)
    lose(stage, connection.cut_far_end)


@row(SECTION, "forwarder killed", short=True)
def forwarder_killed(stage):
    lose(stage, start_over_forwarder(stage).kill)


def start_over_poor_line(stage):
    """Starts the program behind a line that can be cut and stopped. Returns the line."""
    server = stage.enter(servers.xvfb(*routes.WITHOUT_DESCRIPTORS))
    line = stage.enter(routes.poor_line(server))
    stage.start(line.environment, server.screen)
    stage.look()
    return line


@row(SECTION, "line cut in the middle of a reply")
def cut_in_reply(stage):
    line = start_over_poor_line(stage)

    def cut():
        if stage.kind.takes_commands:
            stage.churn(True)
        line.cuts, line.limit = True, 40  # one event of 32 bytes and a quarter of the next

    lose(stage, cut)


@row(SECTION, "VNC server killed")
def vnc_killed(stage):
    lose(stage, on_server(stage, servers.xvnc(stage.folder)).kill)


@row(SECTION, "X server in a window of another killed")
def nested_killed(stage):
    lose(stage, on_server(stage, servers.xephyr(stage.enter(servers.xvfb(size="1280x1024")))).kill)


@row(SECTION, "Xwayland killed")
def xwayland_killed(stage):
    compositor = stage.enter(servers.weston(stage.enter(servers.xvfb(size="1280x1024"))))
    lose(stage, on_server(stage, servers.xwayland(compositor)).kill)


@row(SECTION, "compositor of Xwayland killed")
def compositor_killed(stage):
    compositor = stage.enter(servers.weston(stage.enter(servers.xvfb(size="1280x1024"))))
    on_server(stage, servers.xwayland(compositor))
    lose(stage, compositor.kill)


@row(SECTION, "weston killed", kinds=on_wayland)
def weston_killed(stage):
    compositor = on_server(stage, servers.weston(stage.enter(servers.xvfb(size="1280x1024"))))
    lives_on(stage, compositor)


@row(SECTION, "sway killed", kinds=on_wayland)
def sway_killed(stage):
    lives_on(stage, on_server(stage, servers.sway()))


def lives_on(stage, compositor):
    compositor.kill()
    stage.screen = None
    stage.runs_on(frames=100)


@row(SECTION, "X server killed while windows open and close, 100 times (short: 10)", short=True, kinds=with_commands)
def killed_while_opening(stage):
    for number in range(stage.times(10, 100) if stage.kind.is_ours else 10):
        with servers.xvfb() as server:
            stage.begin_anew()
            stage.start(server.environment)
            stage.churn(True)
            stage.churns_for(cycles=1 + number % 7)
            server.kill()
            stage.runs_on()
            stage.program.leave(STATUS)
    stage.begin_anew()


# ---- Displays that stop for good ----


@row(SECTION, "X server stopped for good", waits=True, kinds=only_ours)
def stopped_for_good(stage):
    server = on_server(stage, servers.xvfb())
    lose(stage, server.stop, within=40)


@row(SECTION, "line that stalls for good in the middle of a reply", waits=True, kinds=only_ours)
def stalled(stage):
    line = start_over_poor_line(stage)

    def stall():
        stage.churn(True)
        line.limit = 40

    lose(stage, stall, within=40)
