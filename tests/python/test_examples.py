"""The examples run, do what they say, and stay short."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import notchbench
from conftest import ROOT, SIGNAL

EXAMPLES = sorted((ROOT / "examples").glob("*.py"))


@pytest.fixture
def environment(program: str) -> dict[str, str]:
    """As after an installation: the program is found, and the module."""
    path = str(Path(program).parent) + os.pathsep + os.environ["PATH"]
    return {**os.environ, "PATH": path, "PYTHONPATH": str(ROOT / "python")}


def run(environment: dict[str, str], name: str, *words: object) -> str:
    command = [sys.executable, str(ROOT / "examples" / name), *map(str, words)]
    return subprocess.run(
        command, env=environment, stdout=subprocess.PIPE, text=True, check=True
    ).stdout


@pytest.mark.parametrize("example", EXAMPLES, ids=[path.name for path in EXAMPLES])
def test_an_example_is_shorter_than_25_lines(example: Path) -> None:
    assert len(example.read_text(encoding="utf-8").splitlines()) < 25
    assert os.access(example, os.X_OK)


def test_the_signal_fills_the_words_of_a_player(environment: dict[str, str], port: int) -> None:
    told = run(environment, "fetch_for_player.py", port, "n.iq")
    assert told == "loop 16384 samples at 5e+07 Hz\n"
    words = np.fromfile("n.iq", "<i2")
    assert words.shape == (2 * 16384,) and np.abs(words).max() == 32767
    parts = notchbench.fetch_signal(port=port).samples.view(np.float32).astype(float)
    step = np.abs(parts).max() / 32767
    assert np.abs(words * step - parts).max() < 0.51 * step  # scaled in single precision


def test_a_curve_is_a_table(environment: dict[str, str]) -> None:
    """Ten bits gain a decibel a decibel, until they clip."""
    lines = run(environment, "curve_table.py").splitlines()
    assert lines[0].split() == ["dBm", "-20.0", "MHz", "0.0", "MHz", "20.0", "MHz"]
    table = np.array([re.findall(r"-?\d+\.\d+", line) for line in lines[1:12]], dtype=float)
    assert table[:, 0].tolist() == list(range(-40, 1, 4))
    assert np.all(np.abs(table[4, 1:] - table[0, 1:] - 16.0) < 1.0)
    assert np.all(table[-1, 1:] < 20.0)
    best = [float(line.split()[-2]) for line in lines[12:]]
    assert len(best) == 3 and min(best) > table[:, 1:].max() - 1.0


def test_a_recording_reads_as_what_fills_its_notches(
    environment: dict[str, str], program: str
) -> None:
    """A converter whose steps lie far below the signal adds noise of step^2 / 12 to each part."""
    subprocess.run([program, "signal", *SIGNAL, "--out", "sent", "--format", "npy"], check=True)
    sent = np.load("sent.npy").astype(complex)
    step = 0.02
    rounded = step * (np.round(sent.real / step) + 1j * np.round(sent.imag / step))
    np.save("recorded.npy", rounded.astype(np.complex64))
    lines = run(environment, "npr_of_recording.py", SIGNAL[0], "recorded.npy", *SIGNAL[1:],
                "--rate", 5e7).splitlines()
    assert [float(line.split()[0]) for line in lines[:3]] == pytest.approx([-10, 0, 10], abs=0.01)
    band = 0.8 - 3 * 2e6 / 5e7  # the share of the rate that the signal fills
    noise = 2 * step**2 / 12
    expected = 10 * np.log10(np.mean(np.abs(sent) ** 2) / band / noise)
    for line in lines[:3]:
        npr, within = (float(number) for number in re.findall(r"([\d.]+) dB", line))
        assert abs(npr - expected) < 2 * within and within < 0.6
    assert lines[3].endswith(" dBFS, by whole periods")
