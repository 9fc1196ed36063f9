// One reflection per cycle: position, width and shape, the squared structure factor with its
// anomalous terms and preferred orientation, and its row of derivatives in the ring.
#pragma once

#include "engine/engine_state.h"

namespace kaldena {

// The slot of reflection r's (from 0) row and tan theta, once its terms stand.
inline int RowSlot(const CycleWork& work, int r) { return work.rowSlot[r]; }

// Fills the store's values of reflection r (from 0) and, in a refinement, its derivative row.
// A reflection without a slot takes a free one, which must exist.
void ReflectionTerms(EngineState& state, int r);

// Every slot free, for the given count of reflections.
void FreeRowSlots(CycleWork& work, int reflections);

// Reflection r gives its slot back, when it holds one.
void FreeRowSlot(CycleWork& work, int r);

// The factor of each parameter for the reflections of each phase, after the numbering.
void SetRowFactors(EngineState& state);

}  // namespace kaldena
