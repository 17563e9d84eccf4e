"""Finding and loading the library, and calling it one call at a time."""

import ctypes
import os
import threading
from pathlib import Path
from typing import Any, Final

from . import interface
from .errors import LibraryNotFoundError

SONAME: Final = "libframesink.so.1"
PATH_VARIABLE: Final = "FRAMESINK_LIBRARY"


class Library:
    """The loaded library. Get it by load().

    Its functions may be called from any thread: a lock lets them in one at a time, and the interpreter runs
    other threads meanwhile. It is never unloaded; the end of the process closes its windows.
    """

    def __init__(self, functions: ctypes.CDLL) -> None:
        """Use load(), which makes one Library for each library."""
        interface.declare(functions)
        self._functions = functions
        # Recursive, because the garbage collector may end a block from inside a call's Python part.
        self._lock = threading.RLock()
        self._process = os.getpid()
        self.version = self._text("framesink_version")
        self.build_date = self._text("framesink_build_date")

    def call(self, function: str, *arguments: Any) -> Any:
        """Calls one of the library's functions. RuntimeError in a fork of the process that loaded it."""
        if self.is_foreign:
            raise RuntimeError("framesink was loaded before this process was forked: its windows belong to the "
                               "parent. Start such a process with the 'spawn' method")
        with self._lock:
            return getattr(self._functions, function)(*arguments)

    @property
    def is_foreign(self) -> bool:
        """Whether this is a fork of the process that loaded the library."""
        return os.getpid() != self._process

    def _text(self, symbol: str) -> str:
        return (ctypes.c_char_p.in_dll(self._functions, symbol).value or b"").decode()


_libraries: dict[int, Library] = {}
_loading = threading.Lock()


def load(path: str | os.PathLike[str] | None = None) -> Library:
    """The library, loaded once however often it is asked for.

    It is `path`; else what the environment variable FRAMESINK_LIBRARY names; else libframesink.so.1 in this
    package's folder; else the one that the system's loader finds. The first of these that is given or exists
    is taken: LibraryNotFoundError when it cannot be loaded.
    """
    place, reason = _place(path)
    with _loading:
        try:
            functions = ctypes.CDLL(place)
            library = _libraries.get(functions._handle)
            if library is None:
                library = _libraries[functions._handle] = Library(functions)
            return library
        except OSError as error:
            raise LibraryNotFoundError(f"cannot load {place} ({reason}): {error}") from None
        except (AttributeError, ValueError) as error:
            raise LibraryNotFoundError(f"{place} ({reason}) is not framesink: {error}") from None


def _place(path: str | os.PathLike[str] | None) -> tuple[str, str]:
    """What to hand to the loader, and why that."""
    if path is not None:
        return _as_file(path), "as asked for"
    from_environment = os.environ.get(PATH_VARIABLE)
    if from_environment:
        return _as_file(from_environment), f"from {PATH_VARIABLE}"
    beside = Path(__file__).with_name(SONAME)
    if beside.exists():
        return str(beside), "beside the package"
    return SONAME, f"from the system's loader; {PATH_VARIABLE} may name another, and there is no {beside}"


def _as_file(path: str | os.PathLike[str]) -> str:
    """The loader takes a name without a slash for one to look up: a file of that name goes first."""
    path = os.fspath(path)
    return os.path.abspath(path) if os.path.exists(path) else path
