// Refinements of simulated patterns with counting noise: from a start some esds away, every
// refined value comes back to the model within three esds, with CHI2 near 1 and Rwp near the
// expected one. X-rays with the doublet and neutrons, five profile functions.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "engine/run_engine.h"
#include "store/record_store.h"
#include "support/test_files.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

// Corundum: hexagonal cell, Al on z and O on x free, with the values that are refined.
struct Model {
  float scale = 0.0012f, a = 4.7589f, c = 12.991f, w = 0.015f, eta = 0.5f, zero = 0.0f;
  float alZ = 0.35216f, oX = 0.30624f, bAl = 0.35f, bO = 0.45f, background = 80.0f;
};

struct Case {
  int profile;
  bool neutron;
};

std::string Shape(const Case& c, const Model& m) {
  // Pearson m and a Voigt Lorentzian width stand in the shape slot of their profiles.
  const float eta = c.profile == 2 ? 2.0f + 2 * (m.eta - 0.5f) : c.profile == 3 ? 0.04f + 0.1f * (m.eta - 0.5f) : m.eta;
  return FormatLine("('PKSH      ',6f10.5)", eta, 0.0f, 0.0f, eta, 0.0f, 0.0f);
}

std::string Project(const Case& c, const Model& m, bool refine) {
  const int job = (c.neutron ? 1 : 0) + (refine ? 0 : 2);
  std::ostringstream p;
  p << "TITL      corundum recovery\nFRMT          5\nPWDT      pattern.xy\n"
    // Weights from the calculated pattern: 1/Yobs would pull every level down by a count.
    << FormatLine("('JOBT      ',8i5)", job, c.profile, 1, -1, 0, 2, 1, 1) << "\n"
    << (c.neutron ? "ELAM        1.594000  0.000000  0.000000\n"
                  : "ELAM        1.540560  1.544390  0.500000\n")
    << "RLIM        12.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000\n"
    << "RELX         12 0.01 1.00 1.00 1.00 1.00  20.00000   0.02000 100.00000\n"
    << "ANOM      Al           0.21300   0.24550\nANOM      O            0.04920   0.03220\n"
    << FormatLine("('ZETT      ',3f10.5)", m.zero, 0.0f, 0.0f) << "\n"
    << "CZET           1.000     0.000     0.000\n"
    << FormatLine("('BKGR      ',3f10.1)", m.background, 0.0f, 0.0f) << "\n"
    << "CBKG           1.000     1.000     0.000\n"
    << (c.profile == 7 ? "AXID         0.02000   0.01000   0.00000\nCAXI           1.000     0.000     0.000\n" : "")
    << "PHTI      Corundum\n"
    << "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      R -3 C\n"
    << FormatLine("('SCAL      ',e12.5,f10.3)", m.scale, 0.0f) << "\n"
    << "CSCA           1.000     0.000\n"
    << FormatLine("('CELL      ',6f10.5)", m.a, m.a, m.c, 90.0f, 90.0f, 120.0f) << "\n"
    << "CCEL          11.000    11.000     1.000     0.000     0.000    11.000\n"
    << FormatLine("('HWTH      ',6f10.5)", 0.002f, -0.002f, m.w, 0.002f, -0.002f, m.w * 1.5f) << "\n"
    << (c.profile == 6 ? "CHWT           0.000     0.000     1.000     0.000     0.000     1.000\n"
                       : "CHWT           0.000     0.000     1.000\n")
    << Shape(c, m) << "\n"
    << (c.profile == 6 ? "CPKS           1.000     0.000     0.000     1.000     0.000     0.000\n"
                       : "CPKS           1.000     0.000     0.000\n")
    << FormatLine("('XYZ       ',a4,3x,i3,5f9.5,4i3)", "Al", 1, 0.0f, 0.0f, m.alZ, 1.0f, m.bAl, 3, 0, 0, 0) << "\n"
    << FormatLine("('XYZ       ',a4,3x,i3,5f9.5,4i3)", "O", 2, m.oX, 0.0f, 0.25f, 1.0f, m.bO, 2, 0, 0, 0) << "\n"
    << "CXYZ Al          0.000     0.000     1.000     0.000     1.000\n"
    << "CXYZ O           1.000     0.000     0.000     0.000     1.000\n";
  return p.str();
}

// The calculated curve of a summary with Gaussian counting noise of a fixed seed.
void NoisyPattern(const fs::path& summary, const fs::path& pattern, unsigned seed) {
  std::mt19937 random(seed);
  std::ifstream in(summary);
  std::ofstream out(pattern);
  for (std::string line; std::getline(in, line);) {
    float x = 0, observed = 0, calculated = 0, background = 0;
    Read(line, "(F7.3,3f12.1)", x, observed, calculated, background);
    std::normal_distribution<double> noise(calculated, std::sqrt(std::max(calculated, 1.0f)));
    out << FormatLine("(f8.3,f12.1)", x, static_cast<float>(std::max(noise(random), 0.0)))
        << "\n";
  }
}

// A value and its esd from a record and its SD twin of the parameter file.
struct Refined {
  float value, esd;
};

