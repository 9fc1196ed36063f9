#include "crystal/seitz.h"

namespace kaldena {

namespace {

// Translation codes of a word: none, 1/2, 1/4, 3/4.
constexpr int kQuarterTwelfths[4] = {0, 6, 3, 9};

int QuarterCode(int twelfths) {
  for (int code = 0; code < 4; ++code) {
    if (kQuarterTwelfths[code] == twelfths) return code;
  }
  return -1;
}

using Row = std::array<int, 3>;

Row RowOf(const std::array<int, 9>& r, int i) { return {r[3 * i], r[3 * i + 1], r[3 * i + 2]}; }

// x' = x, y, -x, -y and y' = y, x, -y, -x, as rows.
constexpr Row kXSources[4] = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}};
constexpr Row kYSources[4] = {{0, 1, 0}, {1, 0, 0}, {0, -1, 0}, {-1, 0, 0}};

int SourceCode(const Row& row, const Row (&sources)[4]) {
  for (int code = 0; code < 4; ++code) {
    if (sources[code] == row) return code;
  }
  return -1;
}

}  // namespace

RotationMatrix Negated(RotationMatrix m) {
  for (int& v : m) v = -v;
  return m;
}

int Wrap12(int t) { return ((t % kTwelfths) + kTwelfths) % kTwelfths; }

int Seitz::Key() const {
  int key = 0;
  for (int v : r) key = key * 3 + (v + 1);
  for (int v : t) key = key * kTwelfths + v;
  return key;
}

Seitz Compose(const Seitz& a, const Seitz& b) {
  Seitz c;
  for (int i = 0; i < 3; ++i) {
    int shift = a.t[i];
    for (int j = 0; j < 3; ++j) {
      int sum = 0;
      for (int k = 0; k < 3; ++k) sum += a.r[3 * i + k] * b.r[3 * k + j];
      c.r[3 * i + j] = sum;
      shift += a.r[3 * i + j] * b.t[j];
    }
    c.t[i] = Wrap12(shift);
  }
  return c;
}

int Determinant(const std::array<int, 9>& r) {
  return r[0] * (r[4] * r[8] - r[5] * r[7]) - r[1] * (r[3] * r[8] - r[5] * r[6]) +
         r[2] * (r[3] * r[7] - r[4] * r[6]);
}

int RotationOrder(const std::array<int, 9>& r) {
  Seitz power;
  const Seitz step{r, {0, 0, 0}};
  for (int n = 1; n <= 6; ++n) {
    power = Compose(step, power);
    if (power.r == Seitz().r) return n;
  }
  return 0;
}

Seitz Inverse(const Seitz& a) {
  Seitz result;
  const int order = RotationOrder(a.r);
  for (int n = 1; n < order; ++n) result = Compose(a, result);
  return result;
}

std::array<int, 3> IntrinsicTranslation(const Seitz& op) {
  const int order = RotationOrder(op.r);
  if (Determinant(op.r) < 0 && order != 2) return {0, 0, 0};
  // Sum of W^k t over one period, unwrapped, then divided by the order.
  std::array<int, 3> sum{0, 0, 0};
  Seitz power;  // W^k with zero translation
  for (int k = 0; k < order; ++k) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) sum[i] += power.r[3 * i + j] * op.t[j];
    }
    power = Compose(Seitz{op.r, {0, 0, 0}}, power);
  }
  std::array<int, 3> mean;
  for (int i = 0; i < 3; ++i) mean[i] = Wrap12(sum[i] / order);
  return mean;
}

GeneratorWord PackWord(const Seitz& op) {
  const int xs = SourceCode(RowOf(op.r, 0), kXSources);
  const int ys = SourceCode(RowOf(op.r, 1), kYSources);
  const Row z = RowOf(op.r, 2);
  if (xs < 0 || ys < 0 || z[0] != 0 || z[1] != 0) return -1;
  const int tx = QuarterCode(op.t[0]);
  const int ty = QuarterCode(op.t[1]);
  if (tx < 0 || ty < 0) return -1;
  // z in twelfths as a quarter code plus a third.
  for (int thirds = 0; thirds < 3; ++thirds) {
    const int tz = QuarterCode(Wrap12(op.t[2] - 4 * thirds));
    if (tz >= 0) {
      return xs + 4 * tx + 16 * ys + 64 * ty + 256 * (z[2] < 0 ? 1 : 0) + 512 * tz + 2048 * thirds;
    }
  }
  return -1;
}

Seitz UnpackWord(GeneratorWord word) {
  Seitz op;
  const int kind = word / 8192;
  if (kind == 1) {
    const int value = (word / 4) % 4;
    if (value == 0) return Seitz{Seitz().r, {4, 8, 8}};  // obverse centring
    return Seitz{{0, -1, 0, 1, -1, 0, 0, 0, 1}, {0, 0, 4 * (value - 1)}};
  }
  if (kind == 2) return Seitz{{0, 0, 1, 1, 0, 0, 0, 1, 0}, {0, 0, 0}};
  const Row& x = kXSources[word % 4];
  const Row& y = kYSources[(word / 16) % 4];
  const int zSign = (word / 256) % 2 ? -1 : 1;
  op.r = {x[0], x[1], x[2], y[0], y[1], y[2], 0, 0, zSign};
  const int thirds = (word / 2048) % 4;
  op.t = {kQuarterTwelfths[(word / 4) % 4], kQuarterTwelfths[(word / 64) % 4],
          Wrap12(kQuarterTwelfths[(word / 512) % 4] + 4 * (thirds == 0   ? 0
                                                           : thirds == 1 ? 1
                                                                         : 2))};
  return op;
}

}  // namespace kaldena
