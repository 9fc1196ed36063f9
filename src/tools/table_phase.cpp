// The phase sections of the result table: cell, scale, profile, orientation and the atoms.
#include <algorithm>
#include <cmath>
#include <optional>

#include "tools/table.h"
#include "tools/table_sections.h"
#include "util/cell.h"

namespace kaldena {

namespace {

constexpr float kTwoPiSquared = 19.739208f;

using Six = std::array<float, 6>;

struct AtomRecord {
  std::string label;
  Six values{};  // x, y, z, occupation, B
  Six esds{};
  Six beta{}, betaEsd{};
  float bIso = 0, bIsoEsd = 0;
  bool hasBiso = false;
};

void PairLine(TableContext& t, std::string_view label, std::string_view format,
              std::initializer_list<float> values, std::initializer_list<float> esds) {
  t.Write(std::string("('") + std::string(label) + "',$)");
  std::vector<FormatArg> args;
  auto e = esds.begin();
  for (float v : values) {
    args.emplace_back(v);
    args.emplace_back(*e++);
  }
  t.out << WriteFormatted(format, args);
}

// A scaled value and esd pair for the integer notation.
void AddPair(std::vector<FormatArg>& args, double value, double esd, int decimals) {
  const ScaledPair p = ScaleWithEsd(value, esd, decimals);
  args.emplace_back(p.value);
  args.emplace_back(p.esd);
}

void Cell(TableContext& t, const Six& c, const Six& s) {
  t.Write("(' Unit cell     : ',$)");
  t.Write("(3(f10.6,'(',f7.6,')'),' A')", c[0], s[0], c[1], s[1], c[2], s[2]);
  t.Write("(16x,3(f10.5,'(',f7.5,')'),' deg.')", c[3], s[3], c[4], s[4], c[5], s[5]);
  const float v = CellVolume({c[0], c[1], c[2], c[3], c[4], c[5]});
  // The volume's esd from the edges alone.
  const float esd = (s[0] / c[0] + s[1] / c[1] + s[2] / c[2]) * v;
  t.Write("('    Volume     : ',14x,f12.3,'(',f7.3,') A**3'/)", v, esd);
}

void Profile(TableContext& t, const std::array<float, 9>& vectors) {
  Six hw{}, shw{}, sz{}, ssz{}, pk{}, spk{}, ax{};
  std::array<float, 3> as{}, sas{};
  t.Next("HWTH", "(6f10.0)", hw[0], hw[1], hw[2], hw[3], hw[4], hw[5]);
  t.Next("SDHW", "(6f10.0)", shw[0], shw[1], shw[2], shw[3], shw[4], shw[5]);
  t.Next("STSZ", "(6f10.0)", sz[0], sz[1], sz[2], sz[3], sz[4], sz[5]);
  t.Next("SDTZ", "(6f10.0)", ssz[0], ssz[1], ssz[2], ssz[3], ssz[4], ssz[5]);
  t.Next("PKSH", "(6f10.0)", pk[0], pk[1], pk[2], pk[3], pk[4], pk[5]);
  t.Next("SDPK", "(6f10.0)", spk[0], spk[1], spk[2], spk[3], spk[4], spk[5]);
  t.Next("ASYM", "(3f10.0)", as[0], as[1], as[2]);
  t.Next("SDAS", "(3f10.0)", sas[0], sas[1], sas[2]);
  t.Next("AXID", "(6f10.0)", ax[0], ax[1], ax[2], ax[3], ax[4], ax[5]);
  const int profile = t.job[1];
  const char* three = "(3(f8.5,'(',f6.5,')'))";
  const char* two = "(2(f8.5,'(',f6.5,')'))";
  const char* one = "(f8.5,'(',f6.5,')')";
  if (profile == 6) {
    PairLine(t, " Halfwidth parameters (left) : ", three, {hw[0], hw[1], hw[2]}, {shw[0], shw[1], shw[2]});
    PairLine(t, " Halfwidth parameters (right): ", three, {hw[3], hw[4], hw[5]}, {shw[3], shw[4], shw[5]});
    PairLine(t, " Strain and size parameters  : ", two, {sz[0], sz[1]}, {ssz[0], ssz[1]});
    PairLine(t, " Lorentzian parametrs (left) : ", three, {pk[0], pk[1], pk[2]}, {spk[0], spk[1], spk[2]});
    PairLine(t, " Lorentzian parametrs (right): ", three, {pk[3], pk[4], pk[5]}, {spk[3], spk[4], spk[5]});
  } else {
    PairLine(t, " Halfwidth parameters        : ", three, {hw[0], hw[1], hw[2]}, {shw[0], shw[1], shw[2]});
    PairLine(t, " Strain and size parameters  : ", two, {sz[0], sz[1]}, {ssz[0], ssz[1]});
    if (profile == 7) PairLine(t, " Axial divergence parameters : ", two, {ax[0], ax[1]}, {ax[3], ax[4]});
    if (profile <= 5) PairLine(t, " Asymmetry parameter         : ", one, {as[1]}, {sas[1]});
    if (profile == 8 || profile == 9) PairLine(t, " Transparency parameter      : ", one, {ax[2]}, {ax[5]});
    PairLine(t, " Lorentzian parameters       : ", three, {pk[0], pk[1], pk[2]}, {spk[0], spk[1], spk[2]});
  }
  if ((profile == 3 || profile == 5 || profile == 9) && pk[0] != 0) {
    const float size = 57.29578f * t.wavelength / pk[0];
    t.Write("(' Voigt particle size         : ',$)");
    t.Write("(f8.0,'(',f5.0,') A')", size, spk[0] * size / pk[0]);
    if (pk[1] != 0 && pk[0] + pk[1] != 0) {
      const float both = 57.29578f * t.wavelength / (pk[0] + pk[1]);
      t.Write("('                  by         : ',$)");
      t.Write("(f8.0,'(',f5.0,') A')", both,
              std::sqrt(spk[0] * spk[0] + spk[1] * spk[1]) * both / (pk[0] + pk[1]));
      t.Write("('        in direction         : ',$)");
      t.Write("(3f6.3)", vectors[3], vectors[4], vectors[5]);
    }
  }
  for (int i = 0; i < 2; ++i) {
    const float value = i == 0 ? as[0] : as[2], esd = i == 0 ? sas[0] : sas[2];
    PairLine(t, " Pref. orientation parameter : ", one, {value}, {esd});
    t.Write("('                   direction : ',$)");
    t.Write("(3f6.3)", vectors[6 * i], vectors[6 * i + 1], vectors[6 * i + 2]);
  }
}

std::vector<AtomRecord> ReadAtoms(TableContext& t, int count) {
  std::vector<AtomRecord> atoms(std::max(count, 0));
  for (AtomRecord& a : atoms) {
    int type = 0, site = 0;
    Six& v = a.values;
    t.Next("XYZ ", "(a4,6x,i4,5f9.0,i3)", a.label, type, v[0], v[1], v[2], v[3], v[4], site);
    a.hasBiso = t.Next("BISO", "(10x,6f10.0)", a.bIso);
    t.Next("BETA", "(10x,6f9.0)", a.beta[0], a.beta[1], a.beta[2], a.beta[3], a.beta[4], a.beta[5]);
    Six& s = a.esds;
    t.Next("SDXY", "(10x,6f9.0)", s[0], s[1], s[2], s[3], s[4], s[5]);
    t.Next("SDBI", "(10x,f10.0)", a.bIsoEsd);
    Six& e = a.betaEsd;
    t.Next("SDBE", "(10x,6f9.0)", e[0], e[1], e[2], e[3], e[4], e[5]);
  }
  return atoms;
}

// B of an atom: its own, plus the equivalent of its anisotropic factors where it has them.
std::pair<float, float> IsotropicB(const AtomRecord& a, const Six& cell) {
  float b = a.hasBiso ? a.bIso : a.values[4];
  float esd = a.hasBiso ? a.bIsoEsd : a.esds[4];
  if (cell[0] == 0 || a.beta[0] == 0 || a.beta[1] == 0) return {b, esd};
  const float ca = std::cos(cell[3] / 57.29578f), cb = std::cos(cell[4] / 57.29578f),
              cg = std::cos(cell[5] / 57.29578f);
  const float g[3][3] = {{cell[0] * cell[0], cell[0] * cell[1] * cg, cell[0] * cell[2] * cb},
                         {cell[0] * cell[1] * cg, cell[1] * cell[1], cell[1] * cell[2] * ca},
                         {cell[0] * cell[2] * cb, cell[1] * cell[2] * ca, cell[2] * cell[2]}};
  const float beta[3][3] = {{a.beta[0], a.beta[3], a.beta[4]},
                            {a.beta[3], a.beta[1], a.beta[5]},
                            {a.beta[4], a.beta[5], a.beta[2]}};
  float trace = 0, spread = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) trace += g[i][j] * beta[j][i];
    spread += (g[i][i] * a.betaEsd[i]) * (g[i][i] * a.betaEsd[i]);
  }
  const float part = 4.0f / 3.0f * std::sqrt(spread);
  return {b + 4.0f / 3.0f * trace, std::sqrt(esd * esd + part * part)};
}

