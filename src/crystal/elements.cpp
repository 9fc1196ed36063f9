#include "crystal/elements.h"

#include <algorithm>
#include <cmath>

#include "crystal/element_tables.h"

namespace kaldena {

namespace {

const ElementRow* FindRow(int z) {
  if (z < 1 || z > kElementCount) return nullptr;
  return &kElementRows[z - 1];
}

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
