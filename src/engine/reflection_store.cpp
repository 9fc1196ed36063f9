#include "engine/reflection_store.h"

#include <algorithm>
#include <numeric>

namespace kaldena {

namespace {

constexpr int kMaxSortPassPairs = 5000;

int PointOf(float twoTheta, const PointSpanInput& in) {
  return static_cast<int>(1.5f + (twoTheta - in.start) / in.step);
}

}  // namespace

ReflectionStore::ReflectionStore()
    : packedIndex_(kMaxReflections),
      multiplicity_(kMaxReflections),
      halfwidthFactor_(kMaxReflections, 1.0f),
      reals_(kRealCount * kMaxReflections) {}

std::int32_t ReflectionStore::PackIndex(int phase, int wavelength, int h, int k, int l) {
  return ((((phase * 4 + wavelength) * 256 + h) * 256 + k) * 256 + l) + 0x808080;
}

void ReflectionStore::UnpackIndex(std::int32_t packed, int& phase, int& wavelength, int& h, int& k,
                                  int& l) {
  l = packed % 256 - 128;
  k = (packed / 256) % 256 - 128;
  h = (packed / 65536) % 256 - 128;
  wavelength = (packed / 16777216) % 4;
  phase = packed / 67108864;
}

bool ReflectionStore::Add(std::int32_t packedIndex, int multiplicity) {
  if (count_ == kMaxReflections) return false;
  packedIndex_[count_] = packedIndex;
  multiplicity_[count_] = multiplicity;
  halfwidthFactor_[count_] = 1.0f;
  for (int r = 0; r < kRealCount; ++r) reals_[r * kMaxReflections + count_] = 0.0f;
  ++count_;
  return true;
}

void ReflectionStore::SortByPosition(int first, int last) {
  const int n = last - first + 1;
  if (n < 2) return;
  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), first);
  const float* position = &reals_[kPosition * kMaxReflections];
  for (int pair = 0; pair < kMaxSortPassPairs; ++pair) {
    bool exchanged = false;
    for (int start = 1; start >= 0; --start) {
      for (int i = start; i + 1 < n; i += 2) {
        if (position[order[i + 1]] < position[order[i]]) {
          std::swap(order[i], order[i + 1]);
          exchanged = true;
        }
      }
    }
    if (!exchanged) break;
  }
  auto permute = [&](auto& array, int stride) {
    using T = typename std::decay_t<decltype(array)>::value_type;
    std::vector<T> copy(n);
    for (int i = 0; i < n; ++i) copy[i] = array[stride + order[i]];
    std::copy(copy.begin(), copy.end(), array.begin() + stride + first);
  };
  permute(packedIndex_, 0);
  permute(multiplicity_, 0);
  permute(halfwidthFactor_, 0);
  for (int r = 0; r < kRealCount; ++r) permute(reals_, r * kMaxReflections);
}

SpanStatus AssignPointSpans(const ReflectionStore& store, const PointSpanInput& in,
                            std::vector<int>& spans, std::vector<std::string>& listLines) {
  // (first, last) by point number from 1.
  std::vector<std::array<int, 2>> table(in.points + 1, {0, 0});
  for (int r = 0; r < store.Count(); ++r) {
    const float p = store.Value(ReflectionStore::kPosition, r);
    const float reach = in.base * store.Value(ReflectionStore::kHalfwidth, r);
    const int lo = std::clamp(PointOf(p - reach, in), 1, in.points);
    const int hi = std::clamp(PointOf(p + reach, in), 1, in.points);
    for (int i = lo; i <= hi; ++i) {
      table[i][1] = r + 1;
      if (table[i][0] == 0) table[i][0] = r + 1;
    }
  }
  const float end = in.start + in.step * static_cast<float>(in.points - 1);
  for (const std::array<float, 2>& region : in.excludedRegions) {
    if (region[1] <= in.start) continue;
    // Not clamped onto the range: the engine's own region above the stop value begins one step
    // behind the last point and excludes none.
    const int lo = std::max(PointOf(region[0], in), 1);
    const int hi = std::min(PointOf(region[1], in), in.points);
    for (int i = lo; i <= hi; ++i) table[i] = {0, 1};
    if (region[1] >= end) break;
  }
  spans.assign(in.points, 0);
  int usable = 0;
  for (int i = 1; i <= in.points; ++i) {
    if (table[i][1] - table[i][0] + 1 > kMaxSpanReflections) {
      listLines.push_back(" EXCESSIVE PEAK OVERLAP");
      return SpanStatus::kFailed;
    }
    spans[i - 1] = table[i][1] * kMaxReflections + table[i][0];
    if (usable == 0 && table[i][0] > 0) usable = i;
  }
  if (usable == 0) {
    listLines.push_back("NO REFLECTIONS FOUND");
    return SpanStatus::kFailed;
  }
  const float firstPosition = store.Value(ReflectionStore::kPosition, table[usable][0] - 1);
  if (in.asymmetryRefined && firstPosition >= in.asymmetryLimit) {
    listLines.push_back(" ASYMMETRY PARAMETER USAGE INVALID");
    return SpanStatus::kFailed;
  }
  return SpanStatus::kOk;
}

SpanReflections ReflectionsOfSpan(int span) {
  if (span == kMaxReflections) return {0, -1, true};
  const int first = span % kMaxReflections, last = span / kMaxReflections;
  if (first == 0) return {};
  return {first - 1, last - 1, false};
}

}  // namespace kaldena
