#include "engine/reflection_terms.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/engine_input.h"
#include "engine/pattern_terms.h"

namespace kaldena {

namespace {

constexpr float kTwoPi = 6.2831853f;
constexpr float kDegree = 57.29578f;
constexpr float kTwoDegrees = 114.59156f;  // 2 x 180 / pi

using Hkl = std::array<float, 3>;

struct Metric {
  float a, b, c, f, e, d;  // A, B, C and the cross terms F (kl), E (hl), D (hk)

  float Form(const Hkl& h) const {
    return a * h[0] * h[0] + b * h[1] * h[1] + c * h[2] * h[2] + d * h[0] * h[1] +
           e * h[0] * h[2] + f * h[1] * h[2];
  }
  // The bilinear form, cross terms formed half each way.
  float Dot(const Hkl& h, const std::array<float, 3>& u) const {
    return a * h[0] * u[0] + b * h[1] * u[1] + c * h[2] * u[2] +
           0.5f * (d * (h[0] * u[1] + h[1] * u[0]) + e * (h[0] * u[2] + h[2] * u[0]) +
                   f * (h[1] * u[2] + h[2] * u[1]));
  }
  // Squared cosine of the angle between reflection h (of form q) and direction u.
  float Cosine2(const Hkl& h, float q, const std::array<float, 3>& u) const {
    const Hkl uh = {u[0], u[1], u[2]};
    const float norm = Form(uh) * q;
    if (norm <= 0) return 0;
    const float dot = Dot(h, u);
    return dot * dot / norm;
  }
};

// March-Dollase factors of the two orientation vectors.
struct Orientation {
  float c1 = 0, c2 = 0, q1 = 1, q2 = 1, p1 = 1, p2 = 1;
  float Factor() const { return p1 * p2; }
};

Orientation PreferredOrientation(const Phase& phase, const Metric& m, const Hkl& h, float q) {
  const auto& v = phase.values;
  const float g1 = v[kOrientation1].value, g2 = v[kOrientation2].value;
  Orientation o;
  o.c1 = m.Cosine2(h, q, phase.vectors[0]);
  o.c2 = m.Cosine2(h, q, phase.vectors[2]);
  o.q1 = g1 * g1 * o.c1 + (1 - o.c1) / g1;
  o.p1 = std::pow(o.q1, -1.5f);
  o.q2 = phase.celluloseOrientation ? (1 - o.c1) * g1 + o.c1 / (g1 * g1)
                                    : g2 * g2 * o.c2 + (1 - o.c2) / g2;
  o.p2 = std::pow(o.q2, -1.5f);
  return o;
}

bool IsVoigt(int profile) { return profile == 3 || profile == 5 || profile == 9; }

float Width(const RefinableRow<kPhaseSlots>& v, int first, float t) {
  float squared = v[first].value * t * t + v[first + 1].value * t + v[first + 2].value;
  if (squared <= 0) squared = 0.0001f;
  const float width = std::sqrt(squared);
  return width > 0 ? width : 0.01f;
}

// The width whose slope the U, V, W rows take: the width itself where the square is positive;
// under the floor, where the width does not follow U, V, W at all, the root of the square's
// magnitude, so that a step sized by it can lead the square back above 0.
float SlopeWidth(const RefinableRow<kPhaseSlots>& v, int first, float t) {
  const float squared = v[first].value * t * t + v[first + 1].value * t + v[first + 2].value;
  return squared > 0 ? Width(v, first, t) : std::sqrt(std::max(-squared, 0.0001f));
}

// Per atom, the sums over the operators: plain, weighted by h' (x, y, z) and by the products
// of h' that belong to the six beta values.
struct AtomSums {
  float c = 0, s = 0;
  std::array<float, 3> cj{}, sj{};
  std::array<float, 6> cq{}, sq{};
  float fa = 0, fb = 0;  // f G Ta and f'' G Ta
  float fUnit = 0, fbUnit = 0;  // the same per unit occupation
};

float FormFactor(const AtomType& type, float s2) {
  const auto& c = type.formFactor;
  float f = type.fPrime + c[8];
  for (int i = 0; i < 4; ++i) f += c[2 * i] * std::exp(-c[2 * i + 1] * s2);
  return f;
}

AtomSums SumOperators(const EngineState& state, const Phase& phase, const Atom& atom,
                      const Hkl& h, float s2, bool derivatives) {
  AtomSums sums;
  const auto& v = atom.values;
  const bool centric = phase.group.centricCode != 1;
  const std::array<float, 6> beta = {v[6].value, v[7].value, v[8].value,
                                     v[9].value, v[10].value, v[11].value};
  const bool anisotropic = atom.anisotropic;
  for (const SymmetryOperator& op : phase.group.operators) {
    Hkl hp;
    for (int j = 0; j < 3; ++j) hp[j] = h[0] * op[j] + h[1] * op[4 + j] + h[2] * op[8 + j];
    const float phi = kTwoPi * (h[0] * op[3] + h[1] * op[7] + h[2] * op[11] +
                                hp[0] * v[kAtomX].value + hp[1] * v[kAtomY].value +
                                hp[2] * v[kAtomZ].value);
    const std::array<float, 6> q = {hp[0] * hp[0], hp[1] * hp[1], hp[2] * hp[2],
                                    hp[0] * hp[1], hp[0] * hp[2], hp[1] * hp[2]};
    float tb = 1;
    if (anisotropic) {
      float e = 0;
      for (int m = 0; m < 6; ++m) e += (m < 3 ? 1.0f : 2.0f) * beta[m] * q[m];
      tb = std::exp(-std::clamp(e, -10.0f, 10.0f));
    }
    const float cs = tb * std::cos(phi);
    const float sn = tb * std::sin(phi);
    sums.c += cs;
    // A centric phase's sine sum vanishes; weighted by h' it does not, and moves the atoms.
    if (!centric) sums.s += sn;
    if (!derivatives) continue;
    for (int j = 0; j < 3; ++j) {
      sums.cj[j] += cs * hp[j];
      sums.sj[j] += sn * hp[j];
    }
    for (int m = 0; m < 6; ++m) {
      sums.cq[m] += cs * q[m];
      sums.sq[m] += sn * q[m];
    }
  }
  const int t = atom.type - 1;
  const bool known = t >= 0 && t < static_cast<int>(state.atomTypes.size());
  const float f = known ? FormFactor(state.atomTypes[t], s2) : 0.0f;
  const float fpp = known ? state.atomTypes[t].fDoublePrime : 0.0f;
  const float ta = std::exp(-v[kAtomB].value * s2);
  sums.fUnit = f * ta;
  sums.fbUnit = fpp * ta;
  sums.fa = sums.fUnit * v[kAtomOccupation].value;
  sums.fb = sums.fbUnit * v[kAtomOccupation].value;
  return sums;
}

class Row {
 public:
  Row(float* row, int parameters) : row_(row), parameters_(parameters) {}
  void Add(const Refinable& value, float term) {
    if (value.number >= 1 && value.number <= parameters_) row_[value.number - 1] += term * value.fraction;
  }

