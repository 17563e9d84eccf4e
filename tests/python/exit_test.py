"""Programs that end while their windows are open."""

import os
import signal
import subprocess

import pytest

from support import programs
from support.waiting import wait_until

OPENING = """
import os, sys, threading
import numpy as np
from framesink import Display
display = Display("ending", (40, 60), synchronous={synchronous})
frame = np.full((40, 60), 255, np.uint8)
display.show(frame)
print("showing", flush=True)
sys.stdin.readline()
"""

FOREVER = """
def pump():
    while True:
        display.show(frame)
"""

ENDINGS = {
    "end of the program": ("", 0, ""),
    "exit": ("sys.exit(5)", 5, ""),
    "exception": ("raise ValueError('the model is wrong')", 1, "ValueError: the model is wrong"),
    "block left": ("with display: pass", 0, ""),
    "at-exit handler": ("import atexit; atexit.register(lambda: display.show(frame))", 0, ""),
    "at-exit handler that closes": ("import atexit; atexit.register(lambda: display.window().close())", 0, ""),
    # Python 3.12 warns of every fork of a process with threads.
    "forked child": ("import warnings; warnings.simplefilter('ignore', DeprecationWarning)\n"
                     "if os.fork() == 0: sys.exit(3)\nassert os.waitstatus_to_exitcode(os.wait()[1]) == 3\n"
                     "assert display.is_open", 0, ""),
}


class Program:
    """Shows its window, and ends once go_on() is called."""

    def __init__(self, screen, ending, synchronous=False):
        self._program = programs.start_python(screen, "-c", OPENING.format(synchronous=synchronous) + ending,
                                              stdin=subprocess.PIPE)
        assert self._program.stdout.readline() == "showing\n", self._program.communicate()[1]
        screen.wait_for("ending")

    def go_on(self):
        self._program.stdin.write("\n")
        self._program.stdin.flush()

    def signal(self, number):
        self._program.send_signal(number)

    def end(self):
        status, _, complaints = programs.end(self._program)
        return status, complaints


@pytest.mark.parametrize("synchronous", [False, True], ids=["threaded", "synchronous"])
@pytest.mark.parametrize("how", ENDINGS)
def test_an_end_with_an_open_window_closes_it_and_keeps_the_programs_status(screen, how, synchronous):
    ending, status, complaint = ENDINGS[how]
    program = Program(screen, ending, synchronous)
    program.go_on()
    ended, complaints = program.end()
    assert ended == status
    assert complaints.strip().endswith(complaint) if complaint else complaints == ""
    assert wait_until(lambda: not screen.shows("ending"))


def test_a_daemon_thread_may_show_frames_to_the_very_end(screen):
    program = Program(screen, FOREVER + "threading.Thread(target=pump, daemon=True).start()")
    program.go_on()
    assert program.end() == (0, "")
    assert wait_until(lambda: not screen.shows("ending"))


def test_ctrl_c_interrupts_python_as_ever(screen):
    program = Program(screen, FOREVER + "print('pumping', flush=True)\npump()")
    program.go_on()
    assert program._program.stdout.readline() == "pumping\n"
    program.signal(signal.SIGINT)
    status, complaints = program.end()
    assert status == -signal.SIGINT
    assert complaints.strip().endswith("KeyboardInterrupt")
    assert wait_until(lambda: not screen.shows("ending"))


def test_without_a_display_the_model_runs_on():
    program = """
import numpy as np
from framesink import Display
display = Display("nowhere", (40, 60))
for step in range(20):
    display.show(np.zeros((40, 60), np.uint8))
print("done")
"""
    hidden = {key: value for key, value in os.environ.items() if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
    status, output, _ = programs.run([programs.PYTHON, "-c", program], hidden | {"SDL_VIDEODRIVER": "x11"})
    assert (status, output) == (0, "done\n")
