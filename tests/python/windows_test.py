"""Windows by name, as the user sees them."""

import threading

import numpy as np
import pytest

from framesink import Display, Geometry, UnknownWindowError
from support.waiting import DEADLINE, wait_until

WHITE = np.full((40, 60), 255, np.uint8)


@pytest.fixture
def display(screen):
    display = Display("view", (40, 60), title="A view", position=(50, 60))
    screen.wait_for("A view")
    yield display
    display.window().close()
    assert wait_until(lambda: not screen.shows("A view"))


# ---- Opening and closing ----------------------------------------------------------------------------------------


def test_a_display_opens_its_window_where_asked(screen, display):
    assert screen.geometry("A view") == (50, 60, 60, 40)
    assert display.is_open
    assert display.window().geometry == Geometry(50, 60, 60, 40)


def test_a_window_of_another_size_is_larger_than_its_frames(screen):
    display = Display("large", (40, 60), position=(5, 6), size=(120, 80))
    display.show(WHITE)
    assert screen.geometry("large") == (5, 6, 120, 80)
    screen.wait_for_pixels("large", np.full((80, 120), 255, np.uint8))
    display.window().close()


def test_a_display_may_wait_with_its_window(screen):
    display = Display("later", (40, 60), open=False)
    window = display.window()
    assert not display.is_open
    assert window.is_known
    assert window.geometry is None
    window.open(position=(70, 80), size=(90, 100))
    assert screen.geometry("later") == (70, 80, 90, 100)
    display.show(WHITE)
    assert screen.pixels("later").shape == (100, 90, 3)
    window.close()


def test_the_users_close_ends_the_waiting(screen, display):
    closed = []
    thread = threading.Thread(target=lambda: closed.append(display.wait_until_closed(DEADLINE)))
    thread.start()
    screen.press_close_button("A view")
    thread.join(2 * DEADLINE)
    assert closed == [True]
    assert not display.is_open
    assert display.window().geometry is None
    display.show(WHITE)  # the frame is dropped
    assert wait_until(lambda: not screen.shows("A view"))


def test_waiting_gives_up_when_the_time_is_over(display):
    assert not display.wait_until_closed(0.01)


def test_a_window_that_the_user_closed_opens_again(screen, display):
    screen.press_close_button("A view")
    assert display.wait_until_closed(DEADLINE)
    display.window().open(position=(10, 20))
    assert screen.geometry("view") == (10, 20, 60, 40)
    display.show(WHITE)
    screen.wait_for_pixels("view", WHITE)


def test_a_window_outlives_its_display(screen):
    with Display("lasting", (40, 60), position=(5, 6)) as display:
        display.show(WHITE)
    screen.wait_for_pixels("lasting", WHITE)
    assert display.is_open
    display.window().close()
    assert wait_until(lambda: not screen.shows("lasting"))


def test_a_closed_window_is_forgotten_and_frames_for_it_are_dropped(screen):
    display = Display("gone", (40, 60))
    window = display.window()
    screen.wait_for("gone")
    window.close()
    window.close()
    assert wait_until(lambda: not screen.shows("gone"))
    assert not window.is_known
    display.show(WHITE)
    assert not screen.shows("gone")


def test_a_display_takes_over_the_open_window_of_its_name(screen, display):
    again = Display("view", (40, 60), "float64", title="A view", position=(500, 500))
    again.show(np.ones((40, 60)))
    screen.wait_for_pixels("A view", WHITE)
    assert screen.geometry("A view") == (50, 60, 60, 40)


# ---- Raising and renaming ---------------------------------------------------------------------------------------


def test_the_raised_window_is_on_top(screen, display):
    other = Display("other", (40, 60), position=(70, 80))
    screen.wait_for("other")
    for window, title in ((display.window(), "A view"), (other.window(), "other"), (other.window("view"), "A view")):
        window.raise_()
        assert wait_until(lambda: list(screen.windows())[-1] == title)
    other.window().close()


def test_opening_an_open_window_raises_it(screen, display):
    other = Display("other", (40, 60), position=(70, 80))
    other.window().raise_()
    assert wait_until(lambda: list(screen.windows())[-1] == "other")
    display.window().open()
    assert wait_until(lambda: list(screen.windows())[-1] == "A view")
    assert screen.geometry("A view") == (50, 60, 60, 40)
    other.window().close()


def test_raising_a_closed_window_leaves_it_closed(screen, display):
    screen.press_close_button("A view")
    assert display.wait_until_closed(DEADLINE)
    display.window().raise_()
    assert not display.is_open


def test_a_title_changes_and_the_frames_go_on(screen, display):
    display.window().set_title("Größe")
    display.show(WHITE)
    screen.wait_for_pixels("Größe", WHITE)
    assert not screen.shows("A view")


def test_a_renamed_window_goes_by_its_new_name(screen, display):
    window = display.window()
    window.rename("new name", "A new view")
    screen.wait_for("A new view")
    assert window.name == "new name"
    assert window.is_open
    assert not display.window("view").is_known
    assert not display.is_open
    window.rename("newer name")
    screen.wait_for("newer name")
    window.close()
    assert wait_until(lambda: not screen.shows("newer name"))


def test_a_name_that_is_taken_is_refused(screen, display):
    other = Display("other", (40, 60))
    with pytest.raises(ValueError, match="already known as 'view'"):
        other.window().rename("view")
    assert other.is_open
    other.window().close()


# ---- Unknown windows --------------------------------------------------------------------------------------------


@pytest.mark.parametrize("use", [
    lambda window: window.geometry, lambda window: window.open(), lambda window: window.raise_(),
    lambda window: window.rename("another"), lambda window: window.set_title("a title")],
    ids=["geometry", "open", "raise", "rename", "title"])
def test_an_unknown_window_is_told_by_its_name(display, use):
    window = display.window("nobody's")
    assert not window.is_open
    assert not window.is_known
    with pytest.raises(UnknownWindowError, match="no window is known as \"nobody's\""):
        use(window)


def test_windows_and_displays_tell_what_they_are(screen, display):
    assert repr(display) == "<framesink.Display 'view', (40, 60) of uint8>"
    assert repr(display.window()) == "<framesink.Window 'view', open>"
    display.close()
    assert repr(display) == "<framesink.Display 'view', (40, 60) of uint8, closed>"
    assert repr(display.window("x")) == "<framesink.Window 'x', not open>"
