#!/usr/bin/env python3
"""Writes the patterns of the examples alumina-fluorite (Cu K-alpha 1 and 2, two phases) and
rutile-neutron (constant-wavelength neutrons, anisotropic atoms): each is calculated by kalden
itself from a "true" model, made with "kalden new --from-cif" from the example's CIFs and then
moved away from them (cells, zero point, widths, scales, background), with Poisson noise of a
fixed seed. The example projects are what "kalden new --from-cif ... --data" makes of them.

Usage: scripts/data/make_first_run_examples.py [BUILD_DIR]   (default build)"""
import math
import pathlib
import random
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build")

EXAMPLES = {
    "alumina-fluorite": {
        "cifs": ["corundum.cif", "fluorite.cif"],
        # Corundum 60 % and fluorite 40 % by scale; a lab instrument's widths and a zero of
        # 0.04 degrees.
        "lines": {
            "JOBT": ["JOBT          2    4    2   -1    0    4    0    1"],
            "ELAM": ["ELAM        1.540593  1.544414  0.500000"],
            "RELX": ["RELX          6 0.30 1.00 1.00 1.00 1.00  15.00000   0.02000 120.00000"],
            "SCAL": ["SCAL       0.6000E-03     0.000", "SCAL       0.3000E-03     0.000"],
            "CELL": ["CELL        4.760500  4.760500 12.995000  90.00000  90.00000 120.00000",
                     "CELL        5.464000  5.464000  5.464000  90.00000  90.00000  90.00000"],
            "HWTH": ["HWTH         0.00400  -0.00300   0.00400",
                     "HWTH         0.00600  -0.00300   0.00500"],
            "PKSH": ["PKSH         0.60000   0.00000   0.00000",
                     "PKSH         0.50000   0.00000   0.00000"],
            "ZETT": ["ZETT         0.04000   0.00000   0.00000"],
            "BKGR": ["BKGR           150.0     -40.0      15.0"],
        },
    },
    "rutile-neutron": {
        "cifs": ["rutile.cif"],
        # Neutrons of 1.594 A on a constant-wavelength instrument: wide peaks and few of them.
        "lines": {
            "JOBT": ["JOBT          3    4    1   -1    0    2    0    1"],
            "ELAM": ["ELAM        1.594000  0.000000  0.000000"],
            "RELX": ["RELX          6 0.30 1.00 1.00 1.00 1.00  10.00000   0.05000 155.00000"],
            "SCAL": ["SCAL       0.2000E-01     0.000"],
            "CELL": ["CELL        4.594500  4.594500  2.959200  90.00000  90.00000  90.00000"],
            "HWTH": ["HWTH         0.18000  -0.25000   0.14000"],
            "PKSH": ["PKSH         0.30000   0.00000   0.00000"],
            "ZETT": ["ZETT        -0.05000   0.00000   0.00000"],
            "BKGR": ["BKGR           400.0      60.0     -20.0"],
        },
    },
}


def kalden(work, *args):
    subprocess.run([str(BUILD / "bin/kalden"), *args], cwd=work, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def true_model(text, lines):
    """The project with each listed key's lines replaced in turn; keys without a line get one."""
    out, seen = [], {}
    for line in text.splitlines():
        key = line[:4]
        if key in lines:
            n = seen.get(key, 0)
            seen[key] = n + 1
            if n < len(lines[key]):
                line = lines[key][n]
        out.append(line.rstrip())
    for key, values in lines.items():
        if key not in seen:
            out.extend(values)
    return "\n".join(out) + "\n"


def pattern(name, example, rng):
    folder = ROOT / "examples" / name
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        args = ["new", "model.rec"]
        for cif in example["cifs"]:
            args += ["--from-cif", str(folder / cif)]
        kalden(work, *args)
        model = work / "model.rec"
        model.write_text(true_model(model.read_text(), example["lines"]))
        kalden(work, "run", "model.rec")
        rows = []
        for line in (work / "model.sum").read_text().splitlines():
            two_theta, calculated = float(line[0:7]), float(line[19:31])
            counts = rng.gauss(calculated, math.sqrt(calculated)) if calculated > 0 else 0.0
            rows.append(f"{two_theta:.3f} {max(counts, 0.0):.1f}\n")
    (folder / f"{name}.xy").write_text("".join(rows))


def main():
    rng = random.Random(20261124)
    for name, example in EXAMPLES.items():
        pattern(name, example, rng)


if __name__ == "__main__":
    main()
