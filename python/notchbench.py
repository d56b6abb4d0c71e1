"""Notchbench from Python: signals, results and the program without a window.

    import notchbench

    signal = notchbench.fetch_signal(port=10000)    # from a running bench
    result = notchbench.run("curve", "bench.cfg", "--simulate", "adc,bits=12,full-scale=0",
                            "--levels", "-40:0:2")  # runs notchbench-cli
    result = notchbench.read_result("result.json")  # that it wrote earlier
    for notch in result.notches:
        curve = result.curve(notch)
        print(notch, curve.level_dbm[curve.npr_db.argmax()])

One file that needs Python 3.9 and NumPy, nothing else. Frequencies are in Hz, ratios in dB. What a file or a bench doesn't tell is NaN in an array of numbers.
"""

from __future__ import annotations

import json
import math
import os
import signal as signals
import socket
import struct
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path
from typing import Any, IO, Optional, Sequence, Union

import numpy as np
from numpy.typing import NDArray

__all__ = [
    "Bench",
    "BenchError",
    "Points",
    "ProgramError",
    "Result",
    "ResultError",
    "Signal",
    "fetch_signal",
    "read_result",
    "run",
]

StrPath = Union[str, "os.PathLike[str]"]
Numbers = NDArray[np.float64]


class BenchError(Exception):
    """What answers isn't a bench, or it has no signal."""


class ResultError(Exception):
    """A file isn't a result that this module can read."""


class ProgramError(Exception):
    """notchbench-cli failed.

    status is its exit status: 2 wrong usage, 3 a file or the signal, 4 an instrument; negative for
    one that a signal ended. messages are its lines on standard error. result is what was measured
    until then, or None.
    """

    def __init__(self, status: int, messages: Sequence[str], result: Optional[Result]) -> None:
        super().__init__("\n".join(messages) or f"notchbench-cli ended with status {status}")
        self.status = status
        self.messages = list(messages)
        self.result = result


# Signals


@dataclass(frozen=True)
class Signal:
    """One period of the complex baseband signal.

    samples has shape (N,) and isn't scaled. sample_rate is in Hz, as single precision tells it.
    """

    samples: NDArray[np.complex64]
    sample_rate: float


class Bench:
    """A connection to a running bench, the window's or that of "notchbench-cli serve".

    A bench serves one client at a time, the newest. Every operation raises OSError when the bench
    isn't there, or is silent for longer than timeout (in seconds), and BenchError when what comes
    isn't its protocol. To be used in a with statement, or closed with close().
    """

    _IDENTITY = struct.pack("<I96s", 4, b"Noise Power Ratio")
    _RATE, _LENGTH, _SYMBOLS, _NEWS = 0, 1, 2, 3  # tags
    _LONGEST = 8 * 2**26 + len(_IDENTITY)  # bytes of the longest signal, and of the next answer

    def __init__(self, host: str = "localhost", port: int = 1000, timeout: float = 10.0) -> None:
        self._socket = socket.create_connection((host, port), timeout)
        try:
            for tag in (self._NEWS, self._LENGTH, self._RATE):
                self._record(tag)
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> Bench:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """End the connection."""
        self._socket.close()

    def signal(self) -> Signal:
        """The present signal. BenchError when none was calculated."""
        self._socket.sendall(b"GetSymbolRate")
        rate = self._record(self._RATE)
        self._socket.sendall(b"GetSymbol")
        samples = self._symbols()
        if not samples.size:
            raise BenchError("the bench has no signal; calculate one there")
        return Signal(samples, rate)

    def new_signal(self) -> Optional[Signal]:
        """A signal that was calculated since this client was last told of one, or None.

        Connecting counts as being told, so fetch the first one with signal().
        """
        self._socket.sendall(b"GetNewState")
        if self._record(self._NEWS) == 0.0:
            return None
        rate = self._record(self._RATE)
        self._record(self._LENGTH)
        return Signal(self._symbols(), rate)

    def _take(self, size: int) -> bytes:
        taken = bytearray()
        while len(taken) < size:
            piece = self._socket.recv(size - len(taken))
            if not piece:
                raise BenchError("the bench closed the connection")
            taken += piece
        return bytes(taken)

    def _record(self, expected: int) -> float:
        tag, value = struct.unpack("<If", self._take(8))
        if tag != expected:
            raise BenchError(f"tag {tag} instead of {expected}: this is no bench")
        return float(value)

    def _symbols(self) -> NDArray[np.complex64]:
        """A symbol block, which doesn't tell its length: what comes before the next answer."""
        if self._take(4) != struct.pack("<I", self._SYMBOLS):
            raise BenchError("no symbols: this is no bench")
        self._socket.sendall(b"GetServerID")
        block = bytearray()
        while not block.endswith(self._IDENTITY):
            piece = self._socket.recv(1 << 20)
            if not piece:
                raise BenchError("the bench closed the connection")
            block += piece
            if len(block) > self._LONGEST:
                raise BenchError("more samples than a signal has: this is no bench")
        count, rest = divmod(len(block) - len(self._IDENTITY), 8)
        if rest:
            raise BenchError("half a sample: this is no bench")
        return np.frombuffer(block, "<c8", count).astype(np.complex64)


def fetch_signal(host: str = "localhost", port: int = 1000, timeout: float = 10.0) -> Signal:
    """The present signal of a running bench; see Bench."""
    with Bench(host, port, timeout) as bench:
        return bench.signal()


