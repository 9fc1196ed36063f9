// Loading a full project and reading every line of it, as each command does.
#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

#include "store/record_store.h"

namespace {

class QuietReporter : public kaldena::Reporter {
 public:
  void LogLine(std::string_view) override {}
  void ShowMessage(std::string_view, std::string_view) override {}
  bool AskYesNo(std::string_view, std::string_view) override { return false; }
};

// A project of 1000 atom lines and 99 others, the size of the largest file the table holds.
std::string LargeProject() {
  std::string text;
  for (int i = 0; i < 99; ++i) text += "BKGR      1.0 2.0 3.0 4.0 5.0\n";
  for (int i = 0; i < 1000; ++i) {
    text += "XYZ       A" + std::to_string(i % 1000) +
            "   1  0.25000  0.12500  0.37500  1.00000  0.50000  1  0  0  0\n";
  }
  return text;
}

void BM_LoadAndFindAll(benchmark::State& state) {
  const std::string text = LargeProject();
  QuietReporter reporter;
  kaldena::RecordStore store(reporter);
  std::string data;
  for (auto _ : state) {
    std::istringstream in(text);
    store.jReadRecUnit(in);
    int found = 0;
    while (store.jFindRec("XYZ ", data) == 1) ++found;
    while (store.jFindRec("BKGR", data) == 1) ++found;
    benchmark::DoNotOptimize(found);
  }
}
BENCHMARK(BM_LoadAndFindAll);

}  // namespace
