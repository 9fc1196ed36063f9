#!/usr/bin/python3
"""Writes tests/data/engine/wofz_reference.txt: reference values of the Faddeeva function
w(z) = exp(-z^2) erfc(-iz) for the test of ComplexErrorFunction.

Source of the values: scipy.special.wofz (the version is written into the file header).
Run with Debian's python3 (python3-scipy):  /usr/bin/python3 scripts/data/wofz_reference.py

The points cover every zone of the evaluator by |z| (series, Taylor and sum formula, the two
Gauss-Hermite rules) and the bands where neighbouring zones are blended, in all four
quadrants, plus the real and imaginary axes, the line y = 1.3 where the middle zone changes
method, and a few large arguments. Below the real axis |y| is kept under 6 so that
w ~ 2 exp(y^2 - x^2) stays of moderate size.
"""
import os

import numpy as np
import scipy
from scipy.special import wofz

OUT = os.path.join(os.path.dirname(__file__), "..", "..", "tests", "data", "engine",
                   "wofz_reference.txt")

# Bands of r = |z|: (low, high, count); the blend bands get as many points as the zones.
BANDS = [(0.0, 0.9, 300), (0.9, 1.1, 300), (1.1, 3.9, 600), (3.9, 4.1, 300), (4.1, 5.8, 300),
         (5.8, 6.2, 300), (6.2, 12.0, 200), (12.0, 100.0, 100)]


def points():
    rng = np.random.default_rng(20240605)
    out = []
    for low, high, count in BANDS:
        r = rng.uniform(low, high, count)
        phi = rng.uniform(0.0, 2.0 * np.pi, count)
        out += list(zip(r * np.cos(phi), r * np.sin(phi)))
    # Real and imaginary axes, both signs.
    for v in np.linspace(-8.0, 8.0, 81):
        out.append((v, 0.0))
        out.append((0.0, v if abs(v) < 6.0 else abs(v)))
    # Either side of y = 1.3 across the middle zone, and along the blend circles' edges.
    for xv in np.linspace(-3.6, 3.6, 37):
        for yv in (1.29, 1.2999, 1.3, 1.3001, 1.31):
            out.append((xv, yv))
            out.append((xv, -yv))
    for r in (0.9, 1.1, 3.9, 4.1, 5.8, 6.2):
        for phi in np.linspace(0.0, 2.0 * np.pi, 25, endpoint=False):
            out.append((r * np.cos(phi), r * np.sin(phi)))
    # Upper half plane only below y = -6.
    return [(x, y) for x, y in out if y > -6.0]


def main():
    pts = points()
    with open(OUT, "w") as f:
        f.write("# w(z) = exp(-z^2) erfc(-iz) from scipy.special.wofz, scipy %s, numpy %s\n"
                % (scipy.__version__, np.__version__))
        f.write("# written by scripts/data/wofz_reference.py; columns: x y Re(w) Im(w)\n")
        for x, y in pts:
            w = wofz(complex(x, y))
            f.write("%.17g %.17g %.17g %.17g\n" % (x, y, w.real, w.imag))
    print("%d points written to %s" % (len(pts), os.path.normpath(OUT)))


if __name__ == "__main__":
    main()
