// "Edit controls" with its grids of excluded regions, atom types and calibration.
#include <array>

#include "crystal/elements.h"
#include "shell/edit_command.h"
#include "shell/edit_dialogs.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "util/text.h"

namespace kaldena {
namespace {

struct AtomType {
  std::string symbol;
  float fPrime = 0.0f, fDoublePrime = 0.0f;
};

// The records of the dialog, with the dialog's defaults for those that are absent.
struct Controls {
  JobControls job;
  std::array<int, 2> listing{25, 1};                                              // UTPT
  std::array<float, 3> wavelengths{1.54051f, 1.54433f, 0.5f};                     // ELAM
  std::array<float, 8> limits{10.0f, 0.9f, 0.0f, 40.0f, 0.0f, 0.0f, 0.0f, 0.0f};  // RLIM
  int cycles = 6;                                                                 // RELX (1)
  std::array<float, 8> relax{0.3f, 1.0f, 1.0f, 1.0f, 1.0f, 5.0f, 0.02f, 140.0f};  // RELX (2-9)
  float damping = 1.0f;                                                           // DAMP
  float restraintsWeight = 0.0f;                                                  // WRES
  int calibration = 0;                                                            // ICLT
  std::array<float, kCalibrationRows> polynomial{};                               // POLY
  std::vector<std::array<float, 2>> excluded;                                     // EXRG
  std::vector<AtomType> atomTypes;                                                // ANOM
  // The lists are written only once their grid was confirmed: lines beyond the count in JOBT
  // stay as they are until then.
  bool excludedEdited = false;
  bool atomTypesEdited = false;
};

void ReadArray(RecordStore& store, std::string_view key, std::string_view format,
               std::span<float> values) {
  std::string data;
  if (store.jFindRec(key, data) != 1) return;
  std::vector<ReadTarget> targets(values.begin(), values.end());
  ReadFormatted(data, format, targets);
}

Controls ReadControls(RecordStore& store) {
  Controls c;
  std::vector<std::string> ignored;
  ReadJobControls(store, c.job, ignored);
  std::string data;
  if (store.jFindRec("UTPT", data) == 1) Read(data, "(2I5)", c.listing[0], c.listing[1]);
  ReadArray(store, "ELAM", "(3F10.0)", c.wavelengths);
  ReadArray(store, "RLIM", "(8F9.0)", c.limits);
  if (store.jFindRec("RELX", data) == 1) {
    auto& r = c.relax;
    Read(data, "(I5,5F5.0,3F10.0)", c.cycles, r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7]);
  }
  if (store.jFindRec("DAMP", data) == 1) Read(data, "(F10.0)", c.damping);
  if (store.jFindRec("WRES", data) == 1) Read(data, "(F10.0)", c.restraintsWeight);
  if (store.jFindRec("ICLT", data) == 1) Read(data, "(I5)", c.calibration);
  ReadArray(store, "POLY", "(5E14.7)", std::span(c.polynomial).first(5));
  ReadArray(store, "POLY", "(5E14.7)", std::span(c.polynomial).subspan(5));
  for (const std::string& line : FindRecords(store, "EXRG", c.job.excludedRegions)) {
    std::array<float, 2> region{};
    Read(line, "(2F10.0)", region[0], region[1]);
    c.excluded.push_back(region);
  }
  for (const std::string& line : FindRecords(store, "ANOM", c.job.atomTypes)) {
    AtomType type;
    Read(line, "(A4,6X,2F9.0)", type.symbol, type.fPrime, type.fDoublePrime);
    type.symbol = type.symbol.substr(0, 2);
    c.atomTypes.push_back(type);
  }
  return c;
}

std::vector<Record> ControlsRecords(const Controls& c) {
  const auto& l = c.limits;
  const auto& r = c.relax;
  std::vector<Record> records = {
      JobControlsRecord(c.job),
      MakeRecord("UTPT", "(2i5)", c.listing[0], c.listing[1]),
      MakeRecord("ELAM", "(3f10.6)", c.wavelengths[0], c.wavelengths[1], c.wavelengths[2]),
      MakeRecord("RLIM", "(8f10.5)", l[0], l[1], l[2], l[3], l[4], l[5], l[6], l[7]),
      MakeRecord("RELX", "(i5,5f5.2,3f10.5)", c.cycles, r[0], r[1], r[2], r[3], r[4], r[5], r[6],
                 r[7]),
      MakeRecord("DAMP", "(f10.5)", c.damping),
      MakeRecord("ICLT", "(i5)", c.calibration),
      MakeRecord("WRES", "(f10.2)", c.restraintsWeight),
  };
  const std::vector<FormatArg> poly(c.polynomial.begin(), c.polynomial.end());
  for (Record& line : MakeRecords("POLY", "(5e14.6)", poly)) records.push_back(std::move(line));
  for (const auto& region : c.excludedEdited ? c.excluded : decltype(c.excluded){}) {
    records.push_back(MakeRecord("EXRG", "(2f10.3)", region[0], region[1]));
  }
  for (const AtomType& type : c.atomTypesEdited ? c.atomTypes : decltype(c.atomTypes){}) {
    records.push_back(
        MakeRecord("ANOM", "(a2,8x,2f10.5)", type.symbol, type.fPrime, type.fDoublePrime));
  }
  return records;
}

// The profile button and the asymmetry number of a profile function number.
int ProfileButton(int profile) {
  if (profile == 1 || profile == 4 || profile == 7 || profile == 8) return 1;
  return profile == 2 ? 2 : 3;
}
int AsymmetryOf(int profile) {
  if (profile <= 3) return 1;
  if (profile <= 5) return 2;
  return profile == 6 ? 3 : profile == 7 ? 4 : 5;
}
// And back, for an asymmetry of 1 to 5. Split and axial divergence have one function each,
// whatever the button says.
int ProfileNumber(int button, int asymmetry) {
  if (button == 2) return 2;
  constexpr std::array<int, 5> kPseudoVoigt = {1, 4, 6, 7, 8};
  constexpr std::array<int, 5> kVoigt = {3, 5, 6, 7, 9};
  const auto index = static_cast<std::size_t>(asymmetry - 1);
  return button == 1 ? kPseudoVoigt[index] : kVoigt[index];
}

void PutControls(Toolkit& toolkit, const Controls& c) {
  const JobControls& j = c.job;
  toolkit.WDialogPutRadioButton(j.IsXray() ? kControlsXrays : kControlsNeutrons);
  toolkit.WDialogPutRadioButton(kControlsRefinement + std::min(j.jobType / 2, 2));
  toolkit.WDialogPutRadioButton(kControlsProfileFirst + ProfileButton(j.profile) - 1);
  toolkit.WDialogPutRadioButton(kControlsAsymmetryFirst + AsymmetryOf(j.profile) - 1);
  toolkit.WDialogPutRadioButton(j.background < 0 ? kControlsChebyshev : kControlsPolynomial);
  toolkit.WDialogPutRadioButton(kControlsWeightingFirst + std::clamp(j.weighting, 0, 2));
  toolkit.WDialogPutInteger(kControlsEveryPoint, j.mergePoints);
  toolkit.WDialogPutInteger(kControlsCycles, c.cycles);
  toolkit.WDialogPutReal(kControlsShiftLimit, c.relax[0]);
  toolkit.WDialogPutReal(kControlsDamping, c.damping);
  toolkit.WDialogPutReal(kControlsRestraintsWeight, c.restraintsWeight);
  toolkit.WDialogPutReal(kControlsStart, c.relax[5]);
  toolkit.WDialogPutReal(kControlsStep, c.relax[6]);
  toolkit.WDialogPutReal(kControlsStop, c.relax[7]);
  for (int i = 0; i < 4; ++i) toolkit.WDialogPutReal(kControlsRelaxationFirst + i, c.relax[1 + i]);
  toolkit.WDialogPutReal(kControlsPeakRange, c.limits[0]);
  toolkit.WDialogPutReal(kControlsMonochromator, c.limits[1]);
  toolkit.WDialogPutReal(kControlsCylinder, c.limits[2]);
  toolkit.WDialogPutReal(kControlsAsymmetryLimit, c.limits[3]);
  for (int i = 0; i < 4; ++i) toolkit.WDialogPutReal(kControlsSynchrotron + i, c.limits[4 + i]);
  for (int i = 0; i < 3; ++i)
    toolkit.WDialogPutReal(kControlsWavelengthFirst + i, c.wavelengths[i]);
  toolkit.WDialogPutInteger(kControlsReflections, c.listing[0]);
  toolkit.WDialogPutInteger(kControlsCorrelation, c.listing[1]);
  toolkit.WDialogPutInteger(kControlsCalibrationKind, c.calibration);
  toolkit.WDialogPutString(kControlsPhases, std::to_string(j.phases));
}

float RealOf(DialogValues& values, int field) { return static_cast<float>(values.Real(field)); }

void TakeControls(DialogValues& values, Toolkit& toolkit, Controls& c) {
  JobControls& j = c.job;
  const int neutrons = toolkit.WDialogGetRadioButton(kControlsXrays, kControlsNeutrons) == 2;
  const int job = toolkit.WDialogGetRadioButton(kControlsRefinement, kControlsComparison);
  if (job > 0) j.jobType = 2 * (job - 1) + neutrons;
  const int button = toolkit.WDialogGetRadioButton(kControlsProfileFirst, kControlsProfileLast);
  const int asymmetry =
      toolkit.WDialogGetRadioButton(kControlsAsymmetryFirst, kControlsAsymmetryLast);
  if (button > 0) j.profile = ProfileNumber(button, asymmetry > 0 ? asymmetry : 1);
  j.background =
      toolkit.WDialogGetRadioButton(kControlsChebyshev, kControlsPolynomial) == 2 ? 0 : -1;
  const int weighting =
      toolkit.WDialogGetRadioButton(kControlsWeightingFirst, kControlsWeightingLast);
  if (weighting > 0) j.weighting = weighting - 1;
  j.mergePoints = values.Integer(kControlsEveryPoint);
  c.cycles = values.Integer(kControlsCycles);
  c.relax[0] = RealOf(values, kControlsShiftLimit);
  c.damping = RealOf(values, kControlsDamping);
  c.restraintsWeight = RealOf(values, kControlsRestraintsWeight);
  c.relax[5] = RealOf(values, kControlsStart);
  c.relax[6] = RealOf(values, kControlsStep);
  c.relax[7] = RealOf(values, kControlsStop);
  for (int i = 0; i < 4; ++i) c.relax[1 + i] = RealOf(values, kControlsRelaxationFirst + i);
  c.limits[0] = RealOf(values, kControlsPeakRange);
  c.limits[1] = RealOf(values, kControlsMonochromator);
  c.limits[2] = RealOf(values, kControlsCylinder);
  c.limits[3] = RealOf(values, kControlsAsymmetryLimit);
  for (int i = 0; i < 4; ++i) c.limits[4 + i] = RealOf(values, kControlsSynchrotron + i);
  for (int i = 0; i < 3; ++i) c.wavelengths[i] = RealOf(values, kControlsWavelengthFirst + i);
  c.listing = {values.Integer(kControlsReflections), values.Integer(kControlsCorrelation)};
  c.calibration = values.Integer(kControlsCalibrationKind);
}

// The sub-dialogs: a grid loaded from memory, copied back on OK without the empty rows.
void LoadGrid(Toolkit& toolkit, int dialog, int grid, int rows) {
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(dialog);
  toolkit.WGridRows(grid, rows);
  for (int row = 1; row <= rows; ++row) toolkit.WGridLabelRow(grid, row, std::to_string(row));
}

void ExcludedRegions(Toolkit& toolkit, Controls& c) {
  const int rows = std::max<int>(kExcludedRows, int(c.excluded.size()));
  LoadGrid(toolkit, kExcludedDialog, kExcludedGrid, rows);
  for (std::size_t i = 0; i < c.excluded.size(); ++i) {
    for (int column = 1; column <= 2; ++column) {
      toolkit.WGridPutCellReal(kExcludedGrid, column, int(i) + 1, c.excluded[i][column - 1]);
    }
  }
  std::vector<std::array<float, 2>> regions;
  const bool accepted =
      RunSubDialog(toolkit, kExcludedDialog, kControlsDialog, [&](DialogValues& v) {
        regions.clear();
        for (int row = 1; row <= rows; ++row) {
          const std::array<float, 2> region{static_cast<float>(v.CellReal(kExcludedGrid, 1, row)),
                                            static_cast<float>(v.CellReal(kExcludedGrid, 2, row))};
          if (region[0] != 0.0f || region[1] != 0.0f) regions.push_back(region);
        }
      });
  if (!accepted) return;
  c.excluded = regions;
  c.excludedEdited = true;
  c.job.excludedRegions = static_cast<int>(regions.size());
}

// An atom type names an element of the table (two characters, case as the table has it).
std::string ElementCheck(const std::string& symbol, int row) {
  std::string padded = symbol;
  padded.resize(2, ' ');
  if (ElementNumber(padded) != 0) return {};
  return "row " + std::to_string(row) + ", Type: \"" + symbol + "\" is not an element symbol";
}

void AtomTypes(Toolkit& toolkit, Controls& c) {
  const int rows = std::max<int>(kAtomTypesRows, int(c.atomTypes.size()));
  LoadGrid(toolkit, kAtomTypesDialog, kAtomTypesGrid, rows);
  for (std::size_t i = 0; i < c.atomTypes.size(); ++i) {
    const int row = static_cast<int>(i) + 1;
    toolkit.WGridPutCellString(kAtomTypesGrid, 1, row, StrippedText(c.atomTypes[i].symbol));
    toolkit.WGridPutCellReal(kAtomTypesGrid, 2, row, c.atomTypes[i].fPrime);
    toolkit.WGridPutCellReal(kAtomTypesGrid, 3, row, c.atomTypes[i].fDoublePrime);
  }
  std::vector<AtomType> types;
  const bool accepted =
      RunSubDialog(toolkit, kAtomTypesDialog, kControlsDialog, [&](DialogValues& v) {
        types.clear();
        for (int row = 1; row <= rows; ++row) {
          AtomType type{std::string(Trimmed(v.CellText(kAtomTypesGrid, 1, row))),
                        static_cast<float>(v.CellReal(kAtomTypesGrid, 2, row)),
                        static_cast<float>(v.CellReal(kAtomTypesGrid, 3, row))};
          if (type.symbol.empty() && type.fPrime == 0.0f && type.fDoublePrime == 0.0f) continue;
          v.Require(ElementCheck(type.symbol, row));
          type.symbol.resize(2, ' ');  // A2 would put a short symbol to the right
          types.push_back(type);
        }
      });
  if (!accepted) return;
  c.atomTypes = types;
  c.atomTypesEdited = true;
  c.job.atomTypes = static_cast<int>(types.size());
}

void Calibration(Toolkit& toolkit, Controls& c) {
  LoadGrid(toolkit, kCalibrationDialog, kCalibrationGrid, kCalibrationRows);
  for (int row = 1; row <= kCalibrationRows; ++row) {
    toolkit.WGridPutCellReal(kCalibrationGrid, 1, row, c.polynomial[row - 1]);
  }
  std::array<float, kCalibrationRows> coefficients{};
  const bool accepted =
      RunSubDialog(toolkit, kCalibrationDialog, kControlsDialog, [&](DialogValues& v) {
        for (int row = 1; row <= kCalibrationRows; ++row) {
          coefficients[row - 1] = static_cast<float>(v.CellReal(kCalibrationGrid, 1, row));
        }
      });
  if (accepted) c.polynomial = coefficients;
}

int ControlsButton(Toolkit& toolkit, Controls& c, int button) {
  if (button == kControlsExcludedButton) ExcludedRegions(toolkit, c);
  if (button == kControlsAtomTypesButton) AtomTypes(toolkit, c);
  if (button == kControlsCalibrationButton) Calibration(toolkit, c);
  return -1;
}

}  // namespace

void EditControlsDialog(ShellState& state, Toolkit& toolkit) {
  EditCommand edit(state, toolkit, "Edit controls");
  Controls c;
  if (!edit.Read([&](RecordStore& store) { c = ReadControls(store); })) return;
  edit.Load(kControlsDialog);
  PutControls(toolkit, c);
  const int result = edit.Run([&](int button) { return ControlsButton(toolkit, c, button); },
                              [&](DialogValues& values) { TakeControls(values, toolkit, c); });
  if (result == kEditCancelled) return;
  // A list that is now empty leaves no lines behind: its count in JOBT says none.
  std::vector<std::string_view> emptied;
  if (c.excludedEdited && c.excluded.empty()) emptied.push_back("EXRG");
  if (c.atomTypesEdited && c.atomTypes.empty()) emptied.push_back("ANOM");
  edit.Write(ControlsRecords(c), emptied);
}

}  // namespace kaldena
