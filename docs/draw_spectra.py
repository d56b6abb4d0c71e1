#!/usr/bin/env python3
"""Draws the manual's pictures of a spectrum with a notch, of the channels that are measured and of NPR
over level, as SVG; scripts/make-images makes the PNGs of them that the manual shows.

    docs/draw_spectra.py            writes docs/images/npr_*.svg
    docs/draw_spectra.py --check    fails when they are other pictures than those
"""
import math
import sys
from pathlib import Path

IMAGES = Path(__file__).resolve().parent / "images"
INK, BLUE, RED, GREEN, PALE = "#444444", "#008ed6", "#c8372d", "#2e7d32", "#eff0f1"


# The same ups and downs on every machine: numbers from -1 to 1.
def scatter(seed):
    while True:
        seed = (1103515245 * seed + 12345) % 2**31
        yield seed / 2**30 - 1


def text(x, y, words, anchor="middle", colour=INK, more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}"{more}>{words}</text>'


def box(left, top, right, bottom, colour, opacity=1.0):
    return (f'<rect x="{left:.1f}" y="{top:.1f}" width="{right - left:.1f}" height="{bottom - top:.1f}" '
            f'fill="{colour}" fill-opacity="{opacity:g}"/>')


def line(points, colour=INK, width=1.5, more=""):
    path = " L".join(f"{x:.1f} {y:.1f}" for x, y in points)
    return f'<path d="M{path}" fill="none" stroke="{colour}" stroke-width="{width:g}"{more}/>'


DASHED = ' stroke-dasharray="5 4"'


def head(tip, direction, colour):
    """An arrow's, which points to (x, y) = direction."""
    (x, y), (dx, dy) = tip, direction
    corners = [(x, y), (x - 8 * dx - 4 * dy, y - 8 * dy - 4 * dx), (x - 8 * dx + 4 * dy, y - 8 * dy + 4 * dx)]
    return '<polygon points="' + " ".join(f"{a:.1f},{b:.1f}" for a, b in corners) + f'" fill="{colour}"/>'


def arrow(start, end, colour=INK, both=False):
    length = math.dist(start, end)
    ahead = ((end[0] - start[0]) / length, (end[1] - start[1]) / length)
    parts = [line([start, end], colour), head(end, ahead, colour)]
    if both:
        parts.append(head(start, (-ahead[0], -ahead[1]), colour))
    return "".join(parts)


def measure(left, right, y, words, colour=INK):
    """A width with its name above the line."""
    return arrow((left, y), (right, y), colour, both=True) + text((left + right) / 2, y - 5, words, colour=colour)


def noise(left, right, level, seed, height=5.0):
    """The ragged top of noise: level(x) is where its middle lies."""
    ups = scatter(seed)
    count = round((right - left) / 2)
    return [(left + 2 * k, level(left + 2 * k) + height * next(ups)) for k in range(count + 1)]


def under(points, bottom, colour, opacity):
    outline = [(points[0][0], bottom), *points, (points[-1][0], bottom)]
    return ('<polygon points="' + " ".join(f"{x:.1f},{y:.1f}" for x, y in outline) +
            f'" fill="{colour}" fill-opacity="{opacity:g}"/>')


def picture(width, height, *parts):
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}" font-family="Arial, Liberation Sans, sans-serif" font-size="13">',
        box(0, 0, width, height, "white"), *parts, "</svg>", ""])


def band(left, seed, notch_depth):
    """A band of noise from x = left on, with a notch in it, and its axis."""
    start, end, first, last, top, bottom = left + 40, left + 240, left + 130, left + 156, 60, 220
    signal = noise(start, end, lambda x: notch_depth if first <= x <= last else top, seed)
    edges = [(start, bottom), *signal, (end, bottom)]
    return "".join([under(signal, bottom, BLUE, 0.18), line(edges, BLUE),
                    line([(left + 8, bottom), (left + 280, bottom)]),
                    text(left + 280, bottom + 18, "frequency", "end")])


def around_device():
    """The spectrum before and behind a device."""
    left, floor = 420, 160

    # The products of third order: highest in the middle of the band, and wider than it.
    def products(x):
        share = abs(x - left - 140) / 100
        density = 0.75 - share**2 / 4 if share <= 1 else (3 - share)**2 / 8 if share < 3 else 0
        return min(220.0, floor - 40 * math.log10(max(density, 1e-4) / 0.75))

    distortion = noise(left + 8, left + 280, products, 5, 3.0)
    return picture(
        720, 260,
        text(140, 26, "what the device gets"), band(0, 1, 213),
        text(143, 246, "notch", colour=BLUE), arrow((143, 236), (143, 223), BLUE),
        box(312, 110, 392, 160, PALE), text(352, 140, "device"),
        arrow((288, 135), (310, 135)), arrow((394, 135), (416, 135)),
        text(left + 140, 26, "what it gives"), band(left, 1, 213),
        under(distortion, 220, RED, 0.35), line(distortion, RED),
        text(left + 128, 246, "its distortion fills the notch", colour=RED),
        arrow((left + 143, 236), (left + 143, floor + 8), RED),
        line([(left + 156, floor), (left + 252, floor)], INK, 1, DASHED),
        line([(left + 240, 60), (left + 252, 60)], INK, 1, DASHED),
        arrow((left + 247, 60), (left + 247, floor), both=True),
        text(left + 254, 114, "NPR", "start", more=' font-weight="bold"'))


