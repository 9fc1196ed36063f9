// The file stage of a run: names and their defaults, the directory rule, the cut of a long
// extension, the exact layout of the temporary parameter file, the failures and a clean
// second run after ZeroEngineState.
#include "engine/run_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/test_files.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;

std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// A line as a record file holds it: 256 characters and its end.
std::string Row(std::string line) {
  line.resize(256, ' ');
  return line + "\n";
}

// Runs the test's body in another current directory, which the default names do not follow.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const fs::path& path) : old_(fs::current_path()) {
    fs::current_path(path);
  }
  ~CurrentDirectory() { fs::current_path(old_); }

 private:
  fs::path old_;
};

struct RunSetUp {
  explicit RunSetUp(const fs::path& project) : store(reporter) {
    status = SetUpRunFiles(project.string(), state, store, reporter);
    state.list.Close();
  }
  RecordingReporter reporter;
  RecordStore store;
  EngineState state;
  RunFilesStatus status;
};

const std::string kMinimal = Lines({"TITL      minimal", "SCAL      1.0", "END"});

TEST(RunFiles, DefaultsAndTheTemporaryFileLieBesideTheProject) {
  ScratchDir dir;
  fs::create_directory(dir.Path() / "sub");
  const fs::path project = dir.Write("sub/quartz.rec", kMinimal);
  const std::string sub = (dir.Path() / "sub").string() + "/";
  // What a killed run of this project and one of another left behind.
  dir.Write("sub/%quartz.99999-1.tmp", "");
  dir.Write("sub/%other.99999-1.tmp", "");
  CurrentDirectory here(dir.Path());

  RunSetUp run(project);
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.projectFile, project.string());
  EXPECT_EQ(run.state.directory, (dir.Path() / "sub").string() + "/");
  EXPECT_EQ(run.state.baseName, "quartz");
  EXPECT_EQ(run.state.files.data, "");
  EXPECT_EQ(run.state.files.background, "");
  EXPECT_EQ(run.state.files.weights, "");
  EXPECT_EQ(run.state.backgroundFileMarker, 0);
  EXPECT_EQ(run.state.files.parameters, sub + "%quartz.par");
  EXPECT_EQ(run.state.files.list, sub + "%quartz.out");
  EXPECT_EQ(run.state.files.summary, sub + "%quartz.sum");
  EXPECT_EQ(run.state.files.fourier, sub + "%quartz.fou");
  // The run's own temporary file: named from the project, the process and a count.
  const std::string prefix = sub + "%quartz." + std::to_string(::getpid()) + "-";
  EXPECT_EQ(run.state.temporary.Name().substr(0, prefix.size()), prefix);
  EXPECT_TRUE(run.state.temporary.Name().ends_with(".tmp"));
  EXPECT_TRUE(fs::exists(run.state.temporary.Name()));
  EXPECT_FALSE(fs::exists(dir.Path() / "sub" / "%quartz.99999-1.tmp"));
  EXPECT_TRUE(fs::exists(dir.Path() / "sub" / "%other.99999-1.tmp"));
  EXPECT_TRUE(fs::exists(dir.Path() / "sub" / "%quartz.out"));
  EXPECT_FALSE(fs::exists(dir.Path() / "%quartz.out"));
  EXPECT_TRUE(run.reporter.log.empty());
  EXPECT_TRUE(run.reporter.messages.empty());
}

TEST(RunFiles, InputNamesTakeTheProjectDirectoryUnlessTheyHaveOneOfTheirOwn) {
  ScratchDir dir;
  fs::create_directory(dir.Path() / "sums");
  const fs::path project = dir.Write("p.rec", Lines({
                                                  "PWDT      data.gdf",
                                                  "PWBG      back/bg.txt",
                                                  "PWWG      C:weights.dat",
                                                  "PWPR      refined.par",
                                                  "PWUT      listing.out",
                                                  "PWSM      sums/p.sum",
                                                  "PWFO      win\\p.fou",
                                                  "SCAL      1.0",
                                              }));
  const std::string d = dir.Path().string() + "/";

  RunSetUp run(project);
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.files.data, d + "data.gdf");
  EXPECT_EQ(run.state.files.background, "back/bg.txt");
  EXPECT_EQ(run.state.backgroundFileMarker, 12);
  EXPECT_EQ(run.state.files.weights, "C:weights.dat");
  EXPECT_EQ(run.state.files.parameters, d + "refined.par");
  EXPECT_EQ(run.state.files.list, d + "listing.out");
  // Outputs lie in the project's folder or below it, whatever the current directory.
  EXPECT_EQ(run.state.files.summary, d + "sums/p.sum");
  EXPECT_EQ(run.state.files.fourier, d + "win\\p.fou");

  // The list file is open at the PWUT name: what the run writes lands there.
  RecordingReporter reporter;
  RecordStore store(reporter);
  EngineState state;
  ASSERT_EQ(SetUpRunFiles(project.string(), state, store, reporter), RunFilesStatus::kOk);
  ASSERT_TRUE(state.list.IsOpen());
  state.list.Line(" heading");
  state.list.Close();
  EXPECT_EQ(ReadBytes(dir.Path() / "listing.out"), " heading\n");
}

