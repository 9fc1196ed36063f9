// The record store: a record file (.rec or .par) held as a table of 256-character lines.
// Reading is destructive: each find takes the next line of its key out of the table, so the
// lines of one key come back in file order. Rewrites reload the file and replace it whole.
#pragma once

#include <istream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "store/file_units.h"
#include "util/report.h"

namespace kaldena {

using Record = std::string;  // 256 characters, blank padded; the key in columns 1 to 4

class RecordStore {
 public:
  explicit RecordStore(Reporter& reporter) : reporter_(reporter), units_(reporter) {}

  // Loads a file into the table. Returns the rows loaded, the end row included; -1 for a file
  // without any line, -2 when it cannot be opened.
  int jReadRecFile(std::string_view fileName);
  // The same for a stream that the caller has opened (and keeps open).
  int jReadRecUnit(std::istream& in);
  // Frees the table.
  void jCloseRec();
  // Takes the next record of the key out of the table. On success `data` holds it without its
  // key, data from column 1 (a label field in columns 1 to 10 for the labelled keys), 256
  // characters, numeric records turned into comma lists. Returns 1 when found, else 0.
  int jFindRec(std::string_view key, std::string& data);

  // Replaces all lines of the keys of `records` by `records` (those with data in columns 11
  // to 20), at the place of the first line of the first record's key. Returns the number of
  // new records written; 0 when that key has no line in the file.
  int jUpdateRec(std::string_view fileName, std::span<const Record> records);
  // Removes all lines of the keys of `records` and appends `records`. Returns the lines written.
  int jAddRec(std::string_view fileName, std::span<const Record> records);
  // Removes all lines of a key. Returns the lines written.
  int jDeleteRec(std::string_view fileName, std::string_view key);

  // A line that a find took, as it stood in the file, with its line number (from 1).
  struct TakenLine {
    int line = 0;
    std::string key;   // the key searched for, four characters
    std::string text;  // the whole line
  };
  // From now on every line that a find takes is kept, for a caller that checks what was read.
  void KeepTakenLines() { keepTaken_ = true; }
  const std::vector<TakenLine>& TakenLines() const { return taken_; }
  // The lines of the table that no find has taken, up to the end row.
  std::vector<TakenLine> UntakenLines() const;

  bool TableStands() const { return standing_; }
  FileUnits& Units() { return units_; }

 private:
  enum class LoadEnd { kEndLine, kEndOfFile, kTableFull };
  int LoadRows(std::istream& in);
  // Loads `fileName` for a rewrite and then writes the kept rows through `write` into a
  // temporary file that replaces the original. Returns false after reporting a failure.
  template <typename WriteRows>
  bool Rewrite(std::string_view fileName, WriteRows write);
  bool IsEndRow(const std::string& row) const;

  Reporter& reporter_;
  FileUnits units_;
  std::vector<std::string> rows_;
  bool standing_ = false;
  bool overflow_ = false;  // the file had more lines than the table holds
  bool keepTaken_ = false;
  std::vector<TakenLine> taken_;
};

// Reads one line of a record file: "\n", "\r\n" and a lone "\r" all end a line; at most 256
// characters are kept. False at the end of the stream.
bool ReadRecordLine(std::istream& in, std::string& line);

// True when the key field of a line holds `key` (four characters, case folded). A key that
// ends in blanks also matches a line with a delimiter (comma or control character) in their
// place: "XYZ,Fe1 ..." is a line of "XYZ ".
bool RecordKeyMatches(std::string_view line, std::string_view key);

// A line laid out to exactly 256 characters: cut or blank padded.
Record PadRecord(std::string_view line);

}  // namespace kaldena