 private:
  float* row_;
  int parameters_;
};

struct Totals {
  float a1 = 0, b1 = 0, a2 = 0, b2 = 0;
};

void AtomRows(const Atom& atom, const AtomSums& s, const Totals& t, float s2, float factor,
              Row& row) {
  const auto& v = atom.values;
  const float u = 2 * s.fa * factor, w = 2 * s.fb * factor;
  for (int j = 0; j < 3; ++j) {
    row.Add(v[kAtomX + j], -kTwoPi * ((s.sj[j] * t.a2 - s.cj[j] * t.b2) * w +
                                      (s.sj[j] * t.a1 - s.cj[j] * t.b1) * u));
  }
  const float plain = (s.s * t.b2 + s.c * t.a2) * w + (s.s * t.b1 + s.c * t.a1) * u;
  row.Add(v[kAtomB], -s2 * plain);
  // Per unit occupation, so that an empty site still has its derivative.
  const float uG = 2 * s.fUnit * factor, wG = 2 * s.fbUnit * factor;
  row.Add(v[kAtomOccupation], (s.s * t.b2 + s.c * t.a2) * wG + (s.s * t.b1 + s.c * t.a1) * uG);
  for (int m = 0; m < 6; ++m) {
    const float term = -((s.sq[m] * t.b2 + s.cq[m] * t.a2) * w + (s.sq[m] * t.b1 + s.cq[m] * t.a1) * u);
    row.Add(v[kAtomBeta11 + m], m < 3 ? term : 2 * term);
  }
}

// What the phase and global rows need of the reflection.
struct Geometry {
  Hkl h;
  float q = 0, s2 = 0, lambda1 = 0, lambda2 = 0, t = 0, cosTheta = 1, sin2Theta = 0, p = 0;
  float width = 0, rightWidth = 0, c3 = 0, fault = 0;
  float uvwWidth = 0, rightUvwWidth = 0;  // the parts of the widths that U, V, W give
  float uvwSlope = 0, rightUvwSlope = 0;  // SlopeWidth of each side
  Orientation o;
};

void OrientationRows(const Phase& phase, const Geometry& g, float f2, Row& row) {
  const auto& v = phase.values;
  const float g1 = v[kOrientation1].value, g2 = v[kOrientation2].value;
  const Orientation& o = g.o;
  const float d1 = 2 * g1 * o.c1 - (1 - o.c1) / (g1 * g1);
  if (phase.celluloseOrientation) {
    const float term = d1 * 1.5f * g2 * std::pow(o.q1, -2.5f) +
                       ((2 / (g1 * g1 * g1)) * o.c1 - (1 - o.c1)) * 1.5f * (1 - g2) *
                           std::pow(o.q2, -2.5f);
    row.Add(v[kOrientation1], -term * f2 / o.p1);
    return;
  }
  row.Add(v[kOrientation1], -d1 * 1.5f * std::pow(o.q1, -2.5f) * f2 / o.p1);
  const float d2 = 2 * g2 * o.c2 - (1 - o.c2) / (g2 * g2);
  row.Add(v[kOrientation2], -d2 * 1.5f * std::pow(o.q2, -2.5f) * f2 / o.p2);
}

void PhaseRows(const EngineState& state, const Phase& phase, const Geometry& g, float f2,
               Row& row) {
  const auto& v = phase.values;
  const int profile = state.controls.job.profile;
  if (v[kScale].value != 0) row.Add(v[kScale], f2 / v[kScale].value);
  row.Add(v[kOverallB], -2 * g.s2 * f2);
  OrientationRows(phase, g, f2, row);
  const bool voigt = IsVoigt(profile);
  const float shape2 = voigt ? std::sqrt(g.c3) : g.p;
  row.Add(v[kShapeA], f2);
  row.Add(v[kShapeA + 1], f2 * shape2);
  if (!voigt) row.Add(v[kShapeA + 2], f2 * g.p * g.p);
  const std::array<float, 3> uvw = {g.t * g.t, g.t, 1};
  for (int i = 0; i < 3; ++i) row.Add(v[kHalfwidthU + i], f2 * 0.5f / g.uvwSlope * uvw[i]);
  if (profile == 6) {
    row.Add(v[kRightShapeA], f2);
    row.Add(v[kRightShapeA + 1], f2 * g.p);
    row.Add(v[kRightShapeA + 2], f2 * g.p * g.p);
    for (int i = 0; i < 3; ++i) {
      row.Add(v[kRightHalfwidthU + i], f2 * 0.5f / g.rightUvwSlope * uvw[i]);
    }
  }
  const float sinCos = std::sqrt(g.s2 * g.lambda2 * 4 * (1 - g.s2 * g.lambda2 * 4));
  const float e = f2 * 0.5f * kTwoDegrees * g.lambda2 / sinCos;
  const Hkl& h = g.h;
  const std::array<float, 6> metric = {h[0] * h[0], h[1] * h[1], h[2] * h[2],
                                       h[2] * h[1], h[2] * h[0], h[1] * h[0]};
  for (int i = 0; i < 6; ++i) row.Add(v[kMetricA + i], e * metric[i]);
  row.Add(v[kStackingFault], g.fault * f2);
  row.Add(v[kSize], kDegree * g.lambda1 * f2 / g.cosTheta);
  row.Add(v[kAsymmetry], f2);
}

void GlobalRows(const EngineState& state, const Geometry& g, float f2, Row& row) {
  const auto& gl = state.globals;
  row.Add(gl[kZeroPoint], f2);
  row.Add(gl[kSampleShift], f2 * g.cosTheta);
  row.Add(gl[kTransparency], f2 * g.sin2Theta);
  for (int slot = kAxial1; slot <= kTransparencyAsymmetry; ++slot) row.Add(gl[slot], f2);
  row.Add(gl[kWavelength], f2 * kTwoDegrees * g.t / g.lambda1);
}

}  // namespace

void ReflectionTerms(EngineState& state, int r) {
  CycleWork& work = state.work;
  if (work.rowSlot[r] < 0) {
    work.rowSlot[r] = work.freeSlots.back();
    work.freeSlots.pop_back();
  }
  ReflectionStore& store = state.reflections;
  int phaseNumber = 0, line = 0, hi = 0, ki = 0, li = 0;
  ReflectionStore::UnpackIndex(store.PackedIndex(r), phaseNumber, line, hi, ki, li);
  const Phase& phase = state.phases[phaseNumber - 1];
  const auto& v = phase.values;
  const int profile = state.controls.job.profile;

  Geometry g;
  g.h = {static_cast<float>(hi), static_cast<float>(ki), static_cast<float>(li)};
  g.lambda1 = state.globals[kWavelength].value;
  const float lambda = line == 1 ? g.lambda1 : state.controls.wavelengths[1];
  const float ratio = line == 1 ? 1.0f : state.controls.wavelengths[2];
  g.lambda2 = 0.25f * lambda * lambda;
  const Metric m{v[kMetricA].value,     v[kMetricA + 1].value, v[kMetricA + 2].value,
                 v[kMetricA + 3].value, v[kMetricA + 4].value, v[kMetricA + 5].value};
  g.q = m.Form(g.h);
  g.s2 = g.q / 4;
  const float t0 = std::exp(-2 * v[kOverallB].value * g.s2);
  g.o = PreferredOrientation(phase, m, g.h, g.q);
  g.c3 = m.Cosine2(g.h, g.q, phase.vectors[1]);

  const float sin2 = std::min(g.q * g.lambda2, 0.999999f);
  g.t = std::sqrt(sin2 / (1 - sin2));
  const float theta = std::atan(g.t);
  g.cosTheta = std::cos(theta);
  g.sin2Theta = std::sin(2 * theta);
  g.p = 2 * theta * kDegree;
  store.Value(ReflectionStore::kPosition, r) = g.p;
  work.slotTan[RowSlot(work, r)] = g.t;
  g.fault = StackingFaultShift(g.p, hi, ki, li);
  const float pShape = g.p + v[kStackingFault].value * g.fault;

  // Shape and width.
  float shape = IsVoigt(profile) ? v[kShapeA].value + v[kShapeA + 1].value * std::sqrt(g.c3)
                                 : v[kShapeA].value + pShape * (v[kShapeA + 1].value +
                                                                pShape * v[kShapeA + 2].value);
  if (profile == 2) shape = std::max(shape, 0.6f);
  store.Value(ReflectionStore::kShapeParameter, r) = shape;
  const float sizeWidth = kDegree * g.lambda1 * v[kSize].value / g.cosTheta;
  g.uvwWidth = Width(v, kHalfwidthU, g.t);
  g.uvwSlope = SlopeWidth(v, kHalfwidthU, g.t);
  g.width = g.uvwWidth + sizeWidth;
  store.Value(ReflectionStore::kHalfwidth, r) = g.width;
  if (profile == 6) {
    store.Value(ReflectionStore::kRightShape, r) =
        v[kRightShapeA].value + pShape * (v[kRightShapeA + 1].value + pShape * v[kRightShapeA + 2].value);
    g.rightUvwWidth = Width(v, kRightHalfwidthU, g.t);
    g.rightUvwSlope = SlopeWidth(v, kRightHalfwidthU, g.t);
    g.rightWidth = g.rightUvwWidth + sizeWidth;
    store.Value(ReflectionStore::kRightHalfwidth, r) = g.rightWidth;
  }

  // Structure factor.
  const bool refinement = IsRefinement(state.controls) && state.parameters > 0;
  std::vector<AtomSums> sums;
  sums.reserve(phase.atoms);
  Totals totals;
  for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
    sums.push_back(SumOperators(state, phase, state.atoms[a], g.h, g.s2, refinement));
    const AtomSums& s = sums.back();
    totals.a1 += s.fa * s.c;
    totals.b1 += s.fa * s.s;
    totals.a2 += s.fb * s.c;
    totals.b2 += s.fb * s.s;
  }
  const float factor = t0 * g.o.Factor() * ratio;
  const float f2 = (totals.a1 * totals.a1 + totals.b1 * totals.b1 + totals.a2 * totals.a2 +
                    totals.b2 * totals.b2) * factor;
  store.Value(ReflectionStore::kStructureFactorSquared, r) = f2;
  float angle = totals.a1 == 0 ? 1.5707963f : std::atan(totals.b1 / totals.a1);
  if (totals.a1 < 0) angle += 3.1415927f;
  if (angle < 0) angle += kTwoPi;
  state.work.phaseAngle[r] = angle;
  if (!refinement) return;

