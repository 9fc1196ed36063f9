// The input stage on whole projects: the list file's head for four kinds of run (golden
// files), the failures of missing and unreadable records, and what each job type reads.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "engine/engine_input.h"
#include "engine/run_files.h"
#include "support/test_files.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ExpectGolden;
using testing::ReadBytes;
using testing::ScratchDir;
using testing::TestData;

// Runs the file and input stages on a project in a scratch directory, which is the current
// directory meanwhile, so that the default file names land there too.
struct InputRun {
  explicit InputRun(const std::string& projectText, const std::string& name = "project.rec")
      : store(reporter) {
    for (const char* data : {"pattern.xy", "pattern.epf"}) {
      fs::copy_file(TestData(std::string("engine/input/") + data), scratch.Path() / data);
    }
    const fs::path project = scratch.Write(name, projectText);
    const fs::path old = fs::current_path();
    fs::current_path(scratch.Path());
    files = SetUpRunFiles(project.string(), state, store, reporter);
    if (files == RunFilesStatus::kOk) status = ReadEngineInput(state, store, reporter);
    state.list.Close();
    fs::current_path(old);
  }

  // The list file as written, with the scratch directory's path made neutral.
  std::string ListText() const {
    std::string text;
    const std::string dir = scratch.Path().string() + "/";
    for (std::string line : state.list.Lines()) {
      for (size_t at; (at = line.find(dir)) != std::string::npos;) line.replace(at, dir.size(), "");
      text += line + "\n";
    }
    return text;
  }

  bool Listed(std::string_view line) const {
    for (const std::string& l : state.list.Lines()) {
      if (l == line) return true;
    }
    return false;
  }

  ScratchDir scratch;
  RecordingReporter reporter;
  RecordStore store;
  EngineState state;
  RunFilesStatus files = RunFilesStatus::kFailed;
  InputStatus status = InputStatus::kFailed;
};

std::string Project(std::string_view name) {
  return ReadBytes(TestData("engine/input/" + std::string(name) + ".rec"));
}

// The project without the lines of one key.
std::string Without(const std::string& text, std::string_view key) {
  std::string out;
  size_t begin = 0;
  while (begin < text.size()) {
    size_t end = text.find('\n', begin);
    if (end == std::string::npos) end = text.size();
    const std::string_view line(text.data() + begin, end - begin);
    if (!line.starts_with(key)) out += std::string(line) + "\n";
    begin = end + 1;
  }
  return out;
}

