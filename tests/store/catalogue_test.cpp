#include <gtest/gtest.h>

#include "store/codeword.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

using testing::ScratchDir;

TEST(Codeword, DecodesFixedOwnAndGroups) {
  EXPECT_TRUE(Codeword(0).IsFixed());
  EXPECT_EQ(Codeword(0).Multiplier(), 0);
  EXPECT_TRUE(Codeword(1).IsOwn());
  EXPECT_EQ(Codeword(1).GroupNumber(), 0);
  EXPECT_EQ(Codeword(1).Multiplier(), 1);
  struct Case {
    float value;
    int group;
    float multiplier;
  } cases[] = {{11, 1, 1},   {21.5f, 2, 1.5f}, {-11, 1, -1},   {10.5f, 1, 0.5f},
               {-32, 3, -2}, {4001, 400, 1},   {0.5f, 0, 0.5f}};
  for (const Case& c : cases) {
    const Codeword code(c.value);
    EXPECT_TRUE(code.IsGroup()) << c.value;
    EXPECT_EQ(code.GroupNumber(), c.group) << c.value;
    EXPECT_FLOAT_EQ(code.Multiplier(), c.multiplier) << c.value;
    // Encoding gives the value back.
    EXPECT_FLOAT_EQ(Codeword::Group(c.group, c.multiplier).Value(), c.value);
  }
}

TEST(RecordLayouts, WrittenLinesHaveKeyBlanksAndFullWidth) {
  const Record scal = MakeRecord("SCAL", "e12.5,f10.3", 0.001234f, 0.5f);
  EXPECT_EQ(scal.size(), 256u);
  EXPECT_EQ(scal.substr(0, 32), "SCAL       0.12340E-02     0.500");
  const FormatArg background[] = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f};
  const std::vector<Record> bkgr = MakeRecords("BKGR", "5f10.1", background);
  ASSERT_EQ(bkgr.size(), 2u);
  EXPECT_EQ(bkgr[1].substr(0, 30), "BKGR             6.0       7.0");
  // Labels are four-character fields: a shorter text would stand right-justified.
  const FormatArg cxyz[] = {"Fe1 ", 11.0f, 0.0f};
  EXPECT_EQ(LayoutRecord("('CXYZ ',a4,1x,5f10.3)", cxyz).substr(0, 30),
            "CXYZ Fe1      11.000     0.000");
  EXPECT_EQ(MakeRecord("JOBT", "8i5", 123456).substr(0, 15), "JOBT      *****");
}

class JobRecordsTest : public ::testing::Test {
 protected:
  RecordStore& Load(std::string_view text) {
    store.jReadRecFile(dir.Write("p.rec", text).string());
    return store;
  }
  ScratchDir dir;
  RecordingReporter reporter;
  RecordStore store{reporter};
  std::vector<std::string> list;
};

TEST_F(JobRecordsTest, JobControlsKeptInBounds) {
  JobControls job;
  ASSERT_EQ(
      ReadJobControls(Load("JOBT          1    5   12   -1   -2    3    2    0\n"), job, list),
      RecordRead::kOk);
  EXPECT_EQ(job.jobType, 1);
  EXPECT_FALSE(job.IsXray());
  EXPECT_EQ(job.phases, 10);
  EXPECT_EQ(job.excludedRegions, 0);
  EXPECT_EQ(job.weighting, 2);
  EXPECT_EQ(job.mergePoints, 1);
  EXPECT_EQ(list, std::vector<std::string>{" Warning: Too many phases"});

  list.clear();
  ASSERT_EQ(ReadJobControls(Load("JOBT,0,1,0,0,31,1,0,4\n"), job, list), RecordRead::kOk);
  EXPECT_EQ(job.phases, 1);
  EXPECT_EQ(job.excludedRegions, 30);
  EXPECT_EQ(job.mergePoints, 4);
  EXPECT_EQ(list, std::vector<std::string>{" Warning: Too many excluded regions"});
}

