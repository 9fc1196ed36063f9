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
      if (v.number >= 1 && v.number <= state.parameters) {
        g.emplace_back(v.number - 1, v.fraction * grad[j]);
      }
    }
  };
  collect(a1, r.g1);
  collect(a2, r.g2);
  for (const auto& [p, gp] : g) {
    state.shifts[p] += w * e * gp;
    for (const auto& [q, gq] : g) {
      // Both atoms may share a parameter: its diagonal then takes both products.
      if (q >= p) state.work.normal[static_cast<size_t>(p) * kMaxParameters + q] += w * gp * gq;
    }
  }
}

// The position of an atom moved by the operator and translations of a symmetry code.
std::array<float, 3> Moved(const Phase& phase, const std::array<float, 3>& x, int code,
                           const SymmetryOperator*& op) {
  const auto& ops = phase.group.operators;
  op = &ops[std::clamp(code / 1000, 1, static_cast<int>(ops.size())) - 1];
  const std::array<int, 3> shift = {(code / 100) % 10 - 5, (code / 10) % 10 - 5, code % 10 - 5};
  const SymmetryOperator& s = *op;
  std::array<float, 3> moved{};
  for (int i = 0; i < 3; ++i) {
    moved[i] = s[4 * i] * x[0] + s[4 * i + 1] * x[1] + s[4 * i + 2] * x[2] + s[4 * i + 3] +
               static_cast<float>(shift[i]);
  }
  return moved;
}

void AddLink(const Restraint& restraint, const std::string& label1, int code1, int i2, float target,
             std::vector<RestraintLink>& links) {
  const auto& [label2, code2] = restraint.partners[i2];
  links.push_back({label1, label2, code1, code2, target});
}

}  // namespace

RestrainedDistance DistanceBetween(const Phase& phase, const std::array<float, 3>& x1, int code1,
                                   const std::array<float, 3>& x2, int code2) {
  const SymmetryOperator *s1 = nullptr, *s2 = nullptr;
  const std::array<float, 3> p1 = Moved(phase, x1, code1, s1), p2 = Moved(phase, x2, code2, s2);
  std::array<float, 3> delta{};
  for (int i = 0; i < 3; ++i) delta[i] = p2[i] - p1[i];
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
    for (int i = 0; i < 3; ++i) {
      r.g1[j] -= gd[i] * (*s1)[4 * i + j] / r.d;
      r.g2[j] += gd[i] * (*s2)[4 * i + j] / r.d;
    }
  }
  return r;
}

std::vector<RestraintLink> RestraintLinks(const Restraint& restraint) {
  std::vector<RestraintLink> links;
  const int n = static_cast<int>(restraint.partners.size());
  for (int i = 0; i < n; ++i)
    AddLink(restraint, restraint.name, restraint.code, i, restraint.distance, links);
  if (n != 4 && n != 6) return links;
  const float edge = restraint.distance * std::sqrt(n == 4 ? 8.0f / 3.0f : 2.0f);
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      if (n == 6 && i % 2 == 0 && j == i + 1) continue;  // opposite corners of the octahedron
      const auto& [label, code] = restraint.partners[i];
      AddLink(restraint, label, code, j, edge, links);
    }
  }
  return links;
}

RestraintSums AddRestraints(EngineState& state) {
  RestraintSums sums;
  const float factor = state.controls.restraintWeight;
  for (const Restraint& restraint : state.restraints) {
    const auto phase = std::find_if(state.phases.begin(), state.phases.end(), [&](const Phase& p) {
      return AtomOf(state, p, restraint.name) >= 0;
    });
    if (phase == state.phases.end()) continue;
    const float w = restraint.weight * factor;
    for (const RestraintLink& link : RestraintLinks(restraint)) {
      const int i1 = AtomOf(state, *phase, link.label1), i2 = AtomOf(state, *phase, link.label2);
      if (i1 < 0 || i2 < 0) continue;
      const Atom& a1 = state.atoms[i1];
      const Atom& a2 = state.atoms[i2];
      const RestrainedDistance r =
          DistanceBetween(*phase, Position(a1), link.code1, Position(a2), link.code2);
      const float e = link.target - r.d;
      ++sums.count;
      sums.absResidual += std::abs(e);
      sums.weightedResidual2 += w * e * e;
      sums.target += link.target;
      sums.weightedTarget2 += w * link.target * link.target;
      if (state.parameters > 0 && !state.work.normal.empty()) {
        AddToNormalEquations(state, a1, a2, r, w, e);
      }
    }
  }
  return sums;
}

}  // namespace kaldena