# Results


@dataclass(frozen=True)
class Points:
    """Points of a result as arrays of one length; what each means is told in the manual's page
    "Results in files".

    Levels and powers are in dBm, or in dBFS for a recording whose level nobody told; those in the
    other unit are NaN. passed holds None for points without a limit.
    """

    level_dbm: Numbers
    level_dbfs: Numbers
    notch: NDArray[np.int64]
    center_hz: Numbers
    width_hz: Numbers
    power_dbm: Numbers
    power_dbfs: Numbers
    npr_db: Numbers
    sigma_db: Numbers
    evm_percent: Numbers
    marks: tuple[tuple[str, ...], ...]
    passed: tuple[Optional[bool], ...]

    def __len__(self) -> int:
        return len(self.notch)


@dataclass(frozen=True)
class Result:
    """What notchbench-cli measured.

    document is the JSON as it stands in the file: settings, signal, bench, peaks and ranges.
    messages are what the program said on standard error, empty for a result from a file.
    """

    document: dict[str, Any]
    points: Points
    messages: tuple[str, ...] = ()

    @property
    def notches(self) -> list[int]:
        """The numbers of the notches that were measured, ascending."""
        return sorted({int(number) for number in self.points.notch})

    @property
    def passed(self) -> Optional[bool]:
        """Whether all points kept the limit; None when there was none."""
        known = [passed for passed in self.points.passed if passed is not None]
        return all(known) if known else None

    def curve(self, notch: int) -> Points:
        """The points of one notch by rising level; none for a notch that wasn't measured."""
        rows = [row for row in self.document["points"] if row["notch"] == notch]
        return _points(sorted(rows, key=_level))


def _number(row: dict[str, Any], name: str) -> float:
    value = row.get(name)
    return math.nan if value is None else float(value)


def _level(row: dict[str, Any]) -> float:
    return _number(row, "level_dbm" if "level_dbm" in row else "level_dbfs")


def _points(rows: Sequence[dict[str, Any]]) -> Points:
    def column(name: str) -> Numbers:
        return np.array([_number(row, name) for row in rows], dtype=np.float64)

    return Points(
        level_dbm=column("level_dbm"),
        level_dbfs=column("level_dbfs"),
        notch=np.array([row["notch"] for row in rows], dtype=np.int64),
        center_hz=column("center_hz"),
        width_hz=column("width_hz"),
        power_dbm=column("power_dbm"),
        power_dbfs=column("power_dbfs"),
        npr_db=column("npr_db"),
        sigma_db=column("sigma_db"),
        evm_percent=column("evm_percent"),
        marks=tuple(tuple(row["marks"]) for row in rows),
        passed=tuple(row["passed"] for row in rows),
    )


def read_result(path: StrPath) -> Result:
    """A result that "notchbench-cli ... --json FILE" wrote.

    OSError when the file can't be read, ResultError when it is none or of a later version.
    """
    try:
        document = json.loads(Path(path).read_bytes())
    except ValueError as error:
        raise ResultError(f"{os.fspath(path)} is no JSON: {error}") from error
    if not isinstance(document, dict) or document.get("format") != "notchbench-npr":
        raise ResultError(f"{os.fspath(path)} is no result of notchbench-cli")
    if document.get("version") != 1:
        raise ResultError(f"{os.fspath(path)} is of version {document.get('version')}, not 1")
    try:
        return Result(document, _points(document["points"]))
    except (AttributeError, KeyError, TypeError, ValueError) as error:
        raise ResultError(f"{os.fspath(path)} has points that are none: {error!r}") from error


# The program


def run(
    command: str,
    config: StrPath = "default",
    *arguments: object,
    program: StrPath = "notchbench-cli",
) -> Result:
    """Run a command of notchbench-cli that takes --json, and give back its result.

    config is a configuration file, or "default". arguments follow as on the command line, numbers
    as they are: run("measure", "bench.cfg", "--average", 4), run("analyze", "bench.cfg", "r.npy"). A missed limit isn't an error: see
    Result.passed. Everything else that goes wrong raises ProgramError, a program that isn't there
    OSError.

    Ctrl+C is handed on, and the program is waited for, which turns the generator down and writes
    the files that arguments name; KeyboardInterrupt follows. A second one ends it at once.
    """
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryFile() as errors:
        path = Path(folder, "result.json")
        words = [os.fspath(program), command, os.fspath(config)]
        words += [str(argument) for argument in arguments] + ["--json", str(path)]
        status = _run_to_its_end(words, errors)
        errors.seek(0)
        messages = tuple(errors.read().decode(errors="replace").splitlines())
        result = read_result(path) if path.exists() else None
    if status not in (0, 1) or result is None:
        raise ProgramError(status, messages, result)
    return Result(result.document, result.points, messages)


def _run_to_its_end(words: Sequence[str], errors: IO[bytes]) -> int:
    """The exit status.

    The program has a session of its own: of a terminal's Ctrl+C, which goes to all programs of a
    session, it hears once and from here, for a second one would end it with the generator on.
    """
    interrupted = False
    with subprocess.Popen(
        words,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=errors,
        start_new_session=True,
    ) as process:
        while process.returncode is None:
            try:
                process.wait()
            except KeyboardInterrupt:
                process.send_signal(signals.SIGINT)
                interrupted = True
    if interrupted:
        raise KeyboardInterrupt
    return process.returncode
