// The restraints sub-dialog and the restraint records it reads and writes.
#include "shell/restraint_dialog.h"

#include <algorithm>

#include "shell/edit_command.h"
#include "shell/shell_services.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kLineLayout = "(a4,2x,i6,2x,f5.2,6(2x,a4,2x,i6))";
constexpr int kCentralCode = 1555;  // the central atom stands as it is
constexpr int kMaxLigands = 6;

// Labels and codes of a line of six pairs; a blank label ends the line.
std::vector<std::pair<std::string, int>> ReadPairs(std::string_view data, std::string_view layout,
                                                   bool& good) {
  std::array<std::string, kMaxLigands> labels;
  std::array<int, kMaxLigands> codes{};
  good = Read(data, layout, labels[0], codes[0], labels[1], codes[1], labels[2], codes[2],
              labels[3], codes[3], labels[4], codes[4], labels[5], codes[5]) == ReadStatus::kOk;
  std::vector<std::pair<std::string, int>> pairs;
  for (int i = 0; i < kMaxLigands && !Trimmed(labels[i]).empty(); ++i) {
    pairs.emplace_back(std::string(Trimmed(labels[i])), codes[i]);
  }
  return pairs;
}

// A grid line read back; false when it is not of the line's form.
bool ReadRestraintText(std::string_view text, RestraintLine& line) {
  std::string central;
  int code = 0;
  float distance = 0;
  if (Read(text, "(a4,2x,i6,2x,f5.2)", central, code, distance) != ReadStatus::kOk ||
      Trimmed(central).empty()) {
    return false;
  }
  bool good = false;
  line.central = std::string(Trimmed(central));
  line.distance = distance;
  line.ligands = ReadPairs(text, "(19x,6(2x,a4,2x,i6))", good);
  return good && !line.ligands.empty();
}

bool InPhase(const PhaseRecords& phase, std::string_view label) {
  return std::any_of(phase.atoms.begin(), phase.atoms.end(),
                     [&](const PhaseAtom& a) { return Trimmed(a.label) == Trimmed(label); });
}

// The number of ligands of the kind whose box is on (the first of them); a pair without one.
int LigandsOfKind(Toolkit& toolkit) {
  if (toolkit.WDialogGetCheckBox(kRestraintTetrahedron) != 0) return 4;
  if (toolkit.WDialogGetCheckBox(kRestraintOctahedron) != 0) return 6;
  return 1;
}

// Add: a line for each chosen central atom with the typed ligands, or the box that says why
// not. `weights` runs beside the grid's lines.
void AddRestraintLines(Toolkit& toolkit, const PhaseRecords& phase, std::vector<float>& weights) {
  std::vector<std::string> centrals;
  for (int row = 1; row <= static_cast<int>(phase.atoms.size()); ++row) {
    if (toolkit.WGridGetCheckBox(kCentralAtomGrid, 1, row) != 0) {
      centrals.push_back(phase.atoms[row - 1].label);
    }
  }
  if (centrals.empty()) {
    ShowMessage(toolkit, "Make a selection", "You have to select a central atom");
    return;
  }
  RestraintLine line;
  for (int row = 1; row <= 2 * kMaxLigands; ++row) {
    const std::string label(Trimmed(toolkit.WGridGetCellString(kLigandGrid, 1, row)));
    if (!label.empty())
      line.ligands.emplace_back(label, toolkit.WGridGetCellInteger(kLigandGrid, 2, row));
  }
  const int wanted = LigandsOfKind(toolkit);
  if (static_cast<int>(line.ligands.size()) != wanted) {
    ShowMessage(toolkit, "Wrong number of ligands",
                "You must select exactly " + std::to_string(wanted) + " ligand(s)");
    return;
  }
  const int lines = static_cast<int>(weights.size());
  if (lines + static_cast<int>(centrals.size()) > kMaxRestraints) {
    ShowMessage(toolkit, "Too many distances",
                "Only " + std::to_string(kMaxRestraints) + " distances allowed");
    return;
  }
  line.distance = static_cast<float>(toolkit.WDialogGetReal(kRestraintDistance));
  toolkit.WGridRows(kRestraintGrid, lines + static_cast<int>(centrals.size()));
  for (const std::string& central : centrals) {
    line.central = central;
    weights.push_back(static_cast<float>(toolkit.WDialogGetReal(kRestraintWeight)));
    toolkit.WGridPutCellString(kRestraintGrid, 1, static_cast<int>(weights.size()),
                               RestraintText(line));
  }
}

