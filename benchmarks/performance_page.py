#!/usr/bin/python3
"""Writes what the benchmarks measured into docs/performance.md, between its marks, and draws the
plots beside it. Arguments: the folder of the JSON files and the folder of the page."""
import json
import math
import pathlib
import platform
import re
import sys

results, docs = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])


def load(name):
    report = json.loads((results / f"{name}.json").read_text())
    return {run["name"].split("/iterations")[0]: run for run in report["benchmarks"]}


runs = {name: load(name) for name in ("transform", "calculation", "curve", "recording", "files",
                                     "curves", "program")}

FFT = "transform/exponent:{}/threads:{}/manual_time"
# What is measured, benchmark, run and counter, the bound, and the unit of both.
TARGETS = [
    ("Transform of 2^22 points, all cores, against FFTW",
     "transform", FFT.format(22, 2), "against_fftw", "at most", 1.0, "x its time"),
    ("Transform of 2^17 points, all cores, against FFTW",
     "transform", FFT.format(17, 2), "against_fftw", "at most", 1.5, "x its time"),
    ("Transform of 2^22 points, one thread, against the textbook loop",
     "transform", FFT.format(22, 1), "against_textbook", "at least", 7, "x faster"),
    ("Calculation, 2^22 points, nine notches, against the literal order",
     "calculation", "againstPeers/22/9", "against_literal", "at least", 5, "x faster"),
    ("The same against the numpy and scipy script",
     "calculation", "againstPeers/22/9", "against_numpy", "at least", 2, "x faster"),
    ("Curve of 61 levels and 9 notches, 2^17 points, against the numpy and scipy script",
     "curve", "curve", "against_script", "at least", 2, "x faster"),
    ("The same, against its 61 transforms alone by FFTW on both cores",
     "curve", "curveAndTransforms", "against_transforms", "at most", 1.3, "x its time"),
    ("The same, peak memory of the benchmark",
     "curve", "curve", "peak_mib", "at most", 300, "MiB"),
    ("NPR from 1 GiB of cf32, segments of 4096, against scipy.signal.welch",
     "recording", "recording", "against_scipy", "at least", 4, "x faster"),
    ("The same, largest difference of two bins",
     "recording", "recording", "worst_db", "at most", 0.05, "dB"),
    ("Peak memory of the whole program, two such calculations",
     "program", "memory", "peak_MiB", "at most", 400, "MiB"),
    ("Text files of 2^22 samples, against one Qt conversion after the other",
     "files", "writeText", "against_plain", "at least", 8, "x faster"),
    ("`.wv` of 2^22 samples, against one write of the same bytes",
     "files", "writeWv", "against_one_write", "at most", 3, "x its time"),
    ("`.wav` of 2^22 samples, against one write of the same bytes",
     "files", "writeWav", "against_one_write", "at most", 3, "x its time"),
    ("`.pmc` of 2^22 lines, 17 digits, against QTextStream and split",
     "files", "readPmc/17", "against_plain", "at least", 5, "x faster"),
    ("The same with 6 digits",
     "files", "readPmc/6", "against_plain", "at least", 5, "x faster"),
    ("Symbol block of 33554436 bytes ready to send",
     "program", "symbolBlockReady", "ms", "at most", 60, "ms"),
    ("The same received on loopback",
     "program", "symbolBlockReceived", "ms", "at most", 150, "ms"),
    ("Poll without news while a calculation runs, median",
     "program", "pollWhileCalculating", "median_ms", "at most", 1, "ms"),
    ("The same, share of polls within 1 ms",
     "program", "pollWhileCalculating", "percent_within_1_ms", "at least", 100, "%"),
    ("Start to the first painted window",
     "program", "startToFirstPaint", "ms", "at most", 400, "ms"),
    ("Window of curves, 20 results of 200 levels and 9 notches: the pointer over the lines",
     "curves", "movePointer", "cpu_time", "at most", 16, "ms"),
    ("The same, a notch switched",
     "curves", "switchNotch", "cpu_time", "at most", 16, "ms"),
    ("The same, a result switched",
     "curves", "switchResult", "cpu_time", "at most", 16, "ms"),
    ("The same, another result chosen",
     "curves", "chooseResult", "cpu_time", "at most", 100, "ms"),
    ("The same, a zoom, which paints everything anew",
     "curves", "zoom", "cpu_time", "at most", 100, "ms"),
    ("Window of curves, start to the first painted window",
     "curves", "startToFirstPaint", "ms", "at most", 500, "ms"),
    ("Processor time of the idle program",
     "program", "idle", "processor_us_per_s", "at most", 0, "us a second"),
]


def run_of(benchmark, name):
    return next((run for key, run in runs[benchmark].items() if key == name
                 or key.startswith(name + "/")), {})


def target_row(what, benchmark, name, counter, word, bound, unit):
    value = run_of(benchmark, name).get(counter)
    if value is None:
        return f"| {what} | {word} {bound:g} {unit} | not measured | |"
    met = value <= bound if word == "at most" else value >= bound
    return f"| {what} | {word} {bound:g} {unit} | {value:.3g} | {'yes' if met else '**no**'} |"


def series(benchmark, pattern):
    """Pairs of the number in the name and the milliseconds of the fastest turn."""
    found = ((re.fullmatch(pattern, name), run) for name, run in runs[benchmark].items())
    return sorted((int(match[1]), run["best_ms"]) for match, run in found if match)


