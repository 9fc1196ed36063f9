// Operators from generator words: a test point whose coordinates encode the operation is
// mapped through every generator, and each image is decoded back into an operator.
#include <algorithm>
#include <cmath>

#include "crystal/space_group.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

using Point = std::array<float, 3>;

// 2/108, 3/108, 4/108: the decoded rows cannot collide for any operator of a space group.
constexpr Point kTestPoint = {2.0f / 108.0f, 3.0f / 108.0f, 4.0f / 108.0f};
constexpr float kQuarterShift[4] = {0.0f, 0.5f, 0.25f, 0.75f};
constexpr float kSameTolerance = 0.0001f;
constexpr float kNearTolerance = 0.0002f;
// Radius of the cluster of orbit points around a position just off a special set: the images
// of such a position spread over a few times its distance from the set.
constexpr float kClusterRadius = 4.0f * kNearTolerance;

float Reduce(float c) {
  float r = std::fmod(c + 8.0f, 1.0f);
  return r > 0.99999f ? 0.0f : r;
}

Point Reduced(const Point& p) { return {Reduce(p[0]), Reduce(p[1]), Reduce(p[2])}; }

float Source(int code, float x, float y) {
  switch (code) {
    case 0:
      return x;
    case 1:
      return y;
    case 2:
      return -x;
    default:
      return -y;
  }
}

// The one or two images of a point under a word.
int Images(GeneratorWord word, const Point& p, Point images[2]) {
  const auto [x, y, z] = p;
  const int kind = word / 8192;
  if (kind == 2) {
    images[0] = {z, x, y};
    images[1] = {y, z, x};
    return 2;
  }
  if (kind == 1) {
    const int value = (word / 4) % 4;
    if (value == 0) {
      images[0] = {x + 1.0f / 3.0f, y + 2.0f / 3.0f, z + 2.0f / 3.0f};
      images[1] = {x + 2.0f / 3.0f, y + 1.0f / 3.0f, z + 1.0f / 3.0f};
    } else {
      const float t = static_cast<float>(value - 1) / 3.0f;
      images[0] = {-y, x - y, z + t};
      images[1] = {y - x, -x, z - t};
    }
    return 2;
  }
  const int thirds = (word / 2048) % 4;
  const float zThird = thirds == 0 ? 0.0f : thirds == 1 ? 1.0f / 3.0f : 2.0f / 3.0f;
  images[0] = {Source(word % 4, x, y) + kQuarterShift[(word / 4) % 4],
               Source((word / 16) % 4, y, x) + kQuarterShift[(word / 64) % 4],
               ((word / 256) % 2 ? -z : z) + kQuarterShift[(word / 512) % 4] + zThird};
  return 1;
}

bool SamePoint(const Point& a, const Point& b) {
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(a[i] - b[i]) > kSameTolerance) return false;
  }
  return true;
}

// One row of an operator from a decoded coordinate: coefficients of x, y, z and translation.
void DecodeRow(float c, float* row) {
  const int n = static_cast<int>(0.1f + 108.0f * c);
  row[3] = std::fmod(static_cast<float>((n + 4) / 9) / 12.0f, 1.0f);
  const int m = (n + 4) % 9 - 4;
  row[0] = row[1] = row[2] = 0.0f;
  const float sign = m < 0 ? -1.0f : 1.0f;
  switch (m < 0 ? -m : m) {
    case 1:  // x - y for negative m, y - x for positive
      row[0] = -sign;
      row[1] = sign;
      break;
    case 2:
      row[0] = sign;
      break;
    case 3:
      row[1] = sign;
      break;
    case 4:
      row[2] = sign;
      break;
    default:
      break;
  }
}

// The difference b - a of two coordinates taken the short way round the cell.
float Offset(float a, float b) {
  float d = std::fmod(b - a, 1.0f);
  if (d > 0.5f) d -= 1.0f;
  if (d < -0.5f) d += 1.0f;
  return d;
}

bool Within(const Point& a, const Point& b, float tolerance) {
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(Offset(a[i], b[i])) > tolerance) return false;
  }
  return true;
}

bool IsThreeFold(GeneratorWord word) {
  return word == kDiagonalThreeFoldWord || (word > kRhombohedralCentringWord && word < 16384);
}

// One pass of the site search: the orbit of p, the flags of the generators that fix p, the
// multiplicity factor (orbit size over group order) and, when an orbit point lies just beside
// p, the cluster of orbit points around p.
void FindSite(const std::vector<GeneratorWord>& words, const Point& p, SiteSymmetry& site,
              std::vector<Point>& near, bool& nearThreeFold) {
  site = SiteSymmetry{};
  near.clear();
  nearThreeFold = false;
  std::vector<Point> orbit = {p};
  int order = 1;
  for (size_t k = 0; k < words.size(); ++k) {
    const size_t before = orbit.size();
    int count = 1;
    for (size_t i = 0; i < before; ++i) {
      Point images[2];
      count = Images(words[k], orbit[i], images);
      for (int c = 0; c < count; ++c) {
        const Point image = Reduced(images[c]);
        if (i == 0 && Within(image, p, kSameTolerance)) site.flags |= 1 << k;
        bool seen = false;
        for (const Point& q : orbit) seen = seen || Within(q, image, kSameTolerance);
        if (seen) continue;
        orbit.push_back(image);
        if (Within(image, p, kNearTolerance)) {
          nearThreeFold = nearThreeFold || IsThreeFold(words[k]);
          near.push_back(image);
        }
      }
    }
    order *= count + 1;
  }
  site.multiplicityFactor = static_cast<float>(orbit.size()) / static_cast<float>(order);
  if (near.empty()) return;
  near.clear();
  for (size_t i = 1; i < orbit.size(); ++i) {
    if (Within(orbit[i], p, kClusterRadius)) near.push_back(orbit[i]);
  }
}

