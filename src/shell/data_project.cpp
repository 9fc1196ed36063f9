#include "shell/data_project.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <numbers>

#include "crystal/elements.h"
#include "crystal/space_group.h"
#include "engine/raw_data.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "tools/cif_scanner.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

namespace fs = std::filesystem;

// Emission lines of the International Tables for Crystallography, Vol. C (2004), Table
// 4.2.2.1, from Hoelzer et al., Phys. Rev. A 56 (1997) 4554; the K alpha 2 line at half the
// intensity of K alpha 1.
struct Tube {
  std::string_view name;
  Radiation radiation;
};
constexpr Tube kTubes[] = {
    {"CuKa1", {false, {1.540593f, 0.0f, 0.0f}}},
    {"CuKa", {false, {1.540593f, 1.544414f, 0.5f}}},
    {"CoKa", {false, {1.788996f, 1.792835f, 0.5f}}},
    {"MoKa", {false, {0.709317f, 0.713543f, 0.5f}}},
};

constexpr std::string_view kExtensions[] = {".gdf", ".txt", ".udf", ".xrdml", ".xy",
                                            ".dat", ".uxd", ".cif", ".epf"};

// Ten Chebyshev terms follow a lab pattern's background; a refinement starts 2 degrees below
// the first reflection that any phase's cell allows, so that the rise of air scatter at low
// angles does not outweigh the peaks.
constexpr int kBackgroundTerms = 10;
constexpr double kMarginBelowFirstPeak = 2.0;
// The background level: the intensity that a fifth of the points lie below.
constexpr double kBackgroundQuantile = 0.2;

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

// The path as PWDT names it: the bare name beside the project, else the absolute path.
std::string DataPathFor(const std::string& recFile, const std::string& dataFile) {
  std::error_code error;
  const fs::path data = fs::absolute(dataFile, error);
  const fs::path project = fs::absolute(recFile, error);
  if (data.parent_path() == project.parent_path()) return data.filename().string();
  return data.lexically_normal().string();
}

// Each phase's cell, in order.
std::vector<std::array<float, 6>> Cells(RecordStore& store) {
  std::vector<std::array<float, 6>> cells;
  for (const std::string& data : FindRecords(store, "CELL")) {
    std::array<float, 6> c{};
    if (Read(data, "(6F10.0)", c[0], c[1], c[2], c[3], c[4], c[5]) == ReadStatus::kOk) {
      cells.push_back(c);
    }
  }
  return cells;
}

// 2 theta of the largest spacing that a cell can give: its longest edge.
double FirstPeakBound(const std::vector<std::array<float, 6>>& cells, float wavelength) {
  double longest = 0;
  for (const auto& c : cells) {
    longest = std::max({longest, double{c[0]}, double{c[1]}, double{c[2]}});
  }
  const double sine = wavelength / (2 * longest);
  if (!(longest > 0) || sine >= 1) return 0;
  return 2 * std::asin(sine) * 180 / std::numbers::pi;
}

float BackgroundLevel(std::vector<float> intensities) {
  if (intensities.empty()) return 0;
  const auto at = intensities.begin() +
                  static_cast<long>(kBackgroundQuantile * static_cast<double>(intensities.size()));
  std::nth_element(intensities.begin(), at, intensities.end());
  return *at;
}

// ANOM lines of the project's atom types with the table's f' and f'' at `wavelength`; none
// when a type comes from the user's own table, so that the lines stand as they are.
std::vector<Record> AtomTypeLines(RecordStore& store, float wavelength) {
  std::vector<Record> lines;
  for (const std::string& data : FindRecords(store, "ANOM")) {
    std::string symbol = data.substr(0, 2);
    symbol.resize(2, ' ');
    const int z = ElementNumber(symbol);
    if (z == 0) return {};
    const ScatteringData table = GetScatteringData(wavelength, z);
    lines.push_back(MakeRecord("ANOM", "(a2,8x,2f10.5)", symbol, table[9], table[10]));
  }
  return lines;
}

// PHTI lines with the last phases titled by `titles`; earlier phases keep theirs.
std::vector<Record> PhaseTitles(RecordStore& store, const std::vector<std::string>& titles) {
  std::vector<Record> lines;
  const std::vector<std::string> present = FindRecords(store, "PHTI");
  const std::size_t kept = present.size() - std::min(present.size(), titles.size());
  for (std::size_t p = 0; p < kept; ++p) lines.push_back(TextRecord("PHTI", Trimmed(present[p])));
  for (const std::string& title : titles) lines.push_back(TextRecord("PHTI", title));
  return lines;
}

