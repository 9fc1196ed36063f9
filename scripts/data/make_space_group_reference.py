#!/usr/bin/python3
"""Writes the general positions of the space-group settings as a reference for the symbol reader:
tests/data/crystal/space_groups.txt the settings that users type most (the standard setting of
every group, the monoclinic groups also with unique axis a and c, the R groups also on
rhombohedral axes), and tests/data/crystal/space_group_settings.txt every other setting whose
Hermann-Mauguin symbol names it. A symbol shared by the two origin choices of a group names
origin choice 2, the centre of symmetry at the origin; tests/data/crystal/origin_choice_1.txt
holds the operators of origin choice 1 of those groups under the same symbol.

Source: gemmi's table of space-group settings (International Tables for Crystallography,
Vol. A), the 530 settings of its first part. Run with Debian's python3 and python3-gemmi:
  /usr/bin/python3 scripts/data/make_space_group_reference.py

One line per setting:
  number|symbol as typed|Laue class|unique axis|centric code|order|op;op;...
Laue classes: 1 -1, 2 2/m, 3 mmm, 4 4/m, 5 4/mmm, 6 -3 (rhombohedral axes), 7 -3m (rhombohedral
axes), 8 -3, 9 -3m1, 10 -31m, 11 6/m, 12 6/mmm, 13 m-3, 14 m-3m. Unique axis 1, 2, 3 for a, b, c
of a monoclinic setting, else 0. Centric code 2 for a centrosymmetric group, else 1. The
operators include the centring translations, with translations in [0, 1), sorted.
"""
import os
import gemmi

DATA = os.path.join(os.path.dirname(__file__), "..", "..", "tests", "data", "crystal")
SETTINGS = 530  # the settings of International Tables; gemmi's own additions follow
UNIQUE_AXIS = {"a": 1, "b": 2, "c": 3}

LAUE = {"-1": 1, "2/m": 2, "mmm": 3, "4/m": 4, "4/mmm": 5, "6/m": 11, "6/mmm": 12,
        "m-3": 13, "m-3m": 14}


def laue_class(sg, fields, rhombohedral_axes):
    laue = sg.laue_str()
    if laue in LAUE:
        return LAUE[laue]
    if rhombohedral_axes:
        return 6 if laue == "-3" else 7
    if laue == "-3":
        return 8
    if sg.hm.startswith("R"):
        return 9
    # P trigonal with a two-fold or mirror: by the place of the "1" in the symbol
    return 9 if fields[3] == "1" else 10


def setting_row(sg, typed, unique_axis, rhombohedral_axes=False):
    fields = sg.hm.split()
    ops = sorted(op.wrap().triplet() for op in sg.operations())
    centric = 2 if sg.operations().is_centrosymmetric() else 1
    return "%d|%s|%d|%d|%d|%d|%s" % (sg.number, typed, laue_class(sg, fields, rhombohedral_axes),
                                      unique_axis, centric, len(ops), ";".join(ops))


def standard(number):
    """The standard setting: origin choice 2 where there are two, hexagonal axes for R."""
    for sg in gemmi.spacegroup_table():
        if sg.number != number:
            continue
        if 3 <= number <= 15:
            if sg.qualifier in ("b", "b1"):
                return sg
        elif sg.ext in ("\x00", "2", "H"):
            return sg
    raise SystemExit("no standard setting for %d" % number)


def common_rows():
    rows = []
    for number in range(1, 231):
        sg = standard(number)
        fields = sg.hm.upper().split()
        if 3 <= number <= 15:
            # short form without the "1" fields, and the full form
            rows.append(setting_row(sg, fields[0] + " " + fields[2], 2))
            rows.append(setting_row(sg, " ".join(fields), 2))
            for axis, qualifiers in ((1, ("a", "a1")), (3, ("c", "c1"))):
                other = next(s for s in gemmi.spacegroup_table()
                             if s.number == number and s.qualifier in qualifiers)
                rows.append(setting_row(other, other.hm.upper(), axis))
        else:
            rows.append(setting_row(sg, " ".join(fields), 0))
        if sg.ext == "H":
            rhombic = gemmi.find_spacegroup_by_name(sg.hm + ":R")
            rows.append(setting_row(rhombic, rhombic.hm.upper() + " R", 0, True))
    return rows


def other_rows(common):
    """Every other symbol of the table; origin choice 1 is not named by a symbol alone."""
    typed = {row.split("|")[1] for row in common}
    rows = []
    for sg in list(gemmi.spacegroup_table())[:SETTINGS]:
        if sg.ext in ("1", "R") or sg.hm.upper() in typed:
            continue
        axis = UNIQUE_AXIS[sg.qualifier.lstrip("-")[0]] if 3 <= sg.number <= 15 else 0
        rows.append(setting_row(sg, sg.hm.upper(), axis))
    return rows


def origin_choice_1_rows():
    return [setting_row(sg, sg.hm.upper(), 0) for sg in list(gemmi.spacegroup_table())[:SETTINGS]
            if sg.ext == "1"]


def write(name, title, rows):
    with open(os.path.join(DATA, name), "w") as out:
        out.write("# %s, from gemmi %s (International Tables A).\n" % (title, gemmi.__version__))
        out.write("# number|symbol as typed|Laue class|unique axis|centric code|order|operators\n")
        for row in rows:
            out.write(row + "\n")


def main():
    common = common_rows()
    write("space_groups.txt", "General positions by setting", common)
    write("space_group_settings.txt", "General positions of the other settings",
          other_rows(common))
    write("origin_choice_1.txt", "General positions in origin choice 1", origin_choice_1_rows())


main()
