// Operators from generator words: a test point whose coordinates encode the operation is
// mapped through every generator, and each image is decoded back into an operator.
#include <cmath>

#include "crystal/space_group.h"

namespace kaldena {

namespace {

using Point = std::array<float, 3>;

// 2/108, 3/108, 4/108: the decoded rows cannot collide for any operator of a space group.
constexpr Point kTestPoint = {2.0f / 108.0f, 3.0f / 108.0f, 4.0f / 108.0f};
constexpr float kQuarterShift[4] = {0.0f, 0.5f, 0.25f, 0.75f};
constexpr float kSameTolerance = 0.0001f;

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

bool ValidWord(GeneratorWord word) {
  return word > 0 && word / 8192 <= 2 && (word / 8192 != 2 || word == kDiagonalThreeFoldWord);
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

ExpandStatus ExpandOperators(SpaceGroupInfo& info) {
  std::vector<GeneratorWord> words;
  for (GeneratorWord w : info.generatorWords) {
    if (w == 0 || words.size() == 8) break;
    words.push_back(w);
  }
  info.operators.clear();
  for (GeneratorWord w : words) {
    if (!ValidWord(w)) return ExpandStatus::kWrongOperator;
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

}  // namespace kaldena
