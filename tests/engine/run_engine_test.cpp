// The engine driver: single projects, the three batch modes, what a failure leaves behind,
// and the clock across midnight.
#include "engine/run_engine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <latch>
#include <map>
#include <thread>
#include <vector>

#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;
using testing::TestData;

// A scratch directory that is the current one meanwhile, holding the input test projects.
class Workspace {
 public:
  Workspace() : old_(fs::current_path()) {
    for (const char* name : {"calculation.rec", "comparison.rec", "pattern.xy", "pattern.epf"}) {
      fs::copy_file(TestData(std::string("engine/input/") + name), dir_.Path() / name);
    }
    fs::current_path(dir_.Path());
  }
  ~Workspace() { fs::current_path(old_); }

  // A refinement of the calculation project's pattern: scale and background refined.
  void WriteRefinement(const std::string& name) {
    std::string text = ReadBytes("calculation.rec");
    text.replace(text.find("JOBT          2"), 15, "JOBT          0");
    text.replace(text.find("RELX          6"), 15, "RELX          2");
    text += "FRMT          5\nPWDT      pattern.xy\nCSCA           1.000\nCBKG           1.000\n";
    dir_.Write(name, text);
  }
  // The refinement under another title and a start of its own, so that no two parameter
  // files are alike.
  void WriteRefinement(const std::string& name, int variant) {
    WriteRefinement(name);
    std::string text = ReadBytes(name);
    text.replace(0, text.find('\n'), "TITL      variant " + std::to_string(variant));
    const std::string scale = "SCAL       0.1000E-02";
    text.replace(text.find(scale), scale.size(),
                 "SCAL       0.1" + std::to_string(variant) + "00E-02");
    dir_.Write(name, text);
  }
  const fs::path& Path() const { return dir_.Path(); }

 private:
  ScratchDir dir_;
  fs::path old_;
};

EngineResult RunFile(const std::string& name, RecordingReporter& reporter) {
  return RunEngine({name, false, nullptr}, reporter);
}

void ExpectNoTemporaryFiles(const fs::path& dir) {
  for (const auto& entry : fs::directory_iterator(dir)) {
    EXPECT_NE(entry.path().extension(), ".tmp") << "left behind: " << entry.path();
  }
}

bool LogHas(const RecordingReporter& r, std::string_view text) {
  for (const std::string& line : r.log) {
    if (line.find(text) != std::string::npos) return true;
  }
  return false;
}

TEST(RunEngine, BatchModeFollowsTheExtension) {
  EXPECT_EQ(BatchModeOf("a.rec"), BatchMode::kProject);
  EXPECT_EQ(BatchModeOf("runs.mlt"), BatchMode::kList);
  EXPECT_EQ(BatchModeOf("RUNS.MLT"), BatchMode::kList);
  EXPECT_EQ(BatchModeOf("runs.Mlt"), BatchMode::kProject);  // mixed case is no batch
  EXPECT_EQ(BatchModeOf("chain.exp"), BatchMode::kChain);
  EXPECT_EQ(BatchModeOf("edits.EDT"), BatchMode::kEdits);
  EXPECT_EQ(BatchModeOf("noextension"), BatchMode::kProject);
}

TEST(RunEngine, ElapsedTimeCrossesMidnightOnce) {
  EXPECT_EQ(ElapsedSeconds(100, 160), 60);
  EXPECT_EQ(ElapsedSeconds(86390, 5), 15);
}

TEST(RunEngine, ARefinementUpdatesItsParameterFileAndACalculationDoesNot) {
  Workspace w;
  RecordingReporter reporter;
  w.WriteRefinement("refine.rec");
  ASSERT_EQ(RunFile("refine.rec", reporter).status, 0);
  EXPECT_TRUE(fs::exists("%refine.par"));
  ExpectNoTemporaryFiles(w.Path());
  EXPECT_TRUE(LogHas(reporter, "seconds elapsed"));
  EXPECT_TRUE(LogHas(reporter, "BRAGG R-FACTOR"));
  EXPECT_TRUE(LogHas(reporter, "Max. shift/e.s.d."));
  // The parameter file holds the refined records behind the input records, and runs again.
  const std::string par = ReadBytes("%refine.par");
  EXPECT_NE(par.find("RVAL"), std::string::npos);
  EXPECT_NE(par.find("SDSC"), std::string::npos);
  ASSERT_EQ(RunFile("%refine.par", reporter).status, 0);

  ASSERT_EQ(RunFile("calculation.rec", reporter).status, 0);
  EXPECT_FALSE(fs::exists("%calculation.par"));
  EXPECT_TRUE(fs::exists("%calculation.sum"));
  EXPECT_TRUE(fs::exists("%calculation.fou"));
}

