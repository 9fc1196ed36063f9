// The phase dialog, "Edit parameters and codewords": the head of state.currentPhase, each of
// its refinable values with a refine box and code, and the grid of its atoms, with the change
// of origin as a sub-dialog.
#pragma once

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

inline constexpr int kPhaseDialog = 113;
inline constexpr int kPhaseTitle = 1190, kPhaseSpaceGroup = 1191;
inline constexpr int kPhaseVoigtVector = 1192;  // to 1194
inline constexpr int kPhaseFormulaWeight = 1195, kPhaseMultiplicity = 1196;
inline constexpr int kPhaseVolume = 1197, kPhaseDensity = 1198;
inline constexpr int kPhaseAtomGrid = 1199;
inline constexpr int kPhaseOriginButton = 1186, kPhaseRestraintsButton = 1187;
// The refinable values in order: scale, overall B, ASYM (3), CELL (6), HWTH (6), STSZ (2),
// PKSH (6); each with its value field, refine box and code field.
inline constexpr int kPhaseValueFirst = 1200, kPhaseRefineFirst = 1250, kPhaseCodeFirst = 1300;
inline constexpr int kPhaseValueCount = 25;
// Atom grid columns: label, type, x, y, z, occupancy, B, their five codes, the six betas and
// their six codes.
inline constexpr int kAtomGridColumns = 24;
inline constexpr int kAtomGridRows = 200;

inline constexpr int kPhaseAddAtomButton = 1188, kPhaseDeleteAtomsButton = 1189;

inline constexpr int kPhaseAtomNumber = 1185, kPhaseEditAtomButton = 1184;

// "Edit atomic parameters" of the atom whose row stands in the atom number field.
inline constexpr int kAtomDialog = 114;
inline constexpr int kAtomLabel = 1398, kAtomType = 1399;
// x, y, z, occupancy, B, b11 to b23: value, refine box and code fields.
inline constexpr int kAtomValueFirst = 1400, kAtomRefineFirst = 1420, kAtomCodeFirst = 1440;

inline constexpr int kPhaseMoveAtomsButton = 1183;

inline constexpr int kDeleteAtomsDialog = 115;
inline constexpr int kDeleteAtomsGrid = 1355;

inline constexpr int kAddAtomDialog = 117;
inline constexpr int kAddAtomElement = 1360, kAddAtomLabel = 1361;
inline constexpr int kAddAtomValueFirst = 1362;  // x, y, z, occupancy, B to 1366

// "Move/Copy atom(s)": the marked atoms to the end of another phase, or copied there.
inline constexpr int kMoveAtomsDialog = 116;
inline constexpr int kMoveAtomsGrid = 1356, kMoveAtoms = 1357, kCopyAtoms = 1358;
inline constexpr int kMoveAtomsTarget = 1359;

inline constexpr int kChangeOriginDialog = 125;
inline constexpr int kOriginShiftFirst = 1369;  // to 1371

void EditPhaseDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
