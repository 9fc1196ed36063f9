// Whole runs of the engine: a pattern calculated from a model, then refined from a perturbed
// start, must give back the model it was made with.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "engine/run_engine.h"
#include "store/record_store.h"
#include "support/ceria_project.h"
#include "support/test_files.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::CeriaProject;
using testing::ReadBytes;
using testing::RecordValue;
using testing::ScratchDir;

TEST(Refinement, RecoversTheModelOfASimulatedPattern) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter);

  dir.Write("start.rec", CeriaProject(0, " 0.1700E-02", "  5.405000", "   0.02500", "   0.03000"));
  const EngineResult refined = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  ASSERT_EQ(refined.status, 0) << ReadBytes(dir.Path() / "%start.out");

  const fs::path par = dir.Path() / "%start.par";
  EXPECT_NEAR(RecordValue(par, "SCAL", "(2F15.0)", 0), 0.002f, 0.002f * 2e-3f);
  EXPECT_NEAR(RecordValue(par, "CELL", "(6F10.0)", 0), 5.411f, 2e-4f);
  EXPECT_NEAR(RecordValue(par, "CELL", "(6F10.0)", 2), 5.411f, 2e-4f);  // tied by the class
  EXPECT_NEAR(RecordValue(par, "HWTH", "(6F10.0)", 2), 0.015f, 0.015f * 0.02f);
  EXPECT_NEAR(RecordValue(par, "ZETT", "(6F10.0)", 0), 0.0f, 2e-3f);
  EXPECT_NEAR(RecordValue(par, "BKGR", "(5F10.0)", 0), 50.0f, 1.0f);
  const std::string list = ReadBytes(dir.Path() / "%start.out");
  EXPECT_NE(list.find("DERIVED BRAGG R-FACTOR"), std::string::npos);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
  text.replace(text.find(from), from.size(), to);
  return text;
}

TEST(Refinement, AValueGoingBelowItsLimitBlocksAnotherParameter) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter);
  // The scale (group 1) starts above 0.0022 and falls below it: W (group 2) is held from then.
  std::string start = CeriaProject(0, " 0.2600E-02", "  5.411000", "   0.02500", "   0.00000");
  start = Replaced(start, "CSCA           1.000", "CSCA          11.000");
  start = Replaced(start, "CHWT           0.000     0.000     1.000",
                   "CHWT           0.000     0.000    21.000");
  start += "BLOK          1    0.0022    2\n";
  dir.Write("start.rec", start);
  const EngineResult refined = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  ASSERT_EQ(refined.status, 0);
  const std::string list = ReadBytes(dir.Path() / "%start.out");
  const size_t blocked = list.find("    Parameter    2 blocked");
  ASSERT_NE(blocked, std::string::npos) << list;
  EXPECT_NE(list.find("*** Parameter    1 below  0.0022 ***"), std::string::npos);
  // W stands still in every cycle after the block.
  const std::string after = list.substr(blocked);
  const size_t w = after.find("CYCLE");
  ASSERT_NE(w, std::string::npos);
  const float held = RecordValue(dir.Path() / "%start.par", "HWTH", "(6F10.0)", 2);
  EXPECT_LT(std::abs(held - 0.015f), 0.0099f);            // moved in the cycles before the block
  EXPECT_EQ(after.find("W PHASE 1"), std::string::npos);  // never the largest shift again
}

}  // namespace
}  // namespace kaldena
