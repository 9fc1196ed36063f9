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

// Calculates within the limits, writes CRYS (limits and results) into the project and logs
// the two figures. A summary that does not open or read gives its status and no record.
Crystallinity RunCrystallinity(const CrystallinityRequest& request, Reporter& reporter);

}  // namespace kaldena
