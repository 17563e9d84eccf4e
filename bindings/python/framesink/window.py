"""Window, which controls a window by its name."""

from typing import NamedTuple

from . import interface
from .errors import UnknownWindowError
from .loader import Library

# No window reports this size.
_UNTOUCHED = -1


class Geometry(NamedTuple):
    """Position and size of a window, in screen coordinates."""

    x: int
    y: int
    width: int
    height: int


class Window:
    """The window of a name, open or not. Display.window() returns it.

    Windows belong to the library and stay open after their display has ended. A window closes when the user closes
    it, when close() is called, or when the process ends. After rename() this object uses the new name.

    For a window of a synchronous display, open(), is_open and geometry work, but the window keeps its title and stays
    on the screen after close(). Use it on the thread that created the display.
    """

    def __init__(self, library: Library, name: str) -> None:
        """Does not touch the window; no window of that name need exist."""
        self._library = library
        self._name = checked_name(name)

    def __repr__(self) -> str:
        return f"<framesink.Window {self._name!r}, {'open' if self.is_open else 'not open'}>"

    @property
    def name(self) -> str:
        """The name of the window."""
        return self._name

    @property
    def is_open(self) -> bool:
        """Whether a window of this name is open."""
        return bool(self._library.call("isPlayerOpen", self._name.encode()))

    @property
    def is_known(self) -> bool:
        """Whether a display has created a window of this name and close() has not closed it."""
        return self._place()[1] != _UNTOUCHED

    @property
    def geometry(self) -> Geometry | None:
        """Position and size, or None while the window is closed. Raises UnknownWindowError if the name is unknown."""
        geometry, width = self._place()
        if width == _UNTOUCHED:
            raise UnknownWindowError(self._name)
        return None if width == interface.NOT_OPEN else geometry

    def open(self, position: tuple[int, int] | None = None, size: tuple[int, int] | None = None,
             fullscreen: bool = False) -> None:
        """Opens the window again, or brings it to the front if it is open.

        position: x and y; None lets the window system choose.
        size: width and height; None uses the frame's size.

        A window that opens again gets its name as title. Raises UnknownWindowError if the name is unknown.
        """
        self._require()
        self._library.call("createVideoWindow", self._name.encode(), fullscreen,
                           interface.UnsignedPair(*as_position(position)), interface.UnsignedPair(*as_size(size)),
                           size is not None)

    def raise_(self) -> None:
        """Brings the window to the front. A closed window stays closed."""
        self._require()
        if self.is_open:
            self.open()

    def close(self) -> None:
        """Closes the window and forgets its name. From then on the frames of its displays are dropped.

        Does nothing if no window of this name exists.
        """
        self._library.call("destroyVideoWindow", self._name.encode())

    def rename(self, name: str, title: str | None = None) -> None:
        """Changes the name of the window, and its title to `title` or, by default, to the new name.

        From then on the frames of displays that were created under the old name are dropped. Raises ValueError if the
        new name is taken.
        """
        new = Window(self._library, name)
        if name != self._name and new.is_known:
            raise ValueError(f"a window is already known as {name!r}")
        self._require()
        self._library.call("renameVideoWindow", self._name.encode(), name.encode(),
                           checked_text(name if title is None else title, "a title").encode())
        self._name = name

    def set_title(self, title: str) -> None:
        """Changes the title and keeps the name. Does not affect a closed window."""
        self.rename(self._name, title)

    def _require(self) -> None:
        if not self.is_known:
            raise UnknownWindowError(self._name)

    def _place(self) -> tuple[Geometry, int]:
        """The geometry and its width, which is NOT_OPEN for a closed and _UNTOUCHED for an unknown window."""
        position, size = interface.SignedPair(), interface.SignedPair(_UNTOUCHED, _UNTOUCHED)
        self._library.call("getWindowPosSize", self._name.encode(), position, size)
        return Geometry(position[0], position[1], size[0], size[1]), size[0]


def checked_text(text: str, what: str) -> str:
    """Returns `text` if it can be a C string, otherwise raises TypeError or ValueError."""
    if not isinstance(text, str):
        raise TypeError(f"{what} must be a str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{what} must not contain a zero character: {text!r}")
    return text


def checked_name(name: str) -> str:
    """Returns `name` if a window can have it, otherwise raises TypeError or ValueError."""
    if not checked_text(name, "a window's name"):
        raise ValueError("a window's name must not be empty")
    return name


def as_position(position: tuple[int, int] | None) -> tuple[int, int]:
    """x and y for the library; None becomes the window system's choice. ctypes wraps negative values."""
    if position is None:
        return interface.POSITION_UNDEFINED, interface.POSITION_UNDEFINED
    x, y = position
    return x, y


def as_size(size: tuple[int, int] | None) -> tuple[int, int]:
    """Width and height for the library; None becomes the frame's size."""
    if size is None:
        return interface.FRAME_SIZE, interface.FRAME_SIZE
    width, height = size
    if width < 1 or height < 1:
        raise ValueError(f"a window's width and height must be at least 1, not {size}")
    return width, height
