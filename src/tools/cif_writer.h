// The CIF of a refined project (.cif): a global block with the experiment and the
// refinement, one block per phase with cell, symmetry and atoms, and the geometry loops of
// the silent distance search.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "util/report.h"

namespace kaldena {

enum class CifStatus {
  kOk = 0,
  kFailed = 1,  // the project or the CIF does not open (nothing written), or a phase without
                // CELL or SPGR (the file keeps what was written up to there); told in the log
};

// Writes the CIF of `project` to `cifFile`. `date` ("2026-11-23") goes to
// _audit_creation_date; today when empty.
CifStatus WriteCif(std::string_view project, std::string_view cifFile, Reporter& reporter,
                   std::string_view date = {});

// The CIF beside the project: its base name with ".cif".
std::string CifFileName(std::string_view project);

// The menu's entry: "Starting CIF", the writer, "Error in CIF" on failure, else `openViewer`
// with the CIF's name. Returns the CIF's name, empty on failure.
std::string StartCif(std::string_view project, Reporter& reporter, std::string_view date = {},
                     const std::function<void(const std::string& cifFile)>& openViewer = {});

// The second menu entry: the same without the opening line, failure told as "Error in kd_cif".
std::string RunCif(std::string_view project, Reporter& reporter, std::string_view date = {},
                   const std::function<void(const std::string& cifFile)>& openViewer = {});


}  // namespace kaldena
