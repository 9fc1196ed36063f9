#include "engine/reflection_indices.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kaldena {

namespace {

// Integer rotation and translation (twelfths) of an operator of the table.
IndexSymmetry::Operator ToIndexOperator(const SymmetryOperator& op) {
  IndexSymmetry::Operator o;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) o.r[3 * i + j] = static_cast<int>(std::lround(op[4 * i + j]));
    o.t[i] = static_cast<int>(std::lround(op[4 * i + 3] * 12.0f));
  }
  return o;
}

// Indices transform as a row vector: (h k l) R.
Hkl Transformed(const Hkl& h, const std::array<int, 9>& r) {
  return {h[0] * r[0] + h[1] * r[3] + h[2] * r[6], h[0] * r[1] + h[1] * r[4] + h[2] * r[7],
          h[0] * r[2] + h[1] * r[5] + h[2] * r[8]};
}

Hkl Negated(const Hkl& h) { return {-h[0], -h[1], -h[2]}; }

// Rounded down, so that a negative start never cuts the lowest index of a step off the loop.
int FloorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

int KStart(int cls, int h, int kmax) {
  switch (cls) {
    case 2:
    case 3:
    case 9:
    case 11:
      return 0;
    case 4:
      return std::min(h, 1);
    case 5:
    case 10:
    case 12:
    case 13:
    case 14:
    case 15:
    case 16:
      return h;
    case 6:
      return -2 * h;
    case 7:
      return -(h / 2);
    case 8:
      return std::min(1 - h, 0);
    default:
      return -std::min(kmax, kmax * h);
  }
}

int LStart(int cls, int h, int k, int lmax, int lStep) {
  switch (cls) {
    case 3:
    case 4:
    case 5:
    case 8:
    case 9:
    case 11:
    case 12:
      return 0;
    case 6:
    case 7:
      return -(h + k);
    case 13:
      return std::min(k, lStep + h);
    case 14:
      return k;
    case 15:
      return (h == k && h % 2 == 0) ? h : h - (k % 2) + 2;
    case 16:
      return (h % 2) + k;
    default:
      return -std::min(lmax, (std::abs(k) + h) * lmax);
  }
}

// The centring words as the loops see a cell whose k and l run swapped: B centring (h + l
// even) becomes C (h + k even) and C becomes B; A and I stay.
std::vector<GeneratorWord> WordsWithKlSwapped(std::vector<GeneratorWord> words) {
  for (GeneratorWord& w : words) {
    if (w == kBCentringWord) {
      w = kCCentringWord;
    } else if (w == kCCentringWord) {
      w = kBCentringWord;
    }
  }
  return words;
}

}  // namespace

LatticeStepping LatticeSteppingOf(const std::vector<GeneratorWord>& words) {
  LatticeStepping s;
  for (GeneratorWord w : words) {
    if (w == kRhombohedralCentringWord) {
      s.lStep = 3;
      s.lModulus = 3;
      s.hkTerm = 2;
      break;
    }
    if (w == kACentringWord) {
      s.lStep = 2;
      s.kRule = 2;
    } else if (w == kBCentringWord) {
      s.lStep = 2;
      s.lRule = 2;
    } else if (w == kCCentringWord) {
      s.kStep = 2;
      s.hRule = 2;
    } else if (w == kICentringWord) {
      s.lModulus = 2;
      s.lStep = 2;
    }
  }
  if (s.lRule + s.hRule + s.kRule == 5) {  // F: the pair of A and B
    s.hRule = 2;
    s.lRule = 1;
    s.kRule = 2;
    s.kStep = 2;
    s.lStep = 2;
  }
  return s;
}

int LoopClass(const SpaceGroupInfo& info) {
  const bool bodyCentred = !info.generatorWords.empty() && info.generatorWords.front() == kICentringWord;
  return info.laueClass >= 13 && bodyCentred ? info.laueClass + 2 : info.laueClass;
}

