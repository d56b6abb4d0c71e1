#!/usr/bin/env python3
"""Draws the pictures of docs/architecture.md: the way of one action through the floors.

Each way is text: a room, what happens there, and behind a bar on which thread. A room is a column,
in the order of the floors; a step is a box in it, and an arrow leads from step to step.

    docs/draw_ways.py            writes docs/images/way_*.svg
    docs/draw_ways.py --check    fails when they are of another text than this one, and when a room
                                 doesn't know a name or stands on another floor
"""
import re
import sys
from pathlib import Path

WAYS = {
    "way_calculate": """
        app         on_calc_fft_button_clicked
        setup       forOtherThread
        base        inBackground
        signal      calculateSignal | worker
        signal      finishSpectrum | worker
        transform   inverseTransform | worker
        base        CallHome | worker
        app         storeResult
        app         fftCalculationFinished
        setup       setDataState
        app         notifyPropertyChanged
    """,
    "way_preset": """
        app          on_preset_button_clicked
        measurement  presetInBackground
        instruments  InstrumentLink
        base         WorkerThreads
        measurement  presetInstruments | worker
        instruments  connectDevice | worker
        remote       KORemoteInterface | worker
        instruments  configureDevice | worker
        remote       GeneratorCommands | worker
        remote       presetChannelPower | worker
        app          FailureDoor | worker
        app          connectRemoteFailure | worker
    """,
    "way_curve": """
        cli          curveCommand
        setup        configOf
        signal       calculateSignal
        campaign     Campaign
        base         inBackground
        campaign     runCampaign | worker
        campaign     SimulatedBench | worker
        dut          LevelSweep | worker
        campaign     PointSums | worker
        base         CallHome | worker
        campaign     curvesOf
        cli          putOut
        chart        saveChart
    """,
}

# From high to low, as in src/CMakeLists.txt read from its end.
FLOORS = ["cli", "app", "chart", "campaign", "status", "measurement", "signal", "files", "setup",
          "instruments", "remote", "dut", "transform", "base"]

ROOT = Path(__file__).resolve().parent.parent
IMAGES = ROOT / "docs/images"
COLUMN, ROW, TOP, BOX, HALF = 128, 34, 34, 24, 92


def steps_of(text):
    for line in text.strip().splitlines():
        step, _, thread = line.partition("|")
        room, name = step.split()
        yield room, name, thread.strip() == "worker"


def drawing(text):
    steps = list(steps_of(text))
    rooms = [room for room in FLOORS if room in {step[0] for step in steps}]
    width, height = COLUMN * len(rooms) + 2 * (HALF - COLUMN // 2) + 8, TOP + ROW * len(steps) + 28
    column = {room: HALF + 4 + COLUMN * place for place, room in enumerate(rooms)}
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
        f'width="{width}" height="{height}" font-family="sans-serif" font-size="11">',
        f'<rect width="{width}" height="{height}" fill="#ffffff"/>',
    ]
    for room, x in column.items():
        lines.append(f'<text x="{x}" y="18" text-anchor="middle" font-weight="bold">{room}</text>')
        lines.append(f'<line x1="{x}" y1="26" x2="{x}" y2="{height - 24}" stroke="#d0d0d0"/>')
    middle = [TOP + ROW * place + BOX // 2 for place in range(len(steps))]
    for place in range(1, len(steps)):
        lines.append(
            f'<line x1="{column[steps[place - 1][0]]}" y1="{middle[place - 1]}" '
            f'x2="{column[steps[place][0]]}" y2="{middle[place]}" stroke="#606060"/>')
    for (room, name, on_worker), y in zip(steps, middle):
        fill = "#ffe9c7" if on_worker else "#dbe9f9"
        lines.append(f'<rect x="{column[room] - HALF}" y="{y - BOX // 2}" width="{2 * HALF}" '
                     f'height="{BOX}" rx="4" fill="{fill}" stroke="#606060"/>')
        lines.append(f'<text x="{column[room]}" y="{y + 4}" text-anchor="middle">{name}</text>')
    lines.append(f'<text x="8" y="{height - 8}">from top to bottom; '
                 'blue: main thread, yellow: a worker thread</text>')
    return "\n".join(lines) + "\n</svg>\n"


def strangers():
    """Steps whose name no file of their room has."""
    for text in WAYS.values():
        for room, name, _ in steps_of(text):
            files = [*(ROOT / "src" / room).glob("*.h"), *(ROOT / "src" / room).glob("*.cpp")]
            if not any(re.search(rf"\b{name}\b", file.read_text("utf-8")) for file in files):
                yield f"{name} isn't in src/{room}"


def objections():
    rooms = re.findall(r"add_subdirectory\((\w+)\)", (ROOT / "src/CMakeLists.txt").read_text("utf-8"))
    high_to_low = [room for room in reversed(rooms) if room in FLOORS]
    if high_to_low != FLOORS:
        yield f"the floors are {high_to_low}"
    yield from strangers()
    for name, text in WAYS.items():
        path = IMAGES / f"{name}.svg"
        if not path.exists() or path.read_text("utf-8") != drawing(text):
            yield f"{path.name} is of another text: run docs/draw_ways.py"


def main(arguments):
    if arguments == ["--check"]:
        sys.exit("\n".join(objections()) or 0)
    for name, text in WAYS.items():
        (IMAGES / f"{name}.svg").write_text(drawing(text), "utf-8")


main(sys.argv[1:])
