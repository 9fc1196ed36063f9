// The crystallinity of a finished run as a command: the limits from the project or the
// caller, the figures from its summary file, and the record CRYS that keeps both.
#pragma once

#include <optional>
#include <string>

#include "engine/crystallinity.h"
#include "util/report.h"

namespace kaldena {

struct CrystallinityRequest {
  std::string project;
  std::optional<float> minimum, maximum;  // two-theta; the CRYS record's when not given
};

// What a calculation takes from a project: the summary file's name (the engine's, beside the
// project), the wavelength and excluded regions, and the limits of CRYS (0 when absent).
struct CrystallinityInputs {
  std::string summary;
  CrystallinityLimits limits;
};
bool ReadCrystallinityInputs(const std::string& project, Reporter& reporter,
                             CrystallinityInputs& inputs);

// CRYS with the limits and the results, replacing the old record or added.
void WriteCrystallinityRecord(const std::string& project, const CrystallinityLimits& limits,
                              const Crystallinity& result, Reporter& reporter);

// Calculates within the limits, writes CRYS (limits and results) into the project and logs
// the two figures. A summary that does not open or read gives its status and no record.
Crystallinity RunCrystallinity(const CrystallinityRequest& request, Reporter& reporter);

}  // namespace kaldena
