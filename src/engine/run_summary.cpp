#include "engine/run_summary.h"

#include <algorithm>

#include "util/column_format.h"

namespace kaldena {

const char* OutcomeName(RunOutcome outcome) {
  switch (outcome) {
    case RunOutcome::kConverged:
      return "converged";
    case RunOutcome::kCycleLimit:
      return "cycle limit reached";
    case RunOutcome::kStopped:
      return "stopped by the user";
    case RunOutcome::kDiverging:
      return "diverging";
    case RunOutcome::kFailed:
      return "failed";
  }
  return "failed";
}

int ExitCodeOf(RunOutcome outcome) {
  switch (outcome) {
    case RunOutcome::kFailed:
      return 1;
    case RunOutcome::kDiverging:
      return 3;
    default:
      return 0;
  }
}

RunOutcome WorseOutcome(RunOutcome a, RunOutcome b) { return std::max(a, b); }

std::string RunSummary::BriefReport() const {
  std::string text = "Outcome: " + std::string(OutcomeName(outcome));
  if (outcome == RunOutcome::kFailed) {
    if (!failedStage.empty()) text += " (" + failedStage + ")";
    if (!reason.empty()) text += ": " + reason;
    text += "\n";
  } else {
    text += "\n";
    text += FormatLine("(' Rwp =',F7.2,'  CHI2 =',F8.2,'  GOF =',F7.3)", rwp, chi2, gof) + "\n";
    text += FormatLine("(' Cycles:',I4,'  kept:',I4,'  rejected steps:',I4)", cycles, keptCycle,
                       rejectedSteps) +
            "\n";
  }
  for (const std::string& warning : warnings) text += "Warning: " + warning + "\n";
  for (const std::string& file : outputFiles) text += "Output: " + file + "\n";
  return text;
}

}  // namespace kaldena
