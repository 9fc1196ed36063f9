// kalden plot: the pattern, halfwidth or Fourier contour plot of a project into a file.
#pragma once

#include <string>
#include <vector>

namespace kaldena {

// kalden plot PROJECT --out FILE.(png|svg|pdf|eps|jpg|bmp) [--halfwidths]
//             [--fourier AXIS SECTION] [--range 2THETA1 2THETA2]
int PlotCommand(const std::vector<std::string>& args);

}  // namespace kaldena
