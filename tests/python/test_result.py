"""Results: read from files, and measured by the built program."""

from __future__ import annotations

import csv
import json
import math
import os
import signal
import subprocess
import sys
from pathlib import Path
from typing import Any

import numpy as np
import pytest

import notchbench
from conftest import ROOT, SIGNAL

CURVE = [*SIGNAL, "--simulate", "adc,bits=8,full-scale=0", "--levels", "-30:-18:6"]


def point(**changes: Any) -> dict[str, Any]:
    return {
        "level_dbm": -20,
        "notch": 1,
        "center_hz": -3.2e7,
        "width_hz": 1e6,
        "power_dbm": -39.78,
        "npr_db": 54.0,
        "sigma_db": 0.12,
        "evm_percent": 0.2,
        "marks": [],
        "passed": None,
        **changes,
    }


def write(points: Any, **changes: Any) -> str:
    document = {"format": "notchbench-npr", "version": 1, "points": points, **changes}
    Path("r.json").write_text(json.dumps(document), encoding="utf-8")
    return "r.json"


def test_members_of_points_become_arrays() -> None:
    result = notchbench.read_result(
        write([point(), point(notch=2, npr_db=None, sigma_db=None, marks=["below-zero", "margin"])])
    )
    points = result.points
    assert len(points) == 2
    assert points.notch.tolist() == [1, 2] and points.notch.dtype == np.int64
    assert points.npr_db[0] == 54.0 and math.isnan(points.npr_db[1])
    assert points.sigma_db[0] == 0.12 and math.isnan(points.sigma_db[1])
    for column in ("level_dbm", "center_hz", "width_hz", "power_dbm", "evm_percent"):
        values = getattr(points, column)
        assert values.dtype == np.float64 and values.tolist() == [point()[column]] * 2
    assert points.marks == ((), ("below-zero", "margin"))
    assert result.document["version"] == 1


def test_a_curve_is_one_notch_by_rising_level() -> None:
    levels = [(-10, 2), (-10, 1), (-20, 2), (-20, 1), (-30, 2)]
    rows = [point(level_dbm=level, notch=notch, npr_db=-level) for level, notch in levels]
    result = notchbench.read_result(write(rows))
    assert result.notches == [1, 2]
    assert result.curve(2).level_dbm.tolist() == [-30, -20, -10]
    assert result.curve(2).npr_db.tolist() == [30, 20, 10]
    assert result.curve(1).level_dbm.tolist() == [-20, -10]
    assert len(result.curve(3)) == 0


def test_levels_of_recordings_are_in_decibels_of_full_scale() -> None:
    rows = [point(level_dbfs=level, power_dbfs=level - 15) for level in (-6, -12)]
    for row in rows:
        del row["level_dbm"], row["power_dbm"]
    curve = notchbench.read_result(write(rows)).curve(1)
    assert curve.level_dbfs.tolist() == [-12, -6]
    assert curve.power_dbfs.tolist() == [-27, -21]
    assert np.isnan(curve.level_dbm).all() and np.isnan(curve.power_dbm).all()


@pytest.mark.parametrize(
    ("passed", "verdict"),
    [((None, None), None), ((True, True), True), ((True, False), False), ((), None)],
)
def test_the_verdict_is_that_of_all_points(passed: tuple[Any, ...], verdict: Any) -> None:
    rows = [point(passed=each) for each in passed]
    assert notchbench.read_result(write(rows)).passed is verdict


def test_members_that_are_not_known_are_passed_over_and_missing_numbers_are_nan() -> None:
    row = point(colour="blue")
    del row["level_dbm"]
    result = notchbench.read_result(write([row], more={}))
    assert math.isnan(result.points.level_dbm[0]) and math.isnan(result.points.level_dbfs[0])


@pytest.mark.parametrize(
    ("text", "why"),
    [
        ("level,notch\n", "no JSON"),
        ("[]", "no result"),
        ('{"format": "other"}', "no result"),
        ('{"format": "notchbench-npr", "version": 2}', "version 2"),
        ('{"format": "notchbench-npr", "version": 1}', "points that are none"),
        ('{"format": "notchbench-npr", "version": 1, "points": [1]}', "points that are none"),
        (b"\xff\xfe", "no JSON"),
    ],
)
def test_what_is_no_result_is_refused(text: Any, why: str) -> None:
    Path("r.json").write_bytes(text if isinstance(text, bytes) else text.encode())
    with pytest.raises(notchbench.ResultError, match=why):
        notchbench.read_result("r.json")


def test_a_file_that_is_not_there_is_an_error_of_the_system() -> None:
    with pytest.raises(FileNotFoundError):
        notchbench.read_result("none.json")