// The centre of p and the images beside it: the nearest point of the special set.
Point Centre(const Point& p, const std::vector<Point>& near) {
  Point centre = p;
  for (int i = 0; i < 3; ++i) {
    float sum = 0.0f;
    for (const Point& q : near) sum += Offset(p[i], q[i]);
    centre[i] = Reduce(p[i] + sum / static_cast<float>(near.size() + 1));
  }
  return centre;
}

bool OnDiagonalSet(const Point& p) {
  return std::fabs(Offset(p[0], p[1])) <= kSameTolerance ||
         std::fabs(Offset(-p[0], p[1])) <= kSameTolerance;
}

void SetCentricAndPolar(SpaceGroupInfo& info, const std::vector<GeneratorWord>& words) {
  info.centricCode = 1;
  info.polarAxes = 7;
  for (GeneratorWord w : words) {
    if (w == kRhombohedralCentringWord) {
      info.polarAxes = 1;
    } else if (w > kRhombohedralCentringWord && w != kDiagonalThreeFoldWord) {
      info.polarAxes = 4;
    }
  }
  for (GeneratorWord w : words) {
    if (w >= kRhombohedralCentringWord) continue;
    if (RotationPart(w) == kInversionWord) info.centricCode = 2;
    if (w & 3) info.polarAxes &= ~1;
    if (w & 48) info.polarAxes &= ~2;
    if (w & 256) info.polarAxes &= ~4;
  }
}

}  // namespace

bool IsValidGeneratorWord(GeneratorWord word) {
  return word > 0 && word / 8192 <= 2 && (word / 8192 != 2 || word == kDiagonalThreeFoldWord);
}

ExpandStatus ExpandOperators(SpaceGroupInfo& info) {
  std::vector<GeneratorWord> words;
  for (GeneratorWord w : info.generatorWords) {
    if (w == 0 || words.size() == 8) break;
    words.push_back(w);
  }
  info.operators.clear();
  for (GeneratorWord w : words) {
    if (!IsValidGeneratorWord(w)) return ExpandStatus::kWrongOperator;
    if (w < 8192 && RotationPart(w) == kInversionWord && (w & 0x1ECC) != 0) {
      return ExpandStatus::kCentreOffOrigin;
    }
  }
  std::vector<Point> points = {kTestPoint};
  for (GeneratorWord w : words) {
    const size_t before = points.size();
    for (size_t i = 0; i < before; ++i) {
      Point images[2];
      const int count = Images(w, points[i], images);
      for (int k = 0; k < count; ++k) {
        const Point image = Reduced(images[k]);
        // An image on the test point itself would be a generator the group already holds.
        if (SamePoint(image, kTestPoint)) continue;
        if (points.size() == static_cast<size_t>(kMaxOperators)) {
          return ExpandStatus::kWrongOperator;
        }
        points.push_back(image);
      }
    }
  }
  for (const Point& p : points) {
    SymmetryOperator op;
    for (int row = 0; row < 3; ++row) DecodeRow(p[row], &op[4 * row]);
    info.operators.push_back(op);
  }
  SetCentricAndPolar(info, words);
  return ExpandStatus::kOk;
}

ExpandStatus SitePosition(const SpaceGroupInfo& info, std::array<float, 3>& position,
                          SiteSymmetry& site, std::vector<std::string>& listLines) {
  std::vector<GeneratorWord> words;
  for (GeneratorWord w : info.generatorWords) {
    if (w == 0 || words.size() == 8) break;
    if (!IsValidGeneratorWord(w)) return ExpandStatus::kWrongOperator;
    words.push_back(w);
  }
  bool moved = false;
  std::vector<Point> near;
  for (int pass = 1; pass <= 3; ++pass) {
    bool nearThreeFold = false;
    FindSite(words, position, site, near, nearThreeFold);
    if (near.empty()) return moved ? ExpandStatus::kPositionMoved : ExpandStatus::kOk;
    if (pass == 3) break;
    const Point centre = Centre(position, near);
    if (nearThreeFold && !OnDiagonalSet(centre)) {
      listLines.push_back(FormatLine("(' NO X,X,Z OR X,-X,Z SET WAS FOUND FOR',4F9.5)", position[0],
                                     position[1], position[2], site.multiplicityFactor));
      return ExpandStatus::kNoMirrorSet;
    }
    listLines.push_back(FormatLine("(' THE ATOM AT ',3F9.5,' WAS PUT AT',3F9.5)", position[0],
                                   position[1], position[2], centre[0], centre[1], centre[2]));
    position = centre;
    moved = true;
  }
  listLines.insert(listLines.end(),
                   {" THERE ARE UNRESOLVABLE PROBLEMS WITH THE", " POSITION SET",
                    " ATTEMPTS TO DEFINE THE TRUE SITE SYMMETRY", " WERE ABANDONED."});
  return ExpandStatus::kUnresolvable;
}

int SiteFactorOf(const SpaceGroupInfo& info, std::array<float, 3> position) {
  SiteSymmetry site;
  std::vector<std::string> ignored;
  const ExpandStatus status = SitePosition(info, position, site, ignored);
  if (status != ExpandStatus::kOk && status != ExpandStatus::kPositionMoved) return 0;
  if (!(site.multiplicityFactor > 0.0f)) return 0;
  return std::max(1, static_cast<int>(std::lround(1.0f / site.multiplicityFactor)));
}

}  // namespace kaldena
