#!/usr/bin/python3
"""The steps of a curve as one would write them with numpy and scipy: a signal with nine notches,
interpolated four times, at 61 levels through a Rapp device, the distortion's concentration, the
spectrum with two workers, and the ratio of reference and notch channel of each notch. Prints the
seconds of the fastest of as many runs as the first argument says (3)."""
import sys
import time

import numpy
import scipy.fft

runs = int(sys.argv[1]) if len(sys.argv) > 1 else 3
n, rate, oversampling = 131072, 100e6, 4
half = n // 2
width = 1e6
centers = [(i / 10 - 0.5) * 0.8 * rate for i in range(1, 10)]


def lines(center):
    spacing = rate / n
    first = int(numpy.ceil((center - 0.375 * width) / spacing))
    last = int(numpy.ceil((center + 0.375 * width) / spacing))
    return numpy.arange(first, last)


def stimulus(random):
    magnitude = numpy.ones(n)
    magnitude[: int(half - half * 0.8) + 1] *= 10**-5.25
    magnitude[int(half + half * 0.8) :] *= 10**-5.25
    for center in centers:
        start = half + int((center - width / 2) / rate * n)
        stop = half + int((center + width / 2) / rate * n)
        magnitude[start : stop + 1] *= 1e-5
    phase = random.integers(0, 32768, n) * (2 * numpy.pi / 32768) - numpy.pi
    spectrum = numpy.zeros(oversampling * n, dtype=complex)
    spectrum[: n] = magnitude * numpy.exp(1j * phase)
    spectrum = numpy.roll(spectrum, -half)
    samples = scipy.fft.ifft(spectrum, workers=2)
    return samples / numpy.sqrt(numpy.mean(numpy.abs(samples) ** 2))


def curve(random):
    x = stimulus(random)
    channels = []
    for center in centers:
        spacing = -1.2 * width if center >= 0 else 1.2 * width
        channels.append((lines(center + spacing), lines(center)))
    ratios = []
    for level in numpy.arange(-30, 0.25, 0.5):
        driven = 10 ** (level / 20) * x
        power = driven.real**2 + driven.imag**2
        y = driven * (1 + power**2) ** -0.25
        gain = numpy.vdot(driven, y) / numpy.vdot(driven, driven)
        error = numpy.abs(y - gain * driven) ** 2
        blocks = error.reshape(-1, 4 * oversampling).sum(axis=1)
        concentration = (blocks**2).sum() / blocks.sum() ** 2
        spectrum = scipy.fft.fft(y, workers=2)
        for reference, notch in channels:
            ratio = (numpy.abs(spectrum[reference]) ** 2).sum() / (numpy.abs(spectrum[notch]) ** 2).sum()
            sigma = 4.34 * numpy.sqrt(1 / len(notch) + concentration)
            ratios.append((10 * numpy.log10(ratio - 1), sigma))
    return ratios


best = float("inf")
for _ in range(runs):
    begin = time.perf_counter()
    curve(numpy.random.default_rng(1))
    best = min(best, time.perf_counter() - begin)
print(best)
