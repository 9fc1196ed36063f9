#include "store/record_keys.h"

#include <gtest/gtest.h>

#include <set>

namespace kaldena {
namespace {

// Keys are unique and found whatever their case, "XYZ" as "XYZ "; every key the engine reads
// has a read layout, since the engine's readers take it from the table.
TEST(RecordKeysTest, EveryKeyOnceWithTheLayoutsOfItsReaders) {
  std::set<std::string_view> seen;
  for (const RecordKeyEntry& e : RecordKeys()) {
    EXPECT_EQ(e.key.size(), 4u) << e.key;
    EXPECT_TRUE(seen.insert(e.key).second) << "twice: " << e.key;
    EXPECT_EQ(FindRecordKey(e.key), &e);
    if (e.readBy.find("engine") != std::string_view::npos) {
      EXPECT_TRUE(e.read.starts_with("(") && e.read.ends_with(")")) << e.key << " " << e.read;
    }
  }
  EXPECT_EQ(FindRecordKey("xyz")->key, "XYZ ");
  EXPECT_EQ(ReadLayout("cell"), "(7F10.0)");
  EXPECT_EQ(FindRecordKey("QQQQ"), nullptr);
  EXPECT_TRUE(ReadLayout("QQQQ").empty());
}

// One entry as kalden keys KEY prints it: the key and its heading, then a row per column.
TEST(RecordKeysTest, EntryText) {
  EXPECT_EQ(KeyEntryText(*FindRecordKey("DAMP")),
            "DAMP  Instrument and least-squares controls, one line\n"
            "  fields      diagonal damping factor\n"
            "  written     f10.5\n"
            "  read        (F10.0)\n"
            "  if absent   1.0\n"
            "  units       -\n"
            "  range       1 or more\n"
            "  written by  controls dialog\n"
            "  read by     engine, tables\n");
}

}  // namespace
}  // namespace kaldena
