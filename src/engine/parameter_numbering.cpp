#include "engine/parameter_numbering.h"

#include <cmath>
#include <string>

#include "engine/parameter_limits.h"
#include "store/codeword.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// Which RELX relaxation factor a parameter takes.
enum class Kind { kAtomic = 0, kThermal = 1, kProfile = 2, kOther = 3 };

Kind AtomKind(int column) {
  return column <= kAtomZ || column == kAtomOccupation ? Kind::kAtomic : Kind::kThermal;
}

Kind PhaseKind(int slot) {
  if (slot == kOverallB) return Kind::kThermal;
  if ((slot >= kHalfwidthU && slot < kMetricA) || slot > kMetricA + 5) return Kind::kProfile;
  return Kind::kOther;
}

Kind GlobalKind(int slot) { return slot < kAxial1 ? Kind::kOther : Kind::kProfile; }

// Coupling codes of special positions as multipliers: 2 equal, 3 twice, 4 minus, 5 minus twice.
float CouplingMultiplier(int code) {
  static constexpr float kMultipliers[] = {0, 0, 1.0f, 2.0f, -1.0f, -2.0f};
  return kMultipliers[code];
}

float Sign(float v) { return v < 0 ? -1.0f : 1.0f; }

class Numbering {
 public:
  Numbering(EngineState& state, Reporter& reporter) : state_(state), reporter_(reporter) {}

  void Atom(kaldena::Atom& atom) {
    auto& v = atom.values;
    for (int column = 1; column <= kAtomColumns; ++column) {
      if (column == kAtomY && CouplesY(atom)) {
        Tie(v[kAtomY], v[kAtomX], CouplingMultiplier(atom.zCoupling), Kind::kAtomic);
      } else if (column == kAtomZ && CouplesZ(atom)) {
        const Refinable& from = atom.yCoupling >= 2 ? v[kAtomY] : v[kAtomX];
        Tie(v[kAtomZ], from, CouplingMultiplier(atom.bCoupling), Kind::kAtomic);
      } else {
        Number(v[column], AtomKind(column));
        if (column == kAtomOccupation) KeepOccupationRatio(atom);
      }
    }
    if (atom.siteFactor > 1) {
      Debug(FormatLine("('Coupling check ',4I5)", atom.siteFactor, atom.yCoupling,
                       atom.zCoupling, atom.bCoupling));
    }
  }

  void Phase(kaldena::Phase& phase) {
    auto& v = phase.values;
    for (int slot = 1; slot <= kPhaseSlots; ++slot) {
      const bool tiedToA = (slot == kMetricA + 1 && phase.laueFlag >= 1) ||
                           (slot == kMetricA + 2 && phase.laueFlag == 2);
      if (tiedToA) {
        Tie(v[slot], v[kMetricA], 1.0f, Kind::kOther);
      } else {
        Number(v[slot], PhaseKind(slot));
      }
    }
  }

  void Globals() {
    for (int slot = 1; slot <= kGlobalSlots; ++slot) {
      Refinable& g = state_.globals[slot];
      Number(g, GlobalKind(slot));
      // A global value cannot be tied.
      if (g.number > kMaxParameters) g = {g.value, 0, 0};
    }
  }

  // Values tied above 400 take the number of their group plus 500, and their value from it.
  void ResolveTies() {
    for (kaldena::Phase& phase : state_.phases) {
      for (Refinable& r : phase.values.slots) Resolve(r);
    }
    for (kaldena::Atom& atom : state_.atoms) {
      for (Refinable& r : atom.values.slots) Resolve(r);
    }
  }

  bool Overflow() const { return overflow_; }

  // The parameter that a group number stands for, 0 when nothing refines it.
  int ParameterOfGroup(int group) const {
    return group >= 0 && group <= kMaxParameters ? groups_[group] : 0;
  }

 private:
  static bool CouplesY(const kaldena::Atom& a) {
    return a.siteFactor > 1 && a.yCoupling >= 2 && a.zCoupling >= 2;
  }
  static bool CouplesZ(const kaldena::Atom& a) {
    return a.siteFactor >= 2 && (a.yCoupling >= 2 || a.zCoupling >= 2) && a.bCoupling >= 2;
  }

  int NewParameter() {
    if (state_.parameters == kMaxParameters) {
      overflow_ = true;
      return 0;
    }
    return ++state_.parameters;
  }

