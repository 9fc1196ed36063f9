// The geometry loops of the CIF: bond angles and distances of the silent distance search,
// with their standard deviations and site symmetry codes.
#include <string>
#include <vector>

#include "tools/cif_text.h"
#include "tools/cif_writer_sections.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kAngleDecimals = 2;
constexpr int kDistanceDecimals = 4;

std::string Field(std::string text, size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

void Angles(CifOutput& cif, const PhaseDistances& phase) {
  std::vector<std::string> rows;
  for (const auto& centre : phase.angles) {
    for (const AngleRecord& a : centre) {
      rows.push_back(Field(CifLabel(a.labels[0]), 5) + Field(CifLabel(a.labels[1]), 5) +
                     Field(CifLabel(a.labels[2]), 5) +
                     Field(ValueWithEsdText(a.angle, a.sd, kAngleDecimals), 12) +
                     Field(SiteSymmetryText(a.codes[0]), 8) +
                     Field(SiteSymmetryText(a.codes[2]), 8) + "?");
    }
  }
  if (rows.empty()) return;  // a loop without rows is no CIF
  cif.Write("(/'loop_')");
  for (const char* name :
       {"_geom_angle_atom_site_label_1", "_geom_angle_atom_site_label_2",
        "_geom_angle_atom_site_label_3", "_geom_angle", "_geom_angle_site_symmetry_1",
        "_geom_angle_site_symmetry_3", "_geom_angle_publ_flag"}) {
    cif.Line(name);
  }
  for (const std::string& row : rows) cif.Line(row);
}

void Bonds(CifOutput& cif, const PhaseDistances& phase) {
  std::vector<std::string> rows;
  for (const auto& centre : phase.distances) {
    std::vector<DistanceRecord> sorted = centre;
    SortByLength(sorted);
    for (const DistanceRecord& d : sorted) {
      rows.push_back(Field(CifLabel(LabelText(d.centreLabel)), 5) +
                     Field(CifLabel(LabelText(d.neighbourLabel)), 5) +
                     Field(ValueWithEsdText(d.d, d.sd, kDistanceDecimals), 12) +
                     Field(SiteSymmetryText(d.code), 8) + "?");
    }
  }
  if (rows.empty()) return;
  cif.Write("(/'loop_')");
  for (const char* name :
       {"_geom_bond_atom_site_label_1", "_geom_bond_atom_site_label_2", "_geom_distance",
        "_geom_bond_site_symmetry_2", "_geom_bond_publ_flag"}) {
    cif.Line(name);
  }
  for (const std::string& row : rows) cif.Line(row);
  cif.Write("(' ')");
}

}  // namespace

void WriteGeometryLoops(CifOutput& cif, const DistanceTable& table, size_t phase) {
  if (phase >= table.phases.size()) return;
  const PhaseDistances& distances = table.phases[phase];
  // A comment, so that a file of several phases stays CIF.
  if (table.phases.size() > 1) {
    cif.Write("(/'#',2x,'* PHASE NO. ',I2,': ', a,' *')", static_cast<int>(phase + 1),
              Trimmed(distances.title));
  }
  Angles(cif, distances);
  Bonds(cif, distances);
}

}  // namespace kaldena
