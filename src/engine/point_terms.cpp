#include "engine/point_terms.h"

#include <algorithm>
#include <cmath>

#include "engine/engine_input.h"
#include "engine/pattern_terms.h"
#include "engine/profile_shape.h"
#include "engine/reflection_terms.h"

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;
constexpr float kNumericStep = 0.0001f;

float Sign(float v) { return v < 0 ? -1.0f : 1.0f; }

BackgroundModel Background(const EngineState& state) {
  const RunControls& c = state.controls;
  return {c.job.background, c.chebyshevInterval[0], c.chebyshevInterval[1]};
}

// What the peak of one reflection gives at the point.
struct Peak {
  float y = 0;       // c LP V scale: the point's value per unit F2
  float d = 0;       // distance of the point from the shifted peak
  float a = 0;       // sign(d) d^2
  float c = 1;       // asymmetry correction
  float cd = 0;      // position derivative of the Rietveld correction
  float tanTheta = 0;
  bool rietveld = false;
  // Profile 9: d ln V / d T through the width factor 2 / (1 + exp(T a / sx)).
  float widthTerm = 0;
  PeakResult shape;
};

struct PointFrame {
  float x, zeroShift, sx, sl, hl, transparency, asymmetryLimit, guinier;
  int profile;
};

PointFrame Frame(const EngineState& state, float x) {
  const auto& g = state.globals;
  const float xe = x - g[kZeroPoint].value - g[kSampleShift].value * std::cos(x / 2 / kDegree) -
                   g[kTransparency].value * std::sin(x / kDegree);
  return {x,
          g[kZeroPoint].value + g[kSampleShift].value * std::cos(x / 2 / kDegree) +
              g[kTransparency].value * std::sin(x / kDegree),
          std::sin(xe * 3.141592f / 360.0f),
          // Each AXID value acts with its own parameter: S/L, H/L, transparency asymmetry.
          g[kAxial1].value,
          g[kAxial2].value,
          g[kTransparencyAsymmetry].value,
          state.controls.rlim[3],
          state.controls.rlim[5],
          state.controls.job.profile};
}

bool EvaluatePeak(const EngineState& state, const PointFrame& f, int r, PeakInput& in, Peak& peak,
                  std::vector<std::string>& lines) {
  const ReflectionStore& store = state.reflections;
  int phaseNumber = 0, line = 0, h = 0, k = 0, l = 0;
  ReflectionStore::UnpackIndex(store.PackedIndex(r), phaseNumber, line, h, k, l);
  const Phase& phase = state.phases[phaseNumber - 1];
  float p = store.Value(ReflectionStore::kPosition, r);
  const float fault = phase.values[kStackingFault].value;
  if (fault != 0) p += fault * StackingFaultShift(f.x - f.zeroShift, h, k, l);
  const float asymmetry = phase.values[kAsymmetry].value;
  peak.tanTheta = state.work.slotTan[RowSlot(state.work, r)];
  peak.rietveld = p <= f.asymmetryLimit && f.profile < 4;
  peak.d = f.x - p - f.zeroShift;
  peak.a = Sign(peak.d) * peak.d * peak.d;
  if (peak.rietveld) {
    // Only the derivative of the Rietveld correction acts: the factor itself stays 1.
    const float c = std::max(1 - peak.a * asymmetry / peak.tanTheta, 1e-4f);
    peak.cd = 2 * Sign(peak.d) * asymmetry / peak.tanTheta / c;
  }
  const bool transparency = f.profile == 8 || f.profile == 9;
  peak.c = transparency ? std::max(1 - f.transparency * peak.a / f.sx, 1e-4f) : 1.0f;
  // The profile's offset is the point's distance from the shifted peak.
  in.x = f.x;
  in.p = p + f.zeroShift;
  in.H = store.Value(ReflectionStore::kHalfwidth, r);
  in.eta = store.Value(ReflectionStore::kShapeParameter, r);
  in.tanTheta = peak.tanTheta;
  in.A = asymmetry;
  in.HR = store.Value(ReflectionStore::kRightHalfwidth, r);
  in.etaR = store.Value(ReflectionStore::kRightShape, r);
  in.SL = f.sl;
  in.HL = f.hl;
  if (f.profile == 9) {
    const float e = std::exp(f.transparency * peak.a / f.sx);
    const float wf = 2 / (1 + e);
    in.widthFactor = std::max(wf, 0.1f);
    // V depends on H wf, and its dH is taken to H: so d ln V / d wf = dH H / wf.
    if (wf > 0.1f) peak.widthTerm = -0.5f * wf * e * (peak.a / f.sx);
  }
  in.scaleDivergence = f.guinier > 0 ? 1 / std::cos((p - f.guinier) / kDegree) : 1.0f;
  if (PeakShape(f.profile, in, peak.shape, lines) != ProfileStatus::kOk) return false;
  peak.widthTerm *= peak.shape.dH * in.H;
  peak.y = peak.c * store.Value(ReflectionStore::kLorentzPolarisation, r) * peak.shape.value *
           phase.values[kScale].value;
  return true;
}