TEST(RunFiles, TheTemporaryFileLiesBesideAParameterFileOfAnotherDirectory) {
  ScratchDir dir;
  fs::create_directory(dir.Path() / "out");
  const std::string out = (dir.Path() / "out").string() + "/";
  RunSetUp run(dir.Write("p.rec", Lines({"PWPR      out/p.par", "SCAL      1.0"})));
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.temporary.Name().substr(0, out.size() + 3), out + "%p.");
}

TEST(RunFiles, OutputNamesThatLeaveTheProjectsFolderAreRefused) {
  ScratchDir dir;
  fs::create_directory(dir.Path() / "shared");
  const fs::path victim = dir.Write("victim", "keep\n");
  using Case = std::pair<std::string, std::string>;
  for (const auto& [record, named] :
       {Case{"PWUT      ../victim", "PWUT names a file outside the project's folder: ../victim"},
        Case{"PWPR      " + victim.string(),
             "PWPR names a file outside the project's folder: " + victim.string()},
        Case{"PWSM      sub\\..\\..\\victim",
             "PWSM names a file outside the project's folder: "
             "sub\\..\\..\\victim"},
        Case{"PWFO      C:victim", "PWFO names a file outside the project's folder: C:victim"}}) {
    const fs::path project = dir.Write("shared/p.rec", Lines({record, "SCAL      1.0"}));
    RunSetUp run(project);
    EXPECT_EQ(run.status, RunFilesStatus::kFailed) << record;
    EXPECT_EQ(run.reporter.log, std::vector<std::string>{named});
    EXPECT_FALSE(run.state.list.IsOpen());
    EXPECT_FALSE(run.state.temporary.Exists());
  }
  EXPECT_EQ(ReadBytes(victim), "keep\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path() / "shared"), fs::directory_iterator()),
            1);
}

TEST(RunFiles, BlankNameRecordsFallBackOnTheDefaults) {
  ScratchDir dir;
  const fs::path project = dir.Write(
      "blank.rec", Lines({"PWDT", "PWBG          ", "PWPR      ", "PWUT      ", "SCAL      1.0"}));
  RunSetUp run(project);
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.files.data, "");
  EXPECT_EQ(run.state.files.background, "");
  EXPECT_EQ(run.state.backgroundFileMarker, 0);
  EXPECT_EQ(run.state.files.parameters, (dir.Path() / "%blank.par").string());
  EXPECT_EQ(run.state.files.list, (dir.Path() / "%blank.out").string());
}

TEST(RunFiles, ProjectNamesAreCutBehindAThreeCharacterExtension) {
  EXPECT_EQ(CutProjectName("a.rec1"), "a.rec");
  EXPECT_EQ(CutProjectName("dir/a.recording   "), "dir/a.rec");
  EXPECT_EQ(CutProjectName("a.rec"), "a.rec");
  EXPECT_EQ(CutProjectName("a.b"), "a.b");
  EXPECT_EQ(CutProjectName("noextension"), "noextension");
  // A point of a directory starts no extension.
  EXPECT_EQ(CutProjectName("run.d/project"), "run.d/project");
  EXPECT_EQ(CutProjectName("run.d\\project"), "run.d\\project");

  ScratchDir dir;
  const fs::path project = dir.Write("a.rec", kMinimal);
  RunSetUp run(project.string() + "1");
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.projectFile, project.string());
  EXPECT_EQ(run.state.baseName, "a");
}

TEST(RunFiles, BaseNameIsHeldToEightyCharacters) {
  ScratchDir dir;
  const std::string longName(90, 'b');
  const fs::path project = dir.Write(longName + ".rec", kMinimal);
  RunSetUp run(project);
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(run.state.baseName, std::string(80, 'b'));
  EXPECT_EQ(run.state.files.parameters,
            (dir.Path() / ("%" + std::string(80, 'b') + ".par")).string());
}

