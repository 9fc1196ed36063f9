// File helpers shared by the tests: committed test data and scratch directories.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kaldena::testing {

// Path of a file under tests/data.
std::filesystem::path TestData(std::string_view relative);

// Path under the shared validation data beside the project, or empty when it is absent.
std::filesystem::path SharedData(std::string_view relative);

// A fresh directory removed with everything in it at the end of its scope.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  // Writes bytes into a file of the directory and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

std::string ReadBytes(const std::filesystem::path& file);

// Expects `actual` to equal the golden file byte for byte; with KALDENA_UPDATE_GOLDEN set the
// golden file is rewritten from it first.
void ExpectGolden(std::string_view actual, const std::filesystem::path& golden);

}  // namespace kaldena::testing
