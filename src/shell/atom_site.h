// What the symmetry of a site says about a new atom there: its site factor, which of its
// coordinates may be refined and which follow another.
#pragma once

#include <array>

#include "crystal/space_group.h"

namespace kaldena {

struct SiteCodes {
  int siteFactor = 1;            // operators, centrings included, that map the site onto itself
  std::array<float, 3> codes{};  // 1.0 for a free coordinate, 0 for a fixed or coupled one
  // The three coupling codes of the XYZ line as the engine reads them: y follows x when the
  // first two are 2 or more, by the multiplier of the second; z follows y (first code 2 or
  // more) or else x by the multiplier of the third. Multipliers: 2 equal, 3 twice, 4 minus,
  // 5 minus twice.
  std::array<int, 3> coupling{};
};

// The site of a fractional position in the group of `info` (its operators expanded).
SiteCodes SiteOf(const SpaceGroupInfo& info, const std::array<float, 3>& position);

}  // namespace kaldena
