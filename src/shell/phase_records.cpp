// The phases' records read by their reading layouts and written again, key by key.
#include "shell/phase_records.h"

#include <algorithm>

#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "util/cell.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

// Reads the next line of a key into `values`; an absent line leaves them. A line that does
// not read sets `error` to " Error reading " and the line.
template <size_t N>
bool NextValues(RecordStore& store, std::string_view key, std::string_view layout,
                std::array<float, N>& values, std::string& error) {
  std::string data;
  if (store.jFindRec(key, data) != 1) return true;
  std::array<float, N> read = values;
  std::vector<ReadTarget> targets(read.begin(), read.end());
  if (ReadFormatted(data, layout, targets) != ReadStatus::kOk) {
    error = ErrorReading(key, data);
    return false;
  }
  values = read;
  return true;
}

bool ReadHead(RecordStore& store, PhaseRecords& phase, int& atoms, std::string& error) {
  std::string data;
  if (store.jFindRec("PHTI", data) == 1 && TrimmedLength(data) > 0) {
    phase.title = std::string(Trimmed(data));
  }
  if (store.jFindRec("PHNA", data) == 1) {
    auto& v = phase.vectors;
    if (Read(data, "(I5,9F5.0)", atoms, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]) !=
        ReadStatus::kOk) {
      error = ErrorReading("PHNA", data);
      return false;
    }
  }
  if (store.jFindRec("PHMW", data) == 1 &&
      Read(data, "(I5,F15.0)", phase.formulaUnits, phase.formulaWeight) != ReadStatus::kOk) {
    error = ErrorReading("PHMW", data);
    return false;
  }
  if (store.jFindRec("SPGR", data) == 1)
    phase.spaceGroup = std::string(Trimmed(data.substr(0, 20)));
  return true;
}

bool ReadValues(RecordStore& store, PhaseRecords& p, std::string& error) {
  return NextValues(store, "SCAL", "(2F15.0)", p.scale, error) &&
         NextValues(store, "ASYM", "(3F10.0)", p.asym, error) &&
         NextValues(store, "CELL", "(6F10.0)", p.cell, error) &&
         NextValues(store, "PKSH", "(6F10.0)", p.shape, error) &&
         NextValues(store, "HWTH", "(6F10.0)", p.widths, error) &&
         NextValues(store, "STSZ", "(6F10.0)", p.strainSize, error);
}

bool ReadCodes(RecordStore& store, PhaseRecords& p, std::string& error) {
  return NextValues(store, "CSCA", "(2F10.0)", p.scaleCodes, error) &&
         NextValues(store, "CCEL", "(6F10.0)", p.cellCodes, error) &&
         NextValues(store, "CASY", "(3F10.0)", p.asymCodes, error) &&
         NextValues(store, "CHWT", "(6F10.0)", p.widthCodes, error) &&
         NextValues(store, "CSTS", "(6F10.0)", p.strainSizeCodes, error) &&
         NextValues(store, "CPKS", "(6F10.0)", p.shapeCodes, error);
}

// An atom's lines; `anisotropic` and `betaCoded` are set when it has BETA and CBET lines.
bool ReadAtom(RecordStore& store, PhaseAtom& atom, bool codes, bool& anisotropic, bool& betaCoded,
              std::string& error) {
  std::string data;
  if (store.jFindRec("XYZ ", data) == 1) {
    auto& v = atom.values;
    auto& c = atom.coupling;
    if (Read(data, "(A4,6X,I4,5F9.0,4I3)", atom.label, atom.type, v[0], v[1], v[2], v[3], v[4],
             atom.siteFactor, c[0], c[1], c[2]) != ReadStatus::kOk) {
      error = ErrorReading("XYZ ", data);
      return false;
    }
    atom.siteFactor = std::max(atom.siteFactor, 1);
  }
  std::string label;
  if (store.jFindRec("BETA", data) == 1) {
    anisotropic = true;
    auto& b = atom.beta;
    if (Read(data, "(A4,6X,6F9.0)", label, b[0], b[1], b[2], b[3], b[4], b[5]) != ReadStatus::kOk) {
      error = ErrorReading("BETA", data);
      return false;
    }
  }
  if (!codes) return true;
  if (!NextValues(store, "CXYZ", "(5F10.0)", atom.codes, error)) return false;
  if (store.jFindRec("CBET", data) != 1) return true;
  betaCoded = true;
  auto& c = atom.betaCodes;
  if (Read(data, "(6F10.0)", c[0], c[1], c[2], c[3], c[4], c[5]) != ReadStatus::kOk) {
    error = ErrorReading("CBET", data);
    return false;
  }
  return true;
}

