#include "engine/input_records.h"

#include <vector>

#include "store/record_keys.h"

namespace kaldena {

RecordRead InputRecords::NextInto(std::string_view key, std::span<const ReadTarget> targets) {
  std::string data;
  if (store_.jFindRec(key, data) != 1) return RecordRead::kMissing;
  if (ReadFormatted(data, ReadLayout(key), targets) != ReadStatus::kOk) {
    list_.Line(ErrorReading(key, data));
    failed_ = true;
    return RecordRead::kBadNumbers;
  }
  return RecordRead::kOk;
}

RecordRead InputRecords::NextValues(std::string_view key, std::span<float> values) {
  std::vector<ReadTarget> targets;
  targets.reserve(values.size());
  for (float& v : values) targets.emplace_back(v);
  return NextInto(key, targets);
}

RecordRead InputRecords::Require(RecordRead read, std::string_view missing) {
  if (read == RecordRead::kMissing) {
    list_.Line(missing);
    failed_ = true;
  }
  return read;
}

}  // namespace kaldena
