#include "engine/engine_output.h"

#include <cmath>
#include <fstream>

#include "engine/crystallinity.h"
#include "engine/engine_input.h"
#include "engine/parameter_numbering.h"
#include "engine/pattern_terms.h"
#include "engine/result_records.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

constexpr float kTooHigh = 1e9f;
constexpr float kTwoDegrees = 114.59156f;

// The user's range: the last excluded region is the engine's own, above the stop value.
struct OutputRange {
  float start = 0, stop = 0, step = 0;
  int points = 0;
  float correction = 0;  // zero-point correction of the summary's angles
};

OutputRange Range(const EngineState& state) {
  const RunControls& c = state.controls;
  OutputRange r{c.start, c.stop, c.step, 0, 0};
  if (!c.excludedRegions.empty()) r.stop = c.excludedRegions.back()[0] - c.step;
  r.points = std::min(static_cast<int>((r.stop - r.start) / r.step + 1.5f), state.points.count);
  // One reference angle for the whole pattern: half the width of the range.
  const float m = (r.stop - r.start) / 2;
  const auto& g = state.globals;
  r.correction = g[kZeroPoint].value + g[kSampleShift].value * std::cos(m / 2 / 57.29578f) +
                 g[kTransparency].value * std::sin(m / 57.29578f);
  return r;
}

void ListCorrelations(EngineState& state) {
  const int limit = state.controls.output[1];
  if (!IsRefinement(state.controls) || state.parameters == 0 || limit < 50 || limit > 100) return;
  ListFile& list = state.list;
  list.Text(Format("(/' CORRELATIONS LARGER THAN',I3,' %'/)", limit));
  const std::vector<float>& m = state.work.normal;
  auto at = [&](int i, int j) { return m[static_cast<size_t>(i) * kMaxParameters + j]; };
  for (int i = 0; i < state.parameters; ++i) {
    for (int j = i + 1; j < state.parameters; ++j) {
      const float d = std::sqrt(std::abs(at(i, i) * at(j, j)));
      if (d == 0) continue;
      const int percent = static_cast<int>(std::lround(100 * at(i, j) / d));
      if (std::abs(percent) <= limit) continue;
      list.Line(FormatLine("(I5,' BETWEEN   ',A20,' AND      ',A20)", percent,
                           ParameterName(state, i + 1), ParameterName(state, j + 1)));
    }
  }
}

// The intensities of one reflection as the tables and the Fourier file give them.
struct ReflectionIntensities {
  float calculated = 0, observed = 0, esd = 0, diff = 0;
};

ReflectionIntensities IntensitiesOf(const EngineState& state, int r, float step) {
  const ReflectionStore& store = state.reflections;
  const CycleWork& w = state.work;
  int phase = 0, line = 0, h = 0, k = 0, l = 0;
  ReflectionStore::UnpackIndex(store.PackedIndex(r), phase, line, h, k, l);
  const float lp = store.Value(ReflectionStore::kLorentzPolarisation, r);
  const float scale = state.phases[phase - 1].values[kScale].value;
  float icalc = w.calculatedIntensity[r];
  if (std::abs(icalc) < 1e-5f) icalc = 1e6f;
  ReflectionIntensities i;
  i.calculated = store.Value(ReflectionStore::kStructureFactorSquared, r) * lp * scale / step;
  i.observed = w.observedIntensity[r] * lp * scale / (step * icalc);
  i.esd = std::abs(std::sqrt(w.intensityVariance[r]) * lp * scale / (step * icalc));
  i.diff = i.observed - i.calculated;
  return i;
}

bool InExcludedRegion(const RunControls& c, float position, bool withOwn) {
  const size_t regions = c.excludedRegions.size() - (withOwn || c.excludedRegions.empty() ? 0 : 1);
  for (size_t n = 0; n < regions; ++n) {
    if (position >= c.excludedRegions[n][0] && position <= c.excludedRegions[n][1]) return true;
  }
  return false;
}