class ParameterFile {
 public:
  explicit ParameterFile(const fs::path& file) : store_(reporter_) {
    EXPECT_GT(store_.jReadRecFile(file.string()), 0);
  }
  Refined Get(std::string_view key, std::string_view esdKey, std::string_view layout, int field,
              int esdField = -1) {
    return {Value(key, layout, field), Value(esdKey, layout, esdField < 0 ? field : esdField)};
  }
  // A coordinate of the atom-th atom (from 0): the XYZ line has the type number in front.
  Refined Atom(int atom, int field) {
    return {Value("XYZ ", "(10x,6f9.0)", field + 1, atom), Value("SDXY", "(10x,6f9.0)", field, atom)};
  }
  // A field of the line-th line (from 0) of a key.
  float Value(std::string_view key, std::string_view layout, int field, int line = 0) {
    RecordingReporter r;
    RecordStore store(r);
    store.jReadRecFile(file_);
    std::string data;
    std::array<float, 6> v{};
    for (int i = 0; i <= line; ++i) {
      if (store.jFindRec(key, data) != 1) return 0;
    }
    Read(data, layout, v[0], v[1], v[2], v[3], v[4], v[5]);
    return v[field];
  }
  void SetFile(const fs::path& f) { file_ = f.string(); }

 private:
  RecordingReporter reporter_;
  RecordStore store_;
  std::string file_;
};

class Recovery : public ::testing::TestWithParam<Case> {};

TEST_P(Recovery, ReturnsTheModelWithinThreeEsds) {
  const Case c = GetParam();
  testing::ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  const Model truth;
  dir.Write("model.rec", Project(c, truth, false));
  ASSERT_EQ(RunEngine({"model.rec", false, nullptr}, reporter).status, 0);
  NoisyPattern("%model.sum", "pattern.xy", 7 + c.profile);
  Model start = truth;
  start.scale *= 1.04f;
  start.a += 0.0015f;
  start.c += 0.004f;
  start.w *= 1.25f;
  start.eta += 0.08f;
  start.zero += 0.01f;
  start.alZ += 0.0015f;
  start.oX -= 0.002f;
  start.bAl += 0.15f;
  start.bO -= 0.15f;
  start.background += 5;
  dir.Write("start.rec", Project(c, start, true));
  const EngineResult result = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  ASSERT_EQ(result.status, 0) << testing::ReadBytes(dir.Path() / "%start.out");

  ParameterFile par(dir.Path() / "%start.par");
  par.SetFile(dir.Path() / "%start.par");
  const std::string name = "profile " + std::to_string(c.profile) + (c.neutron ? " neutron" : " X-ray");
  auto expect = [&](std::string_view what, Refined r, float truthValue) {
    EXPECT_GT(r.esd, 0) << name << " " << what;
    EXPECT_LT(std::abs(r.value - truthValue), 3 * r.esd) << name << " " << what << " " << r.value
                                                           << " (" << r.esd << ") against " << truthValue;
  };
  expect("scale", par.Get("SCAL", "SDSC", "(2f15.0)", 0), truth.scale);
  expect("a", par.Get("CELL", "SDCE", "(6f10.0)", 0), truth.a);
  expect("c", par.Get("CELL", "SDCE", "(6f10.0)", 2), truth.c);
  expect("W", par.Get("HWTH", "SDHW", "(6f10.0)", 2), truth.w);
  expect("zero", par.Get("ZETT", "ZETT", "(6f10.0)", 0, 3), truth.zero);
  expect("Al z", par.Atom(0, 2), truth.alZ);
  expect("O x", par.Atom(1, 0), truth.oX);
  expect("background", par.Get("BKGR", "SDBK", "(5f10.0)", 0), truth.background);

  // CHI2 near 1 and Rwp near the one that counting statistics allow.
  std::array<float, 8> rval{};
  int params = 0, points = 0, reflections = 0;
  RecordingReporter r;
  RecordStore store(r);
  store.jReadRecFile((dir.Path() / "%start.par").string());
  std::string data;
  ASSERT_EQ(store.jFindRec("RVAL", data), 1);
  Read(data, "(I4,I6,i5,5f10.0)", params, points, reflections, rval[0], rval[1], rval[2], rval[3], rval[4]);
  const float chi2 = rval[2], rwp = rval[1];
  EXPECT_NEAR(chi2, 1.0f, 0.15f) << name;
  // The expected Rwp of counting statistics, 100 sqrt((N - P) / sum w y^2) with w = 1/y.
  double counts = 0;
  std::ifstream pattern(dir.Path() / "pattern.xy");
  for (float x = 0, y = 0; pattern >> x >> y;) counts += y;
  const double expected = 100 * std::sqrt((points - params) / counts);
  EXPECT_LT(std::abs(rwp - expected), 0.1 * expected) << name << " Rwp " << rwp << " expected " << expected;
}

INSTANTIATE_TEST_SUITE_P(Profiles, Recovery,
                         ::testing::Values(Case{1, false}, Case{2, false}, Case{3, false},
                                           Case{6, false}, Case{7, false}, Case{1, true},
                                           Case{3, true}),
                         [](const ::testing::TestParamInfo<Case>& info) {
                           return "Profile" + std::to_string(info.param.profile) +
                                  (info.param.neutron ? "Neutron" : "Xray");
                         });

}  // namespace
}  // namespace kaldena
