"""The screen for the windows of the programs that a test file starts."""

import pytest

from support.screen import Screen


@pytest.fixture(scope="session")
def screen():
    screen = Screen()
    yield screen
    screen.close()
