// One reflection per cycle: position, width and shape, the squared structure factor with its
// anomalous terms and preferred orientation, and its row of derivatives in the ring.
#pragma once

#include "engine/engine_state.h"

namespace kaldena {

// Ring slot of reflection r (from 0): the ring holds every reflection of the widest span.
inline int RingSlot(int r) { return r % kMaxSpanReflections; }

// Fills the store's values of reflection r (from 0) and, in a refinement, its derivative row.
void ReflectionTerms(EngineState& state, int r);

// The factor of each parameter for the reflections of each phase, after the numbering.
void SetRowFactors(EngineState& state);

}  // namespace kaldena
