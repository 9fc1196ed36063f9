#include "engine/point_list.h"

#include <algorithm>
#include <cmath>

#include "engine/raw_data.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

constexpr int kLastGridPoint = 19990;

// Two-theta of raw point i (from 1) by the calibration in use.
class Calibration {
 public:
  Calibration(const RawPattern& raw, const RunControls& c) : raw_(raw), c_(c) {
    if (c.calibration == 0 || c.calculation) {
      coefficients_ = c.calculation ? std::vector<double>{c.start, c.step}
                                    : std::vector<double>{raw.start, raw.step};
    } else if (c.calibration > 0) {
      coefficients_ = c.polynomial;
    }
  }

  bool Spline() const { return c_.calibration < 0 && !c_.calculation; }

  double At(int i) const {
    if (Spline()) return SplineAt(i);
    // As i starts at 1, a plain pattern's first point lies one step above its start.
    double t = 0, power = 1;
    for (double coefficient : coefficients_) {
      t += coefficient * power;
      power *= i;
    }
    return t;
  }

 private:
  // The calibration curve through the SPLC points at the raw point's nominal angle.
  double SplineAt(int i) const {
    const auto& s = c_.splinePoints;
    if (s.size() < 2) return raw_.start + raw_.step * (i - 1);
    const double u = raw_.start + static_cast<double>(raw_.step) * (i - 1);
    size_t k = 0;
    while (k + 2 < s.size() && u > s[k + 1][0] && s[k + 1][2] != 0) ++k;
    const double h = s[k + 1][0] - s[k][0];
    const double a = (s[k + 1][0] - u) / h, b = (u - s[k][0]) / h;
    return a * s[k][1] + b * s[k + 1][1] +
           ((a * a * a - a) * s[k][2] + (b * b * b - b) * s[k + 1][2]) * h * h / 6;
  }

  const RawPattern& raw_;
  const RunControls& c_;
  std::vector<double> coefficients_;
};

bool KeepsFileAngles(const RawPattern& raw, const RunControls& c) {
  const bool columns = c.format == static_cast<int>(RawFormat::kXy) ||
                       c.format == static_cast<int>(RawFormat::kTxt);
  return columns && c.calibration == 0 && !c.calculation &&
         static_cast<int>(raw.angles.size()) >= raw.points;
}

void AddPoint(PatternPoints& points, float x, float observed, float variance, float background) {
  points.x.push_back(x);
  points.observed.push_back(observed);
  points.weight.push_back(variance);  // a variance until the weights are formed
  points.fileBackground.push_back(background);
}

// Groups of n points become one: widths summed, values and background averaged, variances
// summed over n^2. The last group may be shorter and is averaged over its own size.
void Bin(PatternPoints& p, int n) {
  PatternPoints binned;
  const int count = static_cast<int>(p.x.size());
  for (int first = 0; first < count; first += n) {
    const int size = std::min(n, count - first);
    float width = 0, observed = 0, variance = 0, background = 0;
    for (int i = first; i < first + size; ++i) {
      width += p.dx[i];
      observed += p.observed[i];
      variance += p.weight[i];
      background += p.fileBackground[i];
    }
    const float m = static_cast<float>(size);
    AddPoint(binned, p.x[first] + 0.5f * (m - 1) * width / m, observed / m, variance / (m * m),
             background / m);
    binned.dx.push_back(width);
  }
  p = std::move(binned);
}

}  // namespace

void HoldRangeInPattern(const RawPattern& raw, RunControls& controls,
                        std::vector<std::string>& listLines) {
  if (controls.start < raw.start) {
    controls.start = raw.start;
    listLines.push_back(" Pattern start .gt. refinement start. Reset");
  }
  if (controls.stop > raw.stop) {
    controls.stop = raw.stop;
    listLines.push_back(" Pattern end .lt. refinement end. Reset");
  }
}

PointListStatus BuildPointList(const RawPattern& raw, RunControls& c, PatternPoints& points,
                               std::vector<std::string>& listLines) {
  points = PatternPoints{};
  if (c.job.background < 0) {
    c.chebyshevInterval = {c.start, c.stop};
    listLines.push_back(" CHEBYSHEV POLYNOMIALS WILL BE SCALED TO");
    listLines.push_back(FormatLine("(' THE INTERVAL ',F10.4,' TO ',F10.4)", c.start, c.stop));
  }
  const int rawCount = c.calculation
                           ? static_cast<int>(std::lround((c.stop - c.start) / c.step)) + 1
                           : raw.points;
  const Calibration calibration(raw, c);
  const bool fileAngles = KeepsFileAngles(raw, c);
  // A thousandth of a step of slack, so that the ends of a range given in round numbers are
  // not lost to the binary value of the step.
  const double slack = 1e-3 * std::abs(c.calculation ? c.step : raw.step);
  for (int i = 1; i <= rawCount && points.x.size() < static_cast<size_t>(kMaxPoints); ++i) {
    const double t = calibration.At(i);
    if (t < c.start - slack) continue;
    if (t > c.stop + slack) break;
    const float x = fileAngles ? raw.angles[i - 1] : static_cast<float>(t);
    if (c.calculation) {
      AddPoint(points, x, 0, 0, 0);
    } else {
      AddPoint(points, x, raw.intensities[i - 1], raw.variances[i - 1],
               raw.background.empty() ? 0.0f : raw.background[i - 1]);
    }
  }
  const int count = static_cast<int>(points.x.size());
  if (count < 2) {
    listLines.push_back(" Fewer than two points in the range");
    return PointListStatus::kTooFew;
  }
  points.dx.resize(count);
  for (int k = 1; k < count; ++k) points.dx[k] = points.x[k] - points.x[k - 1];
  points.dx[0] = points.dx[1];
  if (calibration.Spline()) {
    // Counts per unequal step become counts per mean step.
    float mean = 0;
    for (float d : points.dx) mean += d;
    mean /= static_cast<float>(count);
    for (int k = 0; k < count; ++k) points.observed[k] *= mean / points.dx[k];
  }
  if (c.job.mergePoints > 1) Bin(points, c.job.mergePoints);
  if (raw.background.empty()) points.fileBackground.clear();
  for (float& w : points.weight) w = w > 1.0f ? 1.0f / w : 1.0f;
  points.count = static_cast<int>(points.x.size());
  if (points.count < 2) {
    listLines.push_back(" Fewer than two points in the range");
    return PointListStatus::kTooFew;
  }
  // The grid goes on behind the last point for the tails of reflections above the range.
  const int n = points.count;
  const float d = points.x[n - 1] - points.x[n - 2];
  for (int i = n + 1; i <= std::min(6 * n / 5, kLastGridPoint); ++i) {
    points.dx.push_back(d);
    points.x.push_back(points.x[n - 1] + d * static_cast<float>(i - n));
  }
  c.start = points.x[0];
  c.stop = points.x[n - 1];
  c.step = (c.stop - c.start) / static_cast<float>(n - 1);
  return PointListStatus::kOk;
}

}  // namespace kaldena
