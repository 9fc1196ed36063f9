#include "util/file_names.h"

#include <algorithm>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kSeparators = "\\/:";

// Index of the first character of the file part.
std::size_t FilePartStart(std::string_view path) {
  const std::size_t last = path.find_last_of(kSeparators);
  return last == std::string_view::npos ? 0 : last + 1;
}

}  // namespace

std::string ForceExtension(std::string_view name, std::string_view extension) {
  const std::string_view trimmed = Trimmed(name);
  const std::size_t point = trimmed.rfind('.');
  const bool hasPoint = point != std::string_view::npos && point >= FilePartStart(trimmed);
  std::string result(hasPoint ? trimmed.substr(0, point) : trimmed);
  result += '.';
  result += Trimmed(extension);
  return result;
}

std::string DirectoryOf(std::string_view path) {
  const std::string_view trimmed = Trimmed(path);
  return std::string(trimmed.substr(0, FilePartStart(trimmed)));
}

std::string BaseNameOf(std::string_view path) {
  const std::string_view trimmed = Trimmed(path);
  const std::string_view file = trimmed.substr(FilePartStart(trimmed));
  return std::string(file.substr(0, file.rfind('.')));
}

bool LeavesFolder(std::string_view name) {
  const std::string_view trimmed = Trimmed(name);
  if (trimmed.empty()) return false;
  if (trimmed.front() == '/' || trimmed.front() == '\\' || trimmed.find(':') != trimmed.npos) {
    return true;
  }
  for (std::size_t start = 0; start <= trimmed.size();) {
    const std::size_t end = std::min(trimmed.find_first_of("\\/", start), trimmed.size());
    if (trimmed.substr(start, end - start) == "..") return true;
    start = end + 1;
  }
  return false;
}

std::string ReplaceDirectory(std::string_view directory, std::string_view name) {
  const std::string_view trimmedName = Trimmed(name);
  if (trimmedName.find_first_of(kSeparators) != std::string_view::npos) {
    return std::string(trimmedName);
  }
  std::string result(Trimmed(directory));
  if (!result.empty() && kSeparators.find(result.back()) == std::string_view::npos) {
    result += '/';
  }
  result += trimmedName;
  return result;
}

}  // namespace kaldena
