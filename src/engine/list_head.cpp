// The head of the list file: a banner with the title, the references of the method, the
// kind of job and the numbers of the run.
#include <string>

#include "engine/input_stages.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kFrameWidth = 74;

std::string FrameLine(std::string_view text) {
  std::string inner = " " + std::string(text);
  inner.resize(kFrameWidth - 2, ' ');
  return " *" + inner + "*";
}

void WriteBanner(const std::string& title, ListFile& list) {
  const std::string stars = " " + std::string(kFrameWidth, '*');
  list.Line(stars);
  list.Line(FrameLine(""));
  list.Line(FrameLine("KALDEN  -  Rietveld refinement of X-ray and neutron powder patterns"));
  list.Line(FrameLine(""));
  list.Line(FrameLine(title.substr(0, 70)));
  list.Line(FrameLine(""));
  list.Line(stars);
  list.Line("");
  list.Line(" THE METHOD:");
  list.Line("   H. M. Rietveld, J. Appl. Cryst. 2 (1969) 65-71.");
  list.Line("   D. B. Wiles and R. A. Young, J. Appl. Cryst. 14 (1981) 149-151.");
  list.Line("");
}

std::string_view JobLine(const RunControls& c) {
  const bool xray = c.job.IsXray();
  if (c.jobType < 3) return xray ? " X-RAY REFINEMENTS" : " NEUTRON REFINEMENTS";
  return xray ? " X-RAY PATTERN CALCULATION" : " NEUTRON PATTERN CALCULATION";
}

void WriteProfileNotes(int profile, ListFile& list) {
  if (profile == 4 || profile == 5) {
    list.Line(" ASYMMETRIC PROFILE AS A SUM OF FIVE PEAKS");
    list.Line("   B. van Laar and W. B. Yelon, J. Appl. Cryst. 17 (1984) 47-54.");
  } else if (profile == 7) {
    list.Line(" AXIAL DIVERGENCE CORRECTION ACCORDING TO:");
    list.Line("   L. W. Finger, D. E. Cox and A. P. Jephcoat, J. Appl. Cryst. 27 (1994) 892-900.");
  }
}

}  // namespace

void WriteListHead(const EngineState& state, ListFile& list) {
  const RunControls& c = state.controls;
  WriteBanner(c.title, list);
  list.Line(JobLine(c));
  if (c.job.weighting == 1) list.Line(" WEIGHTING SCHEME BASED ON YCALC");
  if (c.job.weighting == 2) list.Line(" WEIGHTS READ FROM FILE");
  list.Line(FormatLine("(' PROFILE FUNCTION NUMBER    =  ',I2)", c.job.profile));
  list.Line(FormatLine("(' NUMBER OF PHASES           =  ',I2)", c.job.phases));
  list.Line(FormatLine("(' NUMBER OF EXCLUDED REGIONS =  ',I2)", c.job.excludedRegions));
  list.Line(FormatLine("(' NUMBER OF SCATTERING SETS  =  ',I2)", c.job.atomTypes));
  WriteProfileNotes(c.job.profile, list);
  list.Line("");
}

}  // namespace kaldena
