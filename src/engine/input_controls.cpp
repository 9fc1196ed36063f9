// Job, instrument and least-squares controls of the input stage.
#include <algorithm>
#include <cmath>

#include "crystal/absorption.h"
#include "engine/input_stages.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

void ListLines(ListFile& list, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) list.Line(line);
}

// TITL is kept in 72 columns and listed in 70, left justified.
std::string ListedTitle(std::string title) {
  title.resize(70, ' ');
  return title;
}

bool ReadJobType(EngineState& state) {
  RunControls& c = state.controls;
  c.jobType = c.job.jobType + 1;
  c.calculation = c.jobType == 3 || c.jobType == 4;
  if (c.jobType > 4) {
    // A comparison reads the raw data like a refinement but refines nothing.
    c.jobType -= 2;
    c.comparison = true;
  }
  if (c.jobType < 1 || c.jobType > 4) {
    state.list.Line(" Wrong JOBTYP");
    return false;
  }
  return true;
}

bool ReadWavelengths(InputRecords& in, EngineState& state) {
  RunControls& c = state.controls;
  float codeword = 0;
  in.Next("CWAV", codeword);
  if (codeword != 0) {
    float wavelength = 0;
    if (in.Required("WAVE", " WAVE record missing", wavelength) != RecordRead::kOk) {
      return false;
    }
    if (!(wavelength > 0)) {
      state.list.Line(" Wavelength not above 0");
      return false;
    }
    c.wavelengthRefined = true;
    c.wavelengths = {wavelength, 0.0f, 0.0f};
    state.globals[kWavelength] = {wavelength, codeword, 0};
    state.list.Line(FormatLine("(' WAVELENGTH                 = ',F9.5)", wavelength));
    return true;
  }
  std::array<float, 3>& w = c.wavelengths;
  if (in.RequiredValues("ELAM", " ELAM record missing", w) != RecordRead::kOk) {
    return false;
  }
  if (!(w[0] > 0)) {
    state.list.Line(" Wavelength not above 0");
    return false;
  }
  if (w[1] <= 0) w[1] = w[0];
  if (w[2] <= 0) {
    w[1] = w[0];
    w[2] = 1.0f;
  }
  state.globals[kWavelength].value = w[0];
  state.list.Line(
      FormatLine("(' WAVELENGTHS                = ',2F9.5,'   RATIO = ',F7.4)", w[0], w[1], w[2]));
  return true;
}

void ListCorrection(ListFile& list, std::string_view label, float value) {
  std::string padded(label);
  padded.resize(41, ' ');  // an A field right-justifies a shorter text
  if (value != 0) list.Line(FormatLine("(1X,A41,'= ',F10.4)", padded, value));
}

bool ReadLimits(InputRecords& in, EngineState& state, Reporter& reporter) {
  RunControls& c = state.controls;
  if (in.RequiredValues("RLIM", " RLIM record missing", c.rlim) != RecordRead::kOk) {
    return false;
  }
  ListFile& list = state.list;
  list.Line(
      FormatLine("(' BASE OF PEAK                             = ',F6.2,'*2.0*HW')", c.rlim[0]));
  ListCorrection(list, "MONOCHROMATOR POLARISATION FACTOR", c.rlim[1]);
  ListCorrection(list, "SYNCHROTRON POLARISATION FACTOR", c.rlim[4]);
  ListCorrection(list, "GUINIER TANGENT ANGLE", c.rlim[5]);
  ListCorrection(list, "ABSORPTION CORRECTION, CYLINDER MU*R", c.rlim[2]);
  ListCorrection(list, "ABSORPTION CORRECTION, FLAT PLATE MU*T", c.rlim[7]);
  ListCorrection(list, "AUTODIVERGENCE SLIT", c.rlim[6]);
  if (c.rlim[2] > 0) state.cylinderAbsorption = CylinderAbsorptionTable(c.rlim[2], reporter);
  return true;
}

