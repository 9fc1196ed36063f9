#include "engine/parameter_shifts.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "engine/cell_from_metric.h"
#include "engine/parameter_limits.h"
#include "engine/parameter_numbering.h"
#include "engine/result_records.h"
#include "store/record_catalogue.h"
#include "util/cell.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;
constexpr float kAbsorptionUnit = 5635.88f;  // 2 r_e, for mu in 1/cm from f'' and lambda

struct Shifted {
  float shift = 0, esd = 0, ratio = 0;
};

class Shifter {
 public:
  explicit Shifter(EngineState& state) : state_(state) {}

  float Covariance(int m, int n) const {
    return state_.work.normal[static_cast<size_t>(m - 1) * kMaxParameters + (n - 1)];
  }

  // The shift rule of every value: its share of its parameter's shift, cut by a limit.
  Shifted Apply(Refinable& v, bool limits) {
    Shifted s;
    const int n = v.number;
    if (n < 1 || n > state_.parameters) return s;
    s.esd = std::sqrt(std::abs(Covariance(n, n))) * std::abs(v.fraction);
    s.shift = state_.shifts[n - 1] * v.fraction;
    if (limits) ApplyLimit(state_.controls.limits, n, s.shift, s.esd, v.value);
    v.value += s.shift;
    if (s.esd != 0) s.ratio = std::clamp(s.shift / s.esd, -99.99f, 99.99f);
    return s;
  }

 private:
  EngineState& state_;
};

using AtomShifts = std::array<Shifted, kAtomColumns>;

void ListAtom(const Atom& atom, const AtomShifts& s, ListFile& list) {
  const auto& v = atom.values;
  const float site = static_cast<float>(atom.siteFactor);
  list.Line(FormatLine("(1X,A4,2X,3(F8.5,F6.2),F7.2,F6.2,F7.3,F6.2)", atom.label,
                       v[kAtomX].value, s[0].ratio, v[kAtomY].value, s[1].ratio, v[kAtomZ].value,
                       s[2].ratio, v[kAtomB].value, s[3].ratio,
                       v[kAtomOccupation].value * site, s[4].ratio));
  if (!atom.anisotropic) return;
  list.Line(FormatLine("(7X,6(F8.5,F6.2))", v[6].value, s[5].ratio, v[7].value, s[6].ratio,
                       v[8].value, s[7].ratio, v[9].value, s[8].ratio, v[10].value, s[9].ratio,
                       v[11].value, s[10].ratio));
}

void ListValue(ListFile& list, std::string_view label, float value, const Shifted& s,
               std::string_view format = "(A32,F14.6,F12.6,F8.2)") {
  std::string padded(label);
  padded.resize(32, ' ');  // an A field right-justifies a shorter text
  list.Line(FormatLine(format, padded, value, s.esd, s.ratio));
}

using PhaseShifts = std::array<Shifted, kPhaseSlots>;

// The cell from the shifted metric; a cell value moves only when its metric value is refined.
void ShiftCell(EngineState& state, Phase& phase, std::array<float, 6>& esds,
               std::array<Shifted, 6>& shifts) {
  Shifter shifter(state);
  const auto& v = phase.values;
  MetricValues metric;
  MetricCovariance covariance{};
  for (int i = 0; i < 6; ++i) {
    const Refinable& mi = v[kMetricA + i];
    // The generation's order: A, B, C, then F, E, D as the phase holds them.
    metric[i] = mi.value;
    for (int j = 0; j < 6; ++j) {
      const Refinable& mj = v[kMetricA + j];
      const bool refined = mi.number >= 1 && mi.number <= state.parameters && mj.number >= 1 &&
                           mj.number <= state.parameters;
      if (refined) covariance[i][j] = mi.fraction * mj.fraction * shifter.Covariance(mi.number, mj.number);
    }
  }
  const CellWithEsds result = CellFromMetric(metric, covariance);
  if (!result.valid) return;
  for (int i = 0; i < 6; ++i) {
    if (v[kMetricA + i].fraction == 0) continue;
    shifts[i].shift = result.cell[i] - phase.cell[i];
    shifts[i].esd = result.esds[i];
    if (result.esds[i] != 0) shifts[i].ratio = std::clamp(shifts[i].shift / result.esds[i], -99.99f, 99.99f);
    phase.cell[i] = result.cell[i];
    esds[i] = result.esds[i];
  }
}

