#include "tools/crystallinity_record.h"

#include <array>
#include <vector>

#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"

namespace kaldena {

bool ReadCrystallinityInputs(const std::string& project, Reporter& reporter,
                             CrystallinityInputs& in) {
  RecordStore store(reporter);
  if (store.jReadRecFile(project) < 1) return false;
  std::string data;
  std::array<float, 3> elam{1.54051f, 1.54433f, 0.5f};
  if (store.jFindRec("ELAM", data) == 1) Read(data, "(3f10.0)", elam[0], elam[1], elam[2]);
  in.limits.wavelength = elam[0];
  while (store.jFindRec("EXRG", data) == 1) {
    std::array<float, 2> region{};
    Read(data, "(2f10.0)", region[0], region[1]);
    in.limits.excludedRegions.push_back(region);
  }
  std::array<float, 4> k{};
  if (store.jFindRec("CRYS", data) == 1) Read(data, "(4f10.0)", k[0], k[1], k[2], k[3]);
  in.limits.minimum = k[0];
  in.limits.maximum = k[1];
  // The engine's name of the summary, beside the project when it has no directory.
  in.summary = ReplaceDirectory(DirectoryOf(project), ReadRunFileNames(store, project).summary);
  store.jCloseRec();
  return true;
}

void WriteCrystallinityRecord(const std::string& project, const CrystallinityLimits& limits,
                              const Crystallinity& result, Reporter& reporter) {
  const std::vector<Record> records = {MakeRecord("CRYS", "4f10.2", limits.minimum, limits.maximum,
                                                  result.sWeighted, result.unweighted)};
  RecordStore store(reporter);
  if (store.jUpdateRec(project, records) == 0) store.jAddRec(project, records);
}

Crystallinity RunCrystallinity(const CrystallinityRequest& request, Reporter& reporter) {
  CrystallinityInputs in;
  if (!ReadCrystallinityInputs(request.project, reporter, in)) {
    reporter.LogLine("Error opening or reading " + request.project);
    return {CrystallinityStatus::kNoSummary};
  }
  if (request.minimum) in.limits.minimum = *request.minimum;
  if (request.maximum) in.limits.maximum = *request.maximum;
  const Crystallinity result = CalculateCrystallinity(in.summary, in.limits);
  if (result.status != CrystallinityStatus::kOk) {
    reporter.LogLine(result.status == CrystallinityStatus::kNoSummary
                         ? "Error opening " + in.summary
                         : "Error reading " + in.summary);
    return result;
  }
  WriteCrystallinityRecord(request.project, in.limits, result, reporter);
  reporter.LogLine(FormatLine("('Crystallinity s-weighted:',f8.2,' %   unweighted:',f8.2,' %')",
                              result.sWeighted, result.unweighted));
  return result;
}

}  // namespace kaldena
