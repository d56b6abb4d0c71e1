#!/usr/bin/python3
"""The power density of a cf32 recording by scipy.signal.welch, with the window and the overlap of
the program's own: segments of 4096, a third of a segment from one to the next. Writes the densities
as doubles into the second argument and prints the seconds, reading included."""
import sys
import time

import numpy
import scipy.signal

begin = time.perf_counter()
samples = numpy.fromfile(sys.argv[1], dtype="<c8")
length = 4096
_, density = scipy.signal.welch(
    samples, fs=1e8, window=("kaiser", 16.0), nperseg=length, noverlap=length - length // 3,
    detrend=False, return_onesided=False)
print(time.perf_counter() - begin)
density.astype("<f8").tofile(sys.argv[2])
