#include "util/file_copy.h"

#include <filesystem>
#include <string>

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
  const fs::path source{std::string(Trimmed(from))};
  const fs::path target{std::string(Trimmed(to))};
  std::error_code error;
  if (!fs::is_regular_file(source, error) || WriteProtected(target)) return false;
  fs::path temporary = target;
  temporary += ".copy~";
  if (!fs::copy_file(source, temporary, fs::copy_options::overwrite_existing, error)) {
    fs::remove(temporary, error);
    return false;
  }
  fs::rename(temporary, target, error);
  if (error) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    return false;
  }
  return true;
}

}  // namespace kaldena
