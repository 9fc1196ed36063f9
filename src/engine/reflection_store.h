// The reflections of all phases in parallel arrays, phase after phase, and the reflections
// that reach each pattern point.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "util/limits.h"

namespace kaldena {

class ReflectionStore {
 public:
  // The reals that move together in the sort, each a block of kMaxReflections.
  enum Real {
    kHalfwidth = 0,
    kPosition,
    kLorentzPolarisation,
    kShapeParameter,
    kRightHalfwidth,
    kRightShape,
    kStructureFactorSquared,
    kRealCount
  };

  ReflectionStore();

  // ((((phase * 4 + wavelength) * 256 + h) * 256 + k) * 256 + l) + 0x808080: h, k, l from
  // -128 to 127 stored plus 128; wavelength 1 or 2.
  static std::int32_t PackIndex(int phase, int wavelength, int h, int k, int l);
  static void UnpackIndex(std::int32_t packed, int& phase, int& wavelength, int& h, int& k, int& l);

  int Count() const { return count_; }
  // Appends a reflection; false when the store is full.
  bool Add(std::int32_t packedIndex, int multiplicity);

  std::int32_t PackedIndex(int i) const { return packedIndex_[i]; }
  int Multiplicity(int i) const { return multiplicity_[i]; }
  float HalfwidthFactor(int i) const { return halfwidthFactor_[i]; }
  float& Value(Real which, int i) { return reals_[which * kMaxReflections + i]; }
  float Value(Real which, int i) const { return reals_[which * kMaxReflections + i]; }

  // Sorts reflections first to last by position: an odd-even transposition sort that
  // exchanges only when the later one lies strictly lower (so ties keep their order), ending
  // on a pass pair without exchange or after 5000 pass pairs.
  void SortByPosition(int first, int last);

 private:
  int count_ = 0;
  std::vector<std::int32_t> packedIndex_;
  std::vector<int> multiplicity_;
  std::vector<float> halfwidthFactor_;  // 1.0: kept for anisotropic broadening
  std::vector<float> reals_;
};

// The reflections that reach each pattern point: those whose peak range, the base of peak in
// halfwidths either side of the position, covers the point, in every phase and no others.
// Points and reflections are numbered from 0.
struct PointReflections {
  std::vector<int> start;  // per point and one behind: point i holds list[start[i], start[i + 1])
  std::vector<int> list;   // reflection numbers, ascending at each point
  std::vector<unsigned char> excluded;  // per point: in an excluded region
  // Per reflection: the first and the last point that it reaches; first > last for none.
  std::vector<int> firstPoint, lastPoint;
  // The reflections ordered by their first point, and by their last (ties in store order).
  std::vector<int> byFirstPoint, byLastPoint;

  std::span<const int> At(int point) const {
    return std::span<const int>(list).subspan(start[point], start[point + 1] - start[point]);
  }
  bool Excluded(int point) const { return excluded[point] != 0; }
};

struct PointSpanInput {
  float start = 0;
  float step = 0;
  int points = 0;
  float base = 0;  // the peak range in halfwidths
  std::vector<std::array<float, 2>> excludedRegions;
  // A refined asymmetry of the first phase needs reflections below its limit angle when the
  // profile (1 to 3) applies it: the first usable point must lie below the limit.
  bool asymmetryRefined = false;
  float asymmetryLimit = 0;
};

enum class SpanStatus { kOk = 0, kFailed = 1 };

// Ties every point to the reflections that reach it. Fails with " EXCESSIVE PEAK OVERLAP" when
// more than kMaxReflectionsAtPoint reach one point, "NO REFLECTIONS FOUND" or " ASYMMETRY
// PARAMETER USAGE INVALID" in `listLines`.
SpanStatus AssignPointSpans(const ReflectionStore& store, const PointSpanInput& input,
                            PointReflections& out, std::vector<std::string>& listLines);

}  // namespace kaldena
