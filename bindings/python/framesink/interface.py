"""The library's C interface (framesink/framesink.h) as ctypes declarations."""

import ctypes
from ctypes import POINTER, c_char_p, c_int32, c_uint8, c_uint32, c_uint64, c_void_p
from typing import Any, Final

import numpy as np

ERROR_BYTES: Final = 1024
POSITION_UNDEFINED: Final = 0x1FFF0000

# As window width and height, stands for the frame's size.
FRAME_SIZE: Final = 0x7FFFFFFF
# Reported as width and height of a closed window.
NOT_OPEN: Final = -2
# The maximum size in bytes of a frame's three 8-bit planes.
MOST_FRAME_BYTES: Final = 0x7FFFFFFF

# InputDescription.dataType.
DATA_TYPES: Final[dict[np.dtype[Any], int]] = {
    np.dtype(np.float64): 0,
    np.dtype(np.float32): 1,
    np.dtype(np.int8): 2,
    np.dtype(np.uint8): 3,
    np.dtype(np.int16): 4,
    np.dtype(np.uint16): 5,
    np.dtype(np.int32): 6,
    np.dtype(np.uint32): 7,
    np.dtype(np.bool_): 8,
}


class InputDescription(ctypes.Structure):
    """Describes the planes of every frame of a block."""

    _fields_ = [
        ("valid", c_uint8),
        ("reserved1", c_uint8 * 23),
        ("fourcc", ctypes.c_char * 4),
        ("inputCount", c_uint32),
        ("componentCount", c_uint32),
        ("widths", c_uint32 * 3),
        ("heights", c_uint32 * 3),
        ("dataType", c_uint32),
        ("layout", c_int32),
        ("reserved2", c_uint8 * 12),
        ("reserved3", c_uint8 * 8),
    ]


UnsignedPair = c_uint32 * 2
SignedPair = c_int32 * 2

# Name, result, arguments.
FUNCTIONS: Final[list[tuple[str, Any, list[Any]]]] = [
    ("libCreate", c_void_p,
     [c_char_p, c_uint64, c_char_p, c_char_p, c_uint8, POINTER(InputDescription), c_uint8, c_uint32, c_uint32,
      c_uint8, c_uint32, c_uint32, c_uint32, c_uint8, c_uint8]),
    ("libStart", None, [c_void_p, c_char_p]),
    ("libUpdate", None, [c_void_p, c_char_p, c_void_p, c_void_p, c_void_p, c_uint32, c_uint32]),
    ("libTerminate", None, [c_void_p]),
    ("libDestroy", None, [c_void_p]),
    ("createVideoWindow", None, [c_char_p, c_uint8, UnsignedPair, UnsignedPair, c_uint8]),
    ("destroyVideoWindow", None, [c_char_p]),
    ("getWindowPosSize", None, [c_char_p, SignedPair, SignedPair]),
    ("isPlayerOpen", c_uint8, [c_char_p]),
    ("renameVideoWindow", None, [c_char_p, c_char_p, c_char_p]),
]


def declare(library: ctypes.CDLL) -> None:
    """Declares the functions' types to ctypes. Raises AttributeError if a function is missing."""
    for name, result, arguments in FUNCTIONS:
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
