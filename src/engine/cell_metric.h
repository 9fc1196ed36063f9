// The reciprocal metric of a phase from its cell, with the constraints of its Laue class.
#pragma once

#include <array>

namespace kaldena {

struct CellMetric {
  std::array<float, 6> cell{};  // the cell as constrained: a, b, c, alpha, beta, gamma
  // A, B, C, D (hk), E (hl), F (kl) of 4 sin^2(theta) / lambda^2.
  float a = 0, b = 0, c = 0, d = 0, e = 0, f = 0;
  // Ties of the metric slots that the class imposes: 1 B to A, 2 B and C to A.
  int laueFlag = 0;
};

enum class MetricStatus {
  kOk = 0,
  kBadAxis = 1,  // a unique-axis value above 3: "Error K.GT.3"
  kNoCell = 2,   // lengths or angles that close no cell: " Cell parameters give no volume"
};

// Forces lengths and angles by the Laue class (1 to 14; `uniqueAxis` 1, 2 or 3 names the free
// angle of a monoclinic cell), then forms the metric from the reciprocal cell.
MetricStatus MetricFromCell(const std::array<float, 6>& cell, int laueClass, int uniqueAxis,
                            CellMetric& out);

}  // namespace kaldena
