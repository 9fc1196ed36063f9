// ReadRawData: the nine formats with what real instruments write, their failure messages,
// the shared steps (side files, slit conversion, negative intensities, the point limit,
// the weighting scheme) and the real files of the shared validation data.
#include "engine/raw_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using enum RawFormat;
using Floats = std::vector<float>;

struct Outcome {
  RawPattern pattern;
  int weighting = kWeightByObserved;
  std::string said;  // list-file lines and boxes ("title: text"), one a line
};

RawDataRequest Request(RawFormat format, const fs::path& data, const fs::path& background = {},
                       const fs::path& weights = {}) {
  RawDataRequest request;
  request.format = static_cast<int>(format);
  request.dataFile = data.string();
  request.backgroundFile = background.string();
  request.weightsFile = weights.string();
  return request;
}

Outcome ReadWith(const RawDataRequest& request, int weighting = kWeightByObserved) {
  ListFile list;
  RecordingReporter reporter;
  Outcome outcome;
  outcome.weighting = weighting;
  outcome.pattern = ReadRawData(request, outcome.weighting, list, reporter);
  for (const std::string& line : list.Lines()) outcome.said += line + "\n";
  for (const auto& box : reporter.messages) outcome.said += box.title + ": " + box.text + "\n";
  if (!outcome.said.empty()) outcome.said.pop_back();
  return outcome;
}

std::string Said(const RawDataRequest& request) { return ReadWith(request).said; }

void ExpectNear(const Floats& actual, const Floats& expected, float tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << "point " << i + 1;
  }
}

// Slit conversion factors c at theta 10 and 20 degrees, computed apart from the reader in
// double precision: 6.781992 and 3.485397, applied to counts of 100.
const Floats kConverted = {678.1992f, 348.5397f};

const std::string kGdfHead = "h1\nh2\nh3\nh4\nh5\nh6\nh7\nh8\nh9\nmore\n<endc>\n";
const std::string kCifSample =
    "data_test\n_pd_meas_2theta_range_min      10.000000\n"
    "_pd_meas_2theta_range_max      11.000000\n_pd_meas_2theta_range_inc       1.000000\n"
    "loop_\n  _pd_meas_intensity_total\n      1.0\n      2.0\n";

TEST(RawData, OpenFailuresNameTheFormatAndTheFile) {
  const struct {
    RawFormat format;
    std::string sample;  // two points
    std::string opening;
    bool takesWeights;
  } formats[] = {
      {kGdf, kGdfHead + "10.0\n11.0\n1.0\na\nb\nc\n       1\n       2\n", "*.gdf", true},
      {kTxt, "10 1\n11 2\n", "*.xy/*.txt", true},
      {kUdf, "DataAngleRange, 10, 11,/\nScanStepSize, 1,/\nRawScan\n 1, 2,/\n", "*.udf", false},
      {kXrdml, "<startPosition>10</startPosition><endPosition>11</endPosition><counts>1 2</counts>",
       "*.xrdml", false},
      {kXy, "10 1\n11 2\n", "*.xy/*.txt", true},
      {kDat, "10 1\n     1.0     2.0\n", "*.dat", true},
      {kUxd, "_START=10\n_STEPSIZE=1\n_2THETACOUNTS\n10 1\n11 2\n", "*.uxd", true},
      {kCif, kCifSample, "*.cif", false},
      {kEpf, "10 1 1\n11 2 1\n", "*.epf", false},
  };
  testing::ScratchDir dir;
  const fs::path missing = dir.Path() / "missing";
  for (const auto& f : formats) {
    SCOPED_TRACE(f.opening);
    const fs::path sample = dir.Write("sample", f.sample);
    EXPECT_EQ(ReadWith(Request(f.format, sample)).pattern.points, 2);
    // The raw data text of xy and txt lacks a point: "*.xy/*txt".
    const std::string raw = f.opening == "*.xy/*.txt" ? "*.xy/*txt" : f.opening;
    const Outcome noData = ReadWith(Request(f.format, missing));
    EXPECT_EQ(noData.pattern.points, 0);
    // The box names the file it tried.
    const std::string tried = ": " + missing.string();
    EXPECT_EQ(noData.said, "Error: Error opening " + raw + " raw data file" + tried);
    EXPECT_EQ(Said(Request(f.format, sample, missing)),
              "Error: Error opening " + f.opening + " background file" + tried);
    const Outcome noWeights = ReadWith(Request(f.format, sample, {}, missing));
    EXPECT_EQ(noWeights.said, f.takesWeights
                                  ? "Error: Error opening " + f.opening + " weights file" + tried
                                  : " Weights file not used with this raw data format");
  }
  for (int format : {0, 10}) {
    RawDataRequest request = Request(kXy, dir.Write("a.xy", "10 1\n"));
    request.format = format;
    EXPECT_EQ(Said(request), "Error: Invalid file format selection");
  }
}

