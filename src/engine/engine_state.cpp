#include "engine/engine_state.h"

namespace kaldena {

void ZeroEngineState(EngineState& state) {
  // The debug flag belongs to the caller of the run and is set before the state is cleared.
  const bool debug = state.debug;
  state.list.Close();  // a list written so far stands
  state = EngineState{};
  state.debug = debug;
}

}  // namespace kaldena
