"""Draws what the measurements found, time over size: picture.py FILE PICTURE

FILE is what report.py wrote, PICTURE an SVG file. Both scales are logarithmic; the marks are medians
of processor time, the lines up and down from them reach from the lower to the upper quartile.
"""
import json
import math
import pathlib
import sys
from xml.sax.saxutils import escape

WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 760, 420, 70, 250, 20, 50
LINES = [
    ("scan", "scan", "dv_build_tree", "scan of a folder", "#1f6feb"),
    ("scan", "scan", "floor: getdents64, statx, lgetxattr, qsort", "its floor: the system calls", "#8c959f"),
    ("show", "opening its level", "scan, items, layout, paint", "opening its level, to first paint", "#cf222e"),
    ("show", "closing it", "rows, items, trees", "closing it", "#bf8700"),
]


def points_of(measurements, name, what, variant):
    """Size and times in milliseconds, in order of size."""
    records = [record for record in measurements.get(name, [])
               if record["what"] == what and record.get("variant") == variant]
    return sorted((record["size"], *(record["processor"][part] * 1e3
                                     for part in ("median", "lower", "upper")))
                  for record in records)


class Scale:
    """A logarithmic scale over whole powers of ten."""

    def __init__(self, values, begin, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.begin, self.end = begin, end

    def __call__(self, value):
        part = (math.log10(value) - self.low) / (self.high - self.low)
        return self.begin + part * (self.end - self.begin)

    def powers(self):
        return [10.0 ** power for power in range(self.low, self.high + 1)]


def text(x, y, words, anchor="middle", colour="#1f2328"):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}">{escape(words)}</text>'


def line(x1, y1, x2, y2, colour, width=1.0):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" '
            f'stroke-width="{width}"/>')


def draw_grid(across, up):
    for size in across.powers():
        yield line(across(size), up.begin, across(size), up.end, "#d0d7de")
        yield text(across(size), up.begin + 18, f"{size:,.0f}")
    for time in up.powers():
        yield line(across.begin, up(time), across.end, up(time), "#d0d7de")
        yield text(across.begin - 8, up(time) + 4, f"{time:g} ms", "end")
    yield text((across.begin + across.end) / 2, up.begin + 40, "entries of the folder")
    yield text(across.begin + 8, up.end + 16, "processor time", "start")


def draw_points(points, across, up, colour):
    path = " ".join(f"{across(size):.1f},{up(median):.1f}" for size, median, _, _ in points)
    yield f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>'
    for size, median, lower, upper in points:
        yield line(across(size), up(lower), across(size), up(upper), colour, 4)
        yield f'<circle cx="{across(size):.1f}" cy="{up(median):.1f}" r="4" fill="{colour}"/>'


def keys_in_order(lines, up):
    """Each line's words stand where it ends, moved so far that they do not meet."""
    lowest = math.inf
    for points, words, colour in sorted(lines, key=lambda entry: entry[0][-1][1]):
        lowest = min(lowest - 18, up(points[-1][1]))
        yield lowest, words, colour


def draw(measurements):
    lines = [(points_of(measurements, name, what, variant), words, colour)
             for name, what, variant, words, colour in LINES]
    lines = [entry for entry in lines if entry[0]]
    points = [point for entry in lines for point in entry[0]]
    across = Scale([point[0] for point in points], LEFT, WIDTH - RIGHT)
    up = Scale([time for point in points for time in point[1:]], HEIGHT - BOTTOM, TOP)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
           f'font-family="sans-serif" font-size="13">')
    yield f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>'
    yield from draw_grid(across, up)
    for points, _, colour in lines:
        yield from draw_points(points, across, up, colour)
    for y, words, colour in keys_in_order(lines, up):
        yield text(across.end + 12, y + 4, words, "start", colour)
    yield "</svg>"


def main(path, picture):
    measurements = json.loads(pathlib.Path(path).read_text())["measurements"]
    pathlib.Path(picture).write_text("\n".join(draw(measurements)) + "\n")


main(*sys.argv[1:])
