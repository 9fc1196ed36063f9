#include "engine/cycles.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "engine/engine_input.h"
#include "engine/model_warnings.h"
#include "engine/parameter_numbering.h"
#include "engine/parameter_shifts.h"
#include "engine/point_terms.h"
#include "engine/reflection_terms.h"
#include "engine/residual_statistics.h"
#include "engine/restraints.h"
#include "engine/result_records.h"
#include "engine/shift_solver.h"
#include "engine/step_control.h"
#include "util/column_format.h"
#include "util/text.h"

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

// The damping of the controls and the Marquardt factor of the step control on the diagonal;
// a factor of 0 leaves the damping alone.
void DampAndMirror(EngineState& state, float marquardt) {
  const int np = state.parameters;
  std::vector<float>& m = state.work.normal;
  float damping = state.controls.damping > 0 ? state.controls.damping : 1.0f;
  if (marquardt > 0) damping *= 1 + marquardt;
  for (int i = 0; i < np; ++i) {
    m[static_cast<size_t>(i) * kMaxParameters + i] *= damping;
    for (int j = i + 1; j < np; ++j) {
      m[static_cast<size_t>(j) * kMaxParameters + i] =
          m[static_cast<size_t>(i) * kMaxParameters + j];
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
    for (const Atom& a : state.atoms)
      for (const Refinable& r : a.values.slots) look(r);
    for (const Phase& p : state.phases)
      for (const Refinable& r : p.values.slots) look(r);
    for (const Refinable& r : state.globals.slots) look(r);
    if (!below) continue;
    block.active = true;
    state.list.Line(
        FormatLine("('*** Parameter ',I4,' below',F8.4,' ***')", block.watched, block.limit));
    state.list.Line(FormatLine("('    Parameter ',I4,' blocked')", block.blocked));
  }
}

// Shift over esd of each parameter, the largest with its name and the mean magnitude; the line
// is listed and returned for the log.
std::string ShiftStatistics(EngineState& state) {
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
  const std::string line =
      FormatLine("(' Max. shift/e.s.d.:',E12.4,' (',A20,' )  Average: ',e12.4)", s.largestRatio,
                 s.largestName, s.averageRatio);
  state.list.Line(line);
  return line;
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
    const float combined =
        Capped(100 * std::sqrt((s.sumWeightedDiff2 + s.restraintWeightedResidual2) /
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

namespace {

// The sweep of a refinement at the current parameters: the pattern, its residuals and the
// normal equations. False when a point failed (told in the list file).
bool SweepAndResiduals(EngineState& state) {
  if (!Sweep(state)) return false;
  ComputeResiduals(state);
  if (!state.restraints.empty()) Restrain(state);
  return true;
}

// The hook sees the figures of the cycle's listing and the pattern of the same sweep.
void ReportCycle(const EngineState& state, const SweepSnapshot& step, int cycle,
                 const CycleHook& onCycle) {
  if (!onCycle) return;
  const size_t n = static_cast<size_t>(state.points.count);
  CycleReport report;
  report.cycle = cycle;
  report.rwp = step.summary.rwp;
  report.chi2 = step.summary.chi2;
  report.largestRatio = step.summary.largestRatio;
  report.largestName = std::string(Trimmed(step.summary.largestName));
  report.twoTheta = std::span<const float>(state.points.x.data(), n);
  report.observed = std::span<const float>(state.points.observed.data(), n);
  report.calculated = std::span<const float>(step.work.calculated.data(), n);
  report.background = std::span<const float>(step.work.background.data(), n);
  onCycle(report);
}

// The weighted sum of squares that the cycles lower: the pattern's and the restraints'.
double SumOfSquares(const CycleSummary& s) {
  return s.sumWeightedDiff2 + s.restraintWeightedResidual2;
}

struct Try {
  bool failed = false;    // a stage failed; the run ends with status 1
  std::string nonFinite;  // what of the step is not finite
  std::string shiftLine;  // the cycle's " Max. shift/e.s.d." line, for the log
  std::vector<Record> records;
};

// One least-squares step from the sweep that stands: restraints, damping with the Marquardt
// factor, solution, oscillation guard and new values. Its listing is held by the caller.
Try TryStep(EngineState& state, int cycle, float marquardt) {
  Try t;
  DampAndMirror(state, marquardt);
  if (!CheckDiagonal(state)) {
    t.failed = true;
    return t;
  }
  HoldParameters(state);
  SolveAndScale(state);
  DampOscillation(std::span<float>(state.shifts.data(), state.parameters), state.work.lastShifts);
  t.records = ApplyShifts(state, cycle);
  TestBlocks(state);
  ListResiduals(state);
  t.shiftLine = ShiftStatistics(state);
  t.nonFinite = NonFiniteParameter(state);
  return t;
}

// The parameters of the accepted cycle (or the start) with the lowest sum of squares. Steps are
// measured against it, so that the accepted cycles never drift above it by more than the
// tolerance, and a run whose last cycle lies within the tolerance keeps that one.
struct BestCycle {
  int cycle = 0;
  double sum = 0;
  ModelSnapshot model;
  std::vector<Record> records;
  float largestRatio = 0;
  std::string largestName;
};

void ListRejected(EngineState& state, Reporter& reporter, int cycle, const std::string& why,
                  float marquardt) {
  const std::string line = FormatLine(
      "(' Cycle',I4,': step rejected, ',A,'; Marquardt factor',E10.2)", cycle, why, marquardt);
  state.list.Line(line);
  reporter.LogLine(line);
}

// Brings the model back to the best cycle when the run ended elsewhere, and evaluates the
// pattern, residuals and esds again there: one more sweep and a step of zero shifts.
bool KeepBest(EngineState& state, const BestCycle& best, double lastSum) {
  CycleSummary& s = state.summary;
  if (s.cycles > 0 && s.end != CycleEnd::kDiverging && NotHigher(lastSum, best.sum)) return true;
  best.model.RestoreInto(state);
  state.list.Line(
      FormatLine("(/' Parameters of cycle',I4,' kept (lowest weighted sum of squares);',"
                 "' esds evaluated again there')",
                 best.cycle));
  if (!SweepAndResiduals(state)) return false;
  DampAndMirror(state, 0);
  if (!CheckDiagonal(state)) return false;
  HoldParameters(state);
  SolveAndScale(state);
  state.shifts.fill(0.0f);
  state.resultRecords = ApplyShifts(state, best.cycle);
  ListResiduals(state);
  s.keptCycle = best.cycle;
  s.largestRatio = best.largestRatio;
  s.largestName = best.largestName;
  return WriteResultRecords(state.temporary.Name(), state.resultRecords);
}

CycleEnd EndOf(const EngineState& state, const CycleSummary& step, bool stopped, int cycle,
               int cycles) {
  if (state.controls.termination > std::abs(step.largestRatio)) return CycleEnd::kConverged;
  if (stopped) return CycleEnd::kStopped;
  return cycle == cycles ? CycleEnd::kCycleLimit : CycleEnd::kRunning;
}

CycleStatus CalculateOnce(EngineState& state) {
  if (!Sweep(state)) return CycleStatus::kFailed;
  state.summary.cycles = 1;
  ComputeResiduals(state);
  if (const std::string point = NonFinitePoint(state); !point.empty()) {
    state.list.Line(" Non-finite calculated value at " + point);
    return CycleStatus::kNonFinite;
  }
  if (!state.controls.calculation) ListResiduals(state);
  state.summary.end = CycleEnd::kConverged;
  return CycleStatus::kOk;
}

}  // namespace

CycleStatus RunCycles(EngineState& state, Reporter& reporter, const std::atomic<bool>& stop,
                      const CycleHook& onCycle) {
  PrepareCycles(state);
  if (!IsRefinement(state.controls) || state.parameters == 0) return CalculateOnce(state);
  const int cycles = std::max(state.controls.cycles, 1);
  CycleSummary& s = state.summary;
  Progress(state, reporter, " L.S. cycles started");
  if (!SweepAndResiduals(state)) return CycleStatus::kFailed;
  if (const std::string point = NonFinitePoint(state);
      !point.empty() || !std::isfinite(SumOfSquares(state.summary))) {
    const std::string line = " Non-finite calculated value at the start, " +
                             (point.empty() ? std::string("in the sum of squares") : point);
    state.list.Line(line);
    reporter.LogLine(line);
    return CycleStatus::kNonFinite;
  }
  BestCycle best{0, SumOfSquares(state.summary), ModelSnapshot::Of(state), {}, 0, {}};
  MarquardtFactor marquardt;
  int cycle = 1, rejectedInRow = 0;
  double lastSum = best.sum;
  for (;;) {
    Progress(state, reporter, " Matrix calculations done");
    const SweepSnapshot swept = SweepSnapshot::Of(state);
    const ModelSnapshot before = ModelSnapshot::Of(state);
    const int floored = NegativeWidthCount(state);
    state.list.Hold();
    const Try t = TryStep(state, cycle, marquardt.Value());
    if (t.failed) {
      state.list.Release();
      return CycleStatus::kFailed;
    }
    Progress(state, reporter, " Matrix inversion done");
    const SweepSnapshot step = SweepSnapshot::Of(state);  // the cycle's figures and covariance
    std::string why = t.nonFinite.empty() ? "" : "non-finite " + t.nonFinite;
    if (why.empty() && !SweepAndResiduals(state)) {
      state.list.Release();
      return CycleStatus::kFailed;
    }
    if (why.empty()) {
      const std::string point = NonFinitePoint(state);
      if (!point.empty()) why = "non-finite calculated value at " + point;
    }
    if (why.empty() && NegativeWidthCount(state) > floored) {
      why = "U, V, W give a negative squared width at more reflections";
    }
    const double sum = SumOfSquares(state.summary);
    if (why.empty() && !NotHigher(sum, best.sum)) {
      why = FormatLine("('sum of squares',E12.4,' above the lowest',E12.4)", sum, best.sum);
    }
    if (!why.empty()) {
      state.list.Drop();
      before.RestoreInto(state);
      swept.RestoreInto(state);
      ListRejected(state, reporter, cycle, why, marquardt.Value());
      marquardt.Raise();
      ++s.rejectedTries;
      if (++rejectedInRow < kMaxRejectedTries && !stop) continue;
      s.end = stop ? CycleEnd::kStopped : CycleEnd::kDiverging;
      state.list.Line(FormatLine("(/' Step control gave up after',I2,' rejected tries: diverging')",
                                 rejectedInRow));
      break;
    }
    state.list.Release();
    reporter.LogLine(t.shiftLine);
    state.resultRecords = t.records;
    if (!WriteResultRecords(state.temporary.Name(), state.resultRecords)) {
      state.list.Line(" Error writing the temporary parameter file");
      return CycleStatus::kFailed;
    }
    rejectedInRow = 0;
    marquardt.Lower();
    s.cycles = s.keptCycle = cycle;
    lastSum = sum;
    if (sum < best.sum) {
      best = {cycle,
              sum,
              ModelSnapshot::Of(state),
              t.records,
              step.summary.largestRatio,
              step.summary.largestName};
    }
    ReportCycle(state, step, cycle, onCycle);
    s.end = EndOf(state, step.summary, stop, cycle, cycles);
    if (s.end != CycleEnd::kRunning) {
      // The outputs stand on the cycle's own sweep, before its shifts, as in every cycle.
      const CycleSummary kept = s;
      step.RestoreInto(state);
      s.cycles = kept.cycles;
      s.keptCycle = kept.keptCycle;
      s.rejectedTries = kept.rejectedTries;
      s.end = kept.end;
      break;
    }
    Progress(state, reporter, " Shifts applied");
    ++cycle;
    Progress(state, reporter, " L.S. cycles started");
  }
  return KeepBest(state, best, lastSum) ? CycleStatus::kOk : CycleStatus::kFailed;
}

}  // namespace kaldena