void PutRestraints(Toolkit& toolkit, const PhaseRecords& phase, const RestraintSet& set,
                   std::vector<float>& weights) {
  toolkit.WDialogPutReal(kRestraintsWeight, set.weight);
  toolkit.WGridRows(kCentralAtomGrid, static_cast<int>(phase.atoms.size()));
  for (int row = 1; row <= static_cast<int>(phase.atoms.size()); ++row) {
    toolkit.WGridPutCellString(kCentralAtomGrid, 2, row, Trimmed(phase.atoms[row - 1].label));
  }
  for (const RestraintLine& line : set.lines) {
    if (!InPhase(phase, line.central)) continue;
    weights.push_back(line.weight);
    toolkit.WGridRows(kRestraintGrid, static_cast<int>(weights.size()));
    toolkit.WGridPutCellString(kRestraintGrid, 1, static_cast<int>(weights.size()),
                               RestraintText(line));
  }
}

// The grid's lines in place of the phase's lines of the set; blank lines are dropped.
void TakeRestraints(DialogValues& values, const PhaseRecords& phase,
                    const std::vector<float>& weights, RestraintSet& set) {
  set.weight = static_cast<float>(values.Real(kRestraintsWeight));
  std::erase_if(set.lines, [&](const RestraintLine& line) { return InPhase(phase, line.central); });
  for (int row = 1; row <= static_cast<int>(weights.size()); ++row) {
    const std::string text = values.CellText(kRestraintGrid, 1, row);
    if (Trimmed(text).empty()) continue;
    RestraintLine line;
    if (!ReadRestraintText(text, line)) {
      values.Require("Distances, row " + std::to_string(row) + ": " + std::string(Trimmed(text)) +
                     " is no restraint");
      return;
    }
    line.weight = weights[row - 1];
    set.lines.push_back(line);
  }
}

}  // namespace

RestraintSet ReadRestraintSet(RecordStore& store) {
  RestraintSet set;
  std::string data;
  if (store.jFindRec("WRES", data) == 1) Read(data, "(F10.0)", set.weight);
  const std::vector<std::string> heads = FindRecords(store, "CRES");
  const std::vector<std::string> atoms = FindRecords(store, "LRES");
  for (size_t i = 0; i < heads.size(); ++i) {
    RestraintLine line;
    Read(heads[i], "(A4,6X,2F10.0)", line.central, line.distance, line.weight);
    line.central = std::string(Trimmed(line.central));
    bool good = false;
    if (i < atoms.size()) line.ligands = ReadPairs(atoms[i], "(6(A4,I6,1X))", good);
    set.lines.push_back(line);
  }
  return set;
}

std::vector<Record> RestraintSetRecords(const RestraintSet& set) {
  std::vector<Record> records = {MakeRecord("WRES", "(f10.2)", set.weight)};
  for (const RestraintLine& line : set.lines) {
    // Four decimals: a target written as f10.0 would keep only its whole angstroms.
    records.push_back(MakeRecord("CRES", "(a4,6x,f10.4,f10.3)", Label4(line.central), line.distance,
                                 line.weight));
  }
  for (const RestraintLine& line : set.lines) {
    std::vector<FormatArg> args;
    std::vector<std::string> labels;
    for (const auto& [label, code] : line.ligands) labels.push_back(Label4(label));
    for (size_t i = 0; i < labels.size(); ++i) {
      args.emplace_back(labels[i]);
      args.emplace_back(line.ligands[i].second);
    }
    records.push_back(MakeRecords("LRES", "(6(a4,i6,1x))", args).front());
  }
  return records;
}

std::string RestraintText(const RestraintLine& line) {
  std::vector<std::string> labels = {Label4(line.central)};
  for (const auto& [label, code] : line.ligands) labels.push_back(Label4(label));
  std::vector<FormatArg> args = {FormatArg(labels[0]), kCentralCode, line.distance};
  for (size_t i = 0; i < line.ligands.size(); ++i) {
    args.emplace_back(labels[i + 1]);
    args.emplace_back(line.ligands[i].second);
  }
  std::string text = WriteFormatted(kLineLayout, args);
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return std::string(StrippedText(text));
}

bool SetUpRestraints(Toolkit& toolkit, const PhaseRecords& phase, int parentDialog,
                     RestraintSet& set) {
  toolkit.WDialogLoad(kRestraintsDialog);
  std::vector<float> weights;
  PutRestraints(toolkit, phase, set, weights);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  RestraintSet edited;
  bool accepted = false;
  while (const int button = NextDialogButton(toolkit)) {
    if (button == kIdCancel) break;
    if (button == kRestraintAdd) AddRestraintLines(toolkit, phase, weights);
    if (button != kIdOk) continue;
    DialogValues values(toolkit, kRestraintsDialog);
    edited = set;
    TakeRestraints(values, phase, weights, edited);
    accepted = !values.ReportBad();
    if (accepted) break;
  }
  toolkit.WDialogUnload();
  toolkit.WDialogSelect(parentDialog);
  if (accepted) set = edited;
  return accepted;
}

}  // namespace kaldena
