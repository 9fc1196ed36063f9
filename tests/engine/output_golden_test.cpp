// The files of whole runs, byte for byte: list, summary and Fourier files of a calculation, a
// comparison and a short refinement. KALDENA_UPDATE_GOLDEN=1 rewrites them.
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "engine/run_engine.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ExpectGolden;
using testing::ReadBytes;
using testing::TestData;

class OutputGolden : public ::testing::TestWithParam<const char*> {};

TEST_P(OutputGolden, FilesMatch) {
  const std::string name = GetParam();
  testing::ScratchDir dir;
  for (const char* file : {"pattern.xy", "pattern.epf"}) {
    fs::copy_file(TestData(std::string("engine/input/") + file), dir.Path() / file);
  }
  std::string project;
  if (name == "refinement") {
    project = ReadBytes(TestData("engine/output/refinement.rec"));
  } else if (name == "corundum") {
    // The example project that the README runs.
    project = ReadBytes(TestData("../../examples/corundum/corundum.rec"));
    fs::copy_file(TestData("../../examples/corundum/corundum.xy"), dir.Path() / "corundum.xy");
  } else {
    project = ReadBytes(TestData("engine/input/" + name + ".rec"));
  }
  dir.Write(name + ".rec", project);
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  const int status = RunEngine({name + ".rec", false, nullptr}, reporter).status;
  fs::current_path(old);
  ASSERT_EQ(status, 0);
  std::vector<std::string> extensions = {".out", ".sum", ".fou"};
  if (name == "refinement" || name == "corundum") extensions.push_back(".par");
  for (const std::string& extension : extensions) {
    ExpectGolden(ReadBytes(dir.Path() / ("%" + name + extension)),
                 TestData("engine/output/" + name + extension));
  }
}

INSTANTIATE_TEST_SUITE_P(Runs, OutputGolden,
                         ::testing::Values("calculation", "comparison", "refinement", "corundum"));

}  // namespace
}  // namespace kaldena
