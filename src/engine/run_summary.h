// How a run ended, in figures a caller reads instead of parsing the list file, and the
// figures of each cycle as the cycles go.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace kaldena {

// Ordered from best to worst: a batch reports the worst outcome of its runs.
enum class RunOutcome {
  kConverged,   // the shift test ended the cycles (and every calculation or comparison)
  kCycleLimit,  // the cycles of the run were used up
  kStopped,     // the user asked the run to stop
  kDiverging,   // the step control gave up; the best cycle's parameters were kept
  kFailed,      // a stage failed; see failedStage and reason
};

// The word the console prints for an outcome.
const char* OutcomeName(RunOutcome outcome);

// Process exit code of an outcome: 0 converged, cycle limit or stopped, 1 failed, 3 diverging.
int ExitCodeOf(RunOutcome outcome);

RunOutcome WorseOutcome(RunOutcome a, RunOutcome b);

struct PhaseSummary {
  std::string title;
  float braggR = 0;  // derived Bragg R-factor, percent
  int reflections = 0;
};

struct RunSummary {
  std::string project;
  RunOutcome outcome = RunOutcome::kFailed;
  std::string failedStage;  // "files", "input", "reflections", "cycles", "output", "update"
  std::string reason;       // the reason line of the list file (or log) for a failure
  int cycles = 0;           // accepted cycles run
  int rejectedSteps = 0;    // tries the step control rejected, over the whole run
  int keptCycle = 0;        // the cycle whose parameters the outputs hold
  float rp = 0, rwp = 0, rexp = 0, chi2 = 0, gof = 0;  // of the kept cycle, percent / plain
  float largestRatio = 0;   // shift / esd of the kept cycle's largest shift, signed
  std::string largestName;  // its parameter, trimmed
  std::vector<PhaseSummary> phases;
  int parameters = 0, points = 0, reflections = 0;
  std::vector<std::string> warnings;  // values no sample can have, one line each
  std::vector<std::string> outputFiles;
  double elapsedSeconds = 0;

  // A few lines for a console or a status pane: outcome, Rwp, CHI2, GOF, cycles, warnings and
  // the output files.
  std::string BriefReport() const;
};

// The figures of an accepted cycle, handed to EngineRequest::onCycle on the engine's thread.
// The spans are valid only during the call; they run over the measured points.
struct CycleReport {
  int cycle = 0;
  float rwp = 0, chi2 = 0;
  float largestRatio = 0;
  std::string largestName;
  std::span<const float> twoTheta, observed, calculated, background;
};

}  // namespace kaldena
