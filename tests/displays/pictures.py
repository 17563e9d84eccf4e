"""The picture that hosts show, and what a display shows of it."""

import subprocess

import numpy as np
from Xlib import X

from x_clients import connected


def expected(size, number):
    """The picture of that number, (height, width) of 0xRRGGBB: the rule of command_lines.c."""
    width, height = size
    column = np.arange(width, dtype=np.uint32)[np.newaxis, :]
    row = np.arange(height, dtype=np.uint32)[:, np.newaxis]
    red = (3 * column + 5 * row + 31 * number) & 255
    green = ((column ^ row) + 17 * number) & 255
    blue = (column * row // 7 + column + 11 * number) & 255
    return red << 16 | green << 8 | blue


def write_raw(path, size, number):
    """Writes the picture as bytes of blue, green, red and zero, row after row."""
    path.write_bytes(expected(size, number).astype("<u4").tobytes())


ENOUGH = 100  # pixels of a picture that the screen's edge may leave


def is_shown(picture, screen, tolerance=0, is_whole=True):
    """Whether the screen's pixels hold the picture somewhere. `tolerance` is that of each colour. Unless it must be
    whole, the screen's right and lower edges may cut it."""
    height, width = picture.shape
    corners = screen[: screen.shape[0] - height + 1, : screen.shape[1] - width + 1] if is_whole else screen
    rows, columns = np.nonzero(_alike(corners, picture[0, 0], tolerance))
    return any(_is_at(picture, screen[y:y + height, x:x + width], tolerance) for y, x in zip(rows, columns))


def _is_at(picture, shown, tolerance):
    """Whether a part of the screen shows the picture, as far as that part goes."""
    part = picture[:shown.shape[0], :shown.shape[1]]
    is_row = _alike(shown[0], part[0], tolerance).all()  # saves comparing the rest almost everywhere
    return shown.size >= ENOUGH and is_row and _alike(shown, part, tolerance).all()


def _alike(one, other, tolerance):
    if tolerance == 0:
        return one == other
    pairs = [((one >> shift & 255).astype(int), (other >> shift & 255).astype(int)) for shift in (0, 8, 16)]
    return np.maximum.reduce([np.abs(mine - theirs) for mine, theirs in pairs]) <= tolerance


class XScreen:
    """An X server's screen, read over a connection of its own."""

    def __init__(self, name, tolerance=0, shows_all=True, size=None):
        self.name = name
        self.tolerance = tolerance
        self.shows_all = shows_all  # otherwise windows may cover each other, and edges may cut them
        self._size = size  # of the part that counts

    def pixels(self):
        with connected(self.name) as x:
            root = x.screen().root
            place = root.get_geometry()
            width, height = self._size or (place.width, place.height)
            image = root.get_image(0, 0, width, height, X.ZPixmap, 0xFFFFFFFF)
            return _decode(image.data, width, height, _masks(x))

    def is_any_window(self):
        with connected(self.name) as x:
            return any(child.get_attributes().map_state == X.IsViewable
                       for child in x.screen().root.query_tree().children)


def _masks(x):
    """The depth of the root window, and where its visual keeps red, green and blue."""
    screen = x.screen()
    visual = next(visual for depth in screen.allowed_depths for visual in depth.visuals
                  if visual.visual_id == screen.root_visual)
    return screen.root_depth, [visual.red_mask, visual.green_mask, visual.blue_mask]


def _decode(data, width, height, format):
    depth, masks = format
    kind = np.uint32 if depth > 16 else np.uint16 if depth > 8 else np.uint8
    line = -(-width * np.dtype(kind).itemsize // 4) * 4
    rows = np.frombuffer(data, np.uint8).reshape(height, line)[:, :width * np.dtype(kind).itemsize]
    samples = np.ascontiguousarray(rows).view(kind).astype(np.uint32)
    if not all(masks):
        return samples
    return sum(_component(samples, mask) << shift for mask, shift in zip(masks, (16, 8, 0)))


def _component(samples, mask):
    """Eight bits of a colour."""
    shift = (mask & -mask).bit_length() - 1
    most = mask >> shift
    return (samples & mask) // (1 << shift) * 255 // most


class WaylandScreen:
    """The output of a compositor that grim can read."""

    tolerance = 0
    shows_all = False

    def __init__(self, environment):
        self._environment = environment

    def pixels(self):
        done = subprocess.run(["grim", "-t", "ppm", "-"], env=self._environment, check=True, timeout=10,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        _, size, _, data = done.stdout.split(b"\n", 3)
        width, height = map(int, size.split())
        bytes_of = np.frombuffer(data, np.uint8).reshape(height, width, 3).astype(np.uint32)
        return bytes_of[:, :, 0] << 16 | bytes_of[:, :, 1] << 8 | bytes_of[:, :, 2]

    def is_any_window(self):
        return len(np.unique(self.pixels())) > 2