LENGTHS = {
    "calculation, nine notches":
        series("calculation", r"calculation/exponent:(\d+)/notches:9/real_time"),
    "transform, all cores": series("transform", FFT.format(r"(\d+)", 2)),
    "transform, one thread": series("transform", FFT.format(r"(\d+)", 1)),
}
NOTCHES = {
    f"calculation, 2^{exponent} points":
        series("calculation", rf"calculation/exponent:{exponent}/notches:(\d+)/real_time")
    for exponent in (17, 22)
}


class Plot:
    """Curves over logarithmic axes."""
    WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 720, 420, 70, 20, 40, 50
    COLOURS = ["#008ed6", "#ff8f29", "#555555"]

    def __init__(self, curves, x_title, ticks):
        self.curves, self.x_title, self.ticks = curves, x_title, ticks
        places = [place for curve in curves.values() for place in curve]
        times = [milliseconds for _, milliseconds in places]
        self.x_range = self.x_of(ticks[0][0]), self.x_of(ticks[-1][0])
        self.decades = range(math.floor(math.log10(min(times))),
                             math.ceil(math.log10(max(times))) + 1)

    @staticmethod
    def x_of(value):
        return math.log2(value + 1)

    def x(self, value):
        low, high = self.x_range
        return self.LEFT + (self.x_of(value) - low) / (high - low) * (
            self.WIDTH - self.LEFT - self.RIGHT)

    def y(self, milliseconds):
        low, high = self.decades[0], self.decades[-1]
        return self.HEIGHT - self.BOTTOM - (math.log10(milliseconds) - low) / (high - low) * (
            self.HEIGHT - self.TOP - self.BOTTOM)

    def lines(self):
        yield (f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.WIDTH}" '
               f'height="{self.HEIGHT}" font-family="Arial, sans-serif" font-size="13">')
        yield '<rect width="100%" height="100%" fill="white"/>'
        bottom, right = self.HEIGHT - self.BOTTOM, self.WIDTH - self.RIGHT
        for value, label in self.ticks:
            x = self.x(value)
            yield f'<path d="M{x:.1f} {self.TOP}V{bottom}" stroke="#e0e0e0"/>'
            yield f'<text x="{x:.1f}" y="{bottom + 18}" text-anchor="middle">{label}</text>'
        for decade in self.decades:
            y = self.y(10.0 ** decade)
            yield f'<path d="M{self.LEFT} {y:.1f}H{right}" stroke="#e0e0e0"/>'
            yield (f'<text x="{self.LEFT - 6}" y="{y + 4:.1f}" text-anchor="end">'
                   f'{10.0 ** decade:g} ms</text>')
        yield (f'<text x="{(self.LEFT + right) / 2}" y="{self.HEIGHT - 8}" '
               f'text-anchor="middle">{self.x_title}</text>')
        for number, (name, curve) in enumerate(self.curves.items()):
            colour = self.COLOURS[number]
            points = " ".join(f"{self.x(n):.1f},{self.y(t):.1f}" for n, t in curve)
            yield f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="2"/>'
            yield (f'<text x="{self.LEFT + 200 * number}" y="{self.TOP - 16}" '
                   f'fill="{colour}">{name}</text>')
        yield "</svg>\n"

    def write(self, name):
        (docs / "images" / name).write_text("\n".join(self.lines()))


def by_points(curve):
    return [(2 ** exponent, milliseconds) for exponent, milliseconds in curve]


def table(curves, first):
    """One row a place, one column a curve."""
    columns = [dict(curve) for curve in curves.values()]
    yield f"| {first} | " + " | ".join(f"{name}, ms" for name in curves) + " |"
    yield "|---:|" + "---:|" * len(columns)
    for place in sorted(columns[0]):
        yield f"| {place} | " + " | ".join(f"{column[place]:.4g}" for column in columns) + " |"


def processor():
    info = pathlib.Path("/proc/cpuinfo").read_text()
    return re.search(r"model name\s*: (.*)", info)[1]


def replace(text, mark, lines):
    begin, end = f"<!-- {mark} -->\n", f"<!-- end of {mark} -->"
    head, rest = text.split(begin)
    return head + begin + "\n" + "\n".join(lines) + "\n\n" + end + rest.split(end)[1]


lengths = {name: by_points(curve) for name, curve in LENGTHS.items()}
Plot(lengths, "points", [(2 ** e, f"2^{e}") for e in range(6, 23, 2)]).write("cost_length.svg")
Plot(NOTCHES, "notches", [(n, n) for n in (0, 1, 3, 10, 30, 100, 300, 999)]).write(
    "cost_notches.svg")

context = json.loads((results / "calculation.json").read_text())["context"]
page = docs / "performance.md"
text = page.read_text()
text = replace(text, "machine", [
    f"{processor()}, {context['num_cpus']} cores, {platform.system()} on {platform.machine()}; "
    f"{context['date'][:10]}, load average at the start of the calculations "
    f"{context['load_avg'][0]:.1f}."])
text = replace(text, "targets", [
    "| what | target | measured | met |", "|---|---|---:|---|",
    *(target_row(*target) for target in TARGETS)])
text = replace(text, "lengths", list(table(lengths, "points")))
text = replace(text, "notches", list(table(NOTCHES, "notches")))
page.write_text(text)
