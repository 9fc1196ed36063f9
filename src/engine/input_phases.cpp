// Phases and their atoms in the input stage: titles, vectors, symbols, atoms, and the
// profile, cell and scale values of each phase.
#include <algorithm>
#include <cmath>

#include "crystal/space_group.h"
#include "engine/cell_metric.h"
#include "engine/input_stages.h"
#include "store/record_catalogue.h"
#include "store/record_lines.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

int CouplingCode(int code) { return code >= 0 && code <= 5 ? code : 0; }

// A blank or 0 site factor is the multiplicity factor of the site in the phase's group, told
// in the list file; a hand-written line need not count the operators itself.
int SiteFactor(const SpaceGroupInfo& group, const Atom& atom, float x, float y, float z,
               ListFile& list) {
  if (atom.siteFactor != 0) return std::max(atom.siteFactor, 1);
  const int factor = std::max(SiteFactorOf(group, {x, y, z}), 1);
  list.Line(FormatLine("(' Site factor of ',A4,' not given:',I4,' from the space group')",
                       atom.label, factor));
  return factor;
}

bool ReadAtom(InputRecords& in, const SpaceGroupInfo& group, Atom& atom) {
  float x = 0, y = 0, z = 0, occupation = 0, b = 0;
  if (in.Required("XYZ ", " XYZ record missing", atom.label, atom.type, x, y, z, occupation, b,
                  atom.siteFactor, atom.yCoupling, atom.zCoupling,
                  atom.bCoupling) != RecordRead::kOk) {
    return false;
  }
  atom.type = std::clamp(atom.type, 1, kMaxAtomTypes);
  atom.siteFactorFromGroup = atom.siteFactor == 0;
  atom.siteFactor = SiteFactor(group, atom, x, y, z, in.List());
  atom.yCoupling = CouplingCode(atom.yCoupling);
  atom.zCoupling = CouplingCode(atom.zCoupling);
  atom.bCoupling = CouplingCode(atom.bCoupling);
  auto& v = atom.values;
  v[kAtomX].value = x;
  v[kAtomY].value = y;
  v[kAtomZ].value = z;
  v[kAtomB].value = b;
  // Kept per operator; the output multiplies the site factor back.
  v[kAtomOccupation].value = occupation / static_cast<float>(atom.siteFactor);
  return true;
}

// BISO and BETA, when the project has them, follow the atoms one line each.
void ReadThermal(InputRecords& in, Atom& atom) {
  std::string label;
  std::array<float, 6> values{};
  if (in.Next("BISO", label, values[0]) == RecordRead::kOk) {
    atom.values[kAtomB].value = values[0];
  }
  if (in.Next("BETA", label, values[0], values[1], values[2], values[3], values[4], values[5]) ==
      RecordRead::kOk) {
    atom.anisotropic = true;
    for (int i = 0; i < 6; ++i) atom.values[kAtomBeta11 + i].value = values[i];
  }
}

// Six values of which the last three belong to the right side of a split profile.
void ReadSides(InputRecords& in, std::string_view key, std::array<float, 3> absent, Phase& phase,
               int leftSlot, int rightSlot) {
  std::array<float, 6> v{absent[0], absent[1], absent[2], absent[0], absent[1], absent[2]};
  if (in.NextValues(key, v) == RecordRead::kMissing) {
    v = {absent[0], absent[1], absent[2], absent[0], absent[1], absent[2]};
  }
  for (int i = 0; i < 3; ++i) {
    phase.values[leftSlot + i].value = v[i];
    phase.values[rightSlot + i].value = v[3 + i];
  }
}

bool ReadPhaseHead(InputRecords& in, Phase& phase, std::vector<std::string>& lines) {
  phase.title = FindText(in.Store(), "PHTI", "Untitled phase");
  std::array<float, 9> v{};
  if (in.Required("PHNA", "PHNA record missing", phase.atoms, v[0], v[1], v[2], v[3], v[4], v[5],
                  v[6], v[7], v[8]) != RecordRead::kOk) {
    return false;
  }
  for (int i = 0; i < 3; ++i) {
    auto& vector = phase.vectors[i];
    std::copy(v.begin() + 3 * i, v.begin() + 3 * i + 3, vector.begin());
    if (vector == std::array<float, 3>{}) vector = {0, 0, 1};
  }
  std::string data;
  if (!in.NextData("SPGR", data)) {
    in.List().Line(" SPGR record missing");
    return false;
  }
  return ReadPhaseSpaceGroup(data.substr(0, 20), phase.group, lines) == 0;
}

