#include "tools/table.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "store/record_catalogue.h"
#include "tools/table_sections.h"
#include "util/file_names.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

bool TableContext::NextText(std::string_view key, std::string& text) {
  std::string data;
  if (store.jFindRec(key, data) != 1) return false;
  text = std::string(Trimmed(data));
  return true;
}

ScaledPair ScaleWithEsd(double value, double esd, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return {std::lround(value * scale), std::lround(esd * scale)};
}

namespace {

void Heading(TableContext& t, std::string_view date, int page) {
  std::string title;
  if (!t.NextText("TITL", title)) title = "Untitled";
  title.resize(60, ' ');
  std::string day(date);
  day.resize(10, ' ');
  t.Write("(a60,$)", title);
  t.Write("(a10,$)", day);
  t.Write("('   Page',i3//)", page);
}

void ReadOptions(TableContext& t) {
  std::array<int, 14> v{};
  TableOptions& o = t.options;
  if (t.Next("TABL", "(14i5)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
             v[11], v[12], v[13])) {
    o.decimals = std::clamp(v[0], 2, 5);
    o.occupancy = std::clamp(v[1], 1, 2);
    o.anisoDecimals = std::clamp(v[2], 2, 5);
    o.type = std::clamp(v[3], 1, 2);
  }
}

// Restraint lines name the atoms they join: those get a mark in the coordinate table.
int ReadRestraints(TableContext& t) {
  float weight = 0;
  if (!t.Next("WRES", "(f10.0)", weight) || weight <= 0) return 0;
  int count = 0;
  std::array<int, 7> a{};
  while (t.Next("ARES", "(7i10)", a[0], a[1], a[2], a[3], a[4], a[5], a[6])) {
    count += a[6] != 0 ? 18 : a[4] != 0 ? 10 : 1;
    for (int v : a) {
      const int atom = v / 1000000 != 0 ? v / 1000000 : v;
      if (atom != 0) t.restrainedAtoms.insert(atom);
    }
    a.fill(0);
  }
  return count;
}

void Residuals(TableContext& t, int restraints) {
  std::array<float, 9> v{};
  int params = 0, points = 0, reflections = 0, count = 0;
  std::string data;
  while (t.store.jFindRec("RVAL", data) == 1) {
    Read(data, "(I4,I6,i5,5f10.0,i5)", params, points, reflections, v[3], v[4], v[5], v[6], v[7],
         count);
    v[0] = static_cast<float>(params);
    v[1] = static_cast<float>(points);
    v[2] = static_cast<float>(reflections);
    v[8] = static_cast<float>(count);
    t.rval.push_back(v);
  }
  if (t.rval.empty()) return;
  const auto& r = t.rval.front();
  t.Write("(' Rp = ',f5.2,'   Rwp = ',f5.2,$)", r[3], r[4]);
  t.Write("('  Chi2 = ',f6.2,$)", r[5]);
  t.Write("(i5,' parameters, ',$)", static_cast<int>(r[0]));
  t.Write("(i5,' observations'/)", static_cast<int>(r[1]));
  if (restraints > 0 && r[7] > 0) {
    t.Write("(' Rrestraints = ',f5.2,$)", r[7]);
    t.Write("('  from ',I4,' restraints')", restraints);
  }
}

void Settings(TableContext& t, const std::string& project) {
  auto& j = t.job;
  t.Next("JOBT", "(7i5)", j[0], j[1], j[2], j[3], j[4], j[5], j[6]);
  t.Next("RLIM", "(8f9.0)", t.rlim[0], t.rlim[1], t.rlim[2], t.rlim[3], t.rlim[4], t.rlim[5],
         t.rlim[6], t.rlim[7]);
  std::string name;
  t.Write("(/' Parameter file                    : ',a)", project);
  if (t.NextText("PWDT", name)) t.Write("(' Raw data file                     : ',a)", name);
  if (t.NextText("PWBG", name) && !name.empty()) {
    t.Write("(' Background file                   : ',a)", name);
  }
  if (t.NextText("PWWG", name) && j[6] == 2) t.Write("(' Weighting file                    : ',a)", name);
  float wave = 0, waveEsd = 0;
  std::array<float, 3> elam{1.54051f, 1.54433f, 0.5f};
  if (t.Next("WAVE", "(2f10.0)", wave, waveEsd)) {
    t.wavelength = wave;
    t.Write("(/' Wavelength                        : ',$)");
    t.Write("(f10.6,'(',f7.6,') A')", wave, waveEsd);
  } else {
    t.Next("ELAM", "(3f10.0)", elam[0], elam[1], elam[2]);
    t.wavelength = elam[0];
    t.Write("(/' Wavelength(s)                     : ',$)");
    t.Write("(f10.6,' A')", elam[0]);
    if (elam[1] != elam[0] && elam[2] != 0) {
      t.Write("('                                   : ',$)");
      t.Write("(f10.6,' A')", elam[1]);
    }
  }
}

void Controls(TableContext& t) {
  int cycles = 0, calibration = -1;
  std::array<float, 8> relx{1, 1, 1, 1, 0.3f, 0, 0, 0};
  t.Next("RELX", "(i5,5f5.0,3f10.0)", cycles, relx[4], relx[0], relx[1], relx[2], relx[3], relx[5],
         relx[6], relx[7]);
  t.Next("ICLT", "(i5)", calibration);
  float damping = 0, weight = 0;
  t.Next("DAMP", "(f10.0)", damping);
  t.Next("WRES", "(f10.0)", weight);
  const auto& r = t.rlim;
  auto setting = [&](std::string_view label, float value, std::string_view format) {
    if (value == 0) return;
    t.Write(std::string("('") + std::string(label) + "',$)");
    t.Write(format, value);
  };
  setting(" Absorption correction (mu*R)      : ", r[2], "(f10.6)");
  setting(" Absorption correction (mu*T)      : ", r[7], "(f10.6)");
  setting(" Diagonal damping factor           : ", damping, "(f10.6)");
  setting(" Overall restraints weighting      : ", weight, "(f10.6)");
  setting(" Monochromator polarisation factor : ", r[1], "(f10.6)");
  setting(" Synchrotron polarisation factor   : ", r[4], "(f10.6)");
  setting(" Guinier tangent angle             : ", r[5], "(f10.6)");
  setting(" Autodivergence foot-print         : ", r[6], "(f10.6,' mm')");
  setting(" Asymmetry correction limit        : ", r[3], "(f10.6)");
  const int profile = t.job[1];
  t.Write(profile == 6   ? "(' Profile function                  : split pseudo-Voigt')"
          : profile == 2 ? "(' Profile function                  : Pearson VII')"
          : profile == 3 || profile == 5 || profile == 9
              ? "(' Profile function                  : Voigt')"
              : "(' Profile function                  : pseudo-Voigt')");
  t.Write("(' No. of halfwidths in peak         : ',$)");
  t.Write("(f10.6)", r[0]);
  std::array<float, 6> range{};
  if (t.Next("CIF2", "(6f10.0)", range[0], range[1], range[2], range[3], range[4], range[5])) {
    t.Write("(' Two-theta range                   : ',$)");
    t.Write("(f10.6,' - ',f10.6,' deg.')", range[0], range[1]);
    if (calibration == 0) {
      t.Write("('     in steps of                   : ',13x,f10.6,     ' deg.')", range[2]);
    }
  }
  if (calibration != 0) {
    double c1 = 0, c2 = 0;
    if (t.Next("POLY", "(2f14.0)", c1, c2)) {
      t.Write("('     in steps of                   : ',$)");
      t.Write("(f10.6,' deg.')", c2);
    } else {
      t.Missing("POLY record missing");
    }
  }
}

void RegionsAndAnomalous(TableContext& t) {
  for (int i = 0; i < t.job[4]; ++i) {
    float lo = 0, hi = 0;
    if (!t.Next("EXRG", "(2f10.0)", lo, hi)) {
      t.Missing("EXRG record missing");
      break;
    }
    t.Write("(' Excluded region                   : ',$)");
    t.Write("(f10.6,' - ',f10.6,' deg.')", lo, hi);
  }
  std::vector<std::string> lines = FindRecords(t.store, "CNOM");
  if (lines.empty()) return;
  t.Write("(/' Anomalous dispersion corrections  : ')");
  for (const std::string& data : lines) {
    std::string symbol;
    float f1 = 0, f2 = 0;
    Read(data, "(a4,6x,2f10.0)", symbol, f1, f2);
    t.Write("(5x,a4,f12.6,f12.6)", symbol, f1, f2);
  }
}

// Percentage of one part of a sum and its esd, from the sum S of the squared esds.
std::pair<double, double> Share(double part, double esd, double total, double sumSquaredEsds) {
  const double t2 = total * total;
  return {100 * part / total,
          100 * std::sqrt(sumSquaredEsds * part * part / (t2 * t2) + esd * esd / t2)};
}

// Weight and volume fractions of the phases. A phase of unknown mass leaves every weight
// fraction unknown: the others are not shares of a sum without it.
void Quantitative(TableContext& t, const std::vector<PhaseQuantity>& phases) {
  if (phases.size() < 2) return;
  double w = 0, v = 0, sw = 0, sv = 0;
  bool weights = true;
  for (const PhaseQuantity& p : phases) {
    if (!p.known) return;
    weights = weights && p.massKnown;
    w += p.weight;
    v += p.volume;
    sw += p.weightEsd * p.weightEsd;
    sv += p.volumeEsd * p.volumeEsd;
  }
  if ((weights && w <= 0) || v <= 0) return;
  double absorption = 0;
  for (size_t i = 0; i < phases.size(); ++i) {
    const PhaseQuantity& p = phases[i];
    const auto [vp, ve] = Share(p.volume, p.volumeEsd, v, sv);
    absorption += vp * p.absorption;
    if (i == 0) {
      t.Write("(/'Quantitative analysis:    Phase ',$)");
    } else {
      t.Write("(26x,'Phase ',$)");
    }
    const int number = static_cast<int>(i + 1);
    if (weights) {
      const auto [wp, we] = Share(p.weight, p.weightEsd, w, sw);
      t.Write("(i2,' : ',f8.2,'(',f5.2,') wgt%;   ',f8.2,'(',f5.2,') vol%')", number, wp, we, vp,
              ve);
    } else {
      t.Write("(i2,' : ',7x,'?',7x,' wgt%;   ',f8.2,'(',f5.2,') vol%')", number, vp, ve);
    }
  }
  for (size_t i = 0; i < phases.size(); ++i) {
    if (phases[i].massKnown) continue;
    t.Write(
        "(' Phase ',i2,' : weight fraction cannot be computed (no atomic mass for an atom type)')",
        static_cast<int>(i + 1));
  }
  t.Write("(/'Combined absorption coefficien     :',f9.2,' /cm')", absorption / 100);
}

void Globals(TableContext& t) {
  std::array<float, 6> z{};
  if (t.Next("ZETT", "(6f10.0)", z[0], z[1], z[2], z[3], z[4], z[5])) {
    t.Write("(//' Two-theta zero               : ',$)");
    t.Write("(f8.4,'(',f5.4,')')", z[0], z[3]);
    t.Write("(' Sample shift parameter       : ',$)");
    t.Write("(f8.4,'(',f5.4,')',$)", z[1], z[4]);
    // A displacement s shifts by -2 (s / R) cos theta radians: S cos theta in degrees.
    t.Write("(a,e12.4)", "   s/R  = ", z[1] != 0 ? -z[1] / 114.59156f : 0.0f);
    t.Write("(' Transparency shift parameter : ',$)");
    t.Write("(f8.4,'(',f5.4,')',$)", z[2], z[5]);
    // A shift T sin 2 theta (degrees) of a transparent sample is -sin 2 theta / (2 mu R).
    t.Write("(a,e12.4/)", "   mu*R = ", z[2] != 0 ? -57.29578f / (2 * z[2]) : 0.0f);
  }
  float scale = 0, esd = 0;
  if (t.Next("BGSC", "(2f10.0)", scale, esd)) {
    t.Write("(' Background scale factor      : ',$)");
    t.Write("(f8.4,'(',f5.4,')'/)", scale, esd);
  }
  std::vector<std::string> values = FindRecords(t.store, "BKGR", 5), esds = FindRecords(t.store, "SDBK", 5);
  if (!values.empty()) {
    t.Write(t.job[3] < 0 ? "(' Background parameters (Chebyshev type i) :'/)"
                         : "(' Background parameters (polynomial) : '/)");
    for (size_t row = 0; row < values.size(); ++row) {
      std::array<float, 5> v{}, e{};
      Read(values[row], "(5f10.0)", v[0], v[1], v[2], v[3], v[4]);
      if (row < esds.size()) Read(esds[row], "(5f10.0)", e[0], e[1], e[2], e[3], e[4]);
      std::vector<FormatArg> args;
      for (int i = 0; i < 5; ++i) {
        const ScaledPair p = ScaleWithEsd(v[i], e[i], 0);
        args.emplace_back(p.value);
        args.emplace_back(p.esd);
      }
      t.out << WriteFormatted("(5(i8,'(',i4,')'))", args);
    }
  }
  std::array<float, 4> k{};
  if (t.Next("CRYS", "(4f10.0)", k[0], k[1], k[2], k[3])) {
    t.Write("(/' Crystallinity  '/)");
    t.Write("(a,f14.2,2f8.2)", "s-weighted:", k[2], k[0], k[1]);
    t.Write("(a,f14.2,2f8.2)", "unweighted:", k[3], k[0], k[1]);
  }
  std::vector<std::string> spline = FindRecords(t.store, "SPLC", 50);
  if (!spline.empty()) {
    t.Write("(/a/)", " Cubic spline calibration coefficients (X,Y,P) : ");
    for (const std::string& data : spline) {
      std::array<float, 3> p{};
      Read(data, "(3e16.7)", p[0], p[1], p[2]);
      t.Write("(3e15.7)", p[0], p[1], p[2]);
    }
  }
}

// Extracted intensities of the Fourier file, on a relative scale of 999.
void Intensities(TableContext& t, const std::string& fourierFile,
                 const std::vector<float>& scales) {
  std::ifstream in(fourierFile);
  if (!in) {
    t.Write("(a)", " Error opening Fourier file");
    return;
  }
  struct Line {
    int h, k, l, phase;
    float obs, esd, stl, calc, angle, lp, twoTheta;
  };
  std::vector<Line> lines;
  for (std::string text; std::getline(in, text);) {
    Line r{};
    Read(text, "(4i4,7f12.0)", r.h, r.k, r.l, r.phase, r.obs, r.esd, r.stl, r.calc, r.angle, r.lp,
         r.twoTheta);
    if (r.h >= 999) break;
    lines.push_back(r);
  }
  auto scaleOf = [&](int phase) {
    return phase >= 1 && phase <= static_cast<int>(scales.size()) ? scales[phase - 1] : 1.0f;
  };
  float largest = 0.1f;
  for (const Line& r : lines) largest = std::max(largest, r.obs * scaleOf(r.phase));
  t.Write("(' Extracted Bragg intensities : '/)");
  t.Write("(a,a//)", "       h   k   l     2-Th        d      Rel(I)    ", "Iobs     Icalc     esd");
  for (const Line& r : lines) {
    const float d = t.wavelength / (2 * std::sin(r.twoTheta / 114.59156f));
    t.Write("(4i4,f10.3,f10.4, 4i9)", r.h, r.k, r.l, r.phase, r.twoTheta, d,
            static_cast<int>(std::lround(999 * r.obs * scaleOf(r.phase) / largest)),
            static_cast<int>(std::lround(r.obs)), static_cast<int>(std::lround(r.calc)),
            static_cast<int>(std::lround(r.esd)));
  }
}

bool WriteProject(std::ostream& out, const std::string& project, std::string_view date, int page,
                  bool single, Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(project) < 1) return false;
  TableContext t{out, store, reporter};
  Heading(t, date, page);
  ReadOptions(t);
  const int restraints = ReadRestraints(t);
  Residuals(t, restraints);
  Settings(t, project);
  Controls(t);
  RegionsAndAnomalous(t);
  std::vector<PhaseQuantity> phases;
  std::vector<float> scales;
  for (int p = 1; p <= std::clamp(t.job[2], 1, 10); ++p) phases.push_back(WritePhase(t, p));
  for (const PhaseQuantity& q : phases) scales.push_back(q.scale);
  Quantitative(t, phases);
  Globals(t);
  if (single) {
    std::string fourier;
    if (!t.NextText("PWFO", fourier) || fourier.empty()) fourier = ForceExtension(project, "fou");
    Intensities(t, ReplaceDirectory(DirectoryOf(project), fourier), scales);
  }
  store.jCloseRec();
  return true;
}

}  // namespace