bool Replace(RecordStore& store, const std::string& file, const std::vector<Record>& lines) {
  if (lines.empty()) return true;
  if (store.jUpdateRec(file, lines) > 0) return true;
  return store.jAddRec(file, lines) > 0;
}

std::vector<Record> Repeated(const Record& line, std::size_t count) {
  return std::vector<Record>(count, line);
}

// The cell codes of a Laue class with the tied slots (A, B, C, F, E, D) in group `group`.
std::array<float, 6> CellCodes(int laueClass, int uniqueAxis, int group) {
  const float g = static_cast<float>(10 * group + 1);
  switch (static_cast<LaueClass>(laueClass)) {
    case LaueClass::kTriclinic:
      return {1, 1, 1, 1, 1, 1};
    case LaueClass::kMonoclinic:
      return {1,
              1,
              1,
              uniqueAxis == 1 ? 1.0f : 0,
              uniqueAxis == 2 ? 1.0f : 0,
              uniqueAxis == 3 ? 1.0f : 0};
    case LaueClass::kOrthorhombic:
      return {1, 1, 1, 0, 0, 0};
    case LaueClass::kTetragonalLow:
    case LaueClass::kTetragonalHigh:
      return {g, g, 1, 0, 0, 0};
    case LaueClass::kCubicLow:
    case LaueClass::kCubicHigh:
      return {g, g, g, 0, 0, 0};
    case LaueClass::kRhombohedralLow:
    case LaueClass::kRhombohedralHigh:
      return {g, g, g, g + 10, g + 10, g + 10};
    default:  // trigonal and hexagonal axes
      return {g, g, 1, 0, 0, g};
  }
}

}  // namespace

std::optional<Radiation> RadiationNamed(std::string_view name) {
  for (const Tube& tube : kTubes) {
    if (Lower(tube.name) == Lower(name)) return tube.radiation;
  }
  constexpr std::string_view kNeutron = "neutron:";
  if (!Lower(name).starts_with(kNeutron)) return std::nullopt;
  float wavelength = 0;
  const std::string value(name.substr(kNeutron.size()));
  if (value.empty() || Read(value, "(F20.0)", wavelength) != ReadStatus::kOk || !(wavelength > 0)) {
    return std::nullopt;
  }
  return Radiation{true, {wavelength, 0.0f, 0.0f}};
}

int FormatOfExtension(std::string_view dataFile) {
  const std::string extension = Lower(fs::path(dataFile).extension().string());
  if (extension == ".prn") return 5;
  for (std::size_t i = 0; i < std::size(kExtensions); ++i) {
    if (extension == kExtensions[i]) return static_cast<int>(i) + 1;
  }
  return 0;
}

std::string CifTitle(const std::string& cifFile) {
  CifText text;
  if (!ReadCifText(cifFile, text)) return "";
  for (std::string_view name : {"_chemical_name_mineral", "_chemical_name_common",
                                "_chemical_name_systematic", "_chemical_formula_sum"}) {
    const std::optional<CifItem> item = FindCifItem(text, name);
    if (!item) continue;
    std::string value(Trimmed(item->rest));
    if (value.size() >= 2 && (value.front() == '\'' || value.front() == '"')) {
      value = value.substr(1, value.find(value.front(), 1) - 1);
    }
    if (!value.empty() && value != "?" && value != ".") return value;
  }
  for (const std::string& line : text.lines) {
    if (line.starts_with("data_")) return std::string(Trimmed(line.substr(5)));
  }
  return "";
}

