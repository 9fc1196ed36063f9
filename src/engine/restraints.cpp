#include "engine/restraints.h"

#include <algorithm>
#include <cmath>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;

using Matrix3 = std::array<std::array<float, 3>, 3>;

// The direct metric tensor of the phase's cell.
Matrix3 DirectMetric(const std::array<float, 6>& c) {
  const float ca = std::cos(c[3] / kDegree), cb = std::cos(c[4] / kDegree),
              cg = std::cos(c[5] / kDegree);
  return {{{c[0] * c[0], c[0] * c[1] * cg, c[0] * c[2] * cb},
           {c[0] * c[1] * cg, c[1] * c[1], c[1] * c[2] * ca},
           {c[0] * c[2] * cb, c[1] * c[2] * ca, c[2] * c[2]}}};
}

int AtomOf(const EngineState& state, const Phase& phase, const std::string& label) {
  const std::string wanted(Trimmed(label));
  for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
    if (std::string(Trimmed(state.atoms[a].label)) == wanted) return a;
  }
  return -1;
}

std::array<float, 3> Position(const Atom& atom) {
  return {atom.values[kAtomX].value, atom.values[kAtomY].value, atom.values[kAtomZ].value};
}

// Adds w g g to the matrix and w e g to the right-hand side for the coordinates' parameters.
void AddToNormalEquations(EngineState& state, const Atom& a1, const Atom& a2,
                          const RestrainedDistance& r, float w, float e) {
  std::vector<std::pair<int, float>> g;  // parameter (from 0) and derivative
  auto collect = [&](const Atom& atom, const std::array<float, 3>& grad) {
    for (int j = 0; j < 3; ++j) {
      const Refinable& v = atom.values[kAtomX + j];
      if (v.number >= 1 && v.number <= state.parameters) g.emplace_back(v.number - 1, v.fraction * grad[j]);
    }
  };
  collect(a1, r.g1);
  collect(a2, r.g2);
  for (const auto& [p, gp] : g) {
    state.shifts[p] += w * e * gp;
    for (const auto& [q, gq] : g) {
      if (q >= p) state.work.normal[static_cast<size_t>(p) * kMaxParameters + q] += w * gp * gq;
    }
  }
}

}  // namespace

RestrainedDistance DistanceTo(const Phase& phase, const std::array<float, 3>& x1,
                              const std::array<float, 3>& x2, int code) {
  const auto& ops = phase.group.operators;
  const int op = std::clamp(code / 1000, 1, static_cast<int>(ops.size())) - 1;
  const std::array<int, 3> shift = {(code / 100) % 10 - 5, (code / 10) % 10 - 5, code % 10 - 5};
  const SymmetryOperator& s = ops[op];
  std::array<float, 3> delta{};
  for (int i = 0; i < 3; ++i) {
    delta[i] = s[4 * i] * x2[0] + s[4 * i + 1] * x2[1] + s[4 * i + 2] * x2[2] + s[4 * i + 3] +
               static_cast<float>(shift[i]) - x1[i];
  }
  const Matrix3 g = DirectMetric(phase.cell);
  std::array<float, 3> gd{};
  float d2 = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) gd[i] += g[i][j] * delta[j];
    d2 += delta[i] * gd[i];
  }
  RestrainedDistance r;
  r.d = std::sqrt(std::max(d2, 0.0f));
  if (r.d == 0) return r;
  for (int j = 0; j < 3; ++j) {
    r.g1[j] = -gd[j] / r.d;
    for (int i = 0; i < 3; ++i) r.g2[j] += gd[i] * s[4 * i + j] / r.d;
  }
  return r;
}

RestraintSums AddRestraints(EngineState& state) {
  RestraintSums sums;
  const float factor = state.controls.restraintWeight;
  for (const Restraint& restraint : state.restraints) {
    for (const Phase& phase : state.phases) {
      const int central = AtomOf(state, phase, restraint.name);
      if (central < 0) continue;
      for (const auto& [label, code] : restraint.partners) {
        const int partner = AtomOf(state, phase, label);
        if (partner < 0) continue;
        const Atom& a1 = state.atoms[central];
        const Atom& a2 = state.atoms[partner];
        const RestrainedDistance r = DistanceTo(phase, Position(a1), Position(a2), code);
        const float w = restraint.weight * factor;
        const float e = restraint.distance - r.d;
        ++sums.count;
        sums.absResidual += std::abs(e);
        sums.weightedResidual2 += w * e * e;
        sums.target += restraint.distance;
        sums.weightedTarget2 += w * restraint.distance * restraint.distance;
        if (state.parameters > 0 && !state.work.normal.empty()) AddToNormalEquations(state, a1, a2, r, w, e);
      }
      break;
    }
  }
  return sums;
}

}  // namespace kaldena
