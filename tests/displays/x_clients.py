"""Connections of this program to X servers."""

from contextlib import contextmanager

from Xlib import display, protocol


def connect(name):
    """The X library keeps the events of all servers' extensions in one table, where those of different servers
    collide. Each connection therefore begins with the core protocol's events."""
    protocol.display.Display.event_classes = protocol.event.event_class.copy()
    return display.Display(name)


@contextmanager
def connected(name):
    x = connect(name)
    try:
        yield x
    finally:
        x.close()
