#include "support/test_files.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

namespace kaldena::testing {

namespace fs = std::filesystem;

fs::path TestData(std::string_view relative) {
  const char* root = std::getenv("KALDENA_TEST_DATA");
  return fs::path(root ? root : "tests/data") / relative;
}

fs::path SharedData(std::string_view relative) {
  const char* root = std::getenv("KALDENA_SHARED");
  fs::path path = fs::path(root ? root : "../shared") / relative;
  return fs::exists(path) ? path : fs::path();
}

ScratchDir::ScratchDir() {
  std::random_device seed;
  path_ = fs::temp_directory_path() / ("kaldena-test-" + std::to_string(seed()));
  fs::create_directories(path_);
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path ScratchDir::Write(std::string_view name, std::string_view bytes) const {
  fs::path file = path_ / name;
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file;
}

std::string ReadBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ExpectGolden(std::string_view actual, const fs::path& golden) {
  if (std::getenv("KALDENA_UPDATE_GOLDEN")) std::ofstream(golden, std::ios::binary) << actual;
  EXPECT_EQ(actual, ReadBytes(golden)) << "golden file " << golden;
}

}  // namespace kaldena::testing