def test_a_converter_below_clipping_gains_a_decibel_of_npr_for_each_of_level(program: str) -> None:
    result = notchbench.run("curve", *CURVE, "--csv", "c.csv", program=program)
    assert result.notches == [1, 2, 3] and result.passed is None
    assert result.document["bench"]["simulated"] == "adc,bits=8,full-scale=0"
    for notch in result.notches:
        curve = result.curve(notch)
        assert curve.level_dbm.tolist() == [-30, -24, -18]
        off = np.diff(curve.npr_db - curve.level_dbm)
        assert np.all(np.abs(off) < 4.0 * math.sqrt(2.0) * curve.sigma_db.max())
        assert np.allclose(curve.evm_percent, 100.0 * 10.0 ** (-curve.npr_db / 20.0))
    with open("c.csv", newline="", encoding="utf-8") as file:
        rows = list(csv.DictReader(file))
    assert [float(row["npr_db"]) for row in rows] == pytest.approx(result.points.npr_db.tolist())


def test_a_signal_is_a_result_without_points(program: str) -> None:
    result = notchbench.run("signal", *SIGNAL, program=program)
    assert result.document["signal"]["length"] == 16384
    assert len(result.points) == 0 and result.notches == []


def test_a_missed_limit_is_a_result(program: str) -> None:
    result = notchbench.run("curve", *CURVE, "--limit", 25, program=program)
    assert result.passed is False
    assert [level >= -24 for level in result.points.level_dbm] == list(result.points.passed)


def test_what_the_program_says_is_kept(program: str) -> None:
    words = ["curve", *CURVE, "--set", "NPR/Phase Mode=2"]
    result = notchbench.run(*words, program=program)
    assert any("isn't noise-like" in message for message in result.messages)
    assert all("not-noise-like" in marks for marks in result.points.marks)


@pytest.mark.parametrize(
    ("words", "status", "message"),
    [
        (["curve", "default", "--simulate", "linear"], 2, "levels"),
        (["measure", "none.cfg", "--simulate", "linear"], 3, "none.cfg"),
        (["nonsense"], 2, "nonsense"),
    ],
)
def test_a_failure_tells_status_and_message(
    program: str, words: list[str], status: int, message: str
) -> None:
    with pytest.raises(notchbench.ProgramError, match=message) as failure:
        notchbench.run(*words, program=program)
    assert failure.value.status == status
    assert failure.value.messages and failure.value.result is None


def test_a_program_that_is_not_there_is_an_error_of_the_system() -> None:
    with pytest.raises(FileNotFoundError):
        notchbench.run("curve", program="/none/notchbench-cli")


def test_what_was_measured_before_a_failure_is_kept(folder: Path) -> None:
    """An instrument that fails later than the first point, by a program in its place."""
    write([point()])
    stub = folder / "stub"
    stub.write_text(
        '#!/bin/sh\nfor last; do :; done\ncp r.json "$last"\necho "analyzer: gone" >&2\nexit 4\n'
    )
    stub.chmod(0o755)
    with pytest.raises(notchbench.ProgramError, match="analyzer: gone") as failure:
        notchbench.run("curve", program=stub)
    assert failure.value.status == 4
    assert failure.value.result is not None
    assert failure.value.result.points.npr_db.tolist() == [54.0]


def test_interrupt_waits_until_the_program_has_turned_the_bench_down(folder: Path) -> None:
    """A terminal's Ctrl+C goes to all programs of a session, and a second one would end the program
    at once: so it has a session of its own, and is told. A program in its place speaks through a
    pipe.
    """
    stub = folder / "stub"
    stub.write_text(
        f"#!{sys.executable}\n"
        "import os, signal, sys\n"
        "signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGINT})\n"
        "pipe = open('pipe', 'w')\n"
        "alone = os.getsid(0) == os.getpid()\n"
        "print('alone' if alone else 'with its caller', file=pipe, flush=True)\n"
        "told = signal.sigtimedwait({signal.SIGINT}, 30)\n"
        "print('turned down' if told else 'not told', file=pipe)\n"
        "sys.exit(130)\n"
    )
    stub.chmod(0o755)
    os.mkfifo("pipe")
    caller = subprocess.Popen(
        [sys.executable, "-c", "import notchbench; notchbench.run('curve', program='./stub')"],
        env={**os.environ, "PYTHONPATH": str(ROOT / "python")},
        stderr=subprocess.PIPE,
        start_new_session=True,
    )
    with caller, open("pipe", encoding="ascii") as pipe:
        lines = [pipe.readline()]
        os.killpg(caller.pid, signal.SIGINT)
        lines.append(pipe.readline())
        _, errors = caller.communicate()
    assert lines == ["alone\n", "turned down\n"]
    assert b"KeyboardInterrupt" in errors
    assert caller.returncode == -signal.SIGINT
