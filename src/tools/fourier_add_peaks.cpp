#include "tools/fourier_add_peaks.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/limits.h"
#include "util/peak_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

struct PhaseHead {
  int atoms = 1;
  std::array<float, 9> vectors{0, 0, 1.0f, 0, 0, 0, 0, 0, 0};
};

struct AtomRecord {
  std::string label;
  int type = 0;
  float x = 0, y = 0, z = 0, occupancy = 0, b = 0;
  int siteFactor = 0;
  std::array<int, 3> coupling{};
  std::array<float, 6> betas{};
};

std::string Label4(std::string_view label) {
  std::string text(label.substr(0, std::min<size_t>(label.size(), 4)));
  text.resize(4, ' ');
  return Trimmed(text).empty() ? std::string("X   ") : text;
}

// Everything the rewrite needs, read before anything is written.
struct ParameterAtoms {
  std::vector<PhaseHead> phases;
  std::vector<AtomRecord> atoms;
  bool hadBetaLines = false;
};

bool ReadParameterAtoms(RecordStore& store, ParameterAtoms& out, Reporter& reporter) {
  std::string data;
  int phases = 1;
  if (store.jFindRec("JOBT", data) == 1) {
    std::array<int, 8> job{};
    if (Read(data, "(8I5)", job[0], job[1], job[2], job[3], job[4], job[5], job[6], job[7]) !=
        ReadStatus::kOk) {
      reporter.LogLine(ErrorReading("JOBT", data));
      return false;
    }
    phases = std::clamp(job[2], 1, kMaxPhases);
  }
  out.phases.assign(phases, PhaseHead{});
  for (PhaseHead& phase : out.phases) {
    if (store.jFindRec("PHNA", data) != 1) continue;
    auto& v = phase.vectors;
    if (Read(data, "(I5,9F5.0)", phase.atoms, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
             v[8]) != ReadStatus::kOk) {
      reporter.LogLine(ErrorReading("PHNA", data));
      return false;
    }
  }
  // Every XYZ line is kept, also any behind the counts, so that the rewrite loses none.
  for (const std::string& line : FindRecords(store, "XYZ ", kMaxAtoms)) {
    AtomRecord atom;
    if (Read(line, "(A4,6X,I4,5F9.0,4I3)", atom.label, atom.type, atom.x, atom.y, atom.z,
             atom.occupancy, atom.b, atom.siteFactor, atom.coupling[0], atom.coupling[1],
             atom.coupling[2]) != ReadStatus::kOk) {
      reporter.LogLine(ErrorReading("XYZ ", line));
      return false;
    }
    out.atoms.push_back(atom);
  }
  // BETA lines follow the atoms one each, in order, as the engine reads them.
  const std::vector<std::string> betas = FindRecords(store, "BETA", kMaxAtoms);
  out.hadBetaLines = !betas.empty();
  for (size_t i = 0; i < betas.size() && i < out.atoms.size(); ++i) {
    std::string label;
    auto& b = out.atoms[i].betas;
    if (Read(betas[i], "(A4,6X,6F9.0)", label, b[0], b[1], b[2], b[3], b[4], b[5]) !=
        ReadStatus::kOk) {
      reporter.LogLine(ErrorReading("BETA", betas[i]));
      return false;
    }
  }
  int counted = 0;
  for (const PhaseHead& phase : out.phases) counted += std::max(phase.atoms, 0);
  if (counted > static_cast<int>(out.atoms.size())) {
    reporter.LogLine(" XYZ record missing");
    return false;
  }
  return true;
}

std::vector<Record> AtomRecords(const ParameterAtoms& model) {
  std::vector<Record> records;
  for (const PhaseHead& phase : model.phases) {
    const auto& v = phase.vectors;
    // All nine numbers go back, so that the halfwidth and second orientation vectors stay.
    records.push_back(MakeRecord("PHNA", "(i5,9f5.1)", phase.atoms, v[0], v[1], v[2], v[3], v[4],
                                 v[5], v[6], v[7], v[8]));
  }
  for (const AtomRecord& a : model.atoms) {
    const std::string label = Label4(a.label);
    {
      const FormatArg args[] = {label,         a.type, a.x, a.y, a.z, a.occupancy, a.b,
                                a.siteFactor, a.coupling[0], a.coupling[1], a.coupling[2]};
      records.push_back(LayoutRecord("('XYZ       ',a4,3x,i3,5f10.5,4i3)", args));
    }
    const auto& b = a.betas;
    if (b[0] != 0 || b[1] != 0 || b[2] != 0 || b[3] != 0 || b[4] != 0 || b[5] != 0) {
      const FormatArg args[] = {label, b[0], b[1], b[2], b[3], b[4], b[5]};
      records.push_back(LayoutRecord("('BETA      ',a4,6x,6f10.5)", args));
    }
  }
  return records;
}

}  // namespace

