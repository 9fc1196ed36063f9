// The measured pattern of the input stage and the point list that all later stages use.
#include "engine/input_stages.h"
#include "engine/point_list.h"
#include "engine/raw_data.h"

namespace kaldena {

bool ReadPattern(InputRecords&, EngineState& state, Reporter& reporter) {
  RunControls& c = state.controls;
  RawPattern raw;
  std::vector<std::string> lines;
  if (!c.calculation) {
    state.list.Line(" STARTING RAW DATA INPUT");
    const RawDataRequest request{c.format,          c.rlim[6],           state.files.data,
                                 state.files.background, state.files.weights, state.debug};
    raw = ReadRawData(request, c.job.weighting, state.list, reporter);
    state.list.Line(" ENDING RAW DATA INPUT");
    if (raw.points == 0) return false;
    HoldRangeInPattern(raw, c, lines);
  }
  const PointListStatus status = BuildPointList(raw, c, state.points, lines);
  for (const std::string& line : lines) state.list.Line(line);
  return status == PointListStatus::kOk;
}

}  // namespace kaldena
