"""Display, which shows a model's frames in a window."""

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

    shape: (height, width) for intensity, (height, width, 3) for red, green and blue.
    dtype: float64 or float32, from 0 (black) to 1 (white); int8, uint8, int16, uint16, int32 or uint32 over the
        type's whole range; bool.

    Column-major planes, such as those of Fortran-ordered arrays, are shown without a copy. All other planes are
    copied first and counted in `copies`. Frames may have either byte order.

    A `with` block closes the display at its end. The window stays open, see close().
    """

    def __init__(self, name: str, shape: tuple[int, ...], dtype: DTypeLike = "uint8", *, title: str | None = None,
                 position: tuple[int, int] | None = None, size: tuple[int, int] | None = None,
                 fullscreen: bool = False, open: bool = True, synchronous: bool = False,
                 smaller_frames: bool = False, library: Library | str | os.PathLike[str] | None = None) -> None:
        """Creates the display and opens its window.

        name: the name of the window. If a window of that name is open, the display takes it over.
        title: the title of the window; None uses the name.
        position: x and y of the window; None lets the window system choose.
        size: width and height of the window; None uses the frame's size.
        open: False leaves the window closed until window().open().
        synchronous: True draws inside show(), on the calling thread, instead of on the library's thread. Only the
            thread that created such a display may use it, and its window responds to the user only during show().
        smaller_frames: True lets show() accept smaller frames, which are centred.
        library: the result of load(), or a path for load().
        """
        self._format = FrameFormat(shape, dtype)
        self._source = PlaneSource(self._format)
        self._name = checked_name(name)
        self._library = library if isinstance(library, Library) else load(library)
        self._smaller = smaller_frames
        self._thread = threading.get_ident() if synchronous else None
        # Guards the copies, the error text and the block.
        self._turn = threading.RLock()
        self._error = ctypes.create_string_buffer(interface.ERROR_BYTES)
        title = checked_text(name if title is None else title, "a title")
        (x, y), (width, height) = as_position(position), as_size(size)
        block = self._library.call(
            "libCreate", self._error, 0, name.encode(), title.encode(), fullscreen, self._format.description(), open,
            x, y, size is not None, width, height, 0, smaller_frames, synchronous)
        if block is None:
            raise DisplayError(self._message() or "the library created no display")
        self._block = block
        self._end = weakref.finalize(self, _destroy, self._library, block)
        self._end.atexit = False  # not needed when the process ends
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
        """How many planes were copied because they were not column-major."""
        return self._source.copies

    @property
    def closed(self) -> bool:
        """Whether close() was called. The window may still be open."""
        return not self._end.alive

    @property
    def is_open(self) -> bool:
        """Whether the window is open. False after the user has closed it."""
        return self.window().is_open

    def window(self, name: str | None = None) -> Window:
        """The window of this display, or the window called `name`."""
        return Window(self._library, self._name if name is None else name)

    def show(self, frame: ArrayLike) -> None:
        """Shows a frame. The call reads the whole frame, so the array may change as soon as it returns.

        If the window is closed, the frame is dropped. The call does not wait for drawing unless the display is
        synchronous. If frames arrive faster than the screen shows them, the newest one is shown.
        """
        if self._thread not in (None, threading.get_ident()):
            raise RuntimeError(f"the display {self._name!r} is synchronous: only the thread that created it may show "
                               "frames")
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
        """Waits at most `timeout` seconds until the window is closed. Returns whether it is closed."""
        if self._thread is not None:
            raise RuntimeError(f"the display {self._name!r} is synchronous: its window can close only in show()")
        end = None if timeout is None else time.monotonic() + timeout
        while self.is_open:
            if end is not None and time.monotonic() >= end:
                return False
            time.sleep(_SECONDS_BETWEEN_LOOKS)
        return True

    def close(self) -> None:
        """Ends the display. Its window stays open and keeps the last frame.

        window().close() closes the window; the end of the process closes all windows. A second call does nothing.
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
    """Ends a block. In a fork it does nothing, because the block belongs to the parent process."""
    if library.is_foreign:
        return
    library.call("libTerminate", block)
    library.call("libDestroy", block)
