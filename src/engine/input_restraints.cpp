// Distance restraints of the input stage: the weight, and each restraint with its partners,
// by label from LRES or by atom number from ARES.
#include "engine/input_stages.h"
#include "store/record_keys.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// Six pairs of label and symmetry code a line; a blank label ends the line.
bool ReadLabelledPartners(InputRecords& in, const std::string& data, Restraint& restraint) {
  std::array<std::string, 6> labels;
  std::array<int, 6> codes{};
  if (Read(data, ReadLayout("LRES"), labels[0], codes[0], labels[1], codes[1], labels[2], codes[2],
           labels[3], codes[3], labels[4], codes[4], labels[5], codes[5]) != ReadStatus::kOk) {
    in.List().Line(ErrorReading("LRES", data));
    in.Fail();
    return false;
  }
  for (int i = 0; i < 6 && !Trimmed(labels[i]).empty(); ++i) {
    restraint.partners.emplace_back(labels[i], codes[i]);
  }
  return true;
}

// The central atom and up to six partners, each its number over all phases times 1000000
// plus its symmetry code (a bare atom number stands at the identity); 0 ends the line.
bool ReadNumberedPartners(InputRecords& in, const EngineState& state, Restraint& restraint) {
  std::array<int, 7> a{};
  if (in.Next("ARES", a[0], a[1], a[2], a[3], a[4], a[5], a[6]) != RecordRead::kOk) {
    return false;
  }
  for (int i = 0; i < 7 && a[i] != 0; ++i) {
    const int atom = a[i] / 1000000 != 0 ? a[i] / 1000000 : a[i];
    const int code = a[i] / 1000000 != 0 ? a[i] % 1000000 : 1555;
    if (atom < 1 || atom > static_cast<int>(state.atoms.size())) continue;
    const std::string& label = state.atoms[atom - 1].label;
    if (i == 0) {
      restraint.name = label;
      restraint.code = code;
    } else {
      restraint.partners.emplace_back(label, code);
    }
  }
  return true;
}

// The partners of a restraint from the next LRES line, or when none is left from ARES.
bool ReadPartners(InputRecords& in, const EngineState& state, Restraint& restraint) {
  std::string data;
  if (in.NextData("LRES", data)) return ReadLabelledPartners(in, data, restraint);
  if (ReadNumberedPartners(in, state, restraint)) return true;
  if (!in.Failed()) in.List().Line("ARES record missing");
  in.Fail();
  return false;
}

}  // namespace

bool ReadRestraints(InputRecords& in, EngineState& state) {
  float& weight = state.controls.restraintWeight;
  in.Next("WRES", weight);
  if (weight <= 0) return !in.Failed();
  while (static_cast<int>(state.restraints.size()) < kMaxRestraints) {
    Restraint restraint;
    if (in.Next("CRES", restraint.name, restraint.distance, restraint.weight) != RecordRead::kOk) {
      break;
    }
    if (!ReadPartners(in, state, restraint)) return false;
    state.restraints.push_back(std::move(restraint));
  }
  return !in.Failed();
}

}  // namespace kaldena
