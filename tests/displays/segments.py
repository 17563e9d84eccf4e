"""segments.py BYTES COMMAND...: makes 64 segments of shared memory of that size, unless it is 0, and becomes the
command. Any process may attach them; they hold something that is no picture."""

import ctypes
import os
import sys


def make_segments(count, bytes_each):
    libc = ctypes.CDLL(None, use_errno=True)
    libc.shmat.restype = ctypes.c_void_p
    for _ in range(count):
        segment = libc.shmget(0, ctypes.c_size_t(bytes_each), 0o1666)
        if segment < 0:
            sys.exit(f"no shared memory: {os.strerror(ctypes.get_errno())}")
        ctypes.memset(libc.shmat(segment, None, 0), 0xAB, bytes_each)


if sys.argv[1] != "0":
    make_segments(64, int(sys.argv[1]))
os.execvp(sys.argv[2], sys.argv[2:])
