#include "store/record_store.h"

#include <array>
#include <fstream>

#include "store/record_text.h"
#include "util/limits.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kConsumed = "XXXX";

// Keys whose data begin with a label field of ten columns (an atom name or a sub-key).
constexpr std::array<std::string_view, 15> kLabelledKeys = {"XYZ ", "BETA", "BISO", "XSCA", "ANOM",
                                                            "SDXY", "AXTD", "BXTB", "CXTB", "FXYZ",
                                                            "SDBE", "SDBI", "PXYZ", "QPLO", "CRES"};

bool IsControl(char c) { return static_cast<unsigned char>(c) < 32; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string FoldedKey(std::string_view key) {
  std::string k(key.substr(0, kRecordKeyLength));
  k.resize(kRecordKeyLength, ' ');
  return UpperKey(k);
}

bool HasLabelField(std::string_view key) {
  for (std::string_view k : kLabelledKeys) {
    if (k == key) return true;
  }
  return false;
}

// Column (0-based) where the data of a line begin: behind a comma or control character in
// columns 5 to 10 (searched from `from`), else column 11.
size_t DataStart(std::string& line, size_t from) {
  for (size_t c = from; c < 10; ++c) {
    if (IsControl(line[c])) {
      line[c] = ' ';
      return c + 1;
    }
    if (line[c] == ',') return c + 1;
  }
  return 10;
}

// Moves the data behind the label field to column 21: the label ends at a comma or control
// character in columns 11 to 20, for XYZ also at a digit from column 15 on.
std::string SplitLabel(const std::string& result, bool isAtom) {
  size_t end = 20;
  size_t resume = 20;
  for (size_t c = 10; c < 20; ++c) {
    if (IsControl(result[c]) || result[c] == ',') {
      end = c;
      resume = c + 1;
      break;
    }
    if (isAtom && c >= 14 && IsDigit(result[c])) {
      end = c;
      resume = c;
      break;
    }
  }
  std::string label = result.substr(10, end - 10);
  label.resize(10, ' ');
  return PadRecord(result.substr(0, 10) + label + result.substr(resume));
}

}  // namespace

bool ReadRecordLine(std::istream& in, std::string& line) {
  line.clear();
  std::streambuf* buf = in.rdbuf();
  int c = buf->sbumpc();
  if (c == std::char_traits<char>::eof()) return false;
  while (c != std::char_traits<char>::eof() && c != '\n' && c != '\r') {
    if (line.size() < kRecordLength) line.push_back(static_cast<char>(c));
    c = buf->sbumpc();
  }
  if (c == '\r' && buf->sgetc() == '\n') buf->sbumpc();
  return true;
}

Record PadRecord(std::string_view line) {
  Record r(line.substr(0, kRecordLength));
  r.resize(kRecordLength, ' ');
  return r;
}

bool RecordKeyMatches(std::string_view line, std::string_view key) {
  const std::string k = FoldedKey(key);
  for (int j = 0; j < kRecordKeyLength; ++j) {
    const char c = j < static_cast<int>(line.size()) ? line[j] : ' ';
    if (UpperChar(c) == k[j]) continue;
    // A key ending in blanks is complete where a delimiter takes the place of a blank.
    return k[j] == ' ' && (c == ',' || IsControl(c));
  }
  return true;
}

bool RecordStore::IsEndRow(const std::string& row) const {
  return row.compare(0, 3, "END") == 0 || row.compare(0, 3, "end") == 0;
}

int RecordStore::LoadRows(std::istream& in) {
  rows_.clear();
  standing_ = true;
  overflow_ = false;
  std::string line;
  while (true) {
    if (!ReadRecordLine(in, line)) {
      if (rows_.empty()) {
        reporter_.ShowMessage("Error", "Error reading recfile");
        return -1;
      }
      // A full table has no room for an end row; the find treats row 1100 as its end.
      if (rows_.size() < kRecordFileRows) rows_.push_back(PadRecord("END "));
      return static_cast<int>(rows_.size());
    }
    if (rows_.size() == kRecordFileRows) {
      // Lines behind the table are kept out of every rewrite by refusing it (see Rewrite).
      overflow_ = !IsEndRow(line);
      return static_cast<int>(rows_.size());
    }
    rows_.push_back(PadRecord(line));
    if (IsEndRow(rows_.back())) return static_cast<int>(rows_.size());
  }
}

int RecordStore::jReadRecFile(std::string_view fileName) {
  int unit = 0;
  if (!units_.OpenFileUnit(unit, fileName, "OLD")) {
    rows_.clear();
    standing_ = true;
    overflow_ = false;
    reporter_.ShowMessage("Error opening", Trimmed(fileName));
    return -2;
  }
  const int count = LoadRows(*units_.Stream(unit));
  units_.Close(unit);
  return count;
}

