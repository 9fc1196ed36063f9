// The site symmetry of a position from the operators that leave it in place.
#include "shell/atom_site.h"

#include <cmath>

namespace kaldena {

namespace {

constexpr float kSameSite = 1e-4f;

bool MapsOntoItself(const SymmetryOperator& s, const std::array<float, 3>& p) {
  for (int i = 0; i < 3; ++i) {
    const float image = s[4 * i] * p[0] + s[4 * i + 1] * p[1] + s[4 * i + 2] * p[2] + s[4 * i + 3];
    const float offset = image - p[i];
    if (std::abs(offset - std::round(offset)) > kSameSite) return false;
  }
  return true;
}

// The coupling code of a ratio, 0 for none of the four.
int CouplingCode(float ratio) {
  constexpr std::array<std::pair<float, int>, 4> kCodes = {{{1, 2}, {2, 3}, {-1, 4}, {-2, 5}}};
  for (const auto& [r, code] : kCodes) {
    if (std::abs(ratio - r) < kSameSite) return code;
  }
  return 0;
}

// The coupling code of `row` as a multiple of `source`, 0 when it is none of the four.
int MultipleOf(const std::array<float, 3>& row, const std::array<float, 3>& source) {
  int pivot = 0;
  while (pivot < 3 && std::abs(source[pivot]) <= kSameSite) ++pivot;
  if (pivot == 3) return 0;
  const float ratio = row[pivot] / source[pivot];
  for (int j = 0; j < 3; ++j) {
    if (std::abs(row[j] - ratio * source[j]) > kSameSite) return 0;
  }
  return CouplingCode(ratio);
}

bool Moves(const std::array<float, 3>& row) {
  return std::abs(row[0]) + std::abs(row[1]) + std::abs(row[2]) > kSameSite;
}

}  // namespace

SiteCodes SiteOf(const SpaceGroupInfo& info, const std::array<float, 3>& position) {
  // The mean of the linear parts of the site's operators projects onto the shifts that keep
  // the site's symmetry: a coordinate whose row is zero cannot move, and one whose row is a
  // multiple of another's follows it.
  std::array<std::array<float, 3>, 3> mean{};
  SiteCodes site;
  site.siteFactor = 0;
  for (const SymmetryOperator& s : info.operators) {
    if (!MapsOntoItself(s, position)) continue;
    ++site.siteFactor;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) mean[i][j] += s[4 * i + j];
    }
  }
  if (site.siteFactor == 0) return SiteCodes{};
  for (auto& row : mean) {
    for (float& v : row) v /= static_cast<float>(site.siteFactor);
  }
  const auto& [x, y, z] = mean;
  auto& c = site.coupling;
  const int yOnX = Moves(y) ? MultipleOf(y, x) : 0;
  if (yOnX != 0) c = {2, yOnX, 0};
  const int zOnY = Moves(z) ? MultipleOf(z, y) : 0;
  const int zOnX = Moves(z) ? MultipleOf(z, x) : 0;
  if (zOnY != 0) {
    c[0] = 2;
    c[2] = zOnY;
  } else if (zOnX != 0 && yOnX == 0) {
    c[1] = 2;
    c[2] = zOnX;
  }
  site.codes = {Moves(x) ? 1.0f : 0.0f, Moves(y) && yOnX == 0 ? 1.0f : 0.0f,
                Moves(z) && c[2] == 0 ? 1.0f : 0.0f};
  return site;
}

}  // namespace kaldena
