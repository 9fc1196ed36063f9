// kalden spacegroup: how a space-group symbol is read, with its operators.
#include <cstdio>
#include <string>
#include <vector>

#include "crystal/space_group.h"
#include "crystal/symbol_tables.h"
#include "main/commands.h"
#include "util/column_format.h"
#include "util/report.h"
#include "util/text.h"

namespace kaldena {

namespace {

bool Reads(const std::string& symbol, SpaceGroupInfo& info) {
  return ParseSpaceGroupSymbol(symbol, info) == SymbolStatus::kOk &&
         ExpandOperators(info) == ExpandStatus::kOk;
}

void PrintText(const SpaceGroupInfo& info) {
  std::printf("symbol        %s\n", std::string(Trimmed(info.symbol)).c_str());
  std::printf("Laue class    %d  %s\n", info.laueClass,
              std::string(Trimmed(LaueClassLabel(info.laueClass))).c_str());
  std::printf("unique axis   %d\n", info.uniqueAxis);
  std::printf("centric code  %d\n", info.centricCode);
  std::printf("polar axes    %d\n", info.polarAxes);
  std::printf("generators   ");
  for (GeneratorWord w : info.generatorWords) std::printf(" %d", w);
  std::printf("\noperators     %zu\n", info.operators.size());
  for (size_t i = 0; i < info.operators.size(); ++i) {
    std::printf("%5zu  %s\n", i + 1, OperatorText(info.operators[i]).c_str());
  }
}

void PrintJson(const SpaceGroupInfo& info) {
  std::printf("{\"symbol\": \"%s\", \"laueClass\": %d, \"laueLabel\": \"%s\", ",
              std::string(Trimmed(info.symbol)).c_str(), info.laueClass,
              std::string(Trimmed(LaueClassLabel(info.laueClass))).c_str());
  std::printf("\"uniqueAxis\": %d, \"centricCode\": %d, \"polarAxes\": %d, ", info.uniqueAxis,
              info.centricCode, info.polarAxes);
  std::printf("\"generatorWords\": [");
  for (size_t i = 0; i < info.generatorWords.size(); ++i) {
    std::printf("%s%d", i ? ", " : "", info.generatorWords[i]);
  }
  std::printf("], \"operatorCount\": %zu, \"operators\": [", info.operators.size());
  for (size_t i = 0; i < info.operators.size(); ++i) {
    std::printf("%s[", i ? ", " : "");
    for (int k = 0; k < 12; ++k) std::printf("%s%g", k ? ", " : "", info.operators[i][k]);
    std::printf("]");
  }
  std::printf("]}\n");
}

}  // namespace

int SpaceGroupCommand(const std::vector<std::string>& args) {
  const bool json = args.size() == 2 && args[1] == "--json";
  if (args.empty() || args.size() > 2 || (args.size() == 2 && !json)) return kBadArguments;
  SpaceGroupInfo info;
  // A compact symbol ("P21/c") is read as its blank-separated form when it reads no other way.
  if (!Reads(args[0], info) && !Reads(ConvertPrintedSymbol(args[0]), info)) {
    ConsoleReporter reporter;
    std::string symbol = args[0];
    GetSpaceGroupOperators(symbol, reporter);
    return 1;
  }
  json ? PrintJson(info) : PrintText(info);
  return 0;
}

}  // namespace kaldena
