"""Programs that the tests start."""

import os
import signal
import subprocess
import sys

from .waiting import DEADLINE


PYTHON = sys.executable


def start(command, environment, stdin=subprocess.DEVNULL, process_group=None):
    """Starts a program; end() has what it wrote. Process group 0 is one of its own, for kill_group()."""
    return subprocess.Popen(command, env=environment, text=True, stdin=stdin, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, process_group=process_group)


def end(program, deadline=DEADLINE):
    """Status, output and complaints of a program that is about to end by itself."""
    try:
        output, complaints = program.communicate(timeout=deadline)
    except subprocess.TimeoutExpired:
        program.kill()
        raise
    return program.returncode, output, complaints


def kill_group(program):
    """Kills what is left of a program that has a process group of its own, and of those that it started."""
    try:
        os.killpg(program.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    program.communicate()


def run(command, environment, deadline=DEADLINE):
    """The same of a program from its start."""
    return end(start(command, environment), deadline)


def start_python(screen, *arguments, stdin=subprocess.DEVNULL):
    """A program in this Python with its windows on `screen`."""
    return start([PYTHON, *arguments], screen.environment, stdin)
