// CIF import: symbol, cell, atom loop and aniso loop of one phase, each found by a search
// from the top of the file, so that the order of the items in the CIF does not matter.
#include "tools/cif_import.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "crystal/elements.h"
#include "crystal/space_group.h"
#include "crystal/symbol_tables.h"
#include "store/record_catalogue.h"
#include "tools/cif_import_symmetry.h"
#include "tools/cif_scanner.h"
#include "util/cell.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

bool StartsWithName(std::string_view name, std::string_view prefix) {
  return name.size() >= prefix.size() && SameCifName(name.substr(0, prefix.size()), prefix);
}

void ReadCell(const CifText& text, CifPhase& phase, Reporter& reporter) {
  struct CellItem {
    const char* name;
    const char* word;
  };
  static constexpr CellItem kItems[6] = {
      {"_cell_length_a", "a"},        {"_cell_length_b", "b"},      {"_cell_length_c", "c"},
      {"_cell_angle_alpha", "alpha"}, {"_cell_angle_beta", "beta"}, {"_cell_angle_gamma", "gamma"}};
  for (int i = 0; i < 6; ++i) {
    const std::optional<CifItem> item = FindCifItem(text, kItems[i].name);
    if (!item) {
      reporter.LogLine(std::string("Unit cell ") + kItems[i].word + " not found");
      continue;
    }
    const std::string word = ColumnWord(item->rest, 1);
    const CifNumber number = ReadCifNumber(word);
    if (number.kind != CifNumber::Kind::kValue || number.value.value <= 0.0f) {
      reporter.LogLine(text.Where(item->line) + ": cell " + kItems[i].word + " '" + word +
                       "' is not a length or angle, the default kept");
      continue;
    }
    phase.cell[i] = number.value.value;
    phase.cellSd[i] = number.value.esd;
  }
}

bool RhombohedralAxes(const CifPhase& phase) {
  const int code = SymbolClass(phase.spaceGroup);
  if (code != kRhombohedralLowClass && code != kRhombohedralHighClass) return false;
  const auto& c = phase.cell;
  return c[0] == c[1] && c[1] == c[2] && c[3] == c[4] && c[4] == c[5];
}

// A number of a row into `value` and `esd`; unknown ("?", ".") keeps the default silently.
void TakeNumber(const CifText& text, const CifLoop& loop, std::size_t row, int column,
                std::string_view what, float& value, float& esd, Reporter& reporter, bool& taken) {
  taken = false;
  if (column < 0) return;
  const std::string& word = loop.rows[row][column];
  const CifNumber number = ReadCifNumber(word);
  if (number.kind == CifNumber::Kind::kUnknown) return;
  if (number.kind == CifNumber::Kind::kBad) {
    reporter.LogLine(text.Where(loop.rowLines[row]) + ": " + std::string(what) + " '" + word +
                     "' is not a number, default used");
    return;
  }
  value = number.value.value;
  esd = number.value.esd;
  taken = true;
}

std::string LabelOf(const CifLoop& loop, std::size_t row, int column) {
  return column >= 0 ? loop.rows[row][column] : std::string();
}

