#include "engine/cell_metric.h"

#include <cmath>

#include "util/cell.h"

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;

// Lengths and angles as the class allows them.
std::array<float, 6> Constrained(std::array<float, 6> c, int laueClass, int uniqueAxis) {
  float& a = c[0];
  switch (laueClass) {
    case 2: {
      const int free = uniqueAxis >= 1 && uniqueAxis <= 3 ? uniqueAxis : 2;
      for (int i = 1; i <= 3; ++i) {
        if (i != free) c[2 + i] = 90;
      }
      break;
    }
    case 3:
      c[3] = c[4] = c[5] = 90;
      break;
    case 4:
    case 5:
      c[1] = a;
      c[3] = c[4] = c[5] = 90;
      break;
    case 6:
    case 7:
      c[1] = c[2] = a;
      c[4] = c[5] = c[3];
      break;
    case 8:
    case 9:
    case 10:
    case 11:
    case 12:
      c[1] = a;
      c[3] = c[4] = 90;
      c[5] = 120;
      break;
    case 13:
    case 14:
      c[1] = c[2] = a;
      c[3] = c[4] = c[5] = 90;
      break;
    default:
      break;
  }
  return c;
}

// Cosine and sine of an angle in degrees, exact at the right angle, so that constrained
// metrics keep their ties exactly (D = A for a hexagonal cell, no D for an orthogonal one).
float Cosine(float degrees) { return degrees == 90 ? 0.0f : std::cos(degrees / kDegree); }
float Sine(float degrees) { return degrees == 90 ? 1.0f : std::sin(degrees / kDegree); }

int LaueFlag(int laueClass) {
  if (laueClass == 4 || laueClass == 5 || (laueClass >= 8 && laueClass <= 12)) return 1;
  if (laueClass == 6 || laueClass == 7 || laueClass >= 13) return 2;
  return 0;
}

}  // namespace

MetricStatus MetricFromCell(const std::array<float, 6>& cell, int laueClass, int uniqueAxis,
                            CellMetric& out) {
  if (uniqueAxis > 3) return MetricStatus::kBadAxis;
  out.cell = Constrained(cell, laueClass, uniqueAxis);
  out.laueFlag = LaueFlag(laueClass);
  const auto& c = out.cell;
  if (c[0] <= 0 || c[1] <= 0 || c[2] <= 0 ||
      CellVolume({c[0], c[1], c[2], c[3], c[4], c[5]}) <= 0) {
    return MetricStatus::kNoCell;
  }
  const bool hexagonal = laueClass >= 8 && laueClass <= 12;
  const float ca = Cosine(c[3]), sa = Sine(c[3]);
  const float cb = Cosine(c[4]), sb = Sine(c[4]);
  // The hexagonal angle exactly too, so that A, B and D keep their ratio.
  const float cg = hexagonal ? -0.5f : Cosine(c[5]);
  const float sg = hexagonal ? 0.8660254f : Sine(c[5]);
  // Cosines of the reciprocal angles alpha*, beta*, gamma*.
  const float c1 = (cb * cg - ca) / (sb * sg);
  const float c2 = (ca * cg - cb) / (sa * sg);
  const float c3 = (ca * cb - cg) / (sa * sb);
  const float s1 = std::sqrt(1 - c1 * c1), s2 = std::sqrt(1 - c2 * c2);
  const float aStar = 1 / (c[0] * sg * s2);
  const float bStar = 1 / (c[1] * sg * s1);
  const float cStar = 1 / (c[2] * sb * s1);
  out.a = aStar * aStar;
  out.b = bStar * bStar;
  out.c = cStar * cStar;
  out.d = 2 * aStar * bStar * c3;
  out.e = 2 * aStar * cStar * c2;
  out.f = 2 * bStar * cStar * c1;
  return MetricStatus::kOk;
}

}  // namespace kaldena
