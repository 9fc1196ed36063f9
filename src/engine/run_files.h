// The file stage of a run: the names of all files of the run, the project loaded into the
// record store for the input stage, the run's temporary parameter file laid out for the
// engine's result records, and the list file opened.
#pragma once

#include <array>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>

#include "engine/engine_state.h"
#include "engine/list_file.h"
#include "store/record_store.h"
#include "util/report.h"

namespace kaldena {

enum class RunFilesStatus { kOk = 0, kFailed = 1 };

// The keys of the records that the engine writes itself, in the order in which they follow
// the marker of the temporary file. RVAL comes last: it is dropped from the old file and
// never copied behind the marker.
inline constexpr std::array<std::string_view, 30> kResultKeys = {
    "SCAL", "SDSC", "HWTH", "SDHW", "CELL", "SDCE", "ASYM", "SDAS", "PKSH", "SDPK",
    "XYZ ", "BISO", "BETA", "SDXY", "SDBI", "SDBE", "ZETT", "BKGR", "SDBK", "AXID",
    "STSZ", "SDTZ", "PHMW", "WAVE", "CRYS", "CIF1", "CIF2", "CNOM", "BGSC", "RVAL"};

// The project name with anything behind a three-character extension cut off ("a.rec1"
// becomes "a.rec"); only a point behind the last directory separator starts an extension.
std::string CutProjectName(std::string_view projectName);

// The data, background and weights files of the loaded project, beside the project unless
// their records name a directory.
void NameInputFiles(EngineState& state, RecordStore& store);

// Fills the file names of `state`, loads the project into `store` (where it stays for the
// input stage), writes the temporary file "%" + base + ".<process id>-<count>.tmp" beside the
// output parameter file and opens the list file in `state.list`. Default output names lie
// beside the project.
// Failures: the log says "Error opening or reading " + name when the project does not load;
// boxes "Error" tell of a project, temporary or list file that does not open; a project
// without SCAL leaves "Missing scale factor for PRFPAR" in the list file.
RunFilesStatus SetUpRunFiles(std::string_view projectName, EngineState& state, RecordStore& store,
                             Reporter& reporter);

// Copies a project into the temporary file: the lines of all other keys in their order, the
// first SCAL line as the marker behind which the engine writes, then the old lines of the
// result keys but RVAL. Reading stops at the end of the stream or a line beginning "END".
// Lines are written blank padded to 256 characters, as the record store writes its files.
// Without any SCAL line it writes "Missing scale factor for PRFPAR" to `list` and fails.
RunFilesStatus CopyProjectToTemporary(std::istream& project, std::ostream& temporary,
                                      ListFile& list);

}  // namespace kaldena
