// Distance restraints of the input stage: the weight, and each restraint with its partners.
#include "engine/input_stages.h"
#include "store/record_keys.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// Six pairs of label and symmetry code a line; a blank label ends the line.
bool ReadPartners(InputRecords& in, Restraint& restraint) {
  std::string data;
  if (!in.NextData("LRES", data)) {
    in.List().Line("ARES record missing");
    in.Fail();
    return false;
  }
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
    if (!ReadPartners(in, restraint)) return false;
    state.restraints.push_back(std::move(restraint));
  }
  return !in.Failed();
}

}  // namespace kaldena
