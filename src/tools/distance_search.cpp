#include "tools/distance_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "util/cell.h"

namespace kaldena {

namespace {

constexpr float kSelfLimit = 1e-6f;     // a squared length this small is the atom itself
constexpr float kSameImage = 1e-5f;     // images of one atom closer than this repeat each other
constexpr float kTieTolerance = 1e-5f;  // coordinates this close are tied by the site
constexpr float kFlatSine = 1e-5f;      // below this sine the angle's derivative is dropped

float Cos(float degrees) { return std::cos(degrees / kDegreesPerRadian); }
float Sin(float degrees) { return std::sin(degrees / kDegreesPerRadian); }

// A coordinate taken into (0, 1] from 1 + x, for the special-position test.
float TieValue(float x) {
  float u = 1.0f + x;
  if (u > 1.0f) u -= std::ceil(u - 1.0f);
  return u;
}

float Doubled(float u) {
  float u2 = 2.0f * u;
  if (u2 > 1.0f) u2 -= 1.0f;
  return u2;
}

// Whether the site ties the second coordinate to the first (y = x, y = 2x, x = 2y and the
// like); then the scale of the second by the first.
bool Tied(float x, float y, float& scale) {
  const float u = TieValue(x), v = TieValue(y);
  const float u2 = Doubled(u), v2 = Doubled(v);
  const float tests[] = {u - v, 1 - u + v, u2 - v, 1 - u2 + v, v2 - u, 1 - v2 + u};
  for (float t : tests) {
    if (std::abs(t) <= kTieTolerance) {
      scale = u != 0.0f ? v / u : 1.0f;
      return true;
    }
  }
  return false;
}

}  // namespace

int CrystalSystemCode(const CellParameters& c) {
  const float a = c[0], b = c[1], cc = c[2], alpha = c[3], beta = c[4], gamma = c[5];
  int code = 1;
  if (a == b) code = 6;
  if (a == b && gamma == 120.0f) code = 4;
  if (a == b && b == cc) code = 5;
  if (a == b && b == cc && alpha == 90.0f) code = 7;
  if (a != b) code = 1;
  if (a != b && alpha == 90.0f) code = 2;
  if (a != b && alpha == 90.0f && beta == 90.0f && gamma == 90.0f) code = 3;
  return code;
}

std::string_view CrystalSystemName(int code) {
  static constexpr std::string_view kNames[] = {"Triclinic", "Monoclinic",   "Orthorhombic",
                                                "Hexagonal", "Rhombohedral", "Tetragonal",
                                                "Cubic"};
  if (code < 1 || code > 7) return "Unknown";
  return kNames[code - 1];
}

DistanceGeometry MakeDistanceGeometry(const CellParameters& cell,
                                      const std::array<float, 6>& cellSd, float dmin, float dmax) {
  DistanceGeometry g;
  g.cell = cell;
  for (int i = 0; i < 6; ++i) g.cellSd[i] = i < 3 ? cellSd[i] : cellSd[i] / kDegreesPerRadian;
  const UnitCell direct{cell[0], cell[1], cell[2], cell[3], cell[4], cell[5]};
  g.volume = CellVolume(direct);
  if (const auto r = ReciprocalCell(direct)) {
    g.reciprocal = {r->a, r->b, r->c, r->alpha, r->beta, r->gamma};
  }
  for (int i = 0; i < 3; ++i) {
    g.cosAngle[i] = Cos(cell[3 + i]);
    g.sinAngle[i] = Sin(cell[3 + i]);
    g.cosStar[i] = Cos(g.reciprocal[3 + i]);
  }
  if (g.reciprocal[0] == 0.0f) g.cosStar = {0, 0, 0};  // a cell of no volume: no correlation
  g.a2 = cell[0] * cell[0];
  g.b2 = cell[1] * cell[1];
  g.c2 = cell[2] * cell[2];
  g.abCosGamma = cell[0] * cell[1] * g.cosAngle[2];
  g.acCosBeta = cell[0] * cell[2] * g.cosAngle[1];
  g.bcCosAlpha = cell[1] * cell[2] * g.cosAngle[0];
  g.system = CrystalSystemCode(cell);
  g.correlation = {{{1, 2 * g.cosStar[2], 2 * g.cosStar[1]}, {0, 1, 2 * g.cosStar[0]}, {0, 0, 1}}};
  for (int i = 0; i < 3; ++i) g.bound[i] = dmax * cell[i] * g.reciprocal[i];
  g.dmin = dmin;
  g.dmax = dmax;
  g.dmin2 = dmin * dmin;
  g.dmax2 = dmax * dmax;
  return g;
}

float SquaredDistance(const DistanceGeometry& g, float dx, float dy, float dz) {
  const float a = g.cell[0] * dx, b = g.cell[1] * dy, c = g.cell[2] * dz;
  return a * a + b * b + c * c + 2 * b * c * g.cosAngle[0] + 2 * a * c * g.cosAngle[1] +
         2 * a * b * g.cosAngle[2];
}

int PositionTable::PositionsOf(int atom) const {
  const int stored = static_cast<int>(positions.size()) - atom * operators;
  return std::clamp(stored, 0, operators);
}

PositionTable ExpandPositions(std::span<const DistanceAtom> atoms,
                              std::span<const SymmetryOperator> operators) {
  PositionTable table;
  table.operators = static_cast<int>(operators.size());
  for (size_t a = 0; a < atoms.size(); ++a) {
    const size_t first = table.positions.size();
    for (size_t o = 0; o < operators.size(); ++o) {
      if (table.positions.size() + 1 > static_cast<size_t>(kMaxDistancePositions)) {
        table.complete = false;
        return table;
      }
      const SymmetryOperator& op = operators[o];
      const std::array<float, 3>& x = atoms[a].xyz;
      ExpandedPosition p;
      p.op = static_cast<int>(o) + 1;
      for (int i = 0; i < 3; ++i) {
        float v = op[4 * i] * x[0] + op[4 * i + 1] * x[1] + op[4 * i + 2] * x[2] + op[4 * i + 3];
        // One step each way only: input coordinates are expected in (-1, 2).
        if (v < 0.0f) {
          v += 1.0f;
          p.shift[i] += 1;
        }
        if (v >= 1.0f) {
          v -= 1.0f;
          p.shift[i] -= 1;
        }
        p.xyz[i] = v;
      }
      // A plain difference, no wrap round the cell: 0.000001 and 0.999999 stay apart.
      for (size_t e = first; e < table.positions.size(); ++e) {
        const auto& q = table.positions[e].xyz;
        if (std::abs(q[0] - p.xyz[0]) <= kSameImage && std::abs(q[1] - p.xyz[1]) <= kSameImage &&
            std::abs(q[2] - p.xyz[2]) <= kSameImage) {
          p.xyz[0] = kDuplicateMarker;
          break;
        }
      }
      table.positions.push_back(p);
    }
  }
  return table;
}

std::string LabelText(const std::array<char, 4>& label) {
  return std::string(label.data(), label.size());
}

namespace {

std::array<char, 4> LabelField(std::string_view text) {
  std::array<char, 4> field{' ', ' ', ' ', ' '};
  for (size_t i = 0; i < field.size() && i < text.size(); ++i) field[i] = text[i];
  return field;
}

}  // namespace

std::array<float, 6> CellTerms(const DistanceGeometry& g, const std::array<float, 3>& diff,
                               float d) {
  std::array<float, 6> t{};
  if (d <= 0.0f) return t;
  const float dx = diff[0], dy = diff[1], dz = diff[2];
  const float a = g.cell[0] * dx, b = g.cell[1] * dy, c = g.cell[2] * dz;
  const auto& cs = g.cosAngle;
  t[0] = g.cellSd[0] / d * dx * (a + c * cs[1] + b * cs[2]);
  t[1] = g.cellSd[1] / d * dy * (b + c * cs[0] + a * cs[2]);
  t[2] = g.cellSd[2] / d * dz * (c + b * cs[0] + a * cs[1]);
  // Free angles: beta in triclinic, monoclinic and rhombohedral cells, alpha and gamma only in
  // the triclinic and rhombohedral ones.
  if (g.system == 1 || g.system == 2 || g.system == 5) {
    t[4] = -g.cellSd[4] / d * a * c * g.sinAngle[1];
  }
  if (g.system == 1 || g.system == 5) {
    t[3] = -g.cellSd[3] / d * b * c * g.sinAngle[0];
    t[5] = -g.cellSd[5] / d * a * b * g.sinAngle[2];
  }
  return t;
}

std::array<float, 6> MergeCellTerms(std::array<float, 6> t, int system, bool forAngle) {
  if (system >= 4) {
    t[0] += t[1];
    t[1] = 0;
  }
  // Tetragonal c is merged into a for a distance, a tie of old standing that is kept.
  const bool mergeC = forAngle ? (system == 5 || system == 7) : (system >= 5);
  if (mergeC) {
    t[0] += t[2];
    t[2] = 0;
  }
  const bool mergeAngles = forAngle ? system == 5 : (system == 5 || system == 6);
  if (mergeAngles) {
    t[3] += t[4] + t[5];
    t[4] = t[5] = 0;
  }
  return t;
}

std::array<float, 3> CoordinateTerms(const DistancePhaseModel& model, int atom, int op,
                                     const std::array<float, 3>& diff, float d, float sign) {
  std::array<float, 3> terms{};
  if (d <= 0.0f || op < 1 || op > static_cast<int>(model.operators.size())) return terms;
  const DistanceGeometry& g = model.geometry;
  const SymmetryOperator& r = model.operators[op - 1];
  const float dx = diff[0], dy = diff[1], dz = diff[2];
  std::array<float, 3> derivative{};
  for (int i = 0; i < 3; ++i) {
    // The image's coordinates move with input coordinate i along column i of the rotation.
    const float r1 = r[i], r2 = r[4 + i], r3 = r[8 + i];
    derivative[i] =
        sign *
        (dx * g.a2 * r1 + dy * g.b2 * r2 + dz * g.c2 * r3 + (dy * r1 + dx * r2) * g.abCosGamma +
         (dx * r3 + dz * r1) * g.acCosBeta + (dy * r3 + dz * r2) * g.bcCosAlpha) /
        d;
  }
  const DistanceAtom& a = model.atoms[atom];
  terms = {derivative[0] * a.sd[0], derivative[1] * a.sd[1], derivative[2] * a.sd[2]};
  float scale = 1;
  if (g.system > 3 && Tied(a.xyz[0], a.xyz[1], scale)) {
    terms[0] += derivative[1] * a.sd[0] * scale;
    terms[1] = 0;
  }
  if ((g.system == 5 || g.system == 7) && Tied(a.xyz[0], a.xyz[2], scale)) {
    terms[0] += derivative[2] * a.sd[0] * scale;
    terms[2] = 0;
  }
  return terms;
}

float CorrelatedSquares(const DistanceGeometry& g, const std::array<float, 3>& t) {
  const auto& k = g.correlation;
  return t[0] * t[0] + t[1] * t[1] + t[2] * t[2] + k[0][1] * t[0] * t[1] + k[0][2] * t[0] * t[2] +
         k[1][2] * t[1] * t[2];
}

int SearchCentre(const DistancePhaseModel& model, int centre, const DistanceSink& sink) {
  const DistanceGeometry& g = model.geometry;
  const PositionTable& table = model.positions;
  if (table.PositionsOf(centre) < 1) return 0;
  const ExpandedPosition& home = table.At(centre, 1);
  const std::array<float, 3> c = {home.xyz[0] + 1, home.xyz[1] + 1, home.xyz[2] + 1};
  // One more cell on the positive side only when dmax passes the edge.
  int trials[3];
  for (int i = 0; i < 3; ++i) trials[i] = g.dmax > g.cell[i] ? 4 : 3;
  const std::string centreLabel = model.atoms[centre].label;
  int count = 0;
  for (int atom = 0; atom < static_cast<int>(model.atoms.size()); ++atom) {
    const int images = table.PositionsOf(atom);
    for (int op = 1; op <= images; ++op) {
      const ExpandedPosition& p = table.At(atom, op);
      if (p.xyz[0] == kDuplicateMarker) continue;
      for (int i = 0; i < trials[0]; ++i) {
        bool nextPlane = false;
        for (int j = 0; j < trials[1] && !nextPlane; ++j) {
          for (int k = 0; k < trials[2]; ++k) {
            if (count >= kMaxDistancesPerCentre) {
              if (sink.tooMany) sink.tooMany(count, centreLabel);
              continue;
            }
            const float dx = p.xyz[0] + i - c[0];
            if (std::abs(g.cell[0] * dx) > g.bound[0]) {
              nextPlane = true;
              break;
            }
            const float dy = p.xyz[1] + j - c[1];
            if (std::abs(g.cell[1] * dy) > g.bound[1]) break;
            const float dz = p.xyz[2] + k - c[2];
            if (std::abs(g.cell[2] * dz) > g.bound[2]) continue;
            const float d2 = SquaredDistance(g, dx, dy, dz);
            if (d2 <= kSelfLimit || d2 > g.dmax2 || d2 < g.dmin2) continue;

            DistanceRecord r;
            r.d = std::sqrt(d2);
            const int digits[3] = {5 + i - 1 + p.shift[0], 5 + j - 1 + p.shift[1],
                                   5 + k - 1 + p.shift[2]};
            r.code = 1000 * op + 100 * (digits[0] - home.shift[0]) +
                     10 * (digits[1] - home.shift[1]) + (digits[2] - home.shift[2]);
            r.neighbourLabel = LabelField(model.atoms[atom].label);
            r.centreLabel = LabelField(centreLabel);
            r.neighbour = {p.xyz[0] + i - 1, p.xyz[1] + j - 1, p.xyz[2] + k - 1};
            r.centre = home.xyz;
            r.neighbourOp = op;
            r.centreOp = home.op;
            r.neighbourAtom = atom;
            r.centreAtom = centre;
            const std::array<float, 3> diff = {dx, dy, dz};
            r.cellTerms = CellTerms(g, diff, r.d);
            std::array<float, 3> tn = CoordinateTerms(model, atom, op, diff, r.d, 1.0f);
            std::array<float, 3> tc = CoordinateTerms(model, centre, home.op, diff, r.d, -1.0f);
            for (int e = 0; e < 3; ++e) {
              r.coordTerms[e] = tn[e];
              r.coordTerms[3 + e] = tc[e];
            }
            if (atom == centre) {
              for (int e = 0; e < 3; ++e) {
                tn[e] += tc[e];
                tc[e] = 0;
              }
            }
            float sum = CorrelatedSquares(g, tn) + CorrelatedSquares(g, tc);
            for (float t : MergeCellTerms(r.cellTerms, g.system, false)) sum += t * t;
            r.sd = std::sqrt(std::max(sum, 0.0f));
            if (sink.accept) sink.accept(r);
            ++count;
          }
        }
      }
    }
  }
  return count;
}

std::vector<AngleRecord> CentreAngles(const DistancePhaseModel& model,
                                      std::span<const DistanceRecord> distances, float amin,
                                      float amax) {
  const DistanceGeometry& g = model.geometry;
  std::vector<AngleRecord> angles;
  auto inRange = [&](float d) { return d >= amin && d <= amax; };
  for (size_t m = 0; m < distances.size(); ++m) {
    const DistanceRecord& dm = distances[m];
    if (!inRange(dm.d)) continue;
    for (size_t n = m + 1; n < distances.size(); ++n) {
      const DistanceRecord& dn = distances[n];
      if (!inRange(dn.d)) continue;
      const std::array<float, 3> diff = {dn.neighbour[0] - dm.neighbour[0],
                                         dn.neighbour[1] - dm.neighbour[1],
                                         dn.neighbour[2] - dm.neighbour[2]};
      const float d32 = SquaredDistance(g, diff[0], diff[1], diff[2]);
      if (d32 <= kSelfLimit) continue;
      const float d1 = dm.d, d2 = dn.d, d3 = std::sqrt(d32);
      const float cosine = (d1 * d1 + d2 * d2 - d32) / (2 * d1 * d2);
      const float sine = std::sqrt(std::abs(1 - cosine * cosine));
      AngleRecord a;
      a.first = static_cast<int>(m);
      a.second = static_cast<int>(n);
      if (cosine == 0.0f) {
        a.angle = 90.0f;
      } else {
        a.angle = std::atan(sine / cosine) * kDegreesPerRadian;
        if (a.angle <= 0.0f) a.angle += 180.0f;
      }
      const float k1 = 1 / d2 - cosine / d1, k2 = 1 / d1 - cosine / d2, k3 = -d3 / (d1 * d2);
      const float k4 = sine <= kFlatSine ? 0.0f : -1 / sine;

      const std::array<float, 6> cell3 = CellTerms(g, diff, d3);
      std::array<float, 6> cell{};
      for (int p = 0; p < 6; ++p) {
        cell[p] = (k1 * dm.cellTerms[p] + k2 * dn.cellTerms[p] + k3 * cell3[p]) * k4;
      }
      // The neighbour m is the near end of the third distance, n its far end.
      const std::array<float, 3> m3 =
          CoordinateTerms(model, dm.neighbourAtom, dm.neighbourOp, diff, d3, -1.0f);
      const std::array<float, 3> n3 =
          CoordinateTerms(model, dn.neighbourAtom, dn.neighbourOp, diff, d3, 1.0f);
      std::array<float, 3> tm{}, tc{}, tn{};
      for (int e = 0; e < 3; ++e) {
        tm[e] = (k1 * dm.coordTerms[e] + k3 * m3[e]) * k4;
        tc[e] = (k1 * dm.coordTerms[3 + e] + k2 * dn.coordTerms[3 + e]) * k4;
        tn[e] = (k2 * dn.coordTerms[e] + k3 * n3[e]) * k4;
      }
      auto merge = [](std::array<float, 3>& into, std::array<float, 3>& from) {
        for (int e = 0; e < 3; ++e) {
          into[e] += from[e];
          from[e] = 0;
        }
      };
      const int centreAtom = dm.centreAtom;
      if (centreAtom == dm.neighbourAtom) merge(tc, tm);
      if (centreAtom == dn.neighbourAtom) merge(tc, tn);
      if (dm.neighbourAtom == dn.neighbourAtom) merge(tm, tn);
      float sum = CorrelatedSquares(g, tm) + CorrelatedSquares(g, tc) + CorrelatedSquares(g, tn);
      for (float t : MergeCellTerms(cell, g.system, true)) sum += t * t;
      a.sd = std::sqrt(std::max(sum, 0.0f)) * kDegreesPerRadian;

      a.labels[0] = LabelText(dm.neighbourLabel);
      a.labels[1] = LabelText(dm.centreLabel);
      a.labels[2] = LabelText(dn.neighbourLabel);
      a.codes[0] = dm.code;
      a.codes[2] = dn.code;
      a.xyz[0] = dm.neighbour;
      a.xyz[1] = dm.centre;
      a.xyz[2] = dn.neighbour;
      a.d12 = d1;
      a.d23 = d2;
      a.d13 = d3;
      angles.push_back(std::move(a));
    }
  }
  return angles;
}

void SortByLength(std::vector<DistanceRecord>& distances) {
  for (size_t i = 0; i + 1 < distances.size(); ++i) {
    for (size_t j = i + 1; j < distances.size(); ++j) {
      if (distances[i].d > distances[j].d) std::swap(distances[i], distances[j]);
    }
  }
}

}  // namespace kaldena
