// The step control of the least-squares cycles: a step is kept only when the weighted sum of
// squares at the new parameters is finite and not higher than before; otherwise the model
// goes back to where it stood and the step is tried again with a larger Marquardt factor.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/engine_state.h"
#include "store/record_store.h"

namespace kaldena {

// Relative rise of the weighted sum of squares that still counts as no rise: the sums are
// built from single-precision points, and a converged model moves them by about this much.
inline constexpr double kSumTolerance = 1e-3;

// Rejected tries in a row after which the run ends as diverging.
inline constexpr int kMaxRejectedTries = 5;

// True when `trial` is finite and not above `reference` beyond the tolerance.
bool NotHigher(double trial, double reference);

// The factor on the diagonal of the normal matrix, on top of the damping: 0 until a step is
// rejected, then 0.1, 1, 10, ...; it falls by ten after each kept step and below 0.1 to 0.
class MarquardtFactor {
 public:
  float Value() const { return value_; }
  void Raise() { value_ = value_ == 0 ? kFirst : value_ * 10; }
  void Lower() { value_ = value_ / 10 < kFirst ? 0.0f : value_ / 10; }

 private:
  static constexpr float kFirst = 0.1f;
  float value_ = 0;
};

// What a step changes of the model: every refinable value, the cells, the wavelengths, the
// limit marks and the active blocks.
struct ModelSnapshot {
  std::vector<Atom> atoms;
  std::vector<Phase> phases;
  RefinableRow<kGlobalSlots> globals;
  RunControls controls;

  static ModelSnapshot Of(const EngineState& state);
  void RestoreInto(EngineState& state) const;
};

// What a sweep leaves: the pattern, the reflections' terms, the normal equations with their
// right-hand side (and the last shifts of the oscillation guard), the residual figures.
struct SweepSnapshot {
  CycleWork work;
  ReflectionStore reflections;
  std::array<float, kMaxParameters> shifts{};
  CycleSummary summary;

  static SweepSnapshot Of(const EngineState& state);
  void RestoreInto(EngineState& state) const;
};

// The first measured point whose calculated value or background is not finite, as
// "point N (2-theta X)"; empty when all are finite.
std::string NonFinitePoint(const EngineState& state);

// The first parameter whose solved shift or esd is not finite, or whose value (or a cell
// value) became so, as "shift of NAME"; empty when all are finite.
std::string NonFiniteParameter(const EngineState& state);

}  // namespace kaldena
