// The Plot menu's options dialog and the Fourier map's contour dialog.
#pragma once

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// "Plot options": a check box for each curve and phase, and beside each a colour button 245
// above it (1386 for raw data to 1400 for phase 10).
inline constexpr int kPlotOptionsDialog = 111;
inline constexpr int kShowRawBox = 1141, kShowDifferenceBox = 1142, kShowBackgroundBox = 1143,
                     kShowBraggBox = 1144, kShowSumBox = 1145, kShowPhaseFirstBox = 1146;
inline constexpr int kColourButtonOffset = 245;

// "Fourier plot": the axis at right angles to the section, and the steps through them.
inline constexpr int kFourierPlotDialog = 137;
inline constexpr int kFourierAxisX = 1500, kFourierAxisZ = 1502;
inline constexpr int kFourierNext = 1503, kFourierPrevious = 1504, kFourierPrint = 1505;

// OK keeps the new content, phase flags and colours and redraws; Cancel changes nothing.
void PlotOptionsDialog(ShellState& state, Toolkit& toolkit);

// Reads the project's plot file and shows its sections from the first, stepping with Next
// and Previous round the count along the chosen axis; Print sends the section to the printer.
void FourierPlotDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
