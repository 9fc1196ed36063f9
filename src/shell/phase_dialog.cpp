// The phase dialog over the block of all phases: only the current phase changes, and the
// block is written again since its lines stand by position.
#include "shell/phase_dialog.h"

#include <algorithm>
#include <functional>

#include "crystal/elements.h"
#include "crystal/space_group.h"
#include "crystal/symbol_tables.h"
#include "shell/atom_site.h"
#include "shell/default_project.h"
#include "shell/edit_command.h"
#include "shell/phase_records.h"
#include "shell/restraint_dialog.h"
#include "shell/shell_services.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// A refinable value of the phase and its codeword, by the dialog's running number.
struct ValueSlot {
  float* value;
  float* code;
};

std::array<ValueSlot, kPhaseValueCount> Slots(PhaseRecords& p) {
  std::array<ValueSlot, kPhaseValueCount> slots{};
  int k = 0;
  auto add = [&](auto& values, auto& codes) {
    for (size_t i = 0; i < values.size(); ++i) slots[k++] = {&values[i], &codes[i]};
  };
  add(p.scale, p.scaleCodes);
  add(p.asym, p.asymCodes);
  add(p.cell, p.cellCodes);
  add(p.widths, p.widthCodes);
  add(p.strainSize, p.strainSizeCodes);
  add(p.shape, p.shapeCodes);
  return slots;
}

// The grid's real columns of an atom, from column 3 on.
std::array<float*, kAtomGridColumns - 2> AtomCells(PhaseAtom& a) {
  std::array<float*, kAtomGridColumns - 2> cells{};
  int k = 0;
  for (float& v : a.values) cells[k++] = &v;
  for (float& v : a.codes) cells[k++] = &v;
  for (float& v : a.beta) cells[k++] = &v;
  for (float& v : a.betaCodes) cells[k++] = &v;
  return cells;
}

void ShowVolumeAndDensity(Toolkit& toolkit, const PhaseRecords& p) {
  toolkit.WDialogPutString(kPhaseVolume, FormatLine("(f10.2)", PhaseVolume(p)));
  toolkit.WDialogPutString(kPhaseDensity, FormatLine("(f10.4)", PhaseDensity(p)));
}

void PutAtomRow(Toolkit& toolkit, int row, PhaseAtom a) {
  toolkit.WGridLabelRow(kPhaseAtomGrid, row, Trimmed(a.label));
  toolkit.WGridPutCellString(kPhaseAtomGrid, 1, row, Trimmed(a.label));
  toolkit.WGridPutCellInteger(kPhaseAtomGrid, 2, row, a.type);
  const auto cells = AtomCells(a);
  for (size_t c = 0; c < cells.size(); ++c) {
    toolkit.WGridPutCellReal(kPhaseAtomGrid, static_cast<int>(c) + 3, row, *cells[c]);
  }
}

void PutPhase(Toolkit& toolkit, PhaseRecords p) {
  toolkit.WDialogPutString(kPhaseTitle, p.title);
  toolkit.WDialogPutString(kPhaseSpaceGroup, p.spaceGroup);
  for (int i = 0; i < 3; ++i) toolkit.WDialogPutReal(kPhaseVoigtVector + i, p.vectors[3 + i]);
  toolkit.WDialogPutReal(kPhaseFormulaWeight, p.formulaWeight);
  toolkit.WDialogPutInteger(kPhaseMultiplicity, p.formulaUnits);
  ShowVolumeAndDensity(toolkit, p);
  const auto slots = Slots(p);
  for (int k = 0; k < kPhaseValueCount; ++k) {
    toolkit.WDialogPutReal(kPhaseValueFirst + k, *slots[k].value);
    toolkit.WDialogPutCheckBox(kPhaseRefineFirst + k, *slots[k].code != 0 ? 1 : 0);
    toolkit.WDialogPutReal(kPhaseCodeFirst + k, *slots[k].code);
  }
  const int rows = std::min(static_cast<int>(p.atoms.size()), kAtomGridRows);
  toolkit.WGridRows(kPhaseAtomGrid, rows);
  for (int row = 1; row <= rows; ++row) PutAtomRow(toolkit, row, p.atoms[row - 1]);
}

