#!/usr/bin/python3
"""Reference distances for the restraint test, computed by gemmi.

Writes restraint_reference.txt: the cell, the operators by number as the program lists them
for "P 1 21/C 1", the atoms, two restraints (a tetrahedron and an octahedron, partners given
with symmetry codes: operator times 1000 plus translations in 555 form) and the distance of
every pair of atoms within each restraint.
Run: /usr/bin/python3 restraint_reference.py > restraint_reference.txt
"""
import itertools

import gemmi

CELL = (7.1, 9.3, 6.8, 90.0, 104.5, 90.0)
OPERATORS = ["x,y,z", "-x,y+1/2,-z+1/2", "-x,-y,-z", "x,-y+1/2,z+1/2"]
ATOMS = {
    "S": (0.21, 0.31, 0.24), "O1": (0.33, 0.42, 0.19), "O2": (0.05, 0.36, 0.37),
    "O3": (0.88, 0.72, 0.63), "O4": (0.30, 0.24, 0.41), "Ti": (0.5, 0.0, 0.5),
    "O5": (0.62, 0.13, 0.41), "O6": (0.43, 0.87, 0.22),
}
# Central atom with its code, target, partners with their codes.
RESTRAINTS = [
    ("S", 1555, 1.48, [("O1", 1555), ("O2", 1555), ("O3", 3565), ("O4", 2546)]),
    ("Ti", 1555, 1.96, [("O5", 1555), ("O5", 3656), ("O6", 1555), ("O6", 3656),
                        ("O1", 2545), ("O1", 4554)]),
]


def position(cell, label, code):
    op = gemmi.Op(OPERATORS[code // 1000 - 1])
    moved = op.apply_to_xyz(list(ATOMS[label]))
    shift = (code // 100 % 10 - 5, code // 10 % 10 - 5, code % 10 - 5)
    return cell.orthogonalize(gemmi.Fractional(*(m + t for m, t in zip(moved, shift))))


def main():
    cell = gemmi.UnitCell(*CELL)
    print("cell", *CELL)
    for number, text in enumerate(OPERATORS, 1):
        print("operator", number, text)
    for label, xyz in ATOMS.items():
        print("atom", label, *xyz)
    for central, code, target, partners in RESTRAINTS:
        atoms = [(central, code)] + partners
        print("restraint", central, code, target, *itertools.chain(*partners))
        for (l1, c1), (l2, c2) in itertools.combinations(atoms, 2):
            d = position(cell, l1, c1).dist(position(cell, l2, c2))
            print("pair", l1, c1, l2, c2, f"{d:.6f}")


main()
