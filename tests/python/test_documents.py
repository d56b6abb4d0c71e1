"""The code that documents show runs as it stands, but for the port."""

from __future__ import annotations

import html
import json
import os
import re
from pathlib import Path
from typing import Any

import pytest

import notchbench
from conftest import ROOT


def indented_code(text: str) -> list[str]:
    """That of the section about Python in Markdown."""
    section = text.split("\n## From Python\n")[1].split("\n## ")[0]
    return ["\n".join(re.findall(r"^    (.*)$", section, re.MULTILINE))]


def preformatted_code(text: str) -> list[str]:
    return [html.unescape(code) for code in re.findall(r"<pre>(.*?)</pre>", text, re.DOTALL)]


@pytest.fixture
def bench(folder: Path, program: str, monkeypatch: pytest.MonkeyPatch) -> None:
    """bench.cfg, device.json and a notchbench-cli that simulates where it isn't told to."""
    (folder / "bench.cfg").write_text("[NPR]\nFFT Len = 16384\nNBW/SRate = 0.8\n")
    stand_in = folder / "notchbench-cli"
    stand_in.write_text(
        '#!/bin/sh\n'
        'case "$*" in *--simulate*) ;; *) set -- "$@" --simulate adc,bits=8,full-scale=0 ;; esac\n'
        f'exec {program} "$@" --notches 3,2e6,-100,0\n'
    )
    stand_in.chmod(0o755)
    monkeypatch.setenv("PATH", str(folder) + os.pathsep + os.environ["PATH"])
    notchbench.run("measure", "bench.cfg", "--json", "device.json")


@pytest.mark.parametrize(
    ("document", "code_of"),
    [("README.md", indented_code), ("docs/manual/python.html", preformatted_code)],
)
def test_code_of_a_document_runs(
    document: str, code_of: Any, port: int, bench: None, capsys: pytest.CaptureFixture[str]
) -> None:
    names: dict[str, Any] = {}
    for code in code_of((ROOT / document).read_text(encoding="utf-8")):
        exec(code.replace("10000", str(port)), names)
    assert len(names["signal"].samples) == 16384
    assert len(names["result"].points) >= 3
    assert "[" in capsys.readouterr().out  # the arrays that are printed


def test_a_result_is_read_as_the_manual_shows_without_the_module(
    bench: None, capsys: pytest.CaptureFixture[str]
) -> None:
    page = (ROOT / "docs/manual/results.html").read_text(encoding="utf-8")
    (code,) = preformatted_code(page)
    exec(code, {})
    shown = [[float(number) for number in line.split()] for line in capsys.readouterr().out.splitlines()]
    points = notchbench.read_result("device.json").points
    assert shown == [list(row) for row in zip(points.level_dbm, points.notch, points.npr_db)]


def test_the_manual_explains_every_member_of_a_point() -> None:
    schema = json.loads((ROOT / "docs/result.schema.json").read_text(encoding="utf-8"))
    page = (ROOT / "docs/manual/results.html").read_text(encoding="utf-8")
    members = schema["properties"]["points"]["items"]["properties"]
    assert "npr_db" in members
    explained = set(re.findall(r"\w+", " ".join(re.findall(r"<tr><td>(.*?)</td>", page))))
    assert {re.sub("_dbfs$", "_dbm", name) for name in members} <= explained