int RecordStore::jReadRecUnit(std::istream& in) { return LoadRows(in); }

void RecordStore::jCloseRec() {
  rows_.clear();
  rows_.shrink_to_fit();
  standing_ = false;
  overflow_ = false;
}

int RecordStore::jFindRec(std::string_view key, std::string& data) {
  const std::string k = FoldedKey(key);
  for (size_t i = 0; i < rows_.size(); ++i) {
    std::string& row = rows_[i];
    if (IsEndRow(row)) return 0;
    if (row.compare(0, 4, kConsumed) == 0) continue;
    const bool lastRow = i + 1 == static_cast<size_t>(kRecordFileRows);
    if (!RecordKeyMatches(row, k) && !lastRow) continue;

    std::string work = row;
    const size_t from = std::min<size_t>(Trimmed(k).size(), 4);
    std::string result = PadRecord(k + "      " + work.substr(DataStart(work, from)));
    const bool labelled = HasLabelField(k);
    if (labelled) result = SplitLabel(result, k == "XYZ ");
    if (keepTaken_) taken_.push_back({static_cast<int>(i + 1), k, row});
    row = PadRecord(kConsumed);
    if (k != "LRES") NormaliseNumericField(result, labelled ? 2 : 1);
    data = PadRecord(result.substr(10));
    return 1;
  }
  return 0;
}

std::vector<RecordStore::TakenLine> RecordStore::UntakenLines() const {
  std::vector<TakenLine> lines;
  for (size_t i = 0; i < rows_.size() && !IsEndRow(rows_[i]); ++i) {
    const std::string& row = rows_[i];
    if (row.compare(0, 4, kConsumed) != 0) {
      lines.push_back({static_cast<int>(i + 1), FoldedKey(row.substr(0, 4)), row});
    }
  }
  return lines;
}

template <typename WriteRows>
bool RecordStore::Rewrite(std::string_view fileName, WriteRows write) {
  const std::string name(Trimmed(fileName));
  if (jReadRecFile(name) < 1) {
    reporter_.ShowMessage("Error opening", name);
    return false;
  }
  // The table ends at the end row; a rewritten file has none.
  std::vector<std::string> rows = std::move(rows_);
  if (!rows.empty() && IsEndRow(rows.back())) rows.pop_back();
  const bool overflow = overflow_;
  jCloseRec();

  // The new content replaces the old file by rename, so that a failure half way never leaves
  // a shortened project.
  const bool ok = !overflow && std::ofstream(name, std::ios::app).is_open() &&
                  WriteFileWhole(name, [&](std::ostream& out) {
                    write(rows, [&out](std::string_view line) { out << PadRecord(line) << '\n'; });
                  });
  if (!ok) reporter_.ShowMessage("Error updating", name);
  return ok;
}

namespace {

// True when the line's key is the key of one of the records that has a key.
bool KeyOfAny(const std::string& row, std::span<const Record> records) {
  for (const Record& r : records) {
    if (!Trimmed(r.substr(0, 4)).empty() && RecordKeyMatches(row, r.substr(0, 4))) return true;
  }
  return false;
}

bool HasLabelData(const Record& record) {
  return record.size() > 10 && !Trimmed(record.substr(10, 10)).empty();
}

}  // namespace

int RecordStore::jUpdateRec(std::string_view fileName, std::span<const Record> records) {
  int written = 0;
  auto write = [&](const std::vector<std::string>& rows, auto put) {
    bool placed = records.empty();
    for (const std::string& row : rows) {
      if (!placed && RecordKeyMatches(row, records.front().substr(0, 4))) {
        placed = true;
        for (const Record& r : records) {
          if (HasLabelData(r)) {
            put(r);
            ++written;
          }
        }
      }
      if (!KeyOfAny(row, records)) put(row);
    }
  };
  return Rewrite(fileName, write) ? written : 0;
}

int RecordStore::jAddRec(std::string_view fileName, std::span<const Record> records) {
  int written = 0;
  auto write = [&](const std::vector<std::string>& rows, auto put) {
    for (const std::string& row : rows) {
      if (KeyOfAny(row, records)) continue;
      put(row);
      ++written;
    }
    for (const Record& r : records) {
      put(r);
      ++written;
    }
  };
  return Rewrite(fileName, write) ? written : 0;
}

int RecordStore::jDeleteRec(std::string_view fileName, std::string_view key) {
  int written = 0;
  auto write = [&](const std::vector<std::string>& rows, auto put) {
    for (const std::string& row : rows) {
      if (RecordKeyMatches(row, key)) continue;
      put(row);
      ++written;
    }
  };
  return Rewrite(fileName, write) ? written : 0;
}

}  // namespace kaldena
