// The steps of the input stage, in their order, for engine_input.cpp. Each reads its records
// through `in`, writes its list lines and returns false when the run cannot go on.
#pragma once

#include "engine/engine_state.h"
#include "engine/input_records.h"
#include "util/report.h"

namespace kaldena {

// TITL, FRMT, JOBT and the job type.
bool ReadJob(InputRecords& in, EngineState& state, Reporter& reporter);
// The banner, the job and the numbers of the run.
void WriteListHead(const EngineState& state, ListFile& list);
// UTPT, DSPL, the wavelengths, RLIM, RELX, DAMP, LIMP, BLOK and EXRG.
bool ReadInstrument(InputRecords& in, EngineState& state, Reporter& reporter);
// ANOM with AXTB, BXTB, CXTB for types given by table.
bool ReadAtomTypes(InputRecords& in, EngineState& state);
// ZETT, AXID, the background and its file factor, CRYS, the calibration.
bool ReadGlobals(InputRecords& in, EngineState& state);
// The raw data and the point list.
bool ReadPattern(InputRecords& in, EngineState& state, Reporter& reporter);
// Each phase with its atoms, and its metric from the cell.
bool ReadPhases(InputRecords& in, EngineState& state, Reporter& reporter);
// The codewords of atoms and phases, for a refinement.
bool ReadCodewords(InputRecords& in, EngineState& state);
// The form factors or scattering lengths of the atom types, as listed.
void ListAtomicData(const EngineState& state, ListFile& list);
// WRES, CRES and LRES.
bool ReadRestraints(InputRecords& in, EngineState& state);

}  // namespace kaldena
