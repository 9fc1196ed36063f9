// The table of record keys: for each key its fields in order, the layouts it is written and
// read with, its default, units, valid range and the commands that write and read it. The
// engine's readers and writers take their layouts from here, and docs/records.md is printed
// from it (kalden keys --markdown), so the reference and the code cannot drift apart.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kaldena {

enum class KeyFamily {
  kSingle,  // one line
  kPhase,   // one line per phase, the n-th for phase n
  kAtom,    // one line per atom, phase after phase, by the PHNA counts
  kList,    // a list whose length is given elsewhere or by the lines present
};

struct RecordKeyEntry {
  std::string_view key;  // four characters, "XYZ " with its blank
  KeyFamily family;
  std::string_view group;    // the heading it stands under in the reference
  std::string_view fields;   // the fields in order
  std::string_view written;  // layout written behind the key field ("" nothing writes it)
  std::string_view read;     // layout of the data as read ("" nothing reads it by layout)
  std::string_view absent;   // default, or what happens when the record is absent
  std::string_view units;
  std::string_view range;
  std::string_view writtenBy;
  std::string_view readBy;
};

// Every key, in the order of the reference.
std::span<const RecordKeyEntry> RecordKeys();
// The entry of a key (case folded, "XYZ" finds "XYZ "); null for an unknown key.
const RecordKeyEntry* FindRecordKey(std::string_view key);
// The read and write layouts of a key that the table holds (the program's own keys only).
std::string_view ReadLayout(std::string_view key);
std::string_view WriteLayout(std::string_view key);

// One key's entry as plain text (kalden keys KEY) and the whole reference in Markdown.
std::string KeyEntryText(const RecordKeyEntry& entry);
std::string RecordsReference();

}  // namespace kaldena
