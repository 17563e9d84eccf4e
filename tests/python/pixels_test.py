"""Frames of every kind, compared with the screen pixel by pixel."""

import numpy as np
import pytest

import framesink
from framesink import Display
from framesink.interface import DATA_TYPES
from support.scaling import sample_range, to_8_bit

HEIGHT, WIDTH = 45, 70
RNG = np.random.default_rng(1)

every_type = pytest.mark.parametrize("dtype", DATA_TYPES, ids=str)


def samples(shape, dtype):
    """Samples from the whole range including its ends, and samples outside of it if the type has any."""
    low, high = sample_range(dtype)
    if dtype.kind == "b":
        return RNG.integers(0, 2, shape).astype(bool)
    if dtype.kind in "iu":
        return RNG.integers(low, high, shape, dtype, endpoint=True)
    values = RNG.uniform(-0.1, 1.1, shape)
    values.flat[:10] = [0, 1, 0.5, 127.5 / 255, np.nan, np.inf, -np.inf, -0.001, 8421504, 8421505]
    return values.astype(dtype)


@pytest.fixture
def show(screen):
    """Shows a frame in a window, waits until the screen shows `expected` and returns how many planes were copied."""
    name = "pixels"

    def show(frame, expected, **options):
        options = {"shape": frame.shape, "dtype": frame.dtype, "position": (20, 30)} | options
        with Display(name, **options) as display:
            display.show(frame)
            screen.wait_for_pixels(name, expected)
            return display.copies

    yield show
    framesink.load().call("destroyVideoWindow", name.encode())


@every_type
@pytest.mark.parametrize("shape", [(HEIGHT, WIDTH), (HEIGHT, WIDTH, 3)], ids=["intensity", "colour"])
def test_frames_of_either_order_are_shown_exactly(show, dtype, shape):
    frame = samples(shape, dtype)
    planes = 1 if len(shape) == 2 else 3
    assert show(np.asfortranarray(frame), to_8_bit(frame)) == 0
    other = samples(shape, dtype)
    assert show(np.ascontiguousarray(other), to_8_bit(other)) == planes


def test_a_flipped_view_is_shown_flipped(show):
    frame = samples((HEIGHT, WIDTH, 3), np.dtype("float64"))
    assert show(frame[::-1, ::-1, ::-1], to_8_bit(frame)[::-1, ::-1, ::-1]) == 3


def test_samples_of_the_other_byte_order_are_shown_as_what_they_mean(show):
    frame = samples((HEIGHT, WIDTH), np.dtype("uint16"))
    assert show(np.asfortranarray(frame).astype(">u2"), to_8_bit(frame), dtype="uint16") == 1


@pytest.mark.parametrize("order", ["C", "F"])
def test_a_smaller_frame_is_centred_in_black(show, order):
    frame = samples((HEIGHT - 11, WIDTH - 20, 3), np.dtype("int16"))
    expected = np.zeros((HEIGHT, WIDTH, 3), np.uint8)
    expected[5:5 + frame.shape[0], 10:10 + frame.shape[1]] = to_8_bit(frame)
    show(np.asarray(frame, order=order), expected, shape=expected.shape, smaller_frames=True)


def test_a_synchronous_display_shows_the_same(show):
    frame = samples((HEIGHT, WIDTH, 3), np.dtype("uint8"))
    show(frame, frame, synchronous=True)


def test_the_array_may_change_once_it_is_shown(screen):
    frame = np.full((HEIGHT, WIDTH), 200, np.uint8, order="F")
    display = Display("changing", frame.shape, position=(20, 30))
    display.show(frame)
    expected = frame.copy()
    frame[:] = 0
    screen.wait_for_pixels("changing", expected)
    display.window().close()


def test_the_newest_of_many_frames_stays_on_the_screen(screen):
    frame = np.zeros((HEIGHT, WIDTH), np.uint8, order="F")
    display = Display("newest", frame.shape, position=(20, 30))
    for step in range(500):
        frame[:] = step % 251
        display.show(frame)
    screen.wait_for_pixels("newest", frame)
    display.window().close()
