#!/usr/bin/env python3
"""Fetch the signal of a running bench and write it for a player that loops 16-bit I and Q.

    fetch_for_player.py PORT FILE
"""
import sys

import numpy as np

import notchbench

port, path = int(sys.argv[1]), sys.argv[2]
signal = notchbench.fetch_signal(port=port)
words = signal.samples.view(np.float32)  # I and Q in turn
full_scale = 32767 / np.abs(words).max()
np.round(words * full_scale).astype("<i2").tofile(path)
print(f"loop {len(signal.samples)} samples at {signal.sample_rate:g} Hz")
