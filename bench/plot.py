"""Draws the plot of docs/performance.md."""

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

from targets import MEMCPY, TWO_MEMCPYS  # noqa: E402

TYPES = ["Double", "Single", "Int32", "Uint32", "Int16", "Uint16", "Int8", "Uint8", "Boolean"]
SIZES = [(320, 240), (640, 480), (1280, 720), (1920, 1080), (2560, 1440), (3840, 2160)]
WINDOWS = [1, 2, 4, 8, 16]


def draw_kernels(axes, results):
    keys = [(f"RgbToRgb{name}", MEMCPY) for name in TYPES]
    places = range(len(keys))
    axes.bar([p - 0.2 for p in places], [results.median(k, "ours") for k in keys], 0.4, label="ours")
    axes.bar([p + 0.2 for p in places], [results.median(k, "other") for k in keys], 0.4,
             label="memcpy of the same bytes")
    axes.set_xticks(list(places), [name.lower() for name in TYPES], rotation=45, ha="right")
    axes.set_ylabel("milliseconds")
    axes.set_title("RGB planes of 1920x1080 to 8 bits")
    axes.legend()


def draw_lines(axes, places, lines):
    """Draws one line per (label, values), with `places` on the horizontal axis."""
    for label, values in lines:
        axes.plot(places, values, marker="o", label=label)
    axes.set_ylim(bottom=0)
    axes.legend()


def draw_sizes(axes, results):
    def costs(counter):
        return [1e6 * results.median((f"libUpdate of {w}x{h}", TWO_MEMCPYS), counter) / (w * h)
                for w, h in SIZES]

    draw_lines(axes, [w * h / 1e6 for w, h in SIZES],
               [("libUpdate", costs("ours")), (TWO_MEMCPYS, costs("other"))])
    axes.set_xscale("log")
    axes.set_xlabel("million pixels a frame")
    axes.set_ylabel("nanoseconds a pixel")
    axes.set_title("One uint8 window, by frame size")


def draw_windows(axes, results):
    def costs(counter):
        return [results.median((f"libUpdate round of {n} windows",
                                "two memcpys of each window's frame"), counter) for n in WINDOWS]

    draw_lines(axes, WINDOWS,
               [("one libUpdate each", costs("ours")), ("two memcpys each", costs("other"))])
    axes.set_xlabel("windows of 640x480")
    axes.set_ylabel("milliseconds a round")
    axes.set_title("By number of windows")


def draw(results, path):
    figure, (kernels, sizes, windows) = pyplot.subplots(1, 3, figsize=(15, 4.2))
    draw_kernels(kernels, results)
    draw_sizes(sizes, results)
    draw_windows(windows, results)
    figure.tight_layout()
    path.parent.mkdir(exist_ok=True)
    figure.savefig(path, dpi=80, metadata={"Software": None})
