#include "engine/reflection_indices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "support/test_files.h"

namespace kaldena {
namespace {

// A reference operator from the table of general positions ("-x+y,y,-z+1/2"), as the
// rotation rows and a translation in twelfths.
struct RefOp {
  std::array<int, 9> r{};
  std::array<int, 3> t{};
};

RefOp ParseTriplet(const std::string& text) {
  RefOp op;
  std::stringstream in(text);
  std::string row;
  for (int i = 0; std::getline(in, row, ','); ++i) {
    int sign = 1;
    for (size_t c = 0; c < row.size(); ++c) {
      const char ch = row[c];
      if (ch == '-' || ch == '+') {
        sign = ch == '-' ? -1 : 1;
      } else if (ch >= 'x' && ch <= 'z') {
        op.r[3 * i + (ch - 'x')] = sign;
      } else if (ch >= '0' && ch <= '9') {
        const size_t slash = row.find('/', c);
        const int num = std::stoi(row.substr(c, slash - c));
        const int den = std::stoi(row.substr(slash + 1));
        op.t[i] = (12 / den * num * sign % 12 + 12) % 12;
        break;
      }
    }
  }
  return op;
}

struct Setting {
  std::string symbol;
  int laueClass = 0;
  int uniqueAxis = 0;
  std::vector<RefOp> ops;
};

void ReadSettings(std::istream& in, std::vector<Setting>& settings) {
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> f;
    std::stringstream fields(line);
    for (std::string part; std::getline(fields, part, '|');) f.push_back(part);
    Setting s{f[1], std::stoi(f[2]), std::stoi(f[3]), {}};
    std::stringstream ops(f[6]);
    for (std::string op; std::getline(ops, op, ';');) s.ops.push_back(ParseTriplet(op));
    settings.push_back(s);
  }
}

// Every setting a symbol can name: the common ones and the other settings of the tables.
std::vector<Setting> Settings() {
  std::vector<Setting> settings;
  for (const char* name : {"crystal/space_groups.txt", "crystal/space_group_settings.txt"}) {
    std::ifstream in(testing::TestData(name));
    ReadSettings(in, settings);
  }
  return settings;
}

// A cell that fits the lattice of each Laue class; angles in degrees.
std::array<double, 6> CellFor(int laueClass, int uniqueAxis) {
  switch (laueClass) {
    case 1:
      return {7, 8, 9, 80, 95, 100};
    case 2:
      return {7,
              8,
              9,
              uniqueAxis == 1 ? 100.0 : 90,
              uniqueAxis == 2 ? 100.0 : 90,
              uniqueAxis == 3 ? 100.0 : 90};
    case 3:
      return {7, 8, 9, 90, 90, 90};
    case 4:
    case 5:
      return {8, 8, 9, 90, 90, 90};
    case 6:
    case 7:
      return {8, 8, 8, 75, 75, 75};
    case 13:
    case 14:
      return {8, 8, 8, 90, 90, 90};
    default:
      return {8, 8, 9, 90, 90, 120};
  }
}

// sin^2(theta)/lambda^2 = h G* h / 4, with G* the inverse of the direct metric.
struct Metric {
  double g[3][3];
  explicit Metric(const std::array<double, 6>& cell) {
    const double rad = M_PI / 180.0;
    const double ca = std::cos(cell[3] * rad), cb = std::cos(cell[4] * rad),
                 cg = std::cos(cell[5] * rad);
    const double m[3][3] = {{cell[0] * cell[0], cell[0] * cell[1] * cg, cell[0] * cell[2] * cb},
                            {cell[0] * cell[1] * cg, cell[1] * cell[1], cell[1] * cell[2] * ca},
                            {cell[0] * cell[2] * cb, cell[1] * cell[2] * ca, cell[2] * cell[2]}};
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        const int i1 = (j + 1) % 3, i2 = (j + 2) % 3, j1 = (i + 1) % 3, j2 = (i + 2) % 3;
        g[i][j] = (m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1]) / det;
      }
    }
  }
  double Q(const Hkl& h) const {
    double q = 0;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) q += h[i] * g[i][j] * h[j];
    }
    return q / 4.0;
  }
};

