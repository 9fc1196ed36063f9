// Reading space-group symbols: the translation search and the expansion of the operators.
#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <vector>

#include "crystal/space_group.h"

namespace {

// The standard symbols of the 230 groups, from the reference table of the tests.
std::vector<std::string> StandardSymbols() {
  std::vector<std::string> symbols;
  std::ifstream in(KALDENA_TEST_DATA "/crystal/space_groups.txt");
  int last = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const int number = std::stoi(line);
    if (number == last) continue;
    last = number;
    symbols.push_back(
        line.substr(line.find('|') + 1, line.find('|', line.find('|') + 1) - line.find('|') - 1));
  }
  return symbols;
}

void BM_ReadAll230Symbols(benchmark::State& state) {
  const std::vector<std::string> symbols = StandardSymbols();
  for (auto _ : state) {
    size_t operators = 0;
    for (const std::string& symbol : symbols) {
      kaldena::SpaceGroupInfo info;
      kaldena::ParseSpaceGroupSymbol(symbol, info);
      kaldena::ExpandOperators(info);
      operators += info.operators.size();
    }
    benchmark::DoNotOptimize(operators);
  }
  state.counters["groups"] = static_cast<double>(symbols.size());
}
BENCHMARK(BM_ReadAll230Symbols)->Unit(benchmark::kMillisecond);

void BM_ReadFdm3m(benchmark::State& state) {
  for (auto _ : state) {
    kaldena::SpaceGroupInfo info;
    kaldena::ParseSpaceGroupSymbol("F D -3 M", info);
    kaldena::ExpandOperators(info);
    benchmark::DoNotOptimize(info.operators.data());
  }
}
BENCHMARK(BM_ReadFdm3m)->Unit(benchmark::kMicrosecond);

}  // namespace
