#!/usr/bin/env python3
"""Makes the three-phase X-ray refinement of the cycle benchmark (three_phase_bench.cpp).

A monoclinic P 21/c phase of 20 light atoms, corundum and silicon on Cu K-alpha1, 10 to
109.5 degrees in steps of 0.005 (19,900 points), a Chebyshev background. The pattern is the
engine's own calculation of the true model with counting noise from a fixed seed; the
project to refine starts from a model moved off the truth, with 114 refined parameters.

    bench/make_three_phase.py build/bin/kalden bench/data/three_phase

writes three_phase.rec and three_phase.xy into the directory (made if needed).
"""

import math
import pathlib
import random
import subprocess
import sys
import tempfile

SEED = 18
START, STEP, STOP = 10.0, 0.005, 109.5

# P 21/c: 20 atoms of an organic salt, in general positions (site factor 1).
CELL_P21C = (7.264, 8.843, 11.451, 90.0, 103.27, 90.0)
CORUNDUM = (4.7589, 4.7589, 12.991, 90.0, 90.0, 120.0)
SILICON = (5.43094, 5.43094, 5.43094, 90.0, 90.0, 90.0)
TYPES = ["C", "N", "O", "Al", "Si"]
ANOMALOUS = {"C": (0.017, 0.009), "N": (0.029, 0.018), "O": (0.0492, 0.0322),
             "Al": (0.213, 0.2455), "Si": (0.2541, 0.3302)}


def organic_atoms(rng):
    """Twenty atoms at least 1.2 A apart, 12 C, 4 N, 4 O."""
    elements = ["C"] * 12 + ["N"] * 4 + ["O"] * 4
    a, b, c, _, beta, _ = CELL_P21C
    cb, sb = math.cos(math.radians(beta)), math.sin(math.radians(beta))

    def cartesian(p):
        return (a * p[0] + c * cb * p[2], b * p[1], c * sb * p[2])

    atoms = []
    while len(atoms) < len(elements):
        p = (rng.random(), rng.random(), rng.random())
        q = cartesian(p)
        ok = True
        for other in atoms:
            for dx in (-1, 0, 1):
                for dy in (-1, 0, 1):
                    for dz in (-1, 0, 1):
                        r = cartesian((other[1][0] + dx, other[1][1] + dy, other[1][2] + dz))
                        if sum((u - v) ** 2 for u, v in zip(q, r)) < 1.44:
                            ok = False
        if ok:
            atoms.append((elements[len(atoms)], p, 2.0 + rng.random()))
    return atoms


def line(key, text):
    return f"{key:<4}      {text}\n"


def reals(values, width=10, decimals=5):
    return "".join(f"{v:{width}.{decimals}f}" for v in values)


def codes(values):
    return "".join(f"{v:10.3f}" for v in values)


def atom_lines(label, element, xyz, occupation, b, site, refine):
    t = TYPES.index(element) + 1
    text = f"{label:<4}{t:>4}" + reals(list(xyz) + [occupation, b], 9, 5) + f"{site:3d}  0  0  0"
    out = line("XYZ ", text)
    out += f"CXYZ {label:<5}" + codes(refine) + "\n"
    return out


def phase(title, symbol, cell, cell_codes, scale, uvw, shape, atoms):
    out = line("PHTI", title)
    out += line("PHNA", f"{len(atoms):5d}  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0")
    out += line("SPGR", symbol)
    out += line("SCAL", f"{scale:12.4E}     0.000")
    out += line("CSCA", codes([1.0, 0.0]))
    out += line("CELL", reals(cell[:3], 10, 6) + reals(cell[3:], 10, 5))
    out += line("CCEL", codes(cell_codes))
    out += line("HWTH", reals(uvw))
    out += line("CHWT", codes([1.0, 1.0, 1.0]))
    out += line("PKSH", reals([shape, 0.0, 0.0]))
    out += line("CPKS", codes([1.0, 0.0, 0.0]))
    return out, atoms