// Holds a value below the largest that its field takes, with the run's warning once.
float Held(float value, float limit, bool& warned, std::string_view what, EngineState& state,
           Reporter& reporter) {
  if (value < limit) return value;
  if (!warned) {
    state.list.Line(" " + std::string(what) + " intensty too high for output");
    reporter.LogLine(std::string(what) + " intensty too high for output");
    warned = true;
  }
  return limit;
}

struct PhaseTable {
  int first = 0, last = -1;  // reflections of the phase
};

std::vector<PhaseTable> PhaseTables(const EngineState& state) {
  std::vector<PhaseTable> tables(state.phases.size());
  for (int r = 0; r < state.reflections.Count(); ++r) {
    int phase = 0, line = 0, h = 0, k = 0, l = 0;
    ReflectionStore::UnpackIndex(state.reflections.PackedIndex(r), phase, line, h, k, l);
    PhaseTable& t = tables[phase - 1];
    if (t.last < t.first) t.first = r;
    t.last = r;
  }
  return tables;
}

void WriteTableHead(ListFile& list, bool voigt) {
  list.Line(voigt ? "   NO      H   K   L       HW   POSN     ICALC      COBS     DIFF     ESD"
                  : "   NO   H   K   L       HW   SHAPE   POSN     ICALC      COBS     DIFF    ESD");
}

// Reflection table, Fourier lines and Bragg R of one phase; returns the reflections listed.
int WritePhase(EngineState& state, Reporter& reporter, int p, const PhaseTable& table,
               const OutputRange& range, std::ofstream& fourier, bool& observedHigh,
               bool& calculatedHigh) {
  ListFile& list = state.list;
  const ReflectionStore& store = state.reflections;
  const Phase& phase = state.phases[p];
  std::string title = phase.title;
  title.resize(70, ' ');
  list.Text(Format("(/' PHASE ',I2,': ',A70/)", p + 1, title));
  const int profile = state.controls.job.profile;
  const bool voigt = profile == 3 || profile == 5;
  const int listing = state.controls.output[0];
  const int rows = listing > 0 ? listing : store.Count();
  const int headEvery = listing > 0 ? 50 : 50 * std::abs(listing);
  double sumDiff = 0, sumObserved = 0;
  int number = 0;
  for (int r = table.first; r <= table.last; ++r) {
    int ph = 0, line = 0, h = 0, k = 0, l = 0;
    ReflectionStore::UnpackIndex(store.PackedIndex(r), ph, line, h, k, l);
    const float position = store.Value(ReflectionStore::kPosition, r);
    const float fault = phase.values[kStackingFault].value * StackingFaultShift(position, h, k, l);
    if (position < range.start || position > range.stop ||
        InExcludedRegion(state.controls, position + fault, false)) {
      continue;
    }
    const ReflectionIntensities i = IntensitiesOf(state, r, range.step);
    ++number;
    sumDiff += std::abs(i.diff);
    sumObserved += i.observed;
    if (number <= rows) {
      if ((number - 1) % headEvery == 0) WriteTableHead(list, voigt);
      const char* mark = line == 2 ? "*" : " ";
      const float width = store.Value(ReflectionStore::kHalfwidth, r);
      list.Line(voigt ? FormatLine("(I5,3X,3I4,A1,2F8.3,2F10.0,F9.0,F8.1)", number, h, k, l, mark,
                                   width, position, i.calculated, i.observed, i.diff, i.esd)
                      : FormatLine("(I5,3I4,A1,3F8.3,2F10.0,F9.0,F7.0)", number, h, k, l, mark,
                                   width, store.Value(ReflectionStore::kShapeParameter, r),
                                   position, i.calculated, i.observed, i.diff, i.esd));
    }
    if (line != 1 || !fourier.is_open()) continue;
    const float lp = store.Value(ReflectionStore::kLorentzPolarisation, r);
    const float cobs = std::max(i.observed, 0.0f);
    const float root = cobs <= 0.001f ? 0.0f : std::sqrt(cobs / lp);
    const float lambda = state.globals[kWavelength].value;
    fourier << Format("(4i4,2f12.1,f12.5,f12.1,2f12.5,6f12.4)", h, k, l, p + 1,
                      Held(cobs / lp, kTooHigh, observedHigh, "Observed", state, reporter),
                      2 * root * std::sqrt(std::abs(i.esd / lp)),
                      std::sin(position / kTwoDegrees) / lambda,
                      Held(i.calculated / lp, kTooHigh, calculatedHigh, "Calculated", state, reporter),
                      state.work.phaseAngle[r], std::min(lp, 1e8f), position);
  }
  const double base = sumObserved != 0 ? sumObserved : sumDiff;
  const float bragg = base != 0 ? static_cast<float>(std::min(100 * sumDiff / base, 999.99)) : 0.0f;
  list.Text(Format("(/' DERIVED BRAGG R-FACTOR =',F7.2)", bragg));
  reporter.LogLine(FormatLine("(' BRAGG R-FACTOR =',F7.2)", bragg));
  state.summary.phaseFits.push_back({bragg, number});
  const CycleSummary& s = state.summary;
  state.resultRecords.push_back(MakeRecord("RVAL", "i4,i6,i5,5f10.4,i5", state.parameters,
                                           s.points, number, s.rp, s.rwp, s.chi2, bragg,
                                           s.restraintR, s.restraints));
  return number;
}

