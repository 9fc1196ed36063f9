// Solution of the normal equations of a least-squares cycle, and the guard against shifts that
// swing back and forth between cycles.
#pragma once

#include <span>

namespace kaldena {

// Solves M x = b for the first n parameters and replaces M by its inverse.
//
// `matrix` is a square row-major table whose side s is taken from its size (s * s elements,
// s >= n): the engine passes its 400 x 400 normal matrix, a test may pass an n x n one. Only the
// leading n x n block is read, and it must be complete (both triangles). On return that block
// holds the inverse and every other element of the table is 0.
// `shifts` holds b on the way in and x_i times `relaxation[i]` on the way out (n values each).
//
// n = 1 takes a scalar path: the element is inverted, the shift multiplied by it, the
// relaxation factor is not applied, and nothing else in the table is touched.
// Otherwise the work is done in double precision on an n x n copy: rows equilibrated by their
// largest element, Gauss-Jordan elimination with column pivoting.
//
// Returns the condition estimate: the product of the row-sum norms of M and of its inverse
// (1 on the scalar path, and for n = 0, which changes nothing). A zero pivot is not tested for: a
// singular matrix gives infinite or undefined shifts, so the caller keeps zero rows out beforehand.
double ShiftSolver(int n, std::span<float> matrix, std::span<float> shifts,
                   std::span<const float> relaxation);

// For each parameter: a shift of opposite sign to the last one whose size lies within 0.8 to
// 1.2 times the last one's is halved, since the parameter is probably jumping over its minimum.
// The (possibly halved) shifts then become the last shifts. Both spans hold the parameters of
// the run, `lastShifts` at least as many as `shifts`.
void DampOscillation(std::span<float> shifts, std::span<float> lastShifts);

}  // namespace kaldena