// The symbol in the program's form; false when the symbol reader refuses it.
bool NormalisedSymbol(std::string_view typed, std::string& symbol) {
  const std::string text(Trimmed(typed));
  symbol = ConvertPrintedSymbol(text);
  SpaceGroupInfo info;
  return ParseSpaceGroupSymbol(symbol, info) == SymbolStatus::kOk;
}

// The dialog's values into the phase; codes by the codeword rule.
void TakePhase(Toolkit& toolkit, DialogValues& values, CodewordNumbering codes, PhaseRecords& p) {
  p.title = values.Text(kPhaseTitle);
  if (Trimmed(p.title).empty()) p.title = "untitled";
  const std::string typed = values.Text(kPhaseSpaceGroup);
  if (!NormalisedSymbol(typed, p.spaceGroup)) {
    values.Require("Spacegroup: " + std::string(Trimmed(typed)) + " is no space group symbol");
  }
  for (int i = 0; i < 3; ++i) {
    p.vectors[3 + i] = static_cast<float>(values.Real(kPhaseVoigtVector + i));
  }
  p.formulaWeight = static_cast<float>(values.Real(kPhaseFormulaWeight));
  p.formulaUnits = values.Integer(kPhaseMultiplicity);
  const auto slots = Slots(p);
  for (int k = 0; k < kPhaseValueCount; ++k) {
    *slots[k].value = static_cast<float>(values.Real(kPhaseValueFirst + k));
    const bool refine = toolkit.WDialogGetCheckBox(kPhaseRefineFirst + k) != 0;
    *slots[k].code = codes.Take(refine, values.Real(kPhaseCodeFirst + k));
  }
  const int rows = std::min(static_cast<int>(p.atoms.size()), kAtomGridRows);
  for (int row = 1; row <= rows; ++row) {
    PhaseAtom& a = p.atoms[row - 1];
    a.label = values.CellText(kPhaseAtomGrid, 1, row);
    a.type = values.CellInteger(kPhaseAtomGrid, 2, row);
    const auto cells = AtomCells(a);
    for (size_t c = 0; c < cells.size(); ++c) {
      *cells[c] = static_cast<float>(values.CellReal(kPhaseAtomGrid, static_cast<int>(c) + 3, row));
    }
  }
}

// Dialog 125: a shift added to the coordinates in the grid. Offered for the groups with a
// choice of origin.
void ChangeOrigin(Toolkit& toolkit, int atoms) {
  const std::string symbol = toolkit.WDialogGetString(kPhaseSpaceGroup);
  if (OriginChoiceIndex(symbol) == 0) {
    ShowMessage(toolkit, "Change origin", "This space group has one origin");
    return;
  }
  toolkit.WDialogLoad(kChangeOriginDialog);
  std::array<double, 3> shift{};
  if (!RunSubDialog(toolkit, kChangeOriginDialog, kPhaseDialog, [&](DialogValues& values) {
        for (int i = 0; i < 3; ++i) shift[i] = values.Real(kOriginShiftFirst + i);
      })) {
    return;
  }
  for (int row = 1; row <= std::min(atoms, kAtomGridRows); ++row) {
    for (int i = 0; i < 3; ++i) {
      const double x = toolkit.WGridGetCellReal(kPhaseAtomGrid, 3 + i, row);
      toolkit.WGridPutCellReal(kPhaseAtomGrid, 3 + i, row, x + shift[i]);
    }
  }
}

