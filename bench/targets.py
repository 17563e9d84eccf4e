"""What every release is held to: ratios, never times."""

MEMCPY = "memcpy of the same bytes"
TWO_MEMCPYS = "two memcpys of the frame"
CONVERT_TO = "OpenCV convertTo"


class Target:
    """The ratio that a benchmark reports itself."""

    def __init__(self, name, other, limit):
        self.name, self.other, self.limit = name, other, limit

    def needs_peer(self):
        return self.other.split()[0] in ("OpenCV", "libyuv", "CImg")

    @property
    def key(self):
        return self.name, self.other

    def ratios(self, results):
        return results.values(self.key, "ratio") if self.key in results else []

    def ours(self, results):
        return f"{results.median(self.key, 'ours'):.3f}"

    def others(self, results):
        return f"{results.median(self.key, 'other'):.3f}"


class OtherRange(Target):
    """A kernel in another range than the natural one, each in memcpys of the same bytes."""

    def __init__(self, kernel, limit):
        super().__init__(f"{kernel} in another range", "the natural range", limit)
        self.natural, self.other_range = (kernel, MEMCPY), (self.name, MEMCPY)

    def ratios(self, results):
        pairs = zip(results.values(self.other_range, "ratio"), results.values(self.natural, "ratio"))
        return [other / natural for other, natural in pairs]

    def ours(self, results):
        return f"{results.median(self.other_range, 'ours'):.3f}"

    def others(self, results):
        return f"{results.median(self.natural, 'ours'):.3f}"


TARGETS = [
    Target("RgbToRgbUint8", MEMCPY, 1.10),
    Target("RgbToRgbInt8", MEMCPY, 1.4),
    Target("RgbToRgbBoolean", MEMCPY, 1.4),
    Target("RGB planes uint16", CONVERT_TO, 0.85),
    Target("RGB planes int16", CONVERT_TO, 0.85),
    Target("RGB planes single", CONVERT_TO, 1.05),
    Target("RGB planes int32", CONVERT_TO, 1.05),
    Target("RGB planes double", CONVERT_TO, 0.97),
    Target("RGB planes uint32", "int32", 1.1),
    OtherRange("RgbToRgbDouble", 1.8),
    OtherRange("RgbToRgbSingle", 1.8),
    OtherRange("RgbToRgbInt32", 1.8),
    OtherRange("RgbToRgbUint32", 1.8),
    OtherRange("RgbToRgbInt16", 2.6),
    OtherRange("RgbToRgbUint16", 2.6),
    OtherRange("RgbToRgbInt8", 3.5),
    OtherRange("RgbToRgbBoolean", 3.5),
    Target("intensity double", "RGB double", 0.45),
    Target("YCbCr uint8 to RGB planes", "libyuv I422ToARGB", 1.0),
    Target("YCbCr uint8 to YUY2, row-major", "libyuv I422ToYUY2", 1.1),
    Target("RGB uint8 to YUY2", "plain loop", 0.25),
    Target("planes to ARGB8888", "libyuv TransposePlane + MergeARGBPlane", 0.55),
    Target("planes to ARGB8888", MEMCPY, 2.4),
    Target("libUpdate uint8", TWO_MEMCPYS, 1.15),
    Target("libUpdate uint8 against OpenCV", "OpenCV", 1 / 18),
    Target("libUpdate uint8 against CImg", "CImg", 1 / 10),
    Target("libUpdate double against OpenCV", "OpenCV", 1 / 7),
    Target("libUpdate double against CImg", "CImg", 1 / 12),
    Target("shown frames against CImg", "CImg", 1 / 2),
    Target("shown frames against OpenCV", "OpenCV", 1 / 4),
    Target("shown frames scaled by 1.5 against CImg", "CImg", 1),
    Target("shown frames scaled by 1.5 against OpenCV", "OpenCV", 1),
    Target("shown frames full screen against CImg", "CImg", 1),
    Target("shown frames full screen against OpenCV", "OpenCV", 1),
    Target("libUpdate p99.9 of four windows", TWO_MEMCPYS, 1.5),
    Target("idle pass", "bare loop of lock, poll, unlock, sleep", 1.15),
]

NOTES = ""
