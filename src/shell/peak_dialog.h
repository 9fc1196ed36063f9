// "Add Fourier peaks": the peaks of the last Fourier run in a grid, one of which becomes an
// atom of phase 1.
#pragma once

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// Dialog and field ids of the dialog's resource. The grid's selected row number stands in
// the chosen-row field, where the window puts it when a row is selected.
inline constexpr int kPeakDialog = 140;
inline constexpr int kPeakGrid = 1450;
inline constexpr int kPeakChosenRow = 1451;
inline constexpr int kPeakAdd = 1452;

void AddAtomsDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
