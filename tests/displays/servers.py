"""Display servers: X servers, compositors and window managers. Each ends when its `with` block ends."""

import os
import select
import signal
import socket
import tempfile
from contextlib import ExitStack, contextmanager
from pathlib import Path

from pictures import WaylandScreen, XScreen
from processes import Missing, await_file, end_group, spawn, without_display
from support.waiting import DEADLINE, wait_until
from x_clients import connected

SOCKETS = Path("/tmp/.X11-unix")


class Server:
    """A display server: what a program needs to reach it, and what happens to it."""

    def __init__(self, process, environment, screen):
        self.process = process
        self.environment = environment
        self.screen = screen
        self.pid = process.pid

    @property
    def name(self):
        return self.environment["DISPLAY"]

    def kill(self, number=signal.SIGKILL):
        """Ends the server and waits for its end."""
        os.kill(self.pid, number)
        self.process.wait(DEADLINE)

    def stop(self):
        os.kill(self.pid, signal.SIGSTOP)

    def resume(self):
        os.kill(self.pid, signal.SIGCONT)


@contextmanager
def x_server(command, environment=None, tolerance=0, name=None, prefix=()):
    """Starts an X server; it is ready when it has written its display's number to a descriptor. `name` is that of the
    display, if the caller has it already."""
    with ExitStack() as stack:
        name = name or stack.enter_context(free_number())
        read_end, write_end = os.pipe()
        process = spawn([*prefix, command[0], name, *command[1:], "-displayfd", write_end],
                        environment or without_display(), pass_fds=[write_end])
        stack.callback(end_group, process)
        os.close(write_end)
        with os.fdopen(read_end) as number:
            if not select.select([number], [], [], DEADLINE)[0] or not number.readline():
                raise Missing(f"{command[0]} is not ready")
        yield Server(process, without_display() | {"DISPLAY": name, "SDL_VIDEODRIVER": "x11"}, XScreen(name, tolerance))


def xvfb(*options, depth=24, size="1024x768", prefix=(), tolerance=0):
    command = ["Xvfb", "-screen", "0", f"{size}x{depth}", "-nolisten", "tcp", "-noreset", *options]
    return x_server(command, tolerance=tolerance, prefix=prefix)


def xvfb_numbered(name):
    """A server with the display name of one that is gone."""
    return x_server(["Xvfb", "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset"], name=name)


def xvnc(folder):
    return x_server(["Xvnc", "-geometry", "1024x768", "-depth", "24", "-SecurityTypes", "None", "-rfbport", "-1",
                     "-rfbunixpath", folder / "rfb"])


def xephyr(outer):
    return x_server(["Xephyr", "-screen", "900x700", "-noreset"], outer.environment)


def xwayland(compositor):
    return x_server(["Xwayland", "-noreset"], compositor.environment)


# ---- Compositors ----

WESTON = "[shell]\npanel-position=none\nstartup-animation=none\nlocking=false\n"
SWAY = """output * resolution 1024x768
default_border none
default_floating_border none
for_window [app_id=".*"] floating enable
"""
# sway does not start as root.
NOBODY = 65534 if os.getuid() == 0 else None


@contextmanager
def weston(outer=None):
    """weston in a window of an X server, or without any input device. Its windows are seen on the X server."""
    if outer:
        _park_pointer(outer)
    back_end = ["--backend=x11-backend.so", "--use-pixman"] if outer else ["--backend=headless-backend.so"]
    command = ["weston", *back_end, "--idle-time=0", "--width=1000", "--height=740", "--socket=wayland-1"]
    with _compositor(command, outer.environment if outer else without_display(), WESTON) as (process, environment):
        yield Server(process, environment, XScreen(outer.name, shows_all=False, size=(1000, 740)) if outer else None)


def _park_pointer(server):
    """Moves the pointer into the screen's corner, where its picture covers no window."""
    with connected(server.name) as x:
        x.screen().root.warp_pointer(5000, 5000)
        x.sync()


@contextmanager
def sway():
    """sway in memory, with windows of the size that they ask for."""
    ours = {"WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}
    with _compositor(["sway"], without_display() | ours, SWAY, NOBODY) as (process, environment):
        yield Server(process, environment, WaylandScreen(environment))


@contextmanager
def _compositor(command, environment, configuration, user=None):
    """Runs the command in a folder that holds its configuration and its socket, and belongs to the user."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "configuration").write_text(configuration)
        if user is not None:
            os.chown(folder, user, user)
            command = ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups", *command]
        process = spawn([*command, f"--config={folder}/configuration"], environment | {"XDG_RUNTIME_DIR": name})
        try:
            await_file(folder / "wayland-1", process, "the compositor")
            reach = {"XDG_RUNTIME_DIR": name, "WAYLAND_DISPLAY": "wayland-1", "SDL_VIDEODRIVER": "wayland",
                     "QT_QPA_PLATFORM": "wayland"}
            yield process, without_display() | reach
        finally:
            end_group(process)


# ---- Window managers ----


@contextmanager
def manager(program, server):
    """Runs a window manager; returns when it manages."""
    options = {"openbox": ["--sm-disable"], "metacity": ["--sm-disable", "--no-composite"]}[program]
    process = spawn([program, *options, "--replace"], server.environment)
    try:
        if not wait_until(lambda: _managed_by(server) or process.poll() is not None) or process.poll() is not None:
            raise Missing(f"{program} is not ready")
        yield process
    finally:
        end_group(process)


def _managed_by(server):
    """Whether a living window manager has announced itself."""
    with connected(server.name) as x:
        check = x.intern_atom("_NET_SUPPORTING_WM_CHECK")
        found = x.screen().root.get_full_property(check, 0)
        return bool(found) and _is_window(x, found.value[0])


def _is_window(x, number):
    return number in [child.id for child in x.screen().root.query_tree().children]


# ---- Display numbers ----


@contextmanager
def free_number():
    """A display's name that no other server uses as long as the block lasts. Removes what a killed server leaves."""
    with socket.socket(socket.AF_UNIX) as claim:
        number = next(number for number in range(700, 2000) if _claims(claim, number))
        try:
            yield f":{number}"
        finally:
            for path in (socket_of(f":{number}"), Path(f"/tmp/.X{number}-lock")):
                path.unlink(missing_ok=True)


def _claims(claim, number):
    """The claim is a name without a file, so it ends with the process."""
    try:
        claim.bind(f"\0framesink-display-{number}")
    except OSError:
        return False
    return not socket_of(f":{number}").exists()


def socket_of(name):
    return SOCKETS / f"X{name[1:]}"
