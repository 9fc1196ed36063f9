#include "util/cell.h"

#include <algorithm>
#include <cmath>

namespace kaldena {

namespace {

float CosDegrees(float angle) { return std::cos(angle / kDegreesPerRadian); }

float SinDegrees(float angle) { return std::sin(angle / kDegreesPerRadian); }

// The reciprocal angle opposite `angle`, from the direct angles; clamped against rounding.
float ReciprocalAngle(float angle, float other1, float other2) {
  const float cosine = (CosDegrees(other1) * CosDegrees(other2) - CosDegrees(angle)) /
                       (SinDegrees(other1) * SinDegrees(other2));
  return std::acos(std::clamp(cosine, -1.0f, 1.0f)) * kDegreesPerRadian;
}

}  // namespace

float CellVolume(const UnitCell& cell) {
  const float ca = CosDegrees(cell.alpha);
  const float cb = CosDegrees(cell.beta);
  const float cg = CosDegrees(cell.gamma);
  const float root = 1.0f - ca * ca - cb * cb - cg * cg + 2.0f * ca * cb * cg;
  if (root <= 0.0f) return 0.0f;
  return cell.a * cell.b * cell.c * std::sqrt(root);
}

std::optional<UnitCell> ReciprocalCell(const UnitCell& direct) {
  const float volume = CellVolume(direct);
  if (!(volume > 0.0f)) return {};
  UnitCell reciprocal;
  reciprocal.a = direct.b * direct.c * SinDegrees(direct.alpha) / volume;
  reciprocal.b = direct.a * direct.c * SinDegrees(direct.beta) / volume;
  reciprocal.c = direct.a * direct.b * SinDegrees(direct.gamma) / volume;
  reciprocal.alpha = ReciprocalAngle(direct.alpha, direct.beta, direct.gamma);
  reciprocal.beta = ReciprocalAngle(direct.beta, direct.alpha, direct.gamma);
  reciprocal.gamma = ReciprocalAngle(direct.gamma, direct.alpha, direct.beta);
  return reciprocal;
}

}  // namespace kaldena