// Code of each point: digit p is 1 at the point nearest a first-wavelength reflection of
// phase p.
std::vector<long long> PhaseCodes(const EngineState& state, const OutputRange& range) {
  std::vector<long long> codes(range.points + 1, 0);
  std::vector<std::vector<bool>> marked(state.phases.size(), std::vector<bool>(range.points + 1));
  for (int r = 0; r < state.reflections.Count(); ++r) {
    int phase = 0, line = 0, h = 0, k = 0, l = 0;
    ReflectionStore::UnpackIndex(state.reflections.PackedIndex(r), phase, line, h, k, l);
    if (line != 1) continue;
    const float q = state.reflections.Value(ReflectionStore::kPosition, r);
    const long n = std::lround((q - range.start + range.correction) / range.step) + 1;
    if (n < 1 || n > range.points || marked[phase - 1][n]) continue;
    marked[phase - 1][n] = true;
    long long power = 1;
    for (int i = 1; i < phase; ++i) power *= 10;
    codes[n] += power;
  }
  return codes;
}

bool WriteSummary(EngineState& state, Reporter& reporter, const OutputRange& range) {
  std::ofstream out(state.files.summary, std::ios::binary | std::ios::trunc);
  if (!out) {
    state.list.Line(" Error opening pattern summary file");
    return false;
  }
  const int phases = static_cast<int>(state.phases.size());
  const bool weights = state.controls.job.weighting == 2;
  const std::string digit = std::to_string(phases - 1);
  const std::string format =
      phases == 1 ? (weights ? "(F7.3,4f12.1,I2)" : "(F7.3,3f12.1,I2)")
                  : (weights ? "(f7.3,2f12.1,f12.1,2f12.1," + digit + "f12.1,i2," + digit + "i2)"
                             : "(f7.3,2f12.1,f12.1,f12.1," + digit + "f12.1,i2," + digit + "i2)");
  const std::vector<long long> codes = PhaseCodes(state, range);
  const bool calculated = state.controls.jobType > 2;
  const CycleWork& w = state.work;
  for (int i = 1; i <= range.points; ++i) {
    const float x = range.start + range.step * static_cast<float>(i - 1) - range.correction;
    const float background = w.background[i - 1];
    const float total = w.calculated[i - 1] + background;
    float observed = state.points.observed[i - 1];
    if (InExcludedRegion(state.controls, x + 0.5f * range.step, false) ||
        InExcludedRegion(state.controls, x - 0.5f * range.step, false)) {
      observed = 0;
    }
    if (calculated && observed == 0) observed = total;
    if (observed >= 1e10f || total >= 1e10f) {
      state.list.Line(" Calculated or observed intensty too high for output file");
      reporter.LogLine(" Calculated or observed intensty too high for output file");
      return false;
    }
    std::vector<FormatArg> args = {x, observed, total, background};
    if (weights) args.emplace_back(state.points.weight[i - 1]);
    if (phases > 1) {
      for (int p = 0; p < phases; ++p) args.emplace_back(w.phaseCalculated[p][i - 1]);
      long long code = codes[i];
      std::vector<int> digits(phases);
      for (int p = 0; p < phases; ++p, code /= 10) digits[p] = static_cast<int>(code % 10);
      for (int d : digits) args.emplace_back(d);
    } else {
      args.emplace_back(static_cast<int>(codes[i]));
    }
    out << WriteFormatted(format, args);
  }
  return true;
}

