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

// Reflections of halfwidth 0.1 at the given positions on a grid 10.0, 10.1, ...
ReflectionStore Peaks(const std::vector<float>& positions) {
  ReflectionStore store;
  for (float p : positions) {
    store.Add(0, 1);
    store.Value(ReflectionStore::kPosition, store.Count() - 1) = p;
    store.Value(ReflectionStore::kHalfwidth, store.Count() - 1) = 0.1f;
  }
  return store;
}

TEST(PointSpans, SpansExclusionsAndFailures) {
  PointSpanInput in{10.0f, 0.1f, 101, 2.0f, {{18.0f, 19.0f}}};
  std::vector<int> spans;
  std::vector<std::string> list;
  ASSERT_EQ(AssignPointSpans(Peaks({12.0f, 12.1f, 18.5f}), in, spans, list), SpanStatus::kOk);
  ASSERT_EQ(spans.size(), 101u);
  EXPECT_EQ(spans[0], 0);                         // 10.0: nothing reaches it
  EXPECT_EQ(spans[19], 2 * kMaxReflections + 1);  // 11.9: both peaks
  EXPECT_EQ(spans[22], 2 * kMaxReflections + 1);  // 12.2
  EXPECT_EQ(spans[85], 1 * kMaxReflections + 0);  // 18.5, excluded
  EXPECT_TRUE(list.empty());
  const SpanReflections both = ReflectionsOfSpan(spans[19]);
  EXPECT_EQ(both.first, 0);
  EXPECT_EQ(both.last, 1);
  EXPECT_FALSE(both.excluded);
  EXPECT_TRUE(ReflectionsOfSpan(spans[85]).excluded);
  EXPECT_GT(ReflectionsOfSpan(spans[0]).first, ReflectionsOfSpan(spans[0]).last);

  // A region that begins behind the last point, as the engine's own above the stop value does,
  // excludes nothing: the last point keeps the peak that reaches it.
  in.excludedRegions = {{20.1f, 21.0f}};
  ASSERT_EQ(AssignPointSpans(Peaks({19.9f}), in, spans, list), SpanStatus::kOk);
  EXPECT_EQ(spans[100], 1 * kMaxReflections + 1);

  EXPECT_EQ(AssignPointSpans(Peaks({}), in, spans, list), SpanStatus::kFailed);
  EXPECT_EQ(list.back(), "NO REFLECTIONS FOUND");

  in.asymmetryRefined = true;
  in.asymmetryLimit = 11.0f;
  EXPECT_EQ(AssignPointSpans(Peaks({12.0f}), in, spans, list), SpanStatus::kFailed);
  EXPECT_EQ(list.back(), " ASYMMETRY PARAMETER USAGE INVALID");
}

TEST(PointSpans, AtMostTheSpanCapacityAtAPoint) {
  PointSpanInput in{10.0f, 0.1f, 11, 2.0f, {}};
  std::vector<int> spans;
  std::vector<std::string> list;
  std::vector<float> positions(kMaxSpanReflections, 10.5f);
  EXPECT_EQ(AssignPointSpans(Peaks(positions), in, spans, list), SpanStatus::kOk);
  positions.push_back(10.5f);
  EXPECT_EQ(AssignPointSpans(Peaks(positions), in, spans, list), SpanStatus::kFailed);
  EXPECT_EQ(list, std::vector<std::string>{" EXCESSIVE PEAK OVERLAP"});
}

}  // namespace
}  // namespace kaldena
