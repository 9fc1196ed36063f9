#include "engine/engine_input.h"

#include "engine/input_listing.h"
#include "engine/input_reflections.h"
#include "engine/input_stages.h"
#include "engine/parameter_numbering.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

// The value that every parameter's shift starts from, so that the first cycle's ratios are
// defined.
constexpr float kInitialShift = 1.0e-20f;

void DebugWord(const EngineState& state, Reporter& reporter, std::string_view word) {
  if (state.debug) reporter.ShowMessage("Progress", word);
}

// Codewords, blocks, numbers and limits: the least-squares parameters of a refinement.
bool SetUpParameters(InputRecords& in, EngineState& state, Reporter& reporter) {
  if (!ReadCodewords(in, state)) return false;
  CheckBlocks(state);
  if (!NumberParameters(state, reporter)) return false;
  ApplyInputLimits(state);
  ListCoding(state, state.list);
  return true;
}

}  // namespace

InputStatus ReadEngineInput(EngineState& state, RecordStore& store, Reporter& reporter) {
  if (!state.list.IsOpen()) {
    reporter.ShowMessage("Error", "LOUT does not exist");
    return InputStatus::kFailed;
  }
  if (state.debug) reporter.ShowMessage("List file", state.files.list);
  state.shifts.fill(kInitialShift);
  InputRecords in(store, state.list);
  if (!ReadJob(in, state, reporter)) return InputStatus::kFailed;
  WriteListHead(state, state.list);
  if (!ReadInstrument(in, state, reporter) || !ReadAtomTypes(in, state) ||
      !ReadGlobals(in, state) || !ReadPattern(in, state, reporter)) {
    return InputStatus::kFailed;
  }
  DebugWord(state, reporter, "Data input done");
  if (!ReadPhases(in, state, reporter)) return InputStatus::kFailed;
  ListInitialParameters(state, state.list);
  if (IsRefinement(state.controls) && !SetUpParameters(in, state, reporter)) {
    return InputStatus::kFailed;
  }
  ListAtomicData(state, state.list);
  if (!GenerateAllReflections(state) || !ReadRestraints(in, state)) return InputStatus::kFailed;
  state.list.Text(Format("(/I5,' PARAMETERS WILL BE REFINED')", state.parameters));
  return InputStatus::kOk;
}

}  // namespace kaldena
