// Contour lines of Fourier map sections: a plane through the plot file's grid, its
// interpolation on a log scale, the crossings of each level with the grid and their linking
// into lines. The result is data, lines of coded points per level, that the plot draws.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tools/fourier_files.h"
#include "util/report.h"

namespace kaldena {

inline constexpr int kSectionGridSize = 151;
inline constexpr int kMaxContourLevels = 20;
inline constexpr int kMaxCrossings = 5000;
inline constexpr int kMaxBoundaryCrossings = 50;
inline constexpr int kMaxContourPoints = 5000;

// A point on the section grid as 100000 r + c, with r and c in tenths of a grid cell from 0:
// a node has both divisible by 10.
inline int ContourCode(int r, int c) { return 100000 * r + c; }
inline int ContourRow(int code) { return code / 100000; }
inline int ContourColumn(int code) { return code % 100000; }

// The whole plot file with the extremes of its values.
struct ContourMap {
  PlotFile file;
  int highest = -1000;
  int lowest = 1000;
  float scale = 0.0f;  // map units to electrons: RMAX / 1000
};

// Reads base + ".plo". 0 when read; 1 with "Error opening plotfile " when it does not open;
// 2 with "Error reading Fourier plot file" when it does not read whole.
int ReadContourMap(const std::string& baseName, ContourMap& map, Reporter& reporter);

// The plane's axis pair (1 X, 2 Y, 3 Z) for the axis at right angles to it.
std::array<int, 2> PlaneAxesFor(int sectionAxis);

struct SectionPlane {
  int columnAxis = 1;  // along c, drawn across
  int rowAxis = 2;     // along r, drawn slanted by the angle between the two cell axes
  int sectionAxis = 3;
  int section = 1;           // 1 to the count along the section axis
  float sectionValue = 0.0f;  // its fractional coordinate
  int rows = 0;
  int columns = 0;
  float columnLength = 0.0f;  // length of one grid cell along c, in angstrom
  float rowLength = 0.0f;
  float cosAngle = 0.0f;
  float sinAngle = 1.0f;
  // The map values (map units) at [r * columns + c].
  std::vector<float> values;
  // The lowest value of each log transform applied so far, so that a level in map units can
  // be carried onto the transformed surface.
  std::vector<float> transforms;

  float At(int r, int c) const { return values[static_cast<size_t>(r) * columns + c]; }
};

// Takes section `section` (1-based) at right angles to the plane of the axis pair. Status 0;
// 1 with "Coordinate error" for a pair outside (1,2), (2,3), (3,1), (2,1), (1,3), (3,2);
// 2 for a section outside the map (nothing logged: callers step within the count).
int TakePlane(const ContourMap& map, int columnAxis, int rowAxis, int section,
              SectionPlane& plane, Reporter& reporter);

// The section number after "Next" (+1) or "Previous" (-1), wrapping over 1 and the count.
int StepSection(int section, int step, int count);

// The level step in electrons: a twentieth of the map's range with one significant figure,
// doubled until fewer than 21 levels are needed.
float LevelStep(float scale, int highest, int lowest);

// The levels in electrons, whole multiples of the step from the lowest to the highest value,
// zero among them; at most 20.
std::vector<float> ContourLevels(float step, float scale, int highest, int lowest);

// Doubles the plane's grid `times` times on a log scale. A doubling beyond the grid's 151
// points logs "Array too small for interpolation" and "NINTE reset to 0", sets `times` to 0
// and stops. Returns the number of doublings done.
int InterpolatePlane(SectionPlane& plane, int& times, Reporter& reporter);

// A level in map units as it stands on the (transformed) surface of the plane; false when it
// lies below the surface's whole range (no contour).
bool LevelOnSurface(const SectionPlane& plane, float mapLevel, float& surfaceLevel);

// The crossings of the level with the grid, two per piece of line in a cell. Stops at 5000.
std::vector<int> FindCrossings(const SectionPlane& plane, float surfaceLevel);

// Links crossings into lines, lines from the plane's edge first, then closed lines. Logs
// "Too many points in contour" for a line cut at 5000 points. Lines of fewer than 2 points
// are left out.
std::vector<std::vector<int>> LinkCrossings(std::vector<int> crossings, int rows, int columns,
                                            Reporter& reporter);

enum class LevelKind { kPositive, kZero, kNegative };

struct ContourLevel {
  float level = 0.0f;  // electrons
  LevelKind kind = LevelKind::kPositive;
  std::vector<std::vector<int>> lines;
};

// All levels of a plane: crossings and lines of each. An odd number of crossings logs "Error
// in contouring" and leaves that level without lines.
std::vector<ContourLevel> ContourPlane(const SectionPlane& plane, const std::vector<float>& levels,
                                       float scale, Reporter& reporter);

}  // namespace kaldena