void ForEachLoopIndex(const SpaceGroupInfo& info, const Hkl& limits,
                      const std::function<void(const Hkl&)>& visit) {
  const bool swapKl = info.laueClass == 2 && info.uniqueAxis == 3;
  const LatticeStepping s = LatticeSteppingOf(swapKl ? WordsWithKlSwapped(info.generatorWords)
                                                     : info.generatorWords);
  const int cls = LoopClass(info);
  const int hmax = limits[0];
  const int kmax = swapKl ? limits[2] : limits[1];
  const int lmax = swapKl ? limits[1] : limits[2];
  for (int h = 0; h <= hmax; ++h) {
    const int k0 = FloorDiv(KStart(cls, h, kmax), s.kStep) * s.kStep + h % s.hRule;
    for (int k = k0; k <= kmax; k += s.kStep) {
      const int centring = ((h + k * s.hkTerm) % s.lModulus + s.lModulus) % s.lModulus;
      const int l0 = FloorDiv(LStart(cls, h, k, lmax, s.lStep), s.lStep) * s.lStep + centring +
                     h % s.lRule + k % s.kRule;
      for (int l = l0; l <= lmax; l += s.lStep) visit(swapKl ? Hkl{h, l, k} : Hkl{h, k, l});
    }
  }
}

IndexSymmetry::IndexSymmetry(const SpaceGroupInfo& info) {
  for (const SymmetryOperator& op : info.operators) {
    const Operator o = ToIndexOperator(op);
    operators_.push_back(o);
    if (std::find(rotations_.begin(), rotations_.end(), o.r) == rotations_.end()) {
      rotations_.push_back(o.r);
    }
  }
}

bool IndexSymmetry::IsAbsent(const Hkl& hkl) const {
  for (const Operator& o : operators_) {
    if (Transformed(hkl, o.r) != hkl) continue;
    const int phase = hkl[0] * o.t[0] + hkl[1] * o.t[1] + hkl[2] * o.t[2];
    if (((phase % 12) + 12) % 12 != 0) return true;
  }
  return false;
}

std::vector<Hkl> IndexSymmetry::Equivalents(const Hkl& hkl) const {
  std::vector<Hkl> orbit;
  for (const std::array<int, 9>& r : rotations_) {
    const Hkl image = Transformed(hkl, r);
    for (const Hkl& h : {image, Negated(image)}) {
      if (std::find(orbit.begin(), orbit.end(), h) == orbit.end()) orbit.push_back(h);
    }
  }
  return orbit;
}

int EquivalentFilter::Add(const Hkl& hkl) {
  const std::vector<Hkl> orbit = symmetry_.Equivalents(hkl);
  if (!seen_.insert(*std::min_element(orbit.begin(), orbit.end())).second) return 0;
  return static_cast<int>(orbit.size());
}

bool IsSystematicallyAbsent(const SpaceGroupInfo& info, const Hkl& hkl) {
  return IndexSymmetry(info).IsAbsent(hkl);
}

float ReflectionMultiplicity(const SpaceGroupInfo& info, const Hkl& hkl) {
  return static_cast<float>(IndexSymmetry(info).Equivalents(hkl).size());
}

Hkl NormaliseIndices(const Hkl& hkl, int loopClass, int uniqueAxis) {
  Hkl h = hkl;
  auto firstNonZeroPositive = [](Hkl v) {
    for (int x : v) {
      if (x != 0) return x < 0 ? Negated(v) : v;
    }
    return v;
  };
  if (loopClass >= 2 && loopClass <= 4) {
    const int named = loopClass == 2 ? uniqueAxis - 1 : 2;
    return h[named] < 0 ? Negated(h) : h;
  }
  if (loopClass == 5) return {std::abs(h[0]), std::abs(h[1]), std::abs(h[2])};
  if (loopClass >= 15) {
    for (int& x : h) x = std::abs(x);
    std::sort(h.begin(), h.end());
    return h;
  }
  if (loopClass >= 6 && loopClass <= 14) {
    // The three hexagonal equivalents (h, k, i) with i = -h-k: the pair of smallest values
    // first, then the last non-zero index positive.
    std::array<int, 3> hki = {h[0], h[1], -h[0] - h[1]};
    std::array<int, 2> best = {h[0], h[1]};
    for (int rotation = 0; rotation < 3; ++rotation) {
      const std::array<int, 2> pair = {hki[rotation], hki[(rotation + 1) % 3]};
      if (std::abs(pair[0]) + std::abs(pair[1]) < std::abs(best[0]) + std::abs(best[1])) {
        best = pair;
      }
    }
    h = {best[0], best[1], h[2]};
    for (int i = 2; i >= 0; --i) {
      if (h[i] != 0) return h[i] < 0 ? Negated(h) : h;
    }
    return h;
  }
  return firstNonZeroPositive(h);
}

}  // namespace kaldena
