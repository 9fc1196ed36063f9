// The records of a new project: its first (or a further) phase and the defaults of the edit
// dialogs, written so that the engine can calculate the pattern without any edit.
#include "shell/default_project.h"

#include <algorithm>
#include <fstream>
#include <set>

#include "crystal/elements.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

// The first wavelength of the controls dialog's default doublet (Cu K alpha 1).
constexpr float kDefaultWavelength = 1.54051f;

template <typename... T>
Record Line(std::string_view key, std::string_view layout, const T&... args) {
  return MakeRecord(key, layout, args...);
}

std::string Name4(std::string_view name) {
  std::string text(Trimmed(name).substr(0, 4));
  text.resize(4, ' ');
  return text;
}

Record CodeLineOfAtom(std::string_view label) {
  const std::string name = Name4(label);
  const FormatArg args[] = {name, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f};
  return LayoutRecord("('CXYZ ',a4,1x,5f10.3)", args);
}

// A further phase's refinable values start where the add-phase command starts them: a small
// scale, orientation factors of 1 (no preferred orientation), a Lorentzian fraction of 0.5
// and a narrow width.
std::vector<std::pair<std::string, Record>> PhaseDefaults() {
  return {
      {"SCAL", Line("SCAL", "(e12.4,f10.3)", 0.01f, 0.0f)},
      {"CSCA", Line("CSCA", "(2f10.3)", 0.0f, 0.0f)},
      {"ASYM", Line("ASYM", "(3f10.5)", 1.0f, 0.0f, 1.0f)},
      {"CASY", Line("CASY", "(3f10.3)", 0.0f, 0.0f, 0.0f)},
      {"CCEL", Line("CCEL", "(6f10.3)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)},
      {"HWTH", Line("HWTH", "(6f10.5)", 0.0f, 0.0f, 0.02f, 0.0f, 0.0f, 0.02f)},
      {"CHWT", Line("CHWT", "(6f10.3)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)},
      {"PKSH", Line("PKSH", "(6f10.5)", 0.5f, 0.0f, 0.0f, 0.5f, 0.0f, 0.0f)},
      {"CPKS", Line("CPKS", "(6f10.3)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)},
      {"STSZ", Line("STSZ", "(2f10.5)", 0.0f, 0.0f)},
      {"CSTS", Line("CSTS", "(2f10.3)", 0.0f, 0.0f)},
  };
}

// What the files, controls and globals dialogs write when they are confirmed unchanged.
std::vector<std::pair<std::string, std::vector<Record>>> DialogDefaults(
    const std::string& baseName) {
  std::vector<Record> poly = MakeRecords(
      "POLY", "(5e14.6)",
      std::vector<FormatArg>(10, FormatArg(0.0f)));
  return {
      {"FRMT", {Line("FRMT", "(i5)", 1)}},
      {"PWUT", {TextRecord("PWUT", baseName + ".out")}},
      {"PWPR", {TextRecord("PWPR", baseName + ".par")}},
      {"PWSM", {TextRecord("PWSM", baseName + ".sum")}},
      {"PWFO", {TextRecord("PWFO", baseName + ".fou")}},
      {"BGSC", {Line("BGSC", "(2f10.6)", 1.0f, 0.0f)}},
      {"CBGS", {Line("CBGS", "(f10.3)", 0.0f)}},
      {"ENVI", {Line("ENVI", "(f15.5)", 0.0f)}},
      {"UTPT", {Line("UTPT", "(2i5)", 25, 1)}},
      {"ELAM", {Line("ELAM", "(3f10.6)", 1.54051f, 1.54433f, 0.5f)}},
      {"RLIM", {Line("RLIM", "(8f10.5)", 10.0f, 0.9f, 0.0f, 40.0f, 0.0f, 0.0f, 0.0f, 0.0f)}},
      {"RELX",
       {Line("RELX", "(i5,5f5.2,3f10.5)", 6, 0.3f, 1.0f, 1.0f, 1.0f, 1.0f, 5.0f, 0.02f,
             140.0f)}},
      {"DAMP", {Line("DAMP", "(f10.5)", 1.0f)}},
      {"WRES", {Line("WRES", "(f10.2)", 0.0f)}},
      {"ICLT", {Line("ICLT", "(i5)", 0)}},
      {"POLY", poly},
      {"ZETT", {Line("ZETT", "(3f10.5)", 0.0f, 0.0f, 0.0f)}},
      {"CZET", {Line("CZET", "(3f10.3)", 0.0f, 0.0f, 0.0f)}},
      {"AXID", {Line("AXID", "(3f10.5)", 0.0f, 0.0f, 0.0f)}},
      {"CAXI", {Line("CAXI", "(3f10.3)", 0.0f, 0.0f, 0.0f)}},
      {"WAVE", {Line("WAVE", "(2f10.6)", kDefaultWavelength, 0.0f)}},
      {"CWAV", {Line("CWAV", "(f10.3)", 0.0f)}},
      {"BKGR", {Line("BKGR", "(5f10.1)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)}},
      {"CBKG", {Line("CBKG", "(5f10.3)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)}},
  };
}

// A CIF numbers its atom types from 1 by element; in a project that has types already, an
// element takes the number of its ANOM line, and new elements follow the lines there.
NewPhase WithProjectTypes(const NewPhase& phase, const std::vector<Record>& typeLines) {
  if (!phase.fromCif || typeLines.empty()) return phase;
  std::vector<std::string> symbols;
  for (const Record& line : typeLines) symbols.push_back(line.substr(10, 2));
  NewPhase placed = phase;
  for (NewAtom& atom : placed.atoms) {
    std::string symbol = atom.element.substr(0, 2);
    symbol.resize(2, ' ');
    auto found = std::find(symbols.begin(), symbols.end(), symbol);
    if (found == symbols.end()) found = symbols.insert(symbols.end(), symbol);
    atom.type = static_cast<int>(found - symbols.begin()) + 1;
  }
  return placed;
}

int FirstInteger(std::string_view data) {
  int value = 0;
  if (Read(data, "(I5)", value) != ReadStatus::kOk) return 0;
  return value;
}

}  // namespace

std::string AtomTypeSymbol(std::string_view atomName) {
  std::string symbol(Trimmed(atomName).substr(0, 2));
  symbol.resize(2, ' ');
  if (symbol[1] != ' ' && ElementNumber(symbol) == 0) symbol[1] = ' ';
  return ElementNumber(symbol) == 0 ? "H " : symbol;
}

Record AtomTypeLine(std::string_view atomName) {
  const std::string symbol = AtomTypeSymbol(atomName);
  const ScatteringData data = GetScatteringData(kDefaultWavelength, ElementNumber(symbol));
  return Line("ANOM", "(a2,8x,2f10.5)", symbol, data[9], data[10]);
}

NewPhase DefaultPhase() {
  NewPhase phase;
  phase.title = "Phase no. 1";
  phase.spaceGroup = "P 1";
  phase.cell = {10.0f, 10.0f, 10.0f, 90.0f, 90.0f, 90.0f};
  NewAtom atom;
  atom.name = "H";
  atom.type = 1;
  atom.values = {0.0f, 0.0f, 0.0f, 1.0f, 1.0f};
  phase.atoms.push_back(atom);
  return phase;
}

std::vector<Record> PhaseBlock(const NewPhase& phase) {
  std::vector<Record> block;
  block.push_back(TextRecord("PHTI", Trimmed(phase.title)));
  block.push_back(Line("PHNA", "(i5,9f5.1)", static_cast<int>(phase.atoms.size()), 0.0f, 0.0f,
                       1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 0.0f));
  block.push_back(TextRecord("SPGR", std::string(Trimmed(phase.spaceGroup)).substr(0, 20)));
  const auto& c = phase.cell;
  block.push_back(Line("CELL", "(6f10.5)", c[0], c[1], c[2], c[3], c[4], c[5]));
  if (phase.fromCif) {
    const auto& s = phase.cellSd;
    block.push_back(Line("SDCE", "(6f10.5)", s[0], s[1], s[2], s[3], s[4], s[5]));
  }
  bool anisotropic = phase.fromCif;
  for (const NewAtom& atom : phase.atoms) {
    const auto& v = atom.values;
    block.push_back(
        Line("XYZ ", "(a4,3x,i3,5f10.5,i3)", Name4(atom.name), atom.type, v[0], v[1], v[2], v[3],
             v[4], atom.siteFactor));
    if (phase.fromCif) {
      const auto& s = atom.valueSd;
      block.push_back(
          Line("SDXY", "(a4,6x,5f10.5)", Name4(atom.name), s[0], s[1], s[2], s[3], s[4]));
    }
    anisotropic = anisotropic || std::any_of(atom.beta.begin(), atom.beta.end(),
                                             [](float b) { return b != 0.0f; });
  }
  if (anisotropic) {
    for (const NewAtom& atom : phase.atoms) {
      const auto& b = atom.beta;
      block.push_back(Line("BETA", "(a4,6x,6f10.5)", Name4(atom.name), b[0], b[1], b[2], b[3],
                           b[4], b[5]));
      if (phase.fromCif) {
        const auto& s = atom.betaSd;
        block.push_back(Line("SDBE", "(a4,6x,6f10.5)", Name4(atom.name), s[0], s[1], s[2],
                             s[3], s[4], s[5]));
      }
    }
  }
  return block;
}

bool AddNewProjectRecords(const std::string& parameterFile, const std::string& baseName,
                          const NewPhase& newPhase, Reporter& reporter) {
  // The lines as they stand, by key, to be written back unchanged.
  std::vector<Record> existing;
  {
    std::ifstream in(parameterFile, std::ios::binary);
    if (!in) {
      reporter.LogLine(" Error opening parfile " + parameterFile);
      return false;
    }
    std::string line;
    while (ReadRecordLine(in, line)) {
      if (line.starts_with("END") || line.starts_with("end")) break;
      if (TrimmedLength(line) == 0) continue;
      existing.push_back(PadRecord(line));
    }
  }
  auto linesOf = [&](const std::string& key) -> std::vector<Record> {
    std::vector<Record> lines;
    for (const Record& row : existing) {
      if (RecordKeyMatches(row, key)) lines.push_back(row);
    }
    return lines;
  };

  const NewPhase phase = WithProjectTypes(newPhase, linesOf("ANOM"));

  // Counts of what is there: phases, their atoms, atom types.
  RecordStore store(reporter);
  if (store.jReadRecFile(parameterFile) < 1) return false;
  const std::vector<std::string> phaseLines = FindRecords(store, "PHNA");
  int oldAtoms = 0;
  for (const std::string& data : phaseLines) oldAtoms += std::max(0, FirstInteger(data));
  JobControls job;
  job.atomTypes = 0;
  std::vector<std::string> listLines;
  const bool jobPresent = linesOf("JOBT").size() > 0;
  if (jobPresent && ReadJobControls(store, job, listLines) != RecordRead::kOk) {
    store.jCloseRec();
    for (const std::string& text : listLines) reporter.LogLine(text);
    return false;
  }
  store.jCloseRec();

  const int oldPhases = static_cast<int>(phaseLines.size());
  if (oldPhases >= kMaxPhases) {
    reporter.LogLine("No phase added: the project holds " + std::to_string(oldPhases) +
                     " phases already");
    return false;
  }

  std::vector<Record> records;
  std::vector<Record> block = PhaseBlock(phase);
  // The block's lines of one key go behind the lines of that key already in the file. Per
  // phase keys missing for earlier phases get the new phase's line, so that each phase keeps
  // its place in the sequence.
  std::vector<std::string> blockKeys;
  for (const Record& r : block) {
    const std::string key = UpperKey(r);
    if (std::find(blockKeys.begin(), blockKeys.end(), key) == blockKeys.end()) {
      blockKeys.push_back(key);
    }
  }
  const std::set<std::string> perPhase = {"PHTI", "SPGR", "CELL", "SDCE"};
  for (const std::string& key : blockKeys) {
    std::vector<Record> lines = linesOf(key);
    std::vector<Record> fresh;
    for (const Record& r : block) {
      if (UpperKey(r) == key) fresh.push_back(r);
    }
    if (perPhase.contains(key)) {
      const Record pad = key == "PHTI" ? TextRecord("PHTI", "untitled") : fresh.front();
      while (static_cast<int>(lines.size()) < oldPhases) lines.push_back(pad);
    }
    lines.insert(lines.end(), fresh.begin(), fresh.end());
    records.insert(records.end(), lines.begin(), lines.end());
  }
  for (const auto& [key, line] : PhaseDefaults()) {
    std::vector<Record> lines = linesOf(key);
    while (static_cast<int>(lines.size()) < oldPhases) lines.push_back(line);
    lines.push_back(line);
    records.insert(records.end(), lines.begin(), lines.end());
  }
  {
    std::vector<Record> lines = linesOf("CXYZ");
    while (static_cast<int>(lines.size()) < oldAtoms) lines.push_back(CodeLineOfAtom(""));
    for (const NewAtom& atom : phase.atoms) lines.push_back(CodeLineOfAtom(atom.name));
    records.insert(records.end(), lines.begin(), lines.end());
  }

  // Atom types that the new atoms name beyond the list get a line from the element table.
  const std::vector<Record> typeLines = linesOf("ANOM");
  const int knownTypes = std::max(jobPresent ? job.atomTypes : 0,
                                  static_cast<int>(typeLines.size()));
  int types = knownTypes;
  std::vector<Record> newTypes;
  for (const NewAtom& atom : phase.atoms) {
    while (types < std::min(atom.type, kMaxAtomTypes)) {
      newTypes.push_back(AtomTypeLine(atom.element.empty() ? atom.name : atom.element));
      ++types;
    }
  }
  if (!newTypes.empty()) {
    records.insert(records.end(), typeLines.begin(), typeLines.end());
    records.insert(records.end(), newTypes.begin(), newTypes.end());
  }

  for (const auto& [key, lines] : DialogDefaults(std::string(Trimmed(baseName)))) {
    if (linesOf(key).empty()) records.insert(records.end(), lines.begin(), lines.end());
  }

  if (!jobPresent) {
    job = JobControls{};  // the controls dialog's defaults: X-ray calculation, profile 4
    job.atomTypes = 0;
  }
  job.phases = oldPhases + 1;
  job.atomTypes = types;
  const Record jobLine = JobControlsRecord(job);
  if (!jobPresent) records.push_back(jobLine);

  RecordStore writer(reporter);
  if (writer.jAddRec(parameterFile, records) < 1) return false;
  if (jobPresent) {
    const Record jobRecords[] = {jobLine};
    if (writer.jUpdateRec(parameterFile, jobRecords) < 1) return false;
  }
  return true;
}

}  // namespace kaldena
