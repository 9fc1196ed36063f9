#include "tools/distance_listing.h"

#include <algorithm>

#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kComponentWidth = 12;  // one component of an operator in its column

// The three components of an operator, each padded to its column: "-y+1/2      ".
std::vector<std::string> OperatorComponents(const SymmetryOperator& op) {
  std::vector<std::string> parts;
  const std::string text = OperatorText(op);
  size_t start = 0;
  for (int i = 0; i < 3; ++i) {
    size_t end = text.find(',', start);
    if (end == std::string::npos) end = text.size();
    std::string part = start <= text.size() ? text.substr(start, end - start) : std::string();
    if (static_cast<int>(part.size()) < kComponentWidth) part.resize(kComponentWidth, ' ');
    parts.push_back(part);
    start = end + 1;
  }
  return parts;
}

}  // namespace

void DistanceListing::Header(std::string_view date, std::string_view title) {
  // The title is a blank-padded field of 60: left in its columns, not pushed right.
  std::string field(title.substr(0, std::min<size_t>(title.size(), 60)));
  field.resize(60, ' ');
  out_ << Format("(52x,'DISTAN',4x,a10)", date) << Format("(3x,a60)", field);
}

void DistanceListing::Limits(const DistanceLimits& limits) {
  out_ << Format("(/'   Maximum number of atoms is ',i5)", kMaxAtoms)
       << Format("( '   Distances calculated within the range',$)")
       << Format("(f5.2,' -',f5.2,' A')", limits.dmin, limits.dmax);
  if (limits.Angles()) {
    out_ << Format("('   Angles calculated within the range   ',$)")
         << Format("(f5.2,' -',f5.2,' A')", limits.amin, limits.amax);
  }
}

void DistanceListing::PhaseBox(int phase, std::string_view title) {
  const std::string trimmed(Trimmed(title));
  const std::string stars(trimmed.size() + 18, '*');
  out_ << Format("(/3x,a)", stars) << Format("(/3x,'* PHASE NO. ',I2,': ', a,' *')", phase, trimmed)
       << Format("(/3x,a)", stars);
}

void DistanceListing::CellBlock(const DistanceGeometry& g) {
  const auto& c = g.cell;
  const auto& r = g.reciprocal;
  out_ << Format("(/'   Cell parameters'/'   ==============='/)")
       << Format("(3f10.4,3f10.3)", c[0], c[1], c[2], c[3], c[4], c[5])
       << Format("('   Cell volume =',f12.6)", g.volume)
       << Format("(/'   Reciprocal cell parameters')")
       << Format("(1x,3f10.6,3f10.3)", r[0], r[1], r[2], r[3], r[4], r[5]);
}

void DistanceListing::SymmetryBlock(int system, std::string_view symbol,
                                    std::span<const SymmetryOperator> operators) {
  out_ << Format("(/'   Symmetry information')") << Format("('   ===================='/)")
       << Format("('   ',a/)", CrystalSystemName(system));
  // The symbol goes character by character, as "20a1" takes it.
  std::string padded(symbol.substr(0, kSymbolLength));
  padded.resize(kSymbolLength, ' ');
  std::vector<std::string> characters;
  for (char ch : padded) characters.emplace_back(1, ch);
  std::vector<FormatArg> args(characters.begin(), characters.end());
  out_ << WriteFormatted("(/'   Space group symbol: ',20a1/)", args)
       << Format("('   The symmetry operations are:'/)");
  for (size_t i = 0; i < operators.size(); ++i) {
    const std::vector<std::string> parts = OperatorComponents(operators[i]);
    out_ << Format("(2x,i3,2x,a,a,a)", static_cast<int>(i + 1), parts[0], parts[1], parts[2]);
  }
}

void DistanceListing::AtomBlock(std::span<const DistanceAtom> atoms) {
  out_ << Format("(/'   List of atomic input positions')")
       << Format("( '   ==============================')")
       << Format("(/'      Atom          x                 y                 z',$)")
       << Format("( '                 g      Biso')");
  for (const DistanceAtom& a : atoms) {
    out_ << Format("(7x,a4,2x,3(f10.5,'(',f6.5,')'),2f10.5)", a.label, a.xyz[0], a.sd[0], a.xyz[1],
                   a.sd[1], a.xyz[2], a.sd[2], a.occupancy, a.b);
  }
}

