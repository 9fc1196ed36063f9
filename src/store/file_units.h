// Numbered file units: every file of a job is opened here, by name and status word, and
// addressed by its unit number until it is closed.
#pragma once

#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "util/report.h"

namespace kaldena {

enum class FileAccess { kRead, kWrite, kAppend };

class FileUnits {
 public:
  static constexpr int kHighestUnit = 95;
  static constexpr int kLowestUnit = 10;

  explicit FileUnits(Reporter& reporter) : reporter_(reporter) {}

  // Opens a file with status "UNKNOWN", "OLD", "NEW" or "SCRATCH" (any case) on the highest
  // free unit. A file already open on another unit is closed there first (not for SCRATCH).
  // A bad status word or a full table is told in a box; a failed open is not: the caller
  // reports it. Returns true on success, with the unit number in `unit`.
  bool OpenFileUnit(int& unit, std::string_view fileName, std::string_view status,
                    FileAccess access = FileAccess::kRead);

  // The stream of an open unit, or nullptr.
  std::fstream* Stream(int unit);
  // Closes a unit, keeping its file (a scratch file goes away with its unit).
  void Close(int unit);

 private:
  // A scratch file goes with its unit, also when the table itself ends with units open.
  struct Unit {
    ~Unit();
    std::fstream stream;
    std::string name;
    bool scratch = false;
  };

  bool OpenStream(Unit& slot, const std::string& name, std::string_view status, FileAccess access);
  void CloseFileIfOpen(const std::string& name);

  Reporter& reporter_;
  std::array<std::unique_ptr<Unit>, kHighestUnit + 1> units_{};
};

}  // namespace kaldena
