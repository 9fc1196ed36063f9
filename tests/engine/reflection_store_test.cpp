#include "engine/reflection_store.h"

#include <gtest/gtest.h>

namespace kaldena {
namespace {

TEST(ReflectionStore, PackedIndicesRoundTrip) {
  for (const std::array<int, 5>& c : std::vector<std::array<int, 5>>{
           {1, 1, 0, 0, 1}, {10, 2, -128, 127, -1}, {3, 1, 12, -7, 0}}) {
    int phase, wavelength, h, k, l;
    ReflectionStore::UnpackIndex(ReflectionStore::PackIndex(c[0], c[1], c[2], c[3], c[4]), phase,
                                 wavelength, h, k, l);
    EXPECT_EQ((std::array<int, 5>{phase, wavelength, h, k, l}), c);
  }
  EXPECT_EQ(ReflectionStore::PackIndex(0, 0, 0, 0, 0), 0x808080);
}

TEST(ReflectionStore, SortMovesEveryArrayAndKeepsTies) {
  ReflectionStore store;
  const float positions[] = {30, 10, 20, 10, 5};
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(store.Add(ReflectionStore::PackIndex(1, 1, i, 0, 0), i + 1));
    store.Value(ReflectionStore::kPosition, i) = positions[i];
    store.Value(ReflectionStore::kStructureFactorSquared, i) = 100.0f * i;
  }
  store.SortByPosition(1, 4);  // the first reflection stays where it is
  const int multiplicities[] = {1, 5, 2, 4, 3};
  const float sorted[] = {30, 5, 10, 10, 20};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(store.Multiplicity(i), multiplicities[i]) << i;
    EXPECT_EQ(store.Value(ReflectionStore::kPosition, i), sorted[i]) << i;
    EXPECT_EQ(store.Value(ReflectionStore::kStructureFactorSquared, i),
              100.0f * (multiplicities[i] - 1));
  }
}

TEST(ReflectionStore, FullStoreRefusesMore) {
  ReflectionStore store;
  for (int i = 0; i < kMaxReflections; ++i) ASSERT_TRUE(store.Add(0, 1));
  EXPECT_FALSE(store.Add(0, 1));
  EXPECT_EQ(store.Count(), kMaxReflections);
}

// Reflections at the given positions, of halfwidth 0.1 unless given, on a grid 10.0, 10.1, ...
ReflectionStore Peaks(const std::vector<float>& positions, const std::vector<float>& widths = {}) {
  ReflectionStore store;
  for (size_t i = 0; i < positions.size(); ++i) {
    store.Add(0, 1);
    store.Value(ReflectionStore::kPosition, store.Count() - 1) = positions[i];
    store.Value(ReflectionStore::kHalfwidth, store.Count() - 1) =
        i < widths.size() ? widths[i] : 0.1f;
  }
  return store;
}

std::vector<int> At(const PointReflections& reach, int point) {
  return {reach.At(point).begin(), reach.At(point).end()};
}

TEST(PointSpans, EachPointHoldsTheReflectionsThatReachIt) {
  PointSpanInput in{10.0f, 0.1f, 101, 2.0f, {{18.0f, 19.0f}}};
  PointReflections reach;
  std::vector<std::string> list;
  ASSERT_EQ(AssignPointSpans(Peaks({12.0f, 12.1f, 18.5f}), in, reach, list), SpanStatus::kOk);
  EXPECT_TRUE(list.empty());
  ASSERT_EQ(reach.start.size(), 102u);
  EXPECT_EQ(At(reach, 0), std::vector<int>{});    // 10.0: nothing reaches it
  EXPECT_EQ(At(reach, 18), std::vector<int>{0});  // 11.8
  EXPECT_EQ(At(reach, 19), (std::vector<int>{0, 1}));
  EXPECT_EQ(At(reach, 22), (std::vector<int>{0, 1}));
  EXPECT_EQ(At(reach, 23), std::vector<int>{1});  // 12.3
  EXPECT_TRUE(reach.Excluded(80));                // 18.0, the region's start
  EXPECT_FALSE(reach.Excluded(79));               // 17.9
  EXPECT_EQ(At(reach, 85), std::vector<int>{});
  EXPECT_EQ(reach.firstPoint, (std::vector<int>{18, 19, 101}));
  EXPECT_EQ(reach.lastPoint, (std::vector<int>{22, 23, -1}));  // the third reaches no point
  EXPECT_EQ(reach.byFirstPoint, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(reach.byLastPoint, (std::vector<int>{2, 0, 1}));

  // A broad peak stored behind a narrow one that lies between: a point near the first peak
  // holds the broad one but not the narrow one that does not reach it.
  ASSERT_EQ(AssignPointSpans(Peaks({12.0f, 16.0f, 14.0f}, {0.1f, 0.1f, 1.0f}), in, reach, list),
            SpanStatus::kOk);
  EXPECT_EQ(At(reach, 21), (std::vector<int>{0, 2}));  // 12.1
  EXPECT_EQ(At(reach, 40), std::vector<int>{2});       // 14.0

  // A region that begins behind the last point, as the engine's own above the stop value does,
  // excludes nothing: the last point keeps the peak that reaches it.
  in.excludedRegions = {{20.1f, 21.0f}};
  ASSERT_EQ(AssignPointSpans(Peaks({19.9f}), in, reach, list), SpanStatus::kOk);
  EXPECT_EQ(At(reach, 100), std::vector<int>{0});

  EXPECT_EQ(AssignPointSpans(Peaks({}), in, reach, list), SpanStatus::kFailed);
  EXPECT_EQ(list.back(), "NO REFLECTIONS FOUND");

  in.asymmetryRefined = true;
  in.asymmetryLimit = 11.0f;
  EXPECT_EQ(AssignPointSpans(Peaks({12.0f}), in, reach, list), SpanStatus::kFailed);
  EXPECT_EQ(list.back(), " ASYMMETRY PARAMETER USAGE INVALID");
}

TEST(PointSpans, TheOverlapLimitCountsReachingReflectionsOnly) {
  PointSpanInput in{10.0f, 0.1f, 101, 2.0f, {}};
  PointReflections reach;
  std::vector<std::string> list;
  std::vector<float> positions(kMaxReflectionsAtPoint, 10.5f);
  EXPECT_EQ(AssignPointSpans(Peaks(positions), in, reach, list), SpanStatus::kOk);
  EXPECT_EQ(reach.At(5).size(), static_cast<size_t>(kMaxReflectionsAtPoint));
  positions.push_back(10.5f);
  EXPECT_EQ(AssignPointSpans(Peaks(positions), in, reach, list), SpanStatus::kFailed);
  EXPECT_EQ(list, std::vector<std::string>{" EXCESSIVE PEAK OVERLAP"});

  // Ten peaks at 10.5, more than the limit of other peaks far off, and a broad one that
  // reaches 10.5: the first and the last reflection there lie far apart, but only 11 reach it.
  positions.assign(10, 10.5f);
  constexpr int kFarOff = kMaxReflectionsAtPoint + 100;
  for (int n = 0; n < kFarOff; ++n) positions.push_back(13.0f + 7.0f * n / kFarOff);
  positions.push_back(11.0f);
  std::vector<float> widths(positions.size(), 0.1f);
  widths.back() = 0.5f;
  list.clear();
  ASSERT_EQ(AssignPointSpans(Peaks(positions, widths), in, reach, list), SpanStatus::kOk);
  EXPECT_EQ(reach.At(5).size(), 11u);
  EXPECT_EQ(reach.At(5).back(), static_cast<int>(positions.size()) - 1);
}

}  // namespace
}  // namespace kaldena
