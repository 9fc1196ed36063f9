#include "engine/run_engine.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <vector>

#include "engine/cycles.h"
#include "engine/engine_input.h"
#include "engine/engine_output.h"
#include "engine/model_warnings.h"
#include "engine/run_files.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kMaxBatchRecords = 100;
constexpr int kSecondsPerDay = 86400;

int ClockSeconds() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
}

bool CopyOver(const std::string& from, const std::string& to) {
  std::error_code error;
  std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
  return !error;
}

void DebugWord(bool debug, Reporter& reporter, std::string_view word) {
  if (debug) reporter.ShowMessage("Progress", word);
}

struct ProjectRun {
  bool ok = false;
  std::string parameterFile;  // the run's output parameter file
  RunSummary summary;
};

RunOutcome OutcomeOf(CycleEnd end) {
  switch (end) {
    case CycleEnd::kCycleLimit:
      return RunOutcome::kCycleLimit;
    case CycleEnd::kStopped:
      return RunOutcome::kStopped;
    case CycleEnd::kDiverging:
      return RunOutcome::kDiverging;
    default:
      return RunOutcome::kConverged;
  }
}

// The list file's reason for a failure: its last line that says something, with the lines of
// the same kind just before it (" Zero derivative for" one per parameter).
std::string ReasonOf(const ListFile& list) {
  const std::vector<std::string>& lines = list.Lines();
  auto last = std::find_if(lines.rbegin(), lines.rend(),
                           [](const std::string& l) { return !Trimmed(l).empty(); });
  if (last == lines.rend()) return {};
  const std::string kind = last->substr(0, 12);
  auto first = last;
  while (first + 1 != lines.rend() && (first + 1)->starts_with(kind)) ++first;
  std::string reason;
  for (auto l = first;; --l) {
    reason += std::string(Trimmed(*l));
    if (l == last) break;
    reason += "\n";
  }
  return reason;
}

// The figures of the kept cycle and the output stage.
void FillSummary(const EngineState& state, RunSummary& summary) {
  const CycleSummary& s = state.summary;
  summary.outcome = OutcomeOf(s.end);
  summary.cycles = s.cycles;
  summary.rejectedSteps = s.rejectedTries;
  summary.keptCycle = s.keptCycle;
  summary.rp = s.rp;
  summary.rwp = s.rwp;
  summary.chi2 = s.chi2;
  summary.gof = std::sqrt(std::max(s.chi2, 0.0f));
  summary.rexp = summary.gof > 0 ? s.rwp / summary.gof : 0.0f;
  summary.largestRatio = s.largestRatio;
  summary.largestName = std::string(Trimmed(s.largestName));
  for (size_t p = 0; p < s.phaseFits.size() && p < state.phases.size(); ++p) {
    summary.phases.push_back(
        {state.phases[p].title, s.phaseFits[p].braggR, s.phaseFits[p].reflections});
  }
  summary.parameters = state.parameters;
  summary.points = s.points;
  summary.reflections = state.reflections.Count();
  const RunFileNames& f = state.files;
  summary.outputFiles = {f.list, f.summary, f.fourier};
  if (IsRefinement(state.controls)) summary.outputFiles.push_back(f.parameters);
}

// The input, span, cycle and output stages; false with the failed stage named in the summary.
bool RunStages(EngineState& state, RecordStore& store, const EngineRequest& request,
               const std::atomic<bool>& stop, Reporter& reporter, RunSummary& summary) {
  summary.failedStage = "input";
  if (ReadEngineInput(state, store, reporter) != InputStatus::kOk) return false;
  DebugWord(state.debug, reporter, "Input done");
  summary.failedStage = "reflections";
  if (!AssignSpans(state)) return false;
  DebugWord(state.debug, reporter, "Assignment done");
  summary.failedStage = "cycles";
  if (RunCycles(state, reporter, stop, request.onCycle) != CycleStatus::kOk) return false;
  DebugWord(state.debug, reporter, "Iterations done");
  summary.warnings = ListWarnings(state);
  summary.failedStage = "output";
  if (WriteEngineOutput(state, reporter) != OutputStatus::kOk) return false;
  summary.failedStage.clear();
  return true;
}

// The stages of one project. A failure leaves the project and its parameter file as they
// were, with the reason in the list file.
ProjectRun RunProject(const std::string& project, const EngineRequest& request,
                      Reporter& reporter) {
  static const std::atomic<bool> kNeverStop{false};
  const std::atomic<bool>& stop = request.stop ? *request.stop : kNeverStop;
  const auto clock = std::chrono::steady_clock::now();
  ProjectRun run;
  RunSummary& summary = run.summary;
  summary.project = project;
  EngineState state;
  ZeroEngineState(state);
  state.debug = request.debug;
  DebugWord(state.debug, reporter, "Zero done");
  const int started = ClockSeconds();
  RecordStore store(reporter);
  summary.failedStage = "files";
  if (SetUpRunFiles(project, state, store, reporter) != RunFilesStatus::kOk) return run;
  run.parameterFile = state.files.parameters;
  DebugWord(state.debug, reporter, "Files done");
  const bool ok = RunStages(state, store, request, stop, reporter, summary);
  state.list.Close();
  summary.elapsedSeconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - clock).count();
  if (!ok) {
    summary.reason = ReasonOf(state.list);
    return run;
  }
  FillSummary(state, summary);
  DebugWord(state.debug, reporter, "Output done");
  const int elapsed = ElapsedSeconds(started, ClockSeconds());
  const std::string seconds = Format("(i7,' seconds elapsed'//)", elapsed);
  for (std::string_view line : SplitLines(seconds)) reporter.LogLine(line);
  // The temporary file replaces the parameter file whole, or the run fails; otherwise it goes
  // with the state.
  if (IsRefinement(state.controls) && !state.temporary.RenameOver(state.files.parameters)) {
    reporter.LogLine("Error updating output parameter file");
    summary.outcome = RunOutcome::kFailed;
    summary.failedStage = "update";
    summary.reason = "Error updating output parameter file";
    return run;
  }
  run.ok = true;
  return run;
}

