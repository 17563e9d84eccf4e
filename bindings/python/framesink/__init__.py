"""Shows a running model's NumPy arrays in live windows.

A Display shows frames of one shape and sample type in the window of its name. A thread of the library draws the
window, so the model never waits for it.
"""

from .display import Display
from .errors import DisplayError, LibraryNotFoundError, UnknownWindowError
from .loader import Library, load
from .window import Geometry, Window

__all__ = ["Display", "DisplayError", "Geometry", "Library", "LibraryNotFoundError", "UnknownWindowError",
           "Window", "load"]
