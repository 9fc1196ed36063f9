// Fuzzes the CIF import: any text read as a CIF, and the records of its phase.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/cif_import.h"
#include "util/report.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  kaldena::SilentReporter reporter;
  const kaldena::CifPhase phase = kaldena::ImportCifText("fuzz.cif", text, reporter);
  kaldena::CifPhaseRecords(phase, "fuzz");
  kaldena::CifAtomTypeRecords(phase, 1.54056f);
  return 0;
}
