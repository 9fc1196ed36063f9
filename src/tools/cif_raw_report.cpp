// The raw data report: one loop over the points of the summary file with observed and
// calculated intensities and the weight of each point.
#include "tools/cif_raw_report.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <vector>

#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "tools/cif_text.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

std::string SummaryFileOf(std::string_view project, Reporter& reporter) {
  const std::string directory = DirectoryOf(project), base = BaseNameOf(project);
  RecordStore store(reporter);
  std::string named;
  if (store.jReadRecFile(project) >= 1) named = FindText(store, "PWSM", "");
  store.jCloseRec();
  std::vector<std::string> candidates;
  if (!named.empty()) candidates.push_back(ReplaceDirectory(directory, named));
  candidates.push_back(directory + "%" + base + ".sum");
  candidates.push_back(directory + base + ".sum");
  std::error_code error;
  for (const std::string& name : candidates) {
    if (std::filesystem::is_regular_file(name, error)) return name;
  }
  return candidates.front();
}

std::string RawReportFileName(std::string_view project) { return ForceExtension(project, "rcf"); }

RawReportStatus WriteRawReport(std::string_view project, std::string_view reportFile,
                               Reporter& reporter) {
  std::array<int, 8> job{};
  {
    RecordStore store(reporter);
    if (store.jReadRecFile(project) < 1) {
      reporter.LogLine(" Error opening parfile ");
      return RawReportStatus::kFailed;
    }
    std::string data;
    if (store.jFindRec("JOBT", data) == 1 &&
        Read(data, "(8i5)", job[0], job[1], job[2], job[3], job[4], job[5], job[6], job[7]) !=
            ReadStatus::kOk) {
      reporter.LogLine(" ios JOBT ");
      return RawReportStatus::kFailed;
    }
  }
  // With weights from a file the summary carries each point's variance behind the
  // background, and that is the weight's source.
  const bool weighted = job[6] == 2;
  std::ifstream summary(SummaryFileOf(project, reporter), std::ios::binary);
  if (!summary) {
    reporter.LogLine(" Error opening sumfile ");
    return RawReportStatus::kFailed;
  }
  PendingFile out{Trimmed(reportFile)};
  if (!out.is_open()) {
    reporter.LogLine(" Error opening ciffile ");
    return RawReportStatus::kFailed;
  }
  const std::string base = BaseNameOf(project);
  std::string code = CifBlockCode(base);
  if (code.empty()) code = "pattern";
  // The block opens the file so that the report reads as CIF.
  out << Format("(a/)", "data_" + code);
  out << Format("(a/)", "_pd_block_diffractogram_id     " + CifValue(base));
  out << Format("(a/)", "_pd_block_id     " + CifValue(base));
  for (const char* line :
       {"loop_", "_pd_proc_point_id", "_pd_proc_2theta_corrected", "_pd_proc_intensity_net",
        "_pd_calc_intensity_net", "_pd_proc_ls_weight"}) {
    out << Format("(a)", line);
  }
  RawReportStatus status = RawReportStatus::kOk;
  std::string line;
  int point = 0, lineNumber = 0;
  while (ReadRecordLine(summary, line)) {
    ++lineNumber;
    if (Trimmed(line).empty()) continue;
    float twoTheta = 0, observed = 0, calculated = 0, background = 0, variance = 0;
    const ReadStatus read =
        weighted ? Read(line, "(f7.3,4f12.0)", twoTheta, observed, calculated, background, variance)
                 : Read(line, "(f7.3,2f12.0)", twoTheta, observed, calculated);
    if (read != ReadStatus::kOk) {
      reporter.LogLine(FormatLine("(a,i6)", " Error reading sumfile, line", lineNumber));
      status = RawReportStatus::kFailed;
      break;
    }
    const float source = weighted ? variance : observed;
    const float weight = source > 0 ? 1 / source : 0.0f;
    out << Format("(i6,f8.3,2f12.1,e12.4)", ++point, twoTheta, observed, calculated, weight);
  }
  if (status != RawReportStatus::kOk) return status;  // the old report stays
  if (!out.Publish()) {
    reporter.LogLine(" Error opening ciffile ");
    return RawReportStatus::kFailed;
  }
  return status;
}

}  // namespace kaldena
