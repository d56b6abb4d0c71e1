#!/usr/bin/env python3
"""Makes signal input files: make_signal_inputs.py LENGTH FOLDER

FOLDER/signal.pmc     LENGTH spectral lines of magnitude 1 and pseudo-random phase
FOLDER/i.wav, q.wav   LENGTH words each, pseudo-random 14-bit samples in offset binary
"""
import math
import struct
import sys


def uniform(seed):
    state = seed
    while True:
        state = (state * 1103515245 + 12345) % 2**31
        yield state / 2**31


def main():
    length, folder = int(sys.argv[1]), sys.argv[2]
    phases = uniform(1)
    with open(f"{folder}/signal.pmc", "w") as out:
        out.write(f"{length}\n")
        for index in range(length):
            out.write(f"{index} {(next(phases) * 2 - 1) * math.pi:.9f} 1\n")
    for name, seed in (("i", 2), ("q", 3)):
        samples = uniform(seed)
        words = [int(next(samples) * 16384) for _ in range(length)]
        with open(f"{folder}/{name}.wav", "wb") as out:
            out.write(struct.pack(f"<{length}H", *words))


main()
