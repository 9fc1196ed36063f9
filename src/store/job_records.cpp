#include "store/job_records.h"

#include <algorithm>

#include "store/record_catalogue.h"
#include "store/record_keys.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

std::string ErrorReading(std::string_view key, std::string_view data) {
  std::string record(key);
  record.resize(10, ' ');
  return " Error reading " + std::string(Trimmed(record + std::string(data)));
}

namespace {

void KeepInBounds(JobControls& job, std::vector<std::string>& listLines) {
  job.phases = std::max(job.phases, 1);
  if (job.phases > kMaxPhases) {
    listLines.push_back(" Warning: Too many phases");
    job.phases = kMaxPhases;
  }
  job.excludedRegions = std::max(job.excludedRegions, 0);
  if (job.excludedRegions > kMaxExcludedRegions) {
    listLines.push_back(" Warning: Too many excluded regions");
    job.excludedRegions = kMaxExcludedRegions;
  }
  if (job.mergePoints < 1) job.mergePoints = 1;
}

}  // namespace

RecordRead ReadJobControls(RecordStore& store, JobControls& job,
                           std::vector<std::string>& listLines) {
  std::string data;
  if (store.jFindRec("JOBT", data) != 1) {
    listLines.push_back(" JOBT record missing");
    return RecordRead::kMissing;
  }
  JobControls read;
  if (Read(data, ReadLayout("JOBT"), read.jobType, read.profile, read.phases, read.background,
           read.excludedRegions, read.atomTypes, read.weighting,
           read.mergePoints) != ReadStatus::kOk) {
    listLines.push_back(ErrorReading("JOBT", data));
    return RecordRead::kBadNumbers;
  }
  KeepInBounds(read, listLines);
  job = read;
  return RecordRead::kOk;
}

Record JobControlsRecord(const JobControls& job) {
  return MakeRecord("JOBT", WriteLayout("JOBT"), job.jobType, job.profile, job.phases,
                    job.background, job.excludedRegions, job.atomTypes, job.weighting,
                    job.mergePoints);
}

RecordRead ReadDataFormat(RecordStore& store, int& format, std::vector<std::string>& listLines) {
  std::string data;
  if (store.jFindRec("FRMT", data) != 1) {
    format = 1;
    return RecordRead::kMissing;
  }
  int value = 0;
  if (Read(data, ReadLayout("FRMT"), value) != ReadStatus::kOk) {
    listLines.push_back(ErrorReading("FRMT", data));
    return RecordRead::kBadNumbers;
  }
  format = value;
  return RecordRead::kOk;
}

std::string ReadTitle(RecordStore& store) {
  return FindText(store, "TITL", "UNTITLED").substr(0, 72);
}

RunFileNames ReadRunFileNames(RecordStore& store, std::string_view projectFile) {
  const std::string base = "%" + BaseNameOf(projectFile);
  auto output = [&](std::string_view key, std::string_view extension) {
    std::string name = FindText(store, key, "");
    return name.empty() ? base + std::string(extension) : name;
  };
  RunFileNames names;
  names.data = FindText(store, "PWDT", "");
  names.background = FindText(store, "PWBG", "");
  names.weights = FindText(store, "PWWG", "");
  names.list = output("PWUT", ".out");
  names.parameters = output("PWPR", ".par");
  names.summary = output("PWSM", ".sum");
  names.fourier = output("PWFO", ".fou");
  return names;
}

std::vector<Record> RunFileNameRecords(const RunFileNames& names) {
  return {TextRecord("PWDT", names.data),       TextRecord("PWBG", names.background),
          TextRecord("PWWG", names.weights),    TextRecord("PWUT", names.list),
          TextRecord("PWPR", names.parameters), TextRecord("PWSM", names.summary),
          TextRecord("PWFO", names.fourier)};
}

}  // namespace kaldena
