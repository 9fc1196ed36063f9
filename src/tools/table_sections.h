// The sections of the result table, for table.cpp and table_phase.cpp.
#pragma once

#include <array>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "store/record_store.h"
#include "util/column_format.h"
#include "util/report.h"

namespace kaldena {

struct TableOptions {
  int decimals = 4;       // coordinates, 2 to 5
  int occupancy = 1;      // form 1 or 2
  int anisoDecimals = 4;  // anisotropic factors, 2 to 5
  int type = 1;           // 1 beta, 2 U
};

// One project's table in the making: the records as the store hands them out, in the order
// the sections read them.
struct TableContext {
  TableContext(std::ostream& stream, RecordStore& records, Reporter& log)
      : out(stream), store(records), reporter(log) {}

  std::ostream& out;
  RecordStore& store;
  Reporter& reporter;
  TableOptions options;
  std::set<int> restrainedAtoms;  // atom numbers from 1, over all phases
  std::vector<std::array<float, 9>> rval;  // per phase: params, points, reflections, Rp, ...
  std::array<int, 7> job{0, 4, 1, -1, 0, 0, 0};
  std::array<float, 8> rlim{};
  float wavelength = 1.54051f;
  int atomNumber = 0;  // atoms listed so far, over the phases

  template <typename... T>
  void Write(std::string_view format, const T&... args) {
    out << Format(format, args...);
  }
  // The next line of a key read by a layout; false when it is missing or does not read.
  template <typename... T>
  bool Next(std::string_view key, std::string_view layout, T&... targets) {
    std::string data;
    if (store.jFindRec(key, data) != 1) return false;
    return Read(data, layout, targets...) == ReadStatus::kOk;
  }
  bool NextText(std::string_view key, std::string& text);
  void Missing(std::string_view message) { reporter.LogLine(message); }
};

// Phase parts: the returned weight and volume terms feed the quantitative analysis.
struct PhaseQuantity {
  float scale = 1;         // the phase's scale factor
  bool known = false;      // the phase has PHMW
  bool massKnown = false;  // and its cell a mass: not when an atom's element is unknown
  double weight = 0, volume = 0, weightEsd = 0, volumeEsd = 0;
  float absorption = 0;
};
PhaseQuantity WritePhase(TableContext& t, int phase);

}  // namespace kaldena