// Dialog 117: a new atom behind the others. Its type is the ANOM line of its element, its label
// the element and a running number unless one is typed, and its site factor and refined
// coordinates follow from the site in the group that the dialog's symbol gives.
void AddAtom(Toolkit& toolkit, const std::vector<std::string>& types, PhaseRecords& phase) {
  std::string symbol;
  SpaceGroupInfo group;
  if (!NormalisedSymbol(toolkit.WDialogGetString(kPhaseSpaceGroup), symbol) ||
      ParseSpaceGroupSymbol(symbol, group) != SymbolStatus::kOk ||
      ExpandOperators(group) != ExpandStatus::kOk) {
    ShowMessage(toolkit, "Error ", "Spacegroup: " + symbol + " is no space group symbol");
    return;
  }
  toolkit.WDialogLoad(kAddAtomDialog);
  toolkit.WDialogPutReal(kAddAtomValueFirst + 3, 1.0);
  toolkit.WDialogPutReal(kAddAtomValueFirst + 4, 1.0);
  PhaseAtom atom;
  if (!RunSubDialog(toolkit, kAddAtomDialog, kPhaseDialog, [&](DialogValues& values) {
        const std::string element = std::string(Trimmed(values.Text(kAddAtomElement)));
        const auto type = std::find(types.begin(), types.end(), AtomTypeSymbol(element));
        if (element.empty() || ElementNumber(AtomTypeSymbol(element)) == 0 || type == types.end()) {
          values.Require("Element: " + element + " has no atom type line");
        }
        atom.type = static_cast<int>(type - types.begin()) + 1;
        atom.label = std::string(Trimmed(values.Text(kAddAtomLabel)));
        if (atom.label.empty()) {
          atom.label = element + std::to_string(phase.atoms.size() + 1);
        }
        for (int i = 0; i < 5; ++i) {
          atom.values[i] = static_cast<float>(values.Real(kAddAtomValueFirst + i));
        }
      })) {
    return;
  }
  const SiteCodes site = SiteOf(group, {atom.values[0], atom.values[1], atom.values[2]});
  atom.siteFactor = site.siteFactor;
  std::copy(site.codes.begin(), site.codes.end(), atom.codes.begin());
  atom.coupling = site.coupling;
  phase.atoms.push_back(atom);
  const int row = static_cast<int>(phase.atoms.size());
  if (row > kAtomGridRows) return;
  toolkit.WGridRows(kPhaseAtomGrid, row);
  PutAtomRow(toolkit, row, atom);
}

// Dialog 114: the row of the grid that the atom number names, each value with its code.
void EditAtom(Toolkit& toolkit, int atoms, CodewordNumbering& numbering) {
  const int row = toolkit.WDialogGetInteger(kPhaseAtomNumber);
  if (row < 1 || row > std::min(atoms, kAtomGridRows)) {
    ShowMessage(toolkit, "Make a selection", "You have to give the number of an atom");
    return;
  }
  // Values at grid columns 3 to 7 and 13 to 18, their codes five and six columns on.
  auto valueColumn = [](int k) { return k < 5 ? 3 + k : 8 + k; };
  auto codeColumn = [](int k) { return k < 5 ? 8 + k : 14 + k; };
  const std::string label = toolkit.WGridGetCellString(kPhaseAtomGrid, 1, row);
  const int type = toolkit.WGridGetCellInteger(kPhaseAtomGrid, 2, row);
  std::array<double, 11> value{}, code{};
  for (int k = 0; k < 11; ++k) {
    value[k] = toolkit.WGridGetCellReal(kPhaseAtomGrid, valueColumn(k), row);
    code[k] = toolkit.WGridGetCellReal(kPhaseAtomGrid, codeColumn(k), row);
  }
  toolkit.WDialogLoad(kAtomDialog);
  toolkit.WDialogPutString(kAtomLabel, label);
  toolkit.WDialogPutInteger(kAtomType, type);
  for (int k = 0; k < 11; ++k) {
    toolkit.WDialogPutReal(kAtomValueFirst + k, value[k]);
    toolkit.WDialogPutCheckBox(kAtomRefineFirst + k, code[k] != 0 ? 1 : 0);
    toolkit.WDialogPutReal(kAtomCodeFirst + k, code[k]);
  }
  std::string newLabel;
  int newType = type;
  CodewordNumbering trial = numbering;
  if (!RunSubDialog(toolkit, kAtomDialog, kPhaseDialog, [&](DialogValues& values) {
        trial = numbering;
        newLabel = values.Text(kAtomLabel);
        newType = values.Integer(kAtomType);
        for (int k = 0; k < 11; ++k) {
          value[k] = values.Real(kAtomValueFirst + k);
          code[k] = trial.Take(toolkit.WDialogGetCheckBox(kAtomRefineFirst + k) != 0,
                               values.Real(kAtomCodeFirst + k));
        }
      })) {
    return;
  }
  numbering = trial;
  toolkit.WGridPutCellString(kPhaseAtomGrid, 1, row, Trimmed(newLabel));
  toolkit.WGridPutCellInteger(kPhaseAtomGrid, 2, row, newType);
  for (int k = 0; k < 11; ++k) {
    toolkit.WGridPutCellReal(kPhaseAtomGrid, valueColumn(k), row, value[k]);
    toolkit.WGridPutCellReal(kPhaseAtomGrid, codeColumn(k), row, code[k]);
  }
}