void Coordinates(TableContext& t, const std::vector<AtomRecord>& atoms, const Six& cell) {
  const int d = t.options.decimals;
  t.Write("(//' *10**',i1,$)", d);
  t.Write("('      x/a',12x,'y/b',12x,'z/c',$)");
  t.Write("(11x,'SOF',9x,'B(A**2)'/)");
  for (const AtomRecord& a : atoms) {
    ++t.atomNumber;
    std::vector<FormatArg> args = {a.label, t.restrainedAtoms.count(t.atomNumber) ? "*" : " "};
    for (int i = 0; i < 3; ++i) AddPair(args, a.values[i], a.esds[i], d);
    t.out << WriteFormatted("(1x,a4,1x,a1,3(i9,'(',i4,')'),$)", args);
    const auto [b, bEsd] = IsotropicB(a, cell);
    if (t.options.occupancy == 1) {
      t.Write("(f8.3,'(',i3,')',f6.1,'(',i1,')')", a.values[3],
              static_cast<int>(std::lround(a.esds[3] * 1000)), b,
              static_cast<int>(std::lround(bEsd * 10)));
    } else {
      t.Write("(f8.4,'(',i4,')',f6.2,'(',i2,')')", a.values[3],
              static_cast<int>(std::lround(a.esds[3] * 10000)), b,
              static_cast<int>(std::lround(bEsd * 100)));
    }
  }
}