// The numeric derivatives of the axial-divergence profile to S/L and H/L.
void DivergenceDerivatives(const EngineState& state, PeakInput in, Peak& peak) {
  const auto& g = state.globals;
  std::vector<std::string> ignored;
  PeakResult moved;
  const float v = peak.shape.value;
  if (g[kAxial1].number != 0 && v != 0) {
    in.SL += kNumericStep;
    PeakShape(7, in, moved, ignored);
    peak.shape.dSL = (moved.value - v) / kNumericStep / v;
    in.SL -= kNumericStep;
  }
  if (g[kAxial2].number != 0 && v != 0) {
    in.HL += kNumericStep;
    PeakShape(7, in, moved, ignored);
    peak.shape.dHL = (moved.value - v) / kNumericStep / v;
  }
}

float Factor(RowFactor kind, const Peak& peak, const PointFrame& f) {
  const PeakResult& s = peak.shape;
  switch (kind) {
    case RowFactor::kOne: return 1;
    case RowFactor::kWidth: return s.dH;
    case RowFactor::kRightWidth: return s.dHR;
    case RowFactor::kPosition: return peak.cd * peak.d + s.dP;
    case RowFactor::kDivergenceSL: return s.dSL;
    case RowFactor::kDivergenceHL: return s.dHL;
    case RowFactor::kShape: return s.dEta;
    case RowFactor::kRightShape: return s.dEtaR;
    case RowFactor::kAsymmetry:
      return peak.rietveld ? -(peak.a / peak.tanTheta) / peak.c : s.dA;
    case RowFactor::kTransparency:
      return -(peak.a / f.sx) / peak.c + peak.widthTerm;
    case RowFactor::kTheta: return peak.cd * peak.d + s.dTheta;
  }
  return 1;
}

}  // namespace

void SetBackground(EngineState& state) {
  const BackgroundModel model = Background(state);
  const auto& g = state.globals;
  const PatternPoints& points = state.points;
  CycleWork& work = state.work;
  for (int i = 0; i < points.count; ++i) {
    if (work.reach.Excluded(i)) continue;
    float value = 0;
    if (model.kind < 1) {
      const auto basis = BackgroundBasis(model, points.x[i]);
      for (int n = 0; n < kBackgroundBasisSize; ++n) value += g[kFirstBackground + n].value * basis[n];
    }
    if (!points.fileBackground.empty()) value += g[kBackgroundFactor].value * points.fileBackground[i];
    work.background[i] = value;
  }
}

