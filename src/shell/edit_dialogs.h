// The edit dialogs of the project's files, controls and global parameters. Each reads its
// records from the parameter file, shows them, and on OK writes them anew (edit_command.h).
#pragma once

#include "shell/menu_dispatch.h"
#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// "Edit files".
inline constexpr int kFilesDialog = 101;
inline constexpr int kFilesTitle = 1012;
inline constexpr int kFilesRawData = 1013, kFilesWeights = 1014, kFilesBackground = 1015;
inline constexpr int kFilesList = 1016;  // then parameter 1017, summary 1018, Fourier 1019
inline constexpr int kFilesBackgroundFactor = 1020, kFilesEnvironment = 1021;
inline constexpr int kFilesRefineFactor = 1022;
inline constexpr int kFilesFormatFirst = 1023, kFilesFormatLast = 1030;  // gdf to cif
inline constexpr int kFilesFormatEpf = 1045;
inline constexpr int kFilesDefaultFirst = 1031;  // "Def." of the four outputs, to 1034
inline constexpr int kFilesCompare = 1035, kFilesRefine = 1036, kFilesCalculate = 1037;
inline constexpr int kFilesBrowseRawData = 1038;  // weights 1039, background 1040
inline constexpr int kFilesBrowseList = 1041;     // then 1042 to 1044 for the other outputs

// "Edit controls" and its sub-dialogs.
inline constexpr int kControlsDialog = 104;
inline constexpr int kControlsXrays = 1046, kControlsNeutrons = 1047;
inline constexpr int kControlsRefinement = 1049, kControlsComparison = 1051;
inline constexpr int kControlsProfileFirst = 1054, kControlsProfileLast = 1056;
inline constexpr int kControlsAsymmetryFirst = 1058, kControlsAsymmetryLast = 1062;
inline constexpr int kControlsAsymmetryLimit = 1063;
inline constexpr int kControlsChebyshev = 1065, kControlsPolynomial = 1066;
inline constexpr int kControlsWeightingFirst = 1068, kControlsWeightingLast = 1070;
inline constexpr int kControlsEveryPoint = 1072, kControlsCycles = 1073;
inline constexpr int kControlsShiftLimit = 1075, kControlsDamping = 1076;
inline constexpr int kControlsRestraintsWeight = 1078;
inline constexpr int kControlsStart = 1080, kControlsStop = 1082, kControlsStep = 1084;
inline constexpr int kControlsReflections = 1601, kControlsCorrelation = 1602;
inline constexpr int kControlsWavelengthFirst = 1603;  // alpha 1, alpha 2, ratio
// RLIM (1), (2), (3), then (5) to (8); RLIM (4) is the asymmetry limit.
inline constexpr int kControlsPeakRange = 1606, kControlsMonochromator = 1607;
inline constexpr int kControlsCylinder = 1608;
inline constexpr int kControlsSynchrotron = 1609;      // to 1612
inline constexpr int kControlsRelaxationFirst = 1613;  // atomic, thermal, profile, other
inline constexpr int kControlsCalibrationKind = 1617;  // ICLT
inline constexpr int kControlsPhases = 1618;
inline constexpr int kControlsExcludedButton = 1620, kControlsAtomTypesButton = 1621;
inline constexpr int kControlsCalibrationButton = 1622;

inline constexpr int kExcludedDialog = 105, kExcludedGrid = 1625, kExcludedRows = 20;
inline constexpr int kAtomTypesDialog = 108, kAtomTypesGrid = 1626, kAtomTypesRows = 20;
inline constexpr int kCalibrationDialog = 110, kCalibrationGrid = 1627, kCalibrationRows = 10;

// "Edit global parameters": ZETT, AXID values with codes and refine boxes beside them, the
// wavelength of WAVE, and the background grid of coefficient, code and refine.
inline constexpr int kGlobalsDialog = 112;
inline constexpr int kGlobalsZeroFirst = 1651;   // values 1651-1653, codes 1654-, boxes 1657-
inline constexpr int kGlobalsAxialFirst = 1661;  // values 1661-1663, codes 1664-, boxes 1667-
inline constexpr int kGlobalsWavelength = 1671;  // code 1672, box 1673
inline constexpr int kGlobalsBackgroundGrid = 1675, kGlobalsBackgroundRows = 25;

void EditFilesDialog(ShellState& state, Toolkit& toolkit);
void EditControlsDialog(ShellState& state, Toolkit& toolkit);
void EditGlobalsDialog(ShellState& state, Toolkit& toolkit);

// Puts the three dialogs into the routines of the Edit menu.
void AddEditRoutines(ShellRoutines& routines);

// The dialogs of a new project, each to its end: Files, Controls, Globals, then the phase
// dialog of `routines` for each phase (when it has one).
void EditNewProject(ShellState& state, Toolkit& toolkit, const ShellRoutines& routines);

}  // namespace kaldena
