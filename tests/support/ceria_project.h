// A CeO2 project on Cu K-alpha 1 for whole runs of the engine: a cubic cell, two atoms on
// special positions, pseudo-Voigt peaks on a flat background; scale, cell, W, zero and the
// background constant refined. Its pattern is simulated by a calculation run of the project.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include "engine/run_engine.h"
#include "store/record_store.h"
#include "support/test_files.h"
#include "util/column_format.h"
#include "util/report.h"

namespace kaldena::testing {

// `job` 0 refines, 2 calculates; the values as they stand in their record columns.
inline std::string CeriaProject(int job, std::string_view scale, std::string_view cell,
                                std::string_view w, std::string_view zero) {
  std::ostringstream p;
  p << "TITL      CeO2 test pattern\n"
    << "FRMT          5\n"
    << "JOBT    " << std::setw(3) << job << "    1    1   -1    0    2    0    1\n"
    << "PWDT      pattern.xy\n"
    << "ELAM        1.540560  0.000000  0.000000\n"
    << "RLIM        12.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000   "
       "0.00000\n"
    << "RELX         10 0.01 1.00 1.00 1.00 1.00  20.00000   0.02000  90.00000\n"
    << "ANOM      Ce          -1.82500   9.65100\n"
    << "ANOM      O            0.04920   0.03220\n"
    << "ZETT      " << zero << "   0.00000   0.00000\n"
    << "CZET           1.000     0.000     0.000\n"
    << "BKGR            50.0       0.0\n"
    << "CBKG           1.000     0.000\n"
    << "PHTI      Ceria\n"
    << "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      F M -3 M\n"
    << "SCAL      " << scale << "     0.000\n"
    << "CSCA           1.000     0.000\n"
    << "CELL      " << cell << cell << cell << "  90.00000  90.00000  90.00000\n"
    << "CCEL           1.000     0.000     0.000     0.000     0.000     0.000\n"
    << "HWTH         0.00500  -0.00500" << w << "\n"
    << "CHWT           0.000     0.000     1.000\n"
    << "PKSH         0.40000   0.00000   0.00000\n"
    << "XYZ       Ce     1  0.00000  0.00000  0.00000  1.00000  0.30000 48  0  0  0\n"
    << "XYZ       O      2  0.25000  0.25000  0.25000  2.00000  0.60000 24  0  0  0\n";
  return p.str();
}

// The calculated curve of a one-phase summary file as a two-column pattern; with a seed,
// with counting noise (normal, variance the count) on it.
inline void SummaryToPattern(const std::filesystem::path& summary,
                             const std::filesystem::path& pattern, unsigned seed = 0) {
  std::mt19937 random(seed);
  std::ifstream in(summary);
  std::ofstream out(pattern);
  for (std::string line; std::getline(in, line);) {
    float x = 0, observed = 0, calculated = 0, background = 0;
    ASSERT_EQ(Read(line, "(F7.3,3f12.1)", x, observed, calculated, background), ReadStatus::kOk);
    float y = calculated;
    if (seed != 0) {
      std::normal_distribution<double> noise(calculated, std::sqrt(std::max(calculated, 1.0f)));
      y = static_cast<float>(std::max(noise(random), 0.0));
    }
    out << FormatLine("(f8.3,f12.1)", x, y) << "\n";
  }
}

// The pattern of the true model (scale 0.002, a 5.411, W 0.015, zero 0), calculated by a run
// in the current directory, `dir`, and written there as pattern.xy; with a seed, with noise.
inline void SimulateCeriaPattern(const ScratchDir& dir, Reporter& reporter, unsigned seed = 0) {
  dir.Write("model.rec", CeriaProject(2, " 0.2000E-02", "  5.411000", "   0.01500", "   0.00000"));
  ASSERT_EQ(RunEngine({"model.rec", false, nullptr}, reporter).status, 0);
  SummaryToPattern(dir.Path() / "%model.sum", dir.Path() / "pattern.xy", seed);
}

// Field `field` of the first record of `key`, read with `layout`.
inline float RecordValue(const std::filesystem::path& file, std::string_view key,
                         std::string_view layout, int field) {
  RecordingReporter reporter;
  RecordStore store(reporter);
  EXPECT_GT(store.jReadRecFile(file.string()), 0);
  std::string data;
  EXPECT_EQ(store.jFindRec(key, data), 1) << key;
  std::array<float, 6> v{};
  Read(data, layout, v[0], v[1], v[2], v[3], v[4], v[5]);
  return v[field];
}

}  // namespace kaldena::testing