void ReadAtoms(const CifText& text, CifPhase& phase, Reporter& reporter, int atomsBefore) {
  const std::optional<CifLoop> loop = FindCifLoop(text, [](const std::vector<std::string>& names) {
    bool site = false;
    for (const std::string& name : names) {
      if (StartsWithName(name, "_atom_site_aniso")) return false;
      site = site || StartsWithName(name, "_atom_site_");
    }
    return site;
  });
  if (!loop) {
    reporter.LogLine("Atomic parameters not found");
    return;
  }
  const int label = loop->Column("_atom_site_label");
  const int columns[3] = {loop->Column("_atom_site_fract_x"), loop->Column("_atom_site_fract_y"),
                          loop->Column("_atom_site_fract_z")};
  const int occupancy = loop->Column("_atom_site_occupancy");
  const int uIso = loop->Column("_atom_site_U_iso_or_equiv");
  const int bIso = loop->Column("_atom_site_B_iso_or_equiv");
  const int typeSymbol = loop->Column("_atom_site_type_symbol");
  reporter.Progress("ImportCIF atoms localized");
  if (loop->incompleteLine >= 0) {
    reporter.LogLine(text.Where(loop->incompleteLine) +
                     ": atom line with fewer values than the loop has names, left out");
  }
  const int room = std::max(0, kMaxAtoms - atomsBefore);
  for (std::size_t row = 0; row < loop->rows.size(); ++row) {
    if (static_cast<int>(phase.atoms.size()) >= room) {
      reporter.LogLine(text.Where(loop->rowLines[row]) + ": more than " +
                       std::to_string(kMaxAtoms) + " atoms in the project, the rest left out");
      break;
    }
    CifAtom atom;
    atom.label = LabelOf(*loop, row, label);
    if (atom.label.empty()) {
      // Without labels the aniso loop cannot be matched; a made-up label keeps atoms apart.
      atom.label = std::string(Trimmed(ElementOfSymbol(LabelOf(*loop, row, typeSymbol))));
      atom.label = (atom.label.empty() ? "X" : atom.label) + std::to_string(row + 1);
    }
    const std::string symbol = typeSymbol >= 0 ? loop->rows[row][typeSymbol] : atom.label;
    atom.element = ElementOfSymbol(symbol);
    if (Trimmed(atom.element).empty()) {
      reporter.LogLine(text.Where(loop->rowLines[row]) + ": atom " + atom.label + " type '" +
                       symbol + "' names no element, H used");
      atom.element = "H ";
    }
    bool taken = false;
    static constexpr const char* kCoordinate[3] = {"x", "y", "z"};
    for (int k = 0; k < 3; ++k) {
      TakeNumber(text, *loop, row, columns[k], kCoordinate[k], atom.values[k], atom.valueSd[k],
                 reporter, taken);
    }
    TakeNumber(text, *loop, row, occupancy, "occupancy", atom.values[3], atom.valueSd[3], reporter,
               taken);
    // B wins over U when both are given.
    float b = 0.0f, bSd = 0.0f;
    TakeNumber(text, *loop, row, bIso, "B", b, bSd, reporter, taken);
    if (!taken) {
      TakeNumber(text, *loop, row, uIso, "U", b, bSd, reporter, taken);
      b *= kUToB;
      bSd *= kUToB;
    }
    if (taken) {
      atom.values[4] = b;
      atom.valueSd[4] = bSd;
    }
    phase.atoms.push_back(atom);
  }
  reporter.Progress("ImportCIF coordinates ready");
}

