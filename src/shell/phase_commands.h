// Phase add and delete: both read every phase of the parameter file, write the phase block
// again with one phase more or less, and update the project.
#pragma once

#include "shell/phase_records.h"
#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// "Add new phase".
inline constexpr int kAddPhaseDialog = 119;
inline constexpr int kAddPhaseDefaults = 1334, kAddPhaseProject = 1335, kAddPhaseCif = 1336;
inline constexpr int kAddPhaseFile = 1337, kAddPhaseBrowse = 1338;

// The phase of form 1: one atom "H" of type 1 at the origin in "P 1", a cell of 10 A, titled
// "Default phase", with the starting values of a further phase.
PhaseRecords DefaultAddedPhase();

// Add phase from defaults, another project or a CIF, after the dialog; at most ten phases.
// The phase dialog follows for the new phase.
void AddPhase(ShellState& state, Toolkit& toolkit);
// Deletes phase state.deletePhaseNumber; the phases behind it move up by one.
void DeletePhase(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