void Anisotropic(TableContext& t, const std::vector<AtomRecord>& atoms, const Six& cell) {
  bool any = false;
  for (const AtomRecord& a : atoms) {
    for (float b : a.beta) any = any || std::abs(b) > 1e-5f;
  }
  if (!any) return;
  // U from beta needs the reciprocal cell; without a cell the table stays in beta.
  const std::optional<UnitCell> reciprocal =
      cell[0] > 0 ? ReciprocalCell({cell[0], cell[1], cell[2], cell[3], cell[4], cell[5]})
                  : std::nullopt;
  const bool u = t.options.type == 2 && reciprocal.has_value();
  const char* letter = u ? "U" : "b";
  t.Write("(//' Temperature factor expression : ',$)");
  t.Write("(a50)", u ? "exp(-2pi**2(...+U(ij)H(i)H(j)A*(i)A*(j)+...))"
                     : "exp(...-B(ij)H(i)H(j)-...)");
  const int d = t.options.anisoDecimals;
  t.Write("(//' *10**',i1,$)", d);
  t.Write("(4x,a1,'11',9x,a1,'22',9x,a1,'33',$)", letter, letter, letter);
  t.Write("(9x,a1,'12',9x,a1,'13',9x,a1,'23'/)", letter, letter, letter);
  std::array<float, 6> divisor{1, 1, 1, 1, 1, 1};
  if (u) {
    const std::array<float, 3> s = {reciprocal->a, reciprocal->b, reciprocal->c};
    const int pairs[6][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};
    for (int m = 0; m < 6; ++m) divisor[m] = kTwoPiSquared * s[pairs[m][0]] * s[pairs[m][1]];
  }
  for (const AtomRecord& a : atoms) {
    if (a.beta[1] == 0 && a.beta[2] == 0) continue;
    t.Write("(1x,a4,2x,$)", a.label);
    std::vector<FormatArg> args;
    for (int m = 0; m < 6; ++m) AddPair(args, a.beta[m] / divisor[m], a.betaEsd[m] / divisor[m], d);
    t.out << WriteFormatted("(6(i6,'(',i4,')'))", args);
  }
}

}  // namespace

