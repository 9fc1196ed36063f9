// One phase's block of the CIF: names, symmetry, cell, density and absorption, atom sites
// and anisotropic displacements.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "crystal/absorption.h"
#include "crystal/elements.h"
#include "crystal/space_group.h"
#include "crystal/space_group_settings.h"
#include "crystal/symbol_tables.h"
#include "tools/cif_text.h"
#include "tools/cif_writer_sections.h"
#include "util/cell.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr double kTwoPiSquared = 19.739208;
constexpr double kEightPiSquared = 4 * kTwoPiSquared;

std::string Fixed(std::string_view format, double value) { return FormatLine(format, value); }

UnitCell ToUnitCell(const CellParameters& c) { return {c[0], c[1], c[2], c[3], c[4], c[5]}; }

std::string BlockCode(const CifOutPhase& phase, int number, std::set<std::string>& used) {
  std::string code = CifBlockCode(phase.title);
  if (code.empty()) code = std::to_string(number);
  // Block codes are compared without case; a repeated one would end the file's validity.
  std::string unique = code;
  for (int n = 2; used.count(LowerText(unique)); ++n) unique = code + "_" + std::to_string(n);
  used.insert(LowerText(unique));
  return unique;
}

void Names(CifOutput& cif, const CifOutPhase& phase) {
  cif.UnknownText("_chemical_name_systematic");
  for (const char* name : {"_chemical_name_common", "_chemical_melting_point",
                           "_chemical_formula_moiety", "_chemical_formula_sum"}) {
    cif.Item(name, "?");
  }
  cif.Item("_chemical_formula_weight", phase.mass > 0 ? Fixed("(f10.2)", phase.mass) : "?");
}

// The system's own symbol, then the number, printed symbol and Hall symbol of the setting its
// operators are, in the names other programs look for ("?" for a setting of no table).
void Symmetry(CifOutput& cif, const CifOutPhase& phase, Reporter& reporter) {
  std::string symbol = phase.symbol;
  const SpaceGroupInfo group = GetSpaceGroupOperators(symbol, reporter);
  const SpaceGroupSetting* setting = SettingOfOperators(group.operators);
  const std::string number = setting ? std::to_string(setting->number) : "?";
  const std::string printed = setting ? CifQuoted(setting->printed) : "?";
  const std::string hall = setting ? CifQuoted(setting->hall) : "?";
  cif.Item("_symmetry_cell_setting", CifQuoted(Trimmed(CrystalSystemName(phase.cell))));
  cif.Item("_symmetry_space_group_name_H-M", CifQuoted(Trimmed(symbol)));
  cif.Item("_symmetry_int_tables_number", number);
  cif.Item("_symmetry_space_group_name_Hall", hall);
  cif.Item("_space_group_IT_number", number);
  cif.Item("_space_group_name_H-M_alt", printed);
  cif.Item("_space_group_name_Hall", hall);
  cif.Write("('loop_'/' _symmetry_equiv_pos_as_xyz')");
  for (const SymmetryOperator& op : group.operators) {
    cif.Write("(2x,a,a,a)", "'", OperatorText(op), "'");
  }
}

// The transmission range of a cylinder over the measured range; nothing without mu R.
std::optional<std::pair<float, float>> Transmission(const CifOutProject& p, Reporter& reporter) {
  if (p.cylinderMuR <= 0 || !p.range) return std::nullopt;
  const std::vector<float> table = CylinderAbsorptionTable(p.cylinderMuR, reporter);
  const auto index = [&](float twoTheta) {
    const int i = static_cast<int>(std::lround(twoTheta / 2 / kAbsorptionPointStep));
    return std::clamp(i, 0, static_cast<int>(table.size()) - 1);
  };
  const int lo = index(std::min((*p.range)[0], (*p.range)[1]));
  const int hi = index(std::max((*p.range)[0], (*p.range)[1]));
  const auto [min, max] = std::minmax_element(table.begin() + lo, table.begin() + hi + 1);
  return std::make_pair(*min, *max);
}

