#include "tools/distances.h"

#include <cstdio>
#include <fstream>
#include <memory>

#include "crystal/space_group.h"
#include "tools/distance_listing.h"
#include "util/column_format.h"
#include "util/date_text.h"
#include "util/file_names.h"
#include "util/limits.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

// The unformatted scratch file of one phase: a file of the system's own in its temp
// directory, gone when closed.
class ScratchFile {
 public:
  ScratchFile() : file_(std::tmpfile()) {}
  ~ScratchFile() {
    if (file_) std::fclose(file_);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  bool IsOpen() const { return file_ != nullptr; }
  void Write(const DistanceRecord& r) { std::fwrite(&r, sizeof r, 1, file_); }
  void Rewind() { std::rewind(file_); }
  std::vector<DistanceRecord> Read(int count) {
    std::vector<DistanceRecord> records(count);
    const size_t read =
        count > 0 ? std::fread(records.data(), sizeof(DistanceRecord), count, file_) : 0;
    records.resize(read);
    return records;
  }

 private:
  std::FILE* file_;
};

void ApplyOverrides(const DistanceRunOptions& options, DistanceLimits& limits) {
  if (options.dmax) limits.dmax = *options.dmax;
  if (options.amax) limits.amax = *options.amax;
  if (options.dmin) limits.dmin = *options.dmin;
  if (options.amin) limits.amin = *options.amin;
  if (options.option) limits.option = *options.option;
  AdjustDistanceLimits(limits);
}

DistancePhaseModel MakePhaseModel(const DistanceProject& project, const DistancePhaseInput& phase,
                                  const SpaceGroupInfo& group) {
  DistancePhaseModel model;
  model.geometry =
      MakeDistanceGeometry(phase.cell, phase.cellSd, project.limits.dmin, project.limits.dmax);
  model.atoms.assign(project.atoms.begin() + phase.firstAtom,
                     project.atoms.begin() + phase.firstAtom + phase.atomCount);
  model.operators = group.operators;
  model.positions = ExpandPositions(model.atoms, model.operators);
  return model;
}

enum class PhaseStatus { kOk = 0, kFailed = 1 };

// One phase into the list: blocks, search through the scratch file, angles, closing list.
PhaseStatus ListPhase(const DistanceProject& project, int index, DistanceListing& out,
                      Reporter& reporter) {
  const DistancePhaseInput& phase = project.phases[index];
  const DistanceLimits& limits = project.limits;
  if (project.phases.size() >= 2) out.PhaseBox(index + 1, phase.title);
  if (!phase.hasCell) {
    reporter.LogLine(" CELL record missing");
    return PhaseStatus::kFailed;
  }
  const DistanceGeometry cellOnly = MakeDistanceGeometry(phase.cell, phase.cellSd, 0, 0);
  out.CellBlock(cellOnly);
  if (!phase.hasSymbol) {
    reporter.LogLine("SPGR missing");
    return PhaseStatus::kFailed;
  }
  std::string symbol = phase.symbol;
  const SpaceGroupInfo group = GetSpaceGroupOperators(symbol, reporter);
  out.SymmetryBlock(cellOnly.system, symbol, group.operators);
  const DistancePhaseModel model = MakePhaseModel(project, phase, group);
  out.AtomBlock(model.atoms);
  if (!model.positions.complete) reporter.LogLine("Too many positions generated");

  ScratchFile scratch;
  if (!scratch.IsOpen()) {
    reporter.LogLine(" Error opening scratch file");
    return PhaseStatus::kFailed;
  }
  if (limits.Extended()) out.ExtendedBanner();
  const int centres = static_cast<int>(model.atoms.size());
  std::vector<int> counts(centres, 0);
  DistanceSink sink;
  sink.accept = [&](const DistanceRecord& r) {
    scratch.Write(r);
    if (limits.Extended()) out.SearchLine(r);
  };
  sink.tooMany = [&](int count, std::string_view label) {
    out.TooManyLine(count, label);
    reporter.LogLine("Too many distances to " + std::string(label));
  };
  for (int c = 0; c < centres; ++c) {
    if (limits.Extended()) out.SearchHeading();
    counts[c] = SearchCentre(model, c, sink);
  }

  if (limits.Angles()) {
    scratch.Rewind();
    out.AnglesBanner(limits.Extended());
    for (int c = 0; c < centres; ++c) {
      if (counts[c] < 1) continue;
      const std::vector<DistanceRecord> records = scratch.Read(counts[c]);
      out.AngleHeading(limits.Extended());
      for (const AngleRecord& a : CentreAngles(model, records, limits.amin, limits.amax)) {
        out.AngleLine(a, limits.Extended());
      }
    }
  }

  scratch.Rewind();
  out.ClosingBanner();
  for (int c = 0; c < centres; ++c) {
    std::vector<DistanceRecord> records = scratch.Read(counts[c]);
    SortByLength(records);
    out.ClosingCentre(records);
  }
  return PhaseStatus::kOk;
}

bool ListProject(const std::string& file, std::ostream& stream, Reporter& reporter,
                 const DistanceRunOptions& options) {
  DistanceProject project;
  if (ReadDistanceProject(file, project, reporter) != ProjectReadStatus::kOk) {
    reporter.LogLine(" Error opening project file ");
    return false;
  }
  ApplyOverrides(options, project.limits);
  DistanceListing out(stream);
  out.Header(options.date.empty() ? TodayText() : options.date, project.title);
  if (project.tooManyAtoms) {
    reporter.LogLine(FormatLine("(a,i5,a)", " Only", kMaxAtoms, " atoms will be used"));
  }
  out.Limits(project.limits);
  for (int p = 0; p < static_cast<int>(project.phases.size()); ++p) {
    if (ListPhase(project, p, out, reporter) != PhaseStatus::kOk) return false;
  }
  return true;
}

// The next project name of a list, with the extension rec; false at a blank line or the end.
bool NextProject(std::istream& list, std::string& name) {
  std::string line;
  if (!GetTextLine(list, line)) return false;
  std::string_view text = Trimmed(line);
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  if (text.empty()) return false;
  name = ForceExtension(text, "rec");
  return true;
}

bool IsProjectList(std::string_view input) {
  const std::string_view name = Trimmed(input);
  if (name.size() < 4) return false;
  return UpperText(name.substr(name.size() - 4)) == ".MLT";
}

}  // namespace

