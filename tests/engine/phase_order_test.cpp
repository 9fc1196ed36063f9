// Each point takes the reflections that reach it, of every phase and no others: the pattern of
// a project does not depend on the order of its phases, and many phases side by side do not
// count as peak overlap.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "engine/reflection_terms.h"
#include "support/engine_project.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

struct AtomLine {
  const char* label;
  int type;  // line of ANOM, from 1
  float x, y, z, occupation, b;
  int siteFactor;
};

struct PhaseLines {
  const char* title;
  const char* symbol;
  std::array<float, 6> cell;
  std::array<float, 3> uvw;
  float shape;  // pseudo-Voigt mixing
  float scale;
  std::vector<AtomLine> atoms;
};

constexpr const char* kTypes[] = {"C", "N", "O", "Al", "Si", "Na", "Cl"};

// Text left-justified in a field of its own width, as the record lines hold labels.
std::string Left(std::string text, size_t width) {
  text.resize(width, ' ');
  return text;
}

// A calculation on Cu K-alpha1 of the given phases in the given order, `base` halfwidths.
std::string Project(const std::vector<PhaseLines>& phases, float start, float step, float stop,
                    float base) {
  std::ostringstream p;
  p << "TITL      phases in any order\nFRMT          5\nPWDT      none.xy\n"
    << FormatLine("('JOBT      ',8i5)", 2, 4, static_cast<int>(phases.size()), -1, 0,
                  static_cast<int>(std::size(kTypes)), 0, 1)
    << "\nELAM        1.540560  0.000000  0.000000\n"
    << FormatLine("('RLIM      ',8f10.5)", base, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0) << "\n"
    << FormatLine("('RELX          1 0.01 1.00 1.00 1.00 1.00',3f10.5)", start, step, stop) << "\n";
  for (const char* type : kTypes)
    p << FormatLine("('ANOM      ',a10,2f10.5)", Left(type, 10), 0.0, 0.0) << "\n";
  p << "ZETT         0.00000   0.00000   0.00000\n"
    << "BKGR           100.0      10.0\n";
  for (const PhaseLines& phase : phases) {
    p << "PHTI      " << phase.title << "\n"
      << FormatLine("('PHNA      ',i5,'  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0')",
                    static_cast<int>(phase.atoms.size()))
      << "\nSPGR      " << phase.symbol << "\n"
      << FormatLine("('SCAL      ',e12.4,'     0.000')", phase.scale) << "\n"
      << FormatLine("('CELL      ',6f10.5)", phase.cell[0], phase.cell[1], phase.cell[2],
                    phase.cell[3], phase.cell[4], phase.cell[5])
      << "\n"
      << FormatLine("('HWTH      ',3f10.5)", phase.uvw[0], phase.uvw[1], phase.uvw[2]) << "\n"
      << FormatLine("('PKSH      ',3f10.5)", phase.shape, 0.0, 0.0) << "\n";
    for (const AtomLine& a : phase.atoms) {
      p << FormatLine("('XYZ       ',a4,i4,5f9.5,i3,'  0  0  0')", Left(a.label, 4), a.type, a.x,
                      a.y, a.z, a.occupation, a.b, a.siteFactor)
        << "\n";
    }
  }
  return p.str();
}

// Three cubic phases of different widths, with Lorentzian tails that reach far beyond the
// base of peak.
std::vector<PhaseLines> CubicPhases() {
  return {
      {"nickel-like",
       "P M -3 M",
       {3.48f, 3.48f, 3.48f, 90, 90, 90},
       {0, 0, 0.01f},
       0.6f,
       1e-3f,
       {{"Al", 4, 0, 0, 0, 1, 0.4f, 48}}},
      {"rock salt",
       "F M -3 M",
       {5.64f, 5.64f, 5.64f, 90, 90, 90},
       {0.02f, 0, 0.04f},
       0.5f,
       2e-3f,
       {{"Na", 6, 0, 0, 0, 1, 1.0f, 48}, {"Cl", 7, 0.5f, 0.5f, 0.5f, 1, 0.8f, 48}}},
      {"silicon",
       "F D -3 M",
       {5.431f, 5.431f, 5.431f, 90, 90, 90},
       {0, 0, 0.25f},
       0.8f,
       5e-3f,
       {{"Si", 5, 0.125f, 0.125f, 0.125f, 1, 0.5f, 24}}},
  };
}

