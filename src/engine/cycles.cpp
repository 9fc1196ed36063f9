#include "engine/cycles.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "engine/engine_input.h"
#include "engine/parameter_numbering.h"
#include "engine/parameter_shifts.h"
#include "engine/point_terms.h"
#include "engine/reflection_terms.h"
#include "engine/residual_statistics.h"
#include "engine/restraints.h"
#include "engine/result_records.h"
#include "engine/shift_solver.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

void Progress(const EngineState& state, Reporter& reporter, std::string_view line) {
  if (state.debug) reporter.LogLine(line);
}

bool TakesPart(const EngineState& state, int i) {
  const PointReflections& reach = state.work.reach;
  if (reach.Excluded(i)) return false;
  return !reach.At(i).empty() || state.controls.job.background < 1;
}

}  // namespace

bool Sweep(EngineState& state) {
  CycleWork& w = state.work;
  const int reflections = state.reflections.Count();
  w.observedIntensity.assign(reflections, 0.0f);
  w.intensityVariance.assign(reflections, 0.0f);
  w.calculatedIntensity.assign(reflections, 0.0f);
  std::fill(w.normal.begin(), w.normal.end(), 0.0f);
  state.shifts.fill(0.0f);
  SetBackground(state);
  const bool refinement = IsRefinement(state.controls);
  // A reflection's terms stand from the first point that it reaches to the last.
  const PointReflections& reach = w.reach;
  FreeRowSlots(w, reflections);
  int taken = 0, passed = 0;  // reflections by their first point, and by their last
  state.summary.points = 0;
  for (int i = 0; i < state.points.count; ++i) {
    if (!TakesPart(state, i)) continue;
    ++state.summary.points;
    for (; passed < reflections && reach.lastPoint[reach.byLastPoint[passed]] < i; ++passed) {
      FreeRowSlot(w, reach.byLastPoint[passed]);
    }
    for (; taken < reflections && reach.firstPoint[reach.byFirstPoint[taken]] <= i; ++taken) {
      ReflectionTerms(state, reach.byFirstPoint[taken]);
    }
    if (refinement && state.points.weight[i] <= 0) continue;
    if (PointTerms(state, i) != PointStatus::kOk) return false;
  }
  // Those that reach no point still get their terms, for the outputs.
  FreeRowSlots(w, reflections);
  for (; taken < reflections; ++taken) {
    ReflectionTerms(state, reach.byFirstPoint[taken]);
    FreeRowSlot(w, reach.byFirstPoint[taken]);
  }
  return true;
}