TEST_F(JobRecordsTest, JobControlsFailures) {
  JobControls job;
  job.profile = 7;
  EXPECT_EQ(ReadJobControls(Load("TITL      x\n"), job, list), RecordRead::kMissing);
  EXPECT_EQ(ReadJobControls(Load("JOBT      2 4 one\n"), job, list), RecordRead::kBadNumbers);
  EXPECT_EQ(list,
            (std::vector<std::string>{" JOBT record missing", " Error reading JOBT      2 4 one"}));
  EXPECT_EQ(job.profile, 7);
}

TEST_F(JobRecordsTest, WrittenRecordsReadBackThroughTheStore) {
  JobControls job;
  job.jobType = 0;
  job.profile = 7;
  job.phases = 3;
  job.atomTypes = 12;
  const std::string file = dir.Write("p.rec", "TITL      t\n").string();
  const Record record = JobControlsRecord(job);
  EXPECT_EQ(store.jUpdateRec(file, std::span(&record, 1)), 0);
  EXPECT_EQ(store.jAddRec(file, std::span(&record, 1)), 2);
  store.jReadRecFile(file);
  JobControls back;
  ASSERT_EQ(ReadJobControls(store, back, list), RecordRead::kOk);
  EXPECT_EQ(back.profile, 7);
  EXPECT_EQ(back.phases, 3);
  EXPECT_EQ(back.background, -1);
  EXPECT_EQ(back.atomTypes, 12);
}

TEST_F(JobRecordsTest, TitleFormatAndFileNames) {
  Load(
      "TITL      Quartz  at 300 K\nFRMT          5\nPWDT      data/q.xy\nPWUT\n"
      "PWFO      out.fou\n");
  EXPECT_EQ(ReadTitle(store), "Quartz  at 300 K");
  int format = 0;
  EXPECT_EQ(ReadDataFormat(store, format, list), RecordRead::kOk);
  EXPECT_EQ(format, 5);
  const RunFileNames names = ReadRunFileNames(store, "/home/u/quartz.v2.rec");
  EXPECT_EQ(names.data, "data/q.xy");
  EXPECT_EQ(names.background, "");
  EXPECT_EQ(names.list, "%quartz.v2.out");
  EXPECT_EQ(names.parameters, "%quartz.v2.par");
  EXPECT_EQ(names.fourier, "out.fou");

  Load("CELL      1\n");
  EXPECT_EQ(ReadTitle(store), "UNTITLED");
  EXPECT_EQ(ReadDataFormat(store, format, list), RecordRead::kMissing);
  EXPECT_EQ(format, 1);
  const std::vector<Record> records = RunFileNameRecords(names);
  ASSERT_EQ(records.size(), 7u);
  EXPECT_EQ(records[0].substr(0, 19), "PWDT      data/q.xy");
  EXPECT_EQ(records[6].substr(0, 17), "PWFO      out.fou");
}

TEST(AtomSequence, AtomsFollowThePhaseCounts) {
  const int counts[] = {3, 0, 2};
  const AtomSequence atoms(counts);
  EXPECT_EQ(atoms.Total(), 5);
  EXPECT_EQ(atoms.First(3), 3);
  EXPECT_EQ(atoms.Count(2), 0);
  EXPECT_EQ(atoms.PhaseOf(2), 1);
  EXPECT_EQ(atoms.PhaseOf(3), 3);
  EXPECT_EQ(atoms.PhaseOf(5), 0);
}

TEST_F(JobRecordsTest, FindRecordsTakesEveryLineOfAKey) {
  Load("SCAL      1\nCELL      1\nSCAL      2\nSCAL      3\n");
  const std::vector<std::string> two = FindRecords(store, "SCAL", 2);
  ASSERT_EQ(two.size(), 2u);
  EXPECT_EQ(two[1].substr(0, 1), "2");
  EXPECT_EQ(FindRecords(store, "SCAL").size(), 1u);
}

}  // namespace
}  // namespace kaldena
