// What the CIF writer reads of a project, taken out of the record store in one pass so that
// the blocks can be written in any order.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/record_lines.h"
#include "util/report.h"

namespace kaldena {

struct CifOutAtomType {
  std::string symbol;  // two characters
  float fPrime = 0, fDoublePrime = 0;
};

struct CifOutAtom {
  std::string label;              // four characters
  int type = 0;                   // into the ANOM list, from 1
  std::array<float, 5> values{};  // x, y, z, occupancy, B
  std::array<float, 5> esds{};
  std::optional<float> bIso, bIsoEsd;  // BISO and SDBI, which replace B and its esd
  std::array<float, 6> beta{}, betaEsd{};

  bool Anisotropic() const { return beta[0] != 0 && beta[1] != 0; }
};

struct CifOutPhase {
  std::string title;  // PHTI without trailing blanks; empty when absent or blank
  std::string symbol;
  bool hasSymbol = false, hasCell = false;
  CellParameters cell{};
  std::array<float, 6> cellEsd{};
  int units = 0;  // PHMW: the operator count, cell mass, absorption (1/cm), electrons
  float mass = 0, absorption = 0, electrons = 0;
  std::optional<float> preferredOrientation;  // the first value of ASYM
  std::vector<CifOutAtom> atoms;
  int atomsAsked = 0;  // the PHNA count (500 without PHNA)
};

struct CifOutResiduals {
  int parameters = 0, points = 0, reflections = 0, restraints = 0;
  float rp = 0, rwp = 0, chi2 = 0, braggR = 0, restraintR = 0;
};

struct CifOutProject {
  std::string title = "Untitled";
  std::vector<CifOutAtomType> types;   // CNOM, at most 20
  std::vector<std::string> anomTypes;  // element symbols of ANOM, the project's atom types
  std::array<float, 5> sample{};       // SAMP: axial, equatorial, thickness, temperature, spare
  std::array<int, 3> sampleCodes{};    // mount mode, shape, monochromator
  std::optional<std::array<float, 6>> range;  // CIF2
  std::array<int, 14> job{};
  std::vector<CifOutResiduals> residuals;                  // RVAL, one a phase
  std::optional<std::array<float, 2>> wavelengths;         // ELAM
  float cylinderMuR = 0;                                   // RLIM (3)
  int decimals = 4, occupancyForm = 1, anisoDecimals = 4;  // TABL
  std::vector<CifOutPhase> phases;
};

enum class CifOutReadStatus { kOk = 0, kCannotOpen = 1 };

// Loads the project and reads every record the CIF needs; the store is closed again.
// " XYZ records read" is logged for a phase whose atoms were cut.
CifOutReadStatus ReadCifOutProject(std::string_view projectFile, CifOutProject& project,
                                   Reporter& reporter);

}  // namespace kaldena
