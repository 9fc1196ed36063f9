// Typed access to the records of a project: building record lines by their layouts, and
// reading the three families of repeated keys (one line per phase, one per atom, counted lists).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "store/record_store.h"
#include "util/column_format.h"
#include "util/limits.h"

namespace kaldena {

// A record whose whole line, key included, is laid out by `layout`: "('CXYZ ',a4,1x,5f10.3)".
Record LayoutRecord(std::string_view layout, std::span<const FormatArg> args);

// Records of one key: the key, six blanks, then the values by `layout`. A layout that runs
// over several lines (five background values a line) gives one record per line.
std::vector<Record> MakeRecords(std::string_view key, std::string_view layout,
                                std::span<const FormatArg> args);

template <typename... T>
Record MakeRecord(std::string_view key, std::string_view layout, const T&... args) {
  const FormatArg list[] = {FormatArg(args)...};
  std::vector<Record> records = MakeRecords(key, layout, list);
  return records.empty() ? PadRecord(key) : records.front();
}

// A text record ("TITL      My sample"): the text in columns 11 on.
Record TextRecord(std::string_view key, std::string_view text);

// Every remaining line of a key, in file order, at most `maxCount` (they leave the table).
std::vector<std::string> FindRecords(RecordStore& store, std::string_view key,
                                     int maxCount = kRecordFileRows);

// The text of a text record, without trailing blanks; `fallback` when the key is absent.
std::string FindText(RecordStore& store, std::string_view key, std::string_view fallback);

// Where the atoms of each phase stand in the sequence of all atoms, from the PHNA counts.
// Lines of the per-atom keys (XYZ, BETA, CXYZ, ...) belong to atoms in this order.
class AtomSequence {
 public:
  explicit AtomSequence(std::span<const int> atomsPerPhase);
  int Total() const { return first_.back(); }
  int Phases() const { return static_cast<int>(first_.size()) - 1; }
  // Index of the first atom of a phase (phases from 1, atoms from 0).
  int First(int phase) const { return first_[phase - 1]; }
  int Count(int phase) const { return first_[phase] - first_[phase - 1]; }
  // Phase (from 1) of the atom with index `atom`, 0 when there is no such atom.
  int PhaseOf(int atom) const;

 private:
  std::vector<int> first_;
};

}  // namespace kaldena
