// The model as the input stage lists it: initial parameters of each phase and its atoms,
// the parameter numbers of the variables, and the symmetry operators.
#include "engine/input_listing.h"

#include <string>

#include "util/column_format.h"

namespace kaldena {

namespace {

// Values with `valueFormat`, or the parameter numbers of the same slots in ten columns each.
template <typename Row>
std::string Items(std::string_view label, const Row& row, std::initializer_list<int> slots,
                  bool numbers, std::string_view valueFormat) {
  std::string line = " " + std::string(label);
  line.resize(24, ' ');
  for (int slot : slots) {
    line += numbers ? FormatLine("(I10)", row[slot].number)
                    : FormatLine(valueFormat, row[slot].value);
  }
  return line;
}

void ListPhaseValues(const Phase& phase, ListFile& list, bool numbers) {
  const auto& v = phase.values;
  list.Line(Items("OVERALL SCALE FACTOR", v, {kScale}, numbers, "(E12.5)"));
  list.Line(Items("OVERALL TEMP. FACTOR", v, {kOverallB}, numbers, "(F10.4)"));
  if (numbers) {
    list.Line(Items("METRIC", v, {6, 7, 8, 9, 10, 11}, true, ""));
  } else {
    const auto& c = phase.cell;
    list.Line(FormatLine("(' CELL PARAMETERS       ',3F10.5,3F10.4)", c[0], c[1], c[2], c[3],
                         c[4], c[5]));
  }
  list.Line(Items("HALFWIDTH PARAMETERS", v, {3, 4, 5}, numbers, "(F10.5)"));
  list.Line(Items("PEAK SHAPE PARAMETERS", v, {15, 16, 17}, numbers, "(F10.5)"));
  list.Line(Items("RIGHT SIDE HALF-WIDTH", v, {18, 19, 20}, numbers, "(F10.5)"));
  list.Line(Items("RIGHT SIDE PEAK SHAPE", v, {21, 22, 23}, numbers, "(F10.5)"));
  list.Line(Items("PREFERRED ORIENTATION", v, {kOrientation1, kOrientation2}, numbers, "(F10.5)"));
  list.Line(Items("ASYMMETRY PARAMETER", v, {kAsymmetry}, numbers, "(F10.5)"));
  list.Line(Items("STRAIN, SIZE", v, {kStackingFault, kSize}, numbers, "(F10.5)"));
}

void ListAtoms(const EngineState& state, const Phase& phase, ListFile& list, bool numbers) {
  list.Line(" ATOM TYPE                       X         Y         Z         B         N");
  for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
    const Atom& atom = state.atoms[a];
    const std::string label = FormatLine("(A4,I5)", atom.label, atom.type);
    list.Line(Items(label, atom.values, {1, 2, 3, 4, 5}, numbers, "(F10.5)"));
    if (atom.anisotropic) {
      list.Line(Items("      BETA", atom.values, {6, 7, 8, 9, 10, 11}, numbers, "(F10.5)"));
    }
  }
}

void ListPhases(const EngineState& state, ListFile& list, bool numbers) {
  for (size_t p = 0; p < state.phases.size(); ++p) {
    const Phase& phase = state.phases[p];
    list.Text(Format("(/' PHASE',I3,2X,A)", static_cast<int>(p + 1), phase.title));
    if (!numbers) list.Line(" SPACE GROUP " + phase.group.symbol);
    ListAtoms(state, phase, list, numbers);
    ListPhaseValues(phase, list, numbers);
  }
}

}  // namespace

void ListInitialParameters(const EngineState& state, ListFile& list) {
  list.Text(Format("(/' ***INITIAL PARAMETERS***')"));
  ListPhases(state, list, false);
}

void ListCoding(const EngineState& state, ListFile& list) {
  list.Text(Format("(/' ***CODING OF VARIABLES***')"));
  ListPhases(state, list, true);
  list.Line(" GLOBAL PARAMETERS");
  const auto& g = state.globals;
  list.Line(Items("ZERO, SHIFT, TRANSP.", g, {1, 2, 3}, true, ""));
  list.Line(Items("AXIAL, TRANSP. ASYM.", g, {29, 30, 31}, true, ""));
  list.Line(Items("WAVELENGTH, BKG FACTOR", g, {32, 33}, true, ""));
  for (int row = 0; row < kBackgroundTerms / 5; ++row) {
    const int f = kFirstBackground + 5 * row;
    list.Line(Items(row == 0 ? "BACKGROUND" : "", g, {f, f + 1, f + 2, f + 3, f + 4}, true, ""));
  }
}

void ListSymmetryOperators(const Phase& phase, int number, ListFile& list) {
  list.Text(Format("(/'Symmetry operators: phase',I3,2X,A)", number, phase.group.symbol));
  for (size_t i = 0; i < phase.group.operators.size(); ++i) {
    list.Line(FormatLine("(I5,2X,A)", static_cast<int>(i + 1),
                         OperatorText(phase.group.operators[i])));
  }
}

}  // namespace kaldena
