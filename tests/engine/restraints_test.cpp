#include "engine/restraints.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "support/test_files.h"

namespace kaldena {
namespace {

// A cubic cell of 5 A with x,y,z and -x,-y,-z.
Phase CubicPhase() {
  Phase phase;
  phase.cell = {5, 5, 5, 90, 90, 90};
  phase.group.operators = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
                           {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}};
  return phase;
}

TEST(Restraints, DistancesThroughOperatorsAndTranslations) {
  const Phase phase = CubicPhase();
  EXPECT_NEAR(DistanceBetween(phase, {0, 0, 0}, 1555, {0.5f, 0, 0}, 1555).d, 2.5f, 1e-5);
  EXPECT_NEAR(DistanceBetween(phase, {0.1f, 0, 0}, 1555, {0.8f, 0, 0}, 1455).d, 1.5f, 1e-5);
  // -x of 0.3 is -0.3; one cell up is 0.7, 0.6 from 0.1.
  EXPECT_NEAR(DistanceBetween(phase, {0.1f, 0, 0}, 1555, {0.3f, 0, 0}, 2655).d, 3.0f, 1e-5);
  // Both ends moved: -x of 0.1 one cell down is -1.1, x of 0.3 one cell up 1.3.
  EXPECT_NEAR(DistanceBetween(phase, {0.1f, 0, 0}, 2455, {0.3f, 0, 0}, 1655).d, 12.0f, 1e-5);
}

TEST(Restraints, GradientsAgreeWithDifferences) {
  Phase phase = CubicPhase();
  phase.cell = {5, 6, 7, 80, 95, 105};
  const std::array<float, 3> x1 = {0.1f, 0.2f, 0.3f}, x2 = {0.35f, 0.15f, 0.42f};
  auto d = [&](const std::array<float, 3>& a, int c1, const std::array<float, 3>& b, int c2) {
    return DistanceBetween(phase, a, c1, b, c2).d;
  };
  const float h = 1e-3f;
  for (const auto& [code1, code2] : {std::pair{1555, 1555}, {1555, 2546}, {2654, 1455}}) {
    const RestrainedDistance r = DistanceBetween(phase, x1, code1, x2, code2);
    for (int j = 0; j < 3; ++j) {
      std::array<float, 3> up = x1, down = x1;
      up[j] += h;
      down[j] -= h;
      const float g1 = (d(up, code1, x2, code2) - d(down, code1, x2, code2)) / (2 * h);
      EXPECT_NEAR(r.g1[j], g1, 2e-3f * std::abs(g1) + 1e-3f) << code1 << " x1 " << j;
      up = down = x2;
      up[j] += h;
      down[j] -= h;
      const float g2 = (d(x1, code1, up, code2) - d(x1, code1, down, code2)) / (2 * h);
      EXPECT_NEAR(r.g2[j], g2, 2e-3f * std::abs(g2) + 1e-3f) << code2 << " x2 " << j;
    }
  }
}

// The reference file of gemmi's distances: cell, operators, atoms, restraints and the distance
// of every atom pair within a restraint.
struct Reference {
  Phase phase;
  std::vector<std::string> operators;
  std::map<std::string, std::array<float, 3>> atoms;
  std::vector<Restraint> restraints;
  std::map<std::string, float> pairs;  // "label code label code"

  static std::string Key(const std::string& l1, int c1, const std::string& l2, int c2) {
    return l1 + " " + std::to_string(c1) + " " + l2 + " " + std::to_string(c2);
  }
  float Pair(const RestraintLink& l) const {
    auto found = pairs.find(Key(l.label1, l.code1, l.label2, l.code2));
    if (found == pairs.end()) found = pairs.find(Key(l.label2, l.code2, l.label1, l.code1));
    return found == pairs.end() ? -1 : found->second;
  }
};

Reference ReadReference() {
  Reference ref;
  std::ifstream in(testing::TestData("engine/restraint_reference.txt"));
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string what, l1, l2;
    int c1 = 0, c2 = 0;
    words >> what;
    if (what == "cell") {
      for (float& v : ref.phase.cell) words >> v;
    } else if (what == "operator") {
      words >> c1 >> l1;
      ref.operators.push_back(l1);
    } else if (what == "atom") {
      words >> l1;
      for (float& v : ref.atoms[l1]) words >> v;
    } else if (what == "restraint") {
      Restraint r;
      words >> r.name >> r.code >> r.distance;
      while (words >> l1 >> c1) r.partners.emplace_back(l1, c1);
      ref.restraints.push_back(r);
    } else if (what == "pair") {
      float d = 0;
      words >> l1 >> c1 >> l2 >> c2 >> d;
      ref.pairs[Reference::Key(l1, c1, l2, c2)] = d;
    }
  }
  std::vector<std::string> lines;
  EXPECT_EQ(ReadPhaseSpaceGroup("P 1 21/C 1", ref.phase.group, lines), 0);
  return ref;
}

