// One pattern point per cycle: the sum of the reflections that reach it, the derivative of the
// calculated value to every parameter, and its share of the normal equations.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "engine/engine_state.h"

namespace kaldena {

enum class PointStatus {
  kOk = 0,
  kFailed = 1,  // an illegal profile number, told in the list file
};

// What the reflections of a span give at one point.
struct PointValues {
  float y = 0;                     // calculated value, background not included
  std::vector<float> phases;       // each phase's part of it
  std::vector<float> reflections;  // per reflection of the point: its value per unit F2
  std::vector<float> dy;           // in a refinement: d(y + background) / d parameter
};

// The value of point i (from 0) from the given reflections (from 0), whose terms of this
// cycle must stand. Fails on an illegal profile number, with the list line in `listLines`.
PointStatus CalculatePoint(const EngineState& state, int i, std::span<const int> reflections,
                           PointValues& out, std::vector<std::string>& listLines);

// A point's derivatives dy (one per parameter), weight w and difference observed - calculated
// into the normal equations: the right-hand side and the upper part of the matrix.
void AddToNormalEquations(EngineState& state, std::span<const float> dy, float w, float diff);

// Point i (from 0) with the reflections that reach it, whose terms of this cycle must stand.
// Adds to the normal equations in a refinement.
PointStatus PointTerms(EngineState& state, int i);

// The background of every point from the coefficients and the background file.
void SetBackground(EngineState& state);

}  // namespace kaldena
