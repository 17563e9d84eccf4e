"""Display servers: X servers, compositors and window managers. Each ends when its `with` block ends."""

import os
import select
import signal
import tempfile
import threading
from contextlib import contextmanager
from pathlib import Path

from Xlib import display

from pictures import WaylandScreen, XScreen
from processes import Missing, await_file, children_of, end_group, spawn, without_display
from support.waiting import DEADLINE, wait_until

SOCKETS = Path("/tmp/.X11-unix")
numbers_lock = threading.Lock()


class Server:
    """A display server: what a program needs to reach it, and what happens to it."""

    def __init__(self, process, environment, screen, pid=None):
        self.process = process
        self.environment = environment
        self.screen = screen
        self.pid = pid or process.pid

    @property
    def name(self):
        return self.environment["DISPLAY"]

    def kill(self, number=signal.SIGKILL):
        """Ends the server and waits for its end."""
        os.kill(self.pid, number)
        if self.process.pid == self.pid:
            self.process.wait(DEADLINE)

    def stop(self):
        os.kill(self.pid, signal.SIGSTOP)

    def resume(self):
        os.kill(self.pid, signal.SIGCONT)


@contextmanager
def x_server(command, environment=None, tolerance=0, screen=None, pidless=False):
    """Starts an X server that writes its display's number to a descriptor."""
    read_end, write_end = os.pipe()
    process = spawn([*command, "-displayfd", write_end], environment or without_display(), pass_fds=[write_end])
    os.close(write_end)
    name = None
    try:
        with os.fdopen(read_end) as number:
            is_told = select.select([number], [], [], DEADLINE)[0]
            name = ":" + number.readline().strip() if is_told else ":"
        if name == ":":
            raise Missing(f"{command[0]} is not ready")
        environment = without_display() | {"DISPLAY": name, "SDL_VIDEODRIVER": "x11"}
        pid = wait_until(lambda: children_of(process.pid))[0] if pidless else process.pid
        yield Server(process, environment, screen or XScreen(name, tolerance), pid)
    finally:
        end_group(process)
        if name:
            remove_traces(name)


def remove_traces(name):
    """A killed server leaves its socket and its lock behind."""
    for path in (SOCKETS / f"X{name[1:]}", Path(f"/tmp/.X{name[1:]}-lock")):
        path.unlink(missing_ok=True)


def xvfb(*options, depth=24, size="1024x768", prefix=(), tolerance=0):
    command = [*prefix, "Xvfb", "-screen", "0", f"{size}x{depth}", "-nolisten", "tcp", "-noreset", *options]
    return x_server(command, tolerance=tolerance)


def xvfb_numbered(name):
    """A server with the display name of one that is gone."""
    return x_server(["Xvfb", name, "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset"])


def xvnc(folder):
    return x_server(["Xvnc", "-geometry", "1024x768", "-depth", "24", "-SecurityTypes", "None", "-rfbport", "-1",
                     "-rfbunixpath", folder / "rfb"])


def xephyr(outer):
    return x_server(["Xephyr", "-screen", "900x700", "-noreset"], outer.environment)


def xwayland(compositor):
    return x_server(["Xwayland", "-geometry", "900x700", "-noreset"], compositor.environment)


# ---- Compositors ----


@contextmanager
def weston(outer=None):
    """weston in a window of an X server, or without any input device. Its windows are seen on the X server."""
    back_end = ["--backend=x11-backend.so", "--use-pixman"] if outer else ["--backend=headless-backend.so"]
    command = ["weston", *back_end, "--no-config", "--idle-time=0", "--width=1000", "--height=740", "--socket=wayland-9"]
    with _compositor(command, outer.environment if outer else without_display(), "wayland-9") as (process, environment):
        yield Server(process, environment, outer.screen if outer else None)


@contextmanager
def sway(folder):
    """sway in memory. Each window fills the output or a half of it, unless it floats."""
    (folder / "sway.conf").write_text('output * resolution 1024x768\nfor_window [title=".*"] floating enable\n'
                                      "default_floating_border none\n")
    ours = {"WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}
    command = ["sway", "--config", folder / "sway.conf"]
    with _compositor(command, without_display() | ours, "wayland-1") as (process, environment):
        yield Server(process, environment, WaylandScreen(environment))


@contextmanager
def _compositor(command, environment, socket):
    with tempfile.TemporaryDirectory() as folder:
        ours = {"XDG_RUNTIME_DIR": folder}
        process = spawn(command, environment | ours)
        try:
            await_file(Path(folder) / socket, process, command[0])
            reach = {"WAYLAND_DISPLAY": socket, "SDL_VIDEODRIVER": "wayland", "QT_QPA_PLATFORM": "wayland"}
            yield process, without_display() | ours | reach
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
    x = display.Display(server.name)
    try:
        check = x.intern_atom("_NET_SUPPORTING_WM_CHECK")
        found = x.screen().root.get_full_property(check, 0)
        return bool(found) and _is_window(x, found.value[0])
    finally:
        x.close()


def _is_window(x, number):
    return number in [child.id for child in x.screen().root.query_tree().children]


# ---- Display numbers ----


@contextmanager
def free_number():
    """A display number that no server uses, and the path of its socket."""
    with numbers_lock:
        number = next(n for n in range(700, 2000) if _take(n))
    try:
        yield f":{number}", SOCKETS / f"X{number}"
    finally:
        remove_traces(f":{number}")


def _take(number):
    if (SOCKETS / f"X{number}").exists():
        return False
    try:
        descriptor = os.open(f"/tmp/.X{number}-lock", os.O_CREAT | os.O_EXCL | os.O_WRONLY)
    except FileExistsError:
        return False
    os.write(descriptor, b"%10d\n" % os.getpid())
    os.close(descriptor)
    return True
