#include "tools/fourier_driver.h"

#include <fstream>
#include <vector>

#include "crystal/space_group.h"
#include "store/job_records.h"
#include "store/record_lines.h"
#include "store/record_store.h"
#include "tools/fourier_files.h"
#include "tools/fourier_options.h"
#include "tools/fourier_peaks.h"
#include "util/cell.h"
#include "util/file_names.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

struct FourierRecords {
  FourierOptions options;
  CellParameters cell{};
  std::vector<IndexOperator> operators;
};

// CELL, SPGR with its operators, and the options. False after the log line of what is missing.
bool ReadFourierRecords(RecordStore& store, FourierRecords& records, Reporter& reporter) {
  std::string data;
  float wavelength = 0.0f;
  if (store.jFindRec("CELL", data) != 1 ||
      ReadCellLine(data, records.cell, wavelength) != ReadStatus::kOk) {
    reporter.LogLine("CELL record missing. Program terminated");
    return false;
  }
  if (store.jFindRec("SPGR", data) == 1 && !Trimmed(data.substr(0, kSymbolLength)).empty()) {
    std::string symbol = data.substr(0, kSymbolLength);
    const SpaceGroupInfo group = GetSpaceGroupOperators(symbol, reporter);
    for (const SymmetryOperator& op : group.operators) {
      if (records.operators.size() == static_cast<size_t>(kMaxOperators)) break;
      records.operators.push_back(IndexOperatorOf(op));
    }
  }
  if (records.operators.empty()) {
    reporter.LogLine("Symmetry information missing. Program terminated");
    return false;
  }
  records.options = ReadFourierOptions(store);
  return true;
}

}  // namespace

FourierStatus RunFourier(std::string_view project, std::string_view fourierFile,
                         Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(project) < 1) {
    reporter.LogLine("Error opening  project file");
    return FourierStatus::kFailed;
  }
  const std::string peakName = ForceExtension(project, "prm");
  const std::string plotName = ForceExtension(project, "plo");

  // Both files take the old ones' places only when the search has ended well.
  PendingFile plot(plotName);
  if (!plot.is_open()) {
    reporter.LogLine("Error opening Fourier plot file");
    return FourierStatus::kFailed;
  }
  FourierRecords records;
  const bool recordsRead = ReadFourierRecords(store, records, reporter);
  store.jCloseRec();
  if (!recordsRead) return FourierStatus::kFailed;
  const FourierOptions& options = records.options;
  plot << PlotFileHeader(records.cell, options.plotTitle);

  std::ifstream fou{std::string(Trimmed(fourierFile)), std::ios::binary};
  if (!fou) {
    reporter.LogLine("Error opening Fourier file");
    return FourierStatus::kFailed;
  }
  const UnitCell cell{records.cell[0], records.cell[1], records.cell[2],
                      records.cell[3], records.cell[4], records.cell[5]};
  const float volume = CellVolume(cell);
  if (!(volume > 0.0f)) {
    reporter.LogLine("CELL record missing. Program terminated");
    return FourierStatus::kFailed;
  }
  ExpandedReflections reflections;
  const FourierStatus expanded =
      ExpandReflections(fou, options, volume, records.operators, reflections, reporter);
  fou.close();
  if (expanded != FourierStatus::kOk) return expanded;

  FourierMap map;
  if (SumFourierMap(reflections, options.limits, map, reporter) != FourierStatus::kOk) {
    return FourierStatus::kFailed;
  }
  reflections = ExpandedReflections{};
  plot << PlotFileSections(map, options.limits);
  plot.flush();
  if (plot.fail()) {
    reporter.LogLine("Error opening Fourier plot file");
    return FourierStatus::kFailed;
  }

  PendingFile peaks(peakName);
  if (!peaks.is_open()) {
    reporter.LogLine("Error opening Fourier peak file");
    return FourierStatus::kFailed;
  }
  if (options.positiveLevel >= 1 || options.negativeLevel >= 1) {
    std::ifstream plotIn(plot.Name(), std::ios::binary);
    if (!plotIn || !SearchAndWritePeaks(plotIn, peaks, options, reporter)) {
      reporter.LogLine("Error opening Fourier plot file");
      return FourierStatus::kFailed;
    }
  }
  if (!plot.Publish() || !peaks.Publish()) {
    reporter.LogLine("Error opening Fourier peak file");
    return FourierStatus::kFailed;
  }
  return FourierStatus::kOk;
}

FourierStatus StartFourier(std::string_view project, std::string_view fourierFile,
                           Reporter& reporter) {
  reporter.LogLine("Starting Fourier calculation");
  const FourierStatus status = RunFourier(project, fourierFile, reporter);
  if (status != FourierStatus::kOk) reporter.LogLine("Fourier calculation interupted");
  return status;
}

std::string FourierFileOf(std::string_view project, Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(project) < 1) return {};
  const RunFileNames names = ReadRunFileNames(store, project);
  store.jCloseRec();
  return ReplaceDirectory(DirectoryOf(project), names.fourier);
}

}  // namespace kaldena
