"""Finds and loads the library, and makes one call to it at a time."""

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
    """The loaded library. load() returns it.

    Any thread may call its functions. A lock admits one call at a time, and the interpreter runs other threads
    meanwhile. The library is never unloaded; its windows close when the process ends.
    """

    def __init__(self, functions: ctypes.CDLL) -> None:
        """Use load() instead, which creates one Library for each library."""
        interface.declare(functions)
        self._functions = functions
        # Recursive, because the garbage collector may end a block on a thread that holds the lock.
        self._lock = threading.RLock()
        self._process = os.getpid()
        self.version = self._text("framesink_version")
        self.build_date = self._text("framesink_build_date")

    def call(self, function: str, *arguments: Any) -> Any:
        """Calls one of the library's functions. Raises RuntimeError in a fork of the process that loaded it."""
        if self.is_foreign:
            raise RuntimeError("framesink was loaded before this process was forked, so its windows belong to the "
                               "parent process. Start such a process with the 'spawn' method")
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
    """Returns the library. The first call loads it, later calls return the same Library.

    Loads the first of these that is given or exists: `path`; the path in the environment variable FRAMESINK_LIBRARY;
    libframesink.so.1 in this package's folder; the one that the operating system's loader finds. Raises
    LibraryNotFoundError if that one cannot be loaded.
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
    """The name for the loader, and where it comes from."""
    if path is not None:
        return _as_file(path), "as requested"
    from_environment = os.environ.get(PATH_VARIABLE)
    if from_environment:
        return _as_file(from_environment), f"from {PATH_VARIABLE}"
    beside = Path(__file__).with_name(SONAME)
    if beside.exists():
        return str(beside), "beside the package"
    return SONAME, f"from the operating system's loader; {PATH_VARIABLE} is not set, and there is no {beside}"


def _as_file(path: str | os.PathLike[str]) -> str:
    """Makes the path of an existing file absolute, because the loader does not find a bare name in this folder."""
    path = os.fspath(path)
    return os.path.abspath(path) if os.path.exists(path) else path
