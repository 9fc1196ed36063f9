#include "shell/engine_job.h"

#include <chrono>
#include <string>

#include "shell/menu_dispatch.h"
#include "shell/plot_window.h"
#include "shell/shell_services.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

// The reporter of a job: every word is said on the loop's thread, and the job waits for it.
class LoopThreadReporter : public Reporter {
 public:
  LoopThreadReporter(ShellState& state, Toolkit& toolkit)
      : toolkit_(toolkit), shell_(state, toolkit) {}
  void LogLine(std::string_view line) override {
    toolkit_.OnLoopThread([&] { shell_.LogLine(line); });
  }
  void ShowMessage(std::string_view title, std::string_view text) override {
    toolkit_.OnLoopThread([&] { shell_.ShowMessage(title, text); });
  }
  bool AskYesNo(std::string_view title, std::string_view question) override {
    bool yes = false;
    toolkit_.OnLoopThread([&] { yes = shell_.AskYesNo(title, question); });
    return yes;
  }

 private:
  Toolkit& toolkit_;
  ShellReporter shell_;
};

// Items grey while a job runs: what would open, change or read the project's files.
constexpr int kBusyItems[] = {
    menu::kNewProject,  menu::kOpenProject,     menu::kUpdateProject,   menu::kSaveProjectAs,
    menu::kRecentFirst, menu::kRecentFirst + 1, menu::kRecentFirst + 2, menu::kRecentFirst + 3,
    menu::kEditProject, menu::kRunProject,      menu::kViewOutput,      menu::kUpdateAndRun,
    menu::kPlot,        menu::kFourier,         menu::kOutput};

void SetBusy(Toolkit& toolkit, bool busy) {
  for (int item : kBusyItems) toolkit.WMenuSetState(item, kMenuItemEnabled, busy ? 0 : 1);
  toolkit.WMenuSetState(menu::kStopRun, kMenuItemEnabled, busy ? 1 : 0);
}

void HandleWhileBusy(ShellState& state, Toolkit& toolkit, const Message& message) {
  const bool stop = (message.type == kMenuSelect && message.value == menu::kStopRun) ||
                    (message.type == kKeyDown && message.value == kKeyEscape);
  if (stop) {
    RunStopFlag() = true;
  } else if (message.type == kCloseRequest && message.window == kMainWindow) {
    RunStopFlag() = true;
    state.exitRequested = true;
  } else if (message.type == kExpose || message.type == kResize) {
    Redraw(state, toolkit, 0);
  }
}

// The cycle's calculated pattern in the plot data, with the points of the run.
void TakeCycle(PlotData& data, const CycleReport& report) {
  if (report.twoTheta.size() < 2) return;
  data.twoTheta.assign(report.twoTheta.begin(), report.twoTheta.end());
  data.observed.assign(report.observed.begin(), report.observed.end());
  data.calculated.assign(report.calculated.begin(), report.calculated.end());
  data.background.assign(report.background.begin(), report.background.end());
  data.start = data.twoTheta.front();
  data.end = data.twoTheta.back();
  data.meanStep = (data.end - data.start) / static_cast<float>(data.twoTheta.size() - 1);
  data.allocated = true;
}

void ShowCycle(ShellState& state, Toolkit& toolkit, const CycleReport& report, int seconds) {
  TakeCycle(state.plot.data, report);
  // The first run of a project shows its pattern as soon as there is one.
  if (state.plotMode == 0) state.plotMode = 1;
  if (state.plotMode == 1) Redraw(state, toolkit, 0);
  SetStatusField(toolkit, 3, FormatLine("(a,i4)", "Cycle", report.cycle));
  SetStatusField(toolkit, 4, FormatLine("(a,f8.2)", "Rwp", report.rwp));
  SetStatusField(toolkit, 5, FormatLine("(i6,a)", seconds, " s"));
}

}  // namespace

std::atomic<bool>& RunStopFlag() {
  static std::atomic<bool> stop{false};
  return stop;
}

void RunShellJob(ShellState& state, Toolkit& toolkit, const std::function<void(Reporter&)>& job) {
  RunStopFlag() = false;
  SetBusy(toolkit, true);
  LoopThreadReporter reporter(state, toolkit);
  toolkit.RunJob([&] { job(reporter); },
                 [&](const Message& message) { HandleWhileBusy(state, toolkit, message); });
  SetBusy(toolkit, false);
}

EngineResult RunEngineJob(ShellState& state, Toolkit& toolkit, EngineRequest request) {
  const auto start = std::chrono::steady_clock::now();
  request.stop = &RunStopFlag();
  request.onCycle = [&](const CycleReport& report) {
    const auto elapsed = std::chrono::steady_clock::now() - start;
    const int seconds =
        static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count());
    toolkit.OnLoopThread([&] { ShowCycle(state, toolkit, report, seconds); });
    if (state.hooks.afterCycleShown) state.hooks.afterCycleShown(report.cycle);
  };
  EngineResult result;
  RunShellJob(state, toolkit, [&](Reporter& reporter) { result = RunEngine(request, reporter); });
  return result;
}

}  // namespace kaldena
