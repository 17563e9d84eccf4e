"""Which arrays can be shown, and their column-major planes for the library."""

from typing import Any, Final

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

from . import interface

_TYPE_NAMES: Final = ", ".join(dtype.name for dtype in interface.DATA_TYPES)


class FrameFormat:
    """The shape and sample type of a display's frames."""

    def __init__(self, shape: tuple[int, ...], dtype: DTypeLike) -> None:
        """Raises TypeError if samples of this type cannot be shown, ValueError if frames of this shape cannot."""
        self.dtype = _checked_dtype(dtype)
        self.shape = _checked_shape(shape)
        self.height, self.width = self.shape[:2]
        self.plane_count = 1 if len(self.shape) == 2 else 3

    def __str__(self) -> str:
        return f"{self.shape} of {self.dtype.name}"

    def description(self) -> interface.InputDescription:
        """The format as a record for libCreate."""
        n = self.plane_count
        return interface.InputDescription(
            valid=1, inputCount=n, componentCount=n, widths=(self.width,) * 3, heights=(self.height,) * 3,
            dataType=interface.DATA_TYPES[self.dtype], layout=1)

    def check(self, frame: ArrayLike, smaller: bool) -> NDArray[Any]:
        """Returns the frame as an array of this format; with `smaller`, height and width may be less.

        Raises TypeError for another type, ValueError for another shape.
        """
        array = np.asarray(frame)
        if array.dtype.newbyteorder("=") != self.dtype:
            raise TypeError(f"the frame holds {array.dtype.name}, this display shows {self}; "
                            f"convert the frame, or create a display for {array.dtype.name}")
        fits = array.shape == self.shape or (smaller and self._encloses(array.shape))
        if not fits:
            raise ValueError(f"the frame's shape is {array.shape}, this display shows {self}")
        return array

    def _encloses(self, shape: tuple[int, ...]) -> bool:
        return (len(shape) == len(self.shape) and shape[2:] == self.shape[2:]
                and 1 <= shape[0] <= self.height and 1 <= shape[1] <= self.width)


class PlaneSource:
    """Finds the planes of frames: column-major planes in the frame's own memory, copies of all others."""

    def __init__(self, frame_format: FrameFormat) -> None:
        """Allocates nothing; the first copy of a plane allocates memory for it."""
        self._format = frame_format
        self._scratch: dict[int, NDArray[Any]] = {}
        self.copies = 0

    def planes(self, frame: NDArray[Any]) -> list[NDArray[Any]]:
        """One plane, or red, green and blue. They are valid until the next call."""
        if frame.ndim == 2:
            return [self._plane(frame, 0)]
        return [self._plane(frame[:, :, index], index) for index in range(3)]

    def _plane(self, plane: NDArray[Any], index: int) -> NDArray[Any]:
        flags = plane.flags
        if flags.f_contiguous and flags.aligned and plane.dtype.isnative:
            return plane
        if index not in self._scratch:
            self._scratch[index] = np.empty(self._format.width * self._format.height, self._format.dtype)
        copy = self._scratch[index][:plane.size].reshape(plane.shape, order="F")
        np.copyto(copy, plane)
        self.copies += 1
        return copy


def address(plane: NDArray[Any]) -> int:
    """The address of the plane's first sample."""
    place: int = plane.__array_interface__["data"][0]
    return place


def _checked_dtype(dtype: DTypeLike) -> np.dtype[Any]:
    checked = np.dtype(dtype).newbyteorder("=")
    if checked not in interface.DATA_TYPES:
        raise TypeError(f"{checked.name} samples cannot be shown; use one of {_TYPE_NAMES}")
    return checked


def _checked_shape(shape: tuple[int, ...]) -> tuple[int, ...]:
    checked = tuple(int(extent) for extent in shape)
    if len(checked) not in (2, 3) or checked[2:] not in ((), (3,)):
        raise ValueError(f"a frame's shape must be (height, width) or (height, width, 3), not {checked}")
    if checked[0] < 1 or checked[1] < 1:
        raise ValueError(f"a frame must have at least one row and one column, not {checked}")
    if 3 * checked[0] * checked[1] > interface.MOST_FRAME_BYTES:
        raise ValueError(f"frames of shape {checked} are larger than a window can show")
    return checked
