#!/usr/bin/python3
"""Measures a curve of each simulated device with notchbench-cli and writes it beside its theory into
docs/physics.md, between the marks. Arguments: the program, the page. Status 1 when a point lies further
from theory than 0.1 dB and three of its sigmas."""
import json
import pathlib
import subprocess
import sys

program, page = sys.argv[1], pathlib.Path(sys.argv[2])

# What stands in the table, device, levels in dBm, readings per point. Saturation and full scale are 0 dBm.
CURVES = [
    ("Rapp 1", "rapp,saturation=0,smoothness=1", "-12:0:3", 4),
    ("Rapp 2", "rapp,saturation=0", "-12:0:3", 4),
    ("soft limiter", "soft,saturation=0", "-9:0:3", 16),
    ("Saleh", "saleh,saturation=0", "-20:-5:5", 4),
    ("cubic, intercept 20 dBm", "cubic,intercept=20", "-10:10:5", 4),
    ("the same, noise floor -120 dBm/Hz", "cubic,intercept=20,noise-floor=-120", "-10:6:4", 4),
    ("8 bits", "adc,bits=8,full-scale=0", "-35:-5:5", 4),
    ("10 bits", "adc,bits=10,full-scale=0", "-35:-5:5", 4),
    ("12 bits", "adc,bits=12,full-scale=0", "-35:-5:5", 16),
    ("14 bits", "adc,bits=14,full-scale=0", "-35:-5:5", 16),
]
NOTCHES = ["--notches", "1,1e6,-100,0", "--set", "NPR/NBW/SRate=1"]


def rows(name, device, levels, averages):
    result = "curve-table.json"
    table = subprocess.run(
        [program, "curve", "default", *NOTCHES, "--simulate", device, "--theory", "same",
         "--levels", levels, "--average", str(averages), "--json", result],
        check=True, capture_output=True, text=True).stdout.splitlines()
    theory_column = table[0].split().index("theory/dB")
    points = json.loads(pathlib.Path(result).read_text())["points"]
    pathlib.Path(result).unlink()
    for point, line in zip(points, table[1:]):
        theory = float(line.split()[theory_column])
        difference = point["npr_db"] - theory
        holds = abs(difference) <= 0.1 + 3 * point["sigma_db"]
        yield holds, (f"| {name} | {point['level_dbm']:g} | {averages} | {point['npr_db']:.2f} | "
                      f"{theory:.2f} | {difference:+.2f} | {point['sigma_db']:.2f} | "
                      f"{' '.join(point['marks'])} |")


lines, failures = [], 0
for curve in CURVES:
    for holds, line in rows(*curve):
        lines.append(line)
        failures += not holds
        if not holds:
            print("does not hold:", line)
print(len(lines), "points of curves,", failures, "of them outside what is allowed")

begin, end = "<!-- curves -->\n", "<!-- end of curves -->\n"
head, rest = page.read_text().split(begin)
heading = ["| device | level dBm | readings | measured dB | theory dB | difference | sigma | marks |",
           "|---|---|---|---|---|---|---|---|"]
page.write_text(head + begin + "\n".join(heading + lines) + "\n" + end + rest.split(end)[1])
sys.exit(failures > 0)
