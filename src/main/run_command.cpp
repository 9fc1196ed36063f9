// kalden run and kalden update: the engine on a project or a batch, and the parameter file
// taken over as the project.
#include <atomic>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/run_engine.h"
#include "engine/run_report.h"
#include "main/commands.h"
#include "store/job_records.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/report.h"

namespace kaldena {

namespace {

// Ctrl+C asks the refinement to end after the current cycle, with its results written.
std::atomic<bool> stopRequested{false};

extern "C" void RequestStop(int) { stopRequested = true; }

// One line per accepted cycle, beside the engine's own log lines.
void LogCycle(Reporter& reporter, const CycleReport& c) {
  reporter.LogLine(
      FormatLine("('Cycle',I4,':  Rwp =',F7.2,'  CHI2 =',F9.2,'  max shift/esd',"
                 "F9.2,' (',A,')')",
                 c.cycle, c.rwp, c.chi2, c.largestRatio, c.largestName));
}

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
  request.onCycle = [&reporter](const CycleReport& c) { LogCycle(reporter, c); };
  const EngineResult result = RunEngine(request, reporter);
  std::signal(SIGINT, SIG_DFL);
  return TellOutcome(result, reporter);
}

int UpdateCommand(const std::vector<std::string>& args) {
  if (args.size() != 1) return kBadArguments;
  ConsoleReporter reporter;
  RecordStore store(reporter);
  if (store.jReadRecFile(args[0]) < 1) return 1;
  const RunFileNames names = ReadRunFileNames(store, args[0]);
  store.jCloseRec();
  std::error_code error;
  // The engine's output parameter file lies beside the project unless it names a directory.
  const std::string parameters = ReplaceDirectory(DirectoryOf(args[0]), names.parameters);
  std::filesystem::copy_file(parameters, args[0], std::filesystem::copy_options::overwrite_existing,
                             error);
  reporter.LogLine(error ? "Error updating project" : "Project updated");
  return error ? 1 : 0;
}

}  // namespace kaldena