namespace {

void DampAndMirror(EngineState& state) {
  const int np = state.parameters;
  std::vector<float>& m = state.work.normal;
  float damping = state.controls.damping > 0 ? state.controls.damping : 1.0f;
  for (int i = 0; i < np; ++i) {
    m[static_cast<size_t>(i) * kMaxParameters + i] *= damping;
    for (int j = i + 1; j < np; ++j) {
      m[static_cast<size_t>(j) * kMaxParameters + i] = m[static_cast<size_t>(i) * kMaxParameters + j];
    }
  }
}

bool CheckDiagonal(EngineState& state) {
  bool zero = false;
  for (int i = 0; i < state.parameters; ++i) {
    if (state.work.normal[static_cast<size_t>(i) * kMaxParameters + i] != 0) continue;
    state.list.Line(FormatLine("(' Zero derivative for  ',A20)", ParameterName(state, i + 1)));
    zero = true;
  }
  return !zero;
}

// A held parameter keeps its value: its row and column are cleared, the diagonal kept, so
// that its shift is 0.
void Hold(EngineState& state, int n) {
  if (n < 1 || n > state.parameters) return;
  std::vector<float>& m = state.work.normal;
  const size_t d = static_cast<size_t>(n - 1) * kMaxParameters + (n - 1);
  const float diagonal = m[d];
  for (int j = 0; j < state.parameters; ++j) {
    m[static_cast<size_t>(n - 1) * kMaxParameters + j] = 0;
    m[static_cast<size_t>(j) * kMaxParameters + (n - 1)] = 0;
  }
  m[d] = diagonal;
  state.shifts[n - 1] = 0;
}

// Parameters stopped by a limit in the last cycle, and those that an active block holds.
void HoldParameters(EngineState& state) {
  for (const ParameterLimit& limit : state.controls.limits) {
    if (limit.mark == kLimitHit) Hold(state, std::abs(limit.number));
  }
  for (const ParameterBlock& block : state.controls.blocks) {
    if (block.active) Hold(state, block.blockedParameter);
  }
}

// A value of a watched parameter that the shifts took below its limit blocks the other
// parameter from the next cycle on.
void TestBlocks(EngineState& state) {
  for (ParameterBlock& block : state.controls.blocks) {
    if (block.active || block.watchedParameter == 0 || block.blockedParameter == 0) continue;
    bool below = false;
    auto look = [&](const Refinable& r) {
      below = below || (r.number == block.watchedParameter && r.value < block.limit);
    };
    for (const Atom& a : state.atoms) for (const Refinable& r : a.values.slots) look(r);
    for (const Phase& p : state.phases) for (const Refinable& r : p.values.slots) look(r);
    for (const Refinable& r : state.globals.slots) look(r);
    if (!below) continue;
    block.active = true;
    state.list.Line(FormatLine("('*** Parameter ',I4,' below',F8.4,' ***')", block.watched,
                               block.limit));
    state.list.Line(FormatLine("('    Parameter ',I4,' blocked')", block.blocked));
  }
}

// Shift over esd of each parameter, the largest with its name and the mean magnitude.
void ShiftStatistics(EngineState& state, Reporter& reporter) {
  CycleSummary& s = state.summary;
  s.largestRatio = 0;
  s.averageRatio = 0;
  int largest = 0;
  for (int i = 0; i < state.parameters; ++i) {
    const float variance = std::abs(state.work.normal[static_cast<size_t>(i) * kMaxParameters + i]);
    const float ratio = variance > 0 ? state.shifts[i] / std::sqrt(variance) : 0.0f;
    s.averageRatio += std::abs(ratio);
    if (std::abs(ratio) > std::abs(s.largestRatio)) {
      s.largestRatio = ratio;
      largest = i + 1;
    }
  }
  if (state.parameters > 0) s.averageRatio /= static_cast<float>(state.parameters);
  s.largestName = largest > 0 ? ParameterName(state, largest) : std::string(20, ' ');
  const std::string line = FormatLine("(' Max. shift/e.s.d.:',E12.4,' (',A20,' )  Average: ',e12.4)",
                                      s.largestRatio, s.largestName, s.averageRatio);
  state.list.Line(line);
  reporter.LogLine(line);
}

void ComputeResiduals(EngineState& state) {
  const int count = state.points.count;
  std::unique_ptr<bool[]> takesPart(new bool[count]);
  for (int i = 0; i < count; ++i) takesPart[i] = TakesPart(state, i);
  const CycleWork& w = state.work;
  ResidualPoints in;
  in.observed = std::span<const float>(state.points.observed.data(), count);
  in.calculated = std::span<const float>(w.calculated.data(), count);
  in.background = std::span<const float>(w.background.data(), count);
  in.weight = std::span<const float>(state.points.weight.data(), count);
  in.takesPart = std::span<const bool>(takesPart.get(), count);
  in.pointCount = state.summary.points;
  in.parameters = state.parameters;
  const ResidualFigures r = ResidualStatistics(in);
  CycleSummary& s = state.summary;
  s.rp = r.rp;
  s.rwp = r.rwp;
  s.rpBackground = r.rpBackground;
  s.chi2 = r.chi2;
  s.durbinWatson = r.durbinWatson;
  s.durbinWatsonWeighted = r.durbinWatsonWeighted;
  s.esdFactor = r.esdFactor;
  s.sumWeightedDiff2 = r.sums.weightedDiff2;
  s.sumWeightedObserved2 = r.sums.weightedObserved2;
}

// Solves the normal equations and scales the inverse to the covariance: the unscaled inverse
// times chi squared per degree of freedom.
void SolveAndScale(EngineState& state) {
  const int np = state.parameters;
  state.summary.condition =
      ShiftSolver(np, state.work.normal, std::span<float>(state.shifts.data(), np),
                  std::span<const float>(state.relaxation.data(), np));
  ComputeResiduals(state);
  const int freedom = state.summary.points - np;
  const float v = freedom > 0 ? static_cast<float>(state.summary.sumWeightedDiff2 / freedom) : 1.0f;
  for (float& m : state.work.normal) m *= v;
}

float Capped(double v) { return static_cast<float>(std::min(v, 999.99)); }

// Restraint sums into the normal equations, and their R values for the listing.
void Restrain(EngineState& state) {
  const RestraintSums r = AddRestraints(state);
  CycleSummary& s = state.summary;
  s.restraints = r.count;
  s.restraintWeightedResidual2 = r.weightedResidual2;
  s.restraintWeightedTarget2 = r.weightedTarget2;
  if (r.count == 0 || r.target == 0 || r.weightedTarget2 == 0) {
    s.restraintR = s.restraintRw = 0;
    return;
  }
  s.restraintR = Capped(100 * r.absResidual / r.target);
  s.restraintRw = Capped(100 * std::sqrt(r.weightedResidual2 / r.weightedTarget2));
}

void ListResiduals(EngineState& state) {
  const CycleSummary& s = state.summary;
  ListFile& list = state.list;
  list.Text(Format("(/' RESIDUALS:'/)"));
  list.Text(Format("(' Rp =',F6.2,'   Rwp =',F6.2,$)", s.rp, s.rwp));
  list.Text(Format("('  CHI2 =',F6.2,$)", s.chi2));
  list.Text(Format("('   Rp (-Background) =',F6.2)", s.rpBackground));
  if (s.restraints > 0 && s.restraintR + s.restraintRw > 0) {
    list.Text(Format("(' RESTRAINTS RESIDUALS : R =',F6.2,$)", s.restraintR));
    // The pattern's and the restraints' weighted residuals together.
    const float combined = Capped(
        100 * std::sqrt((s.sumWeightedDiff2 + s.restraintWeightedResidual2) /
                        (s.sumWeightedObserved2 + s.restraintWeightedTarget2)));
    list.Text(Format("('   Rw =',F6.2,'   Rw(comb) =',F6.2)", s.restraintRw, combined));
  }
  list.Text(Format("(/' DURBIN-WATSON D STATISTICS :',$)"));
  list.Text(Format("('   UNWEIGHTED =',F8.3,$)", s.durbinWatson));
  list.Text(Format("('   WEIGHTED =',F8.3)", s.durbinWatsonWeighted));
  list.Text(Format("(/' ESD:S HAVE TO BE MULTIPLIED BY: ',F6.3/)", s.esdFactor));
}

}  // namespace

