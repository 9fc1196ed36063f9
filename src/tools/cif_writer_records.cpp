// Reading a project for the CIF writer. Per-phase keys are taken by position, per-atom keys
// in the sequence of the PHNA counts, as everywhere else in the system.
#include "tools/cif_writer_records.h"

#include <algorithm>

#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kMaxAtomTypes = 20;
constexpr int kDefaultAtoms = 500;

template <typename... T>
bool ReadLine(const std::vector<std::string>& lines, size_t index, std::string_view layout,
              T&... targets) {
  if (index >= lines.size()) return false;
  return Read(lines[index], layout, targets...) == ReadStatus::kOk;
}

template <typename... T>
bool ReadFirst(RecordStore& store, std::string_view key, std::string_view layout, T&... targets) {
  std::string data;
  if (store.jFindRec(key, data) != 1) return false;
  return Read(data, layout, targets...) == ReadStatus::kOk;
}

void ReadGlobals(RecordStore& store, CifOutProject& p) {
  p.title = FindText(store, "TITL", "Untitled");
  if (Trimmed(p.title).empty()) p.title = "Untitled";
  auto& j = p.job;
  ReadFirst(store, "JOBT", "(14i5)", j[0], j[1], j[2], j[3], j[4], j[5], j[6], j[7], j[8], j[9],
            j[10], j[11], j[12], j[13]);
  for (const std::string& data : FindRecords(store, "CNOM", kMaxAtomTypes)) {
    CifOutAtomType t;
    Read(data, "(a4,6x,2f10.0)", t.symbol, t.fPrime, t.fDoublePrime);
    t.symbol.resize(2, ' ');
    p.types.push_back(t);
  }
  for (const std::string& data : FindRecords(store, "ANOM")) {
    p.anomTypes.push_back(std::string(Trimmed(data.substr(0, std::min<size_t>(data.size(), 4)))));
  }
  auto& s = p.sample;
  auto& c = p.sampleCodes;
  ReadFirst(store, "SAMP", "(2f10.0,3i5,3f10.0)", s[0], s[1], c[0], c[1], c[2], s[2], s[3], s[4]);
  c[0] = c[0] == 0 ? 2 : std::clamp(c[0], 1, 2);
  c[1] = std::clamp(c[1], 1, 3);
  c[2] = std::clamp(c[2], 1, 4);
  std::array<float, 6> range{};
  if (ReadFirst(store, "CIF2", "(6f10.0)", range[0], range[1], range[2], range[3], range[4],
                range[5])) {
    p.range = range;
  }
  for (const std::string& data : FindRecords(store, "RVAL")) {
    CifOutResiduals r;
    Read(data, "(i4,i6,i5,5f10.0,i5)", r.parameters, r.points, r.reflections, r.rp, r.rwp, r.chi2,
         r.braggR, r.restraintR, r.restraints);
    p.residuals.push_back(r);
  }
  std::array<float, 2> elam{};
  if (ReadFirst(store, "ELAM", "(2f10.0)", elam[0], elam[1])) p.wavelengths = elam;
  std::array<float, 8> rlim{};
  if (ReadFirst(store, "RLIM", "(8f9.0)", rlim[0], rlim[1], rlim[2], rlim[3], rlim[4], rlim[5],
                rlim[6], rlim[7])) {
    p.cylinderMuR = rlim[2];
  }
  int decimals = 4, form = 1, aniso = 4, type = 1;
  if (ReadFirst(store, "TABL", "(4i5)", decimals, form, aniso, type)) {
    p.decimals = std::clamp(decimals, 2, 5);
    p.occupancyForm = std::clamp(form, 1, 2);
    p.anisoDecimals = std::clamp(aniso, 2, 5);
  }
}

// The per-atom lines of all phases, in file order.
struct AtomLines {
  std::vector<std::string> xyz, biso, beta, sdxy, sdbi, sdbe;
};

