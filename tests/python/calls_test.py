"""What the package passes to the library, as recorded by an interface without windows."""

import gc
import os
import threading
import tracemalloc

import numpy as np
import pytest

from framesink import Display, DisplayError
from support.waiting import DEADLINE, wait_until


def pointers(line):
    """The addresses in a line that lists planes."""
    return [0 if word == "(nil)" else int(word, 16) for word in line.split()[1:]]


def planes(stub):
    return [pointers(line) for line in stub.lines() if line.startswith("planes ")]


def address(array):
    return array.__array_interface__["data"][0]


@pytest.fixture
def addresses(monkeypatch):
    """Makes the stub note the addresses of planes. Their first byte must not be zero."""
    monkeypatch.setenv("STUB_RENDEZVOUS", "1")


# ---- What a display asks for ------------------------------------------------------------------------------------


def test_a_display_asks_for_its_window_and_describes_its_frames(stub):
    Display("a name", (480, 640, 3), "float64", library=stub.loaded)
    assert stub.lines()[:3] == [
        'libCreate name="a name" title="a name" fullscreen=0 open=1 x=536805376 y=536805376 useSize=0 '
        "size=2147483647x2147483647 conversion=0 buffers=0 sync=0",
        'description valid=1 fourcc="" inputs=3 components=3 widths=640,640,640 heights=480,480,480 type=0 layout=1',
        "libStart"]


def test_every_option_reaches_the_library(stub):
    Display("näme", (2, 5), np.int16, title="a title", position=(-3, 4), size=(50, 60), fullscreen=True, open=False,
            synchronous=True, smaller_frames=True, library=stub.loaded)
    assert stub.lines()[:2] == [
        'libCreate name="näme" title="a title" fullscreen=1 open=0 x=-3 y=4 useSize=1 size=50x60 conversion=0 buffers=1 '
        "sync=1",
        'description valid=1 fourcc="" inputs=1 components=1 widths=5,5,5 heights=2,2,2 type=4 layout=1']


# ---- Planes -----------------------------------------------------------------------------------------------------


def test_planes_of_fortran_ordered_frames_are_not_copied(stub, addresses):
    display = Display("name", (3, 4, 3), "float64", library=stub.loaded)
    frame = np.full((3, 4, 3), 0.3, order="F")
    display.show(frame)
    assert planes(stub) == [[address(frame[:, :, index]) for index in range(3)]]
    assert display.copies == 0


def test_a_fortran_ordered_plane_is_not_copied(stub, addresses):
    display = Display("name", (3, 4), "uint8", library=stub.loaded)
    frame = np.full((3, 4), 7, np.uint8, order="F")
    display.show(frame)
    assert planes(stub) == [[address(frame), 0, 0]]
    assert display.copies == 0


def test_planes_that_lie_column_by_column_apart_from_each_other_are_not_copied(stub, addresses):
    display = Display("name", (3, 4, 3), "uint8", library=stub.loaded)
    frame = np.full((5, 4, 3), 7, np.uint8).transpose(2, 1, 0)[:, :, :3]
    display.show(frame)
    assert planes(stub) == [[address(frame[:, :, index]) for index in range(3)]]
    assert display.copies == 0


@pytest.mark.parametrize("change", [
    np.ascontiguousarray, lambda frame: frame[::-1], lambda frame: frame.astype(">u2"),
    lambda frame: np.frombuffer(b"\1" + frame.tobytes("F"), "u1")[1:].view("u2").reshape(frame.shape, order="F")],
    ids=["row by row", "flipped", "other byte order", "at odd addresses"])
def test_other_planes_are_copied_and_counted(stub, addresses, change):
    display = Display("name", (3, 4, 3), "uint16", library=stub.loaded)
    frame = change(np.full((3, 4, 3), 0x0707, "u2", order="F"))
    for _ in range(2):
        display.show(frame)
    first, second = planes(stub)
    assert first == second  # both calls used the memory that the display keeps for copies
    assert not {address(frame[:, :, index]) for index in range(3)} & set(first)
    assert display.copies == 6


def test_showing_takes_no_memory_once_the_first_frame_is_shown(stub):
    display = Display("name", (300, 400), "float64", library=stub.loaded)
    frame = np.zeros((300, 400))
    display.show(frame)
    gc.collect()
    tracemalloc.start()
    try:
        for _ in range(20):
            display.show(frame)
        assert tracemalloc.get_traced_memory()[1] < frame.nbytes / 10
    finally:
        tracemalloc.stop()


