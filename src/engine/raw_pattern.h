// The measured pattern as the readers hand it to the engine: equally spaced two-theta points.
#pragma once

#include <vector>

namespace kaldena {

struct RawPattern {
  int points = 0;   // 0 when the reading failed
  float start = 0;  // two-theta of the first point, degrees
  float step = 0;
  float stop = 0;  // start + step * (points - 1)
  std::vector<float> intensities;
  std::vector<float> variances;
  std::vector<float> background;  // values of the background file, empty without one
  std::vector<float> angles;      // two-theta of each point, for the formats that list it
};

}  // namespace kaldena