std::string Replace(std::string text, std::string_view from, std::string_view to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

class InputGolden : public ::testing::TestWithParam<const char*> {};

TEST_P(InputGolden, ListFileHeadMatches) {
  const std::string name = GetParam();
  InputRun run(Project(name));
  ASSERT_EQ(run.status, InputStatus::kOk) << run.ListText();
  ExpectGolden(run.ListText(), TestData("engine/input/" + name + ".out"));
}

INSTANTIATE_TEST_SUITE_P(Projects, InputGolden,
                         ::testing::Values("calculation", "neutron", "two_phases", "comparison"));

TEST(InputStage, MissingRecordsStopTheRun) {
  struct Case {
    const char* project;
    const char* key;
    const char* line;
  };
  const Case cases[] = {
      {"calculation", "JOBT", " JOBT record missing"},
      {"calculation", "ELAM", " ELAM record missing"},
      {"neutron", "WAVE", " WAVE record missing"},
      {"calculation", "RLIM", " RLIM record missing"},
      {"calculation", "RELX", " RELX record missing"},
      {"two_phases", "EXRG", " EXRG record missing"},
      {"two_phases", "AXTB", " AXTB missing"},
      {"two_phases", "BXTB", " BXTB missing"},
      {"two_phases", "CXTB", " CXTB missing"},
      {"two_phases", "POLY", " POLY record missing"},
      {"calculation", "ANOM", " Error reading anom"},
      {"calculation", "PHNA", "PHNA record missing"},
      {"calculation", "SPGR", " SPGR record missing"},
      {"calculation", "XYZ ", " XYZ record missing"},
      {"calculation", "CELL", " CELL record missing"},
  };
  for (const Case& c : cases) {
    InputRun run(Without(Project(c.project), c.key));
    EXPECT_EQ(run.status, InputStatus::kFailed) << c.key;
    EXPECT_TRUE(run.Listed(c.line)) << c.key << "\n" << run.ListText();
  }
}

TEST(InputStage, BadNumbersAndJobTypesFail) {
  InputRun bad(Replace(Project("calculation"), "RLIM        10.00000", "RLIM        1x.00000"));
  EXPECT_EQ(bad.status, InputStatus::kFailed);
  EXPECT_TRUE(bad.ListText().find(" Error reading RLIM") != std::string::npos) << bad.ListText();

  // Infinity, NaN and numbers beyond the range of a float are no values: the record is named.
  for (const auto& [from, to, named] :
       {std::tuple{"RLIM        10.00000", "RLIM             nan", " Error reading RLIM"},
        std::tuple{"CELL        4.758900", "CELL       -Infinity", " Error reading CELL"},
        std::tuple{"ELAM        1.540510", "ELAM       1.540E+39", " Error reading ELAM"}}) {
    InputRun beyond(Replace(Project("calculation"), from, to));
    EXPECT_EQ(beyond.status, InputStatus::kFailed) << to;
    EXPECT_TRUE(beyond.ListText().find(named) != std::string::npos) << beyond.ListText();
  }

  InputRun wrong(Replace(Project("calculation"), "JOBT          2", "JOBT          6"));
  EXPECT_EQ(wrong.status, InputStatus::kFailed);
  EXPECT_TRUE(wrong.Listed(" Wrong JOBTYP"));

  InputRun none(Replace(Project("calculation"), "0    2    0    1", "0    0    0    1"));
  EXPECT_EQ(none.status, InputStatus::kFailed);
  EXPECT_TRUE(none.Listed(" No scattering sets given"));

  InputRun dark(Replace(Project("calculation"), "ELAM        1.540510", "ELAM        0.000000"));
  EXPECT_EQ(dark.status, InputStatus::kFailed);
  EXPECT_TRUE(dark.Listed(" Wavelength not above 0"));

  InputRun zeros(Replace(Project("two_phases"), "POLY      1.999000E+01  2.000000E-02", "POLY"));
  EXPECT_EQ(zeros.status, InputStatus::kFailed);
  EXPECT_TRUE(zeros.Listed("No polynomial coefficients found"));
}

TEST(InputStage, JobTypesReadWhatTheyNeed) {
  // A calculation reads no codewords and no pattern: its points come from RELX.
  const std::string calculationWithCodes =
      Project("calculation") + "CXYZ Al          1.000     1.000     1.000     0.000     1.000\n";
  InputRun calculation(calculationWithCodes);
  ASSERT_EQ(calculation.status, InputStatus::kOk);
  EXPECT_EQ(calculation.state.controls.jobType, 3);
  EXPECT_EQ(calculation.state.parameters, 0);
  // From one step above the start of RELX to its stop, 20 to 60 by 0.02.
  EXPECT_EQ(calculation.state.points.count, 2000);

  // A comparison reads the pattern and holds the range inside it, but refines nothing.
  InputRun comparison(Project("comparison"));
  ASSERT_EQ(comparison.status, InputStatus::kOk);
  EXPECT_EQ(comparison.state.controls.jobType, 3);
  EXPECT_FALSE(comparison.state.controls.calculation);
  EXPECT_EQ(comparison.state.parameters, 0);
  EXPECT_TRUE(comparison.Listed(" Pattern start .gt. refinement start. Reset"));
  EXPECT_TRUE(comparison.Listed(" Pattern end .lt. refinement end. Reset"));
  EXPECT_GT(comparison.state.points.count, 200);

  // A refinement numbers its parameters; a new run starts from nothing.
  InputRun refinement(Project("neutron"));
  ASSERT_EQ(refinement.status, InputStatus::kOk) << refinement.ListText();
  EXPECT_GT(refinement.state.parameters, 0);
  ZeroEngineState(refinement.state);
  EXPECT_EQ(refinement.state.parameters, 0);
  EXPECT_TRUE(refinement.state.atoms.empty());
  EXPECT_EQ(refinement.state.reflections.Count(), 0);
}

TEST(InputStage, PhaseDefaultsAndAtomRules) {
  InputRun run(Project("comparison"));
  ASSERT_EQ(run.status, InputStatus::kOk);
  const Phase& phase = run.state.phases[0];
  // Vectors of all zeros become 0 0 1; orientation values of 0 mean no correction.
  EXPECT_EQ(phase.vectors[0], (std::array<float, 3>{0, 0, 1}));
  EXPECT_FLOAT_EQ(phase.values[kOrientation1].value, 1.0f);
  // The split profile keeps its right side.
  EXPECT_FLOAT_EQ(phase.values[kRightHalfwidthU + 2].value, 0.03f);
  EXPECT_FLOAT_EQ(phase.values[kRightShapeA].value, 0.6f);
  // The occupation is kept per operator.
  EXPECT_FLOAT_EQ(run.state.atoms[0].values[kAtomOccupation].value, 1.0f / 48.0f);

  // Without HWTH and PKSH the defaults hold, and the right side is cleared for profile 1.
  InputRun defaults(Project("calculation"));
  ASSERT_EQ(defaults.status, InputStatus::kOk);
  const auto& v = defaults.state.phases[0].values;
  EXPECT_FLOAT_EQ(v[kShapeA].value, 0.5f);
  EXPECT_FLOAT_EQ(v[kRightShapeA].value, 0.0f);
  EXPECT_FLOAT_EQ(v[kRightHalfwidthU + 2].value, 0.0f);
}

// A blank or zero site factor is the site's multiplicity factor in the space group (corundum,
// R -3 C: Al on 12c has 3, O on 18e 2), told in the list file; a written one stands.
TEST(InputStage, BlankSiteFactorsComeFromTheSpaceGroup) {
  std::string text = Project("calculation");
  text = Replace(text, "0.31000  3  0  0  0", "0.31000     0  0  0");
  text = Replace(text, "0.33000  2  0  0  0", "0.33000  0  0  0  0");
  InputRun run(text);
  ASSERT_EQ(run.status, InputStatus::kOk) << run.ListText();
  EXPECT_EQ(run.state.atoms[0].siteFactor, 3);
  EXPECT_EQ(run.state.atoms[1].siteFactor, 2);
  EXPECT_FLOAT_EQ(run.state.atoms[0].values[kAtomOccupation].value, 1.0f / 3.0f);
  EXPECT_TRUE(run.Listed(" Site factor of Al   not given:   3 from the space group"));
  EXPECT_TRUE(run.Listed(" Site factor of O    not given:   2 from the space group"));

  InputRun written(Replace(Project("calculation"), "0.31000  3", "0.31000  1"));
  ASSERT_EQ(written.status, InputStatus::kOk);
  EXPECT_EQ(written.state.atoms[0].siteFactor, 1);
}

}  // namespace
}  // namespace kaldena
