// Fourier peaks into the project: all peaks appended as atom lines (then checked with a
// distance list), or one chosen peak made an atom of phase 1.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "util/report.h"

namespace kaldena {

inline constexpr int kMaxPeakChoices = 100;
inline constexpr int kNewAtomType = 6;

struct PeakEntry {
  std::string label;  // 4 characters: P or N and the height
  float x = 0.0f, y = 0.0f, z = 0.0f;
};

// Runs the distance list of a project into `listFile`; 0 on success.
using DistanceListRunner =
    std::function<int(std::string_view project, std::string_view listFile, Reporter& reporter)>;

struct AddAllPeaksResult {
  int status = 0;            // 0 good, 1 the copy or the distance list failed
  int added = 0;             // lines appended to the project file
  std::string distanceList;  // base + ".dis", for the viewer after a successful run
};

// "Add peaks and distances": every line of the peak file (base + ".prm") appended to
// `projectFile`, "<n> atoms added to project file", then the distance list by `distances`
// ("Error in DISTAN" when it fails). No check for duplicates: a second run adds the peaks
// again. With no runner only the peaks are added.
AddAllPeaksResult AddAllPeaks(std::string_view projectFile, const DistanceListRunner& distances,
                              Reporter& reporter);

enum class AddPeakStatus {
  kOk = 0,         // the atom is in the parameter file
  kFailed = 1,     // told in the log; the parameter file is as it was
  kNoPeaks = 2,    // "No atoms read": nothing to offer
  kCancelled = 3,  // nothing chosen; nothing changed
};

// The peaks offered by the dialog: the peak file's lines read with "(10x,a4,6x,3f10.0)", at
// most 100. "Error opening Fourier peak file", or "No atoms read" for a file of no lines.
AddPeakStatus ReadPeakChoices(std::string_view peakFile, std::vector<PeakEntry>& peaks,
                              Reporter& reporter);

// The dialog's row label of a peak (1-based): "(i3.3)", "007".
std::string PeakRowLabel(int row);

// The dialog's choice made an atom: peak `row` (1-based; 0 for Cancel) becomes the last atom
// of phase 1 with type 6, occupancy 1, B 1, no betas, and the atoms of later phases move on
// by one. PHNA, XYZ and BETA are rewritten in the parameter file; "One atom added to phase 1".
// A row outside the list reports "Error " and the number.
AddPeakStatus AddPeakAsAtom(std::string_view parameterFile, const std::vector<PeakEntry>& peaks,
                            int row, Reporter& reporter);

}  // namespace kaldena
