#include "store/file_units.h"

#include <cstdio>
#include <filesystem>

#include "util/text.h"

namespace kaldena {

namespace fs = std::filesystem;

namespace {

std::ios::openmode ModeFor(FileAccess access) {
  switch (access) {
    case FileAccess::kRead:
      return std::ios::in | std::ios::binary;
    case FileAccess::kWrite:
      return std::ios::out | std::ios::trunc | std::ios::binary;
    case FileAccess::kAppend:
      return std::ios::out | std::ios::app | std::ios::binary;
  }
  return std::ios::in;
}

std::string ScratchName() {
  std::error_code ignored;
  fs::path dir = fs::temp_directory_path(ignored);
  for (int i = 0;; ++i) {
    fs::path candidate = dir / ("kaldena-scratch-" + std::to_string(i));
    if (!fs::exists(candidate, ignored)) return candidate.string();
  }
}

}  // namespace

bool FileUnits::OpenFileUnit(int& unit, std::string_view fileName, std::string_view status,
                             FileAccess access) {
  const std::string word = UpperText(Trimmed(status));
  if (word != "UNKNOWN" && word != "OLD" && word != "NEW" && word != "SCRATCH") {
    reporter_.ShowMessage("Error", "Unknown file status");
    return false;
  }
  int free = kHighestUnit;
  while (free >= kLowestUnit && units_[free]) --free;
  if (free < kLowestUnit) {
    reporter_.ShowMessage("Error", "No available unit number");
    return false;
  }
  const std::string name(Trimmed(fileName));
  if (word != "SCRATCH") CloseFileIfOpen(name);

  auto slot = std::make_unique<Unit>();
  if (!OpenStream(*slot, name, word, access)) return false;
  units_[free] = std::move(slot);
  unit = free;
  return true;
}

bool FileUnits::OpenStream(Unit& slot, const std::string& name, std::string_view status,
                           FileAccess access) {
  std::error_code ignored;
  if (status == "SCRATCH") {
    slot.name = ScratchName();
    slot.scratch = true;
    slot.stream.open(slot.name, std::ios::in | std::ios::out | std::ios::trunc | std::ios::binary);
    return slot.stream.is_open();
  }
  const bool exists = fs::is_regular_file(name, ignored);
  if ((status == "OLD" && !exists) || (status == "NEW" && fs::exists(name, ignored))) {
    return false;
  }
  slot.name = name;
  slot.stream.open(name, ModeFor(access));
  return slot.stream.is_open();
}

void FileUnits::CloseFileIfOpen(const std::string& name) {
  for (int u = kLowestUnit; u <= kHighestUnit; ++u) {
    if (units_[u] && !units_[u]->scratch && units_[u]->name == name) Close(u);
  }
}

std::fstream* FileUnits::Stream(int unit) {
  if (unit < 0 || unit > kHighestUnit || !units_[unit]) return nullptr;
  return &units_[unit]->stream;
}

FileUnits::Unit::~Unit() {
  stream.close();
  if (scratch) std::remove(name.c_str());
}

void FileUnits::Close(int unit) {
  if (unit < 0 || unit > kHighestUnit) return;
  units_[unit].reset();
}

}  // namespace kaldena