def project(name, job, model, rng_shift):
    """The project text: job 0 refines, 2 calculates. rng_shift moves the start off the truth."""
    def move(v, size):
        return v + (rng_shift.uniform(-size, size) * 0.3 if rng_shift else 0.0)

    out = line("TITL", f"Three phases, {name}")
    out += line("FRMT", "    5")
    out += line("JOBT", f"{job:5d}    4    3   -1    0{len(TYPES):5d}    0    1")
    out += line("PWDT", "three_phase.xy")
    out += line("ELAM", "  1.540560  0.000000  0.000000")
    out += line("RLIM", reals([10.0, 0.9, 0, 40.0, 0, 0, 0, 0]))
    out += line("RELX", f"{10:5d} 0.30 1.00 1.00 1.00 1.00" + reals([START, STEP, STOP]))
    for t in TYPES:
        out += line("ANOM", f"{t:<10}" + reals(ANOMALOUS[t]))
    out += line("ZETT", reals([move(0.0, 0.02), 0, 0]))
    out += line("CZET", codes([1, 0, 0]))
    background = [move(v, 0.05 * abs(v) + 1) for v in (220.0, -40.0, 25.0, -12.0, 6.0, -3.0, 1.5)]
    out += line("BKGR", reals(background, 10, 3))
    out += line("CBKG", codes([1.0] * 7))
    organic, corundum_scale, silicon_scale = model
    # P 21/c: a, b, c and beta.
    text, _ = phase("organic salt", "P 21/C", [move(v, 0.003 * v) if i in (0, 1, 2, 4) else v
                                              for i, v in enumerate(CELL_P21C)],
                    [1, 1, 1, 0, 1, 0], move(2.0e-4, 2e-5),
                    [move(0.008, 0.002), move(-0.004, 0.001), move(0.012, 0.002)],
                    move(0.55, 0.05), organic)
    out += text
    for i, (element, xyz, b) in enumerate(organic):
        out += atom_lines(f"{element}{i + 1}", element, [move(v, 0.004) for v in xyz], 1.0,
                          move(b, 0.3), 1, [1, 1, 1, 0, 1])
    text, _ = phase("corundum", "R -3 C", [move(v, 0.002 * v) if i < 3 else v
                                           for i, v in enumerate(CORUNDUM)],
                    [21, 21, 1, 0, 0, 0], move(corundum_scale, 0.1 * corundum_scale),
                    [move(0.004, 0.001), move(-0.002, 0.0005), move(0.008, 0.001)],
                    move(0.45, 0.05), [0, 1])
    out += text
    out += atom_lines("Al", "Al", [0.0, 0.0, move(0.35216, 0.002)], 1.0, move(0.31, 0.1), 3,
                      [0, 0, 1, 0, 1])
    out += atom_lines("O", "O", [move(0.30624, 0.002), 0.0, 0.25], 1.0, move(0.33, 0.1), 2,
                      [1, 0, 0, 0, 1])
    text, _ = phase("silicon", "F D -3 M", [move(v, 0.001 * v) if i < 3 else v
                                            for i, v in enumerate(SILICON)],
                    [31, 31, 31, 0, 0, 0], move(silicon_scale, 0.1 * silicon_scale),
                    [move(0.003, 0.001), move(-0.001, 0.0005), move(0.006, 0.001)],
                    move(0.5, 0.05), [0])
    out += text
    out += atom_lines("Si", "Si", [0.125, 0.125, 0.125], 1.0, move(0.45, 0.1), 24,
                      [0, 0, 0, 0, 1])
    return out


def main():
    kalden, target = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    rng = random.Random(SEED)
    model = (organic_atoms(rng), 2.0e-3, 4.0e-3)
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        (work / "truth.rec").write_text(project("true model", 2, model, None))
        subprocess.run([str(kalden), "run", "truth.rec"], cwd=work, check=True,
                       stdout=subprocess.DEVNULL)
        points = [l.split() for l in (work / "%truth.sum").read_text().splitlines()]
    target.mkdir(parents=True, exist_ok=True)
    with open(target / "three_phase.xy", "w") as xy:
        xy.write(f"{START:8.3f} {float(points[0][2]):10.1f}\n")
        for p in points:
            calculated = float(p[2])
            counts = max(0.0, rng.gauss(calculated, math.sqrt(max(calculated, 1.0))))
            xy.write(f"{float(p[0]):8.3f} {counts:10.1f}\n")
    (target / "three_phase.rec").write_text(project("start", 0, model, rng))


if __name__ == "__main__":
    main()
