// The input stage's last step: the reflections of every phase.
#pragma once

#include "engine/engine_state.h"
#include "engine/reflection_generation.h"

namespace kaldena {

// What the generation of one phase takes from the model (phases numbered from 1).
ReflectionSetup PhaseReflectionSetup(const EngineState& state, const Phase& phase, int number);

// Lists each phase's operators and generates its reflections; the stop value and the excluded
// regions grow by the engine's region above the range. False after a failure in the list.
bool GenerateAllReflections(EngineState& state);

}  // namespace kaldena
