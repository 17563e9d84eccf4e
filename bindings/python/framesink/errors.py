"""What can go wrong beyond Python's own ValueError, TypeError and RuntimeError."""


class LibraryNotFoundError(OSError):
    """There is no libframesink where it was looked for, or it cannot be loaded."""


class DisplayError(RuntimeError):
    """The library refused a call; the message is its own."""


class UnknownWindowError(LookupError):
    """No display has made a window of that name, or it was closed by Window.close."""

    def __init__(self, name: str) -> None:
        super().__init__(f"no window is known as {name!r}: a Display of that name makes it")