TEST(RunFiles, TemporaryFileHoldsInputThenMarkerThenOldResults) {
  ScratchDir dir;
  const fs::path project = dir.Write("t.rec", Lines({
                                                  "TITL      sample",
                                                  "SCAL        1.5000  0.0",
                                                  "JOBT        0    4    1",
                                                  "CELL        5.0  5.0  5.0 90.0 90.0 90.0",
                                                  "RVAL      12.3",
                                                  "PHNA      first phase",
                                                  "XYZ,Fe1 1 .25 .25 .25 1 1",
                                                  "xyz       O1   .1 .2 .3 1 1",
                                                  "SCAL        2.5000  0.0",
                                                  "BGSC      1.0",
                                                  "ANOM      Fe",
                                                  "END",
                                                  "TITL      behind the end",
                                                  "CELL      behind the end",
                                              }));
  RunSetUp run(project);
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  EXPECT_EQ(ReadBytes(run.state.temporary.Name()),
            Row("TITL      sample") + Row("JOBT        0    4    1") +
                Row("PHNA      first phase") + Row("ANOM      Fe") +
                // the marker
                Row("SCAL        1.5000  0.0") +
                // the old results, RVAL gone
                Row("SCAL        1.5000  0.0") + Row("CELL        5.0  5.0  5.0 90.0 90.0 90.0") +
                Row("XYZ,Fe1 1 .25 .25 .25 1 1") + Row("xyz       O1   .1 .2 .3 1 1") +
                Row("SCAL        2.5000  0.0") + Row("BGSC      1.0"));
}

TEST(RunFiles, CopyReadsAnyLineEndAndFindsTheMarkerBehindTheEndLine) {
  std::istringstream project("TITL      x\r\nRVAL      1\rCELL      c\r\nEND\r\nSCAL      late\n");
  std::ostringstream temporary;
  ListFile list;
  EXPECT_EQ(CopyProjectToTemporary(project, temporary, list), RunFilesStatus::kOk);
  EXPECT_EQ(temporary.str(), Row("TITL      x") + Row("SCAL      late") + Row("CELL      c"));
  EXPECT_TRUE(list.Lines().empty());

  // A file without an end line is copied to its last line.
  std::istringstream open("SCAL      1\nTITL      t");
  std::ostringstream out;
  EXPECT_EQ(CopyProjectToTemporary(open, out, list), RunFilesStatus::kOk);
  EXPECT_EQ(out.str(), Row("TITL      t") + Row("SCAL      1") + Row("SCAL      1"));

  // Keys fold case as the record store's finds do: a lower-case scale line is the marker.
  std::istringstream lower("scal      2\nrval      0\n");
  std::ostringstream marked;
  EXPECT_EQ(CopyProjectToTemporary(lower, marked, list), RunFilesStatus::kOk);
  EXPECT_EQ(marked.str(), Row("scal      2") + Row("scal      2"));
  EXPECT_TRUE(list.Lines().empty());
}

TEST(RunFiles, ProjectWithoutScaleFactorFailsWithTheReasonInTheListFile) {
  ScratchDir dir;
  const fs::path project = dir.Write(
      "noscal.rec", Lines({"TITL      no scale", "PWUT      why.out", "SDSC      0.1", "END"}));
  RunSetUp run(project);
  EXPECT_EQ(run.status, RunFilesStatus::kFailed);
  EXPECT_EQ(run.state.list.Lines(), std::vector<std::string>{"Missing scale factor for PRFPAR"});
  EXPECT_EQ(ReadBytes(dir.Path() / "why.out"), "Missing scale factor for PRFPAR\n");
  EXPECT_TRUE(run.reporter.messages.empty());
}

