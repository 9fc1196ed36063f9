// Fuzzes the tools that read a project's records: the result table, the distance list and the
// CIF, on any project text.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "tools/cif_writer.h"
#include "tools/distances.h"
#include "tools/table.h"
#include "util/report.h"

namespace {

const std::filesystem::path& ScratchDirectory() {
  static const std::filesystem::path dir = [] {
    auto path = std::filesystem::temp_directory_path() /
                ("kaldena-tools-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path;
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::filesystem::path& dir = ScratchDirectory();
  const std::string project = (dir / "fuzz.rec").string();
  {
    std::ofstream out(project, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  }
  kaldena::SilentReporter reporter;
  kaldena::WriteTable(project, (dir / "fuzz.tab").string(), "2026-11-23", reporter);
  kaldena::RunDistan(project, (dir / "fuzz.dis").string(), reporter);
  kaldena::WriteCif(project, (dir / "fuzz.cif").string(), reporter, "2026-11-23");
  return 0;
}