Hkl Times(const Hkl& h, const std::array<int, 9>& r) {
  return {h[0] * r[0] + h[1] * r[3] + h[2] * r[6], h[0] * r[1] + h[1] * r[4] + h[2] * r[7],
          h[0] * r[2] + h[1] * r[5] + h[2] * r[8]};
}

bool ReferenceAbsent(const Setting& s, const Hkl& h) {
  for (const RefOp& op : s.ops) {
    if (Times(h, op.r) != h) continue;
    if ((h[0] * op.t[0] + h[1] * op.t[1] + h[2] * op.t[2]) % 12 != 0) return true;
  }
  return false;
}

std::set<Hkl> ReferenceOrbit(const Setting& s, const Hkl& h) {
  std::set<Hkl> orbit;
  for (const RefOp& op : s.ops) {
    const Hkl image = Times(h, op.r);
    orbit.insert(image);
    orbit.insert({-image[0], -image[1], -image[2]});
  }
  return orbit;
}

// For every group: the loops give each symmetry-independent, allowed reflection up to the
// limit exactly once, and its multiplicity is the number of its equivalents.
TEST(ReflectionIndices, LoopsCoverEachIndependentReflectionOnce) {
  constexpr double kLimit = 0.35 * 0.35;  // (sin theta / lambda)^2
  int failures = 0;
  for (const Setting& s : Settings()) {
    SpaceGroupInfo info;
    ASSERT_EQ(ParseSpaceGroupSymbol(s.symbol, info), SymbolStatus::kOk);
    ASSERT_EQ(ExpandOperators(info), ExpandStatus::kOk);
    const std::array<double, 6> cell = CellFor(s.laueClass, s.uniqueAxis);
    const Metric metric(cell);
    Hkl limits;
    for (int i = 0; i < 3; ++i) limits[i] = static_cast<int>(2 * cell[i] * std::sqrt(kLimit));

    std::map<Hkl, int> hits;  // representative of the orbit -> times generated
    std::string problem;
    const IndexSymmetry symmetry(info);
    EquivalentFilter filter(symmetry);
    ForEachLoopIndex(info, limits, [&](const Hkl& h) {
      if (h == Hkl{0, 0, 0} || metric.Q(h) > kLimit || IsSystematicallyAbsent(info, h)) return;
      if (filter.Add(h) == 0) return;
      if (ReferenceAbsent(s, h) && problem.empty()) problem = "absent reflection generated";
      const std::set<Hkl> orbit = ReferenceOrbit(s, h);
      if (ReflectionMultiplicity(info, h) != orbit.size() && problem.empty()) {
        problem = "multiplicity";
      }
      ++hits[*orbit.begin()];
    });
    size_t expected = 0;
    for (int h = -limits[0]; h <= limits[0]; ++h) {
      for (int k = -limits[1]; k <= limits[1]; ++k) {
        for (int l = -limits[2]; l <= limits[2]; ++l) {
          const Hkl hkl{h, k, l};
          if (hkl == Hkl{0, 0, 0} || metric.Q(hkl) > kLimit || ReferenceAbsent(s, hkl)) continue;
          const std::set<Hkl> orbit = ReferenceOrbit(s, hkl);
          if (*orbit.begin() != hkl) continue;
          ++expected;
          if (hits.count(hkl) == 0 && problem.empty()) problem = "reflection missing";
          if (hits.count(hkl) && hits[hkl] > 1 && problem.empty()) problem = "generated twice";
        }
      }
    }
    if (problem.empty() && hits.size() != expected) problem = "extra reflections";
    if (!problem.empty()) ++failures;
    EXPECT_TRUE(problem.empty()) << s.symbol << " (class " << s.laueClass << "): " << problem;
  }
  EXPECT_EQ(failures, 0);
}

TEST(ReflectionIndices, NormalisedVectorsPointIntoTheWedge) {
  EXPECT_EQ(NormaliseIndices({-1, 2, -3}, 5, 0), (Hkl{1, 2, 3}));
  EXPECT_EQ(NormaliseIndices({3, -1, 2}, 16, 0), (Hkl{1, 2, 3}));
  EXPECT_EQ(NormaliseIndices({-1, 2, 0}, 1, 0), (Hkl{1, -2, 0}));
  EXPECT_EQ(NormaliseIndices({1, -2, 3}, 2, 2), (Hkl{-1, 2, -3}));
}

}  // namespace
}  // namespace kaldena
