// Solution of the normal equations of a cycle, and the damping of oscillating shifts.
#pragma once

#include <span>

namespace kaldena {

// Solves M x = b for the first n parameters of `matrix` (row stride `stride`, full symmetric),
// in double precision after equilibrating the rows, by Gauss-Jordan elimination with pivoting.
// `shifts` holds b on the way in and x times each parameter's relaxation factor on the way out;
// `matrix` holds the inverse, with everything beyond n cleared. Returns the condition estimate,
// the product of the row-sum norms of the matrix and its inverse. A singular matrix gives
// infinite shifts: the caller keeps zero rows out.
double ShiftSolver(int n, std::span<float> matrix, int stride, std::span<float> shifts,
                   std::span<const float> relaxation);

// A shift of opposite sign to the last one and of 0.8 to 1.2 times its size is halved; the
// shifts then become the last shifts.
void DampOscillation(int n, std::span<float> shifts, std::span<float> lastShifts);

}  // namespace kaldena