TEST(RunFiles, FailuresToOpenAreReported) {
  ScratchDir dir;
  {
    RunSetUp run(dir.Path() / "absent.rec");
    EXPECT_EQ(run.status, RunFilesStatus::kFailed);
    EXPECT_EQ(run.reporter.log, std::vector<std::string>{"Error opening or reading " +
                                                         (dir.Path() / "absent.rec").string()});
    EXPECT_FALSE(run.state.temporary.Exists());
  }
  {
    const fs::path empty = dir.Write("empty.rec", "");
    RunSetUp run(empty);
    EXPECT_EQ(run.status, RunFilesStatus::kFailed);
    EXPECT_EQ(run.reporter.log,
              std::vector<std::string>{"Error opening or reading " + empty.string()});
  }
  {
    // A project read through the directory of open files, where no file can be made (a
    // read-only directory is none to the superuser).
    const fs::path project = dir.Write("p.rec", kMinimal);
    const int descriptor = ::open(project.c_str(), O_RDONLY);
    ASSERT_GE(descriptor, 0);
    RunSetUp run("/proc/self/fd/" + std::to_string(descriptor));
    ::close(descriptor);
    EXPECT_EQ(run.status, RunFilesStatus::kFailed);
    const RecordingReporter::Message box{"Error", "Error opening temporary file"};
    EXPECT_EQ(run.reporter.messages, std::vector<RecordingReporter::Message>{box});
  }
  {
    RunSetUp run(dir.Write("l.rec", Lines({"PWUT      missing/dir/l.out", "SCAL      1.0"})));
    EXPECT_EQ(run.status, RunFilesStatus::kFailed);
    const RecordingReporter::Message box{"Error", "Error opening list file"};
    EXPECT_EQ(run.reporter.messages, std::vector<RecordingReporter::Message>{box});
    EXPECT_FALSE(run.state.list.IsOpen());
  }
}

TEST(RunFiles, LoadedTableStaysForTheInputStage) {
  ScratchDir dir;
  RunSetUp run(
      dir.Write("k.rec", Lines({"TITL      kept", "PWDT      d.gdf", "SCAL      1.0", "END"})));
  ASSERT_EQ(run.status, RunFilesStatus::kOk);
  std::string data;
  ASSERT_EQ(run.store.jFindRec("TITL", data), 1);
  EXPECT_EQ(Trimmed(data), "kept");
  ASSERT_EQ(run.store.jFindRec("SCAL", data), 1);
  EXPECT_EQ(run.store.jFindRec("PWDT", data), 0);  // taken by the file stage
}

TEST(RunFiles, SecondRunAfterZeroingSeesNothingOfTheFirst) {
  ScratchDir dir;
  const fs::path first =
      dir.Write("first.rec", Lines({"PWDT      one.gdf", "PWBG      one.bg", "PWWG      one.w",
                                    "PWPR      one.par", "PWUT      one.out", "SCAL      1.0"}));
  const fs::path second = dir.Write("second.rec", Lines({"TITL      two", "SDSC      0.1"}));

  RecordingReporter reporter;
  RecordStore store(reporter);
  EngineState state;
  state.debug = true;
  ZeroEngineState(state);
  ASSERT_EQ(SetUpRunFiles(first.string(), state, store, reporter), RunFilesStatus::kOk);
  state.list.Line(" first run");
  state.parameters = 7;

  const std::string firstTemporary = state.temporary.Name();
  ZeroEngineState(state);
  EXPECT_FALSE(fs::exists(firstTemporary));  // the reset removes the first run's file
  EXPECT_TRUE(state.debug);                  // the caller's flag survives the reset
  EXPECT_FALSE(state.list.IsOpen());
  EXPECT_TRUE(state.list.Lines().empty());
  EXPECT_EQ(state.parameters, 0);
  EXPECT_EQ(state.files.data, "");

  EXPECT_EQ(SetUpRunFiles(second.string(), state, store, reporter), RunFilesStatus::kFailed);
  EXPECT_EQ(state.projectFile, second.string());
  EXPECT_EQ(state.baseName, "second");
  EXPECT_EQ(state.files.data, "");
  EXPECT_EQ(state.files.background, "");
  EXPECT_EQ(state.files.weights, "");
  EXPECT_EQ(state.backgroundFileMarker, 0);
  EXPECT_EQ(state.files.parameters, (dir.Path() / "%second.par").string());
  EXPECT_EQ(state.files.list, (dir.Path() / "%second.out").string());
  EXPECT_EQ(state.list.Lines(), std::vector<std::string>{"Missing scale factor for PRFPAR"});
  state.list.Close();
  EXPECT_EQ(ReadBytes(dir.Path() / "one.out"), " first run\n");
  EXPECT_EQ(ReadBytes(dir.Path() / "%second.out"), "Missing scale factor for PRFPAR\n");
  // The second table holds the second project only.
  std::string data;
  EXPECT_EQ(store.jFindRec("TITL", data), 1);
  EXPECT_EQ(store.jFindRec("PWPR", data), 0);
}

}  // namespace
}  // namespace kaldena
