// The options of a Fourier run, from the FORD, FLIM, PTIT and TITL records, and their lines.
#pragma once

#include <array>
#include <string>

#include "store/record_store.h"

namespace kaldena {

// Map types of FORD. Type 1 is a legacy code that reads no reflections at all.
enum class FourierMapType {
  kLegacy = 1,
  kPattersonObserved = 2,
  kPattersonCalculated = 3,
  kObservedWithCalculatedSigns = 4,
  kCalculated = 5,
  kDifference = 6,
};

struct FourierOptions {
  int mapType = 6;
  int positiveLevel = 500;  // scan levels on the 0..999 scale; below 1 switches a search off
  int negativeLevel = 0;
  float f000 = 2000.0f;
  float maxSinThetaOverLambda = 2.0f;
  float minSinThetaOverLambda = 0.0f;
  float sigmaCutOff = -2.0f;  // a reflection with I(obs) < cut-off x sigma is left out
  // Box of the map as fractions of the cell: min x, max x, min y, max y, min z, max z. The
  // default reaches past the cell, as no peak can be found on the outer layers of the box.
  std::array<float, 6> limits = {-0.04f, 1.04f, -0.04f, 1.04f, -0.04f, 1.04f};
  std::string plotTitle = std::string(12, ' ');  // 12 characters
  std::string title = "UNTITLED    ";             // 12 characters
};

// Reads FORD, FLIM, PTIT and TITL (the first line of each). A record that is absent, or whose
// numbers do not read, leaves every default of that record; a scan level outside 0..999
// becomes 0.
FourierOptions ReadFourierOptions(RecordStore& store);

// The three option records as the options dialog writes them.
Record FourierOrderRecord(const FourierOptions& options);   // FORD
Record FourierLimitsRecord(const FourierOptions& options);  // FLIM
Record PlotTitleRecord(const FourierOptions& options);      // PTIT

}  // namespace kaldena
