"""Errors that the package raises itself, before it calls the library."""

import numpy as np
import pytest

from framesink import Display


@pytest.mark.parametrize(("shape", "dtype", "error", "words"), [
    ((4,), "uint8", ValueError, r"\(height, width\) or \(height, width, 3\), not \(4,\)"),
    ((4, 5, 4), "uint8", ValueError, r"not \(4, 5, 4\)"),
    ((0, 5), "uint8", ValueError, "must have at least one row"),
    ((40000, 40000), "uint8", ValueError, "larger than"),
    ((4, 5), "int64", TypeError, "int64 samples cannot be shown; use one of float64, float32, int8"),
    ((4, 5), "complex128", TypeError, "complex128"),
])
def test_a_display_of_impossible_frames_raises(stub, shape, dtype, error, words):
    with pytest.raises(error, match=words):
        Display("name", shape, dtype, library=stub.loaded)
    assert not stub.says("libCreate")


@pytest.mark.parametrize(("name", "error", "words"), [
    ("", ValueError, "must not be empty"), ("a\0b", ValueError, "zero character"),
    (7, TypeError, "must be a str, not int")])
def test_a_display_of_an_impossible_name_raises(stub, name, error, words):
    with pytest.raises(error, match=words):
        Display(name, (4, 5), library=stub.loaded)


@pytest.mark.parametrize("size", [(0, 5), (5, -1)])
def test_a_window_without_pixels_raises(stub, size):
    with pytest.raises(ValueError, match="must be at least 1"):
        Display("name", (4, 5), size=size, library=stub.loaded)


@pytest.mark.parametrize(("frame", "error", "words"), [
    (np.zeros((4, 5)), TypeError, r"holds float64, this display shows \(4, 5\) of uint8"),
    (np.zeros((5, 4), np.uint8), ValueError, r"shape is \(5, 4\), this display shows \(4, 5\) of uint8"),
    (np.zeros((4, 5, 3), np.uint8), ValueError, r"\(4, 5, 3\)"),
    (np.zeros((3, 5), np.uint8), ValueError, r"\(3, 5\)"),
])
def test_a_frame_of_another_format_raises_and_is_not_shown(stub, frame, error, words):
    display = Display("name", (4, 5), library=stub.loaded)
    with pytest.raises(error, match=words):
        display.show(frame)
    assert not stub.says("libUpdate")


@pytest.mark.parametrize("shape", [(5, 5), (4, 6), (0, 5), (4,)])
def test_frames_that_do_not_fit_raise_where_smaller_ones_may_come(stub, shape):
    display = Display("name", (4, 5), smaller_frames=True, library=stub.loaded)
    with pytest.raises(ValueError, match="shape is"):
        display.show(np.zeros(shape, np.uint8))
    assert not stub.says("libUpdate")