bool ReadPhaseValues(InputRecords& in, EngineState& state, Phase& phase) {
  auto& v = phase.values;
  in.Next("SCAL", v[kScale].value, v[kOverallB].value);
  ReadSides(in, "HWTH", {0, 0, 0.03f}, phase, kHalfwidthU, kRightHalfwidthU);
  std::array<float, 6> strainSize{};
  in.NextValues("STSZ", strainSize);
  v[kStackingFault].value = strainSize[0];
  v[kSize].value = strainSize[1];
  std::string data;
  if (!in.NextData("CELL", data)) {
    in.List().Line(" CELL record missing");
    return false;
  }
  float wavelength = 0;
  if (ReadCellLine(data, phase.cell, wavelength) != ReadStatus::kOk) {
    in.List().Line(ErrorReading("CELL", data));
    return false;
  }
  int cellulose = 0;
  in.Next("ASYM", v[kOrientation1].value, v[kAsymmetry].value, v[kOrientation2].value, cellulose);
  phase.celluloseOrientation = cellulose == 1;
  // An orientation value of 0 means no correction, which the factor's form gives at 1.
  for (int slot : {kOrientation1, kOrientation2}) {
    if (v[slot].value == 0) v[slot].value = 1.0f;
  }
  ReadSides(in, "PKSH", {0.5f, 0, 0}, phase, kShapeA, kRightShapeA);
  if (state.controls.job.profile != 6) {
    for (int slot = kRightHalfwidthU; slot < kRightShapeA + 3; ++slot) v[slot].value = 0;
  }
  return !in.Failed();
}

// The metric slots take the reciprocal metric of the cell, which the refinement of the cell
// works with; the cell itself is kept beside it.
bool SetMetric(EngineState& state, Phase& phase, Reporter& reporter) {
  CellMetric m;
  const MetricStatus status =
      MetricFromCell(phase.cell, phase.group.laueClass, phase.group.uniqueAxis, m);
  if (status != MetricStatus::kOk) {
    state.list.Line(status == MetricStatus::kBadAxis ? "Error K.GT.3"
                                                     : " Cell parameters give no volume");
    return false;
  }
  phase.cell = m.cell;
  phase.laueFlag = m.laueFlag;
  const std::array<float, 6> slots = {m.a, m.b, m.c, m.f, m.e, m.d};
  for (int i = 0; i < 6; ++i) phase.values[kMetricA + i].value = slots[i];
  if (state.debug) reporter.LogLine(" laueflag = " + std::to_string(m.laueFlag));
  return true;
}

}  // namespace

bool ReadPhases(InputRecords& in, EngineState& state, Reporter& reporter) {
  for (int p = 1; p <= state.controls.job.phases; ++p) {
    Phase phase;
    std::vector<std::string> lines;
    const bool head = ReadPhaseHead(in, phase, lines);
    for (const std::string& line : lines) state.list.Line(line);
    if (!head) return false;
    phase.firstAtom = static_cast<int>(state.atoms.size());
    if (phase.firstAtom + phase.atoms > kMaxAtoms || phase.atoms < 0) {
      state.list.Line(FormatLine("(' Too many atoms: more than',I4)", kMaxAtoms));
      return false;
    }
    for (int a = 0; a < phase.atoms; ++a) {
      Atom atom;
      if (!ReadAtom(in, phase.group, atom)) return false;
      ReadThermal(in, atom);
      state.atoms.push_back(atom);
    }
    if (!ReadPhaseValues(in, state, phase) || !SetMetric(state, phase, reporter)) return false;
    state.phases.push_back(std::move(phase));
  }
  return !in.Failed();
}

}  // namespace kaldena
