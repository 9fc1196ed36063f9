// Site factors and refinable coordinates of new atoms, against the site symmetries of the
// International Tables for F m -3 m (group order 192 with the centrings).
#include "shell/atom_site.h"

#include <gtest/gtest.h>

namespace kaldena {
namespace {

TEST(AtomSite, SitesOfFm3mGiveTheirFactorsCodesAndCouplings) {
  SpaceGroupInfo group;
  ASSERT_EQ(ParseSpaceGroupSymbol("F M 3 M", group), SymbolStatus::kOk);
  ASSERT_EQ(ExpandOperators(group), ExpandStatus::kOk);
  ASSERT_EQ(group.operators.size(), 192u);
  struct Case {
    std::array<float, 3> at;
    int factor;  // 192 over the Wyckoff multiplicity
    std::array<float, 3> codes;
    std::array<int, 3> coupling;
  };
  const Case cases[] = {
      {{0, 0, 0}, 48, {0, 0, 0}, {0, 0, 0}},              // 4a m-3m
      {{0.25f, 0.25f, 0.25f}, 24, {0, 0, 0}, {0, 0, 0}},  // 8c -43m
      {{0.3f, 0.3f, 0.3f}, 6, {1, 0, 0}, {2, 2, 2}},      // 32f .3m: x, x, x
      {{0.3f, 0, 0}, 8, {1, 0, 0}, {0, 0, 0}},            // 24e 4m.m: x, 0, 0
      {{0, 0.3f, 0.3f}, 4, {0, 1, 0}, {2, 0, 2}},         // 48h m.m2: 0, y, y
      {{0.11f, 0.23f, 0.37f}, 1, {1, 1, 1}, {0, 0, 0}},   // 192l general
      {{0.1f, 0.2f, 0.3f}, 2, {1, 1, 0}, {2, 0, 4}},      // 96k m: x, y, 1/2 - y
  };
  for (const Case& c : cases) {
    const SiteCodes site = SiteOf(group, c.at);
    EXPECT_EQ(site.siteFactor, c.factor) << c.at[0] << " " << c.at[1] << " " << c.at[2];
    EXPECT_EQ(site.codes, c.codes) << c.at[0] << " " << c.at[1] << " " << c.at[2];
    EXPECT_EQ(site.coupling, c.coupling) << c.at[0] << " " << c.at[1] << " " << c.at[2];
  }
}

}  // namespace
}  // namespace kaldena
