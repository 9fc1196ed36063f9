#include "engine/step_control.h"

#include <cmath>

#include "engine/parameter_numbering.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

std::string NameOf(const EngineState& state, int number) {
  if (number > kTiedOffset) number -= kTiedOffset;
  return std::string(Trimmed(ParameterName(state, number)));
}

// The parameter of the first value in `row` that is not finite, or 0.
template <int N>
int NonFiniteValue(const RefinableRow<N>& row) {
  for (const Refinable& r : row.slots) {
    if (!std::isfinite(r.value)) return r.number != 0 ? r.number : -1;
  }
  return 0;
}

}  // namespace

bool NotHigher(double trial, double reference) {
  return std::isfinite(trial) && trial <= reference * (1 + kSumTolerance);
}

ModelSnapshot ModelSnapshot::Of(const EngineState& state) {
  return {state.atoms, state.phases, state.globals, state.controls};
}

void ModelSnapshot::RestoreInto(EngineState& state) const {
  state.atoms = atoms;
  state.phases = phases;
  state.globals = globals;
  state.controls = controls;
}

SweepSnapshot SweepSnapshot::Of(const EngineState& state) {
  return {state.work, state.reflections, state.shifts, state.summary};
}

void SweepSnapshot::RestoreInto(EngineState& state) const {
  state.work = work;
  state.reflections = reflections;
  state.shifts = shifts;
  state.summary = summary;
}

std::string NonFinitePoint(const EngineState& state) {
  for (int i = 0; i < state.points.count; ++i) {
    if (std::isfinite(state.work.calculated[i]) && std::isfinite(state.work.background[i])) {
      continue;
    }
    return FormatLine("('point',I6,' (2-theta',F9.3,')')", i + 1, state.points.x[i]);
  }
  return {};
}

std::string NonFiniteParameter(const EngineState& state) {
  for (int n = 1; n <= state.parameters; ++n) {
    const float variance = state.work.normal[static_cast<size_t>(n - 1) * kMaxParameters + n - 1];
    if (!std::isfinite(state.shifts[n - 1])) return "shift of " + NameOf(state, n);
    if (!std::isfinite(variance)) return "esd of " + NameOf(state, n);
  }
  int number = NonFiniteValue(state.globals);
  for (const Phase& phase : state.phases) {
    if (number == 0) number = NonFiniteValue(phase.values);
    for (float c : phase.cell) {
      if (number == 0 && !std::isfinite(c))
        number = phase.values[kMetricA].number ? phase.values[kMetricA].number : -1;
    }
  }
  for (const Atom& atom : state.atoms) {
    if (number == 0) number = NonFiniteValue(atom.values);
  }
  if (number == 0) return {};
  return number > 0 ? "value of " + NameOf(state, number) : "a value without a parameter";
}

}  // namespace kaldena