  float* rowData = &work.rows[static_cast<size_t>(RowSlot(work, r)) * kMaxParameters];
  std::fill(rowData, rowData + state.parameters, 0.0f);
  Row row(rowData, state.parameters);
  for (int a = 0; a < phase.atoms; ++a) {
    AtomRows(state.atoms[phase.firstAtom + a], sums[a], totals, g.s2, factor, row);
  }
  PhaseRows(state, phase, g, f2, row);
  GlobalRows(state, g, f2, row);
}

void FreeRowSlots(CycleWork& work, int reflections) {
  work.rowSlot.assign(reflections, -1);
  work.freeSlots.resize(kMaxReflectionsAtPoint);
  // Slot 0 is taken first.
  std::iota(work.freeSlots.rbegin(), work.freeSlots.rend(), 0);
}

void FreeRowSlot(CycleWork& work, int r) {
  if (work.rowSlot[r] < 0) return;
  work.freeSlots.push_back(work.rowSlot[r]);
  work.rowSlot[r] = -1;
}

void SetRowFactors(EngineState& state) {
  CycleWork& work = state.work;
  work.factors.assign(state.phases.size(), {});
  auto set = [](auto& table, const Refinable& value, RowFactor factor) {
    if (value.number >= 1 && value.number <= kMaxParameters) table[value.number - 1] = factor;
  };
  const auto& gl = state.globals;
  const bool transparency = state.controls.job.profile == 8 || state.controls.job.profile == 9;
  for (size_t p = 0; p < state.phases.size(); ++p) {
    auto& table = work.factors[p];
    const auto& v = state.phases[p].values;
    // Later kinds win for a parameter that serves several.
    for (int i = 0; i < 3; ++i) set(table, v[kHalfwidthU + i], RowFactor::kWidth);
    for (int i = 0; i < 3; ++i) set(table, v[kRightHalfwidthU + i], RowFactor::kRightWidth);
    for (int slot = kZeroPoint; slot <= kTransparency; ++slot) set(table, gl[slot], RowFactor::kPosition);
    set(table, gl[kAxial1], RowFactor::kDivergenceSL);
    set(table, gl[kAxial2], RowFactor::kDivergenceHL);
    set(table, v[kAsymmetry], RowFactor::kAsymmetry);
    if (transparency) set(table, gl[kTransparencyAsymmetry], RowFactor::kTransparency);
    for (int i = 0; i < 3; ++i) set(table, v[kShapeA + i], RowFactor::kShape);
    for (int i = 0; i < 3; ++i) set(table, v[kRightShapeA + i], RowFactor::kRightShape);
    set(table, v[kStackingFault], RowFactor::kPosition);
    set(table, v[kSize], RowFactor::kWidth);
    for (int i = 0; i < 6; ++i) set(table, v[kMetricA + i], RowFactor::kTheta);
    set(table, gl[kWavelength], RowFactor::kTheta);
  }
}

}  // namespace kaldena