void PrepareCycles(EngineState& state) {
  CycleWork& w = state.work;
  const int reflections = state.reflections.Count();
  const int points = state.points.count;
  if (IsRefinement(state.controls) && state.parameters > 0) {
    w.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 0.0f);
    w.rows.assign(static_cast<size_t>(kMaxReflectionsAtPoint) * kMaxParameters, 0.0f);
  }
  FreeRowSlots(w, reflections);
  w.phaseAngle.assign(reflections, 0.0f);
  w.background.assign(points, 0.0f);
  w.calculated.assign(points, 0.0f);
  w.phaseCalculated.assign(state.phases.size(), std::vector<float>(points, 0.0f));
  w.lastShifts.fill(1e-20f);
  SetRowFactors(state);
}

bool AssignSpans(EngineState& state) {
  const RunControls& c = state.controls;
  PointSpanInput input;
  input.start = c.start;
  input.step = c.step;
  input.points = state.points.count;
  input.base = c.rlim[0];
  input.excludedRegions = c.excludedRegions;
  // Only the profiles with the Rietveld asymmetry need reflections below its limit.
  if (!state.phases.empty() && c.job.profile < 4) {
    input.asymmetryRefined = state.phases[0].values[kAsymmetry].number != 0;
  }
  input.asymmetryLimit = c.rlim[3];
  std::vector<std::string> lines;
  const SpanStatus status = AssignPointSpans(state.reflections, input, state.work.reach, lines);
  for (const std::string& line : lines) state.list.Line(line);
  return status == SpanStatus::kOk;
}

CycleStatus RunCycles(EngineState& state, Reporter& reporter, const std::atomic<bool>& stop) {
  PrepareCycles(state);
  const bool refinement = IsRefinement(state.controls) && state.parameters > 0;
  const int cycles = refinement ? std::max(state.controls.cycles, 1) : 1;
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    Progress(state, reporter, " L.S. cycles started");
    if (!Sweep(state)) return CycleStatus::kFailed;
    state.summary.cycles = cycle;
    if (!refinement) {
      ComputeResiduals(state);
      if (!state.controls.calculation) ListResiduals(state);
      return CycleStatus::kOk;
    }
    Progress(state, reporter, " Matrix calculations done");
    if (!state.restraints.empty()) Restrain(state);
    DampAndMirror(state);
    if (!CheckDiagonal(state)) return CycleStatus::kFailed;
    HoldParameters(state);
    SolveAndScale(state);
    Progress(state, reporter, " Matrix inversion done");
    DampOscillation(std::span<float>(state.shifts.data(), state.parameters), state.work.lastShifts);
    state.resultRecords = ApplyShifts(state, cycle);
    TestBlocks(state);
    ListResiduals(state);
    if (!WriteResultRecords(state.temporary.Name(), state.resultRecords)) {
      state.list.Line(" Error writing the temporary parameter file");
      return CycleStatus::kFailed;
    }
    ShiftStatistics(state, reporter);
    if (state.controls.termination > std::abs(state.summary.largestRatio) || stop) break;
    Progress(state, reporter, " Shifts applied");
  }
  return CycleStatus::kOk;
}

}  // namespace kaldena
