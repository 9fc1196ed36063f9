// "Crystallinity calculation": the limits, a Calculate button that shows the s-weighted
// figure, and OK that keeps limits and results in CRYS of the parameter file.
#pragma once

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// Dialog and field ids of the dialog's resource.
inline constexpr int kCrystallinityDialog = 139;
inline constexpr int kCrystallinityMinimum = 1440;
inline constexpr int kCrystallinityMaximum = 1441;
inline constexpr int kCrystallinityResult = 1442;
inline constexpr int kCrystallinityCalculate = 1443;

void CrystallinityDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