AddAllPeaksResult AddAllPeaks(std::string_view projectFile, const DistanceListRunner& distances,
                              Reporter& reporter) {
  AddAllPeaksResult result;
  const std::string project(Trimmed(projectFile));
  const int count = ReadPeakFile(ForceExtension(project, "prm"), project, reporter);
  if (count < 0) {
    result.status = 1;
    return result;
  }
  result.added = count;
  reporter.LogLine(std::to_string(count) + " atoms added to project file");
  if (!distances) return result;
  const std::string listFile = ForceExtension(project, "dis");
  if (distances(project, listFile, reporter) != 0) {
    reporter.LogLine("Error in DISTAN");
    result.status = 1;
    return result;
  }
  result.distanceList = listFile;
  return result;
}

AddPeakStatus ReadPeakChoices(std::string_view peakFile, std::vector<PeakEntry>& peaks,
                              Reporter& reporter) {
  peaks.clear();
  std::ifstream in{std::string(Trimmed(peakFile)), std::ios::binary};
  if (!in) {
    reporter.LogLine("Error opening Fourier peak file");
    return AddPeakStatus::kFailed;
  }
  std::string line;
  while (static_cast<int>(peaks.size()) < kMaxPeakChoices && GetTextLine(in, line)) {
    PeakEntry peak;
    // A line that does not read ends the list, as the end of the file would.
    if (Read(line, "(10x,a4,6x,3f10.0)", peak.label, peak.x, peak.y, peak.z) != ReadStatus::kOk) {
      break;
    }
    peaks.push_back(peak);
  }
  if (peaks.empty()) {
    reporter.LogLine("No atoms read");
    return AddPeakStatus::kNoPeaks;
  }
  return AddPeakStatus::kOk;
}

std::string PeakRowLabel(int row) { return FormatLine("(i3.3)", row); }

AddPeakStatus AddPeakAsAtom(std::string_view parameterFile, const std::vector<PeakEntry>& peaks,
                            int row, Reporter& reporter) {
  if (row == 0) return AddPeakStatus::kCancelled;
  if (row < 0 || row > static_cast<int>(peaks.size())) {
    reporter.LogLine(FormatLine("(a,i6)", "Error ", row));
    return AddPeakStatus::kFailed;
  }
  const std::string name(Trimmed(parameterFile));
  RecordStore store(reporter);
  if (store.jReadRecFile(name) < 1) {
    reporter.LogLine(" Error opening parfile ");
    return AddPeakStatus::kFailed;
  }
  ParameterAtoms model;
  const bool read = ReadParameterAtoms(store, model, reporter);
  store.jCloseRec();
  if (!read) return AddPeakStatus::kFailed;
  if (static_cast<int>(model.atoms.size()) >= kMaxAtoms) {
    reporter.LogLine("Too many atoms");
    return AddPeakStatus::kFailed;
  }

  const PeakEntry& peak = peaks[row - 1];
  AtomRecord atom;
  atom.label = peak.label;
  atom.type = kNewAtomType;
  atom.x = peak.x;
  atom.y = peak.y;
  atom.z = peak.z;
  atom.occupancy = 1.0f;
  atom.b = 1.0f;
  atom.siteFactor = 1;
  const int end = std::max(model.phases.front().atoms, 0);
  model.atoms.insert(model.atoms.begin() + end, atom);
  model.phases.front().atoms = end + 1;

  const std::vector<Record> records = AtomRecords(model);
  if (store.jUpdateRec(name, records) == 0 && store.jAddRec(name, records) == 0) {
    return AddPeakStatus::kFailed;
  }
  // Isolated zero BETA lines of the old file would pair with the wrong atoms.
  const bool betaWritten = std::any_of(records.begin(), records.end(), [](const Record& r) {
    return RecordKeyMatches(r, "BETA");
  });
  if (model.hadBetaLines && !betaWritten) store.jDeleteRec(name, "BETA");
  reporter.LogLine("One atom added to phase 1");
  return AddPeakStatus::kOk;
}

}  // namespace kaldena
