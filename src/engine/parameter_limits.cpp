#include "engine/parameter_limits.h"

#include <cstdlib>

namespace kaldena {

void ApplyLimit(std::vector<ParameterLimit>& limits, int number, float& shift, float& esd,
                float value) {
  for (ParameterLimit& entry : limits) {
    if (entry.mark != 0 || std::abs(entry.number) > kMaxParameters) continue;
    if (std::abs(entry.number) != std::abs(number)) continue;
    const float ratio = esd != 0 ? shift / esd : 1.0f;
    const float next = value + shift;
    const bool hit = entry.number < 0 ? entry.limit >= next : next >= entry.limit;
    if (hit) {
      shift = entry.limit - value;
      if (ratio != 0) esd = shift / ratio;
      entry.mark = kLimitHit;
    } else {
      entry.mark = kLimitLooked;
    }
  }
}

void ClearLimitMarks(std::vector<ParameterLimit>& limits) {
  for (ParameterLimit& entry : limits) entry.mark = 0;
}

}  // namespace kaldena
