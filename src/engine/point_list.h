// The engine's pattern points from the raw pattern: calibration, binning, weights and the
// grid extended for the tails of reflections above the range.
#pragma once

#include <string>
#include <vector>

#include "engine/engine_state.h"
#include "engine/raw_pattern.h"

namespace kaldena {

// Holds the RELX range of a refinement or comparison inside the pattern, with a list line for
// each end that moves.
void HoldRangeInPattern(const RawPattern& raw, RunControls& controls,
                        std::vector<std::string>& listLines);

enum class PointListStatus {
  kOk = 0,
  kTooFew = 1,  // fewer than two points in the range: " Fewer than two points in the range"
};

// Builds the point list of `raw` (of a calculation: from the RELX range alone) and sets start,
// stop and step of `controls` to the uniform grid of the kept points.
PointListStatus BuildPointList(const RawPattern& raw, RunControls& controls, PatternPoints& points,
                               std::vector<std::string>& listLines);

}  // namespace kaldena
