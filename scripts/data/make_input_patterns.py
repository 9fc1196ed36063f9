#!/usr/bin/env python3
"""Writes the small made-up patterns of the engine-input tests (tests/data/engine/input):
three Gaussian peaks on a sloping background, 20 to 26 degrees two-theta in steps of 0.02,
as pattern.xy (two-theta, intensity) and pattern.epf (with sqrt(I) as esd)."""
import math
import pathlib

OUT = pathlib.Path(__file__).resolve().parents[2] / "tests/data/engine/input"
PEAKS = ((900, 21.3, 0.08), (400, 23.05, 0.09), (650, 25.2, 0.1))


def intensity(t):
    return 120 - 2.0 * (t - 20) + sum(a * math.exp(-((t - c) / w) ** 2) for a, c, w in PEAKS)


with open(OUT / "pattern.xy", "w") as xy, open(OUT / "pattern.epf", "w") as epf:
    for i in range(301):
        t = 20 + 0.02 * i
        v = intensity(t)
        xy.write(f"{t:.2f} {v:.1f}\n")
        epf.write(f"{t:.2f} {v:.1f} {math.sqrt(v):.2f}\n")
