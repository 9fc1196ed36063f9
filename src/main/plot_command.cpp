// kalden plot: draws one of the window's plots into a file through the cairo canvas.
#include <filesystem>
#include <optional>

#include "main/commands.h"
#include "main/plot_commands.h"
#include "shell/pattern_plot.h"
#include "shell/pattern_plot_contours.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/record_store.h"
#include "toolkit/cairo_canvas.h"
#include "toolkit/headless_toolkit.h"
#include "util/file_names.h"
#include "util/report.h"
#include "util/text.h"

namespace kaldena {
namespace {

struct PlotRequest {
  std::string project;
  std::string out;
  bool halfwidths = false;
  int fourierAxis = 0;  // 0: no Fourier plot
  int section = 1;
  std::optional<std::pair<float, float>> range;
};

std::optional<PlotRequest> ParseArguments(const std::vector<std::string>& args) {
  PlotRequest r;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const size_t left = args.size() - i - 1;
    if (a == "--out" && left >= 1) {
      r.out = args[++i];
    } else if (a == "--halfwidths") {
      r.halfwidths = true;
    } else if (a == "--fourier" && left >= 2) {
      const std::string axis = UpperText(args[++i]);
      r.fourierAxis = axis == "X" ? 1 : axis == "Y" ? 2 : axis == "Z" ? 3 : -1;
      const std::optional<float> section = NumberArgument(args[++i]);
      if (r.fourierAxis < 0 || !section || *section < 1) return std::nullopt;
      r.section = static_cast<int>(*section);
    } else if (a == "--range" && left >= 2) {
      const std::optional<float> low = NumberArgument(args[++i]), high = NumberArgument(args[++i]);
      if (!low || !high || !(*high > *low)) return std::nullopt;
      r.range = std::make_pair(*low, *high);
    } else if (!a.starts_with("--") && r.project.empty()) {
      r.project = a;
    } else {
      return std::nullopt;
    }
  }
  if (r.project.empty() || r.out.empty() || !ImageFormatOf(r.out)) return std::nullopt;
  if (r.halfwidths && r.fourierAxis != 0) return std::nullopt;
  return r;
}

// A file name of the project: the record's, else the shell's default base + ext, else the
// engine's "%" + base + ext when only that one exists (a project without PW.. records).
std::string ProjectFile(const ShellState& state, RecordStore& store, std::string_view key,
                        std::string_view ext) {
  std::string data;
  if (store.jFindRec(key, data) == 1 && TrimmedLength(data) > 0) {
    return InProjectDir(state, Trimmed(data));
  }
  const std::string shell = InProjectDir(state, state.projectBaseName + std::string(ext));
  const std::string engine = InProjectDir(state, "%" + state.projectBaseName + std::string(ext));
  std::error_code error;
  if (!std::filesystem::exists(shell, error) && std::filesystem::exists(engine, error)) {
    return engine;
  }
  return shell;
}

}  // namespace

int PlotCommand(const std::vector<std::string>& args) {
  const std::optional<PlotRequest> request = ParseArguments(args);
  if (!request) return kBadArguments;
  ConsoleReporter reporter;
  ShellState state;
  state.projectFileName = request->project;
  state.projectBaseName = BaseNameOf(request->project);
  state.projectDir = DirectoryOf(request->project);
  SummarySources sources;
  {
    RecordStore store(reporter);
    if (store.jReadRecFile(request->project) < 1) {
      store.jCloseRec();
      reporter.LogLine(" Error opening project file.");
      reporter.LogLine(request->project);
      return 1;
    }
    sources.parameterFile = ProjectFile(state, store, "PWPR", ".par");
    sources.summaryFile = ProjectFile(state, store, "PWSM", ".sum");
    sources.fourierFile = ProjectFile(state, store, "PWFO", ".fou");
    store.jCloseRec();
  }
  const ImageFormat format = *ImageFormatOf(request->out);
  const bool fourier = request->fourierAxis != 0;
  const int width = 1000, height = fourier ? 1000 : 1130;
  ScriptedToolkit toolkit;
  const std::string date = DateTimeText(toolkit, 18);

  PlotData data;
  ContourMap map;
  if (fourier) {
    const std::string base = InProjectDir(state, state.projectBaseName);
    if (ReadContourMap(base, map, reporter) != 0) return 1;
  } else if (!request->halfwidths) {
    if (ReadPlotData(sources, data, reporter) != SummaryStatus::kRead) return 1;
  }
  std::unique_ptr<CairoCanvas> canvas = CairoCanvas::Open(request->out, format, width, height);
  if (!canvas) {
    reporter.LogLine("Error opening " + request->out);
    return 1;
  }
  int status = 0;
  if (fourier) {
    PlotLibrary plot(*canvas, 0, 0, 1000, 1000);
    int doublings = 1;
    status = DrawFourierSection(plot, map, request->fourierAxis, request->section, doublings,
                                reporter);
    if (status == 2) reporter.LogLine("No such section");
  } else {
    PlotLibrary plot(*canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
    if (request->halfwidths) {
      status = DrawHalfwidthPlot(plot, sources.parameterFile, state.projectBaseName, date,
                                 reporter);
    } else {
      PlotView view;
      view.content = data.phases > 1 ? 29 : 31;
      if (request->range) {
        view.zoom.xLow = request->range->first;
        view.zoom.xHigh = request->range->second;
      }
      DrawPatternPlot(plot, data, view, state.projectBaseName, date);
    }
  }
  if (!canvas->Finish()) {
    reporter.LogLine("Error writing " + request->out + ": " + canvas->Error());
    return 1;
  }
  if (status != 0) return 1;
  reporter.LogLine("Plot written to " + request->out);
  return 0;
}

}  // namespace kaldena