void ReadAniso(const CifText& text, CifPhase& phase, Reporter& reporter) {
  const std::optional<CifLoop> loop = FindCifLoop(text, [](const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (StartsWithName(name, "_atom_site_aniso_U_") ||
          StartsWithName(name, "_atom_site_aniso_B_")) {
        return true;
      }
    }
    return false;
  });
  if (!loop) {
    reporter.LogLine("Thermal parameters not found");
    reporter.Progress("ImportCIF no aniso");
    return;
  }
  static constexpr const char* kPairs[6] = {"11", "22", "33", "12", "13", "23"};
  const int label = loop->Column("_atom_site_aniso_label");
  std::array<int, 6> columns{};
  std::array<float, 6> factor{};
  const UnitCell direct{phase.cell[0], phase.cell[1], phase.cell[2],
                        phase.cell[3], phase.cell[4], phase.cell[5]};
  const std::optional<UnitCell> reciprocal = ReciprocalCell(direct);
  const float star[3] = {reciprocal ? reciprocal->a : 0.0f, reciprocal ? reciprocal->b : 0.0f,
                         reciprocal ? reciprocal->c : 0.0f};
  static constexpr int kFirst[6] = {0, 1, 2, 0, 0, 1};
  static constexpr int kSecond[6] = {0, 1, 2, 1, 2, 2};
  for (int k = 0; k < 6; ++k) {
    columns[k] = loop->Column(std::string("_atom_site_aniso_U_") + kPairs[k]);
    float scale = kUToBeta;
    if (columns[k] < 0) {
      // B_ij = 8 pi^2 U_ij, so beta_ij = B_ij a*_i a*_j / 4.
      columns[k] = loop->Column(std::string("_atom_site_aniso_B_") + kPairs[k]);
      scale = 0.25f;
    }
    factor[k] = scale * star[kFirst[k]] * star[kSecond[k]];
  }
  reporter.LogLine(FormatLine("(7i5)", label + 1, columns[0] + 1, columns[1] + 1, columns[2] + 1,
                              columns[3] + 1, columns[4] + 1, columns[5] + 1));
  if (!reciprocal) {
    reporter.LogLine(text.Where(loop->line) +
                     ": the cell closes no volume, anisotropic values set to 0");
  }
  if (loop->incompleteLine >= 0) {
    reporter.LogLine(text.Where(loop->incompleteLine) +
                     ": aniso line with fewer values than the loop has names, left out");
  }
  struct AnisoLine {
    std::string label;
    std::array<float, 6> beta{};
    std::array<float, 6> esd{};
  };
  std::vector<AnisoLine> lines;
  for (std::size_t row = 0; row < loop->rows.size() && lines.size() < kMaxAtoms; ++row) {
    AnisoLine line;
    line.label = LabelOf(*loop, row, label);
    for (int k = 0; k < 6; ++k) {
      bool taken = false;
      float u = 0.0f, uSd = 0.0f;
      TakeNumber(text, *loop, row, columns[k], std::string("U") + kPairs[k], u, uSd, reporter,
                 taken);
      line.beta[k] = u * factor[k];
      line.esd[k] = uSd * factor[k];
    }
    std::string shown = line.label.substr(0, 4);
    reporter.LogLine(FormatLine("(a4,6f10.5)", shown, line.beta[0], line.beta[1], line.beta[2],
                                line.beta[3], line.beta[4], line.beta[5]));
    lines.push_back(line);
  }
  reporter.Progress("ImportCIF aniso ready");
  // Lines that match no atom are dropped without a word.
  for (CifAtom& atom : phase.atoms) {
    for (const AnisoLine& line : lines) {
      if (line.label.empty() || line.label != atom.label) continue;
      atom.beta = line.beta;
      atom.betaSd = line.esd;
      atom.anisotropic = true;
      break;
    }
  }
}

void SetSiteFactors(CifPhase& phase) {
  SpaceGroupInfo info;
  if (ParseSpaceGroupSymbol(phase.spaceGroup, info) != SymbolStatus::kOk ||
      ExpandOperators(info) != ExpandStatus::kOk) {
    return;
  }
  for (CifAtom& atom : phase.atoms) {
    // The site search works on a copy: the CIF's coordinates stand as given.
    const int factor = SiteFactorOf(info, {atom.values[0], atom.values[1], atom.values[2]});
    if (factor > 0) atom.siteFactor = factor;
  }
}

void NumberTypes(CifPhase& phase) {
  for (CifAtom& atom : phase.atoms) {
    auto place = std::find(phase.elements.begin(), phase.elements.end(), atom.element);
    if (place == phase.elements.end()) place = phase.elements.insert(place, atom.element);
    atom.type = static_cast<int>(place - phase.elements.begin()) + 1;
  }
}

