// Unit-cell geometry, in single precision as the engine works.
#pragma once

#include <optional>

namespace kaldena {

inline constexpr float kDegreesPerRadian = 57.29578f;

// Edge lengths in angstrom (or reciprocal angstrom) and angles in degrees.
struct UnitCell {
  float a = 0.0f;
  float b = 0.0f;
  float c = 0.0f;
  float alpha = 0.0f;
  float beta = 0.0f;
  float gamma = 0.0f;
};

// a b c sqrt(1 - cos^2 al - cos^2 be - cos^2 ga + 2 cos al cos be cos ga); 0 for angles that
// close no cell.
float CellVolume(const UnitCell& cell);

// The reciprocal cell: a* = b c sin al / V and so on, with cos al* = (cos be cos ga - cos al) /
// (sin be sin ga) and so on. Nothing for a cell of no positive volume.
std::optional<UnitCell> ReciprocalCell(const UnitCell& direct);

}  // namespace kaldena
