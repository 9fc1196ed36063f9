// The tools started from the menus with their dialogs: crystallinity, the peak grid of
// "Add atoms", the CIF and the CIF report of the pattern.
#include "shell/tool_routines.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/crystallinity_dialog.h"
#include "shell/menu_session.h"
#include "shell/peak_dialog.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::Session;

TEST(ToolRoutines, CrystallinityDialogKeepsItsLimitsAndResults) {
  Session s;
  ASSERT_FALSE(s.Logged("Refinement interupted"));
  s.toolkit.QueueDialog({kCrystallinityDialog,
                         {{kCrystallinityMinimum, "20"}, {kCrystallinityMaximum, "80"}},
                         {kCrystallinityCalculate, kIdOk}});
  DispatchMenu(s.shell, menu::kCrystallinity);
  const std::string par = s.Read("corundum.par");
  ASSERT_NE(par.find("CRYS           20.00     80.00"), std::string::npos);
  // Cancel keeps the record as it stands.
  s.toolkit.QueueDialog({kCrystallinityDialog, {{kCrystallinityMinimum, "30"}}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kCrystallinity);
  EXPECT_EQ(s.Read("corundum.par"), par);
}

TEST(ToolRoutines, AChosenPeakBecomesAnAtomOfPhaseOne) {
  Session s;
  DispatchMenu(s.shell, menu::kFourierCalculation);
  ASSERT_TRUE(fs::exists(s.dir.Path() / "corundum.prm"));
  s.toolkit.QueueDialog({kPeakDialog, {{kPeakChosenRow, "2"}}, {kPeakAdd}});
  DispatchMenu(s.shell, menu::kAddAtoms);
  EXPECT_TRUE(s.Logged("One atom added to phase 1"));
  EXPECT_NE(s.Read("corundum.par").find("PHNA          3"), std::string::npos);
  // Cancel adds nothing.
  const std::string par = s.Read("corundum.par");
  s.toolkit.QueueDialog({kPeakDialog, {}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kAddAtoms);
  EXPECT_EQ(s.Read("corundum.par"), par);
}

TEST(ToolRoutines, AddPeaksIsOneStepToUndo) {
  Session s;
  DispatchMenu(s.shell, menu::kFourierCalculation);
  const std::string project = s.Read("corundum.rec");
  DispatchMenu(s.shell, menu::kAddPeaks);
  ASSERT_NE(s.Read("corundum.rec"), project);
  EXPECT_EQ(s.toolkit.MenuString(menu::kUndo), "Undo Add peaks");
  const std::string added = s.Read("corundum.rec");
  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Read("corundum.rec"), project);
  DispatchMenu(s.shell, menu::kRedo);
  EXPECT_EQ(s.Read("corundum.rec"), added);
}

TEST(ToolRoutines, CifAndRawReportAreWrittenAndShown) {
  Session s;
  DispatchMenu(s.shell, menu::kCif);
  EXPECT_NE(s.Read("corundum.cif").find("_cell_length_a"), std::string::npos);
  DispatchMenu(s.shell, menu::kCifRawReport);
  EXPECT_TRUE(fs::exists(s.dir.Path() / "corundum.rcf"));
  ASSERT_GE(s.toolkit.Commands().size(), 2u);
  EXPECT_TRUE(s.toolkit.Commands()[0][1].ends_with("corundum.cif"));
  EXPECT_TRUE(s.toolkit.Commands()[1][1].ends_with("corundum.rcf"));
}

}  // namespace
}  // namespace kaldena
