// Contour lines of Fourier map sections.
#include "tools/contour.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace kaldena {
namespace {

constexpr std::array<std::array<int, 2>, 6> kPlanePairs{
    {{1, 2}, {2, 3}, {3, 1}, {2, 1}, {1, 3}, {3, 2}}};

// Fills the odd places of a line of `size` values whose even places hold known ones, at
// `stride` apart from `first`: cubic through four known neighbours inside, quadratic at
// either end gap, linear when only two are known.
void FillLine(std::vector<float>& v, size_t first, size_t stride, int size) {
  const int known = (size + 1) / 2;
  if (known < 2) return;
  auto f = [&](int k) { return v[first + stride * static_cast<size_t>(2 * k)]; };
  for (int g = 0; g + 1 < known; ++g) {
    float value;
    if (known == 2) {
      value = 0.5f * (f(0) + f(1));
    } else if (g == 0) {
      value = (3 * f(0) + 6 * f(1) - f(2)) / 8;
    } else if (g == known - 2) {
      value = (3 * f(g + 1) + 6 * f(g) - f(g - 1)) / 8;
    } else {
      value = (9 * (f(g) + f(g + 1)) - f(g - 1) - f(g + 2)) / 16;
    }
    v[first + stride * static_cast<size_t>(2 * g + 1)] = value;
  }
}

}  // namespace

int ReadContourMap(const std::string& baseName, ContourMap& map, Reporter& reporter) {
  map = ContourMap{};
  std::ifstream in(baseName + ".plo", std::ios::binary);
  if (!in) {
    reporter.LogLine("Error opening plotfile ");
    return 1;
  }
  if (!ReadPlotFile(in, map.file)) {
    reporter.LogLine("Error reading Fourier plot file");
    return 2;
  }
  for (int v : map.file.values) {
    map.highest = std::max(map.highest, v);
    map.lowest = std::min(map.lowest, v);
  }
  map.scale = map.file.rmax / 1000.0f;
  return 0;
}

std::array<int, 2> PlaneAxesFor(int sectionAxis) {
  switch (sectionAxis) {
    case 1: return {2, 3};
    case 2: return {3, 1};
    default: return {1, 2};
  }
}

int TakePlane(const ContourMap& map, int columnAxis, int rowAxis, int section,
              SectionPlane& plane, Reporter& reporter) {
  const std::array<int, 2> pair{columnAxis, rowAxis};
  if (std::find(kPlanePairs.begin(), kPlanePairs.end(), pair) == kPlanePairs.end()) {
    reporter.LogLine("Coordinate error");
    return 1;
  }
  const PlotFile& f = map.file;
  const int sectionAxis = 6 - columnAxis - rowAxis;
  const int count = f.points[sectionAxis - 1];
  if (section < 1 || section > count || f.values.empty()) return 2;
  plane = SectionPlane{};
  plane.columnAxis = columnAxis;
  plane.rowAxis = rowAxis;
  plane.sectionAxis = sectionAxis;
  plane.section = section;
  plane.sectionValue =
      f.limits[2 * (sectionAxis - 1)] + static_cast<float>(section - 1) * f.steps[sectionAxis - 1];
  plane.columns = f.points[columnAxis - 1];
  plane.rows = f.points[rowAxis - 1];
  plane.columnLength = f.cell[columnAxis - 1] * f.steps[columnAxis - 1];
  plane.rowLength = f.cell[rowAxis - 1] * f.steps[rowAxis - 1];
  // The cell angle between two axes is the one of the third: alpha between b and c, ...
  const float angle = f.cell[3 + sectionAxis - 1] * static_cast<float>(M_PI / 180.0);
  plane.cosAngle = std::cos(angle);
  plane.sinAngle = std::sin(angle);
  plane.values.resize(static_cast<size_t>(plane.rows) * plane.columns);
  for (int r = 0; r < plane.rows; ++r) {
    for (int c = 0; c < plane.columns; ++c) {
      std::array<int, 3> at{};
      at[columnAxis - 1] = c;
      at[rowAxis - 1] = r;
      at[sectionAxis - 1] = section - 1;
      plane.values[static_cast<size_t>(r) * plane.columns + c] =
          static_cast<float>(f.At(at[0], at[1], at[2]));
    }
  }
  return 0;
}

