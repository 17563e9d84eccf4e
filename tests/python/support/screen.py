"""A private X server in memory, and what a user sees and does with its windows."""

import os
import select
import subprocess

import numpy as np
from Xlib import X, display, error
from Xlib.protocol import event

from .waiting import DEADLINE, wait_until


class Screen:
    """Runs Xvfb. The server ends when its last client disconnects, and this object is one."""

    def __init__(self, width=1280, height=1024):
        read_end, write_end = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-ac",
             "-terminate"], pass_fds=[write_end], stderr=subprocess.PIPE)
        os.close(write_end)
        with os.fdopen(read_end) as number:
            if not select.select([number], [], [], DEADLINE)[0]:
                raise RuntimeError("Xvfb is not ready")
            line = number.readline()
        if not line:
            raise RuntimeError(f"Xvfb ended at its start: {self._server.communicate()[1].decode()}")
        self.name = f":{line.strip()}"
        self._x = display.Display(self.name)

    def close(self):
        self._x.close()
        self._server.terminate()
        self._server.wait(DEADLINE)
        self._server.stderr.close()

    @property
    def environment(self):
        """The environment of a program whose windows are to open on this screen."""
        ours = {"DISPLAY": self.name, "SDL_VIDEODRIVER": "x11"}
        return {key: value for key, value in os.environ.items() if key != "WAYLAND_DISPLAY"} | ours

    def windows(self):
        """The windows on the screen by title, from the lowest to the topmost."""
        shown = {}
        for window in self._x.screen().root.query_tree().children:
            try:
                if window.get_attributes().map_state == X.IsViewable:
                    shown[self._title(window)] = window
            except error.XError:
                pass  # the window is gone
        return shown

    def shows(self, title):
        return title in self.windows()

    def wait_for(self, title):
        """Returns the window with this title. It may close at any time, and others with its title may open."""
        seen = {}

        def is_there():
            seen.update(self.windows())
            return title in seen

        assert wait_until(is_there), f"no window {title!r} but {list(seen)}"
        return seen[title]

    def geometry(self, title):
        """x, y, width, height."""
        place = self.wait_for(title).get_geometry()
        return place.x, place.y, place.width, place.height

    def pixels(self, title):
        """What the window shows, (height, width, 3) of uint8; None if the window closes meanwhile."""
        return self.picture_of(self.wait_for(title))

    def picture_of(self, window):
        """What one of windows() shows, (height, width, 3) of uint8; None if the window closes meanwhile."""
        try:
            place = window.get_geometry()
            data = window.get_image(0, 0, place.width, place.height, X.ZPixmap, 0xFFFFFFFF).data
        except error.XError:
            return None
        return np.frombuffer(data, np.uint8).reshape(place.height, place.width, 4)[:, :, 2::-1]

    def wait_for_pixels(self, title, expected):
        """Waits until the window shows these pixels. Intensity is compared as grey."""
        if expected.ndim == 2:
            expected = np.repeat(expected[:, :, np.newaxis], 3, axis=2)
        if not wait_until(lambda: np.array_equal(self.pixels(title), expected)):
            shown = self.pixels(title)
            assert shown is not None and shown.shape == expected.shape
            wrong = np.argwhere(shown != expected)
            raise AssertionError(f"{len(wrong)} values differ, the first at {wrong[0]}: it is "
                                 f"{shown[tuple(wrong[0])]}, not {expected[tuple(wrong[0])]}")

    def press_close_button(self, title):
        self.ask_to_close(self.wait_for(title))

    def ask_to_close(self, window):
        """Sends what a close button sends. Does nothing if the window is gone."""
        protocols, delete = (self._x.intern_atom(name) for name in ("WM_PROTOCOLS", "WM_DELETE_WINDOW"))
        window.send_event(event.ClientMessage(window=window, client_type=protocols,
                                              data=(32, [delete, X.CurrentTime, 0, 0, 0])),
                          onerror=error.CatchError(error.BadWindow))
        self._x.flush()

    def _title(self, window):
        name = window.get_full_text_property(self._x.intern_atom("_NET_WM_NAME"))
        return name or window.get_wm_name() or ""
