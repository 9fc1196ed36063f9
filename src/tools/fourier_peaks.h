// The peak search of a Fourier map: local maxima over 18 neighbours, their positions refined
// by a quadratic fitted to the logarithm of the 19 values, written as atom lines (.prm).
#pragma once

#include <array>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "tools/fourier_files.h"
#include "tools/fourier_options.h"
#include "util/report.h"

namespace kaldena {

struct FourierPeak {
  char sign = 'P';  // P for a positive peak, N for a negative one
  int height = 0;   // on the 0..999 scale, sign dropped
  float x = 0.0f, y = 0.0f, z = 0.0f;
};

// Values around a grid point, [dz + 1][dy + 1][dx + 1]; the search uses the 19 of the centre,
// its 8 neighbours in the section and the crosses of 5 in the sections below and above.
using Neighbourhood = std::array<std::array<std::array<float, 3>, 3>, 3>;

// The 18-neighbour rule: the centre exceeds `level`, is greater than the neighbours that come
// earlier in scan order (x - 1, the three of y - 1, the whole lower cross) and not less than
// those that come later, so that of a flat top only the first point counts.
bool IsPeak(const Neighbourhood& v, int level);

// The shift from the grid point in grid units: with S = ln(max(1, v)), gradient and Hessian
// from finite differences over the 19 points and H s = -g solved by Cramer's rule. A shift
// with any component beyond 1 grid step (or no solution) is taken as 0.
std::array<float, 3> PeakShift(const Neighbourhood& v);

// Every peak of one sign in the interior of the map, in scan order (x fastest, then y, z).
// For negative peaks every value is inverted first. A map of fewer than 3 points along an axis
// has no interior and no peak.
std::vector<FourierPeak> SearchPeaks(const PlotFile& plot, int level, bool negative);

// A peak as an atom line of the project: "XYZ       P123     1" and x, y, z, 0.1, 1.0.
std::string PeakLine(const FourierPeak& peak);

// The search of both signs, each when its level is 1 or more, over the plot file from its
// start: the heading, every peak line to the peak file and to the log, and the count.
// False when the plot file does not read.
bool SearchAndWritePeaks(std::istream& plotFile, std::ostream& peakFile,
                         const FourierOptions& options, Reporter& reporter);

}  // namespace kaldena
