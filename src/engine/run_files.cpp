#include "engine/run_files.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include "store/record_catalogue.h"
#include "util/file_names.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::size_t kMaxBaseName = 80;
constexpr std::string_view kSeparators = "\\/:";

// The end line of a record file, as the record store knows it.
bool IsEndLine(std::string_view line) {
  return line.substr(0, 3) == "END" || line.substr(0, 3) == "end";
}

// `resultKeys` of the result keys (from the front of the table) that the line belongs to.
bool IsResultLine(std::string_view line, std::size_t resultKeys) {
  for (std::size_t k = 0; k < resultKeys; ++k) {
    if (RecordKeyMatches(line, kResultKeys[k])) return true;
  }
  return false;
}

// A file name of a record, with the project's directory in front when it has none of its
// own; empty when the record is absent or blank.
std::string RecordFileName(RecordStore& store, std::string_view key, const std::string& directory) {
  const std::string name = FindText(store, key, "");
  return name.empty() ? name : ReplaceDirectory(directory, name);
}

// An output file name: the record's, else "%" + base + extension, in the project's folder or
// below it. A record that would write outside the folder is refused (empty result): a project
// from elsewhere must not overwrite the user's files.
std::string OutputFileName(RecordStore& store, std::string_view key, const EngineState& state,
                           std::string_view extension, Reporter& reporter) {
  std::string name = FindText(store, key, "");
  if (LeavesFolder(name)) {
    reporter.LogLine(std::string(key) + " names a file outside the project's folder: " + name);
    return {};
  }
  if (name.empty()) name = "%" + state.baseName + std::string(extension);
  // Beside the project or below it, whatever the process's current directory.
  std::string path = state.directory;
  if (!path.empty() && kSeparators.find(path.back()) == std::string_view::npos) path += '/';
  return path + name;
}

// The four output names, all read before anything is written.
bool ReadOutputFileNames(RecordStore& store, EngineState& state, Reporter& reporter) {
  RunFileNames& f = state.files;
  f.parameters = OutputFileName(store, "PWPR", state, ".par", reporter);
  f.list = OutputFileName(store, "PWUT", state, ".out", reporter);
  f.summary = OutputFileName(store, "PWSM", state, ".sum", reporter);
  f.fourier = OutputFileName(store, "PWFO", state, ".fou", reporter);
  return !f.parameters.empty() && !f.list.empty() && !f.summary.empty() && !f.fourier.empty();
}

void WriteLine(std::ostream& out, std::string_view line) { out << PadRecord(line) << '\n'; }

bool OpenListFile(EngineState& state, Reporter& reporter) {
  if (state.list.Open(state.files.list)) return true;
  reporter.ShowMessage("Error", "Error opening list file");
  return false;
}

}  // namespace

std::string CutProjectName(std::string_view projectName) {
  std::string name(Trimmed(projectName));
  const std::size_t point = name.rfind('.');
  if (point == std::string::npos) return name;
  const std::size_t separator = name.find_last_of(kSeparators);
  if (separator != std::string::npos && separator > point) return name;
  return name.substr(0, point + 4);
}

RunFilesStatus CopyProjectToTemporary(std::istream& project, std::ostream& temporary,
                                      ListFile& list) {
  // The marker search runs to the end of the file, past an END line; the two copying passes
  // stop at it. Holding the lines once stands for the rewinds between the passes.
  std::vector<std::string> lines;
  std::size_t endLine = std::string::npos;
  for (std::string line; ReadRecordLine(project, line);) {
    if (endLine == std::string::npos && IsEndLine(line)) endLine = lines.size();
    lines.push_back(line);
  }
  const std::size_t copied = std::min(endLine, lines.size());

  for (std::size_t i = 0; i < copied; ++i) {
    if (!IsResultLine(lines[i], kResultKeys.size())) WriteLine(temporary, lines[i]);
  }

  const std::string* marker = nullptr;
  for (const std::string& line : lines) {
    if (RecordKeyMatches(line, "SCAL")) {
      marker = &line;
      break;
    }
  }
  if (marker == nullptr) {
    list.Line("Missing scale factor for PRFPAR");
    return RunFilesStatus::kFailed;
  }
  WriteLine(temporary, *marker);

  // The first SCAL line comes a second time here; the engine's rewrite starts at the
  // marker, so the repetition does not survive a cycle.
  for (std::size_t i = 0; i < copied; ++i) {
    if (IsResultLine(lines[i], kResultKeys.size() - 1)) WriteLine(temporary, lines[i]);
  }
  return RunFilesStatus::kOk;
}

void NameInputFiles(EngineState& state, RecordStore& store) {
  state.files.data = RecordFileName(store, "PWDT", state.directory);
  state.files.background = RecordFileName(store, "PWBG", state.directory);
  if (!state.files.background.empty()) state.backgroundFileMarker = 12;
  state.files.weights = RecordFileName(store, "PWWG", state.directory);
}

RunFilesStatus SetUpRunFiles(std::string_view projectName, EngineState& state, RecordStore& store,
                             Reporter& reporter) {
  state.projectFile = CutProjectName(projectName);
  state.directory = DirectoryOf(state.projectFile);
  state.baseName = BaseNameOf(state.projectFile).substr(0, kMaxBaseName);

  if (store.jReadRecFile(state.projectFile) < 1) {
    reporter.LogLine("Error opening or reading " + state.projectFile);
    return RunFilesStatus::kFailed;
  }

  NameInputFiles(state, store);
  if (!ReadOutputFileNames(store, state, reporter)) return RunFilesStatus::kFailed;

  std::ifstream project(state.projectFile, std::ios::binary);
  if (!project.is_open()) {
    reporter.ShowMessage("Error", "Error opening preject file");
    return RunFilesStatus::kFailed;
  }
  // A file of the run's own, so that runs side by side in one folder never meet; it lies
  // beside the output parameter file (the project's, unless PWPR names another directory),
  // which it replaces by rename on the same file system.
  state.temporary =
      TemporaryFile::Create(DirectoryOf(state.files.parameters), "%" + state.baseName);
  std::ofstream temporary;
  if (state.temporary.Exists()) temporary.open(state.temporary.Name(), std::ios::binary);
  if (!temporary.is_open()) {
    reporter.ShowMessage("Error", "Error opening temporary file");
    return RunFilesStatus::kFailed;
  }

  // The copy runs before the list file is named, so its complaint is held and written
  // once the list file stands: the user looks for the reason there.
  ListFile copyReport;
  const RunFilesStatus copied = CopyProjectToTemporary(project, temporary, copyReport);
  project.close();
  temporary.close();
  if (copied != RunFilesStatus::kOk) {
    OpenListFile(state, reporter);
    for (const std::string& line : copyReport.Lines()) state.list.Line(line);
    return RunFilesStatus::kFailed;
  }

  if (!OpenListFile(state, reporter)) return RunFilesStatus::kFailed;
  return RunFilesStatus::kOk;
}

}  // namespace kaldena