bool ReadLeastSquares(InputRecords& in, EngineState& state) {
  RunControls& c = state.controls;
  std::array<float, 5> relx{};
  if (in.Required("RELX", " RELX record missing", c.cycles, relx[0], relx[1], relx[2], relx[3],
                  relx[4], c.start, c.step, c.stop) != RecordRead::kOk) {
    return false;
  }
  c.termination = relx[0];
  std::copy(relx.begin() + 1, relx.end(), c.relaxation.begin());
  ListFile& list = state.list;
  list.Line(FormatLine("(' NUMBER OF CYCLES                         = ',I6)", c.cycles));
  list.Line(FormatLine("(' RELAXATION FACTORS (ATOMIC, THERMAL, PROFILE, OTHER) = ',4F6.2)",
                       c.relaxation[0], c.relaxation[1], c.relaxation[2], c.relaxation[3]));
  list.Line(FormatLine("(' EPS-VALUE                                = ',F6.2)", c.termination));
  if (in.Next("DAMP", c.damping) == RecordRead::kMissing) c.damping = 1.0f;
  list.Line(FormatLine("(' DIAGONAL DAMPING                         = ',F6.2)", c.damping));
  for (int i = 0; i < kMaxLimitLines; ++i) {
    ParameterLimit limit;
    if (in.Next("LIMP", limit.number, limit.limit) != RecordRead::kOk) break;
    c.limits.push_back(limit);
    list.Line(FormatLine("(' LIMIT FOR PARAMETER   ',I5,F12.5)", limit.number, limit.limit));
  }
  for (;;) {
    ParameterBlock block;
    if (in.Next("BLOK", block.watched, block.limit, block.blocked) != RecordRead::kOk) {
      break;
    }
    c.blocks.push_back(block);
    list.Line(FormatLine("(' BLOCK PARAMETER',I5,' WHEN PARAMETER ',I5,' IS BELOW ',F10.4)",
                         block.blocked, block.watched, block.limit));
  }
  return !in.Failed();
}

bool ReadExcludedRegions(InputRecords& in, EngineState& state) {
  RunControls& c = state.controls;
  for (int i = 0; i < c.job.excludedRegions; ++i) {
    std::array<float, 2> region{};
    if (in.RequiredValues("EXRG", " EXRG record missing", region) != RecordRead::kOk) {
      return false;
    }
    c.excludedRegions.push_back(region);
  }
  return true;
}

}  // namespace

bool ReadJob(InputRecords& in, EngineState& state, Reporter& reporter) {
  RunControls& c = state.controls;
  c.title = ReadTitle(in.Store());
  state.list.Text(Format("(1X,A70/)", ListedTitle(c.title)));
  std::vector<std::string> lines;
  const RecordRead format = ReadDataFormat(in.Store(), c.format, lines);
  const RecordRead job = ReadJobControls(in.Store(), c.job, lines);
  ListLines(state.list, lines);
  if (format == RecordRead::kBadNumbers || job != RecordRead::kOk) return false;
  if (state.debug) reporter.LogLine("jobtype = " + std::to_string(c.job.jobType));
  return ReadJobType(state);
}

bool ReadInstrument(InputRecords& in, EngineState& state, Reporter& reporter) {
  RunControls& c = state.controls;
  c.output = {0, 0};
  in.Next("UTPT", c.output[0], c.output[1]);
  if (c.output[0] == 0) c.output[0] = 25;
  if (c.output[1] < 50 || c.output[1] > 100) c.output[1] = 90;
  std::array<int, 14>& d = c.display;
  in.Next("DSPL", d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], d[8], d[9], d[10], d[11], d[12],
          d[13]);
  return ReadWavelengths(in, state) && ReadLimits(in, state, reporter) &&
         ReadLeastSquares(in, state) && ReadExcludedRegions(in, state);
}

}  // namespace kaldena
