#!/usr/bin/python3
"""The steps of a calculation as one would write them with numpy and scipy: random phases, flat
magnitudes with skirts and nine notches, the spectrum, its inverse transform with two workers and
the crest factor. Prints the seconds of the fastest of as many runs as the first argument says, for
the length of the second."""
import sys
import time

import numpy
import scipy.fft

runs, n = int(sys.argv[1]), int(sys.argv[2])
half = n // 2


def calculate(random):
    phase = random.integers(0, 32768, n) * (2 * numpy.pi / 32768) - numpy.pi
    magnitude = numpy.ones(n)
    magnitude[: int(half - half * 0.8) + 1] *= 10**-5.25
    magnitude[int(half + half * 0.8) :] *= 10**-5.25
    for row in range(-4, 5):
        start = half + row * (n // 42)
        magnitude[start : start + n // 200 + 1] *= 10 ** (-60 * 0.05)
    spectrum = scipy.fft.ifftshift(magnitude * numpy.exp(1j * phase))
    samples = scipy.fft.ifft(spectrum, norm="ortho", workers=2, overwrite_x=True)
    envelope = numpy.abs(samples)
    return 20 * numpy.log10(envelope.max() / numpy.sqrt(numpy.mean(envelope**2)))


best = float("inf")
for _ in range(runs):
    begin = time.perf_counter()
    calculate(numpy.random.default_rng(1))
    best = min(best, time.perf_counter() - begin)
print(best)