CifOutAtom ReadAtom(const AtomLines& lines, size_t n) {
  CifOutAtom a;
  auto& v = a.values;
  int site = 0;
  ReadLine(lines.xyz, n, "(a4,6x,i3,5f9.0,i3)", a.label, a.type, v[0], v[1], v[2], v[3], v[4],
           site);
  a.label.resize(4, ' ');
  float value = 0;
  if (ReadLine(lines.biso, n, "(10x,f10.0)", value)) a.bIso = value;
  if (ReadLine(lines.sdbi, n, "(10x,f10.0)", value)) a.bIsoEsd = value;
  auto& b = a.beta;
  ReadLine(lines.beta, n, "(10x,6f9.0)", b[0], b[1], b[2], b[3], b[4], b[5]);
  auto& s = a.esds;
  ReadLine(lines.sdxy, n, "(10x,5f10.0)", s[0], s[1], s[2], s[3], s[4]);
  auto& e = a.betaEsd;
  ReadLine(lines.sdbe, n, "(10x,6f10.0)", e[0], e[1], e[2], e[3], e[4], e[5]);
  return a;
}

void ReadPhases(RecordStore& store, CifOutProject& p, Reporter& reporter) {
  const int phases = std::clamp(p.job[2], 1, 10);
  const auto titles = FindRecords(store, "PHTI"), counts = FindRecords(store, "PHNA"),
             masses = FindRecords(store, "PHMW"), symbols = FindRecords(store, "SPGR"),
             cells = FindRecords(store, "CELL"), cellEsds = FindRecords(store, "SDCE"),
             asym = FindRecords(store, "ASYM");
  AtomLines lines;
  lines.xyz = FindRecords(store, "XYZ ");
  lines.biso = FindRecords(store, "BISO");
  lines.beta = FindRecords(store, "BETA");
  lines.sdxy = FindRecords(store, "SDXY");
  lines.sdbi = FindRecords(store, "SDBI");
  lines.sdbe = FindRecords(store, "SDBE");
  size_t nextAtom = 0;
  for (int i = 0; i < phases; ++i) {
    CifOutPhase phase;
    const auto n = static_cast<size_t>(i);
    if (n < titles.size()) phase.title = std::string(Trimmed(titles[n]));
    phase.atomsAsked = kDefaultAtoms;
    ReadLine(counts, n, "(i5,3f5.0)", phase.atomsAsked);
    phase.atomsAsked = std::max(phase.atomsAsked, 0);
    ReadLine(masses, n, "(i5,3f10.0)", phase.units, phase.mass, phase.absorption, phase.electrons);
    if (n < symbols.size()) {
      phase.symbol = std::string(Trimmed(symbols[n].substr(0, 20)));
      phase.hasSymbol = true;
    }
    auto& c = phase.cell;
    if (n < cells.size()) {
      float wavelength = 0;
      phase.hasCell = ReadCellLine(cells[n], c, wavelength) == ReadStatus::kOk;
    }
    auto& e = phase.cellEsd;
    ReadLine(cellEsds, n, "(6f10.0)", e[0], e[1], e[2], e[3], e[4], e[5]);
    float po = 0, asymmetry = 0;
    if (ReadLine(asym, n, "(2f10.0)", po, asymmetry)) phase.preferredOrientation = po;
    int read = 0;
    for (; read < phase.atomsAsked && nextAtom < lines.xyz.size(); ++read, ++nextAtom) {
      phase.atoms.push_back(ReadAtom(lines, nextAtom));
    }
    if (read < phase.atomsAsked) {
      reporter.LogLine(FormatLine("(i5,a)", read, " XYZ records read"));
    }
    p.phases.push_back(std::move(phase));
  }
}

}  // namespace

CifOutReadStatus ReadCifOutProject(std::string_view projectFile, CifOutProject& project,
                                   Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(projectFile) < 1) return CifOutReadStatus::kCannotOpen;
  ReadGlobals(store, project);
  ReadPhases(store, project, reporter);
  store.jCloseRec();
  return CifOutReadStatus::kOk;
}

}  // namespace kaldena
