// Reflection indices of a phase: the loops over the unique wedge of its Laue class with the
// steps of its centring, systematic absences, multiplicities and the unique wedge itself.
#pragma once

#include <array>
#include <functional>
#include <set>
#include <vector>

#include "crystal/space_group.h"

namespace kaldena {

using Hkl = std::array<int, 3>;

// How the centring thins the index loops: l (or k) in steps of two or three, and the offsets
// that keep the sums of indices that the centring demands.
struct LatticeStepping {
  int lStep = 1, kStep = 1, hkTerm = 1, lModulus = 1, hRule = 1, lRule = 1, kRule = 1;
};

LatticeStepping LatticeSteppingOf(const std::vector<GeneratorWord>& words);

// The Laue class used by the loops: cubic groups with a body-centred lattice take their own
// wedge (class 15 or 16).
int LoopClass(const SpaceGroupInfo& info);

// Calls `visit` for every (h, k, l) of the loops, up to the index limits, in loop order: h
// outermost. The monoclinic setting with unique axis c swaps k and l.
void ForEachLoopIndex(const SpaceGroupInfo& info, const Hkl& limits,
                      const std::function<void(const Hkl&)>& visit);

// The group's operators in index space: absences and sets of equivalent reflections.
class IndexSymmetry {
 public:
  struct Operator {
    std::array<int, 9> r;
    std::array<int, 3> t;  // twelfths
  };

  explicit IndexSymmetry(const SpaceGroupInfo& info);
  // An operator maps (h, k, l) onto itself with a translation whose phase h.t is not whole.
  bool IsAbsent(const Hkl& hkl) const;
  // All equivalents of a reflection under the rotations, Friedel pairs included.
  std::vector<Hkl> Equivalents(const Hkl& hkl) const;

 private:
  std::vector<Operator> operators_;
  std::vector<std::array<int, 9>> rotations_;
};

// The loops of the monoclinic and trigonal classes meet some reflections twice, as two members
// of one set of equivalents. This filter passes the first of each set and no other.
class EquivalentFilter {
 public:
  explicit EquivalentFilter(const IndexSymmetry& symmetry) : symmetry_(symmetry) {}
  // The multiplicity of a reflection met for the first time (its equivalents, Friedel pairs
  // merged), or 0 when a member of its set was met before.
  int Add(const Hkl& hkl);

 private:
  const IndexSymmetry& symmetry_;
  std::set<Hkl> seen_;
};

bool IsSystematicallyAbsent(const SpaceGroupInfo& info, const Hkl& hkl);

// Multiplicity of a reflection: the number of its equivalents under the group's rotations,
// Friedel pairs merged.
float ReflectionMultiplicity(const SpaceGroupInfo& info, const Hkl& hkl);

// An index triple reflected into the unique wedge of a loop class.
Hkl NormaliseIndices(const Hkl& hkl, int loopClass, int uniqueAxis);

}  // namespace kaldena
