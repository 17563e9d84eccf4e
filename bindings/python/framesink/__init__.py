"""Shows a running model's NumPy arrays in live windows.

A Display takes frames of one shape and sample type and shows them in the window of its name; the window is
drawn by a thread of the library, so the model never waits for it.
"""

from .display import Display
from .errors import DisplayError, LibraryNotFoundError, UnknownWindowError
from .loader import Library, load
from .window import Geometry, Window

__all__ = ["Display", "DisplayError", "Geometry", "Library", "LibraryNotFoundError", "UnknownWindowError",
           "Window", "load"]
