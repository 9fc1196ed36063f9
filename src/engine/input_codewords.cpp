// Codewords of atoms and phases, read into the fractions of their values; NumberParameters
// turns them into parameter numbers.
#include "engine/input_stages.h"

namespace kaldena {

namespace {

void ReadAtomCodewords(InputRecords& in, const RunControls& c, Atom& atom) {
  auto& v = atom.values;
  // A relaxation factor of 0 switches its whole class of atom values off.
  if (c.relaxation[0] != 0) {
    std::array<float, 5> w{};
    in.NextValues("CXYZ", w);
    v[kAtomX].fraction = w[0];
    v[kAtomY].fraction = w[1];
    v[kAtomZ].fraction = w[2];
    v[kAtomOccupation].fraction = w[3];
    v[kAtomB].fraction = w[4];
  }
  if (c.relaxation[1] == 0) {
    v[kAtomB].fraction = 0;
    return;
  }
  std::array<float, 6> w{};
  in.NextValues("CBET", w);
  for (int i = 0; i < 6; ++i) v[kAtomBeta11 + i].fraction = w[i];
}

// A row of codewords into the slots that `slots` names, in record order.
template <size_t N>
void ReadPhaseRow(InputRecords& in, std::string_view key, Phase& phase,
                  const std::array<int, N>& slots) {
  std::array<float, N> w{};
  in.NextValues(key, w);
  for (size_t i = 0; i < N; ++i) phase.values[slots[i]].fraction = w[i];
}

void ReadPhaseCodewords(InputRecords& in, Phase& phase) {
  ReadPhaseRow<2>(in, "CSCA", phase, {kScale, kOverallB});
  // a, b, c, alpha, beta, gamma drive A, B, C, F, E, D: the slot order of the metric.
  ReadPhaseRow<6>(in, "CCEL", phase,
                  {kMetricA, kMetricA + 1, kMetricA + 2, kMetricA + 3, kMetricA + 4, kMetricA + 5});
  ReadPhaseRow<6>(in, "CHWT", phase,
                  {kHalfwidthU, kHalfwidthU + 1, kHalfwidthU + 2, kRightHalfwidthU,
                   kRightHalfwidthU + 1, kRightHalfwidthU + 2});
  ReadPhaseRow<3>(in, "CASY", phase, {kOrientation1, kAsymmetry, kOrientation2});
  ReadPhaseRow<6>(
      in, "CPKS", phase,
      {kShapeA, kShapeA + 1, kShapeA + 2, kRightShapeA, kRightShapeA + 1, kRightShapeA + 2});
  ReadPhaseRow<2>(in, "CSTS", phase, {kStackingFault, kSize});
}

}  // namespace

bool ReadCodewords(InputRecords& in, EngineState& state) {
  for (Atom& atom : state.atoms) ReadAtomCodewords(in, state.controls, atom);
  for (Phase& phase : state.phases) ReadPhaseCodewords(in, phase);
  return !in.Failed();
}

}  // namespace kaldena