TEST(Restraints, TetrahedronAndOctahedronLinksAgreeWithGemmi) {
  const Reference ref = ReadReference();
  ASSERT_EQ(ref.restraints.size(), 2u);
  // The reference applied the operators by number as this library lists them.
  ASSERT_EQ(ref.phase.group.operators.size(), ref.operators.size());
  for (size_t k = 0; k < ref.operators.size(); ++k) {
    EXPECT_EQ(OperatorText(ref.phase.group.operators[k]), ref.operators[k]);
  }
  const float edge[2] = {1.48f * std::sqrt(8.0f / 3.0f), 1.96f * std::sqrt(2.0f)};
  const size_t linkCount[2] = {4 + 6, 6 + 12};
  for (size_t r = 0; r < 2; ++r) {
    const Restraint& restraint = ref.restraints[r];
    const std::vector<RestraintLink> links = RestraintLinks(restraint);
    ASSERT_EQ(links.size(), linkCount[r]);
    for (const RestraintLink& l : links) {
      const bool central = l.label1 == restraint.name;
      EXPECT_FLOAT_EQ(l.target, central ? restraint.distance : edge[r]);
      const float expected = ref.Pair(l);
      ASSERT_GT(expected, 0) << Reference::Key(l.label1, l.code1, l.label2, l.code2);
      const float d = DistanceBetween(ref.phase, ref.atoms.at(l.label1), l.code1,
                                      ref.atoms.at(l.label2), l.code2)
                          .d;
      EXPECT_NEAR(d, expected, 2e-4f * expected)
          << Reference::Key(l.label1, l.code1, l.label2, l.code2);
    }
  }
  // The octahedron's opposite corners are no edge: the partners 1-2, 3-4, 5-6.
  const std::vector<RestraintLink> octahedron = RestraintLinks(ref.restraints[1]);
  for (int k = 0; k < 3; ++k) {
    const auto& [la, ca] = ref.restraints[1].partners[2 * k];
    const auto& [lb, cb] = ref.restraints[1].partners[2 * k + 1];
    EXPECT_EQ(std::count_if(octahedron.begin(), octahedron.end(),
                            [&](const RestraintLink& l) {
                              return l.label1 == la && l.code1 == ca && l.label2 == lb &&
                                     l.code2 == cb;
                            }),
              0);
  }
  // Any other number of partners gives the pairs alone.
  Restraint three = ref.restraints[0];
  three.partners.pop_back();
  EXPECT_EQ(RestraintLinks(three).size(), 3u);
}

TEST(Restraints, OneStepMovesTheDistanceOntoItsTarget) {
  EngineState state;
  Phase phase = CubicPhase();
  phase.atoms = 2;
  state.phases = {phase};
  Atom central, partner;
  central.label = "Si";
  partner.label = "O1";
  partner.values[kAtomX] = {0.3f, 1.0f, 1};  // parameter 1
  state.atoms = {central, partner};
  state.parameters = 1;
  state.controls.restraintWeight = 2.0f;
  state.restraints = {{"Si", 1.6f, 5.0f, {{"O1", 1555}}}};
  state.work.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 0.0f);
  const RestraintSums sums = AddRestraints(state);
  ASSERT_EQ(sums.count, 1);
  EXPECT_NEAR(sums.absResidual, 0.1, 1e-5);  // 1.5 against 1.6
  EXPECT_NEAR(sums.weightedResidual2, 10.0 * 0.01, 1e-5);
  // The distance is linear in x here: the Newton step lands on the target.
  const float shift = state.shifts[0] / state.work.normal[0];
  EXPECT_NEAR(5.0f * (0.3f + shift), 1.6f, 1e-5);
  // An unknown partner is passed over.
  state.restraints[0].partners = {{"Xx", 1555}};
  EXPECT_EQ(AddRestraints(state).count, 0);
}

}  // namespace
}  // namespace kaldena
