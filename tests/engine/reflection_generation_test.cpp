#include "engine/reflection_generation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace kaldena {
namespace {

SpaceGroupInfo Group(const char* symbol) {
  SpaceGroupInfo info;
  EXPECT_EQ(ParseSpaceGroupSymbol(symbol, info), SymbolStatus::kOk);
  EXPECT_EQ(ExpandOperators(info), ExpandStatus::kOk);
  return info;
}

ReflectionSetup CubicSetup(float a, std::array<float, 2> wavelengths) {
  ReflectionSetup s;
  s.wavelengths = wavelengths;
  s.metric = {1 / (a * a), 1 / (a * a), 1 / (a * a), 0, 0, 0};
  s.cellEdges = {a, a, a};
  s.halfwidth = {0.0f, 0.0f, 0.01f};
  s.shape = {0.5f, 0.001f, 0.0f};
  s.start = 10.0f;
  s.stop = 150.0f;
  s.monoPolarisation = 0.9f;
  return s;
}

struct Generated {
  ReflectionStore store;
  std::vector<std::string> list;
  AbsorptionRange absorption;
  GenerationStatus status;
};

Generated Generate(const char* symbol, const ReflectionSetup& setup) {
  Generated g;
  g.status = GenerateReflections(Group(symbol), setup, g.store, g.absorption, g.list);
  return g;
}

// A cubic cell: every reflection at its Bragg angle, with the multiplicity of m-3m, in order.
TEST(ReflectionGeneration, CubicPositionsMultiplicitiesAndOrder) {
  const float a = 4.0f, lambda = 1.5406f;
  Generated g = Generate("P M -3 M", CubicSetup(a, {lambda, 0.0f}));
  ASSERT_EQ(g.status, GenerationStatus::kOk);
  EXPECT_EQ(g.list.back(), " LAUE SYMMETRY M3M      WILL BE USED TO GENERATE INDICES");
  const std::map<std::array<int, 3>, int> expected = {
      {{1, 0, 0}, 6},  {{1, 1, 0}, 12}, {{1, 1, 1}, 8}, {{2, 0, 0}, 6}, {{2, 1, 0}, 24},
      {{2, 1, 1}, 24}, {{2, 2, 0}, 12}, {{3, 0, 0}, 6}, {{2, 2, 1}, 24}};
  float last = 0.0f;
  int found = 0;
  for (int i = 0; i < g.store.Count(); ++i) {
    int phase, line, h, k, l;
    ReflectionStore::UnpackIndex(g.store.PackedIndex(i), phase, line, h, k, l);
    const float p = g.store.Value(ReflectionStore::kPosition, i);
    const double d = a / std::sqrt(double(h * h + k * k + l * l));
    EXPECT_NEAR(p, 2.0 * std::asin(lambda / (2.0 * d)) * 180.0 / M_PI, 2e-3) << h << k << l;
    EXPECT_GE(p, last);
    last = p;
    std::array<int, 3> sorted = {std::abs(h), std::abs(k), std::abs(l)};
    std::sort(sorted.rbegin(), sorted.rend());
    if (expected.count(sorted)) {
      EXPECT_EQ(g.store.Multiplicity(i), expected.at(sorted)) << h << k << l;
      ++found;
    }
  }
  // 221 and 300 share one angle, so every one of the nine stands
  EXPECT_EQ(found, 9);
}

TEST(ReflectionGeneration, CentringRemovesReflections) {
  Generated f = Generate("F M -3 M", CubicSetup(5.43f, {1.5406f, 0.0f}));
  ASSERT_EQ(f.status, GenerationStatus::kOk);
  for (int i = 0; i < f.store.Count(); ++i) {
    int phase, line, h, k, l;
    ReflectionStore::UnpackIndex(f.store.PackedIndex(i), phase, line, h, k, l);
    EXPECT_TRUE((h % 2 == 0 && k % 2 == 0 && l % 2 == 0) ||
                (std::abs(h % 2) == 1 && std::abs(k % 2) == 1 && std::abs(l % 2) == 1))
        << h << " " << k << " " << l;
  }
  EXPECT_GT(f.store.Count(), 5);
}

TEST(ReflectionGeneration, DoubletAndItsEdge) {
  // With a = 0.7712 the 100 reflection has sin^2 theta = 0.998 for 1.5406 and is above 1 for
  // 1.5444: it exists for the first line only.
  ReflectionSetup setup = CubicSetup(0.7712f, {1.5406f, 1.5444f});
  setup.stop = 179.0f;
  Generated g = Generate("P M -3 M", setup);
  ASSERT_EQ(g.status, GenerationStatus::kOk);
  ASSERT_EQ(g.store.Count(), 1);
  int phase, line, h, k, l;
  ReflectionStore::UnpackIndex(g.store.PackedIndex(0), phase, line, h, k, l);
  EXPECT_EQ(line, 1);

  // A wider cell: every reflection once per line; one line when the second is 0 or the same.
  const int two = Generate("P M -3 M", CubicSetup(4.0f, {1.5406f, 1.5444f})).store.Count();
  const int one = Generate("P M -3 M", CubicSetup(4.0f, {1.5406f, 0.0f})).store.Count();
  EXPECT_EQ(two, 2 * one);
  EXPECT_EQ(Generate("P M -3 M", CubicSetup(4.0f, {1.5406f, 1.5406f})).store.Count(), one);
}

TEST(ReflectionGeneration, LorentzPolarisationAndWidths) {
  ReflectionSetup setup = CubicSetup(4.0f, {1.5406f, 0.0f});
  setup.halfwidth = {0.02f, -0.01f, 0.005f};
  Generated g = Generate("P M -3 M", setup);
  ASSERT_GT(g.store.Count(), 0);
  const float p = g.store.Value(ReflectionStore::kPosition, 0);  // 100
  const double theta = p / 2.0 * M_PI / 180.0;
  const double s = std::sin(theta) * std::sin(theta);
  const double lp =
      (1.0 + 0.9 * std::cos(2 * theta) * std::cos(2 * theta)) / (2.0 * s * std::cos(theta));
  EXPECT_NEAR(g.store.Value(ReflectionStore::kLorentzPolarisation, 0), 6 * lp, 6 * lp * 1e-4);
  const double t = std::tan(theta);
  EXPECT_NEAR(g.store.Value(ReflectionStore::kHalfwidth, 0),
              std::sqrt(0.02 * t * t - 0.01 * t + 0.005), 1e-5);
  EXPECT_NEAR(g.store.Value(ReflectionStore::kShapeParameter, 0), 0.5 + 0.001 * p, 1e-5);
  EXPECT_FLOAT_EQ(CagliotiWidth({0, 0, 0}, 0.5f), 0.01f);
}

TEST(ReflectionGeneration, UpperRangeReachesBeyondTheStop) {
  ReflectionSetup narrow = CubicSetup(4.0f, {1.5406f, 0.0f});
  narrow.stop = 120.0f;
  narrow.halfwidth = {0.0f, 0.0f, 0.04f};  // FWHM 0.2
  UpperRange range;
  range.step = 0.02f;
  range.base = 10.0f;
  std::vector<std::string> list;
  float stop = narrow.stop;
  ExtendUpperRange(narrow, true, range, stop, list);
  ASSERT_EQ(range.excludedRegions.size(), 1u);
  EXPECT_FLOAT_EQ(range.excludedRegions[0][0], 120.02f);
  EXPECT_FLOAT_EQ(stop, 121.0f);  // half of 10 halfwidths of 0.2
  EXPECT_FLOAT_EQ(range.excludedRegions[0][1], 121.0f);

  ReflectionSetup wide = narrow;
  wide.halfwidth = {0.0f, 0.0f, 0.16f};  // FWHM 0.4: the region grows
  ExtendUpperRange(wide, false, range, stop, list);
  EXPECT_FLOAT_EQ(stop, 122.0f);
  EXPECT_FLOAT_EQ(range.excludedRegions[0][1], 122.0f);
  ExtendUpperRange(narrow, false, range, stop, list);  // a narrower phase changes nothing
  EXPECT_FLOAT_EQ(stop, 122.0f);
  EXPECT_TRUE(list.empty());

  ReflectionSetup zero = narrow;
  zero.halfwidth = {0.0f, 0.0f, 0.0f};
  UpperRange other{0.02f, 10.0f, {}, false};
  float stop2 = 120.0f;
  ExtendUpperRange(zero, true, other, stop2, list);
  ExtendUpperRange(zero, false, other, stop2, list);
  EXPECT_EQ(list.size(), 1u);  // reported once
  EXPECT_FLOAT_EQ(stop2, 120.05f);
}

TEST(ReflectionGeneration, FailuresAreReported) {
  SpaceGroupInfo failed = Group("P M -3 M");
  failed.uniqueAxis = 4;
  ReflectionStore store;
  AbsorptionRange absorption;
  std::vector<std::string> list;
  EXPECT_EQ(GenerateReflections(failed, CubicSetup(4, {1.5406f, 0}), store, absorption, list),
            GenerationStatus::kFailed);
  EXPECT_EQ(list, std::vector<std::string>{"Error K.GT.3"});

  // A triclinic cell of 60 A reaches far more than 8000 reflections.
  ReflectionSetup big = CubicSetup(60.0f, {1.5406f, 0.0f});
  Generated g = Generate("P 1", big);
  EXPECT_EQ(g.status, GenerationStatus::kFailed);
  EXPECT_EQ(g.list.back(), "Too many reflections");
}

}  // namespace
}  // namespace kaldena
