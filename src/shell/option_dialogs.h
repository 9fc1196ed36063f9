// The options dialogs of the tools: distances and angles (DIST), tables (TABL) and the Fourier
// calculation (FORD, FLIM, PTIT). Each shows the records of the parameter file, or their
// defaults, and OK writes them back; Cancel leaves the file as it was.
#pragma once

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// "Distance and angle options".
inline constexpr int kDistanceOptionsDialog = 134;
inline constexpr int kDistanceMinimum = 1460, kDistanceMaximum = 1461;
inline constexpr int kAngleMinimum = 1462, kAngleMaximum = 1463;
inline constexpr int kDistanceExtended = 1464;

// "Table options".
inline constexpr int kTableOptionsDialog = 135;
inline constexpr int kTableDecimals = 1470, kTableOccupancy = 1471, kTableAnisoDecimals = 1472;
inline constexpr int kTableBeta = 1473, kTableU = 1474;

// "Fourier calculation options": the map types 2 to 6 are the radio buttons from 1480.
inline constexpr int kFourierOptionsDialog = 136;
inline constexpr int kFourierMapFirst = 1480, kFourierMapLast = 1484;
inline constexpr int kFourierPositiveLevel = 1485, kFourierNegativeLevel = 1486;
inline constexpr int kFourierF000 = 1487, kFourierMaxSin = 1488, kFourierMinSin = 1489;
inline constexpr int kFourierSigma = 1490;
inline constexpr int kFourierLimitsFirst = 1491;  // min x, max x, min y, ... max z to 1496
inline constexpr int kFourierPlotTitle = 1497;

void DistanceOptionsDialog(ShellState& state, Toolkit& toolkit);
void TableOptionsDialog(ShellState& state, Toolkit& toolkit);
void FourierOptionsDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
