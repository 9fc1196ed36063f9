#include "store/record_keys.h"

#include "util/text.h"

namespace kaldena {

namespace {

std::string FoldedKey(std::string_view key) {
  std::string folded = UpperText(key.substr(0, 4));
  folded.resize(4, ' ');
  return folded;
}

std::string_view FamilyText(KeyFamily family) {
  switch (family) {
    case KeyFamily::kPhase:
      return "one line per phase";
    case KeyFamily::kAtom:
      return "one line per atom, phase after phase";
    case KeyFamily::kList:
      return "a list of lines";
    case KeyFamily::kSingle:
      break;
  }
  return "one line";
}

std::string_view OrNone(std::string_view text) { return text.empty() ? "-" : text; }

// A layout as the reference shows it: in backticks, or a dash.
std::string Code(std::string_view layout) {
  return layout.empty() ? "-" : "`" + std::string(layout) + "`";
}

constexpr std::string_view kIntroduction = R"(# The records of a project

A project (`.rec`) and its working copy (`.par`) are text files of records: one line per
record, at most 256 columns, with a four-letter key in columns 1 to 4 (`XYZ ` has a trailing
blank). Keys are read without regard to case. A line beginning `END` ends the file. This
reference is printed by `kalden keys --markdown` from the table that the program's readers
and writers use; `kalden keys KEY` prints one key's entry.

## Columns of a hand-written line

The data of a record begin in column 11. Columns 5 to 10 are read only for a delimiter:
a comma or a tab in columns 5 to 10 ends the key field, and the data begin right behind it.
So these three lines read the same:

```
CELL        4.758900  4.758900 12.991000  90.00000  90.00000 120.00000
CELL,4.7589,4.7589,12.991,90,90,120
CELL      4.7589 4.7589 12.991 90 90 120
```

Anything else in columns 5 to 10 is not read: `CHWT 1 1 1 0 0 0` has its first three
numbers in columns 6 to 10 and reads as `0 0 0`. `kalden check` reports such lines.

Numeric records are read free form: numbers separated by blanks or commas are taken field by
field in order, whatever their columns. A blank field cannot be told from a gap, so a record
needs a value in every field up to its last one (`1,,2` keeps its empty field). A field
without a decimal point is a whole number; exponents (`1.2E-3`) are read. Fields behind the
end of a record read as 0.

The atom keys (`XYZ `, `BISO`, `BETA`, `SDXY`, ...) have a label in columns 11 to 20, of which
`XYZ ` reads four characters; a comma or tab ends it early, and for `XYZ ` a digit from
column 15 on begins the data: `XYZ Fe1 1 .25 .25 .25 1 1` reads like a written line.
`CXYZ` and `CBET` carry the atom's label in columns 6 to 9 as a comment.

## Order of lines

Lines of one key are taken in file order. A key of one line per phase gives its n-th line to
phase n; the atom keys give their m-th line to the m-th atom of all phases in the order of the
`PHNA` atom counts; list keys are read as many times as their count (in `JOBT`) or the lines
say. Lines beyond those read are ignored (`kalden check` names them). Keys of different names
may stand in any order.

## Codewords

Each refinable value has a codeword in the record whose key begins with C (`CCEL` for `CELL`,
`CXYZ` for `XYZ `). Codewords are reals, written `f10.3`:

| Codeword | Meaning |
|---|---|
| 0 | fixed |
| 1 | refined as a parameter of its own |
| +-(10 n + m) | group n (1 to 400) with multiplier m (\|m\| < 10, sign of the codeword): all values of group n share one parameter, each shifting by m times its shift |

Examples: `11.0` is group 1, multiplier 1; `21.5` group 2, multiplier 1.5; `-11.0` group 1,
multiplier -1. A hexagonal cell refines a and b together with `CCEL 11 11 1 0 0 11` (a, b
and the metric slot of gamma in group 1, c on its own). Two values with `1.0` give two
parameters; two with `11.0` give one. Parameters are numbered in order of first use, so a
group number is only a name.

)";

constexpr std::string_view kExample = R"(
## Worked example: a one-phase X-ray project

Corundum (Al2O3, R -3 c) from a Cu K-alpha pattern in xy format, as in `examples/corundum`:

```
TITL      Corundum, Al2O3, Cu K-alpha
FRMT          5
JOBT          0    4    1   -1    0    2    0    1
PWDT      corundum.xy
ELAM        1.540510  1.544330  0.500000
RLIM        10.00000   0.90000   0.00000  40.00000   0.00000   0.00000   0.00000   0.00000
RELX          6 0.30 1.00 1.00 1.00 1.00   5.00000   0.02000 140.00000
ANOM      Al           0.21300   0.24550
ANOM      O            0.04920   0.03220
ZETT         0.00000   0.00000   0.00000
CZET           1.000     0.000     0.000
BKGR           100.0       0.0       0.0       0.0       0.0
CBKG           1.000     1.000     1.000     1.000     1.000
PHTI      Corundum
PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0
SPGR      R -3 C
SCAL       0.1000E-02     0.000
CSCA           1.000     0.000
CELL        4.758900  4.758900 12.991000  90.00000  90.00000 120.00000
CCEL          11.000    11.000     1.000     0.000     0.000    11.000
HWTH         0.00000   0.00000   0.03000
CHWT           0.000     0.000     1.000
PKSH         0.50000   0.00000   0.00000
CPKS           1.000     0.000     0.000
XYZ       Al     1  0.00000  0.00000  0.35216  1.00000  0.31000  3  0  0  0
XYZ       O      2  0.30624  0.00000  0.25000  1.00000  0.33000  2  0  0  0
CXYZ Al          0.000     0.000     1.000     0.000     1.000
CXYZ O           1.000     0.000     0.000     0.000     1.000
```

Line by line: `FRMT 5` reads `PWDT` as two columns of two-theta and counts. `JOBT` asks for
an X-ray refinement (0) with profile 4 (pseudo-Voigt with 5-peak asymmetry), one phase, a
Chebyshev background (-1), no excluded regions and two atom types, weighted by 1/Yobs.
`ELAM` gives the Cu K-alpha doublet; `RELX` six cycles from 5 to 140 degrees in steps of
0.02. The two `ANOM` lines are atom types 1 and 2, named by the second field of each `XYZ `
line. The codewords refine the zero point, five background coefficients, the scale, the cell
(a and b as one, gamma's metric slot tied to them), W, the mixing g1, z of Al, x of O and
both B values. Al stands on 12c (0, 0, z) and O on 18e (x, 0, 1/4) of a group of 36 general
positions, so their site factors are 36/12 = 3 and 36/18 = 2; x and y of Al and y and z of
O are fixed by symmetry. `kalden check corundum.rec` reads it as the engine would; `kalden run
corundum.rec` refines it.
)";

std::string MarkdownRow(const RecordKeyEntry& e) {
  const auto cell = [](std::string_view text) {
    std::string out;
    for (char c : text) {
      if (c == '|') out += '\\';
      out += c;
    }
    return out;
  };
  return "| `" + std::string(e.key) + "` | " + cell(e.fields) + " | " + Code(e.written) + " | " +
         Code(e.read) + " | " + cell(OrNone(e.absent)) + " | " + cell(OrNone(e.units)) + " | " +
         cell(OrNone(e.range)) + " | " + cell(e.writtenBy) + " | " + cell(e.readBy) + " |\n";
}

}  // namespace

