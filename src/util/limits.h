// The fixed capacities of the system, in one place.
#pragma once

namespace kaldena {

inline constexpr int kMaxPoints = 20000;
inline constexpr int kMaxPhases = 10;
inline constexpr int kMaxAtoms = 500;
inline constexpr int kMaxAtomTypes = 100;
inline constexpr int kMaxOperators = 192;
inline constexpr int kMaxReflections = 8000;
// Reflections that reach one point, whose terms must all stand at once while it is calculated.
inline constexpr int kMaxReflectionsAtPoint = 4096;
inline constexpr int kMaxParameters = 400;
inline constexpr int kMaxExcludedRegions = 30;
inline constexpr int kMaxRestraints = 500;
inline constexpr int kMaxLimitLines = 50;
inline constexpr int kMaxBackgroundTerms = 25;

inline constexpr int kRecordFileRows = 1100;
inline constexpr int kRecordLength = 256;
inline constexpr int kRecordKeyLength = 4;

}  // namespace kaldena