// One phase: its head, values and codewords, then its atoms; `codes` false leaves them 0.
bool ReadPhase(RecordStore& store, PhaseRecords& phase, bool codes, ProjectPhases& project,
               std::string& error) {
  int atoms = 0;
  if (!ReadHead(store, phase, atoms, error) || !ReadValues(store, phase, error)) return false;
  if (codes && !ReadCodes(store, phase, error)) return false;
  phase.atoms.resize(static_cast<size_t>(std::clamp(atoms, 0, kMaxAtoms)));
  for (PhaseAtom& atom : phase.atoms) {
    if (!ReadAtom(store, atom, codes, project.anisotropic, project.betaCoded, error)) return false;
  }
  return true;
}

template <size_t N>
Record Values(std::string_view key, std::string_view layout, const std::array<float, N>& v) {
  const std::vector<FormatArg> args(v.begin(), v.end());
  return MakeRecords(key, layout, args).front();
}

template <size_t N>
Record AtomLine(std::string_view layout, const std::string& label, const std::array<float, N>& v) {
  const std::string label4 = Label4(label);  // the arguments keep a view of it
  std::vector<FormatArg> args = {FormatArg(label4)};
  args.insert(args.end(), v.begin(), v.end());
  return LayoutRecord(layout, args);
}

void AppendHead(const PhaseRecords& p, PhaseBlockWriter writer, std::vector<Record>& out) {
  out.push_back(TextRecord("PHTI", p.title));
  const auto& v = p.vectors;
  const int atoms = static_cast<int>(p.atoms.size());
  out.push_back(writer == PhaseBlockWriter::kDelete
                    ? MakeRecord("PHNA", "(i5,3f5.1)", atoms, v[0], v[1], v[2])
                    : MakeRecord("PHNA", "(i5,9f5.1)", atoms, v[0], v[1], v[2], v[3], v[4], v[5],
                                 v[6], v[7], v[8]));
  out.push_back(writer == PhaseBlockWriter::kDialog
                    ? MakeRecord("PHMW", "(i5,3f10.2)", p.formulaUnits, p.formulaWeight,
                                 PhaseVolume(p), PhaseDensity(p))
                    : MakeRecord("PHMW", "(i5,f10.2)", p.formulaUnits, p.formulaWeight));
  out.push_back(TextRecord("SPGR", p.spaceGroup));
}

Record AtomPositionLine(const PhaseAtom& a, PhaseBlockWriter writer) {
  const auto& v = a.values;
  const auto& c = a.coupling;
  if (writer != PhaseBlockWriter::kDialog) {
    return MakeRecord("XYZ ", "(a4,3x,i3,5f9.5,i3)", Label4(a.label), a.type, v[0], v[1], v[2],
                      v[3], v[4], a.siteFactor);
  }
  return MakeRecord("XYZ ", "(a4,3x,i3,5f9.5,4i3)", Label4(a.label), a.type, v[0], v[1], v[2], v[3],
                    v[4], a.siteFactor, c[0], c[1], c[2]);
}

}  // namespace

