// Inside the raw data readers: what one file yields, the line source, the number helpers and
// one reader per format family. Used by raw_data.cpp only.
#pragma once

#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/list_file.h"
#include "util/limits.h"
#include "util/report.h"

namespace kaldena::raw {

enum class FileRole { kData, kBackground, kWeights };

// The values of one file on its own scan. Readers keep every value; the cut at kMaxPoints is
// made once, when the pattern is built.
struct Series {
  float start = 0;
  float step = 0;
  std::vector<float> values;      // intensities, background or variances by the file's role
  std::vector<float> deviations;  // standard deviations, for the files that give them
  std::vector<float> angles;      // two-theta of each value, for the formats that list it
  std::vector<int> angleLines;    // the file's line of each angle, where a line holds one
  float automaticSlit = 0;        // the file's own automatic divergence value
};

// Where a reader is, and where it tells its failures.
struct ReadContext {
  FileRole role;
  ListFile& list;
  Reporter& reporter;

  // A list-file line; false, so that a reader can return it.
  bool Fail(std::string_view message) const;
  // Failures of the formats that have no fixed message for them, naming the file and line:
  // " Error reading xy/txt background file, line 12", " No data points in epf data file".
  bool LineError(std::string_view family, int line) const;
  bool NoPoints(std::string_view family) const;
};

// Lines of a text file without their ends ("\n", "\r\n" or a lone "\r"); a byte-order mark in
// front of the first line is dropped. A line, or the rest of the file, is read up to
// kMaxTextLength characters: more than any line of the point capacity needs, so that a file
// without line ends (a device, a binary file) ends the reading with bounded memory.
class LineReader {
 public:
  static constexpr std::size_t kMaxTextLength = std::size_t{kMaxPoints} * 256;

  explicit LineReader(const std::filesystem::path& path);
  bool IsOpen() const { return in_.is_open(); }
  // False at the end of the file, or at a line longer than kMaxTextLength.
  bool Next(std::string& line);
  // Everything not yet read, as one text; empty when it is longer than kMaxTextLength.
  std::string Rest();
  int LineNumber() const { return number_; }
  // Whether the reading stopped at text longer than kMaxTextLength.
  bool Overlong() const { return overlong_; }

 private:
  std::ifstream in_;
  int number_ = 0;
  bool overlong_ = false;
};

// Blanks and tabs only.
bool IsBlankLine(std::string_view line);

// Free-form numbers: the line goes through NormaliseNumericLine and the items of the comma
// list fill `values` in turn (an empty item is 0). Returns how many were filled, or -1 when
// one of them is not a finite number. Items behind the last one wanted are not looked at.
int ReadNumberList(std::string_view line, std::span<float> values);

// One free-standing number, such as an xrdml count.
bool ReadNumberToken(std::string_view token, float& value);

// A body line of fixed fields, `fields` of `width` columns (10f8.0, 8f9.0): appends the
// values of the fields that the line holds, up to its last non-blank one; false when one of
// them is not a number.
bool AppendFixedFields(std::string_view line, int fields, int width, std::vector<float>& values);

// (last - first) / (count - 1), and 0 for fewer than two points.
float StepBetween(float first, float last, std::size_t count);

// A data file's scan before it is refined: a step above 0, angles that rise and keep within
// half a step of the even grid, intensities not all 0. False, with a list-file line naming
// `file` and its first bad line, when it fails.
bool CheckScan(const Series& series, const ReadContext& context, const std::string& file);

// One reader per family; each returns false after telling why, and true only with values.
bool ReadGdf(LineReader& file, const ReadContext& context, Series& series);
bool ReadXy(LineReader& file, const ReadContext& context, Series& series);
bool ReadUdf(LineReader& file, const ReadContext& context, Series& series);
bool ReadXrdml(LineReader& file, const ReadContext& context, Series& series);
bool ReadDat(LineReader& file, const ReadContext& context, Series& series);
bool ReadUxd(LineReader& file, const ReadContext& context, Series& series);
bool ReadCif(LineReader& file, const ReadContext& context, Series& series);
bool ReadEpf(LineReader& file, const ReadContext& context, Series& series);

}  // namespace kaldena::raw
