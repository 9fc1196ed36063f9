#!/usr/bin/env python3
"""Writes examples/corundum/corundum.xy: a simulated Cu K-alpha pattern of corundum made by
kalden itself from a "true" model that differs from the example project's start values
(cell, zero point, widths, scale, atom parameters), with Poisson noise of a fixed seed.

Usage: scripts/data/make_example_pattern.py [BUILD_DIR]   (default build)"""
import math
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build")

# Line replacements that turn the example project into the model the pattern comes from.
TRUE_MODEL = {
    "JOBT": "JOBT          2    4    1   -1    0    2    0    1",
    "SCAL": "SCAL       0.1200E-02     0.000",
    "CELL": "CELL        4.760200  4.760200 12.993300  90.00000  90.00000 120.00000",
    "HWTH": "HWTH         0.00000   0.00000   0.02000",
    "PKSH": "PKSH         0.60000   0.00000   0.00000",
    "BKGR": "BKGR           120.0     -20.0       8.0",
}
ATOMS = [
    "XYZ       Al     1  0.00000  0.00000  0.35220  1.00000  0.35000  3  0  0  0",
    "XYZ       O      2  0.30630  0.00000  0.25000  1.00000  0.40000  2  0  0  0",
]


def model_text():
    lines = (ROOT / "examples/corundum/corundum.rec").read_text().splitlines()
    out, atom = [], 0
    for line in lines:
        key = line[:4]
        if key == "XYZ ":
            line, atom = ATOMS[atom], atom + 1
        elif key in TRUE_MODEL:
            line = TRUE_MODEL[key]
        out.append(line.rstrip())
    return "\n".join(out) + "\n"


def main():
    rng = random.Random(20261123)
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        (work / "model.rec").write_text(model_text())
        subprocess.run([str(BUILD / "bin/kalden"), "run", "model.rec"], cwd=work, check=True,
                       stdout=subprocess.DEVNULL)
        rows = []
        for line in (work / "%model.sum").read_text().splitlines():
            two_theta, calculated = float(line[0:7]), float(line[19:31])
            noisy = calculated > 0 and "NO_NOISE" not in os.environ
            counts = rng.gauss(calculated, math.sqrt(calculated)) if noisy else calculated
            rows.append(f"{two_theta:.3f} {max(counts, 0.0):.1f}\n")
    (ROOT / "examples/corundum/corundum.xy").write_text("".join(rows))


if __name__ == "__main__":
    main()