void Cell(CifOutput& cif, const CifOutProject& project, const CifOutPhase& phase,
          Reporter& reporter) {
  const auto& c = phase.cell;
  const auto& s = phase.cellEsd;
  const char* names[] = {"_cell_length_a",    "_cell_length_b",   "_cell_length_c",
                         "_cell_angle_alpha", "_cell_angle_beta", "_cell_angle_gamma"};
  double relative = 0;
  for (int i = 0; i < 6; ++i) {
    cif.Item(names[i], ValueWithEsdText(c[i], s[i], 5));
    if (c[i] != 0) relative += std::fabs(s[i] / c[i]);
  }
  // Unlike the table, the angles count in the volume's esd too.
  const float volume = CellVolume(ToUnitCell(c));
  cif.Item("_cell_volume", ValueWithEsdText(volume, relative * volume, 3));
  // PHMW's mass and electrons are sums over the whole cell and its integer is the operator
  // count, so the formula these numbers describe is the cell's content: one unit a cell, which
  // keeps Z times the formula weight equal to the mass behind the density.
  cif.Item("_cell_formula_units_Z", phase.mass > 0 ? FormatLine("(i4)", 1) : "?");
  const float kelvin = project.sample[3];
  cif.Item("_cell_measurement_temperature", kelvin > 0 ? Fixed("(f7.2)", kelvin) : "?");
  if (phase.preferredOrientation && *phase.preferredOrientation != 1) {
    cif.Write("(/'_pd_proc_ls_pref_orient_corr'/';'/a)",
              "I~corr~ = I~obs~/[P^2^cos^2^\\a + P^-1^sin^2^\\a]^3/2^");
    cif.Write("('(Dollase (1986) J. Appl. Cryst. 19, 267)'/';')");
  }
  cif.Line("");
  cif.Item("_exptl_crystal_density_meas", "?");
  cif.Item("_exptl_crystal_density_diffrn",
           phase.mass > 0 && volume > 0 ? Fixed("(f7.3)", phase.mass / volume / 0.6023) : "?");
  cif.Item("_exptl_crystal_density_method", "?");
  cif.Item("_exptl_crystal_F_000", phase.electrons > 0 ? Fixed("(f7.1)", phase.electrons) : "?");
  cif.Item("_exptl_absorpt_coefficient_mu",
           phase.absorption > 0 ? Fixed("(f7.2)", phase.absorption / 10) : "?");
  cif.Line("_exptl_absorpt_correction_type   cylinder");
  const auto t = Transmission(project, reporter);
  cif.Item("_exptl_absorpt_correction_T_min", t ? Fixed("(f5.3)", t->first) : "?");
  cif.Item("_exptl_absorpt_correction_T_max", t ? Fixed("(f5.3)", t->second) : "?");
}

// B and its esd with the equivalent of the anisotropic factors added: (4/3) trace(G beta).
std::pair<double, double> EquivalentB(const CifOutAtom& a, const CellParameters& cell) {
  double b = a.bIso ? *a.bIso : a.values[4];
  double esd = a.bIso ? a.bIsoEsd.value_or(0) : a.esds[4];
  if (!a.Anisotropic() || cell[0] <= 0) return {b, esd};
  const double ca = std::cos(cell[3] / kDegreesPerRadian),
               cb = std::cos(cell[4] / kDegreesPerRadian),
               cg = std::cos(cell[5] / kDegreesPerRadian);
  const double g[3][3] = {{cell[0] * cell[0], cell[0] * cell[1] * cg, cell[0] * cell[2] * cb},
                          {cell[0] * cell[1] * cg, cell[1] * cell[1], cell[1] * cell[2] * ca},
                          {cell[0] * cell[2] * cb, cell[1] * cell[2] * ca, cell[2] * cell[2]}};
  const double beta[3][3] = {{a.beta[0], a.beta[3], a.beta[4]},
                             {a.beta[3], a.beta[1], a.beta[5]},
                             {a.beta[4], a.beta[5], a.beta[2]}};
  double trace = 0, spread = 0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) trace += g[i][j] * beta[j][i];
    spread += std::pow(g[i][i] * a.betaEsd[i], 2);
  }
  const double part = 4.0 / 3.0 * std::sqrt(spread);
  return {b + 4.0 / 3.0 * trace, std::sqrt(esd * esd + part * part)};
}

std::string LabelField(const CifOutAtom& atom) {
  std::string label = CifLabel(atom.label);
  if (label.size() < 4) label.resize(4, ' ');
  return label;
}

