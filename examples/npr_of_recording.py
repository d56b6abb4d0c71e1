#!/usr/bin/env python3
"""NPR of a recording of a device's output, in the notches of a configuration.

    npr_of_recording.py CONFIG RECORDING [OPTIONS of notchbench-cli analyze]
"""
import sys

import notchbench

config, recording, *options = sys.argv[1:]
result = notchbench.run("analyze", config, recording, *options)
points = result.points
for frequency, npr, sigma in zip(points.center_hz, points.npr_db, points.sigma_db):
    print(f"{frequency / 1e6:8.2f} MHz {npr:7.2f} dB, to within {2 * sigma:.2f} dB")
read_as = result.document["recordings"][0]
print(f"{read_as['level_dbfs']:.1f} dBFS, by {read_as['way'].replace('-', ' ')}")
