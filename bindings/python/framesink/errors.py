"""The errors that framesink raises in addition to ValueError, TypeError and RuntimeError."""


class LibraryNotFoundError(OSError):
    """libframesink was not found, or cannot be loaded."""


class DisplayError(RuntimeError):
    """A call to the library failed; the message comes from the library."""


class UnknownWindowError(LookupError):
    """No display has created a window of that name, or Window.close() closed it."""

    def __init__(self, name: str) -> None:
        super().__init__(f"no window is known as {name!r}: a Display of that name creates it")
