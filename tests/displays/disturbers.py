"""Other clients of the X server, which do to windows what a program must survive."""

import subprocess
import time
from contextlib import contextmanager

from Xlib import X, Xatom, error
from Xlib.protocol import event

from support.waiting import wait_until
from x_clients import connect


class Refused(Exception):
    """The server has refused a request of a disturber; maybe the program under test has died with its windows."""


class Disturber:
    """A client of the server. Its deeds fail if the server refuses one of its requests."""

    def __init__(self, name):
        self.name = name
        self.refused = []
        self.x = connect(name)
        self.x.set_error_handler(lambda problem, request: self.refused.append(problem))
        self.root = self.x.screen().root

    def close(self):
        self.x.close()

    def windows(self, titles):
        """The program's windows with these titles. Window managers may have put them into frames."""
        found = {}

        def are_there():
            found.update({self._title(window): window for window in self._below(self.root)})
            return all(title in found for title in titles)

        assert wait_until(are_there), f"no windows {titles} but {list(found)}"
        return [found[title] for title in titles]

    def _below(self, window):
        try:
            children = window.query_tree().children
        except error.XError:
            return
        for child in children:
            yield child
            yield from self._below(child)

    def _title(self, window):
        try:
            return window.get_wm_name() or ""
        except error.XError:
            return ""

    def settle(self):
        """Waits until the server has handled all of this client's requests."""
        self.x.sync()
        if self.refused:
            raise Refused(type(self.refused[0]).__name__)

    # ---- Deeds ----

    def destroy(self, window):
        window.destroy()
        self.settle()

    def kill_client_of(self, window):
        window.kill_client()
        self.settle()

    def reframe(self, window, times):
        """Puts the window into a frame and takes it out again, like a window manager that restarts."""
        for number in range(times):
            frame = self.root.create_window(30, 40, 330, 260, 0, X.CopyFromParent)
            frame.map()
            window.reparent(frame, 3, 4)
            window.configure(x=number % 5)
            self.settle()
            window.reparent(self.root, 20, 20)
            window.configure(x=20 + number % 3)
            frame.destroy()
            self.settle()

    def unmap_and_map(self, window, times):
        for _ in range(times):
            window.unmap()
            self.settle()
            window.map()
            self.settle()

    def resize(self, window, times):
        size = window.get_geometry()
        for number in range(times):
            window.configure(width=50 + number % 200, height=60 + number % 150, x=number % 300)
            self.settle()
        window.configure(width=size.width, height=size.height, x=20)
        self.settle()

    def steal_focus(self, window, times):
        mine = self.root.create_window(700, 600, 20, 20, 0, X.CopyFromParent, override_redirect=1)
        mine.map()
        for _ in range(times):
            window.set_input_focus(X.RevertToParent, X.CurrentTime)
            mine.set_input_focus(X.RevertToParent, X.CurrentTime)
            self.settle()
        mine.destroy()
        self.settle()

    def flood(self, window, times):
        """Sends pings of a window manager, and messages that make no sense."""
        protocols, ping = (self.x.intern_atom(name) for name in ("WM_PROTOCOLS", "_NET_WM_PING"))
        for number in range(times):
            for kind, data in ((protocols, [ping, number, window.id, 0, 0]), (Xatom.STRING, [number] * 5),
                               (self.x.intern_atom("XdndEnter"), [0xFFFFFFFF, 5 << 24 | 1, 0, 0, 0])):
                window.send_event(event.ClientMessage(window=window, client_type=kind, data=(32, data)))
        self.settle()

    def ask_to_close(self, window):
        protocols, delete = (self.x.intern_atom(name) for name in ("WM_PROTOCOLS", "WM_DELETE_WINDOW"))
        message = event.ClientMessage(window=window, client_type=protocols, data=(32, [delete, 0, 0, 0, 0]))
        for _ in range(200):
            window.send_event(message)
        self.x.sync()
        self.refused.clear()  # the window may be gone after the first

    def set_screen_size(self, width, height):
        subprocess.run(["xrandr", "-d", self.name, "-s", f"{width}x{height}"], check=True)
        assert self.root.get_geometry().width == width, "the screen keeps its size"

    def grab_server(self, seconds, meanwhile):
        """Keeps all other clients waiting. `meanwhile` is called often."""
        self.x.grab_server()
        self.settle()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            meanwhile()
            time.sleep(0.05)
        self.x.ungrab_server()
        self.settle()


@contextmanager
def disturber(server):
    client = Disturber(server.name)
    try:
        yield client
    finally:
        try:
            client.close()
        except error.ConnectionClosedError:
            pass


@contextmanager
def crowd(server, count):
    """Connections that take places of other clients. Fewer open if the server has no more."""
    clients = []
    try:
        while len(clients) < count:
            clients.append(connect(server.name))
        yield clients
    except (error.DisplayConnectionError, error.ConnectionClosedError, OSError):
        yield clients
    finally:
        for client in clients:
            client.close()
