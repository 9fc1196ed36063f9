#!/usr/bin/python3
"""Writes tests/data/crystal/printed_symbols.txt: each space-group symbol in its compact printed
form beside the blank-separated form that the symbol reader takes, and the symbol's class code.

Source: gemmi's table of space-group settings (International Tables for Crystallography,
Vol. A). Run with Debian's python3 and python3-gemmi:
  /usr/bin/python3 scripts/data/make_printed_symbols.py

One line per setting:  number|compact form|blank-separated form|class code
Settings: the standard one of all 230 groups (origin choice 2 where there are two, hexagonal
axes for R), the seven R groups on rhombohedral axes, and the monoclinic groups 3 to 15 with
unique axis a and unique axis c (cell choice 1).
"""
import os
import gemmi

OUT = os.path.join(os.path.dirname(__file__), "..", "..", "tests", "data", "crystal",
                   "printed_symbols.txt")

# Class codes by crystal system, from the point group and, where the system has two kinds of
# symbol, by which kind it is.
LOW_POINT_GROUPS = {"4", "-4", "4/m", "6", "-6", "6/m", "23", "m-3", "3", "-3"}
MONOCLINIC_CODE = {"a": 2, "b": 3, "c": 4}
SYSTEM_CODE = {  # (low, high)
    "triclinic": (1, 1),
    "orthorhombic": (5, 5),
    "tetragonal": (11, 12),
    "hexagonal": (13, 14),
    "cubic": (15, 16),
}
# The two-fold along a of the trigonal groups of the "3 2 1" and "3 m 1" kind: x-y, -y, -z.
TWOFOLD_ALONG_A = [[1, -1, 0], [0, -1, 0], [0, 0, -1]]


def has_twofold_along_a(sg):
    for op in sg.operations().sym_ops:
        rot = [[v // gemmi.Op.DEN for v in row] for row in op.rot]
        negated = [[-v for v in row] for row in rot]
        if TWOFOLD_ALONG_A in (rot, negated):
            return True
    return False


def class_code(sg, unique_axis):
    system = sg.crystal_system_str()
    low = sg.point_group_hm() in LOW_POINT_GROUPS
    if system == "monoclinic":
        return MONOCLINIC_CODE[unique_axis]
    if system == "trigonal":
        if sg.hm.startswith("R"):
            return 7 if low else 10
        if low:
            return 6
        return 8 if has_twofold_along_a(sg) else 9
    return SYSTEM_CODE[system][0 if low else 1]


def setting(number, accept):
    for sg in gemmi.spacegroup_table():
        if sg.number == number and accept(sg):
            return sg
    raise SystemExit("gemmi has no such setting of group %d" % number)


def row(sg, compact, blank_separated, unique_axis=None):
    return "%d|%s|%s|%d" % (sg.number, compact, blank_separated, class_code(sg, unique_axis))


def monoclinic_rows(number):
    standard = setting(number, lambda sg: sg.qualifier in ("b", "b1"))
    fields = standard.hm.upper().split()
    rows = [row(standard, standard.short_name(), fields[0] + " " + fields[2], "b")]
    for axis in ("a", "c"):
        other = setting(number, lambda sg: sg.qualifier in (axis, axis + "1"))
        rows.append(row(other, other.hm.replace(" ", ""), other.hm.upper(), axis))
    return rows


def other_rows(number):
    standard = setting(number, lambda sg: sg.ext in ("\x00", "2", "H"))
    if standard.ext != "H":
        return [row(standard, standard.short_name(), standard.hm.upper())]
    # gemmi writes "H" for R on hexagonal axes; a CIF writes the R.
    compact = standard.hm.replace(" ", "")
    rhombohedral = setting(number, lambda sg: sg.ext == "R")
    return [row(standard, compact, standard.hm.upper()),
            row(rhombohedral, compact + ":R", rhombohedral.hm.upper() + " R")]


def main():
    rows = []
    for number in range(1, 231):
        rows += monoclinic_rows(number) if 3 <= number <= 15 else other_rows(number)
    with open(OUT, "w") as out:
        out.write("# Printed space-group symbols, from gemmi %s (International Tables A),\n"
                  % gemmi.__version__)
        out.write("# written by scripts/data/make_printed_symbols.py.\n")
        out.write("# number|compact form|blank-separated form|class code\n")
        for line in rows:
            out.write(line + "\n")


main()
