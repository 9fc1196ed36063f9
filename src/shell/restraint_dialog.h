// "Set up restraints", the phase dialog's sub-dialog: the restraints of the current phase as
// lines of text, new ones made from a chosen central atom, a kind and its ligands.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "shell/phase_records.h"
#include "store/record_store.h"
#include "toolkit/toolkit.h"

namespace kaldena {

inline constexpr int kRestraintsDialog = 120;
inline constexpr int kRestraintPair = 1339, kRestraintTetrahedron = 1340;
inline constexpr int kRestraintOctahedron = 1341;
inline constexpr int kRestraintsWeight = 1342, kRestraintDistance = 1343;
inline constexpr int kRestraintWeight = 1344, kRestraintAdd = 1345;
inline constexpr int kCentralAtomGrid = 1347, kRestraintGrid = 1349, kLigandGrid = 1351;

// One CRES line with its LRES line: the central atom, target, weight and ligands with codes.
struct RestraintLine {
  std::string central;
  float distance = 0;
  float weight = 0;
  std::vector<std::pair<std::string, int>> ligands;
};

struct RestraintSet {
  float weight = 0;  // WRES
  std::vector<RestraintLine> lines;
};

// WRES and every CRES with the LRES line of the same place.
RestraintSet ReadRestraintSet(RecordStore& store);
// WRES, then the CRES lines, then the LRES lines, in the order of the set.
std::vector<Record> RestraintSetRecords(const RestraintSet& set);

// A line as the grid shows it: central atom, its code, distance and the ligands with theirs.
std::string RestraintText(const RestraintLine& line);

// Runs the dialog for the restraints whose central atom belongs to `phase`; the others stay.
// True on OK, with `set` changed.
bool SetUpRestraints(Toolkit& toolkit, const PhaseRecords& phase, int parentDialog,
                     RestraintSet& set);

}  // namespace kaldena
