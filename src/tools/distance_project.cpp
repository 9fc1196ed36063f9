#include "tools/distance_project.h"

#include <algorithm>

#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kDefaultPhaseAtoms = 500;

int ReadPhaseCount(RecordStore& store) {
  std::string data;
  int job = 0, profile = 0, phases = 1;
  if (store.jFindRec("JOBT", data) == 1) Read(data, "(3i5)", job, profile, phases);
  return std::clamp(phases, 1, kMaxPhases);
}

std::vector<DistanceAtom> ReadAtoms(RecordStore& store, Reporter& reporter, bool& tooMany) {
  std::vector<DistanceAtom> atoms;
  const std::vector<std::string> lines = FindRecords(store, "XYZ ");
  tooMany = static_cast<int>(lines.size()) > kMaxAtoms;
  for (const std::string& line : lines) {
    if (static_cast<int>(atoms.size()) == kMaxAtoms) break;
    const AtomLine read = ReadAtomLine(line, reporter);
    DistanceAtom atom;
    atom.label = read.label;
    atom.label.resize(4, ' ');
    atom.xyz = {read.x, read.y, read.z};
    atom.occupancy = read.occupancy;
    atom.b = read.b;
    atoms.push_back(atom);
  }
  // BISO lines follow the atoms one a line and replace the B of the XYZ line.
  for (DistanceAtom& atom : atoms) {
    std::string data, label;
    float b = 0;
    if (store.jFindRec("BISO", data) != 1) break;
    if (Read(data, "(a4,6x,f10.0)", label, b) == ReadStatus::kOk) atom.b = b;
  }
  // An s(x) above 1 is no standard deviation: that atom gets none and reading stops.
  for (DistanceAtom& atom : atoms) {
    std::string data;
    if (store.jFindRec("SDXY", data) != 1) break;
    std::array<float, 3> sd{};
    if (Read(data, "(10x,3f10.0)", sd[0], sd[1], sd[2]) != ReadStatus::kOk) break;
    if (sd[0] > 1.0f) break;
    atom.sd = sd;
  }
  return atoms;
}

}  // namespace

DistanceLimits ReadDistanceLimits(RecordStore& store) {
  DistanceLimits limits;
  std::string data;
  if (store.jFindRec("DIST", data) == 1) {
    DistanceLimits read;
    if (Read(data, "(4f10.0,i5)", read.dmax, read.amax, read.dmin, read.amin, read.option) ==
        ReadStatus::kOk) {
      limits = read;
    }
  }
  return limits;
}

void AdjustDistanceLimits(DistanceLimits& limits) {
  if (limits.dmax == 0.0f) limits.dmax = 3.0f;
  if (limits.amax == 0.0f) limits.amax = limits.dmax;
}

Record DistanceLimitsRecord(const DistanceLimits& limits) {
  return MakeRecord("DIST", "(4f10.5,i5)", limits.dmax, limits.amax, limits.dmin, limits.amin,
                    limits.option);
}

ProjectReadStatus ReadDistanceProject(std::string_view fileName, DistanceProject& project,
                                      Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(fileName) < 1) return ProjectReadStatus::kCannotOpen;
  project = DistanceProject{};
  project.title = FindText(store, "TITL", "Untitled");
  project.limits = ReadDistanceLimits(store);
  const int phaseCount = ReadPhaseCount(store);
  project.phases.resize(phaseCount);
  for (DistancePhaseInput& phase : project.phases) {
    phase.title = FindText(store, "PHTI", "untitled phase");
    if (phase.title.empty()) phase.title = "untitled phase";
  }
  std::vector<int> counts(phaseCount, kDefaultPhaseAtoms);
  for (int& count : counts) {
    std::string data;
    if (store.jFindRec("PHNA", data) != 1) continue;
    int n = kDefaultPhaseAtoms;
    if (Read(data, "(i5)", n) == ReadStatus::kOk) count = std::max(n, 0);
  }
  project.atoms = ReadAtoms(store, reporter, project.tooManyAtoms);
  int next = 0;
  const int total = static_cast<int>(project.atoms.size());
  for (int p = 0; p < phaseCount; ++p) {
    DistancePhaseInput& phase = project.phases[p];
    phase.firstAtom = next;
    phase.atomCount = std::min(counts[p], total - next);
    next += phase.atomCount;
  }
  for (DistancePhaseInput& phase : project.phases) {
    std::string data;
    if (store.jFindRec("CELL", data) != 1) break;
    float wavelength = 0;
    if (ReadCellLine(data, phase.cell, wavelength) != ReadStatus::kOk) {
      reporter.LogLine(ErrorReading("CELL", data));
      continue;
    }
    phase.hasCell = true;
  }
  for (DistancePhaseInput& phase : project.phases) {
    std::string data;
    if (store.jFindRec("SDCE", data) != 1) break;
    auto& s = phase.cellSd;
    if (Read(data, "(6f10.0)", s[0], s[1], s[2], s[3], s[4], s[5]) != ReadStatus::kOk) s = {};
  }
  for (DistancePhaseInput& phase : project.phases) {
    std::string data;
    if (store.jFindRec("SPGR", data) != 1) break;
    phase.symbol = data.substr(0, std::min<size_t>(data.size(), kSymbolLength));
    phase.symbol.resize(kSymbolLength, ' ');
    phase.hasSymbol = true;
  }
  store.jCloseRec();
  return ProjectReadStatus::kOk;
}

}  // namespace kaldena
