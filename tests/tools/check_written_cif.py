"""Reads each CIF named on the command line as other programs do: the whole file with gemmi
and with PyCifRW, and in every block with a symmetry-operator loop, the group that gemmi finds
for _space_group_name_H-M_alt, for the Hall symbol and for the number, against the operators
of the file. Prints one line per file: "ok NAME BLOCKS", or what is wrong."""
import sys

import CifFile
import gemmi


def operator_set(ops):
    return sorted(gemmi.Op(op).wrap().triplet() for op in ops)


def check_block(block):
    """What is wrong with the symmetry of one block, or None."""
    loop = block.find_values("_symmetry_equiv_pos_as_xyz")
    if not loop:
        return None
    in_file = operator_set(gemmi.cif.as_string(v) for v in loop)
    name = gemmi.cif.as_string(block.find_value("_space_group_name_H-M_alt"))
    group = gemmi.find_spacegroup_by_name(name)
    if group is None:
        return "%s: gemmi finds no group for '%s'" % (block.name, name)
    if operator_set(op.triplet() for op in group.operations()) != in_file:
        return "%s: '%s' is not the group of the operators" % (block.name, name)
    hall = gemmi.cif.as_string(block.find_value("_space_group_name_Hall"))
    if operator_set(op.triplet() for op in gemmi.symops_from_hall(hall)) != in_file:
        return "%s: Hall symbol '%s' is not the group of the operators" % (block.name, hall)
    for tag in ("_space_group_IT_number", "_symmetry_int_tables_number"):
        if gemmi.cif.as_int(block.find_value(tag)) != group.number:
            return "%s: %s is not %d" % (block.name, tag, group.number)
    return None


def check(path):
    document = gemmi.cif.read(path)
    CifFile.ReadCif(path)  # raises on text that is no CIF 1.1
    problems = [p for p in (check_block(b) for b in document) if p]
    return "; ".join(problems) if problems else "ok %s %d" % (path, len(document))


for path in sys.argv[1:]:
    try:
        print(check(path))
    except Exception as error:  # a parser's complaint is the finding
        print("%s: %s" % (path, str(error).replace("\n", " ")))
