// Least-squares parameters from the codewords: after ReadCodewords each value's fraction holds
// its codeword; NumberParameters turns it into a multiplier and gives the value its number.
#pragma once

#include <string>

#include "engine/engine_state.h"
#include "util/report.h"

namespace kaldena {

// BLOK lines at input: a value of the watched group below the limit switches the codewords of
// the blocked group off. Lines go to the list file.
void CheckBlocks(EngineState& state);

// Numbers the values in one pass: each phase's atoms, then its slots, then the globals.
// Groups share a number handed out at first use; occupations of one group keep the ratio of
// their site factors; special positions couple y and z to x; the Laue class ties the metric;
// ties above 400 are resolved at the end. False, with a list line, beyond 400 parameters.
bool NumberParameters(EngineState& state, Reporter& reporter);

// The name of parameter `number` (1 to 400) as the list file shows it, 20 characters: the kind
// of the first value that uses it, with its atom's label or its phase.
std::string ParameterName(const EngineState& state, int number);

// Moves start values that lie beyond a LIMP limit onto it.
void ApplyInputLimits(EngineState& state);

// The value of a tied parameter: the first phase value (slots 1 to 23) or, failing that, atom
// value with parameter number `number` - 500, times `fraction`. Not found: a list warning and 0.
float ResetTied(const EngineState& state, int number, float fraction, ListFile& list);

}  // namespace kaldena
