#include "tools/fourier_peaks.h"

#include <algorithm>
#include <cmath>

#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// Neighbour offsets (dx, dy, dz) of the rule: those earlier in scan order and those later.
constexpr int kEarlier[9][3] = {{-1, 0, 0},  {-1, -1, 0}, {0, -1, 0},  {1, -1, 0}, {0, 0, -1},
                                {-1, 0, -1}, {1, 0, -1},  {0, -1, -1}, {0, 1, -1}};
constexpr int kLater[9][3] = {{1, 0, 0}, {-1, 1, 0}, {0, 1, 0},  {1, 1, 0}, {0, 0, 1},
                              {-1, 0, 1}, {1, 0, 1}, {0, -1, 1}, {0, 1, 1}};

void LogText(Reporter& reporter, std::string_view text) {
  for (std::string_view line : SplitLines(text)) reporter.LogLine(line);
}

float Det3(const std::array<std::array<float, 3>, 3>& m) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
         m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

}  // namespace

bool IsPeak(const Neighbourhood& v, int level) {
  const float c = v[1][1][1];
  if (!(c > static_cast<float>(level))) return false;
  for (const auto& d : kEarlier) {
    if (!(c > v[d[2] + 1][d[1] + 1][d[0] + 1])) return false;
  }
  for (const auto& d : kLater) {
    if (!(c >= v[d[2] + 1][d[1] + 1][d[0] + 1])) return false;
  }
  return true;
}

std::array<float, 3> PeakShift(const Neighbourhood& v) {
  // S(d) with d the offset along the axes (x, y, z).
  auto s = [&v](int dx, int dy, int dz) {
    return std::log(std::max(1.0f, v[dz + 1][dy + 1][dx + 1]));
  };
  // S at an offset of `a` along axis i and `b` along axis j, 0 along the third.
  auto at = [&s](int i, int a, int j, int b) {
    int d[3] = {0, 0, 0};
    d[i] = a;
    d[j] = b;
    return s(d[0], d[1], d[2]);
  };
  auto along = [&s](int i, int a) {
    int d[3] = {0, 0, 0};
    d[i] = a;
    return s(d[0], d[1], d[2]);
  };
  // Sum of the four edge neighbours of the plane of axes i and j.
  auto edges = [&at](int i, int j) {
    return at(i, 1, j, 1) + at(i, -1, j, -1) + at(i, 1, j, -1) + at(i, -1, j, 1);
  };

  std::array<float, 3> g{};
  std::array<std::array<float, 3>, 3> h{};
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    // The five neighbours with +1 along i: the face and four edges.
    const float plus = along(i, 1) + at(i, 1, j, 1) + at(i, 1, j, -1) + at(i, 1, k, 1) +
                       at(i, 1, k, -1);
    const float minus = along(i, -1) + at(i, -1, j, 1) + at(i, -1, j, -1) + at(i, -1, k, 1) +
                        at(i, -1, k, -1);
    g[i] = (plus - minus) / 10.0f;
    h[i][i] = (5.0f * (edges(i, j) + edges(i, k)) - 10.0f * s(0, 0, 0) + along(i, 1) +
               along(i, -1) - 6.0f * (along(j, 1) + along(j, -1) + along(k, 1) + along(k, -1)) -
               2.0f * edges(j, k)) /
              21.0f;
    h[i][j] = h[j][i] =
        (at(i, 1, j, 1) + at(i, -1, j, -1) - at(i, 1, j, -1) - at(i, -1, j, 1)) / 4.0f;
  }

  const float det = Det3(h);
  std::array<float, 3> shift{};
  if (det == 0.0f || !std::isfinite(det)) return shift;
  for (int col = 0; col < 3; ++col) {
    auto m = h;
    for (int row = 0; row < 3; ++row) m[row][col] = -g[row];
    shift[col] = Det3(m) / det;
  }
  for (float component : shift) {
    if (!(std::fabs(component) <= 1.0f)) return {0.0f, 0.0f, 0.0f};
  }
  return shift;
}

std::vector<FourierPeak> SearchPeaks(const PlotFile& plot, int level, bool negative) {
  std::vector<FourierPeak> peaks;
  const auto& p = plot.points;
  const float sign = negative ? -1.0f : 1.0f;
  Neighbourhood v{};
  for (int iz = 1; iz + 1 < p[2]; ++iz) {
    for (int iy = 1; iy + 1 < p[1]; ++iy) {
      for (int ix = 1; ix + 1 < p[0]; ++ix) {
        for (int dz = -1; dz <= 1; ++dz) {
          for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
              v[dz + 1][dy + 1][dx + 1] =
                  sign * static_cast<float>(plot.At(ix + dx, iy + dy, iz + dz));
            }
          }
        }
        if (!IsPeak(v, level)) continue;
        const std::array<float, 3> s = PeakShift(v);
        FourierPeak peak;
        peak.sign = negative ? 'N' : 'P';
        peak.height = std::abs(static_cast<int>(v[1][1][1]));
        const int index[3] = {ix, iy, iz};
        float* position[3] = {&peak.x, &peak.y, &peak.z};
        for (int i = 0; i < 3; ++i) {
          *position[i] = plot.limits[2 * i] + (static_cast<float>(index[i]) + s[i]) * plot.steps[i];
        }
        peaks.push_back(peak);
      }
    }
  }
  return peaks;
}

std::string PeakLine(const FourierPeak& peak) {
  const char letter[2] = {peak.sign, '\0'};
  return FormatLine("('XYZ',7X,A1,I3,5X,'1',5F10.4)", letter, peak.height, peak.x, peak.y, peak.z,
                    0.1f, 1.0f);
}

bool SearchAndWritePeaks(std::istream& plotFile, std::ostream& peakFile,
                         const FourierOptions& options, Reporter& reporter) {
  const int levels[2] = {options.positiveLevel, options.negativeLevel};
  const std::string_view names = "PositiveNegative";
  for (int n = 0; n < 2; ++n) {
    if (levels[n] < 1) continue;
    LogText(reporter, Format("(/7X,A8,' peaks, scan level = ',I4/)", names.substr(8 * n, 8),
                             levels[n]));
    plotFile.clear();
    plotFile.seekg(0);
    PlotFile plot;
    if (!ReadPlotFile(plotFile, plot)) return false;
    const std::vector<FourierPeak> peaks = SearchPeaks(plot, levels[n], n == 1);
    for (const FourierPeak& peak : peaks) {
      const std::string line = PeakLine(peak);
      peakFile << line << '\n';
      reporter.LogLine(line);
    }
    LogText(reporter, Format("(/I6,' peaks found')", static_cast<int>(peaks.size())));
  }
  return true;
}

}  // namespace kaldena