TableStatus WriteTable(const std::string& input, const std::string& output, std::string_view date,
                       Reporter& reporter) {
  std::vector<std::string> projects;
  const std::string extension = input.size() > 3 ? input.substr(input.size() - 3) : "";
  if (extension == "mlt" || extension == "MLT") {
    std::ifstream list(input);
    if (!list) {
      reporter.LogLine("Error");
      reporter.LogLine("Error opening mlt file");
      return TableStatus::kFailed;
    }
    for (std::string name; std::getline(list, name) && !Trimmed(name).empty();) {
      projects.push_back(ForceExtension(std::string(Trimmed(name)), "rec"));
    }
  } else {
    projects.push_back(input);
  }
  PendingFile out(output);
  if (!out.is_open()) {
    reporter.LogLine("Error");
    reporter.LogLine("Error opening tab file");
    return TableStatus::kFailed;
  }
  int page = 0;
  for (const std::string& project : projects) {
    if (!WriteProject(out, project, date, ++page, projects.size() == 1, reporter)) {
      reporter.LogLine("Error opening or reading " + project);
    }
  }
  if (!out.Publish()) {
    reporter.LogLine("Error opening tab file");
    return TableStatus::kFailed;
  }
  return TableStatus::kOk;
}

std::string RunTable(const std::string& project, std::string_view date, Reporter& reporter) {
  reporter.LogLine("Starting TABLE");
  const std::string output = ForceExtension(project, "tab");
  if (WriteTable(project, output, date, reporter) != TableStatus::kOk) {
    reporter.LogLine("Error in TABLE");
    return "";
  }
  return output;
}

}  // namespace kaldena