void DistanceListing::ExtendedBanner() {
  out_ << Format("(/)") << Format("(52x,'*************'  )") << Format("(52x,'* Distances *'  )")
       << Format("(52x,'*************'//)");
}

void DistanceListing::SearchHeading() {
  out_ << Format("(/a,6x,a,7x,a,7x,a)", " atom1 atom2     x,y,z of atom1", " symcod ",
                 "x,y,z of atom2", "distance  s.d.");
}

void DistanceListing::SearchLine(const DistanceRecord& r) {
  out_ << Format("(1x,a4,3x,a4,3f8.4,2x,i6,2x,3f8.4,f9.3,f6.3)", LabelText(r.neighbourLabel),
                 LabelText(r.centreLabel), r.neighbour[0], r.neighbour[1], r.neighbour[2], r.code,
                 r.centre[0], r.centre[1], r.centre[2], r.d, r.sd);
}

void DistanceListing::TooManyLine(int count, std::string_view centreLabel) {
  out_ << Format("(' **** Stopped at',i5,' distances to ',a4)", count, centreLabel);
}

void DistanceListing::AnglesBanner(bool extended) {
  if (extended) {
    out_ << Format("(///54x,'**********' )") << Format("(   54x,'* Angles *' )")
         << Format("(   54x,'**********'/)");
  } else {
    out_ << Format("(///24x,'**********' )") << Format("(   24x,'* Angles *' )")
         << Format("(   24x,'**********'/)");
  }
}

void DistanceListing::AngleHeading(bool extended) {
  if (extended) {
    out_ << Format(
        "(/ ' atom1  atom2  atom3   angle    sd     ','dist12  dist23  dist13       xyz of "
        "atom1',7x,'xyz of atom2       xyz of atom3''   code1   code2   code3')");
  } else {
    out_ << Format(
        "(/ ' atom1  atom2  atom3       angle      ','   code1   code2   code3    dist12  "
        "dist23  dist13')");
  }
}

void DistanceListing::AngleLine(const AngleRecord& a, bool extended) {
  if (extended) {
    const FormatArg args[] = {a.labels[0], a.labels[1], a.labels[2], a.angle,     a.sd,
                              a.d12,       a.d23,       a.d13,       a.xyz[0][0], a.xyz[0][1],
                              a.xyz[0][2], a.xyz[1][0], a.xyz[1][1], a.xyz[1][2], a.xyz[2][0],
                              a.xyz[2][1], a.xyz[2][2], a.codes[0],  a.codes[1],  a.codes[2]};
    out_ << WriteFormatted("(3(3x,a4),f8.3,f6.3,2x,3f8.3,2x,2(3f6.3,1x),3f6.3,3i8)", args);
  } else {
    out_ << Format("(3(3x,a4),f8.3,' (',f6.3,')',3i8,2x,3f8.3)", a.labels[0], a.labels[1],
                   a.labels[2], a.angle, a.sd, a.codes[0], a.codes[1], a.codes[2], a.d12, a.d23,
                   a.d13);
  }
}

void DistanceListing::ClosingBanner() {
  out_ << Format("(///17x,'*************'/)") << Format("(17x,'* Distances *'/)")
       << Format("(17x,'*************'//)");
}

void DistanceListing::ClosingCentre(std::span<const DistanceRecord> sorted) {
  out_ << Format("(' atom1  atom2        distance       code1   code2')");
  for (const DistanceRecord& r : sorted) {
    out_ << Format("(2(3x,a4),f10.4,' (',f6.4,')',2i8)", LabelText(r.centreLabel),
                   LabelText(r.neighbourLabel), r.d, r.sd, kCentreCode, r.code);
  }
  out_ << "\n";
}

}  // namespace kaldena