CifPhase ImportFromText(const CifText& text, Reporter& reporter, int atomsBefore) {
  CifPhase phase;
  reporter.Progress("ImportCIF file ready");
  const CifSpaceGroup group = ReadCifSpaceGroup(text, reporter);
  phase.spaceGroup = group.symbol;
  ReadCell(text, phase, reporter);
  reporter.Progress("ImportCIF cell ready");
  if (RhombohedralAxes(phase)) {
    reporter.ShowMessage("Problem", "Please use rhomohedral in hexagonal setting");
    phase.status = CifImportStatus::kRhombohedralAxes;
    return phase;
  }
  ReadAtoms(text, phase, reporter, atomsBefore);
  ReadAniso(text, phase, reporter);
  MoveToOriginChoiceTwo(group, phase.atoms);
  SetSiteFactors(phase);
  NumberTypes(phase);
  reporter.Progress("ImportCIF done");
  return phase;
}

std::string Name4(std::string_view label) {
  std::string name(Trimmed(label).substr(0, 4));
  name.resize(4, ' ');
  return name;
}

}  // namespace

std::string ElementOfSymbol(std::string_view symbol) {
  return std::string(ElementSymbol(ElementNamed(symbol)));
}

CifPhase ImportCif(const std::string& path, Reporter& reporter, int atomsBefore) {
  reporter.Progress("ImportCIF started");
  CifText text;
  if (!ReadCifText(path, text)) {
    reporter.LogLine(" Error opening CIF");
    reporter.LogLine(path + ": cannot be opened");
    CifPhase phase;
    phase.status = CifImportStatus::kCannotOpen;
    return phase;
  }
  return ImportFromText(text, reporter, atomsBefore);
}

CifPhase ImportCifText(std::string_view name, std::string_view content, Reporter& reporter,
                       int atomsBefore) {
  reporter.Progress("ImportCIF started");
  return ImportFromText(CifTextOf(name, content), reporter, atomsBefore);
}

std::vector<Record> CifPhaseRecords(const CifPhase& phase, std::string_view title, int firstType) {
  std::vector<Record> block;
  block.push_back(TextRecord("PHTI", Trimmed(title)));
  block.push_back(MakeRecord("PHNA", "(i5,9f5.1)", static_cast<int>(phase.atoms.size()), 0.0f, 0.0f,
                             1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 0.0f));
  block.push_back(TextRecord("SPGR", Trimmed(phase.spaceGroup.substr(0, kSymbolLength))));
  const auto& c = phase.cell;
  block.push_back(MakeRecord("CELL", "(6f10.5)", c[0], c[1], c[2], c[3], c[4], c[5]));
  const auto& s = phase.cellSd;
  block.push_back(MakeRecord("SDCE", "(6f10.5)", s[0], s[1], s[2], s[3], s[4], s[5]));
  for (const CifAtom& atom : phase.atoms) {
    const auto& v = atom.values;
    const auto& e = atom.valueSd;
    const int type = std::clamp(atom.type + firstType - 1, 1, kMaxAtomTypes);
    block.push_back(MakeRecord("XYZ ", "(a4,3x,i3,5f10.5,i3)", Name4(atom.label), type, v[0], v[1],
                               v[2], v[3], v[4], atom.siteFactor));
    block.push_back(
        MakeRecord("SDXY", "(a4,6x,5f10.5)", Name4(atom.label), e[0], e[1], e[2], e[3], e[4]));
  }
  for (const CifAtom& atom : phase.atoms) {
    const auto& b = atom.beta;
    const auto& e = atom.betaSd;
    block.push_back(MakeRecord("BETA", "(a4,6x,6f10.5)", Name4(atom.label), b[0], b[1], b[2], b[3],
                               b[4], b[5]));
    block.push_back(MakeRecord("SDBE", "(a4,6x,6f10.5)", Name4(atom.label), e[0], e[1], e[2], e[3],
                               e[4], e[5]));
  }
  return block;
}

std::vector<Record> CifAtomTypeRecords(const CifPhase& phase, float wavelength) {
  std::vector<Record> lines;
  for (const std::string& element : phase.elements) {
    const ScatteringData data = GetScatteringData(wavelength, ElementNumber(element));
    lines.push_back(MakeRecord("ANOM", "(a2,8x,2f10.5)", element, data[9], data[10]));
  }
  return lines;
}

}  // namespace kaldena
