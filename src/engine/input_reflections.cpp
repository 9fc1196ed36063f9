// Reflection generation for each phase of the run, with the engine's own region above the stop.
#include "engine/input_reflections.h"

#include "engine/input_listing.h"

namespace kaldena {

ReflectionSetup PhaseReflectionSetup(const EngineState& state, const Phase& phase, int number) {
  const RunControls& c = state.controls;
  const auto& v = phase.values;
  ReflectionSetup s;
  s.phase = number;
  s.profile = c.job.profile;
  s.xray = c.job.IsXray();
  s.wavelengths = {c.wavelengths[0], c.wavelengthRefined ? 0.0f : c.wavelengths[1]};
  s.zeroShifts = {state.globals[kZeroPoint].value, state.globals[kSampleShift].value,
                  state.globals[kTransparency].value};
  // The phase holds A, B, C, F, E, D; the generation takes A, B, C, D, E, F.
  s.metric = {v[kMetricA].value,     v[kMetricA + 1].value, v[kMetricA + 2].value,
              v[kMetricA + 5].value, v[kMetricA + 4].value, v[kMetricA + 3].value};
  s.cellEdges = {phase.cell[0], phase.cell[1], phase.cell[2]};
  for (int i = 0; i < 3; ++i) {
    s.halfwidth[i] = v[kHalfwidthU + i].value;
    s.rightHalfwidth[i] = v[kRightHalfwidthU + i].value;
    s.shape[i] = v[kShapeA + i].value;
    s.rightShape[i] = v[kRightShapeA + i].value;
  }
  s.start = c.start;
  s.stop = c.stop;
  s.monoPolarisation = c.rlim[1];
  s.synchrotronPolarisation = c.rlim[4];
  s.guinierAngle = c.rlim[5];
  s.flatPlateMuT = c.rlim[7];
  s.cylinderAbsorption = state.cylinderAbsorption;
  return s;
}

bool GenerateAllReflections(EngineState& state) {
  RunControls& c = state.controls;
  UpperRange range{c.step, c.rlim[0], c.excludedRegions, false};
  AbsorptionRange absorption;
  for (size_t p = 0; p < state.phases.size(); ++p) {
    const Phase& phase = state.phases[p];
    const int number = static_cast<int>(p + 1);
    ListSymmetryOperators(phase, number, state.list);
    ReflectionSetup setup = PhaseReflectionSetup(state, phase, number);
    std::vector<std::string> lines;
    ExtendUpperRange(setup, p == 0, range, c.stop, lines);
    setup.stop = c.stop;
    const GenerationStatus status =
        GenerateReflections(phase.group, setup, state.reflections, absorption, lines);
    for (const std::string& line : lines) state.list.Line(line);
    if (status != GenerationStatus::kOk) return false;
  }
  c.excludedRegions = range.excludedRegions;
  return true;
}

}  // namespace kaldena
