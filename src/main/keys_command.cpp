// kalden keys: the record keys of a project, one key's entry, or the whole reference.
#include <cstdio>
#include <string>
#include <vector>

#include "main/commands.h"
#include "store/record_keys.h"

namespace kaldena {

namespace {

void Print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

}  // namespace

int KeysCommand(const std::vector<std::string>& args) {
  if (args.size() > 1) return kBadArguments;
  if (args.empty()) {
    std::string list;
    for (const RecordKeyEntry& e : RecordKeys()) {
      list += std::string(e.key) + "  " + std::string(e.fields.substr(0, e.fields.find(';'))) +
              "\n";
    }
    Print(list);
    return 0;
  }
  if (args[0] == "--markdown") {
    Print(RecordsReference());
    return 0;
  }
  const RecordKeyEntry* entry = FindRecordKey(args[0]);
  if (!entry) {
    std::fprintf(stderr, "Unknown record key: %s\n", args[0].c_str());
    return 1;
  }
  Print(KeyEntryText(*entry));
  return 0;
}

}  // namespace kaldena