// Record lines of a batch file, up to a blank line or the end, at most 100.
std::vector<std::string> ReadRecordLines(std::istream& batch) {
  std::vector<std::string> lines;
  std::string line;
  while (static_cast<int>(lines.size()) < kMaxBatchRecords && GetTextLine(batch, line)) {
    if (Trimmed(line).empty()) break;
    lines.push_back(line);
  }
  return lines;
}

// Applies record lines to a project: the lines of each key replace its lines there, or are
// added when the project has none.
void ApplyRecordLines(const std::string& project, const std::vector<std::string>& lines,
                      Reporter& reporter) {
  std::vector<std::pair<std::string, std::vector<Record>>> byKey;
  for (const std::string& line : lines) {
    const std::string key = UpperKey(PadRecord(line).substr(0, 4));
    auto found = std::find_if(byKey.begin(), byKey.end(), [&](const auto& k) { return k.first == key; });
    if (found == byKey.end()) found = byKey.insert(byKey.end(), {key, {}});
    found->second.push_back(PadRecord(line));
  }
  RecordStore store(reporter);
  for (const auto& [key, records] : byKey) {
    if (store.jUpdateRec(project, records) == 0) store.jAddRec(project, records);
  }
}

bool NextName(std::istream& batch, std::string& name) {
  std::string line;
  if (!GetTextLine(batch, line)) return false;
  name = std::string(Trimmed(line));
  while (!name.empty() && name.front() == ' ') name.erase(name.begin());
  if (name.empty()) return false;
  name = ForceExtension(name, "rec");
  return true;
}

std::string DefaultParameterFile(const std::string& project) {
  return ReplaceDirectory(DirectoryOf(project), "%" + BaseNameOf(project) + ".par");
}

void UpdateAll(const EngineRequest& request, BatchMode mode, Reporter& reporter,
               EngineResult& result) {
  if (!reporter.AskYesNo("Update", "Do you want to update all project files?")) return;
  std::ifstream batch(request.fileName);
  std::string name;
  while (NextName(batch, name)) {
    // In an edits batch the record lines are read as names too; their copies fail.
    (void)mode;
    if (CopyOver(DefaultParameterFile(name), name)) {
      reporter.LogLine(name + " updated");
      result.currentProject = name;
    } else {
      reporter.LogLine("Error updating " + name);
    }
  }
}

void AddRun(const ProjectRun& run, EngineResult& result) {
  result.runs.push_back(run.summary);
  result.outcome = WorseOutcome(result.outcome, run.summary.outcome);
}

EngineResult RunBatch(const EngineRequest& request, BatchMode mode, Reporter& reporter) {
  EngineResult result;
  static constexpr const char* kNames[] = {"", "mlt", "exp", "edt"};
  std::ifstream batch(request.fileName);
  if (!batch) {
    reporter.LogLine(std::string("Error opening ") + kNames[static_cast<int>(mode)] + " file");
    result.status = 1;
    return result;
  }
  std::string project;
  if (mode == BatchMode::kChain && !NextName(batch, project)) {
    reporter.LogLine("Error reading new project file name");
    result.status = 1;
    return result;
  }
  for (;;) {
    if (mode != BatchMode::kChain && !NextName(batch, project)) break;
    if (mode != BatchMode::kList) {
      const std::vector<std::string> lines = ReadRecordLines(batch);
      if (!lines.empty()) ApplyRecordLines(project, lines, reporter);
    }
    const ProjectRun run = RunProject(project, request, reporter);
    AddRun(run, result);
    if (!run.ok) {
      result.status = 1;
      return result;
    }
    if (mode != BatchMode::kChain) continue;
    if (CopyOver(run.parameterFile, project)) {
      reporter.LogLine(project + " updated");
      result.currentProject = project;
    } else {
      reporter.LogLine("Error updating " + project);
    }
    std::string next;
    if (!NextName(batch, next)) break;
    if (!CopyOver(run.parameterFile, next)) reporter.LogLine("Error copying rec file");
    project = next;
  }
  batch.close();
  if (mode != BatchMode::kChain) UpdateAll(request, mode, reporter, result);
  return result;
}

}  // namespace

BatchMode BatchModeOf(std::string_view fileName) {
  const std::string name(Trimmed(fileName));
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return BatchMode::kProject;
  const std::string ext = name.substr(dot + 1, 3);
  if (ext == "MLT" || ext == "mlt") return BatchMode::kList;
  if (ext == "EXP" || ext == "exp") return BatchMode::kChain;
  if (ext == "EDT" || ext == "edt") return BatchMode::kEdits;
  return BatchMode::kProject;
}

int ElapsedSeconds(int start, int end) { return end < start ? end + kSecondsPerDay - start : end - start; }

EngineResult RunEngine(const EngineRequest& request, Reporter& reporter) {
  DebugWord(request.debug, reporter, "Allocation done");
  const BatchMode mode = BatchModeOf(request.fileName);
  if (mode != BatchMode::kProject) return RunBatch(request, mode, reporter);
  EngineResult result;
  const ProjectRun run = RunProject(std::string(Trimmed(request.fileName)), request, reporter);
  AddRun(run, result);
  result.status = run.ok ? 0 : 1;
  return result;
}

}  // namespace kaldena
