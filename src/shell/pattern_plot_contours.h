// The Fourier map section as a contour plot: the contour data of one section drawn through
// the plot library in the plane's true oblique shape.
#pragma once

#include "shell/plot_library.h"
#include "tools/contour.h"
#include "util/report.h"

namespace kaldena {

// Draws section `section` at right angles to `sectionAxis` (1 X, 2 Y, 3 Z) with `doublings`
// interpolations (reset to 0 when the grid is too small). 0 when drawn; the status of
// TakePlane otherwise, with nothing drawn.
int DrawFourierSection(PlotLibrary& plot, const ContourMap& map, int sectionAxis, int section,
                       int& doublings, Reporter& reporter);

}  // namespace kaldena
