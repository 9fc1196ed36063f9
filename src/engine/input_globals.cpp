// Global refinable values of the input stage: zero point and shifts, axial and transparency
// asymmetry, the background with its file factor, and the raw data calibration.
#include <algorithm>

#include "engine/engine_input.h"
#include "engine/input_stages.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

// Reads a row of values into consecutive slots, and their codewords in a refinement.
void ReadGlobalRow(InputRecords& in, EngineState& state, std::string_view key,
                   std::string_view codewordKey, int firstSlot, int count) {
  std::array<float, 6> values{};
  in.NextValues(key, values);
  for (int i = 0; i < count; ++i) state.globals[firstSlot + i].value = values[i];
  if (!IsRefinement(state.controls)) return;
  values.fill(0);
  in.NextValues(codewordKey, values);
  for (int i = 0; i < count; ++i) state.globals[firstSlot + i].fraction = values[i];
}

void ListGlobal(ListFile& list, std::string_view label, const Refinable& value) {
  std::string padded(label);
  padded.resize(24, ' ');  // an A field right-justifies a shorter text
  list.Line(FormatLine("(1X,A24,F12.5,F10.2)", padded, value.value, value.fraction));
}

void ReadShiftsAndAsymmetry(InputRecords& in, EngineState& state) {
  ReadGlobalRow(in, state, "ZETT", "CZET", kZeroPoint, 3);
  ListFile& list = state.list;
  list.Line(" GLOBAL PARAMETERS AND CODEWORDS ");
  ListGlobal(list, "ZEROPOINT", state.globals[kZeroPoint]);
  ListGlobal(list, "SAMPLE SHIFT", state.globals[kSampleShift]);
  ListGlobal(list, "TRANSPARENCY SHIFT", state.globals[kTransparency]);
  ReadGlobalRow(in, state, "AXID", "CAXI", kAxial1, 3);
  const int profile = state.controls.job.profile;
  if (profile == 7) {
    ListGlobal(list, "AXIAL DIVERGENCE 1", state.globals[kAxial1]);
    ListGlobal(list, "AXIAL DIVERGENCE 2", state.globals[kAxial2]);
  }
  if (profile == 8 || profile == 9) {
    ListGlobal(list, "TRANSPARENCY ASYMMETRY", state.globals[kTransparencyAsymmetry]);
  }
}

// Five values a line, up to 25, into the background slots.
void ReadBackgroundRows(InputRecords& in, EngineState& state, std::string_view key,
                        bool codewords) {
  for (int row = 0; row < kBackgroundTerms / 5; ++row) {
    std::array<float, 5> values{};
    if (in.NextValues(key, values) != RecordRead::kOk) return;
    for (int i = 0; i < 5; ++i) {
      Refinable& term = state.globals[kFirstBackground + 5 * row + i];
      (codewords ? term.fraction : term.value) = values[i];
    }
  }
}

void ReadBackground(InputRecords& in, EngineState& state) {
  const bool refinement = IsRefinement(state.controls);
  Refinable& factor = state.globals[kBackgroundFactor];
  if (refinement) in.Next("CBGS", factor.fraction);
  factor.value = 1.0f;
  in.Next("BGSC", factor.value);
  ListFile& list = state.list;
  if (factor.fraction != 0) list.Line(" Background factor will be refined");
  if (refinement) ReadBackgroundRows(in, state, "CBKG", true);
  ReadBackgroundRows(in, state, "BKGR", false);
  list.Line(" BACKGROUND PARAMETERS AND CODEWORDS");
  for (int row = 0; row < kBackgroundTerms / 5; ++row) {
    const int first = kFirstBackground + 5 * row;
    const auto& g = state.globals;
    list.Line(FormatLine("(1X,5(F12.2,F8.2))", g[first].value, g[first].fraction,
                         g[first + 1].value, g[first + 1].fraction, g[first + 2].value,
                         g[first + 2].fraction, g[first + 3].value, g[first + 3].fraction,
                         g[first + 4].value, g[first + 4].fraction));
  }
  in.NextValues("CRYS", state.controls.crystallinity);
}

// ICLT with its SPLC points or POLY coefficients (five a line, at most three lines).
bool ReadCalibration(InputRecords& in, EngineState& state) {
  RunControls& c = state.controls;
  in.Next("ICLT", c.calibration);
  if (c.calibration < 0) {
    std::array<float, 3> point{};
    while (in.NextValues("SPLC", point) == RecordRead::kOk) {
      c.splinePoints.push_back(point);
    }
    return !in.Failed();
  }
  if (c.calibration == 0) return true;
  const int count = std::min(c.calibration, 15);
  for (int row = 0; row * 5 < count; ++row) {
    std::array<double, 5> v{};
    if (in.Required("POLY", " POLY record missing", v[0], v[1], v[2], v[3], v[4]) !=
        RecordRead::kOk) {
      return false;
    }
    c.polynomial.insert(c.polynomial.end(), v.begin(), v.end());
  }
  c.polynomial.resize(count);
  if (std::all_of(c.polynomial.begin(), c.polynomial.end(), [](double v) { return v == 0; })) {
    state.list.Line("No polynomial coefficients found");
    return false;
  }
  return true;
}

}  // namespace

bool ReadGlobals(InputRecords& in, EngineState& state) {
  ReadShiftsAndAsymmetry(in, state);
  ReadBackground(in, state);
  return ReadCalibration(in, state) && !in.Failed();
}

}  // namespace kaldena
