"""Displays: where a model's frames go."""

import ctypes
import os
import threading
import time
import weakref
from types import TracebackType

from numpy.typing import ArrayLike, DTypeLike

from . import interface
from .errors import DisplayError
from .frames import FrameFormat, PlaneSource, address
from .loader import Library, load
from .window import Window, as_position, as_size, checked_name, checked_text

_SECONDS_BETWEEN_LOOKS = 0.01


class Display:
    """Shows frames of one shape and sample type in the window of its name.

    shape: (height, width) for intensity or (height, width, 3) for red, green and blue. dtype: float64 or float32,
    from 0 (black) to 1 (white); int8, uint8, int16, uint16, int32, uint32 over their whole range; bool.

    Planes that lie column by column in memory, as those of Fortran-ordered arrays do, are shown without a copy;
    all others are copied first, and counted in `copies`. Frames may be of either byte order.

    As a context manager a display ends with the block, and its window stays: see close().
    """

    def __init__(self, name: str, shape: tuple[int, ...], dtype: DTypeLike = "uint8", *, title: str | None = None,
                 position: tuple[int, int] | None = None, size: tuple[int, int] | None = None,
                 fullscreen: bool = False, open: bool = True, synchronous: bool = False,
                 smaller_frames: bool = False, library: Library | str | os.PathLike[str] | None = None) -> None:
        """Makes the display and opens its window.

        name: the window is known by it; a window of that name that is open already is taken over.
        title: the window's; None takes the name.
        position: x and y of the window; None lets the system choose.
        size: width and height of the window; None takes the frame's.
        open: False leaves the window closed until window().open().
        synchronous: draw inside show(), on this thread, instead of on the library's. Such a display is for the
            thread that made it, and its window answers the user only during show().
        smaller_frames: let show() take smaller frames, too; they are centred.
        library: what load() returned, or a path for load().
        """
        self._format = FrameFormat(shape, dtype)
        self._source = PlaneSource(self._format)
        self._name = checked_name(name)
        self._library = library if isinstance(library, Library) else load(library)
        self._smaller = smaller_frames
        self._thread = threading.get_ident() if synchronous else None
        # The copies, the error text and the block are for one thread at a time.
        self._turn = threading.RLock()
        self._error = ctypes.create_string_buffer(interface.ERROR_BYTES)
        title = checked_text(name if title is None else title, "a title")
        (x, y), (width, height) = as_position(position), as_size(size)
        block = self._library.call(
            "libCreate", self._error, 0, name.encode(), title.encode(), fullscreen, self._format.description(), open,
            x, y, size is not None, width, height, 0, smaller_frames, synchronous)
        if block is None:
            raise DisplayError(self._message() or "the library made no display")
        self._block = block
        self._end = weakref.finalize(self, _destroy, self._library, block)
        self._end.atexit = False  # the end of the process needs nothing of this
        self._library.call("libStart", block, self._error)
        self._raise_error()

    def __repr__(self) -> str:
        return f"<framesink.Display {self._name!r}, {self._format}{', closed' if self.closed else ''}>"

    def __enter__(self) -> "Display":
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self.close()

    @property
    def name(self) -> str:
        """The name of the window that the frames go to."""
        return self._name

    @property
    def shape(self) -> tuple[int, ...]:
        """(height, width) or (height, width, 3)."""
        return self._format.shape

    @property
    def copies(self) -> int:
        """How many planes were copied, because they did not lie column by column."""
        return self._source.copies

    @property
    def closed(self) -> bool:
        """Whether close() was called. The window may be open all the same."""
        return not self._end.alive

    @property
    def is_open(self) -> bool:
        """Whether the window is open: False once the user has closed it."""
        return self.window().is_open

    def window(self, name: str | None = None) -> Window:
        """The window of this display, or that of another name."""
        return Window(self._library, self._name if name is None else name)

    def show(self, frame: ArrayLike) -> None:
        """Shows a frame. It is taken before this returns: the array may change at once.

        Nothing happens when the window is closed. Drawing is not waited for, unless the display is synchronous;
        of frames that come faster than the screen shows them, the newest is shown.
        """
        if self._thread not in (None, threading.get_ident()):
            raise RuntimeError(f"the display {self._name!r} is synchronous: only the thread that made it may show")
        array = self._format.check(frame, self._smaller)
        with self._turn:
            if self.closed:
                raise RuntimeError(f"the display {self._name!r} is closed")
            planes = self._source.planes(array)
            height, width = array.shape[:2]
            places = [address(plane) for plane in planes] + [None] * (3 - len(planes))
            self._library.call("libUpdate", self._block, self._error, *places, width, height)
            self._raise_error()

    def wait_until_closed(self, timeout: float | None = None) -> bool:
        """Waits until the window is closed, at most `timeout` seconds; returns whether it is."""
        if self._thread is not None:
            raise RuntimeError(f"the display {self._name!r} is synchronous: its window is closed in show() only")
        end = None if timeout is None else time.monotonic() + timeout
        while self.is_open:
            if end is not None and time.monotonic() >= end:
                return False
            time.sleep(_SECONDS_BETWEEN_LOOKS)
        return True

    def close(self) -> None:
        """Ends the display. Its window stays, with the last frame: window().close() closes it.

        At the end of the process all windows close. Nothing happens the second time.
        """
        with self._turn:
            self._end()

    def _message(self) -> str:
        message = self._error.value.decode(errors="replace")
        self._error[0] = b"\0"
        return message

    def _raise_error(self) -> None:
        if self._error[0] != b"\0":
            raise DisplayError(self._message())


def _destroy(library: Library, block: int) -> None:
    """Ends a block. In a fork the block is the parent's."""
    if library.is_foreign:
        return
    library.call("libTerminate", block)
    library.call("libDestroy", block)
