#!/usr/bin/python3
"""Writes src/crystal/element_tables.cpp: symbol, mass, neutron length, form-factor
coefficients and f', f'' for H to Cf, water oxygen "Ow" and deuterium "D ".

Run with Debian's python3 and its packages python3-gemmi, python3-cctbx and python3-xraylib:
  /usr/bin/python3 scripts/data/make_element_tables.py

Sources, column by column:
  masses       cctbx tiny_pse (CRC Handbook of Chemistry and Physics, 63rd and 70th editions:
               the standard atomic weights of the 1980s, radioactive elements by the mass
               number of their longest-lived isotope).
  form factors International Tables for Crystallography Vol. C, Table 6.1.1.4, as gemmi's
               it92 table (checked against cctbx it1992, looked up by exact label).
               "Ow" is that table's O2- row; "D " is the row of H.
  f', f''      Cromer and Liberman, as computed by gemmi, for H to U (gemmi gives 0 for H and
               He); EPDL97 (Cullen et al. 1997) as tabulated by xraylib 4 for Np to Cf.
               "Ow" and "D " take the values of O and H.
  neutron b    Sears, Neutron News 3 (1992) 26-37, as gemmi's neutron92 table (checked against
               cctbx neutron_news_1992); 0 where it gives no natural element.
               "Ow" is the value of O; "D " is 6.0.
The HELD_ entries keep the values of the table this system has always used, where they differ
from a packaged source in the last digits.
"""
import os

import numpy as np
import gemmi
import xraylib
from cctbx.eltbx import neutron, tiny_pse, xray_scattering

OUT = os.path.join(os.path.dirname(__file__), "..", "..", "src", "crystal", "element_tables.cpp")

WAVELENGTHS = [0.215947, 0.55941, 0.70926, 1.54052, 1.788965]
LAST_CROMER_LIBERMAN = 92
HC_KEV_ANGSTROM = gemmi.hc / 1000.0

# The established values where the packaged tables differ a little (see above).
HELD_MASS = {"U": 238.029}
HELD_NEUTRON = {"V": -0.382}
HELD_ANOMALOUS = {("H", 1.54052): (0.0, 0.0), ("Fe", 1.54052): (-1.1336, 3.1974),
                  ("U", 1.54052): (-4.3638, 13.409)}
# Oxygen's row carries its fourth pair first: the order the system's table has always had.
PAIR_ORDER = {"O": (3, 0, 1, 2)}


def form_factor(it92_row, pair_order=(0, 1, 2, 3)):
    a, b, c = it92_row.array_of_a(), it92_row.array_of_b(), it92_row.c()
    values = []
    for k in pair_order:
        values += [a[k], b[k]]
    return values + [c]


def checked_form_factor(element):
    table = xray_scattering.it1992(element.name, True)
    assert table.label() == element.name, element.name
    row = table.fetch()
    ours = list(row.array_of_a()) + list(row.array_of_b()) + [row.c()]
    assert np.allclose(ours, element.it92.get_coefs(), atol=1e-5), element.name
    return form_factor(row, PAIR_ORDER.get(element.name, (0, 1, 2, 3)))


def anomalous(element):
    values = []
    for wavelength in WAVELENGTHS:
        held = HELD_ANOMALOUS.get((element.name, wavelength))
        if held:
            values += held
        elif element.atomic_number <= LAST_CROMER_LIBERMAN:
            energy = gemmi.hc / wavelength
            values += [round(v, 4) for v in gemmi.cromer_liberman(element.atomic_number, energy)]
        else:
            energy = HC_KEV_ANGSTROM / wavelength
            # xraylib keeps f'' with the sign of f = f0 + f' - i f''.
            values += [round(xraylib.Fi(element.atomic_number, energy), 4),
                       round(-xraylib.Fii(element.atomic_number, energy), 4)]
    return values


def neutron_length(element):
    length = element.neutron92.get_coefs()[0]
    try:
        table = neutron.neutron_news_1992_table(element.name, True)
        assert abs(table.bound_coh_scatt_length().real - length) < 1e-4, element.name
    except ValueError:
        pass  # cctbx lacks the heavy radioactive elements
    return HELD_NEUTRON.get(element.name, length)


def mass(element):
    table = tiny_pse.table(element.name, True)
    assert table.atomic_number() == element.atomic_number, element.name
    return HELD_MASS.get(element.name, round(table.weight(), 3))


def element_rows():
    rows = []
    for z in range(1, 99):
        element = gemmi.Element(z)
        rows.append((element.name.ljust(2), mass(element), neutron_length(element),
                     checked_form_factor(element), anomalous(element)))
    oxygen, hydrogen = rows[7], rows[0]
    water = form_factor(xray_scattering.it1992("O2-", True).fetch())
    rows.append(("Ow", 18.015, oxygen[2], water, oxygen[4]))
    rows.append(("D ", 2.0, 6.0, hydrogen[3], hydrogen[4]))
    return rows


def literal(value):
    text = np.format_float_positional(np.float32(value), trim="0")
    return ("0.0" if text in ("0.0", "-0.0") else text) + "f"


def wrapped(values, indent, opening, closing):
    """A braced list of float literals, broken before 100 columns."""
    lines, line = [], " " * indent + opening
    for i, value in enumerate(values):
        item = literal(value) + ("," if i + 1 < len(values) else closing)
        if len(line) + 1 + len(item) > 100:
            lines.append(line)
            line = " " * (indent + len(opening)) + item
        else:
            line += ("" if line.endswith(opening) else " ") + item
    lines.append(line)
    return lines


def row_text(row):
    symbol, mass_value, length, factors, dispersion = row
    lines = [f'    {{"{symbol}", {literal(mass_value)}, {literal(length)},']
    lines += wrapped(factors, 5, "{", "},")
    lines += wrapped(dispersion, 5, "{", "}},")
    return lines


HEADER = """\
// Element tables, one row per Z. Generated by scripts/data/make_element_tables.py, which names
// the sources of every column: masses from the CRC Handbook (63rd/70th editions, via cctbx
// tiny_pse); form factors from International Tables Vol. C Table 6.1.1.4 ("Ow" is its O2- row,
// "D " the H row); f', f'' from Cromer-Liberman (gemmi) up to U and EPDL97 (xraylib) beyond;
// neutron lengths from Sears, Neutron News 3 (1992). A few held values are listed there.
#include "crystal/element_tables.h"

namespace kaldena {

// Laid out by the generator.
// clang-format off
// symbol, mass, neutron length,
// {a1, b1, a2, b2, a3, b3, a4, b4, c},
// {f', f'' at 0.215947, 0.55941, 0.70926, 1.54052 and 1.788965 A}
const std::array<ElementRow, kElementCount> kElementRows = {{
"""


def main():
    lines = HEADER.splitlines()
    for row in element_rows():
        lines += row_text(row)
    lines += ["}};", "// clang-format on", "", "}  // namespace kaldena", ""]
    with open(OUT, "w") as out:
        out.write("\n".join(lines))


if __name__ == "__main__":
    main()
