"""Displays of many kinds: the program must show its picture there, or live where it cannot."""

import os
import pwd
import subprocess
import sys
from pathlib import Path

import routes
import servers
from disturbers import crowd
from processes import Missing, without_display
from table import on_wayland, only_ours, row

SETTINGS = "Displays"
NONE = "Without a display"


def shows_there(stage, server, **options):
    stage.shows(server, **options)
    stage.still_shows()


@row(SETTINGS, "X server in memory", short=True)
def plain(stage):
    shows_there(stage, stage.enter(servers.xvfb()))


# ---- Servers that do not share memory with the program ----


@row(SETTINGS, "X server without shared memory", short=True)
def no_shared_memory(stage):
    shows_there(stage, stage.enter(servers.xvfb("-extension", "MIT-SHM")))


def start_over_forwarder(stage):
    """Starts the program behind a forwarder that the server takes for ssh. Returns the forwarder."""
    server = stage.enter(servers.xvfb())
    way = stage.enter(routes.forwarder(server, stage.folder))
    stage.start(way.environment, server.screen)
    stage.look()
    return way


@row(SETTINGS, "forwarder that the server takes for ssh", short=True)
def forwarded(stage):
    start_over_forwarder(stage)
    stage.still_shows()


def start_over_ssh(stage, trusted):
    """Starts the program on this machine, over ssh. Returns the connection."""
    cookies = stage.folder / "near_cookies"
    with servers.free_number() as name:
        routes.make_cookies(cookies, name)
    server = stage.enter(servers.xvfb("-auth", cookies))
    routes.make_cookies(cookies, server.name)
    environment = server.environment | {"XAUTHORITY": str(cookies)}
    subprocess.run(["xhost", f"+si:localuser:{pwd.getpwuid(os.getuid()).pw_name}"], env=environment, check=True,
                   stdout=subprocess.DEVNULL)
    connection = stage.enter(routes.ssh(stage.subfolder("ssh"), server))
    stage.start(environment, server.screen, carrier=connection.command(trusted))
    stage.look()
    return connection


@row(SETTINGS, "ssh -Y")
def ssh_trusted(stage):
    start_over_ssh(stage, trusted=True)
    stage.still_shows()


@row(SETTINGS, "ssh -X, untrusted")
def ssh_untrusted(stage):
    start_over_ssh(stage, trusted=False)
    stage.still_shows()


# ---- Segments of another IPC namespace ----


def own_namespace_prefix():
    """What precedes a command that shall run in an IPC namespace of its own. Users may need one of users for that."""
    for prefix in (["unshare", "--ipc"], ["unshare", "--ipc", "--user", "--map-current-user"]):
        if subprocess.run([*prefix, "true"], stderr=subprocess.DEVNULL).returncode == 0:
            return prefix
    raise Missing("neither root nor users may make an IPC namespace here")


def in_other_namespaces(stage, segment_bytes):
    """Program and server are in two new namespaces. The server's holds 64 segments of that size."""
    own = own_namespace_prefix()
    segments = [sys.executable, Path(__file__).with_name("segments.py"), segment_bytes]
    shows_there(stage, stage.enter(servers.xvfb(prefix=[*own, *segments])), prefix=own)


@row(SETTINGS, "own IPC namespace", short=True)
def own_namespace(stage):
    in_other_namespaces(stage, 0)


@row(SETTINGS, "own IPC namespace, small foreign segments of the same numbers", short=True)
def small_segments(stage):
    in_other_namespaces(stage, 4096)


@row(SETTINGS, "own IPC namespace, large foreign segments of the same numbers", short=True)
def large_segments(stage):
    in_other_namespaces(stage, 1 << 20)


# ---- Other servers ----


@row(SETTINGS, "VNC server")
def vnc(stage):
    shows_there(stage, stage.enter(servers.xvnc(stage.folder)))


@row(SETTINGS, "X server in a window of another")
def nested(stage):
    shows_there(stage, stage.enter(servers.xephyr(stage.enter(servers.xvfb(size="1280x1024")))))


