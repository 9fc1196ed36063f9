#include "store/record_store.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "support/test_files.h"
#include "util/limits.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

using testing::ReadBytes;
using testing::ScratchDir;

std::string Trim(const std::string& s) { return s.substr(0, s.find_last_not_of(' ') + 1); }

class RecordStoreTest : public ::testing::Test {
 protected:
  // Loads `text` as a record file and returns the load's count.
  int Load(std::string_view text) { return store.jReadRecFile(dir.Write("p.rec", text).string()); }
  std::string Find(std::string_view key) {
    std::string data;
    return store.jFindRec(key, data) == 1 ? Trim(data) : "<none>";
  }
  std::vector<std::string> FileLines() {
    std::vector<std::string> lines;
    std::istringstream in(ReadBytes(dir.Path() / "p.rec"));
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

  ScratchDir dir;
  RecordingReporter reporter;
  RecordStore store{reporter};
};

TEST_F(RecordStoreTest, EndOfFileAndEndLines) {
  // Without an end line the loader supplies one, and counts it.
  EXPECT_EQ(Load("TITL      A\nCELL      1 2 3\n"), 3);
  EXPECT_EQ(Find("CELL"), "1,2,3");
  EXPECT_EQ(Find("ZZZZ"), "<none>");
  // A lower-case end line ends the file; lines behind it are not read.
  EXPECT_EQ(Load("cell      4 5 6\nend\nCELL      7 8 9\n"), 2);
  EXPECT_EQ(Find("CELL"), "4,5,6");
  EXPECT_EQ(Find("CELL"), "<none>");
  // The last line may lack its line end.
  EXPECT_EQ(Load("TITL      A\nSCAL      1.5"), 3);
  EXPECT_EQ(Find("scal"), "1.5");
  EXPECT_TRUE(reporter.messages.empty());
}

TEST_F(RecordStoreTest, FindsAreDestructiveAndInFileOrder) {
  Load("XYZ       Fe1   1  0.25000  0.25000\nSCAL      1\nXYZ       O1    2  0.1\n");
  std::string data;
  ASSERT_EQ(store.jFindRec("XYZ ", data), 1);
  EXPECT_EQ(data.size(), 256u);
  EXPECT_EQ(data.substr(0, 10), "Fe1       ");
  EXPECT_EQ(Trim(data.substr(10)), "1,0.25000,0.25000");
  ASSERT_EQ(store.jFindRec("XYZ ", data), 1);
  EXPECT_EQ(data.substr(0, 10), "O1        ");
  EXPECT_EQ(store.jFindRec("XYZ ", data), 0);
  EXPECT_EQ(Find("SCAL"), "1");
}

TEST_F(RecordStoreTest, DelimitersInTheKeyColumns) {
  Load(
      "CELL,5.43,5.43,5.43\nCELL      5.43 5.43 5.43\nCELL\t 5.43\t5.43   5.43\n"
      "CELL  ,   5.43, 5.43 ,5.43\n");
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Find("CELL"), "5.43,5.43,5.43") << "line " << i + 1;
}

TEST_F(RecordStoreTest, AtomLabelsAreReadAlikeInAllForms) {
  Load(
      "XYZ,Fe1 1 .25 .25 .25 1 1\n"
      "XYZ       Fe1 1 .25 .25 .25 1 1\n"
      "XYZ       Fe1   1  0.25000  0.25000  0.25000  1.00000  1.00000\n"
      "XYZ       Fe1,1,.25,.25,.25,1,1\n"
      "XYZ   ,Fe1\t1 .25 .25 .25 1 1\n");
  std::string first;
  ASSERT_EQ(store.jFindRec("XYZ ", first), 1);
  EXPECT_EQ(first.substr(0, 10), "Fe1       ");
  EXPECT_EQ(Trim(first.substr(10)), "1,.25,.25,.25,1,1");
  for (int i = 2; i <= 5; ++i) {
    std::string data;
    ASSERT_EQ(store.jFindRec("XYZ ", data), 1);
    EXPECT_EQ(data.substr(0, 10), "Fe1       ") << "line " << i;
  }
  // An XYZ label ends at a digit from column 15 on; other labels take all ten columns.
  Load("XYZ       Oxygen12 0.5\nBETA      O1 0.5 0.25\n");
  EXPECT_EQ(Find("XYZ"), "Oxygen    12,0.5");
  std::string beta;
  ASSERT_EQ(store.jFindRec("BETA", beta), 1);
  EXPECT_EQ(beta.substr(0, 11), "O1 0.5 0.25");
}

TEST_F(RecordStoreTest, LabelCommentInKeyFieldIsIgnored) {
  Load("CXYZ Fe1  11.000 0 0 0 0\n");
  EXPECT_EQ(Find("CXYZ"), "11.000,0,0,0,0");
}

TEST_F(RecordStoreTest, TextRecordsKeepTheirBlanks) {
  Load("TITL      Iron  oxide,   run 2\nPHTI      12\t3 K\nLRES      Fe1      1 O1       2\n");
  EXPECT_EQ(Find("TITL"), "Iron  oxide,   run 2");
  EXPECT_EQ(Find("PHTI"), "12 3 K");  // the tab before the letters has become a blank
  EXPECT_EQ(Find("LRES"), "Fe1      1 O1       2");
}

