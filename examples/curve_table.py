#!/usr/bin/env python3
"""Measure NPR over levels on a simulated converter and print it as a table, a column a notch."""
import notchbench

result = notchbench.run(
    "curve", "default", "--notches", "3,2e6,-100,0", "--set", "NPR/NBW/SRate=0.8",
    "--simulate", "adc,bits=10,full-scale=0", "--levels", "-40:0:4",
)
curves = [result.curve(notch) for notch in result.notches]
print("dBm   ", *(f"{curve.center_hz[0] / 1e6:8.1f} MHz" for curve in curves))
for row, level in enumerate(curves[0].level_dbm):
    print(f"{level:6.1f}", *(f"{curve.npr_db[row]:9.2f} dB" for curve in curves))
for curve, summary in zip(curves, result.document["curves"]):
    print(f"notch {summary['notch']}: at best {summary['peak_npr_db']:.1f} dB")
