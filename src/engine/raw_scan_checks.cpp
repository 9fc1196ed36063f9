// The checks that every measured pattern passes before it is refined: angles that rise, on
// the even grid that the pattern's start and step describe, and intensities that are not all
// zero. A file that fails names its first bad line, so that a wrong column, a decimal comma or
// a reversed scan is found before a refinement makes sense of it.
#include <cmath>
#include <string>

#include "engine/raw_formats.h"
#include "util/column_format.h"

namespace kaldena::raw {

namespace {

// "line 12 of a.xy", or "point 12 of a.cif" for the formats whose points are not one a line.
std::string Where(const Series& series, std::size_t point, const std::string& file) {
  if (point < series.angleLines.size()) {
    return "line " + std::to_string(series.angleLines[point]) + " of " + file;
  }
  return "point " + std::to_string(point + 1) + " of " + file;
}

bool AnglesRise(const Series& series, const ReadContext& context, const std::string& file) {
  const std::vector<float>& a = series.angles;
  for (std::size_t i = 1; i < a.size(); ++i) {
    if (a[i] > a[i - 1]) continue;
    return context.Fail(FormatLine("(a,f12.5,a,f12.5)",
                                   " Angles do not rise at " + Where(series, i, file) + ":", a[i],
                                   " after", a[i - 1]));
  }
  return true;
}

// The departure of each angle from start + i step, where start and step are the pattern's; a
// scan whose steps vary but whose points keep to the grid passes.
bool AnglesOnGrid(const Series& series, const ReadContext& context, const std::string& file) {
  const std::vector<float>& a = series.angles;
  const double step = series.step;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double departure = a[i] - (series.start + step * static_cast<double>(i));
    if (std::fabs(departure) <= 0.5 * step) continue;
    return context.Fail(FormatLine(
        "(a,f10.5,a,f10.5,a)", " Angle at " + Where(series, i, file) + " lies", departure,
        " degrees off the even grid of step", step, ": the scan is not one of even steps"));
  }
  return true;
}

}  // namespace

bool CheckScan(const Series& series, const ReadContext& context, const std::string& file) {
  if (!AnglesRise(series, context, file)) return false;
  if (!(series.step > 0)) {
    return context.Fail(
        FormatLine("(a,f12.6)", " The step of " + file + " is not above 0:", series.step));
  }
  if (!AnglesOnGrid(series, context, file)) return false;
  for (float value : series.values) {
    if (value != 0) return true;
  }
  return context.Fail(" No intensities in " + file + ": every value is 0");
}

}  // namespace kaldena::raw
