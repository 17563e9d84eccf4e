"""Programs that the tests start."""

import os
import signal
import subprocess
import sys

from .waiting import DEADLINE


PYTHON = sys.executable


def start(command, environment, stdin=subprocess.DEVNULL, process_group=None):
    """Starts a program; end() returns what it wrote. With process_group=0 it gets its own group, for kill_group()."""
    return subprocess.Popen(command, env=environment, text=True, stdin=stdin, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, process_group=process_group)


def end(program, deadline=DEADLINE):
    """Waits for a program that ends by itself. Returns its status, output and complaints."""
    try:
        output, complaints = program.communicate(timeout=deadline)
    except subprocess.TimeoutExpired:
        program.kill()
        raise
    return program.returncode, output, complaints


def kill_group(program):
    """Kills what still runs of a program with its own process group: the program and those that it started."""
    try:
        os.killpg(program.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    program.communicate()


def run(command, environment, deadline=DEADLINE):
    """Starts a program and waits for its end. Returns its status, output and complaints."""
    return end(start(command, environment), deadline)


def start_python(screen, *arguments, stdin=subprocess.DEVNULL):
    """Starts a program in this Python, with its windows on `screen`."""
    return start([PYTHON, *arguments], screen.environment, stdin)
