"""What a cell does: it lets a program show pictures on a stage, disturbs them, and judges what the program did."""

import tempfile
import time
from contextlib import ExitStack
from dataclasses import dataclass, field
from pathlib import Path

import pictures
from disturbers import Refused
from host import Died, Hung, PATIENCE
from processes import Missing, end_group
from support.waiting import wait_until

LOSS_LINE = "The display is gone; the model runs on."
STATUS = 7  # with which programs are to end
EXIT_LIMIT = 2.5  # seconds; the machine may be busy
NOT_LOOKED_AT = "–"


@dataclass
class Outcome:
    life: str = "lives"
    picture: str = NOT_LOOKED_AT  # right, wrong, none
    longest: float = 0.0  # milliseconds of the library's longest call
    longest_call: str = ""
    complaints: list = field(default_factory=list)

    @property
    def is_good(self):
        return self.life == "lives" and self.picture in ("right", NOT_LOOKED_AT) and not self.complaints


class Stage:
    """One program in one setting."""

    def __init__(self, kind, size, stack):
        self.kind = kind
        self.size = size  # how often the cell repeats what it repeats: "short" or "long"
        self.outcome = Outcome()
        self._stack = stack
        self.folder = Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="display-")))
        self.program = None
        self.screen = None
        self._number = 1
        self._programs = 0

    def enter(self, context):
        return self._stack.enter_context(context)

    def times(self, short, long):
        return long if self.size == "long" else short

    def subfolder(self, name):
        folder = self.folder / name
        folder.mkdir()
        return folder

    def check(self, holds, complaint):
        if not holds:
            self.outcome.complaints.append(complaint)

    # ---- The program ----

    def start(self, environment, screen=None, prefix=(), carrier=(), patience=30.0):
        """Starts the program and opens its windows."""
        self.program = self.kind.start(environment, self.subfolder(f"program{self._programs}"), prefix, carrier)
        self._stack.callback(self._close)
        self.screen = screen
        self._await_start()
        self.open_windows(patience)

    def _await_start(self):
        try:
            self.program.answer(patience=20)
        except Hung:
            if self.program.has_started():
                raise
            raise Missing("the program does not start") from None

    def _close(self):
        if self.program:
            self.program.close()
            self.program = None

    def open_windows(self, patience=PATIENCE):
        for window in self.kind.windows:
            self.program.command("open", window.title, window.synchronous, *window.size, *window.place,
                                 patience=patience)

    def shows(self, server, **options):
        """Starts the program on a server and looks at its picture."""
        self.start(server.environment, server.screen, **options)
        self.look()

    def look(self):
        """Waits for the picture on the screen. The worst that was seen counts."""
        seen = self._seen()
        if self.outcome.picture in ("right", NOT_LOOKED_AT):
            self.outcome.picture = seen

    def _seen(self):
        if self.screen is None:
            return NOT_LOOKED_AT
        if wait_until(self._is_right, deadline=10):
            return "right"
        self.program.check_lives()
        return "wrong" if self.screen.is_any_window() else "none"

    def _is_right(self):
        self.program.check_lives()
        screen = self.screen.pixels()
        whole = self.screen.shows_all
        return all(pictures.is_shown(pictures.expected(window.size, self._number), screen, self.screen.tolerance, whole)
                   for window in (self.kind.windows if whole else self.kind.windows[-1:]))

    def change_picture(self, patience=PATIENCE):
        if self.kind.takes_commands:
            self._number += 1
            self.program.command("picture", self._number, patience=patience)

    def churn(self, on, patience=PATIENCE):
        self.program.command("churn", *(self.kind.churn if on else (0, 0)), patience=patience)

    def churns_for(self, cycles):
        """Waits until that many windows have opened."""
        if not self.kind.is_ours:
            return self.watch(0.05 * cycles)
        assert wait_until(lambda: self.facts()["cycles"] >= cycles, PATIENCE), "no windows open"

    def open_again(self, server):
        """Opens windows that another has closed, once they count as closed, and looks at them."""
        for window in self.kind.windows:
            closed = wait_until(lambda: self.program.command("ask", window.title)[0] == "0", deadline=5)
            self.check(closed, f"{window.title} is open after its window is gone")
            self.program.command("again", window.title)
        self.screen = server.screen
        self.runs_on()
        self.change_picture()
        self.look()

    def cut_carrier(self):
        """Kills what carried the start of the program, for example ssh."""
        end_group(self.program.shell)

    def begin_anew(self):
        """Makes place for another program."""
        self._close()
        self._programs += 1

    # ---- Life ----

    def facts(self, patience=PATIENCE):
        """What the host says about itself."""
        words = self.program.command("facts", patience=patience)
        longest = float(words[0])
        if longest > self.outcome.longest:
            self.outcome.longest, self.outcome.longest_call = longest, words[1]
        return dict(zip(("frames", "cycles", "descriptors", "threads", "resident", "others"), map(int, words[2:])))

    def watch(self, seconds, patience=PATIENCE):
        """Lets the program run for that time and checks that it answers."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if self.kind.is_ours:
                self.facts(patience)
            else:
                self.program.command("facts", patience=patience)
            time.sleep(0.05)

    def runs_on(self, frames=20, patience=PATIENCE):
        """Checks that the model goes on."""
        if not self.kind.is_ours:
            return self.watch(0.5, patience)
        first = self.facts(patience)["frames"]
        end = time.monotonic() + patience
        while self.facts(patience)["frames"] < first + frames * len(self.kind.windows):
            if time.monotonic() > end:
                raise Hung
            time.sleep(0.02)

    def still_shows(self):
        """Checks that the program lives and that a new picture is on the screen."""
        self.runs_on()
        self.change_picture()
        self.look()

    def ends(self):
        """Checks that the program ends as it wants, at once."""
        if self.kind.is_ours and self.program.status() is None:
            self.facts()
        seconds = self.program.leave(STATUS)
        self.check(seconds < EXIT_LIMIT, f"exit took {seconds:.1f} s")


def play(act, kind, size="long"):
    """Runs a cell: `act` gets the stage. Returns its outcome."""
    with ExitStack() as stack:
        stage = Stage(kind, size, stack)
        try:
            act(stage)
            if stage.program:
                stage.ends()
        except Died as death:
            stage.outcome.life = death.how
        except Hung:
            stage.outcome.life = "hangs"
        except Refused:
            if not wait_until(lambda: stage.program.status() is not None, deadline=2):
                raise
            stage.outcome.life = Died(stage.program.status()).how
        except Missing as missing:
            stage.outcome.life = f"not run: {missing}"
        return stage.outcome
