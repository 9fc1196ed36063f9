// Peaks into the project: all appended (twice when run twice), or one chosen peak made the
// last atom of phase 1 with the atoms of phase 2 moved on.
#include "tools/fourier_add_peaks.h"

#include <gtest/gtest.h>

#include "store/record_store.h"
#include "support/test_files.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;

constexpr std::string_view kPeaks =
    "XYZ       P999     1    0.3127    0.5227    0.2349    0.1000    1.0000\n"
    "XYZ       N412     1    0.1000    0.2000    0.3000    0.1000    1.0000\n";

constexpr std::string_view kTwoPhases =
    "TITL      two phases\n"
    "JOBT          0    4    2   -1    0    2    0    1\n"
    "PHNA          1  0.0  0.0  1.0  1.0  0.0  0.0  0.0  0.0  1.0\n"
    "PHNA          2  0.0  0.0  1.0\n"
    "XYZ       Ti     1  0.00000  0.00000  0.00000  1.00000  0.30000  8  0  0  0\n"
    "BETA      Ti        0.01000  0.01000  0.02000  0.00000  0.00000  0.00000\n"
    "XYZ       Ce     2  0.00000  0.00000  0.00000  1.00000  0.30000 48  0  0  0\n"
    "XYZ       O      2  0.25000  0.25000  0.25000  2.00000  0.60000 24  0  0  0\n"
    "LIMP         12   0.5\n";

std::vector<std::string> Lines(const fs::path& file, std::string_view key) {
  RecordingReporter reporter;
  RecordStore store(reporter);
  EXPECT_GT(store.jReadRecFile(file.string()), 0);
  std::vector<std::string> lines;
  std::string data;
  while (store.jFindRec(key, data) == 1) lines.push_back(data);
  return lines;
}

TEST(FourierAddPeaks, AllPeaksAppendedEachTimeAndTheDistanceHook) {
  ScratchDir dir;
  const fs::path project = dir.Write("p.rec", kTwoPhases);
  dir.Write("p.prm", kPeaks);
  RecordingReporter reporter;
  std::string ranProject, ranList;
  const DistanceListRunner distances = [&](std::string_view p, std::string_view list,
                                           Reporter&) {
    ranProject = p;
    ranList = list;
    return 0;
  };
  AddAllPeaksResult result = AddAllPeaks(project.string(), distances, reporter);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.added, 2);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"2 atoms added to project file"});
  EXPECT_EQ(ranProject, project.string());
  EXPECT_EQ(ranList, (dir.Path() / "p.dis").string());
  EXPECT_EQ(result.distanceList, ranList);
  EXPECT_EQ(ReadBytes(project), std::string(kTwoPhases) + std::string(kPeaks));

  // No check for duplicates; a failing distance list is told.
  reporter.Clear();
  result = AddAllPeaks(project.string(), [](auto, auto, Reporter&) { return 1; }, reporter);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(reporter.log, (std::vector<std::string>{"2 atoms added to project file",
                                                    "Error in DISTAN"}));
  EXPECT_EQ(Lines(project, "XYZ ").size(), 7u);

  fs::remove(dir.Path() / "p.prm");
  reporter.Clear();
  EXPECT_EQ(AddAllPeaks(project.string(), {}, reporter).status, 1);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Error opening " +
                                                   (dir.Path() / "p.prm").string()});
}

