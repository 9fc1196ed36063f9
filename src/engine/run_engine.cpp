#include "engine/run_engine.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <vector>

#include "engine/cycles.h"
#include "engine/engine_input.h"
#include "engine/engine_output.h"
#include "engine/run_files.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/temporary_file.h"
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

void DebugWord(bool debug, Reporter& reporter, std::string_view word) {
  if (debug) reporter.ShowMessage("Progress", word);
}

struct ProjectRun {
  bool ok = false;
  std::string parameterFile;  // the run's output parameter file
};

// The stages of one project. A failure leaves the project and its parameter file as they
// were, with the reason in the list file.
ProjectRun RunProject(const std::string& project, const EngineRequest& request,
                      Reporter& reporter) {
  static const std::atomic<bool> kNeverStop{false};
  const std::atomic<bool>& stop = request.stop ? *request.stop : kNeverStop;
  ProjectRun run;
  EngineState state;
  ZeroEngineState(state);
  state.debug = request.debug;
  DebugWord(state.debug, reporter, "Zero done");
  const int started = ClockSeconds();
  RecordStore store(reporter);
  if (SetUpRunFiles(project, state, store, reporter) != RunFilesStatus::kOk) return run;
  run.parameterFile = state.files.parameters;
  DebugWord(state.debug, reporter, "Files done");
  const bool ok = ReadEngineInput(state, store, reporter) == InputStatus::kOk &&
                  (DebugWord(state.debug, reporter, "Input done"), AssignSpans(state)) &&
                  (DebugWord(state.debug, reporter, "Assignment done"),
                   RunCycles(state, reporter, stop) == CycleStatus::kOk) &&
                  (DebugWord(state.debug, reporter, "Iterations done"),
                   WriteEngineOutput(state, reporter) == OutputStatus::kOk);
  state.list.Close();
  if (!ok) return run;
  DebugWord(state.debug, reporter, "Output done");
  const int elapsed = ElapsedSeconds(started, ClockSeconds());
  const std::string seconds = Format("(i7,' seconds elapsed'//)", elapsed);
  for (std::string_view line : SplitLines(seconds)) reporter.LogLine(line);
  // The temporary file replaces the parameter file whole, or the run fails; otherwise it goes
  // with the state.
  if (IsRefinement(state.controls) && !state.temporary.RenameOver(state.files.parameters)) {
    reporter.LogLine("Error updating output parameter file");
    return run;
  }
  run.ok = PublishEngineOutputs(state, reporter);
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

// A project that a batch file names is written (record lines, a chain's copies, the update of
// all); one outside the batch's folder is refused, as a project's own output names are.
bool RefusedProject(const std::string& name, Reporter& reporter) {
  if (!LeavesFolder(name)) return false;
  reporter.LogLine("Batch file names a project outside its folder: " + name);
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
    if (!RefusedProject(name, reporter) && CopyFileWhole(DefaultParameterFile(name), name)) {
      reporter.LogLine(name + " updated");
      result.currentProject = name;
    } else {
      reporter.LogLine("Error updating " + name);
    }
  }
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
      if (RefusedProject(project, reporter)) {
        result.status = 1;
        return result;
      }
      const std::vector<std::string> lines = ReadRecordLines(batch);
      if (!lines.empty()) ApplyRecordLines(project, lines, reporter);
    }
    const ProjectRun run = RunProject(project, request, reporter);
    if (!run.ok) {
      result.status = 1;
      return result;
    }
    if (mode != BatchMode::kChain) continue;
    if (CopyFileWhole(run.parameterFile, project)) {
      reporter.LogLine(project + " updated");
      result.currentProject = project;
    } else {
      reporter.LogLine("Error updating " + project);
    }
    std::string next;
    if (!NextName(batch, next)) break;
    if (RefusedProject(next, reporter)) {
      result.status = 1;
      return result;
    }
    if (!CopyFileWhole(run.parameterFile, next)) reporter.LogLine("Error copying rec file");
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
  result.status = RunProject(std::string(Trimmed(request.fileName)), request, reporter).ok ? 0 : 1;
  return result;
}

}  // namespace kaldena