def channels():
    """A notch above the carrier and the three channels measured for it: true to scale."""
    unit, reference, top, filled, bottom = 150, 330, 110, 215, 250  # pixels of a notch's width; places
    notch = reference + 1.2 * unit
    first, last = notch - unit / 2, notch + unit / 2
    signal = noise(40, 680, lambda x: filled if first <= x <= last else top, 3)
    parts = [text(360, 22, "a notch of the width w, above the carrier")]
    for middle, name, shown, colour in (
            (reference - 1.2 * unit, "lower neighbour", "NPR Lower: near 0", INK),
            (reference, "reference", "Signal Power", BLUE),
            (notch, "upper neighbour", "NPR Upper: &#8722;45.20", RED)):
        ends = middle - 0.375 * unit, middle + 0.375 * unit
        parts += [box(ends[0], 75, ends[1], bottom, colour, 0.2),
                  text(middle, 50, name, colour=colour, more=' font-weight="bold"'),
                  text(middle, 67, shown, colour=colour),
                  measure(*ends, bottom + 26, "0.75 w", colour)]
    parts += [
        line(signal, BLUE), line([(30, bottom), (690, bottom)]),
        text(690, bottom - 7, "frequency", "end"),
        arrow((notch, top), (notch, filled), RED, both=True), text(notch + 8, 168, "NPR", "start", RED),
        measure(first, last, 200, "", INK), text(last + 8, 204, "w, the notch", "start"),
        measure(reference - 1.2 * unit, reference, bottom + 56, "1.2 w"),
        measure(reference, notch, bottom + 56, "1.2 w"),
        measure(reference - 1.75 * unit, reference + 1.75 * unit, bottom + 86,
                "3.5 w, the analyzer's span"),
        arrow((58, 92), (24, 92)), text(24, 86, "carrier", "start")]
    return picture(720, 350, *parts)


INTERCEPT, NOISE = 20.0, -120 + 10 * math.log10(100e6)  # dBm, the latter in the band


def fills(level):
    """What fills the notch, by noise and by third-order products, over the signal; in dB."""
    drive = 10 ** ((level - INTERCEPT) / 10)
    return NOISE - level, 10 * math.log10(1.5 * drive**2 / (1 - 2 * drive)**2)


def npr(level):
    return -10 * math.log10(sum(10 ** (part / 10) for part in fills(level)))


def over_level():
    """NPR of an amplifier with noise and third-order products."""
    lowest, highest, top, threshold = -35, 10, 50, 30

    def at(level, ratio):
        return 60 + (level - lowest) * 14.4, 290 - ratio * 5.2

    levels = [lowest + k / 4 for k in range(4 * (highest - lowest) + 1)]
    best = max(levels, key=npr)
    above = [level for level in levels if npr(level) >= threshold]
    parts = []
    for ratio in range(0, top + 1, 10):
        y = at(0, ratio)[1]
        parts += [line([at(lowest, ratio), at(highest, ratio)], "#c6cbcf", 0.5), text(52, y + 4, ratio, "end")]
    for level in range(lowest + 5, highest + 1, 10):
        parts.append(text(at(level, 0)[0], 308, f"{level}".replace("-", "&#8722;")))
    parts += [
        line([at(lowest, top), at(lowest, 0), at(highest, 0)]),
        text(at(highest, 0)[0], 330, "level / dBm", "end"),
        text(24, 160, "NPR / dB", more=' transform="rotate(-90 24 160)"'),
        line([at(level, -fills(level)[0]) for level in levels if -fills(level)[0] <= top], INK, 1.2, DASHED),
        line([at(level, -fills(level)[1]) for level in levels if -fills(level)[1] <= top], RED, 1.2, DASHED),
        line([at(level, npr(level)) for level in levels], BLUE, 2.5),
        text(*at(-17, 13), "noise fills the notch:", "start"), text(*at(-17, 9.5), "1 dB more per dB", "start"),
        text(*at(-1, 18.5), "distortion fills it:", "start", RED),
        text(*at(-1, 15), "2 dB less per dB", "start", RED),
        arrow(at(best, 50), at(best, npr(best) + 1), BLUE),
        text(at(best, 0)[0] + 8, at(0, 47.5)[1], "the best point", "start", BLUE),
        arrow(at(above[0], threshold), at(above[-1], threshold), GREEN, both=True),
        text(*at((above[0] + above[-1]) / 2, threshold - 4), f"range above {threshold} dB", colour=GREEN)]
    return picture(740, 340, *parts)


def main():
    drawn = {"npr_notch": around_device(), "npr_channels": channels(), "npr_level": over_level()}
    stale = []
    for name, drawing in drawn.items():
        path = IMAGES / f"{name}.svg"
        if sys.argv[1:] == ["--check"]:
            stale += [name] * (not path.exists() or path.read_text() != drawing)
        else:
            path.write_text(drawing)
    if stale:
        sys.exit(f"other than docs/draw_spectra.py draws them: {', '.join(stale)}")


if __name__ == "__main__":
    main()