@row(SETTINGS, "Xwayland")
def xwayland(stage):
    compositor = stage.enter(servers.weston(stage.enter(servers.xvfb(size="1280x1024"))))
    shows_there(stage, stage.enter(servers.xwayland(compositor)))


@row(SETTINGS, "weston", kinds=on_wayland)
def weston(stage):
    shows_there(stage, stage.enter(servers.weston(stage.enter(servers.xvfb(size="1280x1024")))))


@row(SETTINGS, "weston without an input device", kinds=on_wayland,
     known="SDL 2.26.5 crashes in SDL_Init, in every program")
def weston_headless(stage):
    shows_there(stage, stage.enter(servers.weston()))


@row(SETTINGS, "sway", kinds=on_wayland)
def sway(stage):
    server = stage.enter(servers.sway())
    if stage.kind.name == "ffplay":
        server.screen = None  # sway makes its window 640 pixels wide, whatever ffplay asks for
    shows_there(stage, server)


@row(SETTINGS, "16 bits per pixel")
def sixteen_bits(stage):
    shows_there(stage, stage.enter(servers.xvfb(depth=16, tolerance=8)))


@row(SETTINGS, "30 bits per pixel", known="SDL 2.26.5 draws nothing there without OpenGL")
def thirty_bits(stage):
    shows_there(stage, stage.enter(servers.xvfb(depth=30, tolerance=1)))


@row(SETTINGS, "8 bits per pixel, picture not compared")
def eight_bits(stage):
    server = stage.enter(servers.xvfb(depth=8))
    stage.start(server.environment)
    stage.still_shows()


@row(SETTINGS, "line that delays each piece by 5 ms")
def delayed(stage):
    server = stage.enter(servers.xvfb(*routes.WITHOUT_DESCRIPTORS))
    with routes.poor_line(server) as line:
        line.delay = 0.005
        stage.start(line.environment, server.screen)
        stage.look()
        stage.still_shows()
        stage.ends()
    stage.program = None


@row(SETTINGS, "X server that resets itself between two loads", kinds=only_ours)
def resets(stage):
    with servers.x_server(["Xvfb", "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-reset"]) as server:
        stage.start(server.environment)
        for _ in range(3):
            stage.runs_on()
            stage.program.command("unload", patience=30)
            stage.program.command("reload")
            stage.open_windows()
        stage.screen = server.screen
        stage.look()
        stage.ends()
    stage.program = None


# ---- No display at all ----


def lives_without(stage, environment):
    stage.start(without_display() | {"SDL_VIDEODRIVER": "x11"} | environment)
    stage.runs_on()


@row(NONE, "a display that nobody serves", short=True, kinds=only_ours)
def dead_display(stage):
    with servers.free_number() as name:
        lives_without(stage, {"DISPLAY": name})


@row(NONE, "a display's name that makes no sense", kinds=only_ours)
def senseless_name(stage):
    lives_without(stage, {"DISPLAY": "no display: at all"})


@row(NONE, "wrong cookie", kinds=only_ours)
def wrong_cookie(stage):
    cookies, others = stage.folder / "cookies", stage.folder / "others"
    with servers.free_number() as name:
        routes.make_cookies(cookies, name)
    server = stage.enter(servers.xvfb("-auth", cookies))
    routes.make_cookies(others, server.name, key="ff" * 16)
    lives_without(stage, {"DISPLAY": server.name, "XAUTHORITY": str(others)})


@row(NONE, "X server with no place for another client", kinds=only_ours)
def no_place(stage):
    server = stage.enter(servers.xvfb("-maxclients", "64"))
    stage.enter(crowd(server, 80))
    lives_without(stage, {"DISPLAY": server.name})


@row(NONE, "X server with a place for one client, of two that SDL asks for", kinds=only_ours)
def one_place(stage):
    server = stage.enter(servers.xvfb("-maxclients", "64"))
    stage.enter(crowd(server, 80)).pop().close()
    lives_without(stage, {"DISPLAY": server.name})
