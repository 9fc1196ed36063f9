#include "store/record_catalogue.h"

#include "util/text.h"

namespace kaldena {

namespace {

std::string KeyField(std::string_view key) {
  std::string field(key.substr(0, kRecordKeyLength));
  field.resize(10, ' ');
  return field;
}

}  // namespace

Record LayoutRecord(std::string_view layout, std::span<const FormatArg> args) {
  const std::string text = WriteFormatted(layout, args);
  const std::vector<std::string_view> lines = SplitLines(text);
  return PadRecord(lines.empty() ? std::string_view() : lines.front());
}

std::vector<Record> MakeRecords(std::string_view key, std::string_view layout,
                                std::span<const FormatArg> args) {
  std::vector<Record> records;
  const std::string text = WriteFormatted(layout, args);
  for (std::string_view line : SplitLines(text)) {
    records.push_back(PadRecord(KeyField(key) + std::string(line)));
  }
  return records;
}

Record TextRecord(std::string_view key, std::string_view text) {
  return PadRecord(KeyField(key) + std::string(text));
}

std::vector<std::string> FindRecords(RecordStore& store, std::string_view key, int maxCount) {
  std::vector<std::string> lines;
  std::string data;
  while (static_cast<int>(lines.size()) < maxCount && store.jFindRec(key, data) == 1) {
    lines.push_back(data);
  }
  return lines;
}

std::string FindText(RecordStore& store, std::string_view key, std::string_view fallback) {
  std::string data;
  if (store.jFindRec(key, data) != 1) return std::string(fallback);
  return std::string(Trimmed(data));
}

AtomSequence::AtomSequence(std::span<const int> atomsPerPhase) : first_{0} {
  for (int count : atomsPerPhase) first_.push_back(first_.back() + std::max(count, 0));
}

int AtomSequence::PhaseOf(int atom) const {
  for (int phase = 1; phase <= Phases(); ++phase) {
    if (atom >= First(phase) && atom < First(phase) + Count(phase)) return phase;
  }
  return 0;
}

}  // namespace kaldena
