"""Programs that the tests start."""

import subprocess
import sys

from .waiting import DEADLINE


PYTHON = sys.executable


def start(command, environment, stdin=subprocess.DEVNULL):
    """Starts a program; end() has what it wrote."""
    return subprocess.Popen(command, env=environment, text=True, stdin=stdin, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def end(program):
    """Status, output and complaints of a program that is about to end by itself."""
    try:
        output, complaints = program.communicate(timeout=DEADLINE)
    except subprocess.TimeoutExpired:
        program.kill()
        raise
    return program.returncode, output, complaints


def run(command, environment):
    """The same of a program from its start."""
    return end(start(command, environment))


def start_python(screen, *arguments, stdin=subprocess.DEVNULL):
    """A program in this Python with its windows on `screen`."""
    return start([PYTHON, *arguments], screen.environment, stdin)