// Each phase's part of the calculated pattern, in the order of `phases`, from one sweep.
std::vector<std::vector<float>> PhaseParts(const std::vector<PhaseLines>& phases) {
  testing::EngineProject project(Project(phases, 20, 0.02f, 100, 4), {});
  EXPECT_TRUE(project.ok) << project.ListFile();
  if (!project.ok || !Sweep(project.state)) return {};
  return project.state.work.phaseCalculated;
}

TEST(PhaseOrder, TheCalculatedPatternIsTheSameForAnyOrderOfThePhases) {
  const std::vector<PhaseLines> phases = CubicPhases();
  const std::vector<std::vector<float>> reference = PhaseParts(phases);
  ASSERT_EQ(reference.size(), 3u);
  std::array<int, 3> order = {0, 1, 2};
  while (std::next_permutation(order.begin(), order.end())) {
    std::vector<PhaseLines> reordered;
    for (int p : order) reordered.push_back(phases[p]);
    const std::vector<std::vector<float>> parts = PhaseParts(reordered);
    ASSERT_EQ(parts.size(), 3u);
    for (int n = 0; n < 3; ++n) {
      const std::vector<float>& part = parts[n];
      const std::vector<float>& same = reference[order[n]];
      ASSERT_EQ(part.size(), same.size());
      int differing = 0;
      for (size_t i = 0; i < part.size(); ++i) differing += part[i] != same[i] ? 1 : 0;
      // Each phase's part sums its own reflections in their own order: bit for bit the same.
      EXPECT_EQ(differing, 0) << phases[order[n]].title << " as phase " << n + 1 << " of order "
                              << order[0] << order[1] << order[2];
    }
  }
}

// Thirteen atoms of a triclinic cell spread over it.
std::vector<AtomLine> TriclinicAtoms() {
  std::vector<AtomLine> atoms;
  static const char* kLabels[] = {"C1", "C2", "C3", "C4", "C5", "C6", "C7",
                                  "C8", "N1", "N2", "O1", "O2", "O3"};
  for (int a = 0; a < 13; ++a) {
    const int type = a < 8 ? 1 : a < 10 ? 2 : 3;
    atoms.push_back({kLabels[a], type, 0.071f * a + 0.03f, 0.37f * a - static_cast<int>(0.37f * a),
                     0.53f * a - static_cast<int>(0.53f * a), 1.0f, 2.0f, 1});
  }
  return atoms;
}

TEST(PhaseOrder, FivePhasesFrom10To120DegreesMeetNoPeakOverlap) {
  std::vector<PhaseLines> phases = {
      {"triclinic",
       "P -1",
       {7.1f, 8.3f, 9.2f, 81, 77, 69},
       {0.02f, -0.01f, 0.01f},
       0.5f,
       1e-4f,
       TriclinicAtoms()},
      {"monoclinic",
       "P 21/C",
       {10.0f, 11.0f, 12.5f, 90, 95, 90},
       {0.02f, -0.01f, 0.01f},
       0.5f,
       1e-4f,
       {{"C", 1, 0.11f, 0.22f, 0.33f, 1, 2, 1}, {"O", 3, 0.61f, 0.72f, 0.13f, 1, 2, 1}}},
  };
  for (PhaseLines& cubic : CubicPhases()) phases.push_back(cubic);
  testing::EngineProject project(Project(phases, 10, 0.01f, 120, 10), {});
  ASSERT_TRUE(project.ok) << project.ListFile();
  EXPECT_EQ(project.ListFile().find("EXCESSIVE PEAK OVERLAP"), std::string::npos);
  const EngineState& state = project.state;
  std::vector<int> perPhase(phases.size(), 0);
  for (int r = 0; r < state.reflections.Count(); ++r) {
    int phase = 0, line = 0, h = 0, k = 0, l = 0;
    ReflectionStore::UnpackIndex(state.reflections.PackedIndex(r), phase, line, h, k, l);
    ++perPhase[phase - 1];
  }
  EXPECT_EQ(state.atoms.size(), 13u + 2u + 1u + 2u + 1u);
  EXPECT_GE(perPhase[1], 2000) << "the monoclinic phase";
  // At the top of the range the triclinic and the monoclinic reflections meet: a few hundred
  // reach the point, but all of the monoclinic phase's lie between the first and the last.
  const std::span<const int> top = state.work.reach.At(state.points.count - 1);
  ASSERT_FALSE(top.empty());
  EXPECT_LT(top.size(), 1000u);
  EXPECT_GT(top.back() - top.front(), perPhase[1]);
  EXPECT_TRUE(Sweep(project.state));
}

}  // namespace
}  // namespace kaldena
