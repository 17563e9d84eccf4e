"""Fixtures: a screen for the test process, and an interface without windows."""

import os

import pytest

import framesink
from support.screen import Screen


@pytest.fixture(scope="session")
def screen():
    """The screen for the windows of this process and of the programs that it starts. It is never closed, because the
    library keeps its connection to the end of the process."""
    screen = Screen()
    os.environ.update(screen.environment)
    os.environ.pop("WAYLAND_DISPLAY", None)
    return screen


class Stub:
    """An interface without windows, which records its calls."""

    def __init__(self, log):
        self.loaded = framesink.load(os.environ["FRAMESINK_STUB"])
        self._log = log

    def lines(self):
        return self._log.read_text().splitlines() if self._log.exists() else []

    def says(self, text):
        return any(text in line for line in self.lines())


@pytest.fixture
def stub(tmp_path, monkeypatch):
    log = tmp_path / "log"
    monkeypatch.setenv("STUB_LOG", str(log))
    return Stub(log)
