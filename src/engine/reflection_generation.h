// The reflections of one phase inside the two-theta range, for each line of the doublet, with
// multiplicity, Lorentz-polarisation factor, halfwidth and shape, sorted by position.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "crystal/space_group.h"
#include "engine/reflection_store.h"

namespace kaldena {

// What the generation of one phase takes from the run.
struct ReflectionSetup {
  int phase = 1;                       // from 1
  int profile = 1;                     // 1 to 9
  bool xray = true;                    // the monochromator polarisation applies to X-rays only
  std::array<float, 2> wavelengths{};  // a second of 0, or equal to the first: one line
  std::array<float, 3> zeroShifts{};   // zero point, sample shift, transparency (degrees)
  // Reciprocal metric A to F: 4 sin^2(theta) / lambda^2 = A h^2 + B k^2 + C l^2 + D hk + E hl
  // + F kl; and the cell edges for the index limits.
  std::array<float, 6> metric{};
  std::array<float, 3> cellEdges{};
  std::array<float, 3> halfwidth{};       // U, V, W
  std::array<float, 3> rightHalfwidth{};  // split profile
  std::array<float, 3> shape{};           // NA, NB, NC: shape = NA + NB p + NC p^2
  std::array<float, 3> rightShape{};
  float start = 0;  // two-theta range of the run
  float stop = 0;
  float monoPolarisation = 0;         // K
  float synchrotronPolarisation = 0;  // P
  float guinierAngle = 0;             // alpha, degrees
  float flatPlateMuT = 0;
  std::vector<float> cylinderAbsorption;  // 901 values of 1/A* by 0.1 degree theta, or empty
};

// The run's extreme absorption factors, for the list file.
struct AbsorptionRange {
  float smallest = 1.0f;
  float largest = 1.0f;
};

enum class GenerationStatus { kOk = 0, kFailed = 1 };

// Appends the phase's reflections to the store and sorts them. Failures: "Error K.GT.3" for a
// symbol that failed, "Too many reflections" beyond 7998 in all phases; both as list lines.
GenerationStatus GenerateReflections(const SpaceGroupInfo& group, const ReflectionSetup& setup,
                                     ReflectionStore& store, AbsorptionRange& absorption,
                                     std::vector<std::string>& listLines);

// The engine's own excluded region above the stop value, so that the tails of reflections
// beyond the range reach the last points without those points being fitted. The first phase
// appends it (lower end stop + step) and raises the stop value by half the peak range; later
// phases widen it when their peaks are wider. The range never passes point 19990.
struct UpperRange {
  float step = 0;
  float base = 0;  // the peak range in halfwidths
  std::vector<std::array<float, 2>> excludedRegions;
  bool smallWidthReported = false;
};

void ExtendUpperRange(const ReflectionSetup& setup, bool firstPhase, UpperRange& range, float& stop,
                      std::vector<std::string>& listLines);

// FWHM from U, V, W at tan(theta), as the reflections and the upper range use it: H^2 below
// 1e-7 counts as 0.0001, and a width of 0 or below as 0.01.
float CagliotiWidth(const std::array<float, 3>& uvw, float tanTheta);

}  // namespace kaldena
