// Reading the summary and Fourier files into the plot data.
#include "shell/pattern_plot.h"

#include <cmath>
#include <fstream>

#include "shell/project_lifecycle.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {
namespace {

// The run-time library's number for a value that does not read, which the log lines show.
constexpr int kReadErrorNumber = 5010;

// One summary line: two-theta, observed, calculated, background and `phases` phase columns.
bool ReadSummaryLine(const std::string& line, int phases, std::array<float, 14>& v) {
  v.fill(0.0f);
  if (phases <= 1) return Read(line, "(f7.0,3f12.0)", v[0], v[1], v[2], v[3]) == ReadStatus::kOk;
  return Read(line, "(f7.0,13f12.0)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9],
              v[10], v[11], v[12], v[13]) == ReadStatus::kOk;
}

void ReadBraggPositions(const std::string& fileName, PlotData& data) {
  data.braggPositions.clear();
  data.braggLabels.clear();
  data.phaseRows = 1;
  std::ifstream in(fileName, std::ios::binary);
  if (!in) return;  // a pattern without reflections yet
  std::string line;
  float shift = 0.0f, previous = 0.0f;
  while (static_cast<int>(data.braggPositions.size()) < kMaxReflections && GetTextLine(in, line)) {
    int h = 0, k = 0, l = 0, phase = 0;
    std::array<float, 7> r{};
    if (Read(line, "(4i4,7f12.0)", h, k, l, phase, r[0], r[1], r[2], r[3], r[4], r[5], r[6]) !=
        ReadStatus::kOk) {
      break;
    }
    if (h > 998 || phase > 998) break;
    const float position = r[6];
    if (!data.braggPositions.empty() && position < previous - 1.0f) shift += kBraggPhaseShift;
    previous = position;
    data.braggPositions.push_back(position + shift);
    data.braggLabels.push_back(FormatLine("(a,3i3,a)", "(", h, k, l, ")"));
  }
  data.phaseRows = static_cast<int>(std::lround(shift / kBraggPhaseShift)) + 1;
}

}  // namespace

SummaryStatus ReadPlotData(const SummarySources& sources, PlotData& data, Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(sources.parameterFile) < 1) {
    store.jCloseRec();
    reporter.LogLine(" Error opening parfile " + sources.parameterFile);
    return SummaryStatus::kNoParameterFile;
  }
  std::string record;
  std::array<int, 8> job{0, 1, 1, -1, 0, 0, 0, 1};
  if (store.jFindRec("JOBT", record) == 1 &&
      Read(record, "(8i5)", job[0], job[1], job[2], job[3], job[4], job[5], job[6], job[7]) !=
          ReadStatus::kOk) {
    store.jCloseRec();
    reporter.LogLine(FormatLine("(a,i5)", " ios JOBT ", kReadErrorNumber));
    return SummaryStatus::kJobError;
  }
  ResidualValues residuals;
  if (store.jFindRec("RVAL", record) == 1) {
    ResidualValues r;
    if (Read(record, "(i4,i6,i5,5f10.0)", r.parameters, r.observations, r.reflections, r.rp, r.rwp,
             r.gof, r.rb, r.extra) != ReadStatus::kOk) {
      store.jCloseRec();
      reporter.LogLine(FormatLine("(a,i5)", " ios RVAL ", kReadErrorNumber));
      return SummaryStatus::kResidualError;
    }
    residuals = r;
  }
  const std::string title = ReadTitle(store);
  const std::vector<std::string> phaseTitles = FindRecords(store, "PHTI");
  store.jCloseRec();

  std::ifstream in(sources.summaryFile, std::ios::binary);
  if (!in) {
    if (sources.fileType == 0) reporter.LogLine("Error opening " + sources.summaryFile);
    return SummaryStatus::kNoSummary;
  }
  const int phases = std::clamp(job[2], 1, kMaxPhases);
  PlotData read;
  read.phases = phases;
  if (phases > 1) read.phaseCurves.assign(static_cast<size_t>(phases), {});
  std::string line;
  std::array<float, 14> v{};
  while (read.PointCount() <= kSummaryPointLimit && GetTextLine(in, line)) {
    if (!ReadSummaryLine(line, phases, v)) break;
    read.twoTheta.push_back(v[0]);
    read.observed.push_back(v[1]);
    read.calculated.push_back(v[2]);
    read.background.push_back(v[3]);
    for (int p = 0; p < phases && phases > 1; ++p) read.phaseCurves[p].push_back(v[4 + p]);
  }
  if (read.PointCount() < 2) {
    reporter.LogLine(" Error reading sumfile");
    return SummaryStatus::kTooShort;
  }
  read.start = read.twoTheta.front();
  read.end = read.twoTheta.back();
  read.meanStep = (read.end - read.start) / static_cast<float>(read.PointCount() - 1);
  if (sources.debug) {
    reporter.ShowMessage("Progress", FormatLine("(a,3f8.3,i5)", "sumread ", read.start, read.end,
                                                read.meanStep, read.PointCount()));
  }
  read.residuals = residuals;
  read.title = title;
  for (const std::string& phase : phaseTitles) read.phaseTitles.emplace_back(Trimmed(phase));
  ReadBraggPositions(sources.fourierFile, read);
  read.allocated = true;
  data = std::move(read);
  return SummaryStatus::kRead;
}

SummaryStatus ReadSummary(ShellState& state, PlotData& data, Reporter& reporter) {
  SummaryStatus status = SummaryStatus::kRead;
  if (state.reloadPlotData != 0) {
    state.reloadPlotData = 0;
    SummarySources sources;
    sources.parameterFile = InProjectDir(state, state.parameterFileName);
    sources.summaryFile = InProjectDir(state, state.summaryFileName);
    sources.fourierFile = InProjectDir(state, state.fourierFileName);
    sources.fileType = state.fileType;
    sources.debug = state.debugMode != 0;
    status = ReadPlotData(sources, data, reporter);
    // Another project's pattern must not stand under this one's name.
    if (status == SummaryStatus::kNoSummary) data = PlotData{};
  }
  state.plotMode = 1;
  return status;
}

}  // namespace kaldena
