#include "engine/model_warnings.h"

#include <cmath>

#include "engine/engine_input.h"
#include "engine/parameter_numbering.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr float kRadiansPerDegree = 0.017453292f;
constexpr float kOccupationSlack = 1e-4f;  // rounding of values written with five decimals

bool IsPseudoVoigt(int profile) {
  return profile == 1 || profile == 4 || profile == 6 || profile == 7 || profile == 8;
}

float SquaredWidth(const RefinableRow<kPhaseSlots>& v, int first, float t) {
  return v[first].value * t * t + v[first + 1].value * t + v[first + 2].value;
}

// The phase (from 1) and position of reflection r when it lies in the range, else phase 0.
int PhaseInRange(const EngineState& state, int r, float& position) {
  int p = 0, line = 0, h = 0, k = 0, l = 0;
  ReflectionStore::UnpackIndex(state.reflections.PackedIndex(r), p, line, h, k, l);
  position = state.reflections.Value(ReflectionStore::kPosition, r);
  const bool in = p >= 1 && p <= static_cast<int>(state.phases.size()) &&
                  position >= state.controls.start && position <= state.controls.stop;
  return in ? p : 0;
}

bool NegativeSquaredWidth(const EngineState& state, int phase, float position) {
  const auto& v = state.phases[phase - 1].values;
  const float t = std::tan(position * kRadiansPerDegree / 2);
  return SquaredWidth(v, kHalfwidthU, t) < 0 ||
         (state.controls.job.profile == 6 && SquaredWidth(v, kRightHalfwidthU, t) < 0);
}

// The first reflection of each phase in the range at which a check fails, one line each.
void CheckReflections(const EngineState& state, std::vector<std::string>& out) {
  const ReflectionStore& store = state.reflections;
  const int profile = state.controls.job.profile;
  std::vector<bool> widthTold(state.phases.size()), shapeTold(state.phases.size());
  for (int r = 0; r < store.Count(); ++r) {
    float position = 0;
    const int p = PhaseInRange(state, r, position);
    if (p == 0) continue;
    if (NegativeSquaredWidth(state, p, position) && !widthTold[p - 1]) {
      widthTold[p - 1] = true;
      out.push_back(FormatLine(
          "('Phase',I3,': U, V, W give a negative squared width at 2-theta',F8.3)", p, position));
    }
    float shape = store.Value(ReflectionStore::kShapeParameter, r);
    if (profile == 6 && (shape >= 0 && shape <= 1))
      shape = store.Value(ReflectionStore::kRightShape, r);
    if (IsPseudoVoigt(profile) && (shape < 0 || shape > 1) && !shapeTold[p - 1]) {
      shapeTold[p - 1] = true;
      out.push_back(
          FormatLine("('Phase',I3,': pseudo-Voigt mixing',F8.3,' outside 0 to 1 at 2-theta',F8.3)",
                     p, shape, position));
    }
  }
}

// b11, b22, b33, b12, b13, b23 as a symmetric matrix: positive definite when its three leading
// minors are positive.
bool PositiveDefinite(const RefinableRow<kAtomColumns>& v) {
  const double b11 = v[kAtomBeta11].value, b22 = v[kAtomBeta11 + 1].value,
               b33 = v[kAtomBeta11 + 2].value, b12 = v[kAtomBeta11 + 3].value,
               b13 = v[kAtomBeta11 + 4].value, b23 = v[kAtomBeta11 + 5].value;
  const double minor2 = b11 * b22 - b12 * b12;
  const double det =
      b11 * (b22 * b33 - b23 * b23) - b12 * (b12 * b33 - b23 * b13) + b13 * (b12 * b23 - b22 * b13);
  return b11 > 0 && minor2 > 0 && det > 0;
}

void CheckAtoms(const EngineState& state, std::vector<std::string>& out) {
  for (const Atom& atom : state.atoms) {
    const std::string label(Trimmed(atom.label));
    const float b = atom.values[kAtomB].value;
    if (!atom.anisotropic && b < 0) {
      out.push_back(FormatLine("('Atom ',A,': negative B',F9.4)", label, b));
    }
    if (atom.anisotropic && !PositiveDefinite(atom.values)) {
      out.push_back("Atom " + label + ": anisotropic B not positive definite");
    }
    const float n = atom.values[kAtomOccupation].value;
    if (n < 0 || n > 1 + kOccupationSlack) {
      out.push_back(FormatLine("('Atom ',A,': occupation',F9.4,' outside 0 to 1')", label, n));
    }
  }
}

}  // namespace

int NegativeWidthCount(const EngineState& state) {
  int count = 0;
  for (int r = 0; r < state.reflections.Count(); ++r) {
    float position = 0;
    const int p = PhaseInRange(state, r, position);
    if (p != 0 && NegativeSquaredWidth(state, p, position)) ++count;
  }
  return count;
}

std::vector<std::string> ModelWarnings(const EngineState& state) {
  std::vector<std::string> out;
  for (size_t p = 0; p < state.phases.size(); ++p) {
    const float scale = state.phases[p].values[kScale].value;
    if (scale < 0) {
      out.push_back(FormatLine("('Phase',I3,': negative scale factor',E12.4)",
                               static_cast<int>(p + 1), scale));
    }
  }
  CheckReflections(state, out);
  CheckAtoms(state, out);
  return out;
}

std::vector<std::string> CorrelationWarnings(const EngineState& state) {
  std::vector<std::string> out;
  const std::vector<float>& c = state.work.normal;
  if (c.size() < static_cast<size_t>(kMaxParameters) * kMaxParameters) return out;
  auto at = [&](int i, int j) { return c[static_cast<size_t>(i) * kMaxParameters + j]; };
  for (int i = 0; i < state.parameters; ++i) {
    for (int j = i + 1; j < state.parameters; ++j) {
      const float variances = at(i, i) * at(j, j);
      if (!(variances > 0)) continue;
      const float r = at(i, j) / std::sqrt(variances);
      if (std::abs(r) <= kCorrelationWarning) continue;
      out.push_back(FormatLine("('Correlation',F7.3,' between ',A,' and ',A)", r,
                               std::string(Trimmed(ParameterName(state, i + 1))),
                               std::string(Trimmed(ParameterName(state, j + 1)))));
    }
  }
  return out;
}

std::vector<std::string> ListWarnings(EngineState& state) {
  std::vector<std::string> warnings = ModelWarnings(state);
  if (IsRefinement(state.controls)) {
    for (std::string& w : CorrelationWarnings(state)) warnings.push_back(std::move(w));
  }
  if (warnings.empty()) return warnings;
  state.list.Text(Format("(/' WARNINGS:'/)"));
  for (const std::string& w : warnings) state.list.Line(" " + w);
  return warnings;
}

}  // namespace kaldena
