// The lines of the DISTAN list file (.dis), each by its fixed layout.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/space_group.h"
#include "tools/distance_project.h"
#include "tools/distance_search.h"

namespace kaldena {

class DistanceListing {
 public:
  explicit DistanceListing(std::ostream& out) : out_(out) {}

  // "DISTAN" and the date, then the project title.
  void Header(std::string_view date, std::string_view title);
  void Limits(const DistanceLimits& limits);
  // The asterisk box round "* PHASE NO. n: title *" of a project with two or more phases.
  void PhaseBox(int phase, std::string_view title);
  void CellBlock(const DistanceGeometry& g);
  void SymmetryBlock(int system, std::string_view symbol,
                     std::span<const SymmetryOperator> operators);
  void AtomBlock(std::span<const DistanceAtom> atoms);

  // Extended mode: the banner, a heading per centre and a line per distance found.
  void ExtendedBanner();
  void SearchHeading();
  void SearchLine(const DistanceRecord& r);
  void TooManyLine(int count, std::string_view centreLabel);

  void AnglesBanner(bool extended);
  void AngleHeading(bool extended);
  void AngleLine(const AngleRecord& a, bool extended);

  void ClosingBanner();
  // One centre's heading, its distances (already sorted) and a blank line.
  void ClosingCentre(std::span<const DistanceRecord> sorted);

 private:
  std::ostream& out_;
};

}  // namespace kaldena
