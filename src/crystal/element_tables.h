// The built-in element tables behind crystal/elements.h, one row per entry in the order of Z.
// The rows are generated (element_tables.cpp); read them through elements.h.
#pragma once

#include <array>
#include <string_view>

#include "crystal/elements.h"

namespace kaldena {

struct ElementRow {
  std::string_view symbol;  // two characters, blank-padded
  float mass;               // atomic mass units
  float neutronLength;      // coherent scattering length, fm
  // a1 b1 a2 b2 a3 b3 a4 b4 c, in the pair order of the source
  std::array<float, 9> formFactor;
  // f' and f'' at each wavelength of kAnomalousWavelengths in turn
  std::array<float, 2 * kAnomalousWavelengthCount> anomalous;
};

extern const std::array<ElementRow, kElementCount> kElementRows;

}  // namespace kaldena