PhaseQuantity WritePhase(TableContext& t, int phase) {
  PhaseQuantity q;
  int atoms = 0;
  std::array<float, 9> vectors{};
  if (!t.Next("PHNA", "(i5,9f5.0)", atoms, vectors[0], vectors[1], vectors[2], vectors[3],
              vectors[4], vectors[5], vectors[6], vectors[7], vectors[8])) {
    t.Missing("PHNA record missing");
  }
  std::string title;
  if (!t.NextText("PHTI", title) || title.empty()) title = "Unknown phase name";
  title.resize(60, ' ');
  t.Write("(//' Phase no. ',i2,5x,a60)", phase, title);
  if (phase <= static_cast<int>(t.rval.size())) {
    const auto& r = t.rval[phase - 1];
    t.Write("(/' RB = ',f5.2,3x,$)", r[6]);
    t.Write("(i5,' Bragg reflections.'/)", static_cast<int>(r[2]));
  }
  std::string symbol;
  if (t.NextText("SPGR", symbol)) {
    symbol.resize(20, ' ');
    t.Write("(' Space group   :    ',a20/)", symbol);
  } else {
    t.Missing("SPGR record missing");
  }
  Six cell{}, cellEsd{};
  if (t.Next("CELL", "(6f10.0)", cell[0], cell[1], cell[2], cell[3], cell[4], cell[5])) {
    t.Next("SDCE", "(6f10.0)", cellEsd[0], cellEsd[1], cellEsd[2], cellEsd[3], cellEsd[4], cellEsd[5]);
    Cell(t, cell, cellEsd);
  } else {
    t.Missing("CELL record missing");
  }
  float scale = 0, b = 0, scaleEsd = 0, bEsd = 0;
  t.Next("SCAL", "(2f15.0)", scale, b);
  t.Next("SDSC", "(2f15.0)", scaleEsd, bEsd);
  t.Write("(' Scale factor                : ',$)");
  t.Write("(f11.8,'(',f9.8,')')", scale, scaleEsd);
  t.Write("(' Overall temp. fact. coeff.  : ',$)");
  t.Write("(f7.4,'(',f6.4,') A**2')", b, bEsd);
  q.scale = scale;
  int units = 0;
  float mass = 0, absorption = 0;
  if (t.Next("PHMW", "(i5,2f12.0)", units, mass, absorption)) {
    const float volume = CellVolume({cell[0], cell[1], cell[2], cell[3], cell[4], cell[5]});
    t.Write("(' Absorption coefficient      : ',$)");
    t.Write("(f12.3,'  /cm')", absorption);
    t.Write("(' Density                     : ',$)");
    t.Write("(f12.3,'  g/cm**3')", volume > 0 ? mass / volume / 0.6023f : 0.0f);
    q.known = true;
    q.massKnown = mass > 0;
    q.weight = static_cast<double>(scale) * mass * volume;
    q.volume = static_cast<double>(scale) * volume * volume;
    q.weightEsd = scale != 0 ? scaleEsd * q.weight / scale : 0.0;
    q.volumeEsd = scale != 0 ? scaleEsd * q.volume / scale : 0.0;
    q.absorption = absorption;
  }
  Profile(t, vectors);
  const std::vector<AtomRecord> records = ReadAtoms(t, atoms);
  Coordinates(t, records, cell);
  Anisotropic(t, records, cell);
  return q;
}

}  // namespace kaldena
