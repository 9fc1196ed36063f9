// The input stage's reading of records: the next line of a key read by its layout, with the
// list line of a record that is missing or does not read and the run's failure remembered.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "engine/list_file.h"
#include "store/job_records.h"
#include "store/record_store.h"
#include "util/column_format.h"

namespace kaldena {

class InputRecords {
 public:
  InputRecords(RecordStore& store, ListFile& list) : store_(store), list_(list) {}

  // The next line of `key` read by the key's layout in the key table. kMissing leaves the targets
  // alone; kBadNumbers writes " Error reading " and the record, and marks the run failed.
  template <typename... T>
  RecordRead Next(std::string_view key, T&... targets) {
    const ReadTarget list[] = {ReadTarget(targets)...};
    return NextInto(key, list);
  }
  // The same for a row of reals.
  RecordRead NextValues(std::string_view key, std::span<float> values);

  // Next, for a record the run cannot do without: when it is missing `missing` goes to the
  // list and the run is marked failed.
  template <typename... T>
  RecordRead Required(std::string_view key, std::string_view missing, T&... targets) {
    return Require(Next(key, targets...), missing);
  }
  RecordRead RequiredValues(std::string_view key, std::string_view missing,
                            std::span<float> values) {
    return Require(NextValues(key, values), missing);
  }

  // The raw data of the next line of a key, for readers of their own; false when missing.
  bool NextData(std::string_view key, std::string& data) { return store_.jFindRec(key, data) == 1; }

  void Fail() { failed_ = true; }
  bool Failed() const { return failed_; }
  RecordStore& Store() { return store_; }
  ListFile& List() { return list_; }

 private:
  RecordRead NextInto(std::string_view key, std::span<const ReadTarget> targets);
  RecordRead Require(RecordRead read, std::string_view missing);

  RecordStore& store_;
  ListFile& list_;
  bool failed_ = false;
};

}  // namespace kaldena