int StepSection(int section, int step, int count) {
  if (count < 1) return 1;
  const int next = section + step;
  if (next > count) return 1;
  if (next < 1) return count;
  return next;
}

float LevelStep(float scale, int highest, int lowest) {
  float step = scale * static_cast<float>(highest - lowest) / 20.0f;
  if (!(step > 0.0f) || !std::isfinite(step)) return 0.0f;
  float t = std::log10(step);
  int k = 0;
  while (t <= 0.0f) {
    t += 1.0f;
    ++k;
  }
  const int i = static_cast<int>(t);
  const float u = t - static_cast<float>(i);
  step = std::round(std::pow(10.0f, u)) * std::pow(10.0f, static_cast<float>(i - k));
  auto count = [&] {
    return static_cast<int>(scale * static_cast<float>(highest) / step) +
           static_cast<int>(-scale * static_cast<float>(lowest) / step) + 1;
  };
  while (count() >= 21) step *= 2.0f;
  return step;
}

std::vector<float> ContourLevels(float step, float scale, int highest, int lowest) {
  std::vector<float> levels;
  if (!(step > 0.0f)) return levels;
  const int first = static_cast<int>(std::ceil(scale * static_cast<float>(lowest) / step - 1e-4f));
  const int last = static_cast<int>(std::floor(scale * static_cast<float>(highest) / step + 1e-4f));
  for (int n = first; n <= last && static_cast<int>(levels.size()) < kMaxContourLevels; ++n) {
    levels.push_back(static_cast<float>(n) * step);
  }
  return levels;
}

int InterpolatePlane(SectionPlane& plane, int& times, Reporter& reporter) {
  int done = 0;
  for (int pass = 0; pass < times; ++pass) {
    // Interpolating the logarithm keeps the sharp peaks of a map from overshooting.
    float lowest = -1e-6f;
    for (float v : plane.values) lowest = std::min(lowest, v);
    for (float& v : plane.values) v = std::log(1.0f + v - lowest);
    plane.transforms.push_back(lowest);
    const int rows = 2 * plane.rows - 1;
    const int columns = 2 * plane.columns - 1;
    if (rows > kSectionGridSize || columns > kSectionGridSize) {
      reporter.LogLine("Array too small for interpolation");
      reporter.LogLine("NINTE reset to 0");
      times = 0;
      break;
    }
    std::vector<float> grid(static_cast<size_t>(rows) * columns, 0.0f);
    for (int r = 0; r < plane.rows; ++r) {
      for (int c = 0; c < plane.columns; ++c) {
        grid[static_cast<size_t>(2 * r) * columns + 2 * c] = plane.At(r, c);
      }
    }
    const size_t stride = static_cast<size_t>(columns);
    for (int r = 0; r < rows; r += 2) FillLine(grid, r * stride, 1, columns);
    for (int c = 0; c < columns; c += 2) FillLine(grid, c, stride, rows);
    for (int r = 1; r < rows; r += 2) FillLine(grid, r * stride, 1, columns);
    plane.values = std::move(grid);
    plane.rows = rows;
    plane.columns = columns;
    plane.rowLength /= 2;
    plane.columnLength /= 2;
    ++done;
  }
  return done;
}

bool LevelOnSurface(const SectionPlane& plane, float mapLevel, float& surfaceLevel) {
  float level = mapLevel;
  for (float lowest : plane.transforms) {
    const float argument = 1.0f + level - lowest;
    if (!(argument > 0.0f)) return false;
    level = std::log(argument);
  }
  surfaceLevel = level;
  return true;
}

