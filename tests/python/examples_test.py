"""Runs the examples as a user would, and compares the last frame of each with the screen."""

import importlib.util
import itertools
import os
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

from support import programs
from support.scaling import to_8_bit
from support.waiting import wait_until

FOLDER = Path(__file__).parents[2] / "examples/python"
BUILT = Path(os.environ["FRAMESINK_EXAMPLES"])


def example(name):
    """The example as a module, so that a test knows what it computes."""
    spec = importlib.util.spec_from_file_location(name, FOLDER / f"{name}.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def last(frames, count):
    return next(itertools.islice(frames, count - 1, None))


def enlarged(picture, times):
    return picture.repeat(times, axis=0).repeat(times, axis=1)


@pytest.fixture
def run(screen):
    """Runs a program, compares its windows with the expected ones and closes one of them. Returns its output."""
    started = []

    def run(command, windows):
        program = programs.start(command, screen.environment)
        started.append(program)
        assert wait_until(lambda: all(map(screen.shows, windows)) or program.poll() is not None)
        assert program.poll() is None, program.communicate()[1]
        for title, expected in windows.items():
            screen.wait_for_pixels(title, expected)
        screen.press_close_button(next(iter(windows)))
        status, output, complaints = programs.end(program)
        assert (status, complaints) == (0, "")
        assert wait_until(lambda: not any(map(screen.shows, windows)))
        return output

    yield run
    for program in started:
        program.kill()


def run_python(run, name, windows, *arguments):
    return run([sys.executable, str(FOLDER / f"{name}.py"), *arguments], windows)


# ---- Python -----------------------------------------------------------------------------------------------------


def test_wave(run):
    expected = to_8_bit(last(example("wave").frames(), 25))
    assert len(np.unique(expected)) > 30  # there is something to see
    assert run_python(run, "wave", {"Waves": expected}, "--frames", "25") == "0 planes copied\n"


def test_reaction_diffusion(run):
    module = example("reaction_diffusion")
    u, v = last(module.frames(), 20)
    assert len(np.unique(to_8_bit(v))) > 50
    windows = {"U": to_8_bit(u), "V": to_8_bit(2.5 * v), "U and V": enlarged(to_8_bit(module.colours(u, v)), 2)}
    assert run_python(run, "reaction_diffusion", windows, "--frames", "20") == "0 planes copied\n"


def test_video_filter_of_its_own_clip(run):
    module = example("video_filter")
    picture = last(module.made_clip(), 10)
    windows = {"Clip": picture, "Edges": module.edges(picture)}
    assert run_python(run, "video_filter", windows, "--frames", "10") == "0 planes copied\n"


def test_video_filter_of_a_file(run, tmp_path):
    module = example("video_filter")
    pictures = list(itertools.islice(module.made_clip(), 8))
    clip = tmp_path / "clip.mkv"
    subprocess.run(["ffmpeg", "-v", "error", "-f", "rawvideo", "-pix_fmt", "rgb24", "-s",
                    f"{module.WIDTH}x{module.HEIGHT}", "-i", "-", "-c:v", "ffv1", "-pix_fmt", "bgr0", str(clip)],
                   input=b"".join(picture.tobytes() for picture in pictures), check=True)
    windows = {"Clip": pictures[-1], "Edges": module.edges(pictures[-1])}
    # ffmpeg decodes frames row by row, so the clip's three planes are copied.
    assert run_python(run, "video_filter", windows, "--input", str(clip)) == "24 planes copied\n"
    windows = {"Clip": pictures[4], "Edges": module.edges(pictures[4])}
    output = run_python(run, "video_filter", windows, "--input", str(clip), "--frames", "5")
    assert output == "15 planes copied\n"


def test_a_file_that_is_no_video_is_told(tmp_path):
    file = tmp_path / "clip.mp4"
    file.write_text("no video")
    command = [sys.executable, str(FOLDER / "video_filter.py"), "--headless", "--input", str(file)]
    status, _, complaints = programs.run(command, dict(os.environ))
    assert status == 1
    assert complaints.endswith(f"ffmpeg could not read {file}\n")


@pytest.mark.parametrize("name", ["wave", "reaction_diffusion", "video_filter"])
def test_examples_run_without_a_screen(name):
    hidden = {key: value for key, value in os.environ.items() if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
    command = [sys.executable, str(FOLDER / f"{name}.py"), "--headless", "--frames", "3"]
    assert programs.run(command, hidden) == (0, "0 planes copied\n", "")


# ---- C ----------------------------------------------------------------------------------------------------------


def scattered_cells(rows, columns):
    """The cells with which life.c begins."""
    random, cells = 1, np.zeros((rows, columns), np.uint8)
    for column in range(columns):
        for row in range(rows):
            random = (random * 1664525 + 1013904223) % 2 ** 32
            cells[row, column] = (random >> 16) % 3 == 0
    return cells


def next_generation(cells):
    ways = [(down, right) for down in (-1, 0, 1) for right in (-1, 0, 1) if (down, right) != (0, 0)]
    count = sum(np.roll(cells, way, (0, 1)) for way in ways)
    return ((count == 3) | ((count == 2) & (cells == 1))).astype(np.uint8)


def test_life_in_c(run):
    cells = scattered_cells(180, 320)
    for _ in range(40):
        cells = next_generation(cells)
    assert 0.02 < cells.mean() < 0.5
    run([str(BUILT / "life"), "40"], {"Life": enlarged(255 * cells, 3)})


# ---- Fortran ----------------------------------------------------------------------------------------------------


def test_heat_in_fortran(run):
    plate = np.zeros((200, 320))
    plate[-1] = 1
    for _ in range(300):
        plate[1:-1, 1:-1] = 0.25 * ((plate[:-2, 1:-1] + plate[2:, 1:-1]) + (plate[1:-1, :-2] + plate[1:-1, 2:]))
    expected = to_8_bit(plate)
    assert len(np.unique(expected)) > 50
    run([str(BUILT / "heat"), "300"], {"Heat": expected})