TEST(RunEngine, TheStopFlagEndsARefinementAfterItsCycleWithResults) {
  Workspace w;
  w.WriteRefinement("stop.rec");
  const std::atomic<bool> stop{true};
  RecordingReporter reporter;
  const EngineResult result = RunEngine({"stop.rec", false, &stop}, reporter);
  ASSERT_EQ(result.status, 0);
  ASSERT_EQ(result.runs.size(), 1u);
  // Unless the one cycle also met the shift test, the run ends as stopped.
  if (result.runs[0].outcome != RunOutcome::kConverged) {
    EXPECT_EQ(result.runs[0].outcome, RunOutcome::kStopped);
  }
  EXPECT_EQ(result.runs[0].cycles, 1);
  const std::string list = ReadBytes("%stop.out");
  EXPECT_NE(list.find("CYCLE   1"), std::string::npos);
  EXPECT_EQ(list.find("CYCLE   2"), std::string::npos);
  EXPECT_NE(ReadBytes("%stop.par").find("RVAL"), std::string::npos);
}

TEST(RunEngine, AParameterWithoutDerivativeStopsTheCycles) {
  Workspace w;
  w.WriteRefinement("zero.rec");
  // The right-side widths act only in the split profile: here nothing depends on them.
  std::ofstream("zero.rec", std::ios::app)
      << "CHWT           0.000     0.000     0.000     1.000     0.000     0.000\n";
  RecordingReporter reporter;
  EXPECT_EQ(RunFile("zero.rec", reporter).status, 1);
  EXPECT_NE(ReadBytes("%zero.out").find(" Zero derivative for  RIGHT U PHASE 1"), std::string::npos);
  EXPECT_FALSE(fs::exists("%zero.par"));
}

TEST(RunEngine, DefaultNamesLieBesideTheProjectWhateverTheCurrentDirectory) {
  ScratchDir elsewhere;
  Workspace w;
  w.WriteRefinement("here.rec");
  fs::copy_file("here.rec", elsewhere.Path() / "here.rec");
  fs::copy_file("pattern.xy", elsewhere.Path() / "pattern.xy");
  RecordingReporter reporter;
  ASSERT_EQ(RunFile((elsewhere.Path() / "here.rec").string(), reporter).status, 0);
  for (const char* made : {"%here.out", "%here.par", "%here.sum", "%here.fou"}) {
    EXPECT_TRUE(fs::exists(elsewhere.Path() / made)) << made;
    EXPECT_FALSE(fs::exists(made)) << made;
  }
}

TEST(RunEngine, ProjectsOfOneFolderRefinedAtOnceGiveTheParameterFilesOfSerialRuns) {
  Workspace w;
  const std::vector<std::string> projects = {"a.rec", "b.rec", "c.rec", "d.rec"};
  std::map<std::string, std::string> serial;
  for (size_t i = 0; i < projects.size(); ++i) {
    w.WriteRefinement(projects[i], static_cast<int>(i));
    RecordingReporter reporter;
    ASSERT_EQ(RunFile(projects[i], reporter).status, 0);
    const std::string par = "%" + projects[i].substr(0, 1) + ".par";
    serial[par] = ReadBytes(par);
    fs::remove(par);
  }
  // A few rounds, each started at one moment on four threads.
  for (int round = 0; round < 3; ++round) {
    std::latch start(static_cast<std::ptrdiff_t>(projects.size()));
    std::vector<int> status(projects.size(), -1);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < projects.size(); ++i) {
      threads.emplace_back([&, i] {
        RecordingReporter reporter;
        start.arrive_and_wait();
        status[i] = RunFile(projects[i], reporter).status;
      });
    }
    for (std::thread& t : threads) t.join();
    for (size_t i = 0; i < projects.size(); ++i) EXPECT_EQ(status[i], 0) << projects[i];
    for (const auto& [par, bytes] : serial) {
      EXPECT_TRUE(ReadBytes(par) == bytes)
          << par << " differs from its serial run, round " << round;
      fs::remove(par);
    }
  }
  ExpectNoTemporaryFiles(w.Path());
}

TEST(RunEngine, AParameterFileThatCannotBeReplacedFailsTheRun) {
  Workspace w;
  w.WriteRefinement("blocked.rec");
  fs::create_directory("%blocked.par");
  RecordingReporter reporter;
  EXPECT_EQ(RunFile("blocked.rec", reporter).status, 1);
  EXPECT_TRUE(LogHas(reporter, "Error updating output parameter file"));
  EXPECT_TRUE(fs::is_directory("%blocked.par"));
  EXPECT_NE(ReadBytes("%blocked.out").find("CYCLE   1"), std::string::npos);
  ExpectNoTemporaryFiles(w.Path());
}

TEST(RunEngine, ACutOfZeroRunsEveryCycle) {
  Workspace w;
  w.WriteRefinement("all.rec");
  std::string text = ReadBytes("all.rec");
  text.replace(text.find("RELX          2 0.30"), 20, "RELX          3 0.00");
  std::ofstream("all.rec") << text;
  RecordingReporter reporter;
  ASSERT_EQ(RunFile("all.rec", reporter).status, 0);
  EXPECT_NE(ReadBytes("%all.out").find("CYCLE   3"), std::string::npos);
}