std::vector<int> FindCrossings(const SectionPlane& plane, float level) {
  std::vector<int> crossings;
  auto at = [&](int r, int c) { return plane.At(r, c) - level; };
  // Tenths along a side from its start node; the start is at or above the level or the end is.
  auto tenths = [](float v1, float v2) { return static_cast<int>(10.0f * v1 / (v1 - v2)); };
  for (int r = 0; r + 1 < plane.rows; ++r) {
    for (int c = 0; c + 1 < plane.columns; ++c) {
      const float a = at(r, c), b = at(r, c + 1), cc = at(r + 1, c + 1), d = at(r + 1, c);
      const bool pa = a >= 0, pb = b >= 0, pc = cc >= 0, pd = d >= 0;
      if (pa == pb && pb == pc && pc == pd) continue;
      if (static_cast<int>(crossings.size()) + 4 > kMaxCrossings) return crossings;
      // Bottom, right, top, left: a saddle's four pair up around its corners b and d.
      if (pa != pb) crossings.push_back(ContourCode(10 * r, 10 * c + tenths(a, b)));
      if (pb != pc) crossings.push_back(ContourCode(10 * r + tenths(b, cc), 10 * c + 10));
      if (pd != pc) crossings.push_back(ContourCode(10 * r + 10, 10 * c + tenths(d, cc)));
      if (pa != pd) crossings.push_back(ContourCode(10 * r + tenths(a, d), 10 * c));
    }
  }
  return crossings;
}

std::vector<std::vector<int>> LinkCrossings(std::vector<int> crossings, int rows, int columns,
                                            Reporter& reporter) {
  std::vector<std::vector<int>> lines;
  const size_t total = crossings.size() & ~size_t{1};
  const int maxRow = 10 * (rows - 1), maxColumn = 10 * (columns - 1);
  auto onEdge = [&](int code) {
    const int r = ContourRow(code), c = ContourColumn(code);
    return r == 0 || c == 0 || r == maxRow || c == maxColumn;
  };
  std::vector<int> boundary;
  for (size_t i = 0; i < total && boundary.size() < kMaxBoundaryCrossings; ++i) {
    if (onEdge(crossings[i])) boundary.push_back(crossings[i]);
  }
  size_t used = 0, firstUnused = 0;
  auto find = [&](int code) -> long {
    for (size_t i = firstUnused; i < total; ++i) {
      if (crossings[i] == code) return static_cast<long>(i);
    }
    return -1;
  };
  auto take = [&](size_t i) {
    const int other = crossings[i ^ 1];
    crossings[i] = crossings[i ^ 1] = -1;
    used += 2;
    while (firstUnused < total && crossings[firstUnused] == -1) ++firstUnused;
    return other;
  };
  auto follow = [&](size_t start, bool fromEdge) {
    const int startCode = crossings[start];
    std::vector<int> line{startCode};
    int current = take(start);
    line.push_back(current);
    while (!(fromEdge ? onEdge(current) : current == startCode)) {
      const long j = find(current);
      if (j < 0) break;
      if (line.size() >= static_cast<size_t>(kMaxContourPoints)) {
        reporter.LogLine("Too many points in contour");
        break;
      }
      current = take(static_cast<size_t>(j));
      line.push_back(current);
    }
    if (line.size() >= 2) lines.push_back(std::move(line));
  };
  for (int code : boundary) {
    if (used >= total) break;
    const long i = find(code);
    if (i >= 0) follow(static_cast<size_t>(i), true);
  }
  while (used < total && firstUnused < total) follow(firstUnused, false);
  return lines;
}

std::vector<ContourLevel> ContourPlane(const SectionPlane& plane, const std::vector<float>& levels,
                                       float scale, Reporter& reporter) {
  std::vector<ContourLevel> result;
  for (float level : levels) {
    ContourLevel out;
    out.level = level;
    out.kind = level > 0 ? LevelKind::kPositive : level < 0 ? LevelKind::kNegative : LevelKind::kZero;
    float surface = 0.0f;
    if (scale > 0.0f && LevelOnSurface(plane, level / scale, surface)) {
      std::vector<int> crossings = FindCrossings(plane, surface);
      if (crossings.size() % 2 != 0) {
        reporter.LogLine("Error in contouring");
      } else if (!crossings.empty()) {
        out.lines = LinkCrossings(std::move(crossings), plane.rows, plane.columns, reporter);
      }
    }
    result.push_back(std::move(out));
  }
  return result;
}

}  // namespace kaldena
