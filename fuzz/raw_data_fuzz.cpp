// Fuzzes the raw data readers: the input, written to a file, is read with every format
// number, alone and as its own background and weights file.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/raw_data.h"

namespace {

const std::string& ScratchFile() {
  static const std::string path =
      (std::filesystem::temp_directory_path() / ("kaldena-raw-fuzz-" + std::to_string(getpid())))
          .string();
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string& path = ScratchFile();
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  }
  kaldena::SilentReporter reporter;
  for (int format = 0; format <= 10; ++format) {
    for (int sides = 0; sides < 2; ++sides) {
      kaldena::RawDataRequest request;
      request.format = format;
      request.dataFile = path;
      request.autodivergence = size % 2 ? 1.0f : 0.0f;
      request.debug = true;
      if (sides == 1) request.backgroundFile = request.weightsFile = path;
      kaldena::ListFile list;
      int weighting = static_cast<int>(size % 3);
      kaldena::ReadRawData(request, weighting, list, reporter);
    }
  }
  return 0;
}