// The crystalline fraction within the limits of CRYS, from the summary just written, and
// the record with its new results.
void ListCrystallinity(EngineState& state) {
  RunControls& c = state.controls;
  CrystallinityLimits limits{c.crystallinity[0], c.crystallinity[1], {}, c.wavelengths[0]};
  limits.excludedRegions.assign(c.excludedRegions.begin(),
                                c.excludedRegions.end() - (c.excludedRegions.empty() ? 0 : 1));
  const Crystallinity k = CalculateCrystallinity(state.files.summary, limits);
  if (k.status != CrystallinityStatus::kOk) return;
  c.crystallinity[2] = k.sWeighted;
  c.crystallinity[3] = k.unweighted;
  ListFile& list = state.list;
  list.Text(Format("(' Crystallinity           Interval'/)"));
  list.Line(FormatLine("(f14.2,4f8.2)", k.sWeighted, limits.minimum, limits.maximum,
                       c.wavelengths[0], c.wavelengths[1]));
  list.Line(FormatLine("(f14.2,2f8.2)", k.unweighted, limits.minimum, limits.maximum));
  const auto& v = c.crystallinity;
  state.resultRecords.push_back(MakeRecord("CRYS", "4f10.2", v[0], v[1], v[2], v[3]));
}

}  // namespace

OutputStatus WriteEngineOutput(EngineState& state, Reporter& reporter) {
  const OutputRange range = Range(state);
  ListCorrelations(state);
  std::ofstream fourier(state.files.fourier, std::ios::binary | std::ios::trunc);
  const bool fourierOpen = fourier.is_open();
  if (!fourierOpen) state.list.Line(" Error opening Fourier file");
  bool observedHigh = false, calculatedHigh = false;
  const std::vector<PhaseTable> tables = PhaseTables(state);
  for (size_t p = 0; p < state.phases.size(); ++p) {
    WritePhase(state, reporter, static_cast<int>(p), tables[p], range, fourier, observedHigh,
               calculatedHigh);
  }
  if (fourier.is_open()) fourier << Format("(4i4)", 999, 0, 0, 0);
  fourier.close();
  const CycleSummary& s = state.summary;
  const RunControls& c = state.controls;
  state.resultRecords.push_back(MakeRecord("CIF1", "4f10.3", s.rp, s.rwp, s.sumWeightedDiff2,
                                           s.sumWeightedObserved2));
  state.resultRecords.push_back(MakeRecord("CIF2", "6f10.5", range.start, range.stop, range.step,
                                           range.start - range.correction,
                                           range.stop - range.correction, range.step));
  const bool summary = WriteSummary(state, reporter, range);
  if (summary && c.crystallinity != std::array<float, 4>{}) ListCrystallinity(state);
  if (IsRefinement(c) && state.parameters > 0) {
    WriteResultRecords(state.temporary.Name(), state.resultRecords);
  }
  return summary && fourierOpen ? OutputStatus::kOk : OutputStatus::kFailed;
}

}  // namespace kaldena
