#include "util/file_copy.h"

#include <filesystem>
#include <string>

#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

bool WriteProtected(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (error || !fs::exists(status)) return false;
  return (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

}  // namespace

bool CopyFileReplacing(std::string_view from, std::string_view to) {
  const std::string source{Trimmed(from)};
  const std::string target{Trimmed(to)};
  std::error_code error;
  return fs::is_regular_file(source, error) && !WriteProtected(target) &&
         CopyFileWhole(source, target);
}

}  // namespace kaldena