void ListPhase(const EngineState& state, const Phase& phase, const PhaseShifts& s,
               const std::array<Shifted, 6>& cell, ListFile& list) {
  const auto& v = phase.values;
  ListValue(list, " OVERALL SCALE FACTOR", v[kScale].value, s[kScale - 1], "(A32,E14.6,E12.4,F8.2)");
  ListValue(list, " OVERALL TEMP. FACTOR", v[kOverallB].value, s[kOverallB - 1]);
  for (int i = 0; i < 6; ++i) ListValue(list, i == 0 ? " CELL PARAMETERS" : "", phase.cell[i], cell[i]);
  ListValue(list, " PREFERRED ORIENTATION PARAMETER", v[kOrientation1].value, s[kOrientation1 - 1]);
  ListValue(list, " PREFERRED ORIENTATION PARAMETER", v[kOrientation2].value, s[kOrientation2 - 1]);
  ListValue(list, " ASYMMETRY PARAMETER", v[kAsymmetry].value, s[kAsymmetry - 1]);
  const int profile = state.controls.job.profile;
  auto three = [&](std::string_view label, int first) {
    for (int i = 0; i < 3; ++i) ListValue(list, i == 0 ? label : "", v[first + i].value, s[first + i - 1]);
  };
  if (profile == 3 || profile == 5 || profile == 9) {
    list.Line(" VOIGT PEAK WIDTH/SHAPE :");
    three(" GAUSSIAN COMPONENT HALF-WIDTH", kHalfwidthU);
    ListValue(list, " LORENTZIAN COMPONENT PARAMETERS", v[kShapeA].value, s[kShapeA - 1]);
    ListValue(list, "", v[kShapeA + 1].value, s[kShapeA]);
    ListValue(list, " STRAIN", v[kStackingFault].value, s[kStackingFault - 1]);
    return;
  }
  three(" HALFWIDTH PARAMETERS", kHalfwidthU);
  ListValue(list, " STRAIN", v[kStackingFault].value, s[kStackingFault - 1]);
  ListValue(list, " SIZE", v[kSize].value, s[kSize - 1]);
  three(" PEAK SHAPE PARAMETERS", kShapeA);
  if (profile == 6) {
    three(" RIGHT SIDE HALF-WIDTH", kRightHalfwidthU);
    three(" RIGHT SIDE PEAK SHAPE", kRightShapeA);
  }
}

// Particle size from the Lorentzian width terms of the Voigt profiles.
void ListParticleSize(const Phase& phase, const PhaseShifts& s, float lambda, ListFile& list) {
  const float l1 = phase.values[kShapeA].value, l2 = phase.values[kShapeA + 1].value;
  const float e1 = s[kShapeA - 1].esd, e2 = s[kShapeA].esd;
  if (l1 != 0) {
    const float size = kDegree * lambda / l1;
    list.Text(Format("(/' EQUIVALENT PARTICLE SIZE OF',$)"));
    list.Text(Format("(F8.0,'(',F5.0,') A')", size, size * e1 / l1));
  }
  if (l2 != 0 && l1 + l2 != 0) {
    const float size = kDegree * lambda / (l1 + l2);
    list.Text(Format("('                          BY',$)"));
    list.Text(Format("(F8.0,'(',F5.0,') A')", size, size * std::sqrt(e2 * e2 + e1 * e1) / (l1 + l2)));
  }
}

void ShiftGlobals(EngineState& state, std::array<Shifted, kGlobalSlots>& s) {
  Shifter shifter(state);
  for (int slot = 1; slot <= kGlobalSlots; ++slot) {
    Refinable& g = state.globals[slot];
    s[slot - 1] = shifter.Apply(g, true);
    const bool background = slot >= kFirstBackground && slot < kFirstBackground + kBackgroundTerms;
    if (background && std::abs(g.value) < 0.1f) g.value = 0;
  }
  Refinable& wavelength = state.globals[kWavelength];
  if (wavelength.fraction > 0) {
    state.controls.wavelengths[0] = state.controls.wavelengths[1] = wavelength.value;
  }
}

void ListGlobals(const EngineState& state, const std::array<Shifted, kGlobalSlots>& s,
                 ListFile& list) {
  const auto& g = state.globals;
  const char* labels[] = {" ZEROPOINT", " SAMPLE SHIFT", " TRANSPARENCY SHIFT"};
  for (int i = 0; i < 3; ++i) ListValue(list, labels[i], g[kZeroPoint + i].value, s[i]);
  const char* axial[] = {" AXIAL DIVERGENCE 1", " AXIAL DIVERGENCE 2", "TRANPARENCY ASYMMETRY"};
  for (int i = 0; i < 3; ++i) ListValue(list, axial[i], g[kAxial1 + i].value, s[kAxial1 - 1 + i]);
  if (g[kWavelength].fraction > 0) {
    ListValue(list, " Wavelength", g[kWavelength].value, s[kWavelength - 1]);
  }
  ListValue(list, " Background scaling factor", g[kBackgroundFactor].value, s[kBackgroundFactor - 1]);
  if (state.controls.job.background >= 1) return;
  list.Line(" BACKGROUND PARAMETERS");
  for (int row = 0; row < kBackgroundTerms / 5; ++row) {
    const int f = kFirstBackground + 5 * row;
    list.Line(FormatLine("(1X,5(F12.2,F8.2))", g[f].value, s[f - 1].ratio, g[f + 1].value,
                         s[f].ratio, g[f + 2].value, s[f + 1].ratio, g[f + 3].value, s[f + 2].ratio,
                         g[f + 4].value, s[f + 3].ratio));
  }
}

}  // namespace

