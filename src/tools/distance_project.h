// What DISTAN reads of a project: title, limits (DIST), phases, atoms with their standard
// deviations, and each phase's cell and space group symbol.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "store/record_lines.h"
#include "store/record_store.h"
#include "tools/distance_search.h"
#include "util/report.h"

namespace kaldena {

// The DIST record: ranges in angstrom and the output option (below 2 distances only, 2 with
// angles, 3 or more with the extended listing).
struct DistanceLimits {
  float dmax = 3.0f;
  float amax = 2.0f;
  float dmin = 0.0f;
  float amin = 0.0f;
  int option = 2;

  bool Angles() const { return option >= 2; }
  bool Extended() const { return option >= 3; }
};

// Reads DIST ("4f10.0,i5") from the loaded store; the defaults when absent or unreadable.
DistanceLimits ReadDistanceLimits(RecordStore& store);
// What a run does before any search: a maximum distance of 0 becomes 3, and a maximum for
// angles of 0 becomes the maximum distance.
void AdjustDistanceLimits(DistanceLimits& limits);
// The DIST record as the options dialog writes it ("4f10.5,i5").
Record DistanceLimitsRecord(const DistanceLimits& limits);

struct DistancePhaseInput {
  std::string title;   // PHTI, "untitled phase" when absent
  std::string symbol;  // SPGR, 20 characters
  bool hasCell = false, hasSymbol = false;
  CellParameters cell{};
  std::array<float, 6> cellSd{};  // SDCE; angles in degrees
  int firstAtom = 0, atomCount = 0;
};

struct DistanceProject {
  std::string title = "Untitled";
  DistanceLimits limits;
  std::vector<DistanceAtom> atoms;  // all phases, at most kMaxAtoms
  std::vector<DistancePhaseInput> phases;
  bool tooManyAtoms = false;  // more XYZ lines than kMaxAtoms: the first ones are kept
};

enum class ProjectReadStatus { kOk = 0, kCannotOpen = 1 };

// Loads the project file and reads every record that DISTAN uses; the store is closed again.
ProjectReadStatus ReadDistanceProject(std::string_view fileName, DistanceProject& project,
                                      Reporter& reporter);

}  // namespace kaldena