void AtomSites(CifOutput& cif, const CifOutProject& p, const CifOutPhase& phase) {
  if (phase.atoms.empty()) return;
  cif.Write("(/'loop_')");
  for (const char* name :
       {"_atom_site_label", "_atom_site_fract_x", "_atom_site_fract_y", "_atom_site_fract_z",
        "_atom_site_occupancy", "_atom_site_U_iso_or_equiv", "_atom_site_adp_type",
        "_atom_site_type_symbol"}) {
    cif.Line(name);
  }
  for (const CifOutAtom& a : phase.atoms) {
    const auto [b, bEsd] = EquivalentB(a, phase.cell);
    std::string symbol = AtomTypeSymbol(p, a);
    if (symbol.size() < 4) symbol.insert(0, 4 - symbol.size(), ' ');
    cif.Write("(a,2x,a,2x,a,2x,a,2x,a,2x,a,a,a)", LabelField(a),
              ValueWithEsdText(a.values[0], a.esds[0], p.decimals),
              ValueWithEsdText(a.values[1], a.esds[1], p.decimals),
              ValueWithEsdText(a.values[2], a.esds[2], p.decimals),
              ValueWithEsdText(a.values[3], a.esds[3], p.occupancyForm + 2),
              ValueWithEsdText(b / kEightPiSquared, bEsd / kEightPiSquared, p.decimals),
              a.Anisotropic() ? " Uani" : " Uiso", symbol);
  }
  cif.Write("(' '/' '/' ')");
}

void AnisotropicSites(CifOutput& cif, const CifOutProject& p, const CifOutPhase& phase) {
  const bool any = std::any_of(phase.atoms.begin(), phase.atoms.end(),
                               [](const CifOutAtom& a) { return a.Anisotropic(); });
  const std::optional<UnitCell> star = ReciprocalCell(ToUnitCell(phase.cell));
  if (!any || !star) return;
  cif.Write("(/'loop_')");
  for (const char* name :
       {"_atom_site_aniso_label", "_atom_site_aniso_U_11", "_atom_site_aniso_U_22",
        "_atom_site_aniso_U_33", "_atom_site_aniso_U_12", "_atom_site_aniso_U_13",
        "_atom_site_aniso_U_23"}) {
    cif.Line(name);
  }
  const double s[3] = {star->a, star->b, star->c};
  const int pairs[6][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};
  for (const CifOutAtom& a : phase.atoms) {
    if (!a.Anisotropic()) continue;
    std::vector<FormatArg> args;
    std::vector<std::string> texts(7);
    texts[0] = LabelField(a);
    for (int m = 0; m < 6; ++m) {
      const double divisor = kTwoPiSquared * s[pairs[m][0]] * s[pairs[m][1]];
      texts[m + 1] = ValueWithEsdText(a.beta[m] / divisor, a.betaEsd[m] / divisor, p.anisoDecimals);
    }
    for (const std::string& t : texts) args.emplace_back(t);
    cif.out << WriteFormatted("(a,4x,a,1x,a,1x,a,1x,a,1x,a,1x,a,1x)", args);
  }
  cif.Write("(' '/' '/' ')");
}

}  // namespace

std::string AtomTypeSymbol(const CifOutProject& project, const CifOutAtom& atom) {
  if (atom.type >= 1 && atom.type <= static_cast<int>(project.anomTypes.size())) {
    const std::string& name = project.anomTypes[atom.type - 1];
    if (!name.empty()) return CifValue(name);
  }
  std::string label(Trimmed(atom.label));
  label.erase(0, std::min(label.find_first_not_of(' '), label.size()));
  if (label.empty() || !std::isalpha(static_cast<unsigned char>(label[0]))) return "?";
  std::string two{UpperChar(label[0]), label.size() > 1 ? LowerChar(label[1]) : ' '};
  if (std::isalpha(static_cast<unsigned char>(two[1])) && ElementNumber(two) > 0) return two;
  two[1] = ' ';
  if (ElementNumber(two) > 0) return two.substr(0, 1);
  return "?";
}

CifStatus WritePhaseBlock(CifOutput& cif, const CifOutProject& project, int phase,
                          std::set<std::string>& blockCodes, Reporter& reporter) {
  const CifOutPhase& p = project.phases[phase];
  cif.Write("(/'data_',a/)", BlockCode(p, phase + 1, blockCodes));
  Names(cif, p);
  if (!p.hasCell) {
    reporter.LogLine(" CELL record missing. Program terminated");
    return CifStatus::kFailed;
  }
  if (!p.hasSymbol) {
    reporter.LogLine(" SPGR record missing. Program terminated");
    return CifStatus::kFailed;
  }
  cif.Line("");
  Symmetry(cif, p, reporter);
  cif.Line("");
  Cell(cif, project, p, reporter);
  AtomSites(cif, project, p);
  AnisotropicSites(cif, project, p);
  return CifStatus::kOk;
}

}  // namespace kaldena
