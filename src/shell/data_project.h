// A project that refines at once: the records that turn a new project from CIFs into a
// refinement of a measured pattern (data file and format, radiation, range, background, the
// first parameters switched on), and the steps of a refinement that follow.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/report.h"

namespace kaldena {

struct Radiation {
  bool neutron = false;
  std::array<float, 3> wavelengths{};  // ELAM: first, second, intensity ratio of the second
};

// "CuKa1", "CuKa", "CoKa", "MoKa" or "neutron:W"; nothing for another name.
std::optional<Radiation> RadiationNamed(std::string_view name);

// The FRMT of a data file's extension (.udf 3, .xy 5, .epf 9, ...); 0 when it names none.
int FormatOfExtension(std::string_view dataFile);

// The name of the compound of a CIF: mineral, common or systematic name, else the formula
// sum, else the data block's name; empty when the file names none.
std::string CifTitle(const std::string& cifFile);

struct DataSetup {
  std::string dataFile;
  int format = 0;
  Radiation radiation;
  std::string title;                     // TITL
  std::vector<std::string> phaseTitles;  // PHTI, one a phase
};

// Rewrites the new project `recFile` to refine `setup.dataFile`: TITL, PHTI, PWDT, FRMT, JOBT
// (refinement, Chebyshev background, weights from the file when it gives deviations), ELAM and
// WAVE, ANOM at the first wavelength, RELX over the pattern from a little below the first
// possible reflection, ten background terms from the pattern's lower level, and the scales,
// background and zero point switched on. False, with the reader's message, when the pattern
// does not read.
bool SetUpRefinement(const std::string& recFile, const DataSetup& setup, Reporter& reporter);

// What to switch on next, one step a line, in the usual order of a refinement.
std::vector<std::string> NextRefinementSteps(const std::string& recFile);

}  // namespace kaldena
