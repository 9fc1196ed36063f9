#include "util/file_copy.h"

#include <filesystem>
#include <fstream>
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
  const fs::path source{std::string(Trimmed(from))};
  const std::string target{Trimmed(to)};
  std::error_code error;
  if (!fs::is_regular_file(source, error) || WriteProtected(target)) return false;
  std::ifstream in(source, std::ios::binary);
  return in && WriteFileWhole(target, [&](std::ostream& out) {
           // Inserting an empty buffer would mark the copy as failed.
           if (in.peek() != std::ifstream::traits_type::eof()) out << in.rdbuf();
         });
}

}  // namespace kaldena
