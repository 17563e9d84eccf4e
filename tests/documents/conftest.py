"""The screen that a file of tests has for the windows of the programs it starts."""

import pytest

from support.screen import Screen


@pytest.fixture(scope="session")
def screen():
    screen = Screen()
    yield screen
    screen.close()
