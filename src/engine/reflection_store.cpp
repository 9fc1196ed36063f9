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

namespace {

// The points (from 0) in excluded regions. A region is not clamped onto the range: the
// engine's own region above the stop value begins one step behind the last point and excludes
// none.
std::vector<unsigned char> ExcludedPoints(const PointSpanInput& in) {
  std::vector<unsigned char> excluded(in.points, 0);
  const float end = in.start + in.step * static_cast<float>(in.points - 1);
  for (const std::array<float, 2>& region : in.excludedRegions) {
    if (region[1] <= in.start) continue;
    const int lo = std::max(PointOf(region[0], in), 1);
    const int hi = std::min(PointOf(region[1], in), in.points);
    for (int i = lo; i <= hi; ++i) excluded[i - 1] = 1;
    if (region[1] >= end) break;
  }
  return excluded;
}

// The points (from 0) that reflection r's peak range covers, clipped onto the pattern.
std::array<int, 2> PeakRange(const ReflectionStore& store, int r, const PointSpanInput& in) {
  const float p = store.Value(ReflectionStore::kPosition, r);
  const float reach = in.base * store.Value(ReflectionStore::kHalfwidth, r);
  return {std::clamp(PointOf(p - reach, in), 1, in.points) - 1,
          std::clamp(PointOf(p + reach, in), 1, in.points) - 1};
}

// Indices of `keys` in ascending order of their key, equal keys in index order.
std::vector<int> OrderedBy(const std::vector<int>& keys) {
  std::vector<int> order(keys.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return keys[a] < keys[b]; });
  return order;
}

}  // namespace

SpanStatus AssignPointSpans(const ReflectionStore& store, const PointSpanInput& in,
                            PointReflections& out, std::vector<std::string>& listLines) {
  const int reflections = in.points > 0 ? store.Count() : 0;
  out.excluded = ExcludedPoints(in);
  std::vector<int> count(in.points, 0);
  for (int r = 0; r < reflections; ++r) {
    const std::array<int, 2> range = PeakRange(store, r, in);
    for (int i = range[0]; i <= range[1]; ++i) count[i] += out.excluded[i] ? 0 : 1;
  }
  if (std::any_of(count.begin(), count.end(), [](int n) { return n > kMaxReflectionsAtPoint; })) {
    listLines.push_back(" EXCESSIVE PEAK OVERLAP");
    return SpanStatus::kFailed;
  }
  out.start.assign(in.points + 1, 0);
  std::partial_sum(count.begin(), count.end(), out.start.begin() + 1);
  out.list.assign(out.start.back(), 0);
  out.firstPoint.assign(reflections, in.points);
  out.lastPoint.assign(reflections, -1);
  std::vector<int> filled(out.start.begin(), out.start.end() - 1);
  for (int r = 0; r < reflections; ++r) {
    const std::array<int, 2> range = PeakRange(store, r, in);
    for (int i = range[0]; i <= range[1]; ++i) {
      if (out.excluded[i]) continue;
      out.list[filled[i]++] = r;
      out.firstPoint[r] = std::min(out.firstPoint[r], i);
      out.lastPoint[r] = i;
    }
  }
  out.byFirstPoint = OrderedBy(out.firstPoint);
  out.byLastPoint = OrderedBy(out.lastPoint);
  const auto usable = std::find_if(count.begin(), count.end(), [](int n) { return n > 0; });
  if (usable == count.end()) {
    listLines.push_back("NO REFLECTIONS FOUND");
    return SpanStatus::kFailed;
  }
  const int first = out.list[out.start[usable - count.begin()]];
  if (in.asymmetryRefined && store.Value(ReflectionStore::kPosition, first) >= in.asymmetryLimit) {
    listLines.push_back(" ASYMMETRY PARAMETER USAGE INVALID");
    return SpanStatus::kFailed;
  }
  return SpanStatus::kOk;
}

}  // namespace kaldena