const RecordKeyEntry* FindRecordKey(std::string_view key) {
  const std::string folded = FoldedKey(key);
  for (const RecordKeyEntry& e : RecordKeys()) {
    if (e.key == folded) return &e;
  }
  return nullptr;
}

std::string_view ReadLayout(std::string_view key) {
  const RecordKeyEntry* e = FindRecordKey(key);
  return e ? e->read : std::string_view();
}

std::string_view WriteLayout(std::string_view key) {
  const RecordKeyEntry* e = FindRecordKey(key);
  return e ? e->written : std::string_view();
}

std::string KeyEntryText(const RecordKeyEntry& e) {
  std::string text = std::string(e.key) + "  " + std::string(e.group) + ", " +
                     std::string(FamilyText(e.family)) + "\n";
  const std::pair<std::string_view, std::string> rows[] = {
      {"fields", std::string(e.fields)},
      {"written", std::string(OrNone(e.written))},
      {"read", std::string(OrNone(e.read))},
      {"if absent", std::string(OrNone(e.absent))},
      {"units", std::string(OrNone(e.units))},
      {"range", std::string(OrNone(e.range))},
      {"written by", std::string(e.writtenBy)},
      {"read by", std::string(e.readBy)}};
  for (const auto& [name, value] : rows) {
    std::string label(name);
    label.resize(12, ' ');
    text += "  " + label + value + "\n";
  }
  return text;
}

std::string RecordsReference() {
  std::string text(kIntroduction);
  text +=
      "## Keys\n\nLayouts are in column notation: `a4` text of 4 characters, `i5` an "
      "integer in 5 columns, `f10.5` a real in 10 columns with 5 decimals (`f10.0` as "
      "read: any number), `e12.5` a real with exponent, `6x` 6 columns skipped, `3f10.6` "
      "repeated 3 times, `'text'` the text itself. Written lines have the key and six "
      "blanks in front of the written layout.\n";
  std::string_view group;
  for (const RecordKeyEntry& e : RecordKeys()) {
    if (e.group != group) {
      group = e.group;
      text += "\n### " + std::string(group) + "\n\n";
      text +=
          "| Key | Fields | Written | Read | If absent | Units | Range | Written by | "
          "Read by |\n|---|---|---|---|---|---|---|---|---|\n";
    }
    text += MarkdownRow(e);
  }
  text += kExample;
  return text;
}

}  // namespace kaldena