// The rows marked in the first column of a sub-dialog's atom list, run to OK; empty on Cancel.
// `take` reads the sub-dialog's other fields.
std::vector<int> MarkedAtoms(Toolkit& toolkit, const PhaseRecords& phase, int dialog, int grid,
                             const std::function<void(DialogValues&)>& take = {}) {
  const int rows = std::min(static_cast<int>(phase.atoms.size()), kAtomGridRows);
  toolkit.WGridRows(grid, rows);
  for (int row = 1; row <= rows; ++row) {
    toolkit.WGridPutCellString(grid, 2, row, Trimmed(phase.atoms[row - 1].label));
  }
  std::vector<int> marked;
  if (!RunSubDialog(toolkit, dialog, kPhaseDialog, [&](DialogValues& values) {
        marked.clear();
        for (int row = 1; row <= rows; ++row) {
          if (toolkit.WGridGetCheckBox(grid, 1, row) != 0) marked.push_back(row);
        }
        if (take) take(values);
      })) {
    marked.clear();
  }
  return marked;
}

// The marked atoms leave the phase and its grid, last first.
void RemoveAtoms(Toolkit& toolkit, const std::vector<int>& marked, PhaseRecords& phase) {
  for (auto row = marked.rbegin(); row != marked.rend(); ++row) {
    phase.atoms.erase(phase.atoms.begin() + (*row - 1));
    toolkit.WGridDeleteRows(kPhaseAtomGrid, *row, 1);
  }
}

// Dialog 115: the atoms marked in its list leave the phase.
void DeleteAtoms(Toolkit& toolkit, PhaseRecords& phase) {
  toolkit.WDialogLoad(kDeleteAtomsDialog);
  RemoveAtoms(toolkit, MarkedAtoms(toolkit, phase, kDeleteAtomsDialog, kDeleteAtomsGrid), phase);
}

// Dialog 116: the marked atoms go to the end of a phase (this one too), or are copied there.
// Edits in the grid travel with them.
void MoveAtoms(Toolkit& toolkit, int number, ProjectPhases& project) {
  PhaseRecords& phase = project.phases[number - 1];
  toolkit.WDialogLoad(kMoveAtomsDialog);
  toolkit.WDialogPutInteger(kMoveAtomsTarget, number);
  int target = number;
  bool copy = false;
  const std::vector<int> marked =
      MarkedAtoms(toolkit, phase, kMoveAtomsDialog, kMoveAtomsGrid, [&](DialogValues& values) {
        target = values.Integer(kMoveAtomsTarget);
        copy = toolkit.WDialogGetRadioButton(kMoveAtoms, kCopyAtoms) == 2;
        if (target > static_cast<int>(project.phases.size())) {
          values.Require("To phase: " + std::to_string(target) + " is no phase of the project");
        }
      });
  if (marked.empty() || target < 1) return;
  std::vector<PhaseAtom> travelling;
  for (int row : marked) {
    PhaseAtom atom = phase.atoms[row - 1];
    const auto cells = AtomCells(atom);
    for (size_t c = 0; c < cells.size(); ++c) {
      const int column = static_cast<int>(c) + 3;
      *cells[c] = static_cast<float>(toolkit.WGridGetCellReal(kPhaseAtomGrid, column, row));
    }
    travelling.push_back(atom);
  }
  if (!copy) RemoveAtoms(toolkit, marked, phase);
  PhaseRecords& to = project.phases[target - 1];
  for (const PhaseAtom& atom : travelling) {
    to.atoms.push_back(atom);
    const int row = static_cast<int>(to.atoms.size());
    if (target != number || row > kAtomGridRows) continue;
    toolkit.WGridRows(kPhaseAtomGrid, row);
    PutAtomRow(toolkit, row, atom);
  }
}

}  // namespace

