#include "crystal/elements.h"

#include <algorithm>
#include <cmath>

#include "crystal/element_tables.h"
#include "util/text.h"

namespace kaldena {

namespace {

const ElementRow* FindRow(int z) {
  if (z < 1 || z > kElementCount) return nullptr;
  return &kElementRows[z - 1];
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Repeated whole steps land exactly where subtracting the floor does; the only difference is
// a tiny negative value, whose sum with 1 rounds to 1 and must wrap once more.
float WrapOne(float value) {
  value -= std::floor(value);
  return value >= 1.0f ? value - 1.0f : value;
}

}  // namespace

float GetAtomicMass(int z) {
  const ElementRow* row = FindRow(z);
  return row ? row->mass : 0.0f;
}

int ElementNumber(std::string_view symbol) {
  for (int z = 1; z <= kElementCount; ++z) {
    if (kElementRows[z - 1].symbol == symbol) return z;
  }
  return 0;
}

int ElementNamed(std::string_view name) {
  const size_t first = name.find_first_not_of(" \t");
  if (first == std::string_view::npos || !IsLetter(name[first])) return 0;
  const char initial = UpperChar(name[first]);
  if (first + 1 < name.size() && IsLetter(name[first + 1])) {
    const int z = ElementNumber(std::string{initial, LowerChar(name[first + 1])});
    if (z != 0) return z;
  }
  return ElementNumber(std::string{initial, ' '});
}

std::string_view ElementSymbol(int z) {
  const ElementRow* row = FindRow(z);
  return row ? row->symbol : "  ";
}

int AnomalousWavelengthIndex(float wavelength) {
  std::array<float, kAnomalousWavelengthCount> distance;
  for (int i = 0; i < kAnomalousWavelengthCount; ++i) {
    distance[i] = std::fabs(kAnomalousWavelengths[i] - wavelength);
  }
  const float nearest = *std::min_element(distance.begin(), distance.end());
  int index = 0;
  for (int i = 0; i < kAnomalousWavelengthCount; ++i) {
    if (distance[i] - nearest < 0.0001f) index = i;
  }
  return index;
}

ScatteringData GetScatteringData(float wavelength, int z) {
  ScatteringData data{};
  const ElementRow* row = FindRow(z);
  if (!row) return data;
  if (wavelength <= 0.0f) {
    data[9] = row->neutronLength;
    return data;
  }
  std::copy(row->formFactor.begin(), row->formFactor.end(), data.begin());
  const int column = 2 * AnomalousWavelengthIndex(wavelength);
  data[9] = row->anomalous[column];
  data[10] = row->anomalous[column + 1];
  return data;
}

void WrapCoordinate(float& x, float& y, float& z) {
  x = WrapOne(x);
  y = WrapOne(y);
  z = WrapOne(z);
}

}  // namespace kaldena
