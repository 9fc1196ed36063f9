// DISTAN: interatomic distances and bond angles of a refined project, with standard
// deviations from the cell and the coordinates, listed per phase into a `.dis` file; and the
// silent variant of the same search that hands the results back as data (for the CIF writer).
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/distance_project.h"
#include "tools/distance_search.h"
#include "util/report.h"

namespace kaldena {

struct DistanceRunOptions {
  // The date of the heading, "2016-07-08"; today when empty.
  std::string date;
  // Values that replace those of the project's DIST record for this run (the project is not
  // changed); a maximum of 0 is then adjusted as for the record.
  std::optional<float> dmax, amax, dmin, amin;
  std::optional<int> option;
};

// The driver. `input` is a project, or a `.mlt` list of project names (one a line, each given
// the extension `rec`, up to a blank line), all listed into `listFile`. False after a failure,
// told by a log line; the list file is kept with what was written.
bool RunDistan(std::string_view input, std::string_view listFile, Reporter& reporter,
               const DistanceRunOptions& options = {});

// The menu's start: "Starting DISTAN", the list file beside the input with extension `dis`,
// the driver, then `openViewer` with the list file's name on success or "Error in DISTAN".
bool StartDistan(std::string_view input, Reporter& reporter,
                 const std::function<void(const std::string& listFile)>& openViewer = {});

// The list file that StartDistan writes for an input.
std::string DistanceListName(std::string_view input);

// The results of one phase of the silent variant.
struct PhaseDistances {
  std::string title;
  std::string symbol;
  std::vector<DistanceAtom> atoms;
  // Per atom as centre: its distances in search order (SortByLength gives the closing order)
  // and, when the limits ask for angles, its angles.
  std::vector<std::vector<DistanceRecord>> distances;
  std::vector<std::vector<AngleRecord>> angles;
};

struct DistanceTable {
  bool ok = false;
  DistanceLimits limits;
  std::vector<PhaseDistances> phases;  // the phases done before a failure stay
};

// The silent variant: the same search and standard deviations with no list file. Failures
// and limits are told by log lines (" Error opening project file ", " CELL record missing",
// "SPGR record missing", " Only M__AT atoms will be used", "Too many positions generated",
// "Too many distances to " and the label).
DistanceTable CalculateDistances(std::string_view projectFile, Reporter& reporter);

}  // namespace kaldena
