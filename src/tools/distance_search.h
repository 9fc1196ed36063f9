// The search of DISTAN: the cell geometry of a phase, the expansion of its atoms by the
// operators, the distances round each atom over the trial cells with their standard
// deviations, and the bond angles built from the distances of one centre.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/space_group.h"
#include "store/record_lines.h"

namespace kaldena {

inline constexpr int kMaxDistancePositions = 5000;
inline constexpr int kMaxDistancesPerCentre = 500;
inline constexpr int kCentreCode = 1555;

// Crystal system codes, as found from the cell values alone.
enum class CrystalSystem {
  kTriclinic = 1,
  kMonoclinic = 2,
  kOrthorhombic = 3,
  kHexagonal = 4,
  kRhombohedral = 5,
  kTetragonal = 6,
  kCubic = 7,
};

// The code by exact comparison of the cell values; a later test overrules an earlier one, so a
// monoclinic cell is seen only with alpha 90 and a = b alone counts as tetragonal.
int CrystalSystemCode(const CellParameters& cell);
std::string_view CrystalSystemName(int code);

// Everything of a phase's cell that the search and the error propagation use.
struct DistanceGeometry {
  CellParameters cell{};
  std::array<float, 6> cellSd{};  // angles in radians
  CellParameters reciprocal{};    // a*, b*, c*, alpha*, beta*, gamma* (degrees)
  float volume = 0;
  std::array<float, 3> cosAngle{}, sinAngle{};  // alpha, beta, gamma
  std::array<float, 3> cosStar{};               // alpha*, beta*, gamma*
  float a2 = 0, b2 = 0, c2 = 0;                 // squared edges
  float abCosGamma = 0, acCosBeta = 0, bcCosAlpha = 0;
  int system = 1;
  std::array<std::array<float, 3>, 3> correlation{};  // of a coordinate triple, upper triangle
  std::array<float, 3> bound{};                       // dmax a a*, dmax b b*, dmax c c*
  float dmin = 0, dmax = 0;
  float dmin2 = 0, dmax2 = 0;
};

// `cellSd` holds the angles' standard deviations in degrees, as in SDCE.
DistanceGeometry MakeDistanceGeometry(const CellParameters& cell,
                                      const std::array<float, 6>& cellSd, float dmin, float dmax);

// Squared length of a difference of fractional coordinates.
float SquaredDistance(const DistanceGeometry& g, float dx, float dy, float dz);

struct DistanceAtom {
  std::string label;  // 4 characters
  std::array<float, 3> xyz{};
  float occupancy = 0;
  float b = 0;
  std::array<float, 3> sd{};
};

// An image of an atom, reduced into the cell.
struct ExpandedPosition {
  std::array<float, 3> xyz{};  // x = kDuplicateMarker for an image that repeats an earlier one
  std::array<int, 3> shift{};  // whole translations added in the reduction
  int op = 0;                  // operator number from 1
};

inline constexpr float kDuplicateMarker = 100.0f;

// Positions of atom a (from 0) by operator o (from 1) at index a * operators + o - 1. When the
// table would pass kMaxDistancePositions the expansion stops and `complete` is false.
struct PositionTable {
  int operators = 0;
  std::vector<ExpandedPosition> positions;
  bool complete = true;
  int PositionsOf(int atom) const;  // how many of the atom's images stand in the table
  const ExpandedPosition& At(int atom, int op) const {
    return positions[static_cast<size_t>(atom) * operators + op - 1];
  }
};

PositionTable ExpandPositions(std::span<const DistanceAtom> atoms,
                              std::span<const SymmetryOperator> operators);

// One accepted distance. Plain data, so that it can go to the scratch file as it stands.
struct DistanceRecord {
  std::array<char, 4> neighbourLabel{};
  std::array<char, 4> centreLabel{};
  std::array<float, 3> neighbour{};  // fractional, as listed
  int code = 0;                      // symmetry code of the neighbour
  std::array<float, 3> centre{};
  float d = 0;
  // Terms of the standard deviation: s(x) times the derivative of d, for x, y, z of the
  // neighbour and then of the centre, after the special-position ties and before the two
  // ends of one atom are merged.
  std::array<float, 6> coordTerms{};
  // The six cell terms before any merging by crystal system.
  std::array<float, 6> cellTerms{};
  float sd = 0;
  int neighbourOp = 0, centreOp = 0;      // operator numbers from 1
  int neighbourAtom = 0, centreAtom = 0;  // atom numbers of the phase, from 0
};

std::string LabelText(const std::array<char, 4>& label);

struct DistancePhaseModel {
  DistanceGeometry geometry;
  std::vector<DistanceAtom> atoms;
  std::vector<SymmetryOperator> operators;
  PositionTable positions;
};

// Called for each accepted distance, and for each image met once the centre is full.
struct DistanceSink {
  std::function<void(const DistanceRecord&)> accept;
  std::function<void(int count, std::string_view centreLabel)> tooMany;
};

// The distances round one atom (from 0); returns how many were accepted.
int SearchCentre(const DistancePhaseModel& model, int centre, const DistanceSink& sink);

// Cell terms of a distance between two fractional points, unmerged (a, b, c, alpha, beta,
// gamma); `d` is the distance.
std::array<float, 6> CellTerms(const DistanceGeometry& g, const std::array<float, 3>& diff,
                               float d);
// The cell terms merged by the crystal system: for a distance, or with the angle rules.
std::array<float, 6> MergeCellTerms(std::array<float, 6> t, int system, bool forAngle);
// s(x) times the derivative of d by the input coordinates of `atom`, whose image by `op` is
// the far end of `diff` (sign +1) or the near end (sign -1); special-position ties applied.
std::array<float, 3> CoordinateTerms(const DistancePhaseModel& model, int atom, int op,
                                     const std::array<float, 3>& diff, float d, float sign);
// Sum of squares with the correlation of one coordinate triple.
float CorrelatedSquares(const DistanceGeometry& g, const std::array<float, 3>& t);

struct AngleRecord {
  int first = 0, second = 0;  // indices into the centre's distances (neighbour m, n)
  std::string labels[3];      // neighbour m, centre, neighbour n
  int codes[3] = {0, kCentreCode, 0};
  std::array<float, 3> xyz[3]{};
  float angle = 0, sd = 0;  // degrees
  float d12 = 0, d23 = 0, d13 = 0;
};

// The angles at one centre between each pair of its distances within [amin, amax].
std::vector<AngleRecord> CentreAngles(const DistancePhaseModel& model,
                                      std::span<const DistanceRecord> distances, float amin,
                                      float amax);

// The closing order: an exchange sort by rising length that swaps only on strictly greater.
void SortByLength(std::vector<DistanceRecord>& distances);

}  // namespace kaldena