  void SetRelaxation(int number, Kind kind) {
    if (number >= 1 && number <= kMaxParameters) {
      state_.relaxation[number - 1] = state_.controls.relaxation[static_cast<int>(kind)];
    }
  }

  // The value's codeword stands in its fraction.
  void Number(Refinable& r, Kind kind) {
    const Codeword c(r.fraction);
    lastGroup_ = -1;
    if (c.IsFixed()) {
      r.number = 0;
    } else if (c.IsOwn()) {
      r.number = NewParameter();
    } else if (c.GroupNumber() > kMaxParameters) {
      r.number = c.GroupNumber();  // tied: resolved after the globals
    } else {
      int& number = groups_[c.GroupNumber()];
      if (number == 0) number = NewParameter();
      r.number = number;
      lastGroup_ = c.GroupNumber();
    }
    r.fraction = r.number == 0 ? 0.0f : c.Multiplier();
    SetRelaxation(r.number, kind);
  }

  void Tie(Refinable& r, const Refinable& to, float multiplier, Kind kind) {
    r.number = to.number;
    r.fraction = to.number == 0 ? 0.0f : multiplier;
    SetRelaxation(r.number, kind);
  }

  // The first occupation of a group records its site factor with the codeword's sign; later
  // ones take the ratio of the site factors as their multiplier.
  void KeepOccupationRatio(kaldena::Atom& atom) {
    if (lastGroup_ < 0) return;
    Refinable& occupation = atom.values[kAtomOccupation];
    float& recorded = occupationSites_[lastGroup_];
    const float site = static_cast<float>(atom.siteFactor);
    if (recorded == 0) {
      recorded = Sign(occupation.fraction) * site;
      Debug(Format("(/a,3i5,f10.2)", "Multiplicity check 1 ", atom.siteFactor, lastGroup_,
                   occupation.number, recorded));
      return;
    }
    occupation.fraction = Sign(recorded) * Sign(occupation.fraction) * std::abs(recorded) / site;
    Debug(Format("(/a,3i5,f10.2)", "Multiplicity check 2 ", atom.siteFactor, lastGroup_,
                 occupation.number, occupation.fraction));
  }

  void Resolve(Refinable& r) {
    if (r.number <= kMaxParameters) return;
    const int group = r.number - kTiedOffset;
    const int number = group >= 0 && group <= kMaxParameters ? groups_[group] : 0;
    if (number == 0) {
      r.number = 0;  // tied to a group that nothing refines: the value stays as it is
      r.fraction = 0;
      return;
    }
    r.number = number + kTiedOffset;
    r.value = ResetTied(state_, r.number, r.fraction, state_.list);
  }

  void Debug(const std::string& text) {
    if (!state_.debug) return;
    for (std::string_view line : SplitLines(text)) {
      if (!line.empty()) reporter_.LogLine(line);
    }
  }

  EngineState& state_;
  Reporter& reporter_;
  std::array<int, kMaxParameters + 1> groups_{};  // group number to parameter number
  std::array<float, kMaxParameters + 1> occupationSites_{};
  int lastGroup_ = -1;
  bool overflow_ = false;
};

}  // namespace

void CheckBlocks(EngineState& state) {
  for (const ParameterBlock& block : state.controls.blocks) {
    bool below = false;
    for (const Atom& atom : state.atoms) {
      for (const Refinable& r : atom.values.slots) {
        const Codeword c(r.fraction);
        if (c.IsGroup() && c.GroupNumber() == block.watched && r.value < block.limit) {
          state.list.Line(FormatLine("('*** Parameter ',I4,' below',F8.4,' ***')", block.watched,
                                     block.limit));
          below = true;
        }
      }
    }
    if (!below) continue;
    auto clear = [&](Refinable& r) {
      const Codeword c(r.fraction);
      if (c.IsGroup() && c.GroupNumber() == block.blocked) r.fraction = 0;
    };
    for (Atom& atom : state.atoms) {
      for (Refinable& r : atom.values.slots) clear(r);
    }
    for (Phase& phase : state.phases) {
      for (Refinable& r : phase.values.slots) clear(r);
    }
    for (Refinable& r : state.globals.slots) clear(r);
    state.list.Line(FormatLine("('    Parameter ',I4,' blocked')", block.blocked));
  }
}

