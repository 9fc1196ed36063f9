// The records of a run's results, in the layouts the engine writes, and their place behind
// the marker of the temporary parameter file.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/engine_state.h"
#include "store/record_store.h"

namespace kaldena {

// Sums of one phase's atoms over the cell, for PHMW.
struct PhaseContents {
  int operators = 0;
  float mass = 0;  // atomic mass units; 0 when an atom of the cell has no known element
  float electrons = 0;
  float absorption = 0;  // linear absorption coefficient, 1/cm
};

class ResultRecords {
 public:
  // SCAL, SDSC, CELL, SDCE, PHMW, HWTH, SDHW, ASYM, SDAS, PKSH, SDPK, STSZ, SDTZ.
  void AddPhase(const Phase& phase, const std::array<float, kPhaseSlots>& esds,
                const std::array<float, 6>& cellEsds, const PhaseContents& contents, bool split);
  // CNOM: the anomalous terms in use.
  void AddAtomType(const AtomType& type);
  // XYZ, BETA, SDXY, SDBE; the occupation multiplied back by the site factor.
  void AddAtom(const Atom& atom, const std::array<float, kAtomColumns>& esds);
  // ZETT, AXID, WAVE when refined, BGSC, and BKGR, SDBK for a background of coefficients.
  void AddGlobals(const EngineState& state, const std::array<float, kGlobalSlots>& esds);
  void Add(Record record) { records_.push_back(std::move(record)); }
  std::vector<Record> Take() { return std::move(records_); }

 private:
  void AddAsymmetry(const Phase& phase, const std::array<float, kPhaseSlots>& esds);

  std::vector<Record> records_;
};

// Replaces everything from the marker of the temporary parameter file (its first SCAL line)
// on by `records`. False when the file cannot be read or rewritten.
bool WriteResultRecords(const std::string& temporaryFile, const std::vector<Record>& records);

}  // namespace kaldena