PhaseContents ContentsOf(const EngineState& state, const Phase& phase) {
  PhaseContents c;
  c.operators = static_cast<int>(phase.group.operators.size());
  const float lambda = state.globals[kWavelength].value;
  bool massKnown = true;
  for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
    const Atom& atom = state.atoms[a];
    const int t = atom.type - 1;
    if (t < 0 || t >= static_cast<int>(state.atomTypes.size())) continue;
    const AtomType& type = state.atomTypes[t];
    const float count = atom.values[kAtomOccupation].value * static_cast<float>(c.operators);
    massKnown = massKnown && (type.mass > 0 || count == 0);
    c.mass += count * type.mass;
    c.electrons += count * static_cast<float>(type.element);
    c.absorption += count * type.fDoublePrime * kAbsorptionUnit * lambda;
  }
  // A part of the cell of no known element leaves the whole mass unknown: 0, which the result
  // table reads as such.
  if (!massKnown) c.mass = 0;
  const UnitCell cell{phase.cell[0], phase.cell[1], phase.cell[2],
                      phase.cell[3], phase.cell[4], phase.cell[5]};
  const float volume = CellVolume(cell);
  c.absorption = volume > 0 ? c.absorption / volume : 0.0f;
  return c;
}

std::vector<Record> ApplyShifts(EngineState& state, int cycle) {
  ClearLimitMarks(state.controls.limits);
  Shifter shifter(state);
  ListFile& list = state.list;
  list.Text(Format("(/' CYCLE',I4)", cycle));
  ResultRecords records;
  std::vector<AtomShifts> atomShifts(state.atoms.size());
  for (size_t p = 0; p < state.phases.size(); ++p) {
    Phase& phase = state.phases[p];
    list.Text(Format("(/' PHASE',I3,'  ATOM        X            Y            Z          B"
                     "           N')",
                     static_cast<int>(p + 1)));
    for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
      Atom& atom = state.atoms[a];
      for (int j = 1; j <= kAtomColumns; ++j) atomShifts[a][j - 1] = shifter.Apply(atom.values[j], true);
      ListAtom(atom, atomShifts[a], list);
    }
    PhaseShifts s{};
    for (int slot = 1; slot <= kPhaseSlots; ++slot) {
      const bool metric = slot >= kMetricA && slot < kMetricA + 6;
      s[slot - 1] = shifter.Apply(phase.values[slot], !metric);
    }
    std::array<float, 6> cellEsds{};
    std::array<Shifted, 6> cellShifts{};
    ShiftCell(state, phase, cellEsds, cellShifts);
    list.Line("");
    ListPhase(state, phase, s, cellShifts, list);
    const int profile = state.controls.job.profile;
    if (profile == 3 || profile == 5 || profile == 9) {
      ListParticleSize(phase, s, state.globals[kWavelength].value, list);
    }
    std::array<float, kPhaseSlots> esds{};
    for (int i = 0; i < kPhaseSlots; ++i) esds[i] = s[i].esd;
    records.AddPhase(phase, esds, cellEsds, ContentsOf(state, phase), profile == 6);
  }
  // Tied values follow their parameters once all direct shifts stand.
  for (Phase& phase : state.phases) {
    for (Refinable& r : phase.values.slots) {
      if (r.number > kMaxParameters) r.value = ResetTied(state, r.number, r.fraction, list);
    }
  }
  for (Atom& atom : state.atoms) {
    for (Refinable& r : atom.values.slots) {
      if (r.number > kMaxParameters) r.value = ResetTied(state, r.number, r.fraction, list);
    }
  }
  for (const AtomType& type : state.atomTypes) records.AddAtomType(type);
  for (size_t a = 0; a < state.atoms.size(); ++a) {
    std::array<float, kAtomColumns> esds{};
    for (int j = 0; j < kAtomColumns; ++j) esds[j] = atomShifts[a][j].esd;
    records.AddAtom(state.atoms[a], esds);
  }
  std::array<Shifted, kGlobalSlots> globalShifts{};
  ShiftGlobals(state, globalShifts);
  list.Line("");
  ListGlobals(state, globalShifts, list);
  std::array<float, kGlobalSlots> globalEsds{};
  for (int i = 0; i < kGlobalSlots; ++i) globalEsds[i] = globalShifts[i].esd;
  records.AddGlobals(state, globalEsds);
  // A limit that stopped its parameter holds it in the next cycle; the others are free again.
  for (ParameterLimit& limit : state.controls.limits) {
    if (limit.mark == kLimitLooked) limit.mark = 0;
  }
  return records.Take();
}

}  // namespace kaldena
