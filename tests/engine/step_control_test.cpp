// The step control's pieces: the sum test, the Marquardt factor, the finiteness checks that
// name what went wrong, and whole runs whose model is not finite.
#include "engine/step_control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <regex>

#include "engine/run_engine.h"
#include "support/ceria_project.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

TEST(StepControl, ASumWithinTheToleranceCountsAsNoRise) {
  EXPECT_TRUE(NotHigher(100.0, 100.0));
  EXPECT_TRUE(NotHigher(100.0 * (1 + kSumTolerance / 2), 100.0));
  EXPECT_FALSE(NotHigher(100.0 * (1 + 2 * kSumTolerance), 100.0));
  EXPECT_TRUE(NotHigher(1.0, 100.0));
  EXPECT_FALSE(NotHigher(std::numeric_limits<double>::quiet_NaN(), 100.0));
  EXPECT_FALSE(NotHigher(std::numeric_limits<double>::infinity(), 100.0));
}

TEST(StepControl, TheMarquardtFactorRisesByTenAndFallsBackToZero) {
  MarquardtFactor f;
  EXPECT_EQ(f.Value(), 0.0f);  // a first try is the plain cycle
  f.Raise();
  EXPECT_FLOAT_EQ(f.Value(), 0.1f);
  f.Raise();
  f.Raise();
  EXPECT_FLOAT_EQ(f.Value(), 10.0f);
  f.Lower();
  EXPECT_FLOAT_EQ(f.Value(), 1.0f);
  f.Lower();
  EXPECT_FLOAT_EQ(f.Value(), 0.1f);
  f.Lower();
  EXPECT_EQ(f.Value(), 0.0f);
}

// One phase whose scale is parameter 1 and a zero point that is parameter 2.
EngineState TwoParameters() {
  EngineState state;
  state.phases.resize(1);
  state.phases[0].values[kScale].number = 1;
  state.globals[kZeroPoint].number = 2;
  state.parameters = 2;
  state.work.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 1.0f);
  state.points.count = 3;
  state.points.x = {10.0f, 10.02f, 10.04f};
  state.work.calculated = {1.0f, 2.0f, 3.0f};
  state.work.background = {0.0f, 0.0f, 0.0f};
  return state;
}

TEST(StepControl, NamesTheFirstParameterOrPointThatIsNotFinite) {
  EngineState state = TwoParameters();
  EXPECT_EQ(NonFiniteParameter(state), "");
  EXPECT_EQ(NonFinitePoint(state), "");
  state.shifts[1] = kInf;
  EXPECT_EQ(NonFiniteParameter(state), "shift of ZEROPOINT");
  state.shifts[1] = 0;
  state.work.normal[0] = kNaN;
  EXPECT_EQ(NonFiniteParameter(state), "esd of SCALE PHASE 1");
  state.work.normal[0] = 1;
  state.globals[kZeroPoint].value = kNaN;
  EXPECT_EQ(NonFiniteParameter(state), "value of ZEROPOINT");
  state.globals[kZeroPoint].value = 0;
  state.phases[0].cell[1] = kInf;  // a cell from a metric that is no longer one
  EXPECT_EQ(NonFiniteParameter(state), "a value without a parameter");
  state.work.calculated[1] = kNaN;
  EXPECT_EQ(NonFinitePoint(state), "point     2 (2-theta   10.020)");
}

// A project whose start gives a non-finite pattern has no state to keep: the run fails with
// the point named, and the project and its parameter file stay byte for byte.
TEST(StepControl, ARunWithoutAFiniteStartFailsAndLeavesItsFilesAlone) {
  testing::ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter);
  dir.Write("start.rec",
            testing::CeriaProject(0, "        NaN", "  5.411000", "   0.01500", "   0.00000"));
  const std::string earlier = "an earlier parameter file\n";
  dir.Write("%start.par", earlier);
  const std::string project = testing::ReadBytes("start.rec");
  const EngineResult result = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  EXPECT_EQ(result.status, 1);
  ASSERT_EQ(result.runs.size(), 1u);
  EXPECT_EQ(result.runs[0].outcome, RunOutcome::kFailed);
  EXPECT_EQ(result.runs[0].failedStage, "cycles");
  const std::string line = result.runs[0].reason;
  EXPECT_TRUE(std::regex_match(
      line, std::regex(
                " Non-finite calculated value at the start, point +[0-9]+ \\(2-theta +[0-9.]+\\)")))
      << line;
  EXPECT_NE(std::find(reporter.log.begin(), reporter.log.end(), line), reporter.log.end());
  const std::string list = testing::ReadBytes(dir.Path() / "%start.out");
  EXPECT_NE(list.find(line + "\n"), std::string::npos);
  EXPECT_FALSE(std::regex_search(list.substr(list.find("***INITIAL")),
                                 std::regex("nan|inf", std::regex::icase)));
  EXPECT_EQ(testing::ReadBytes(dir.Path() / "%start.par"), earlier);
  EXPECT_EQ(testing::ReadBytes(dir.Path() / "start.rec"), project);
}

// The scale tied to Ce's B, which alone is refined: the derivative of B knows nothing of the
// scale that follows it, so every step, however damped, raises the sum of squares.
std::string AllStepsUphill() {
  std::string p = testing::CeriaProject(0, " 0.7000E-03", "  5.411000", "   0.01500", "   0.00000");
  for (const char* free : {"CZET           1.000", "CBKG           1.000", "CCEL           1.000",
                           "CHWT           0.000     0.000     1.000"}) {
    const size_t at = p.find(free);
    p.replace(at + 4, std::string_view(free).size() - 4,
              std::string(std::string_view(free).size() - 9, ' ') + "0.000");
  }
  p.replace(p.find("CSCA           1.000"), 20, "CSCA        5010.007");
  p.replace(p.find("0.30000 48"), 7, "0.10000");
  p += "CXYZ Ce        0.000     0.000     0.000     0.000    11.000\n"
       "CXYZ O         0.000     0.000     0.000     0.000     0.000\n";
  return p;
}

TEST(StepControl, FiveRejectedTriesEndTheRunAsDivergingWithTheStartKept) {
  testing::ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter, 5);
  dir.Write("start.rec", AllStepsUphill());
  const EngineResult result = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  const std::string list = testing::ReadBytes(dir.Path() / "%start.out");
  ASSERT_EQ(result.status, 0) << list;
  ASSERT_EQ(result.runs.size(), 1u);
  const RunSummary& s = result.runs[0];
  EXPECT_EQ(s.outcome, RunOutcome::kDiverging) << list;
  EXPECT_EQ(result.outcome, RunOutcome::kDiverging);
  EXPECT_EQ(s.rejectedSteps, kMaxRejectedTries);
  EXPECT_EQ(s.cycles, 0);
  EXPECT_EQ(s.keptCycle, 0);
  EXPECT_NE(list.find(" Step control gave up after 5 rejected tries: diverging"),
            std::string::npos);
  EXPECT_NE(list.find(" Parameters of cycle   0 kept"), std::string::npos);
  const fs::path par = dir.Path() / "%start.par";
  // The start kept: the scale still the tie's fraction of the start B, 0.1.
  EXPECT_NEAR(testing::RecordValue(par, "SCAL", "(2F15.0)", 0), (5010.007f - 5010.0f) * 0.1f,
              1e-7f);
}

}  // namespace
}  // namespace kaldena