bool ReadProjectPhases(RecordStore& store, ProjectPhases& project, std::string& error) {
  std::vector<std::string> listLines;
  if (ReadJobControls(store, project.job, listLines) == RecordRead::kBadNumbers) {
    error = listLines.empty() ? std::string(" Error reading JOBT") : listLines.back();
    return false;
  }
  project.phases.assign(static_cast<size_t>(std::clamp(project.job.phases, 1, kMaxPhases)), {});
  for (PhaseRecords& phase : project.phases) {
    if (!ReadPhase(store, phase, true, project, error)) return false;
  }
  return true;
}

bool ReadFirstPhase(RecordStore& store, PhaseRecords& phase, bool& anisotropic) {
  std::string error;
  ProjectPhases other;
  const bool read = ReadPhase(store, phase, false, other, error);
  anisotropic = other.anisotropic;
  return read;
}

std::string Label4(std::string_view label) {
  std::string text(Trimmed(label).substr(0, 4));
  text.resize(4, ' ');
  return text;
}

float PhaseVolume(const PhaseRecords& phase) {
  const auto& c = phase.cell;
  return CellVolume({c[0], c[1], c[2], c[3], c[4], c[5]});
}

float PhaseDensity(const PhaseRecords& phase) {
  const float volume = PhaseVolume(phase);
  // Z M / (N_A V), with V in A^3: 1 / 0.60221 g/cm^3 per g/mol and A^3.
  return volume > 0
             ? static_cast<float>(phase.formulaUnits) * phase.formulaWeight / (0.60221f * volume)
             : 0.0f;
}

std::vector<Record> PhaseRecordBlock(const ProjectPhases& project, PhaseBlockWriter writer) {
  // Each phase's lines by key, then all phases' lines of one key together.
  std::vector<std::vector<Record>> byPhase;
  for (const PhaseRecords& p : project.phases) {
    std::vector<Record> lines;
    AppendHead(p, writer, lines);
    lines.push_back(Values("CSCA", "(2f10.3)", p.scaleCodes));
    lines.push_back(Values("CCEL", "(6f10.3)", p.cellCodes));
    lines.push_back(Values("CASY", "(3f10.3)", p.asymCodes));
    lines.push_back(Values("CHWT", "(6f10.3)", p.widthCodes));
    lines.push_back(Values("CSTS", "(2f10.3)", p.strainSizeCodes));
    lines.push_back(Values("CPKS", "(6f10.3)", p.shapeCodes));
    for (const PhaseAtom& a : p.atoms) {
      lines.push_back(AtomLine("('CXYZ ',a4,1x,5f10.3)", a.label, a.codes));
    }
    if (project.betaCoded) {
      for (const PhaseAtom& a : p.atoms) {
        lines.push_back(AtomLine("('CBET ',a4,1x,6f10.3)", a.label, a.betaCodes));
      }
    }
    lines.push_back(MakeRecord("SCAL", "(e12.4,f10.3)", p.scale[0], p.scale[1]));
    lines.push_back(Values("CELL", "(6f10.5)", p.cell));
    lines.push_back(Values("ASYM", "(3f10.5)", p.asym));
    lines.push_back(Values("HWTH", "(6f10.5)", p.widths));
    lines.push_back(Values("STSZ", "(2f10.5)", p.strainSize));
    lines.push_back(Values("PKSH", "(6f10.5)", p.shape));
    for (const PhaseAtom& a : p.atoms) lines.push_back(AtomPositionLine(a, writer));
    if (project.anisotropic) {
      for (const PhaseAtom& a : p.atoms) {
        lines.push_back(AtomLine("('BETA      ',a4,6x,6f9.5)", a.label, a.beta));
      }
    }
    byPhase.push_back(std::move(lines));
  }
  std::vector<Record> block;
  std::vector<std::string> keys;
  for (const auto& lines : byPhase) {
    for (const Record& r : lines) {
      const std::string key = r.substr(0, 4);
      if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    }
  }
  for (const std::string& key : keys) {
    for (const auto& lines : byPhase) {
      for (const Record& r : lines) {
        if (r.compare(0, 4, key) == 0) block.push_back(r);
      }
    }
  }
  return block;
}

}  // namespace kaldena
