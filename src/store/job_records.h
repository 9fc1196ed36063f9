// The job and file records of a project: TITL, FRMT, JOBT and the PW.. file names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/record_store.h"

namespace kaldena {

// How a record read went. A missing record is told apart so that dialogs can fall back on
// their defaults where the engine fails.
enum class RecordRead { kOk = 0, kMissing = 1, kBadNumbers = 2 };

// The list line of a record that does not read: " Error reading " and the record.
std::string ErrorReading(std::string_view key, std::string_view data);

// The eight numbers of JOBT.
struct JobControls {
  int jobType = 2;          // 0/1 refinement, 2/3 calculation, 4/5 comparison; even is X-rays
  int profile = 4;          // profile function number 1 to 9
  int phases = 1;           // 1 to 10
  int background = -1;      // -1 Chebyshev, 0 polynomial
  int excludedRegions = 0;  // 0 to 30
  int atomTypes = 0;        // ANOM lines
  int weighting = 0;        // 0 1/Yobs, 1 1/Ycalc, 2 from file
  int mergePoints = 1;      // points merged into one, 1 or more

  bool IsXray() const { return jobType % 2 == 0; }
};

// Reads JOBT and keeps its counts in their bounds. Warnings and failures are lines for the
// list file, appended to `listLines`: " JOBT record missing", " Error reading " and the
// record, " Warning: Too many phases", " Warning: Too many excluded regions". On a failure
// `job` keeps its values.
RecordRead ReadJobControls(RecordStore& store, JobControls& job,
                           std::vector<std::string>& listLines);
Record JobControlsRecord(const JobControls& job);

// Raw data format of FRMT, 1 (gdf) to 9 (epf); 1 when the record is absent.
RecordRead ReadDataFormat(RecordStore& store, int& format, std::vector<std::string>& listLines);
// The project title of TITL, "UNTITLED" when absent, at most 72 characters.
std::string ReadTitle(RecordStore& store);

// The files of a run as the records name them.
struct RunFileNames {
  std::string data;        // PWDT, blank when absent
  std::string background;  // PWBG
  std::string weights;     // PWWG
  std::string list;        // PWUT, "%" + base + ".out"
  std::string parameters;  // PWPR, "%" + base + ".par"
  std::string summary;     // PWSM, "%" + base + ".sum"
  std::string fourier;     // PWFO, "%" + base + ".fou"
};

// Reads the PW.. records; an absent or blank output name takes its default from the base
// name of `projectFile`.
RunFileNames ReadRunFileNames(RecordStore& store, std::string_view projectFile);
// The seven records in the order PWDT, PWBG, PWWG, PWUT, PWPR, PWSM, PWFO.
std::vector<Record> RunFileNameRecords(const RunFileNames& names);

}  // namespace kaldena