TEST_F(RecordStoreTest, BadInputNeverCrashes) {
  EXPECT_EQ(Load(""), -1);
  ASSERT_EQ(reporter.messages.size(), 1u);
  EXPECT_EQ(reporter.messages[0], (RecordingReporter::Message{"Error", "Error reading recfile"}));

  reporter.Clear();
  EXPECT_EQ(store.jReadRecFile((dir.Path() / "absent.rec").string()), -2);
  ASSERT_EQ(reporter.messages.size(), 1u);
  EXPECT_EQ(reporter.messages[0].title, "Error opening");
  EXPECT_TRUE(store.TableStands());
  EXPECT_EQ(Find("TITL"), "<none>");

  std::string binary;
  for (int i = 0; i < 3000; ++i) binary.push_back(static_cast<char>((i * 37) % 256));
  EXPECT_GT(Load(binary), 0);
  EXPECT_EQ(Find("CELL"), "<none>");

  const std::string longLine = "CELL      1 2 3" + std::string(10000, '7') + "\n";
  EXPECT_EQ(Load(longLine), 2);
  std::string data;
  ASSERT_EQ(store.jFindRec("CELL", data), 1);
  EXPECT_EQ(data.size(), 256u);

  EXPECT_EQ(Load("TITL      Caf\xc3\xa9 \xff\nCELL\xe9     1 2\nCELL      3\n"), 4);
  EXPECT_EQ(Find("TITL"), "Caf\xc3\xa9 \xff");
  EXPECT_EQ(Find("CELL"), "1,2");
  EXPECT_EQ(Find("CELL"), "3");
}

TEST_F(RecordStoreTest, LineEndsOfEveryKind) {
  EXPECT_EQ(Load("TITL      A\r\nCELL      1 2\r\nCELL      3\r4\nEND\r\n"), 5);
  EXPECT_EQ(Find("TITL"), "A");
  EXPECT_EQ(Find("CELL"), "1,2");
  EXPECT_EQ(Find("CELL"), "3");
  // A blank line between CRLF ends is a line of its own.
  EXPECT_EQ(Load("TITL      A\r\n\r\nSCAL      2\r\n"), 4);
  EXPECT_EQ(Find("SCAL"), "2");
}

TEST_F(RecordStoreTest, FullTableAndLongerFiles) {
  std::string text;
  for (int i = 1; i <= kRecordFileRows; ++i) text += "BKGR      " + std::to_string(i) + "\n";
  EXPECT_EQ(Load(text), kRecordFileRows);
  // Row 1100 answers any key when no end row stands before it.
  EXPECT_EQ(Find("ZZZZ"), "1100");
  EXPECT_EQ(Find("ZZZZ"), "<none>");

  // Lines behind the table are never dropped by a rewrite: the rewrite is refused.
  const std::string longer = text + "CELL      1 2 3\n";
  const auto file = dir.Write("p.rec", longer);
  EXPECT_EQ(store.jReadRecFile(file.string()), kRecordFileRows);
  reporter.Clear();
  const Record scale = PadRecord("SCAL      2");
  EXPECT_EQ(store.jAddRec(file.string(), std::span(&scale, 1)), 0);
  EXPECT_EQ(reporter.messages.back().title, "Error updating");
  EXPECT_EQ(ReadBytes(file), longer);
}

TEST_F(RecordStoreTest, UpdateReplacesAllLinesOfTheNamedKeys) {
  Load("TITL      T\nCELL      1\nSCAL      1\nCELL      2\nXYZ       O1 1\nEND\n");
  const std::string file = (dir.Path() / "p.rec").string();
  const std::vector<Record> records = {PadRecord("CELL      7"), PadRecord("CELL      8"),
                                       PadRecord("XYZ       Fe1 3")};
  EXPECT_EQ(store.jUpdateRec(file, records), 3);
  EXPECT_FALSE(store.TableStands());
  const std::vector<std::string> lines = FileLines();
  ASSERT_EQ(lines.size(), 5u);
  const char* expected[] = {"TITL      T", "CELL      7", "CELL      8", "XYZ       Fe1 3",
                            "SCAL      1"};
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].size(), 256u);
    EXPECT_EQ(Trim(lines[i]), expected[i]);
  }
}

TEST_F(RecordStoreTest, UpdateWithBlankDataDeletesAndMissingKeyIsAdded) {
  Load("TITL      T\nPWBG      back.xy\nSCAL      1\n");
  const std::string file = (dir.Path() / "p.rec").string();
  const Record blank = PadRecord("PWBG      ");
  EXPECT_EQ(store.jUpdateRec(file, std::span(&blank, 1)), 0);
  EXPECT_EQ(FileLines().size(), 2u);

  const Record cell = PadRecord("CELL      5.43");
  EXPECT_EQ(store.jUpdateRec(file, std::span(&cell, 1)), 0);
  EXPECT_EQ(store.jAddRec(file, std::span(&cell, 1)), 3);
  const std::vector<std::string> lines = FileLines();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(Trim(lines[2]), "CELL      5.43");
  for (const std::string& line : lines) EXPECT_EQ(line.size(), 256u);

  EXPECT_EQ(store.jDeleteRec(file, "scal"), 2);
  EXPECT_EQ(Trim(FileLines()[1]), "CELL      5.43");
  EXPECT_TRUE(reporter.messages.empty());
}