// ---- shared steps, mostly through the xy reader ----

TEST(RawData, NegativeIntensitiesRaiseThePatternButAZeroDoesNot) {
  testing::ScratchDir dir;
  const Outcome raised = ReadWith(Request(kXy, dir.Write("a.xy", "10 5\n11 -3\n12 4\n")));
  EXPECT_EQ(raised.pattern.intensities, (Floats{8, 0, 7}));
  EXPECT_EQ(raised.pattern.variances, (Floats{5, -3, 4}));  // the repair is for intensities
  EXPECT_EQ(raised.said,
            " Intensity below or equal to zero at       2        3. added to all intensities.");
  const Outcome zero = ReadWith(Request(kXy, dir.Write("b.xy", "10 5\n11 0\n12 4\n")));
  EXPECT_EQ(zero.pattern.intensities, (Floats{5, 0, 4}));
  EXPECT_EQ(zero.said, "");
}

TEST(RawData, AutodivergenceConvertsSelectedFormatsOnly) {
  testing::ScratchDir dir;
  RawDataRequest request =
      Request(kXy, dir.Write("a.xy", "20 100\n40 100\n"), dir.Write("b.xy", "20 10\n40 10\n"));
  request.autodivergence = 1;
  const Outcome converted = ReadWith(request);
  ExpectNear(converted.pattern.intensities, kConverted, 0.01f);
  ExpectNear(converted.pattern.variances, {31194.06f, 4234.057f}, 0.5f);  // c cubed on the raw
  ExpectNear(converted.pattern.background, {67.81992f, 34.85397f}, 0.001f);

  request.weightsFile = dir.Write("w.xy", "20 50\n40 50\n").string();
  const Outcome weighted = ReadWith(request);
  EXPECT_NEAR(weighted.pattern.variances[0], 50 * 6.781992f * 6.781992f, 0.05f);
  EXPECT_EQ(weighted.weighting, kWeightFromFile);

  request.autodivergence = 0;  // an xy file states no slit of its own
  EXPECT_EQ(ReadWith(request).pattern.intensities, (Floats{100, 100}));
  RawDataRequest dat = Request(kDat, dir.Write("a.dat", "20 20\n   100.0   100.0\n"));
  dat.autodivergence = 1;
  EXPECT_EQ(ReadWith(dat).pattern.intensities, (Floats{100, 100}));
}

TEST(RawData, SideFilesMustMatchTheScanAndMayShortenIt) {
  testing::ScratchDir dir;
  const fs::path data = dir.Write("a.xy", "10 1\n11 2\n12 3\n");
  const Outcome cut = ReadWith(Request(kXy, data, dir.Write("b.xy", "10 7\n11 8\n")));
  EXPECT_EQ(cut.pattern.points, 2);
  EXPECT_EQ(cut.pattern.background, (Floats{7, 8}));
  EXPECT_EQ(cut.pattern.angles, (Floats{10, 11}));
  EXPECT_FLOAT_EQ(cut.pattern.stop, 11);
  EXPECT_EQ(cut.said, " Background file has 2 points: the pattern is cut to them");

  const Outcome moved = ReadWith(Request(kXy, data, dir.Write("c.xy", "10.5 7\n11.5 8\n")));
  EXPECT_EQ(moved.pattern.points, 0);
  EXPECT_EQ(moved.said, " Raw data and background data intervals do not match");
  EXPECT_EQ(Said(Request(kXy, data, {}, dir.Write("w.xy", "10 1\n12 1\n14 1\n"))),
            " Raw data and weights data intervals do not match");
}

