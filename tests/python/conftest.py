"""What the tests share: the built program, serving too, and a place to work."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path
from typing import Iterator

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))

SIGNAL = ["default", "--notches", "3,2e6,-100,0", "--set", "NPR/FFT Len=16384"]
SIGNAL += ["--set", "NPR/NBW/SRate=0.8", "--set", "NPR/SRate=5e7"]


@pytest.fixture
def program() -> str:
    """The path of notchbench-cli."""
    return os.environ["NOTCHBENCH_CLI"]


@pytest.fixture(autouse=True)
def folder(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    """An empty folder to work in."""
    monkeypatch.chdir(tmp_path)
    return tmp_path


@pytest.fixture
def port(program: str) -> Iterator[int]:
    """That of a bench that serves SIGNAL."""
    with subprocess.Popen(
        [program, "serve", *SIGNAL, "--port", "0"], stdout=subprocess.PIPE, text=True
    ) as bench:
        try:
            assert bench.stdout is not None
            line = bench.stdout.readline()
            told = re.fullmatch(r"serving 16384 samples at 50000000 Hz on port (\d+)\n", line)
            assert told, line
            yield int(told[1])
        finally:
            bench.terminate()
