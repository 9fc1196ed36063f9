// The pseudo-Voigt convolved with the axial-divergence kernel of Finger, Cox and Jephcoat
// (J. Appl. Cryst. 27 (1994) 892), in the S/L and H/L parameters, by Gauss-Legendre quadrature.
#pragma once

#include <array>
#include <span>

#include "engine/profile_shape.h"

namespace kaldena {

struct AxialNode {
  float x;  // abscissa in (0, 1)
  float w;  // weight of the N-point rule on [-1, 1]
};

// The positive half of each N-point rule, N = kAxialNodeCounts[j], at entries
// kAxialNodeOffsets[j] + 1 to kAxialNodeOffsets[j] + N/2 of one table whose entry 0 is (0, 0).
inline constexpr std::array<int, 14> kAxialNodeCounts = {6,   10,  20,  40,  60,  80,  100,
                                                         150, 200, 300, 400, 600, 800, 1000};
extern const std::array<int, 14> kAxialNodeOffsets;
extern const std::array<AxialNode, 1884> kAxialNodeTable;

// The nodes of the first rule with N not below 400 (p - pmin), p and pmin in degrees; the
// 1000-point rule beyond.
std::span<const AxialNode> AxialNodes(float p, float pmin);

// Profile 7 with SL and HL not both 0: the value and its derivatives, not yet divided by the
// value. hl is H/L with the divergence scale already applied.
void AxialDivergenceProfile(const PeakInput& in, float hl, PeakResult& out);

}  // namespace kaldena