# ---- Errors of the library --------------------------------------------------------------------------------------


@pytest.mark.parametrize("function", ["libCreate", "libStart"])
def test_a_display_that_the_library_refuses_raises_the_librarys_words(stub, monkeypatch, function):
    monkeypatch.setenv("STUB_COMPLAINT", function)
    with pytest.raises(DisplayError, match="^stub trouble!"):
        Display("name", (3, 4), library=stub.loaded)
    gc.collect()
    assert stub.lines().count("libDestroy") == (function == "libStart")


def test_a_frame_that_the_library_refuses_raises_the_librarys_words_once(stub, monkeypatch):
    display = Display("name", (3, 4), library=stub.loaded)
    monkeypatch.setenv("STUB_COMPLAINT", "libUpdate")
    with pytest.raises(DisplayError, match="^stub trouble!") as error:
        display.show(np.zeros((3, 4), np.uint8))
    assert len(str(error.value)) == 1024  # the whole buffer, although no zero ends the message
    monkeypatch.delenv("STUB_COMPLAINT")
    display.show(np.zeros((3, 4), np.uint8))


# ---- The life of a display --------------------------------------------------------------------------------------


def test_a_block_ends_the_display_once(stub):
    with Display("name", (3, 4), library=stub.loaded) as display:
        assert not display.closed
    display.close()
    assert display.closed
    assert [line for line in stub.lines() if line in ("libTerminate", "libDestroy")] == ["libTerminate", "libDestroy"]
    with pytest.raises(RuntimeError, match="'name' is closed"):
        display.show(np.zeros((3, 4), np.uint8))


def test_a_forgotten_display_is_ended(stub):
    display = Display("name", (3, 4), library=stub.loaded)
    del display
    gc.collect()
    assert stub.says("libDestroy")


# ---- Threads ----------------------------------------------------------------------------------------------------


def in_threads(*actions):
    threads = [threading.Thread(target=action) for action in actions]
    for thread in threads:
        thread.start()
    return threads


def join(threads):
    for thread in threads:
        thread.join(2 * DEADLINE)
        assert not thread.is_alive()


def test_other_threads_run_while_the_library_works(stub, addresses):
    display = Display("name", (3, 4), "uint8", library=stub.loaded)
    frame = np.zeros((3, 4), np.uint8, order="F")
    threads = in_threads(lambda: display.show(frame))
    assert wait_until(lambda: stub.says("planes"))
    frame[0, 0] = 1  # the stub waits for this
    join(threads)
    assert stub.says("met")
    assert not stub.says("nobody came")


def test_the_library_is_called_by_one_thread_at_a_time(stub, addresses):
    first, second = (Display(name, (3, 4), "uint8", library=stub.loaded) for name in ("first", "second"))
    held = np.zeros((3, 4), np.uint8, order="F")
    threads = in_threads(lambda: first.show(held))
    assert wait_until(lambda: stub.says("planes"))
    started = threading.Event()

    def show_second():
        started.set()
        second.show(np.ones((3, 4), np.uint8, order="F"))

    threads += in_threads(show_second)
    started.wait(DEADLINE)
    # The second call has time to reach the stub. The first one, which is inside, would notice and note it.
    wait_until(lambda: stub.says("two at once"), 0.2)
    held[0, 0] = 1
    join(threads)
    assert len(planes(stub)) == 2
    assert not stub.says("two at once")


def test_a_synchronous_display_is_for_the_thread_that_made_it(stub):
    display = Display("name", (3, 4), synchronous=True, library=stub.loaded)
    errors = []

    def show():
        try:
            display.show(np.zeros((3, 4), np.uint8))
        except RuntimeError as error:
            errors.append(str(error))

    join(in_threads(show))
    assert errors == ["the display 'name' is synchronous: only the thread that created it may show frames"]
    with pytest.raises(RuntimeError, match=r"can close only in show\(\)"):
        display.wait_until_closed()


def test_a_fork_is_refused_and_ends_nothing_of_its_parents(stub):
    display = Display("name", (3, 4), library=stub.loaded)
    child = os.fork()
    if child == 0:
        status = 1
        try:
            display.show(np.zeros((3, 4), np.uint8))
        except RuntimeError as error:
            status = 0 if "forked" in str(error) else 2
        display.close()
        os._exit(status)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0
    assert not stub.says("libUpdate")
    assert not stub.says("libDestroy")
