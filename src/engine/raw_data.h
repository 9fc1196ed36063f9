// Reading the measured pattern: nine text formats, with an optional background file and an
// optional weights file of the same format.
#pragma once

#include <string>

#include "engine/list_file.h"
#include "engine/raw_pattern.h"
#include "util/report.h"

namespace kaldena {

// The values of the record FRMT.
enum class RawFormat {
  kGdf = 1,
  kTxt = 2,
  kUdf = 3,
  kXrdml = 4,
  kXy = 5,
  kDat = 6,
  kUxd = 7,
  kCif = 8,
  kEpf = 9
};

struct RawDataRequest {
  int format = 0;              // FRMT
  float autodivergence = 0;    // RLIM (7): above 0 converts, 0 leaves it to the file, below 0 never
  std::string dataFile;        // PWDT
  std::string backgroundFile;  // PWBG, blank for none
  std::string weightsFile;     // PWWG, blank for none
  bool debug = false;
};

// Weighting schemes of JOBT (7).
inline constexpr int kWeightByObserved = 0;
inline constexpr int kWeightByCalculated = 1;
inline constexpr int kWeightFromFile = 2;

// Reads the pattern of the request. Failure of any kind, told in the list file or in a box,
// gives a pattern of 0 points. `weighting` is JOBT (7): a reader whose file holds standard
// deviations sets it to kWeightFromFile, but a kWeightByCalculated that came in stays.
RawPattern ReadRawData(const RawDataRequest& request, int& weighting, ListFile& list,
                       Reporter& reporter);

}  // namespace kaldena
