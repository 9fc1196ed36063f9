// kalden run and kalden update: the engine on a project or a batch, and the parameter file
// taken over as the project.
#include <atomic>
#include <csignal>
#include <string>
#include <vector>

#include "engine/run_engine.h"
#include "main/commands.h"
#include "store/job_records.h"
#include "store/record_store.h"
#include "util/file_names.h"
#include "util/report.h"
#include "util/temporary_file.h"

namespace kaldena {

namespace {

// Ctrl+C asks the refinement to end after the current cycle, with its results written.
std::atomic<bool> stopRequested{false};

extern "C" void RequestStop(int) { stopRequested = true; }

}  // namespace

int RunCommand(const std::vector<std::string>& args) {
  EngineRequest request;
  bool updateAll = false;
  for (const std::string& arg : args) {
    if (arg == "--debug") {
      request.debug = true;
    } else if (arg == "--update-all") {
      updateAll = true;
    } else if (request.fileName.empty() && !arg.starts_with("--")) {
      request.fileName = arg;
    } else {
      return kBadArguments;
    }
  }
  if (request.fileName.empty()) return kBadArguments;
  stopRequested = false;
  request.stop = &stopRequested;
  std::signal(SIGINT, RequestStop);
  ConsoleReporter reporter(updateAll);
  const EngineResult result = RunEngine(request, reporter);
  std::signal(SIGINT, SIG_DFL);
  if (result.status != 0) reporter.LogLine("Refinement interupted");
  return result.status == 0 ? 0 : 1;
}

int UpdateCommand(const std::vector<std::string>& args) {
  if (args.size() != 1) return kBadArguments;
  ConsoleReporter reporter;
  RecordStore store(reporter);
  if (store.jReadRecFile(args[0]) < 1) return 1;
  const RunFileNames names = ReadRunFileNames(store, args[0]);
  store.jCloseRec();
  // The engine's output parameter file lies beside the project unless it names a directory.
  const std::string parameters = ReplaceDirectory(DirectoryOf(args[0]), names.parameters);
  const bool ok = CopyFileWhole(parameters, args[0]);
  reporter.LogLine(ok ? "Project updated" : "Error updating project");
  return ok ? 0 : 1;
}

}  // namespace kaldena