bool SetUpRefinement(const std::string& recFile, const DataSetup& setup, Reporter& reporter) {
  RawDataRequest request;
  request.format = setup.format;
  request.dataFile = setup.dataFile;
  ListFile list;
  int weighting = kWeightByObserved;
  const RawPattern pattern = ReadRawData(request, weighting, list, reporter);
  for (const std::string& line : list.Lines()) reporter.LogLine(line);
  if (pattern.points == 0) return false;

  RecordStore store(reporter);
  if (store.jReadRecFile(recFile) < 1) return false;
  JobControls job;
  std::vector<std::string> listLines;
  const RecordRead jobRead = ReadJobControls(store, job, listLines);
  const std::vector<std::array<float, 6>> cells = Cells(store);
  const std::vector<Record> titles = PhaseTitles(store, setup.phaseTitles);
  const float wavelength = setup.radiation.wavelengths[0];
  const std::vector<Record> types =
      setup.radiation.neutron ? std::vector<Record>{} : AtomTypeLines(store, wavelength);
  store.jCloseRec();
  if (jobRead != RecordRead::kOk) return false;

  job.jobType = setup.radiation.neutron ? 1 : 0;
  job.background = -1;
  job.weighting = weighting;
  const double start =
      std::max(double{pattern.start}, FirstPeakBound(cells, wavelength) - kMarginBelowFirstPeak);
  const auto& w = setup.radiation.wavelengths;
  std::vector<float> level(kBackgroundTerms, 0.0f);
  level[0] = BackgroundLevel(pattern.intensities);
  const std::size_t phases = cells.size();

  const std::vector<std::vector<Record>> groups = {
      {TextRecord("TITL", setup.title)},
      {TextRecord("PWDT", DataPathFor(recFile, setup.dataFile))},
      {MakeRecord("FRMT", "(i5)", setup.format)},
      {JobControlsRecord(job)},
      {MakeRecord("ELAM", "(3f10.6)", w[0], w[1], w[2])},
      {MakeRecord("WAVE", "(2f10.6)", w[0], 0.0f)},
      {MakeRecord("RELX", "(i5,5f5.2,3f10.5)", 6, 0.3f, 1.0f, 1.0f, 1.0f, 1.0f,
                  static_cast<float>(start), pattern.step, pattern.stop)},
      MakeRecords("BKGR", "(5f10.1)", std::vector<FormatArg>(level.begin(), level.end())),
      MakeRecords("CBKG", "(5f10.3)", std::vector<FormatArg>(kBackgroundTerms, FormatArg(1.0f))),
      Repeated(MakeRecord("CSCA", "(2f10.3)", 1.0f, 0.0f), phases),
      {MakeRecord("CZET", "(3f10.3)", 1.0f, 0.0f, 0.0f)},
      types,
  };
  RecordStore writer(reporter);
  for (const std::vector<Record>& lines : groups) {
    if (!Replace(writer, recFile, lines)) return false;
  }
  return Replace(writer, recFile, titles);
}

std::vector<std::string> NextRefinementSteps(const std::string& recFile) {
  RecordingReporter quiet;
  RecordStore store(quiet);
  if (store.jReadRecFile(recFile) < 1) return {};
  const std::vector<std::string> symbols = FindRecords(store, "SPGR");
  store.jCloseRec();
  // Each step is a whole line, for each phase the line of that phase.
  std::vector<std::string> steps;
  auto add = [&](const std::string& what, const Record& line) {
    steps.push_back(what + ": " + std::string(Trimmed(line)));
  };
  for (std::size_t p = 0; p < symbols.size(); ++p) {
    SpaceGroupInfo group;
    ParseSpaceGroupSymbol(symbols[p].substr(0, 20), group);
    const auto c = CellCodes(group.laueClass, group.uniqueAxis, static_cast<int>(p) + 1);
    add("the cell of phase " + std::to_string(p + 1),
        MakeRecord("CCEL", "(6f10.3)", c[0], c[1], c[2], c[3], c[4], c[5]));
  }
  const std::pair<std::string, Record> profile[] = {
      {"the peak widths U, V, W",
       MakeRecord("CHWT", "(6f10.3)", 1.0f, 1.0f, 1.0f, 0.0f, 0.0f, 0.0f)},
      {"the peak shape", MakeRecord("CPKS", "(6f10.3)", 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f)},
      {"the peak asymmetry", MakeRecord("CASY", "(3f10.3)", 0.0f, 1.0f, 0.0f)},
  };
  for (const auto& [what, line] : profile) {
    for (std::size_t p = 0; p < symbols.size(); ++p) {
      add(what + " of phase " + std::to_string(p + 1), line);
    }
  }
  add("the sample displacement beside the zero point",
      MakeRecord("CZET", "(3f10.3)", 1.0f, 1.0f, 0.0f));
  steps.push_back(
      "the atoms' B (fifth field of each CXYZ line), then the coordinates that "
      "their sites leave free (first three fields)");
  return steps;
}

}  // namespace kaldena