bool RunDistan(std::string_view input, std::string_view listFile, Reporter& reporter,
               const DistanceRunOptions& options) {
  const std::string inputName(Trimmed(input));
  std::unique_ptr<std::ifstream> projectList;
  if (IsProjectList(inputName)) {
    projectList = std::make_unique<std::ifstream>(inputName);
    if (!*projectList) {
      reporter.LogLine(" Error opening mlt file");
      return false;
    }
  }
  PendingFile list{Trimmed(listFile)};
  if (!list.is_open()) {
    reporter.LogLine(" Error opening distan list file");
    return false;
  }
  bool ok = true;
  if (!projectList) {
    ok = ListProject(inputName, list, reporter, options);
  } else {
    for (std::string project; ok && NextProject(*projectList, project);) {
      ok = ListProject(project, list, reporter, options);
    }
  }
  // The list takes the old one's place as far as it got, a failure included: a killed run
  // leaves the old list.
  return list.Publish() && ok;
}

std::string DistanceListName(std::string_view input) { return ForceExtension(input, "dis"); }

bool StartDistan(std::string_view input, Reporter& reporter,
                 const std::function<void(const std::string& listFile)>& openViewer) {
  reporter.LogLine("Starting DISTAN");
  const std::string listFile = DistanceListName(input);
  if (!RunDistan(input, listFile, reporter)) {
    reporter.LogLine("Error in DISTAN");
    return false;
  }
  if (openViewer) openViewer(listFile);
  return true;
}

DistanceTable CalculateDistances(std::string_view projectFile, Reporter& reporter) {
  DistanceTable table;
  DistanceProject project;
  if (ReadDistanceProject(projectFile, project, reporter) != ProjectReadStatus::kOk) {
    reporter.LogLine(" Error opening project file ");
    return table;
  }
  AdjustDistanceLimits(project.limits);
  table.limits = project.limits;
  // The CIF writer's message keeps its placeholder as it has always stood.
  if (project.tooManyAtoms) reporter.LogLine(" Only M__AT atoms will be used");
  for (const DistancePhaseInput& phase : project.phases) {
    if (!phase.hasCell) {
      reporter.LogLine(" CELL record missing");
      return table;
    }
    if (!phase.hasSymbol) {
      reporter.LogLine("SPGR record missing");
      return table;
    }
    std::string symbol = phase.symbol;
    const SpaceGroupInfo group = GetSpaceGroupOperators(symbol, reporter);
    const DistancePhaseModel model = MakePhaseModel(project, phase, group);
    if (!model.positions.complete) reporter.LogLine("Too many positions generated");
    PhaseDistances result;
    result.title = phase.title;
    result.symbol = symbol;
    result.atoms = model.atoms;
    const int centres = static_cast<int>(model.atoms.size());
    result.distances.resize(centres);
    result.angles.resize(centres);
    for (int c = 0; c < centres; ++c) {
      DistanceSink sink;
      sink.accept = [&](const DistanceRecord& r) { result.distances[c].push_back(r); };
      sink.tooMany = [&](int, std::string_view label) {
        reporter.LogLine("Too many distances to " + std::string(label));
      };
      SearchCentre(model, c, sink);
      if (project.limits.Angles()) {
        result.angles[c] =
            CentreAngles(model, result.distances[c], project.limits.amin, project.limits.amax);
      }
    }
    table.phases.push_back(std::move(result));
  }
  table.ok = true;
  return table;
}

}  // namespace kaldena
