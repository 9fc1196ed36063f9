// What a new project holds before anyone edits it: the phase that the new-project command
// writes, and the records that the edit dialogs would write when confirmed unchanged, so
// that a new project runs at once as a pattern calculation.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "store/record_store.h"
#include "util/report.h"

namespace kaldena {

struct NewAtom {
  std::string name;  // 4 characters are written
  int type = 1;      // number into the ANOM list
  std::array<float, 5> values{};          // x, y, z, occupancy, B
  std::array<float, 6> beta{};            // b11, b22, b33, b12, b13, b23
  std::array<float, 5> valueSd{};         // from a CIF
  std::array<float, 6> betaSd{};
  int siteFactor = 1;   // operators that map the site onto itself
  std::string element;  // symbol of the atom type, when it is not the name's beginning
};

struct NewPhase {
  std::string title;
  std::string spaceGroup;
  std::array<float, 6> cell{};
  std::array<float, 6> cellSd{};
  std::vector<NewAtom> atoms;
  // A phase from a CIF carries its standard uncertainties and a BETA line for every atom.
  bool fromCif = false;
};

// The element that an atom's name begins with, as a two-character type symbol; hydrogen when
// the name names no element.
std::string AtomTypeSymbol(std::string_view atomName);
// The ANOM line of that element, with the table's f' and f'' at the default wavelength.
Record AtomTypeLine(std::string_view atomName);

// One atom "H" of type 1 at the origin, occupancy 1, B 1, in "P 1" with a cell of 10 A.
NewPhase DefaultPhase();

// The block of the new-project command for one phase: PHTI, PHNA, SPGR, CELL, (SDCE), the
// XYZ lines (each with SDXY from a CIF), then BETA (and SDBE) for every atom when any atom is
// anisotropic or the phase comes from a CIF.
std::vector<Record> PhaseBlock(const NewPhase& phase);

// Adds `phase` to the parameter file behind the phases already there, with the default
// refinable values of a phase (scale, widths, shape, codewords) and, for every record that
// a new project's edit dialogs write and the file lacks, its default. Records present are
// kept; JOBT gets the new count of phases and atom types. File names default to
// `baseName` plus extension. Returns false, with a log line, when nothing could be written.
bool AddNewProjectRecords(const std::string& parameterFile, const std::string& baseName,
                          const NewPhase& phase, Reporter& reporter);

}  // namespace kaldena