TEST(FourierAddPeaks, ChosenPeakBecomesLastAtomOfPhaseOne) {
  ScratchDir dir;
  const fs::path par = dir.Write("p.par", kTwoPhases);
  const fs::path prm = dir.Write("p.prm", kPeaks);
  RecordingReporter reporter;
  std::vector<PeakEntry> peaks;
  ASSERT_EQ(ReadPeakChoices(prm.string(), peaks, reporter), AddPeakStatus::kOk);
  ASSERT_EQ(peaks.size(), 2u);
  EXPECT_EQ(peaks[1].label, "N412");
  EXPECT_FLOAT_EQ(peaks[1].z, 0.3f);
  EXPECT_EQ(PeakRowLabel(2), "002");

  // Cancel and a wrong row leave the file alone.
  EXPECT_EQ(AddPeakAsAtom(par.string(), peaks, 0, reporter), AddPeakStatus::kCancelled);
  EXPECT_EQ(AddPeakAsAtom(par.string(), peaks, 3, reporter), AddPeakStatus::kFailed);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Error      3"});
  EXPECT_EQ(ReadBytes(par), kTwoPhases);

  reporter.Clear();
  ASSERT_EQ(AddPeakAsAtom(par.string(), peaks, 1, reporter), AddPeakStatus::kOk);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"One atom added to phase 1"});

  const auto phna = Lines(par, "PHNA");
  ASSERT_EQ(phna.size(), 2u);
  int atoms = 0;
  float v[9] = {};
  ASSERT_EQ(Read(phna[0], "(I5,9F5.0)", atoms, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
                 v[8]),
            ReadStatus::kOk);
  EXPECT_EQ(atoms, 2);
  EXPECT_EQ(v[3], 1.0f);  // the halfwidth vector stays
  ASSERT_EQ(Read(phna[1], "(I5)", atoms), ReadStatus::kOk);
  EXPECT_EQ(atoms, 2);

  const auto xyz = Lines(par, "XYZ ");
  ASSERT_EQ(xyz.size(), 4u);
  std::string label;
  int type = 0, site = 0;
  float x = 0, y = 0, z = 0, occupancy = 0, b = 0;
  const char* labels[] = {"Ti  ", "P999", "Ce  ", "O   "};
  const int sites[] = {8, 1, 48, 24};
  for (int i = 0; i < 4; ++i) {
    ASSERT_EQ(Read(xyz[i], "(A4,6X,I4,5F9.0,I3)", label, type, x, y, z, occupancy, b, site),
              ReadStatus::kOk);
    EXPECT_EQ(label, labels[i]);
    EXPECT_EQ(site, sites[i]);
  }
  ASSERT_EQ(Read(xyz[1], "(A4,6X,I4,5F9.0)", label, type, x, y, z, occupancy, b),
            ReadStatus::kOk);
  EXPECT_EQ(type, kNewAtomType);
  EXPECT_FLOAT_EQ(x, 0.3127f);
  EXPECT_FLOAT_EQ(z, 0.2349f);
  EXPECT_FLOAT_EQ(occupancy, 1.0f);
  EXPECT_FLOAT_EQ(b, 1.0f);
  // Only the anisotropic atom keeps a BETA line; records of other keys stay.
  const auto beta = Lines(par, "BETA");
  ASSERT_EQ(beta.size(), 1u);
  EXPECT_EQ(beta[0].substr(0, 4), "Ti  ");
  EXPECT_EQ(Lines(par, "LIMP").size(), 1u);
}

TEST(FourierAddPeaks, EmptyOrMissingPeakFileAndUnreadableProject) {
  ScratchDir dir;
  RecordingReporter reporter;
  std::vector<PeakEntry> peaks;
  EXPECT_EQ(ReadPeakChoices(dir.Write("e.prm", "").string(), peaks, reporter),
            AddPeakStatus::kNoPeaks);
  EXPECT_EQ(ReadPeakChoices((dir.Path() / "none.prm").string(), peaks, reporter),
            AddPeakStatus::kFailed);
  EXPECT_EQ(reporter.log, (std::vector<std::string>{"No atoms read",
                                                    "Error opening Fourier peak file"}));

  std::string many;
  for (int i = 0; i < 120; ++i) many += kPeaks.substr(0, kPeaks.find('\n') + 1);
  ASSERT_EQ(ReadPeakChoices(dir.Write("m.prm", many).string(), peaks, reporter),
            AddPeakStatus::kOk);
  EXPECT_EQ(peaks.size(), 100u);

  // A project whose PHNA counts more atoms than it has is left as it is.
  const std::string broken = "PHNA          3\nXYZ       Ti     1  0.0  0.0  0.0  1.0  0.3  1\n";
  const fs::path par = dir.Write("b.par", broken);
  reporter.Clear();
  EXPECT_EQ(AddPeakAsAtom(par.string(), peaks, 1, reporter), AddPeakStatus::kFailed);
  EXPECT_EQ(ReadBytes(par), broken);
  EXPECT_EQ(AddPeakAsAtom((dir.Path() / "none.par").string(), peaks, 1, reporter),
            AddPeakStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " Error opening parfile ");
}

}  // namespace
}  // namespace kaldena
