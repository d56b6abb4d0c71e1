"""The signal: fetched from a running bench, and read by others from the files written."""

from __future__ import annotations

import hashlib
import json
import subprocess

import numpy as np
import pytest

import notchbench
from conftest import SIGNAL


@pytest.fixture
def files(program: str) -> None:
    """n.npy, n.cf32, n.sigmf-meta and n.sigmf-data of SIGNAL."""
    formats = [word for name in ("npy", "sigmf", "cf32") for word in ("--format", name)]
    subprocess.run([program, "signal", *SIGNAL, "--out", "n", *formats], check=True)


def test_files_hold_the_samples_that_are_served_bit_for_bit(port: int, files: None) -> None:
    fetched = notchbench.fetch_signal(port=port)
    assert fetched.sample_rate == 5e7
    assert fetched.samples.dtype == np.complex64 and fetched.samples.shape == (16384,)
    array = np.load("n.npy")
    assert array.dtype == np.complex64 and array.shape == (16384,)
    served = fetched.samples.tobytes()
    assert array.tobytes() == served
    for name in ("n.cf32", "n.sigmf-data"):
        with open(name, "rb") as file:
            assert file.read() == served


def test_the_hash_of_the_metadata_is_that_of_the_data(files: None) -> None:
    with open("n.sigmf-meta", encoding="utf-8") as file:
        told = json.load(file)["global"]["core:sha512"]
    with open("n.sigmf-data", "rb") as file:
        assert hashlib.sha512(file.read()).hexdigest() == told


def test_annotations_are_the_lines_that_are_missing_from_the_spectrum(files: None) -> None:
    """Lines of 5e7 / 16384 Hz; by NumPy's transform those 100 dB down, and the band's rim."""
    with open("n.sigmf-meta", encoding="utf-8") as file:
        annotations = json.load(file)["annotations"]
    lines = np.abs(np.fft.fftshift(np.fft.fft(np.load("n.npy"))))
    offset = (np.arange(16384) - 8192) * 5e7 / 16384
    gaps = [
        (offset > note["core:freq_lower_edge"]) & (offset < note["core:freq_upper_edge"])
        for note in annotations
    ]
    assert len(gaps) == 3 and all(gap.sum() in (655, 656, 657) for gap in gaps)
    inside = np.abs(offset) < 0.39 * 5e7
    weak = lines < 1e-3 * lines.max()
    assert np.array_equal(weak & inside, np.any(gaps, axis=0))


def test_a_bench_tells_its_signal_again_and_news_once(port: int) -> None:
    with notchbench.Bench(port=port) as bench:
        first = bench.signal()
        assert bench.new_signal() is None
        assert np.array_equal(bench.signal().samples, first.samples)


def test_the_newest_client_is_served(port: int) -> None:
    with notchbench.Bench(port=port):
        assert len(notchbench.fetch_signal(port=port).samples) == 16384