TEST_F(RecordStoreTest, FailedRewritesLeaveTheFileAlone) {
  const std::string absent = (dir.Path() / "absent.rec").string();
  const Record cell = PadRecord("CELL      1");
  EXPECT_EQ(store.jUpdateRec(absent, std::span(&cell, 1)), 0);
  // The load's own box, then the rewrite's.
  ASSERT_EQ(reporter.messages.size(), 2u);
  EXPECT_EQ(reporter.messages[1], (RecordingReporter::Message{"Error opening", absent}));
  EXPECT_FALSE(std::filesystem::exists(absent));
}

TEST(RecordKey, MatchesFoldedKeysAndDelimiters) {
  EXPECT_TRUE(RecordKeyMatches("cell      1", "CELL"));
  EXPECT_TRUE(RecordKeyMatches("XYZ,Fe1", "XYZ "));
  EXPECT_TRUE(RecordKeyMatches("XYZ\tFe1", "xyz"));
  EXPECT_FALSE(RecordKeyMatches("XYZA", "XYZ "));
  EXPECT_FALSE(RecordKeyMatches("CEL", "CELL"));
}

TEST(FileUnits, StatusWordsAndUnitTable) {
  RecordingReporter reporter;
  FileUnits units(reporter);
  ScratchDir dir;
  const std::string name = dir.Write("a.txt", "x").string();
  int unit = 0;
  EXPECT_FALSE(units.OpenFileUnit(unit, name, "maybe"));
  EXPECT_EQ(reporter.messages.back(), (RecordingReporter::Message{"Error", "Unknown file status"}));
  EXPECT_TRUE(units.OpenFileUnit(unit, name, "old"));
  EXPECT_EQ(unit, FileUnits::kHighestUnit);
  // The same file again: the next free unit is taken, then the first one is closed.
  int again = 0;
  EXPECT_TRUE(units.OpenFileUnit(again, name, "OLD"));
  EXPECT_EQ(again, FileUnits::kHighestUnit - 1);
  EXPECT_EQ(units.Stream(FileUnits::kHighestUnit), nullptr);
  EXPECT_FALSE(units.OpenFileUnit(unit, (dir.Path() / "b.txt").string(), "OLD"));
  EXPECT_FALSE(units.OpenFileUnit(unit, name, "NEW"));  // closes the file's unit too
  EXPECT_EQ(units.Stream(again), nullptr);
  reporter.Clear();
  int count = 0;
  while (units.OpenFileUnit(unit, "", "SCRATCH")) ++count;
  EXPECT_EQ(count, FileUnits::kHighestUnit - FileUnits::kLowestUnit + 1);
  EXPECT_EQ(reporter.messages.back(),
            (RecordingReporter::Message{"Error", "No available unit number"}));
}

// The lines a find takes keep their file line numbers and text; those never taken are what a
// run did not read, the lines behind an end line not among them.
TEST_F(RecordStoreTest, TakenAndUntakenLines) {
  Load("TITL      A\nxyz,Fe1 1 .25\nCXYZ Fe1  1 0 0\nXYZ       O   2 0 0 0\nEND\nXYZ   late\n");
  store.KeepTakenLines();
  EXPECT_EQ(Find("XYZ "), "Fe1       1,.25");
  EXPECT_EQ(Find("CXYZ"), "1,0,0");
  ASSERT_EQ(store.TakenLines().size(), 2u);
  EXPECT_EQ(store.TakenLines()[0].line, 2);
  EXPECT_EQ(store.TakenLines()[0].key, "XYZ ");
  EXPECT_EQ(Trim(store.TakenLines()[0].text), "xyz,Fe1 1 .25");
  EXPECT_EQ(store.TakenLines()[1].line, 3);
  const auto untaken = store.UntakenLines();
  ASSERT_EQ(untaken.size(), 2u);
  EXPECT_EQ(untaken[0].line, 1);
  EXPECT_EQ(untaken[0].key, "TITL");
  EXPECT_EQ(untaken[1].line, 4);
  EXPECT_EQ(untaken[1].key, "XYZ ");
}

TEST(FileUnits, ScratchFilesGoWithTheirTable) {
  ScratchDir dir;
  const char* old = std::getenv("TMPDIR");
  const std::string saved = old ? old : "";
  ::setenv("TMPDIR", dir.Path().c_str(), 1);
  {
    RecordingReporter reporter;
    FileUnits units(reporter);
    int unit = 0;
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(units.OpenFileUnit(unit, "", "SCRATCH"));
    units.Close(unit);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 2);
  }
  old ? ::setenv("TMPDIR", saved.c_str(), 1) : ::unsetenv("TMPDIR");
  EXPECT_TRUE(fs::is_empty(dir.Path()));
}

}  // namespace
}  // namespace kaldena