bool NumberParameters(EngineState& state, Reporter& reporter) {
  Numbering numbering(state, reporter);
  for (Phase& phase : state.phases) {
    for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
      numbering.Atom(state.atoms[a]);
    }
    numbering.Phase(phase);
  }
  // Restraints carry no codewords of their own.
  numbering.Globals();
  numbering.ResolveTies();
  for (ParameterBlock& block : state.controls.blocks) {
    block.watchedParameter = numbering.ParameterOfGroup(block.watched);
    block.blockedParameter = numbering.ParameterOfGroup(block.blocked);
  }
  if (numbering.Overflow()) {
    state.list.Line(FormatLine("(' Too many parameters: more than',I4)", kMaxParameters));
    return false;
  }
  return true;
}

void ApplyInputLimits(EngineState& state) {
  std::vector<ParameterLimit>& limits = state.controls.limits;
  if (limits.empty()) return;
  auto apply = [&](Refinable& r) {
    if (r.number < 1 || r.number > kMaxParameters) return;
    float shift = state.shifts[r.number - 1] * r.fraction;
    float esd = 0;
    ApplyLimit(limits, r.number, shift, esd, r.value);
    ClearLimitMarks(limits);
    r.value += shift;
  };
  for (Atom& atom : state.atoms) {
    for (Refinable& r : atom.values.slots) apply(r);
  }
  for (Phase& phase : state.phases) {
    for (int slot = 1; slot <= kPhaseSlots; ++slot) {
      if (slot < kMetricA || slot > kMetricA + 5) apply(phase.values[slot]);
    }
  }
  for (Refinable& r : state.globals.slots) apply(r);
}

std::string ParameterName(const EngineState& state, int number) {
  static constexpr const char* kAtomNames[] = {"X", "Y", "Z", "B", "OCC", "B11",
                                               "B22", "B33", "B12", "B13", "B23"};
  static constexpr const char* kPhaseNames[] = {
      "SCALE", "OVERALL B", "U", "V", "W", "A*", "B*", "C*", "F*", "E*", "D*", "PREF 1",
      "PREF 2", "ASYMMETRY", "SHAPE 1", "SHAPE 2", "SHAPE 3", "RIGHT U", "RIGHT V",
      "RIGHT W", "R SHAPE 1", "R SHAPE 2", "R SHAPE 3", "STRAIN", "SIZE"};
  static constexpr const char* kGlobalNames[] = {"ZEROPOINT", "SAMPLE SHIFT", "TRANSPARENCY"};
  std::string name;
  for (size_t p = 0; p < state.phases.size() && name.empty(); ++p) {
    const Phase& phase = state.phases[p];
    for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms && name.empty(); ++a) {
      const Atom& atom = state.atoms[a];
      for (int j = 1; j <= kAtomColumns && name.empty(); ++j) {
        if (atom.values[j].number == number) name = std::string(kAtomNames[j - 1]) + " " + atom.label;
      }
    }
    for (int slot = 1; slot <= kSize && name.empty(); ++slot) {
      if (phase.values[slot].number == number) {
        name = std::string(kPhaseNames[slot - 1]) + " PHASE " + std::to_string(p + 1);
      }
    }
  }
  for (int slot = 1; slot <= kGlobalSlots && name.empty(); ++slot) {
    if (state.globals[slot].number != number) continue;
    if (slot <= kTransparency) {
      name = kGlobalNames[slot - 1];
    } else if (slot < kAxial1) {
      name = "BACKGROUND " + std::to_string(slot - kFirstBackground + 1);
    } else {
      static constexpr const char* kOthers[] = {"AXIAL 1", "AXIAL 2", "TRANSP. ASYM.",
                                                "WAVELENGTH", "BKG FACTOR"};
      name = kOthers[slot - kAxial1];
    }
  }
  name.resize(20, ' ');
  return name;
}

float ResetTied(const EngineState& state, int number, float fraction, ListFile& list) {
  const int n = number - kTiedOffset;
  for (const Phase& phase : state.phases) {
    for (int slot = 1; slot <= kRightShapeA + 2; ++slot) {
      if (phase.values[slot].number == n) return phase.values[slot].value * fraction;
    }
  }
  for (const Atom& atom : state.atoms) {
    for (const Refinable& r : atom.values.slots) {
      if (r.number == n) return r.value * fraction;
    }
  }
  list.Line(FormatLine("('  *** WARNING    Reset did not work ',I5,' ***')", number));
  return 0;
}

}  // namespace kaldena
