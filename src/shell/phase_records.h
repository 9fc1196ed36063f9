// The records of the project's phases in memory, as phase add and delete and the phase dialog
// read and write them: each phase's head, its refinable values with their codewords, and its
// atoms. Lines of one key follow one another in phase order, so a change to one phase
// rewrites the whole block of every phase.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "store/job_records.h"
#include "store/record_store.h"

namespace kaldena {

struct PhaseAtom {
  std::string label;              // 4 characters are written
  int type = 1;                   // number into the ANOM list
  std::array<float, 5> values{};  // x, y, z, occupancy (times the site factor), B
  int siteFactor = 1;             // operators that map the site onto itself
  std::array<int, 3> coupling{};  // y, z and B coupling codes
  std::array<float, 6> beta{};    // b11, b22, b33, b12, b13, b23
  std::array<float, 5> codes{};   // codewords of x, y, z, occupancy, B
  std::array<float, 6> betaCodes{};
};

struct PhaseRecords {
  std::string title = "untitled";
  std::array<float, 9> vectors{0, 0, 1, 0, 0, 1, 0, 1, 0};  // the nine PHNA values
  int formulaUnits = 0;                                     // PHMW
  float formulaWeight = 0;
  std::string spaceGroup;
  std::array<float, 2> scale{}, scaleCodes{};  // scale factor, overall B
  std::array<float, 6> cell{10, 10, 10, 90, 90, 90}, cellCodes{};
  std::array<float, 3> asym{}, asymCodes{};
  std::array<float, 6> widths{}, widthCodes{};  // u, v, w and the right side's
  std::array<float, 2> strainSize{}, strainSizeCodes{};
  std::array<float, 6> shape{}, shapeCodes{};  // g1, g2, g3 and the right side's
  std::vector<PhaseAtom> atoms;
};

struct ProjectPhases {
  JobControls job;
  std::vector<PhaseRecords> phases;
  // The file holds BETA (CBET) lines: every atom gets one on writing, as their lines pair
  // with the atoms by position.
  bool anisotropic = false;
  bool betaCoded = false;
};

// JOBT (the defaults of a new project when absent) and the phases of the count it gives, each
// missing record leaving its default. Returns false with `error` set on a record that does
// not read.
bool ReadProjectPhases(RecordStore& store, ProjectPhases& project, std::string& error);

// The first phase's values of another project's file, without its codewords; `anisotropic`
// tells whether it has BETA lines.
bool ReadFirstPhase(RecordStore& store, PhaseRecords& phase, bool& anisotropic);

// Who writes the block: phase add, phase delete (PHNA keeps three of its nine values) or the
// phase dialog (XYZ with its coupling codes, PHMW with cell volume and density).
enum class PhaseBlockWriter { kAdd, kDelete, kDialog };

// The block of all phases, key by key in the order of phase add, by the writer's layouts.
std::vector<Record> PhaseRecordBlock(const ProjectPhases& project, PhaseBlockWriter writer);

// An atom label as the records hold it: four characters, blank-padded.
std::string Label4(std::string_view label);

// Cell volume in A^3, and density in g/cm^3 from the formula weight and Z (0 for no cell).
float PhaseVolume(const PhaseRecords& phase);
float PhaseDensity(const PhaseRecords& phase);

}  // namespace kaldena
