// Restraints set up through the phase dialog: the records they make, what the engine makes
// of them, and the dialog's boxes.
#include "shell/restraint_dialog.h"

#include <gtest/gtest.h>

#include "engine/restraints.h"
#include "shell/phase_checks.h"
#include "shell/phase_dialog.h"
#include "shell/shell_fixture.h"
#include "util/text.h"

namespace kaldena {
namespace {

constexpr std::string_view kSulphate =
    "PHNA          8\n"
    "SPGR      P 1\n"
    "CELL        10.0 10.0 10.0 90.0 90.0 90.0\n"
    "XYZ       S        2  0.20000  0.20000  0.20000  1.00000  1.00000  1\n"
    "XYZ       O1       1  0.28500  0.28500  0.28500  1.00000  1.00000  1\n"
    "XYZ       O2       1  0.28500  0.11500  0.11500  1.00000  1.00000  1\n"
    "XYZ       O3       1  0.11500  0.28500  0.11500  1.00000  1.00000  1\n"
    "XYZ       O4       1  0.11500  0.11500  0.28500  1.00000  1.00000  1\n"
    "XYZ       Ti       3  0.70000  0.70000  0.70000  1.00000  1.00000  1\n"
    "XYZ       O5       1  0.89600  0.70000  0.70000  1.00000  1.00000  1\n"
    "XYZ       O6       1  0.70000  0.89600  0.70000  1.00000  1.00000  1\n";

using Answer = testing::CheckedToolkit::DialogAnswer;

struct RestraintFixture : testing::ShellFixture {
  explicit RestraintFixture(std::string par = std::string(kSulphate)) {
    dir.Write("p.par", par);
    state.projectFileName = "p.rec";
    state.projectDir = dir.Path().string() + "/";
    state.parameterFileName = "p.par";
    state.currentPhase = 1;
  }
  // The restraints dialog opened from the phase dialog once for each answer, then OK or Cancel.
  void SetUp(const std::vector<Answer>& answers, int exit) {
    Answer phase{kPhaseDialog, {}, std::vector<int>(answers.size(), kPhaseRestraintsButton)};
    phase.buttons.push_back(exit);
    toolkit.QueueDialog(phase);
    for (const Answer& a : answers) toolkit.QueueDialog(a);
    EditPhaseDialog(state, toolkit);
  }
  std::vector<std::string> Lines(std::string_view key) const {
    std::vector<std::string> lines;
    for (std::string& line : testing::TextLines(Read("p.par"))) {
      if (line.starts_with(key)) lines.push_back(line);
    }
    return lines;
  }
  bool BoxShown(std::string_view title, std::string_view text) const {
    const auto& boxes = toolkit.Boxes();
    return std::any_of(boxes.begin(), boxes.end(),
                       [&](const auto& b) { return b.title == title && b.text == text; });
  }
};

// A restraint of central row `central` with the ligands typed in the ligand grid.
Answer Restraint(int central, int kind, std::vector<std::pair<std::string, std::string>> ligands,
                 std::string distance, std::string weight, std::vector<int> buttons) {
  Answer a{kRestraintsDialog,
           {{kRestraintPair, kind == kRestraintPair ? "1" : "0"},
            {kRestraintTetrahedron, kind == kRestraintTetrahedron ? "1" : "0"},
            {kRestraintOctahedron, kind == kRestraintOctahedron ? "1" : "0"},
            {kRestraintDistance, distance},
            {kRestraintWeight, weight},
            {kRestraintsWeight, "1"}},
           buttons};
  if (central > 0) a.cells[{kCentralAtomGrid, 1, central}] = "1";
  for (int row = 1; row <= static_cast<int>(ligands.size()); ++row) {
    a.cells[{kLigandGrid, 1, row}] = ligands[row - 1].first;
    a.cells[{kLigandGrid, 2, row}] = ligands[row - 1].second;
  }
  return a;
}

TEST(RestraintDialog, TetrahedronAndOctahedronMakeTheirRecordsAndLinks) {
  RestraintFixture f;
  f.SetUp({Restraint(1, kRestraintTetrahedron,
                     {{"O1", "1555"}, {"O2", "1555"}, {"O3", "1555"}, {"O4", "1555"}}, "1.48",
                     "100", {kRestraintAdd, kIdOk}),
           Restraint(6, kRestraintOctahedron,
                     {{"O5", "1555"},
                      {"O5", "1355"},
                      {"O6", "1555"},
                      {"O6", "1535"},
                      {"O5", "1556"},
                      {"O5", "1554"}},
                     "1.96", "50", {kRestraintAdd, kIdOk})},
          kIdOk);
  EXPECT_EQ(f.Lines("WRES"), std::vector<std::string>{"WRES            1.00"});
  EXPECT_EQ(f.Lines("CRES"),
            (std::vector<std::string>{"CRES      S             1.4800   100.000",
                                      "CRES      Ti            1.9600    50.000"}));
  EXPECT_EQ(f.Lines("LRES"),
            (std::vector<std::string>{
                "LRES      O1    1555 O2    1555 O3    1555 O4    1555",
                "LRES      O5    1555 O5    1355 O6    1555 O6    1535 O5    1556 O5    1554"}));

  // The engine's links of what was written: 4 legs and 6 edges, 6 legs and 12 edges.
  RecordingReporter reporter;
  RecordStore store(reporter);
  ASSERT_GT(store.jReadRecFile(f.Path("p.par")), 0);
  const RestraintSet set = ReadRestraintSet(store);
  ASSERT_EQ(set.lines.size(), 2u);
  const size_t links[2] = {10, 18};
  for (size_t i = 0; i < 2; ++i) {
    const RestraintLine& line = set.lines[i];
    EXPECT_EQ(RestraintLinks({line.central, line.distance, line.weight, line.ligands}).size(),
              links[i]);
  }
  // The grid shows a line in its own form.
  EXPECT_EQ(RestraintText(set.lines[0]),
            "S       1555   1.48  O1      1555  O2      1555  O3      1555  O4      1555");
}

TEST(RestraintDialog, BoxesSayWhatIsMissingAndNothingIsWritten) {
  RestraintFixture f;
  const std::string par = f.Read("p.par");
  f.SetUp({Restraint(0, kRestraintPair, {{"O1", "1555"}}, "1.5", "1", {kRestraintAdd, kIdCancel}),
           Restraint(1, kRestraintTetrahedron, {{"O1", "1555"}, {"O2", "1555"}, {"O3", "1555"}},
                     "1.5", "1", {kRestraintAdd, kIdOk})},
          kIdCancel);
  EXPECT_TRUE(f.BoxShown("Make a selection", "You have to select a central atom"));
  EXPECT_TRUE(f.BoxShown("Wrong number of ligands", "You must select exactly 4 ligand(s)"));
  EXPECT_EQ(f.Read("p.par"), par);

  std::string full = std::string(kSulphate) + "WRES            1.00\n";
  for (int i = 0; i < 500; ++i) full += "CRES      S             1.4800   100.000\n";
  for (int i = 0; i < 500; ++i) full += "LRES      O1    1555\n";
  RestraintFixture g(full);
  g.SetUp({Restraint(1, kRestraintPair, {{"O1", "1555"}}, "1.5", "1", {kRestraintAdd, kIdCancel})},
          kIdCancel);
  EXPECT_TRUE(g.BoxShown("Too many distances", "Only 500 distances allowed"));
}

}  // namespace
}  // namespace kaldena
