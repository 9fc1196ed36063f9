// Fuzzes the space-group symbol reader and the printed-symbol conversion.
#include <cstddef>
#include <cstdint>
#include <string>

#include "crystal/space_group.h"
#include "crystal/symbol_tables.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  for (const std::string& symbol : {text, kaldena::ConvertPrintedSymbol(text)}) {
    kaldena::SpaceGroupInfo info;
    if (kaldena::ParseSpaceGroupSymbol(symbol, info) == kaldena::SymbolStatus::kOk) {
      kaldena::ExpandOperators(info);
    }
    std::vector<std::string> list;
    kaldena::ReadPhaseSpaceGroup(symbol, info, list);
    kaldena::SymbolClass(symbol);
    kaldena::OriginChoiceIndex(symbol);
  }
  return 0;
}
