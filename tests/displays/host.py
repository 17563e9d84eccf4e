"""A program under test: it is started with pipes that outlive whatever carried its start, and obeys commands."""

import os
import select
import shlex
import signal
import time
from pathlib import Path

from processes import end_group, kill, spawn
from support.waiting import wait_until

BUILD = Path(os.environ["FRAMESINK_BUILD"])
FRAMESINK = os.environ.get("FRAMESINK_LIBRARY", str(BUILD / "lib/libframesink.so.1"))
HOSTS = BUILD / "tests/displays"
PATIENCE = 10.0  # seconds for an answer, unless a display is stopped
RUN = '"$@" <in >out 2>err & echo $! >pid; wait $!; echo $? >ending; mv ending status'


class Died(Exception):
    """The program has ended unasked. `how` is its status or its signal."""

    def __init__(self, status):
        self.how = signal.Signals(status - 128).name if status > 128 else f"status {status}"
        super().__init__(self.how)


class Hung(Exception):
    """The program does not answer."""


class Program:
    """Runs `command` in `folder`. A `carrier`, for example ssh, runs the shell command that is its last word."""

    def __init__(self, command, environment, folder, carrier=()):
        self._folder = folder
        for name in ("in", "out"):
            os.mkfifo(folder / name)
        self._input = os.open(folder / "in", os.O_RDWR)
        self._output = os.open(folder / "out", os.O_RDWR | os.O_NONBLOCK)
        self._text = ""
        script = f"cd {shlex.quote(str(folder))} && {shlex.join(['sh', '-c', RUN, 'sh', *map(str, command)])}"
        self.shell = spawn([*carrier, script] if carrier else ["sh", "-c", script], environment)

    def close(self):
        if self.has_started() and self.status() is None:
            kill(self.pid)
        end_group(self.shell)
        os.close(self._input)
        os.close(self._output)

    def has_started(self):
        return (self._folder / "pid").exists()

    @property
    def pid(self):
        return int((self._folder / "pid").read_text())

    def status(self):
        """None while it runs."""
        path = self._folder / "status"
        return int(path.read_text()) if path.exists() else None

    def check_lives(self):
        if self.status() is not None:
            raise Died(self.status())

    def complaints(self):
        return (self._folder / "err").read_text(errors="replace").splitlines()

    def command(self, *words, patience=PATIENCE):
        """Types a command and returns the words of its answer."""
        self.check_lives()
        os.write(self._input, (" ".join(map(str, words)) + "\n").encode())
        return self.answer(patience)

    def answer(self, patience=PATIENCE):
        end = time.monotonic() + patience
        while True:
            while "\n" in self._text:
                line, self._text = self._text.split("\n", 1)
                if line.startswith("="):
                    return line[1:].split()
            if select.select([self._output], [], [], 0.02)[0]:
                self._text += os.read(self._output, 65536).decode()
                continue
            self.check_lives()
            if time.monotonic() > end:
                raise Hung

    def leave(self, status, patience=5.0):
        """Ends the program. Returns how long that took, in seconds."""
        self.check_lives()
        start = time.monotonic()
        os.write(self._input, f"exit {status}\n".encode())
        if wait_until(lambda: self.status() is not None, patience) is False:
            raise Hung
        if self.status() != status:
            raise Died(self.status())
        return time.monotonic() - start


class FixedProgram(Program):
    """A program that takes no commands, like ffplay. It lives as long as it runs."""

    def command(self, *words, patience=PATIENCE):
        self.check_lives()
        return []

    answer = command

    def leave(self, status, patience=5.0):
        self.check_lives()
        return 0.0
