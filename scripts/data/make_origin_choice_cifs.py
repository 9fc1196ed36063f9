#!/usr/bin/python3
"""Writes the CIFs of tests/data/tools/cif_import/settings/: structures in origin choice 1, or
named only by a Hall symbol or a group number, and expected_sites.txt, where gemmi puts their
atoms in the setting the import must give (origin choice 2 where a group has two).

Run with Debian's python3 and python3-gemmi:
  /usr/bin/python3 scripts/data/make_origin_choice_cifs.py

expected_sites.txt, one line per atom:
  file|setting (gemmi's extended symbol)|label|x|y|z|multiplicity
Positions from International Tables: spinel MgAl2O4 (Fd-3m, O on 32e), litharge PbO (P4/nmm),
and two made-up ones, Ce on 8a with O on 32e of Fd-3m and a general position of P 1 21/n 1.
"""
import os
import gemmi

OUT = os.path.join(os.path.dirname(__file__), "..", "..", "tests", "data", "tools", "cif_import",
                   "settings")

SPINEL = ("MgAl2O4", 8.0833, [("Mg1", "Mg", (0.125, 0.125, 0.125)),
                              ("Al1", "Al", (0.5, 0.5, 0.5)),
                              ("O1", "O", (0.2624, 0.2624, 0.2624))])
CERIA = ("CeO2 in Fd-3m", 5.411, [("Ce1", "Ce", (0.0, 0.0, 0.0)), ("O1", "O", (0.3, 0.3, 0.3))])
LITHARGE = ("PbO", (3.9759, 3.9759, 5.023), [("Pb1", "Pb", (0.25, 0.25, 0.2385)),
                                            ("O1", "O", (0.75, 0.25, 0.0))])
MONOCLINIC = ("made up", (5.1, 6.2, 7.3, 90, 101.5, 90), [("Zn1", "Zn", (0.11, 0.23, 0.37))])


def cell_items(cell):
    if isinstance(cell, float):
        cell = (cell, cell, cell)
    if len(cell) == 3:
        cell = tuple(cell) + (90, 90, 90)
    names = ["length_a", "length_b", "length_c", "angle_alpha", "angle_beta", "angle_gamma"]
    return "".join("_cell_%-16s %g\n" % (n, v) for n, v in zip(names, cell))


def cif_text(name, head, cell, atoms, operators=None):
    text = "data_%s\n%s%s" % (name, head, cell_items(cell))
    if operators:
        text += "loop_\n_space_group_symop_operation_xyz\n"
        text += "".join("'%s'\n" % op.triplet() for op in operators)
    text += ("loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n"
             "_atom_site_fract_y\n_atom_site_fract_z\n_atom_site_occupancy\n"
             "_atom_site_U_iso_or_equiv\n")
    text += "".join("%s %s %.6g %.6g %.6g 1.0 0.01\n" % ((label, element) + xyz)
                    for label, element, xyz in atoms)
    return text


def in_origin_choice_1(sg1, atoms):
    """Positions given in origin choice 2 written in origin choice 1: x1 = B x2."""
    return [(label, element, tuple(sg1.basisop.apply_to_xyz(list(xyz))))
            for label, element, xyz in atoms]


def multiplicity(sg, xyz):
    images = set()
    for op in sg.operations():
        images.add(tuple(round(c % 1.0, 4) % 1.0 for c in op.apply_to_xyz(list(xyz))))
    return len(images)


def expected(file, sg2, atoms_in_file, sg_file):
    """Where the atoms of the file stand in setting sg2: x2 = B^-1 x1 for a file in a setting
    of sg2's group with another origin, else as given."""
    rows = []
    for label, _, xyz in atoms_in_file:
        if sg_file is not sg2:
            xyz = tuple(sg_file.basisop.inverse().apply_to_xyz(list(xyz)))
        xyz = tuple(c % 1.0 for c in xyz)
        rows.append("%s|%s|%s|%.6f|%.6f|%.6f|%d" % (file, sg2.xhm(), label, *xyz,
                                                    multiplicity(sg2, xyz)))
    return rows


def main():
    os.makedirs(OUT, exist_ok=True)
    fd3m1 = gemmi.find_spacegroup_by_name("F d -3 m:1")
    fd3m2 = gemmi.find_spacegroup_by_name("F d -3 m:2")
    p4nmm1 = gemmi.find_spacegroup_by_name("P 4/n m m:1")
    p4nmm2 = gemmi.find_spacegroup_by_name("P 4/n m m:2")
    p21n = gemmi.find_spacegroup_by_name("P 1 21/n 1")
    spinel1 = in_origin_choice_1(fd3m1, SPINEL[2])
    files = {
        # The plain symbol, which names origin choice 2 here; the operators tell origin 1.
        "spinel_operators.cif": (
            "_symmetry_space_group_name_H-M   'F d -3 m'\n", SPINEL, spinel1, fd3m1, fd3m2,
            fd3m1.operations()),
        "ceria_colon.cif": ("_symmetry_space_group_name_H-M   'F d -3 m:1'\n", CERIA,
                            CERIA[2], fd3m1, fd3m2, None),
        "ceria_alt.cif": ("_space_group_name_H-M_alt   'F d -3 m :1'\n", CERIA, CERIA[2], fd3m1,
                          fd3m2, None),
        "ceria_words.cif": ("_symmetry_space_group_name_H-M   'F d -3 m (origin choice 1)'\n",
                            CERIA, CERIA[2], fd3m1, fd3m2, None),
        "spinel_number.cif": ("_space_group_IT_number   227\n", SPINEL, SPINEL[2], fd3m2, fd3m2,
                              None),
        "litharge_hall.cif": ("_space_group_name_Hall   'P 4ab 2ab -1ab'\n", LITHARGE,
                              in_origin_choice_1(p4nmm1, LITHARGE[2]), p4nmm1, p4nmm2, None),
        # The number names P 1 21/c 1; the operators are those of P 1 21/n 1.
        "monoclinic_number.cif": ("_symmetry_Int_Tables_number   14\n", MONOCLINIC,
                                  MONOCLINIC[2], p21n, p21n, p21n.operations()),
    }
    rows = []
    for file, (head, structure, atoms, sg_file, sg2, operators) in sorted(files.items()):
        name, cell, _ = structure
        with open(os.path.join(OUT, file), "w") as out:
            out.write(cif_text(name.replace(" ", "_"), head, cell, atoms, operators))
        rows += expected(file, sg2, atoms, sg_file)
    with open(os.path.join(OUT, "expected_sites.txt"), "w") as out:
        out.write("# Sites of the atoms of these files in the setting of the import, by gemmi %s.\n"
                  % gemmi.__version__)
        out.write("# file|setting|label|x|y|z|multiplicity\n")
        out.write("\n".join(rows) + "\n")


main()