void EditPhaseDialog(ShellState& state, Toolkit& toolkit) {
  const int number = state.currentPhase;
  EditCommand edit(state, toolkit, "Edit phase " + std::to_string(number));
  ProjectPhases project;
  RestraintSet restraints;
  std::vector<std::string> types;  // element symbols of the ANOM lines
  std::string error;
  if (!edit.Read([&](RecordStore& store) {
        if (!ReadProjectPhases(store, project, error)) LogLine(state, toolkit, error);
        restraints = ReadRestraintSet(store);
        for (const std::string& data : FindRecords(store, "ANOM")) {
          types.push_back(AtomTypeSymbol(data.substr(0, 2)));
        }
      }) ||
      !error.empty() || number < 1 || number > static_cast<int>(project.phases.size())) {
    return;
  }
  PhaseRecords& phase = project.phases[number - 1];
  // New codes of the atom sub-dialog count on from the file's groups; the phase's own take a
  // copy on OK, after those.
  CodewordNumbering codes(HighestCodewordGroup(state, toolkit));
  const int atoms = static_cast<int>(phase.atoms.size());
  if (atoms > kAtomGridRows) {
    ShowMessage(toolkit, "Atoms",
                "The grid shows the first 200 atoms; the others stay as they are on OK");
  }
  edit.Load(kPhaseDialog);
  PutPhase(toolkit, phase);
  PhaseRecords edited;
  bool restraintsSetUp = false;
  const int result = edit.Run(
      [&](int button) {
        if (button == kPhaseOriginButton) {
          ChangeOrigin(toolkit, static_cast<int>(phase.atoms.size()));
        }
        if (button == kPhaseAddAtomButton) AddAtom(toolkit, types, phase);
        if (button == kPhaseDeleteAtomsButton) DeleteAtoms(toolkit, phase);
        if (button == kPhaseMoveAtomsButton) MoveAtoms(toolkit, number, project);
        if (button == kPhaseEditAtomButton) {
          EditAtom(toolkit, static_cast<int>(phase.atoms.size()), codes);
        }
        if (button == kPhaseRestraintsButton) {
          restraintsSetUp =
              SetUpRestraints(toolkit, phase, kPhaseDialog, restraints) || restraintsSetUp;
        }
        return -1;
      },
      [&](DialogValues& values) {
        edited = phase;
        TakePhase(toolkit, values, codes, edited);
      });
  if (result != kEditAccepted) return;
  phase = edited;
  for (const PhaseAtom& a : phase.atoms) {
    const auto typed = [](const std::array<float, 6>& v) {
      return std::any_of(v.begin(), v.end(), [](float x) { return x != 0; });
    };
    project.anisotropic = project.anisotropic || typed(a.beta);
    project.betaCoded = project.betaCoded || typed(a.betaCodes);
  }
  std::vector<Record> records = PhaseRecordBlock(project, PhaseBlockWriter::kDialog);
  if (restraintsSetUp) {
    const std::vector<Record> lines = RestraintSetRecords(restraints);
    records.insert(records.end(), lines.begin(), lines.end());
  }
  edit.Write(records);
}

}  // namespace kaldena
