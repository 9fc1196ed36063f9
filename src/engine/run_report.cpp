#include "engine/run_report.h"

#include "util/text.h"

namespace kaldena {

namespace {

void LogLines(Reporter& reporter, std::string_view text) {
  for (std::string_view line : SplitLines(text)) reporter.LogLine(line);
}

}  // namespace

int TellOutcome(const EngineResult& result, Reporter& reporter) {
  if (result.status != 0) reporter.LogLine("Refinement interupted");
  for (const RunSummary& run : result.runs) {
    if (run.outcome == RunOutcome::kFailed) {
      if (!run.reason.empty()) LogLines(reporter, run.reason);
      continue;
    }
    if (result.runs.size() > 1) reporter.LogLine(run.project + ":");
    LogLines(reporter, run.BriefReport());
  }
  return ExitCodeOf(result.status != 0 ? RunOutcome::kFailed : result.outcome);
}

}  // namespace kaldena