TEST(RunEngine, AFailedInputLeavesAnEarlierParameterFileByteForByte) {
  Workspace w;
  w.WriteRefinement("keep.rec");
  RecordingReporter reporter;
  ASSERT_EQ(RunFile("keep.rec", reporter).status, 0);
  const std::string par = ReadBytes("%keep.par");
  std::string text = ReadBytes("keep.rec");
  text.erase(text.find("CELL"), text.find('\n', text.find("CELL")) - text.find("CELL") + 1);
  std::ofstream("keep.rec") << text;
  EXPECT_EQ(RunFile("keep.rec", reporter).status, 1);
  EXPECT_EQ(ReadBytes("%keep.par"), par);
  EXPECT_EQ(ReadBytes("keep.rec"), text);
  EXPECT_NE(ReadBytes("%keep.out").find(" CELL record missing"), std::string::npos);
}

TEST(RunEngine, AFailureLeavesProjectAndParameterFileAlone) {
  Workspace w;
  RecordingReporter reporter;
  std::string text = ReadBytes("calculation.rec");
  text.erase(text.find("SCAL"), text.find('\n', text.find("SCAL")) - text.find("SCAL") + 1);
  std::ofstream("noscale.rec") << text;
  EXPECT_EQ(RunFile("noscale.rec", reporter).status, 1);
  EXPECT_NE(ReadBytes("%noscale.out").find("Missing scale factor for PRFPAR"), std::string::npos);
  EXPECT_EQ(ReadBytes("noscale.rec"), text);
  EXPECT_FALSE(fs::exists("%noscale.par"));

  EXPECT_EQ(RunFile("absent.rec", reporter).status, 1);
  EXPECT_TRUE(LogHas(reporter, "Error opening or reading absent.rec"));
}

TEST(RunEngine, ListBatchRunsEachProjectAndAsksToUpdateThem) {
  Workspace w;
  w.WriteRefinement("one.rec");
  w.WriteRefinement("two.rec");
  std::ofstream("runs.mlt") << "one.xyz\ntwo\n\nnot-reached\n";
  RecordingReporter reporter;
  reporter.QueueAnswer(true);
  const EngineResult result = RunFile("runs.mlt", reporter);
  ASSERT_EQ(result.status, 0);
  ASSERT_EQ(reporter.questions.size(), 1u);
  EXPECT_EQ(reporter.questions[0].title, "Update");
  EXPECT_EQ(reporter.questions[0].text, "Do you want to update all project files?");
  EXPECT_TRUE(LogHas(reporter, "one.rec updated"));
  EXPECT_TRUE(LogHas(reporter, "two.rec updated"));
  EXPECT_EQ(result.currentProject, "two.rec");
  EXPECT_EQ(ReadBytes("one.rec"), ReadBytes("%one.par"));

  RecordingReporter missing;
  EXPECT_EQ(RunFile("none.mlt", missing).status, 1);
  EXPECT_TRUE(LogHas(missing, "Error opening mlt file"));
}

TEST(RunEngine, ChainStartsEachProjectFromItsPredecessor) {
  Workspace w;
  w.WriteRefinement("first.rec");
  // The first project's cycles change, the second one gets no record lines.
  std::ofstream("chain.exp")
      << "first\nRELX          1 0.30 1.00 1.00 1.00 1.00  20.00000   0.02000  60.00000\n"
      << "\nsecond\n\n";
  RecordingReporter reporter;
  const EngineResult result = RunFile("chain.exp", reporter);
  ASSERT_EQ(result.status, 0) << ReadBytes("%first.out");
  EXPECT_TRUE(LogHas(reporter, "first.rec updated"));
  EXPECT_TRUE(LogHas(reporter, "second.rec updated"));
  EXPECT_EQ(result.currentProject, "second.rec");
  EXPECT_TRUE(reporter.questions.empty());
  EXPECT_NE(ReadBytes("first.rec").find("RELX          1"), std::string::npos);
  EXPECT_NE(ReadBytes("second.rec").find("RELX          1"), std::string::npos);

  std::ofstream("empty.exp") << "\n";
  RecordingReporter empty;
  EXPECT_EQ(RunFile("empty.exp", empty).status, 1);
  EXPECT_TRUE(LogHas(empty, "Error reading new project file name"));
}

TEST(RunEngine, EditsApplyTheirRecordsBeforeTheRun) {
  Workspace w;
  w.WriteRefinement("edit.rec");
  std::ofstream("edits.edt") << "edit\nTITL      Edited title\n\n";
  RecordingReporter reporter;
  reporter.QueueAnswer(false);
  ASSERT_EQ(RunFile("edits.edt", reporter).status, 0);
  EXPECT_NE(ReadBytes("edit.rec").find("TITL      Edited title"), std::string::npos);
  EXPECT_NE(ReadBytes("%edit.out").find("Edited title"), std::string::npos);
  EXPECT_EQ(reporter.questions.size(), 1u);
  EXPECT_FALSE(LogHas(reporter, "edit.rec updated"));
}

}  // namespace
}  // namespace kaldena