TEST(RawData, KeepsTheFirst20000PointsOfALongerFile) {
  testing::ScratchDir dir;
  std::string text;
  for (int i = 0; i < 20005; ++i) text += std::to_string(i) + " 100\n";
  const Outcome outcome = ReadWith(Request(kTxt, dir.Write("long.txt", text)));
  EXPECT_EQ(outcome.pattern.points, 20000);
  EXPECT_EQ(outcome.pattern.intensities.size(), 20000u);
  EXPECT_FLOAT_EQ(outcome.pattern.stop, 19999);
  EXPECT_EQ(outcome.said, " Raw data file has more than 20000 points: the first 20000 are used");
}

TEST(RawData, FileDeviationsSetWeightingFromFileUnlessCalculatedWasChosen) {
  testing::ScratchDir dir;
  const RawDataRequest epf = Request(kEpf, dir.Write("a.epf", "10 100 5\n11 400 10\n"),
                                     dir.Write("b.epf", "10 30 9\n11 31 9\n"));
  const Outcome fromFile = ReadWith(epf);
  EXPECT_EQ(fromFile.weighting, kWeightFromFile);
  EXPECT_EQ(fromFile.pattern.variances, (Floats{25, 100}));
  EXPECT_EQ(fromFile.pattern.background, (Floats{30, 31}));  // the second column
  EXPECT_EQ(ReadWith(epf, kWeightByCalculated).weighting, kWeightByCalculated);
  EXPECT_EQ(ReadWith(Request(kXy, dir.Write("a.xy", "10 1\n"))).weighting, kWeightByObserved);
}

// ---- xy, txt and epf ----

TEST(RawData, XyReadsWhatInstrumentsWrite) {
  testing::ScratchDir dir;
  const std::string text = "Sample: quartz, 40 kV\r\n# " + std::string(100000, 'x') +
                           "\r\n"
                           "3\r\n"  // a point count in front of the data
                           "     Angle     Intensity\r\n"
                           "1.000000000000000000e+01\t2.500000000000000000e+02\t1.6e1\r\n"
                           "  10.02   260.5  16.1\r\n\r\n  10.04,270\r\n# end\r\n";
  const Outcome outcome = ReadWith(Request(kXy, dir.Write("a.xy", text)));
  EXPECT_EQ(outcome.said, "");
  ExpectNear(outcome.pattern.angles, {10.0f, 10.02f, 10.04f}, 1e-5f);
  EXPECT_EQ(outcome.pattern.intensities, (Floats{250, 260.5, 270}));
  EXPECT_EQ(outcome.pattern.variances, (Floats{250, 260.5, 270}));  // third column unused
  EXPECT_FLOAT_EQ(outcome.pattern.start, 10);
  EXPECT_NEAR(outcome.pattern.step, 0.02, 1e-6);
  EXPECT_EQ(ReadWith(Request(kXy, dir.Write("b.xy",
                                            "\xEF\xBB\xBF"
                                            "10 1\n11 2\n")))
                .pattern.points,
            2);
  EXPECT_EQ(ReadWith(Request(kXy, dir.Write("c.xy", "10 1\r11 2\r"))).pattern.points, 2);
}

TEST(RawData, ColumnFilesSayWhichLineFailed) {
  testing::ScratchDir dir;
  const fs::path good = dir.Write("a.xy", "10 1\n11 2\n");
  EXPECT_EQ(Said(Request(kXy, dir.Write("b.xy", "x\n10 1\n11\n"))),
            " Error reading xy/txt data file, line 3");
  EXPECT_EQ(Said(Request(kXy, good, dir.Write("c.xy", "10 1\n1.2.3 4\n"))),
            " Error reading xy/txt background file, line 2");
  EXPECT_EQ(Said(Request(kEpf, dir.Write("d.epf", "10 1 1\n11 2\n"))),
            " Error reading epf data file, line 2");
  EXPECT_EQ(Said(Request(kTxt, dir.Write("e.txt", "# nothing\n"))),
            " No data points in xy/txt data file");
}