PointStatus CalculatePoint(const EngineState& state, int i, std::span<const int> reflections,
                           PointValues& out, std::vector<std::string>& listLines) {
  const CycleWork& work = state.work;
  const PatternPoints& points = state.points;
  const int np = state.parameters;
  const bool refinement = IsRefinement(state.controls) && np > 0;
  const PointFrame f = Frame(state, points.x[i]);
  out.dy.assign(refinement ? np : 0, 0.0f);
  out.phases.assign(state.phases.size(), 0.0f);
  out.reflections.clear();
  for (const int r : reflections) {
    PeakInput in;
    Peak peak;
    if (!EvaluatePeak(state, f, r, in, peak, listLines)) return PointStatus::kFailed;
    int phaseNumber = 0, line = 0, h = 0, k = 0, l = 0;
    ReflectionStore::UnpackIndex(state.reflections.PackedIndex(r), phaseNumber, line, h, k, l);
    out.phases[phaseNumber - 1] +=
        peak.y * state.reflections.Value(ReflectionStore::kStructureFactorSquared, r);
    out.reflections.push_back(peak.y);
    if (!refinement) continue;
    if (f.profile == 7) DivergenceDerivatives(state, in, peak);
    const float* row = &work.rows[static_cast<size_t>(RowSlot(work, r)) * kMaxParameters];
    const auto& factors = work.factors[phaseNumber - 1];
    for (int q = 0; q < np; ++q) {
      if (row[q] != 0) out.dy[q] += Factor(factors[q], peak, f) * row[q] * peak.y;
    }
  }
  out.y = 0;
  for (float phase : out.phases) out.y += phase;
  if (!refinement) return PointStatus::kOk;
  const auto& g = state.globals;
  if (state.controls.job.background < 1) {
    const auto basis = BackgroundBasis(Background(state), points.x[i]);
    for (int n = 0; n < kBackgroundBasisSize; ++n) {
      const Refinable& term = g[kFirstBackground + n];
      if (term.number >= 1 && term.number <= np) out.dy[term.number - 1] += term.fraction * basis[n];
    }
  }
  const Refinable& fileFactor = g[kBackgroundFactor];
  if (fileFactor.number >= 1 && fileFactor.number <= np && !points.fileBackground.empty()) {
    out.dy[fileFactor.number - 1] += fileFactor.fraction * points.fileBackground[i];
  }
  return PointStatus::kOk;
}

void AddToNormalEquations(EngineState& state, std::span<const float> dy, float w, float diff) {
  const int np = state.parameters;
  for (int q = 0; q < np; ++q) {
    if (dy[q] == 0) continue;
    const float gq = dy[q] * w;
    state.shifts[q] += gq * diff;
    float* m = &state.work.normal[static_cast<size_t>(q) * kMaxParameters];
    for (int r = q; r < np; ++r) m[r] += gq * dy[r];
  }
}

PointStatus PointTerms(EngineState& state, int i) {
  CycleWork& work = state.work;
  PatternPoints& points = state.points;
  const int np = state.parameters;
  const bool refinement = IsRefinement(state.controls) && np > 0;
  PointValues values;
  std::vector<std::string> lines;
  const std::span<const int> reflections = work.reach.At(i);
  if (CalculatePoint(state, i, reflections, values, lines) != PointStatus::kOk) {
    for (const std::string& line : lines) state.list.Line(line);
    return PointStatus::kFailed;
  }
  for (size_t p = 0; p < values.phases.size(); ++p) work.phaseCalculated[p][i] = values.phases[p];
  const float y = values.y;
  work.calculated[i] = y;
  const float background = work.background[i];
  const std::vector<float>& dy = values.dy;
  const std::vector<float>& yr = values.reflections;

  if (refinement) {
    float w = points.weight[i];
    if (state.controls.job.weighting == 1 && state.controls.cycles > 1) {
      const float yt = y + background;
      w = yt <= 1 ? 1.0f : 1 / yt;
      points.weight[i] = w;
    }
    AddToNormalEquations(state, dy, w, points.observed[i] - background - y);
  } else if (state.controls.calculation) {
    points.weight[i] = y + background != 0 ? 1 / (y + background) : 1.0f;
  }

  // Shares of the observed intensity for the extracted intensities of the reflections.
  const float w = points.weight[i];
  const float observed = points.observed.empty() ? 0.0f : points.observed[i];
  for (size_t n = 0; n < reflections.size(); ++n) {
    const int r = reflections[n];
    const float share =
        yr[n] * state.reflections.Value(ReflectionStore::kStructureFactorSquared, r);
    float e = 0, take = 0;
    if (state.controls.job.background < 1) {
      e = y + background != 0 ? share / (y + background) : 0.0f;
      take = observed;
    } else if (y != 0) {
      e = share / y;
      take = observed - background;
    }
    work.observedIntensity[r] += e * take;
    if (w != 0) work.intensityVariance[r] += e * e / w;
    work.calculatedIntensity[r] += yr[n];
  }
  return PointStatus::kOk;
}

}  // namespace kaldena
