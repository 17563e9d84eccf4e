"""A window by its name."""

from typing import NamedTuple

from . import interface
from .errors import UnknownWindowError
from .loader import Library

# No window reports such a size.
_UNTOUCHED = -1


class Geometry(NamedTuple):
    """Where a window is on the screen and how large it is, in screen coordinates."""

    x: int
    y: int
    width: int
    height: int


class Window:
    """The window of a name, open or not. Get it by Display.window().

    Windows belong to the library: they stay open after their display has ended, and are closed by the user, by
    close() or by the end of the process. After rename() this object goes with the new name. The windows of a
    synchronous display follow open() and tell is_open and geometry, but keep their title and stay on the screen
    after close(); use them in the thread that made the display.
    """

    def __init__(self, library: Library, name: str) -> None:
        """Nothing happens to the window of that name, and there need not be one."""
        self._library = library
        self._name = checked_name(name)

    def __repr__(self) -> str:
        return f"<framesink.Window {self._name!r}, {'open' if self.is_open else 'not open'}>"

    @property
    def name(self) -> str:
        """The name that the window is known by."""
        return self._name

    @property
    def is_open(self) -> bool:
        """Whether the window is open. False, too, when there is none of this name."""
        return bool(self._library.call("isPlayerOpen", self._name.encode()))

    @property
    def is_known(self) -> bool:
        """Whether a display has made a window of this name that was not closed by close()."""
        return self._place()[1] != _UNTOUCHED

    @property
    def geometry(self) -> Geometry | None:
        """Position and size, or None while the window is closed."""
        geometry, width = self._place()
        if width == _UNTOUCHED:
            raise UnknownWindowError(self._name)
        return None if width == interface.NOT_OPEN else geometry

    def open(self, position: tuple[int, int] | None = None, size: tuple[int, int] | None = None,
             fullscreen: bool = False) -> None:
        """Opens the window again, or brings it to the front when it is open.

        position: x and y; None lets the system choose. size: width and height; None takes the frame's. A window
        that opens again has its name for a title.
        """
        self._require()
        self._library.call("createVideoWindow", self._name.encode(), fullscreen,
                           interface.UnsignedPair(*as_position(position)), interface.UnsignedPair(*as_size(size)),
                           size is not None)

    def raise_(self) -> None:
        """Brings the window to the front. A closed one stays closed."""
        self._require()
        if self.is_open:
            self.open()

    def close(self) -> None:
        """Closes the window and forgets its name: the frames of displays of that name are dropped from then on.

        Nothing happens when there is none of this name.
        """
        self._library.call("destroyVideoWindow", self._name.encode())

    def rename(self, name: str, title: str | None = None) -> None:
        """Gives the window another name, and its title: `title`, or the new name.

        The frames of displays that were made under the old name are dropped from then on.
        """
        new = Window(self._library, name)
        if name != self._name and new.is_known:
            raise ValueError(f"there is a window known as {name!r} already")
        self._require()
        self._library.call("renameVideoWindow", self._name.encode(), name.encode(),
                           checked_text(name if title is None else title, "a title").encode())
        self._name = name

    def set_title(self, title: str) -> None:
        """Changes the title alone; the frames go on. A closed window has none to change."""
        self.rename(self._name, title)

    def _require(self) -> None:
        if not self.is_known:
            raise UnknownWindowError(self._name)

    def _place(self) -> tuple[Geometry, int]:
        """The geometry, and its width, which also tells of closed and unknown windows."""
        position, size = interface.SignedPair(), interface.SignedPair(_UNTOUCHED, _UNTOUCHED)
        self._library.call("getWindowPosSize", self._name.encode(), position, size)
        return Geometry(position[0], position[1], size[0], size[1]), size[0]


def checked_text(text: str, what: str) -> str:
    """`text`, if C can have it."""
    if not isinstance(text, str):
        raise TypeError(f"{what} is a str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{what} must not hold a zero character: {text!r}")
    return text


def checked_name(name: str) -> str:
    """`name`, if a window can have it."""
    if not checked_text(name, "a window's name"):
        raise ValueError("a window's name must not be empty")
    return name


def as_position(position: tuple[int, int] | None) -> tuple[int, int]:
    """x and y as the library takes them: the system's choice instead of None. ctypes wraps negative ones."""
    if position is None:
        return interface.POSITION_UNDEFINED, interface.POSITION_UNDEFINED
    x, y = position
    return x, y


def as_size(size: tuple[int, int] | None) -> tuple[int, int]:
    """Width and height as the library takes them: the frame's instead of None."""
    if size is None:
        return interface.FRAME_SIZE, interface.FRAME_SIZE
    width, height = size
    if width < 1 or height < 1:
        raise ValueError(f"a window's width and height are at least 1, not {size}")
    return width, height
