#include "store/record_text.h"

#include <gtest/gtest.h>

#include "store/record_lines.h"
#include "store/record_store.h"

namespace kaldena {
namespace {

std::string Normalised(std::string_view line, int keptFields) {
  std::string record = PadRecord(line);
  NormaliseNumericField(record, keptFields);
  return record.substr(0, record.find_last_not_of(' ') + 1);
}

TEST(NormaliseNumericField, BlanksBecomeCommas) {
  EXPECT_EQ(Normalised("CELL        1.5   2.5", 1), "CELL      1.5,2.5");
  EXPECT_EQ(Normalised("CELL      1 , 2", 1), "CELL      1,2");
  EXPECT_EQ(Normalised("CELL      1,,2", 1), "CELL      1,,2");
  EXPECT_EQ(Normalised("CELL      ,1 2", 1), "CELL      1,2");  // leading comma dropped
  EXPECT_EQ(Normalised("CELL      1.2E-3 -4e+2", 1), "CELL      1.2E-3,-4e+2");
  EXPECT_EQ(Normalised("CELL      1\t2", 1), "CELL      1,2");
  // Fixed fields lose their blank ones: 0 is needed to keep a place.
  EXPECT_EQ(Normalised("RLIM         10.00000               0.00000", 1),
            "RLIM      10.00000,0.00000");
}

TEST(NormaliseNumericField, LeavesTextAndKeptFieldsAlone) {
  EXPECT_EQ(Normalised("TITL      2 phases  X", 1), "TITL      2 phases  X");
  EXPECT_EQ(Normalised("XYZ       Fe1   1   0.25  0.5", 2), "XYZ       Fe1   1   0.25,0.5");
  EXPECT_EQ(Normalised("CELL", 1), "CELL");
  std::string shortRecord = "CELL";
  NormaliseNumericField(shortRecord, 1);
  EXPECT_EQ(shortRecord, "CELL");
}

TEST(NormaliseNumericLine, KeepsOnlyNumbers) {
  std::string line = "  10.00  ;  123 # counts";
  EXPECT_EQ(NormaliseNumericLine(line), LineStatus::kNumbers);
  EXPECT_EQ(line.substr(0, line.find_last_not_of(' ') + 1), "10.00,123");
  std::string empty = " <xml> ";
  EXPECT_EQ(NormaliseNumericLine(empty), LineStatus::kEmpty);
}

TEST(ReadCellLine, WavelengthAndAngles) {
  CellParameters cell{};
  float wavelength = -1;
  ASSERT_EQ(ReadCellLine("5.43,5.43,5.43", cell, wavelength), ReadStatus::kOk);
  EXPECT_EQ(cell, (CellParameters{5.43f, 5.43f, 5.43f, 90, 90, 90}));
  EXPECT_EQ(wavelength, -1);
  ASSERT_EQ(ReadCellLine("1.5406,4,5,6,90,100.5,0", cell, wavelength), ReadStatus::kOk);
  EXPECT_FLOAT_EQ(wavelength, 1.5406f);
  EXPECT_EQ(cell, (CellParameters{4, 5, 6, 90, 100.5f, 90}));
  EXPECT_EQ(ReadCellLine("5.43 abc", cell, wavelength), ReadStatus::kError);
}

TEST(ReadAtomLine, BothLayoutsAndFailure) {
  RecordingReporter reporter;
  // The old layout with implied decimals.
  AtomLine atom = ReadAtomLine("Fe1         2    25000   500000     1000  1.0      0.5", reporter);
  EXPECT_EQ(atom.label, "Fe1 ");
  EXPECT_EQ(atom.type, 2);
  EXPECT_FLOAT_EQ(atom.x, 0.25f);
  EXPECT_FLOAT_EQ(atom.y, 5.0f);
  EXPECT_FLOAT_EQ(atom.z, 0.01f);
  EXPECT_FLOAT_EQ(atom.occupancy, 1.0f);
  EXPECT_FLOAT_EQ(atom.b, 0.5f);
  // No type number in front: the second layout, type number behind the occupancy.
  atom = ReadAtomLine("O2        0.1,0.2,0.3,0.5,2.6,1.2", reporter);
  EXPECT_EQ(atom.type, 3);
  EXPECT_FLOAT_EQ(atom.z, 0.3f);
  EXPECT_FLOAT_EQ(atom.b, 1.2f);
  EXPECT_TRUE(reporter.messages.empty());
  atom = ReadAtomLine("O3        x,y,z", reporter);
  EXPECT_EQ(atom.type, -1);
  ASSERT_EQ(reporter.messages.size(), 1u);
  EXPECT_EQ(reporter.messages[0], (RecordingReporter::Message{"Error", "O3        x,y,z"}));
}

}  // namespace
}  // namespace kaldena