// A scan that does not rise, leaves its grid or holds no counts fails on reading, with the
// file and its first bad line, rather than being refined as something else.
TEST(RawData, BadScansFailWithFileAndLine) {
  const fs::path corpus = testing::TestData("engine/bad_patterns");
  const struct {
    const char* file;
    const char* said;
  } cases[] = {
      {"decimal_commas.xy", " Angles do not rise at line 3 of {}:     5.00000 after     5.00000"},
      {"descending.xy", " Angles do not rise at line 4 of {}:    10.02000 after    10.04000"},
      {"swapped_columns.xy", " Angles do not rise at line 3 of {}:   128.00000 after   131.00000"},
      {"off_grid.xy",
       " Angle at line 11 of {} lies   0.01500 degrees off the even grid of step"
       "   0.02000: the scan is not one of even steps"},
      {"no_intensities.xy", " No intensities in {}: every value is 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string path = (corpus / c.file).string();
    const Outcome outcome = ReadWith(Request(kXy, path));
    EXPECT_EQ(outcome.pattern.points, 0);
    std::string said = c.said;
    said.replace(said.find("{}"), 2, path);
    EXPECT_EQ(outcome.said, said);
  }
  // Formats that state start and step: a step of 0 is no scan either.
  testing::ScratchDir dir;
  EXPECT_EQ(
      ReadWith(Request(kDat, dir.Write("z.dat", "  10.0  0.0\n     1.0     2.0\n"))).pattern.points,
      0);
}

TEST(RawData, TextWithoutLineEndsStopsTheReadingWithBoundedMemory) {
  // A device that never ends, read line by line and whole.
  for (RawFormat format : {kXy, kXrdml}) {
    const Outcome zeros = ReadWith(Request(format, "/dev/zero"));
    EXPECT_EQ(zeros.pattern.points, 0);
    EXPECT_NE(zeros.said.find(" Error reading /dev/zero, line 1: no line end within 5120000 "
                              "characters"),
              std::string::npos)
        << zeros.said;
  }
  // A binary file: its first line is too long, whatever follows.
  testing::ScratchDir dir;
  const fs::path binary = dir.Write("b.cif", "data_x\n" + std::string(5120001, '\x01') + "\n");
  EXPECT_NE(Said(Request(kCif, binary)).find(binary.string() + ", line 2: no line end"),
            std::string::npos);
}

// ---- dat ----

TEST(RawData, DatStandardFileTenALine) {
  testing::ScratchDir dir;
  const fs::path data = dir.Write("a.dat",
                                  "  10.0  0.05\r\n"
                                  "   100.0   101.0   102.0   103.0   104.0"
                                  "   105.0   106.0   107.0   108.0   109.0\r\n"
                                  "   110.0   111.0     112\r\n\r\n");
  RawDataRequest request = Request(kDat, data);
  request.debug = true;
  const Outcome outcome = ReadWith(request);
  ASSERT_EQ(outcome.pattern.points, 13);  // the short last line gives only its own values
  EXPECT_FLOAT_EQ(outcome.pattern.intensities[12], 112);
  EXPECT_FLOAT_EQ(outcome.pattern.stop, 10.6f);
  EXPECT_EQ(outcome.said, "start,step   10.00000   0.05000");

  // Side files: a first line that is not used, then the body.
  const fs::path weights = dir.Write("w.dat", "whatever\n     4.0     9.0    16.0\n");
  EXPECT_EQ(ReadWith(Request(kDat, data, {}, weights)).pattern.variances, (Floats{4, 9, 16}));
}

TEST(RawData, DatFailuresByStage) {
  testing::ScratchDir dir;
  const fs::path good = dir.Write("a.dat", "10 0.05\n     1.0     2.0\n");
  const struct {
    fs::path data, background, weights;
    const char* said;
  } cases[] = {
      {dir.Write("1.dat", ""), {}, {}, " Error reading standard data file 1"},
      {dir.Write("2.dat", "1.2.3 0.05\n     1.0\n"), {}, {}, " Error reading standard data file 2"},
      {dir.Write("3.dat", "10 0.05\n     1.0   abc\n"),
       {},
       {},
       " Error reading standard data file 3"},
      {dir.Write("4.dat", "ILL file\nno scan here\n"),
       {},
       {},
       " Error reading standard data file 2"},
      {good, dir.Write("b.dat", "head\n  x\n"), {}, " Error reading standard background file 1"},
      {good, {}, dir.Write("w.dat", "head only\n"), "Error reading standard weights file 1"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = ReadWith(Request(kDat, c.data, c.background, c.weights));
    EXPECT_EQ(outcome.pattern.points, 0);
    EXPECT_EQ(outcome.said, c.said);
  }
}

TEST(RawData, DatTitledFilesStateTheirScanAndDeviations) {
  testing::ScratchDir dir;
  const std::string ill =
      "D1A5 Title: 1.9 A  sample 13.9.01\n     Ident:           14113 to  14122\n"
      "   12     -1.000   100.018    1  100000.0       0.0\n"  // not the scan: step below 0
      "   10.0000    0.5000   15.5000\n"
      "   232.0   236.8   248.6   236.8   228.6   229.7   237.3   223.9   246.3   246.2\n"
      "   239.2   265.7\n"
      "    7.56    7.66    7.52    8.13    7.58    7.80    7.80    7.42    7.29    7.53\n"
      "    7.82    7.84\n";
  const Outcome ill12 = ReadWith(Request(kDat, dir.Write("ill.dat", ill)));
  ASSERT_EQ(ill12.pattern.points, 12);
  EXPECT_FLOAT_EQ(ill12.pattern.start, 10);
  EXPECT_FLOAT_EQ(ill12.pattern.stop, 15.5);
  EXPECT_FLOAT_EQ(ill12.pattern.intensities[11], 265.7f);
  EXPECT_FLOAT_EQ(ill12.pattern.variances[11], 7.84f * 7.84f);
  EXPECT_EQ(ill12.weighting, kWeightFromFile);

  const std::string psi =
      "HRPT, NdNi4MgDx,a4=3.0,N18\nlambda=  1.49400, T=   0.000, Date=2001-06-16 06:25:59\n"
      "   2.000   0.100   2.900 1000., sample=\"x,a4=3.0\"\n"
      "   7444.   7639.   7731.   7762.   7479.   7818.   7720.   7861.   7945.   8090.\n"
      " Filelist='HRPT/2001/2455-2490'\n";
  const Outcome psi10 = ReadWith(Request(kDat, dir.Write("psi.dat", psi)));
  EXPECT_EQ(psi10.pattern.points, 10);
  EXPECT_FLOAT_EQ(psi10.pattern.variances[0], 7444);  // no block of deviations
  EXPECT_EQ(psi10.weighting, kWeightByObserved);
}

// ---- gdf, udf, uxd ----

TEST(RawData, GdfFailuresNumberTheirStage) {
  testing::ScratchDir dir;
  const std::string scan = kGdfHead + "      10.0\n      11.0\n       1.0\n";
  const fs::path good = dir.Write("good.gdf", scan + "a\nb\nc\n       1\n       2\n");
  const Outcome outcome = ReadWith(Request(kGdf, good));
  EXPECT_EQ(outcome.pattern.intensities, (Floats{1, 2}));
  EXPECT_FLOAT_EQ(outcome.pattern.step, 1);

  const std::string broken[] = {"h1\nh2\n",   kGdfHead.substr(0, 30),     kGdfHead + "  abc\n",
                                scan + "a\n", scan + "a\nb\nc\n  12.5\n", scan + "a\nb\nc\n"};
  for (int stage = 1; stage <= 6; ++stage) {
    const fs::path file = dir.Write("bad.gdf", broken[stage - 1]);
    const std::string n = std::to_string(stage);
    EXPECT_EQ(Said(Request(kGdf, file)), " Error reading gdf data file " + n);
    EXPECT_EQ(Said(Request(kGdf, good, file)), " Error reading gdf background file " + n);
    EXPECT_EQ(Said(Request(kGdf, good, {}, file)),
              " Error reading gdf weighting file " + std::to_string(std::max(stage, 2)));
  }
}

TEST(RawData, UdfReadsItsMarkersAndAutomaticSlit) {
  testing::ScratchDir dir;
  const std::string automatic =
      "SampleIdent,CeO2,/\r\nDivergenceSlit,Automatic,  10,/\r\n"
      "DataAngleRange,   20.00000,  40.00000,/\r\nScanStepSize, 20.00000000000,/\r\n"
      "RawScan\r\n     100,     100,/\r\n";
  RawDataRequest request = Request(kUdf, dir.Write("auto.udf", automatic));
  ExpectNear(ReadWith(request).pattern.intensities, kConverted, 0.01f);
  request.autodivergence = -1;
  EXPECT_EQ(ReadWith(request).pattern.intensities, (Floats{100, 100}));

  const fs::path fixed =
      dir.Write("fixed.udf",
                "DivergenceSlit,Fixed, 1/2,/\r\nDataAngleRange,   3.00043,  3.10910,/\r\n"
                "ScanStepSize, 0.01086644000,/\r\nRawScan\r\n"
                "   43202,   43027,   42690,   41849,   41514,   41153,   40305,   40174\r\n"
                "     199,     173,/\r\nignored behind the end\r\n");
  const Outcome outcome = ReadWith(Request(kUdf, fixed));
  EXPECT_EQ(outcome.pattern.points, 10);
  EXPECT_FLOAT_EQ(outcome.pattern.step, 0.01086644f);  // all its digits, not a fixed field's
  EXPECT_FLOAT_EQ(outcome.pattern.intensities[9], 173);

  EXPECT_EQ(Said(Request(kUdf, dir.Write("none.udf", "Title1,x,/\n"))), " Error reading udf file");
  EXPECT_EQ(Said(Request(kUdf, fixed, dir.Write("b.udf", "RawScan\n  x\n"))),
            " Error reading udf background udf file");
}

TEST(RawData, UxdTakesTheFirstRange) {
  testing::ScratchDir dir;
  const std::string bruker =
      "; converted by XCH V1.0\n_FILEVERSION=2\n_START=3.000000\n_STEPSIZE=0.015592\n"
      "_2THETA=3.000000\n_2THETACOUNTS\n3.00\t187\n3.02\t190\n; note\n3.03\t200\n";
  const Outcome outcome = ReadWith(Request(kUxd, dir.Write("a.uxd", bruker)));
  EXPECT_EQ(outcome.pattern.intensities, (Floats{187, 190, 200}));
  ExpectNear(outcome.pattern.angles, {3.0f, 3.02f, 3.03f}, 1e-6f);
  EXPECT_FLOAT_EQ(outcome.pattern.step, 0.015592f);

  const std::string ranges =
      "_STEPSIZE=0.015592\n_newstep=0.02\n_2THETACOUNTS\n 5.0 10\n 5.02 11\n"
      "; (Data for Range number 2)\n_START=9\n_2THETACOUNTS\n9 1\n";
  const Outcome first = ReadWith(Request(kUxd, dir.Write("b.uxd", ranges)));
  EXPECT_EQ(first.pattern.intensities, (Floats{10, 11}));
  EXPECT_FLOAT_EQ(first.pattern.start, 5);
  EXPECT_FLOAT_EQ(first.pattern.step, 0.02f);
  EXPECT_EQ(first.said, " Only the first range of the uxd file is used");
}

TEST(RawData, UxdFailuresOfHeaderAndRows) {
  testing::ScratchDir dir;
  const fs::path good = dir.Write("a.uxd", "_START=3\n_STEPSIZE=1\n_2THETACOUNTS\n3 1\n4 2\n");
  const fs::path header = dir.Write("h.uxd", "_START=1.2.3\n_2THETACOUNTS\n3 1\n");
  const fs::path rows = dir.Write("r.uxd", "_START=3\n_2THETACOUNTS\n3\n");
  EXPECT_EQ(Said(Request(kUxd, header)), " Error reading uxd file");
  EXPECT_EQ(Said(Request(kUxd, good, header)), " Error reading uxd background file 1");
  EXPECT_EQ(Said(Request(kUxd, good, rows)), " Error reading uxd background file");
  EXPECT_EQ(Said(Request(kUxd, good, {}, header)), "Error reading uxd weights file 1");
  EXPECT_EQ(Said(Request(kUxd, good, {}, rows)), " Error reading uxd weights file");
}

// ---- xrdml and cif ----

TEST(RawData, XrdmlFindsTheTwoThetaRangeAndTheSlit) {
  testing::ScratchDir dir;
  const std::string xrdml =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<divergenceSlit>\r\n"
      "  <irradiatedLength unit=\"mm\">10.00</irradiatedLength>\r\n</divergenceSlit>\r\n"
      "<scan><dataPoints>\r\n  <positions axis=\"Omega\" unit=\"deg\">\r\n"
      "    <startPosition>1.0</startPosition>\r\n    <endPosition>30.0</endPosition>\r\n"
      "  </positions>\r\n  <positions axis=\"2Theta\" unit=\"deg\">\r\n"
      "    <startPosition>20.0</startPosition>\r\n    <endPosition>40.0</endPosition>\r\n"
      "  </positions>\r\n  <intensities unit=\"counts\">100\r\n   100</intensities>\r\n"
      "</dataPoints></scan>\r\n"
      "<scan><startPosition>50</startPosition><counts>1 2 3</counts></scan>\r\n";
  RawDataRequest request = Request(kXrdml, dir.Write("a.xrdml", xrdml));
  const Outcome automatic = ReadWith(request);
  EXPECT_FLOAT_EQ(automatic.pattern.start, 20);
  EXPECT_FLOAT_EQ(automatic.pattern.step, 20);
  ExpectNear(automatic.pattern.intensities, kConverted, 0.01f);
  EXPECT_EQ(automatic.said, " Only the first scan of the xrdml file is used");
  request.autodivergence = -1;
  EXPECT_EQ(ReadWith(request).pattern.intensities, (Floats{100, 100}));

  // A fixed slit, all on one line: a length outside the slit element is not the slit's.
  const std::string oneLine =
      "<divergenceSlit><height>0.05</height></divergenceSlit><mask><irradiatedLength>10"
      "</irradiatedLength></mask><startPosition>20</startPosition><endPosition>40</endPosition>"
      "<counts unit=\"counts\">100 100</counts>";
  EXPECT_EQ(ReadWith(Request(kXrdml, dir.Write("b.xrdml", oneLine))).pattern.intensities,
            (Floats{100, 100}));
  EXPECT_EQ(Said(Request(kXrdml, dir.Write("c.xrdml", "<a/>\n<counts>1 x</counts>"))),
            " Error reading xrdml data file, line 2");
}

TEST(RawData, CifLoopsWithSeveralColumnsAndTextFields) {
  testing::ScratchDir dir;
  const std::string gsas =
      "data_x\n_pd_block_id\n;\nloop_ in a text field is no loop\n;\n"
      "loop_ _pd_meas_intensity_total _pd_proc_ls_weight\n"
      "      _PD_PROC_INTENSITY_BKG_CALC   # a comment\n"
      "   119(17)  0.0      101.9\n   149(19)  0.0027   101.5\n   141(19)  0.0027   .\n"
      "_pd_meas_2theta_range_min 3.0\n_pd_meas_2theta_range_max 3.1\n"
      "_pd_meas_2theta_range_inc 0.05\n";
  const fs::path file = dir.Write("b.cif", gsas);
  const Outcome withBackground = ReadWith(Request(kCif, file, file));
  EXPECT_EQ(withBackground.pattern.intensities, (Floats{119, 149, 141}));
  EXPECT_EQ(withBackground.pattern.background, (Floats{101.9f, 101.5f, 0}));
  EXPECT_NEAR(withBackground.pattern.step, 0.05, 1e-6);

  const std::string scan = "loop_\n _pd_meas_2theta_scan\n _pd_meas_counts_total\n 10 5\n 10.1 6\n";
  const Outcome fromColumn = ReadWith(Request(kCif, dir.Write("c.cif", scan)));
  EXPECT_EQ(fromColumn.pattern.intensities, (Floats{5, 6}));
  EXPECT_NEAR(fromColumn.pattern.step, 0.1, 1e-6);

  const fs::path good = dir.Write("a.cif", kCifSample);
  const fs::path noRange = dir.Write("d.cif", "loop_\n _pd_meas_intensity_total\n 1\n 2\n");
  const fs::path noColumn =
      dir.Write("e.cif", "_pd_meas_2theta_range_min 1\n_pd_meas_2theta_range_inc 1\nloop_ _x 1\n");
  EXPECT_EQ(Said(Request(kCif, noRange)), "File Error: Error reading cif1");
  EXPECT_EQ(Said(Request(kCif, noColumn)), "File Error: Error reading cif1");
  EXPECT_EQ(Said(Request(kCif, good, noRange)), "File Error: Error reading bkg cif1");
  EXPECT_EQ(Said(Request(kCif, good, noColumn)), "File Error: Error reading bkg cif2");
}

// ---- real files, against the facts in the READMEs of the validation folders ----

TEST(RawData, RealFilesGiveTheStatedScans) {
  const fs::path root = testing::SharedData("validation");
  if (root.empty()) GTEST_SKIP() << "shared validation data not present";
  const struct {
    const char* path;
    RawFormat format;
    int points;
    float first, last, step;  // two-theta of the first and last point
  } files[] = {
      {"reader-format-samples/BT86_.UXD", kUxd, 2374, 3.0f, 40.0f, 0.015592f},  // 3 to 40
      {"reader-format-samples/empyrean.xrdml", kXrdml, 196, 30.05f, 41.75f, 0.06f},
      {"reader-format-samples/D1A5.dat", kDat, 1680, -10.0f, 157.9f, 0.1f},
      {"reader-format-samples/PSI_DMC.dat", kDat, 3200, 2.948f, 162.898f, 0.05f},
      {"ceo2-aeris-udf/2025_06_03_CeO2_3_60_8min.udf", kUdf, 5246, 3.00043f, 59.99491f,
       0.01086644f},
      {"corundum-bt1-neutron-pdcif/ALUMINA.cif", kCif, 3300, 3.0f, 167.95f, 0.05f},
      {"corundum-bt1-neutron-pdcif/ALUMINA.epf", kEpf, 3300, 3.0f, 167.95f, 0.05f},
      {"ore-5phase-coka-pdcif/vb5042sup1.cif", kCif, 6092, 10.01687f, 89.99342f, 0.013130282f},
      {"iucr-cpd-qpa-round-robin/cpd-2.xy", kXy, 7251, 5.0f, 150.0f, 0.02f},
  };
  for (const auto& f : files) {
    SCOPED_TRACE(f.path);
    const Outcome outcome = ReadWith(Request(f.format, root / f.path));
    EXPECT_EQ(outcome.pattern.points, f.points);
    EXPECT_NEAR(outcome.pattern.start, f.first, 1e-4);
    EXPECT_NEAR(outcome.pattern.stop, f.last, 0.005);  // the uxd lists 40.00 for 39.9998
    EXPECT_NEAR(outcome.pattern.step, f.step, 1e-7);
    EXPECT_EQ(outcome.said, "");
  }
  // The 11-BM scan's steps vary by 10 % about a grid that its points keep to within 6e-5
  // degrees: it reads, cut to its first 20000 points.
  const Outcome synchrotron =
      ReadWith(Request(kXy, root / "nac-caf2-11bm-synchrotron/11BM_NAC.xy"));
  EXPECT_EQ(synchrotron.pattern.points, 20000);
  EXPECT_NEAR(synchrotron.pattern.stop, 20.4964f, 1e-4);
  EXPECT_EQ(synchrotron.said,
            " Raw data file has more than 20000 points: the first 20000 are used");
}

TEST(RawData, RealFilesAgreeOnTheirValues) {
  const fs::path root = testing::SharedData("validation");
  if (root.empty()) GTEST_SKIP() << "shared validation data not present";
  // The Aeris CeO2 scan: 43202 counts at 3 degrees, the (111) maximum 18520 at 28.623.
  const RawPattern ceria =
      ReadWith(Request(kUdf, root / "ceo2-aeris-udf/2025_06_03_CeO2_3_60_8min.udf")).pattern;
  EXPECT_FLOAT_EQ(ceria.intensities[0], 43202);
  const auto from = ceria.intensities.begin() + static_cast<int>((27 - ceria.start) / ceria.step);
  const auto peak = std::max_element(from, from + 200);
  EXPECT_FLOAT_EQ(*peak, 18520);
  EXPECT_NEAR(ceria.start + ceria.step * static_cast<float>(peak - ceria.intensities.begin()),
              28.623, 0.006);

  // The corundum pdCIF and its converted column file hold the same intensities; the CIF's
  // computed background serves as a background file.
  const fs::path cif = root / "corundum-bt1-neutron-pdcif/ALUMINA.cif";
  const Outcome fromCif = ReadWith(Request(kCif, cif, cif));
  const Outcome fromXy = ReadWith(Request(kXy, root / "corundum-bt1-neutron-pdcif/ALUMINA.xy"));
  EXPECT_EQ(fromCif.pattern.intensities, fromXy.pattern.intensities);
  EXPECT_FLOAT_EQ(fromCif.pattern.background[1], 101.5f);
}

}  // namespace
}  // namespace kaldena
