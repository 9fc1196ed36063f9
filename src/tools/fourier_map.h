// The Fourier map of a project: the reflections of the engine's .fou file expanded over the
// space group into one hemisphere, and their direct factorised summation on a grid of up to
// 28 points an axis, with all trigonometry by table.
#pragma once

#include <array>
#include <istream>
#include <span>
#include <vector>

#include "crystal/space_group.h"
#include "tools/fourier_options.h"
#include "util/report.h"

namespace kaldena {

inline constexpr int kMaxExpandedReflections = 20000;
inline constexpr int kMaxGridPoints = 28;
inline constexpr int kSummationWorkspace = 10000;  // reals of each of the two stages

enum class FourierStatus {
  kOk = 0,
  kFailed = 1,  // told in the log; nothing more is written
};

// A symmetry operator as it acts on reflection indices: h' = R h (matrix times column) and a
// phase shift h' . t with t in whole twelfths.
struct IndexOperator {
  std::array<std::array<int, 3>, 3> r{};
  std::array<int, 3> twelfths{};
};

// Rounds the operator to integers and makes the one adjustment of the hexagonal kind, which
// turns R into the matrix that maps indices (the transposed inverse) for the three-fold and
// six-fold axes: when R11 + R12 = 0 with R11 != 0, or R11 + R12 != 0 while R21 + R22 = 0 with
// R21 != 0, R11 and R22 are exchanged if R11 + R22 != 0, else R12 and R21.
IndexOperator IndexOperatorOf(const SymmetryOperator& op);

// One line of a .fou file, read with "(4i4,7f12.0)".
struct FourierFileLine {
  int h = 0, k = 0, l = 0, phase = 0;
  float iObs = 0, sigma = 0, sinThetaOverLambda = 0, iCalc = 0, phaseAngle = 0, lp = 0;
  float twoTheta = 0;
};
bool ReadFourierFileLine(std::string_view line, FourierFileLine& out);

// The expanded reflections, A and B already multiplied by 2 / V, with the extreme indices
// (all starting at 0, so that the origin is always inside the range).
struct ExpandedReflections {
  std::vector<std::array<int, 3>> hkl;
  std::vector<float> a, b;
  std::array<int, 3> minimum{}, maximum{};
  int read = 0;  // reflections taken into the expansion, the origin term included
  int Count() const { return static_cast<int>(hkl.size()); }
};

// Reads the .fou lines, keeps those that the map type and the options admit, and expands each
// over the operators, with Friedel normalisation into the hemisphere h > 0, or h = 0 and k > 0,
// or h = k = 0 and l >= 0; of images with equal indices the first survives. Logs the two
// counts on success; "Too many expanded reflections" and "No expanded reflections" fail.
FourierStatus ExpandReflections(std::istream& fou, const FourierOptions& options, float volume,
                                std::span<const IndexOperator> operators,
                                ExpandedReflections& out, Reporter& reporter);

// One axis of the grid: L / 27 rounded up to a hundredth as the step, and as many points as
// fit in the box, at most 28. A box of no length has one point and a step of 1.
struct GridAxis {
  float minimum = 0.0f;
  float step = 1.0f;
  int points = 1;
};
GridAxis MakeGridAxis(float minimum, float maximum);

// cos(2 pi u) and sin(2 pi u) from a 1000-step table built by repeated addition, with exact
// values at the quarter turns.
class CosineTable {
 public:
  CosineTable();
  // The table entry (1 to 1001) of turn fraction u: trunc(1000 u + 1.5) folded by 1000s.
  static int Entry(float u);
  void CosSin(float u, float& cosine, float& sine) const;
  float Value(int entry) const { return t_[entry]; }

 private:
  std::array<float, 1002> t_{};  // entries 1 to 1001 used
};

// The map in its box; values with x running fastest, then y, then z.
struct FourierMap {
  std::array<GridAxis, 3> axes;
  std::vector<float> values;
  float rmax = 10.0f;  // largest absolute value, 10 when all are 0

  float& At(int ix, int iy, int iz) {
    return values[(static_cast<size_t>(iz) * axes[1].points + iy) * axes[0].points + ix];
  }
  float At(int ix, int iy, int iz) const {
    return values[(static_cast<size_t>(iz) * axes[1].points + iy) * axes[0].points + ix];
  }
  // A value on the plot file's scale: value x 999 / RMAX, halves away from 0.
  int Scaled(int ix, int iy, int iz) const;
};

// Sums the map one z section at a time in three stages (l z, then k y, then h x), and scales
// it. Fails with "NRSTOR TO LARGE" or "NSSTOR TO LARGE" when a stage's workspace would exceed
// 10000 reals; on success logs "Fourier summation done" and the RMAX line.
FourierStatus SumFourierMap(const ExpandedReflections& reflections,
                            const std::array<float, 6>& limits, FourierMap& map,
                            Reporter& reporter);

}  // namespace kaldena
