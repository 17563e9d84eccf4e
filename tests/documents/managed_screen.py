"""A screen with a window manager, so that windows have frames with titles."""

import subprocess

from Xlib import X

from support.screen import Screen
from support.waiting import wait_until

DESKTOP = 0x56606B  # a colour that black borders of pictures stand out from


class ManagedScreen(Screen):
    def __init__(self, width=1280, height=1024):
        super().__init__(width, height)
        self.root.change_attributes(background_pixel=DESKTOP)
        self.root.clear_area()
        self._manager = subprocess.Popen(["openbox", "--sm-disable"], env=self.environment,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        assert wait_until(lambda: self._root_property("_NET_SUPPORTING_WM_CHECK")), "openbox is not ready"

    def close(self):
        self._manager.terminate()
        self._manager.wait()
        super().close()

    @property
    def root(self):
        return self._x.screen().root

    def windows(self):
        """The managed windows by title, the oldest first."""
        windows = [self._x.create_resource_object("window", number)
                   for number in self._root_property("_NET_CLIENT_LIST")]
        return {self._title(window): window for window in windows}

    def outline(self):
        """Left, top, right and bottom of the area that all windows with their frames cover."""
        places = [self._outline_of(window) for window in self.windows().values()]
        lefts, tops, rights, bottoms = zip(*places)
        return min(lefts), min(tops), max(rights), max(bottoms)

    def _outline_of(self, window):
        size, place = window.get_geometry(), self.root.translate_coords(window, 0, 0)
        frame = window.get_full_property(self._x.intern_atom("_NET_FRAME_EXTENTS"), X.AnyPropertyType)
        left, right, top, bottom = frame.value if frame else (0, 0, 0, 0)
        return place.x - left, place.y - top, place.x + size.width + right, place.y + size.height + bottom

    def _root_property(self, name):
        found = self.root.get_full_property(self._x.intern_atom(name), X.AnyPropertyType)
        return found.value if found else []
