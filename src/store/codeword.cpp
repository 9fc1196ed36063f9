#include "store/codeword.h"

#include <cmath>

namespace kaldena {

Codeword Codeword::Group(int group, float multiplier) {
  const float magnitude = 10.0f * static_cast<float>(group) + std::fabs(multiplier);
  return Codeword(multiplier < 0.0f ? -magnitude : magnitude);
}

int Codeword::GroupNumber() const {
  if (!IsGroup()) return 0;
  return static_cast<int>(std::fabs(value_) / 10.0f);
}

float Codeword::Multiplier() const {
  if (IsFixed()) return 0.0f;
  if (IsOwn()) return 1.0f;
  const float m = std::fabs(value_) - 10.0f * static_cast<float>(GroupNumber());
  return value_ < 0.0f ? -m : m;
}

}  // namespace kaldena
