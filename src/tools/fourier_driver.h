// The Fourier calculation of a project: options and symmetry from its records, the map from
// the engine's .fou file into the plot file (.plo), and the peaks into the peak file (.prm),
// both beside the project.
#pragma once

#include <string>
#include <string_view>

#include "tools/fourier_map.h"
#include "util/report.h"

namespace kaldena {

// The driver. Every failure is one log line; files opened so far are closed and kept.
FourierStatus RunFourier(std::string_view project, std::string_view fourierFile,
                         Reporter& reporter);

// The menu's entry: "Starting Fourier calculation", the driver, and "Fourier calculation
// interupted" when it fails.
FourierStatus StartFourier(std::string_view project, std::string_view fourierFile,
                           Reporter& reporter);

// The project's Fourier file as the engine names it (PWFO, else "%" + base + ".fou"), in the
// project's directory unless the name has one of its own. Empty when the project does not open.
std::string FourierFileOf(std::string_view project, Reporter& reporter);

}  // namespace kaldena
