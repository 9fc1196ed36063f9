#include "tools/fourier_map.h"

#include <algorithm>
#include <cmath>

#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr float kTwoPi = 6.2831853f;

// cos and sin of 2 pi s / 12 for s = 0..11, closed values: sin 60 and cos 30 alike 0.866025.
constexpr float kTwelfthCos[12] = {1.0f,  0.866025f,  0.5f,  0.0f, -0.5f, -0.866025f,
                                   -1.0f, -0.866025f, -0.5f, 0.0f, 0.5f,  0.866025f};
constexpr float kTwelfthSin[12] = {0.0f,  0.5f,  0.866025f,  1.0f,  0.866025f,  0.5f,
                                   0.0f, -0.5f, -0.866025f, -1.0f, -0.866025f, -0.5f};

struct Image {
  std::array<int, 3> hkl{};
  float a = 0.0f, b = 0.0f;
  bool NonZero() const { return a != 0.0f || b != 0.0f; }
};

bool IsPatterson(int type) { return type == 2 || type == 3; }

// A and B of a reflection by the map type. The phase sine is taken as +sqrt(1 - cos^2), never
// negative: a map of a non-centrosymmetric structure is built with that sine.
void MapCoefficients(int type, const FourierFileLine& r, float& a, float& b) {
  const float cosine = std::cos(r.phaseAngle);
  const float sine = std::sqrt(std::max(0.0f, 1.0f - cosine * cosine));
  const float fo = std::sqrt(std::fabs(r.iObs) + 1e-15f);
  const float fc = std::sqrt(r.iCalc + 1e-15f);
  float f = 0.0f;
  switch (type) {
    case 2:
      a = r.iObs;
      b = 0.0f;
      return;
    case 3:
      a = r.iCalc;
      b = 0.0f;
      return;
    case 4:
      f = fo;
      break;
    case 5:
      f = fc;
      break;
    case 6:
      f = fo - fc;
      break;
    default:
      a = b = 0.0f;
      return;
  }
  a = f * cosine;
  b = f * sine;
}

class Expander {
 public:
  Expander(const FourierOptions& options, float factor, std::span<const IndexOperator> operators,
           ExpandedReflections& out)
      : options_(options), factor_(factor), operators_(operators), out_(out),
        images_(operators.size()) {}

  // False when the store is full.
  bool Expand(const std::array<int, 3>& hkl, float a, float b, Reporter& reporter) {
    const bool patterson = IsPatterson(options_.mapType);
    for (size_t n = 0; n < operators_.size(); ++n) {
      const IndexOperator& op = operators_[n];
      Image& image = images_[n];
      for (int i = 0; i < 3; ++i) {
        image.hkl[i] = op.r[i][0] * hkl[0] + op.r[i][1] * hkl[1] + op.r[i][2] * hkl[2];
      }
      if (patterson) {
        image.a = a;
        image.b = 0.0f;
      } else {
        int s = image.hkl[0] * op.twelfths[0] + image.hkl[1] * op.twelfths[1] +
                image.hkl[2] * op.twelfths[2];
        s = ((s % 12) + 12) % 12;
        const float c = kTwelfthCos[s];
        const float sn = kTwelfthSin[s];
        image.a = c * a - sn * b;
        image.b = c * b + sn * a;
      }
      auto& h = image.hkl;
      if (h[0] < 0 || (h[0] == 0 && h[1] < 0) || (h[0] == 0 && h[1] == 0 && h[2] < 0)) {
        h = {-h[0], -h[1], -h[2]};
        image.b = -image.b;
      }
    }
    // The first of equal images survives, whether or not the phases agree.
    for (size_t m = 0; m < images_.size(); ++m) {
      if (!images_[m].NonZero()) continue;
      for (size_t n = m + 1; n < images_.size(); ++n) {
        if (images_[n].hkl == images_[m].hkl) images_[n].a = images_[n].b = 0.0f;
      }
    }
    for (const Image& image : images_) {
      if (!image.NonZero()) continue;
      if (out_.Count() >= kMaxExpandedReflections) {
        reporter.LogLine("Too many expanded reflections");
        return false;
      }
      out_.hkl.push_back(image.hkl);
      out_.a.push_back(image.a * factor_);
      out_.b.push_back(image.b * factor_);
      for (int i = 0; i < 3; ++i) {
        out_.minimum[i] = std::min(out_.minimum[i], image.hkl[i]);
        out_.maximum[i] = std::max(out_.maximum[i], image.hkl[i]);
      }
    }
    return true;
  }

  bool Admits(float a, float b, float sinThetaOverLambda) const {
    return (a != 0.0f || b != 0.0f) && options_.minSinThetaOverLambda <= sinThetaOverLambda &&
           sinThetaOverLambda <= options_.maxSinThetaOverLambda;
  }

 private:
  const FourierOptions& options_;
  float factor_;
  std::span<const IndexOperator> operators_;
  ExpandedReflections& out_;
  std::vector<Image> images_;
};

}  // namespace

IndexOperator IndexOperatorOf(const SymmetryOperator& op) {
  IndexOperator result;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) result.r[i][j] = static_cast<int>(std::lround(op[4 * i + j]));
    result.twelfths[i] = static_cast<int>(12.0f * op[4 * i + 3] + 0.1f);
  }
  auto& r = result.r;
  const bool hexagonal = (r[0][0] + r[0][1] == 0 && r[0][0] != 0) ||
                         (r[0][0] + r[0][1] != 0 && r[1][0] + r[1][1] == 0 && r[1][0] != 0);
  if (hexagonal) {
    if (r[0][0] + r[1][1] != 0) {
      std::swap(r[0][0], r[1][1]);
    } else {
      std::swap(r[0][1], r[1][0]);
    }
  }
  return result;
}

bool ReadFourierFileLine(std::string_view line, FourierFileLine& r) {
  return Read(line, "(4i4,7f12.0)", r.h, r.k, r.l, r.phase, r.iObs, r.sigma,
              r.sinThetaOverLambda, r.iCalc, r.phaseAngle, r.lp, r.twoTheta) == ReadStatus::kOk;
}

FourierStatus ExpandReflections(std::istream& fou, const FourierOptions& options, float volume,
                                std::span<const IndexOperator> operators,
                                ExpandedReflections& out, Reporter& reporter) {
  out = ExpandedReflections{};
  const int type = options.mapType;
  Expander expander(options, 2.0f / volume, operators, out);

  if (type >= 2 && type <= 5 && options.f000 != 0.0f) {
    float a = options.f000 / 2.0f;
    if (IsPatterson(type)) a = 2.0f * a * a;
    if (expander.Admits(a, 0.0f, 0.0f)) {
      ++out.read;
      if (!expander.Expand({0, 0, 0}, a, 0.0f, reporter)) return FourierStatus::kFailed;
    }
  }

  // Map types outside 2..6 have no reflection source.
  const bool readFile = type >= 2 && type <= 6;
  const bool firstPhaseOnly = type >= 3;
  bool first = true;
  float previousTwoTheta = 0.0f;
  std::string line;
  while (readFile && GetTextLine(fou, line)) {
    FourierFileLine r;
    // A line that does not read ends the file as its end mark would.
    if (!ReadFourierFileLine(line, r) || r.h == 999) break;
    if (firstPhaseOnly) {
      // Phase 1 only: the file's second phase starts where two-theta falls back.
      if (r.phase > 1) break;
      if (!first && r.twoTheta < previousTwoTheta - 0.1f) break;
      first = false;
      previousTwoTheta = r.twoTheta;
    }
    if (r.sigma <= 0.0f || r.iObs < options.sigmaCutOff * r.sigma) continue;
    float a = 0.0f, b = 0.0f;
    MapCoefficients(type, r, a, b);
    if (!expander.Admits(a, b, r.sinThetaOverLambda)) continue;
    ++out.read;
    if (!expander.Expand({r.h, r.k, r.l}, a, b, reporter)) return FourierStatus::kFailed;
  }

  if (out.Count() == 0) {
    reporter.LogLine("No expanded reflections");
    return FourierStatus::kFailed;
  }
  reporter.LogLine(FormatLine("(I6,' reflections read')", out.read));
  reporter.LogLine(FormatLine("(I6,' expanded reflections')", out.Count()));
  return FourierStatus::kOk;
}

GridAxis MakeGridAxis(float minimum, float maximum) {
  GridAxis axis;
  axis.minimum = minimum;
  const float length = maximum - minimum;
  const float hundredths = (length / 27.0f) * 100.0f + 0.99999f;
  // Beyond the range of an integer the value is whole already.
  const float whole = std::fabs(hundredths) < 2e9f ? std::trunc(hundredths) : hundredths;
  axis.step = whole / 100.0f;
  if (axis.step <= 0.0f) {
    axis.step = 1.0f;
    axis.points = 1;
    return axis;
  }
  const float points = length / axis.step + 1.00001f;
  axis.points = static_cast<int>(std::clamp(points, 1.0f, static_cast<float>(kMaxGridPoints)));
  return axis;
}

CosineTable::CosineTable() {
  const float increment = kTwoPi / 1000.0f;
  float angle = 0.0f;
  for (int i = 1; i <= 1001; ++i) {
    t_[i] = std::cos(angle);
    angle += increment;
  }
  t_[1] = 1.0f;
  t_[251] = 0.0f;
  t_[501] = -1.0f;
  t_[751] = 0.0f;
  t_[1001] = 1.0f;
}

int CosineTable::Entry(float u) {
  const float scaled = 1000.0f * u + 1.5f;
  // Far outside the table's turn every entry is as good as another; keep the int in range.
  long long i = std::fabs(scaled) < 1e15f ? static_cast<long long>(scaled) : 1;
  if (i > 1001) i -= 1000 * ((i - 2) / 1000);
  if (i < 1) i += 1000 * ((1 - i + 999) / 1000);
  return static_cast<int>(i);
}

void CosineTable::CosSin(float u, float& cosine, float& sine) const {
  const int i = Entry(u);
  cosine = t_[i];
  const int j = i + 250 > 1001 ? i - 750 : i + 250;
  sine = -t_[j];
}

int FourierMap::Scaled(int ix, int iy, int iz) const {
  return static_cast<int>(std::lround(At(ix, iy, iz) * 999.0f / rmax));
}

FourierStatus SumFourierMap(const ExpandedReflections& reflections,
                            const std::array<float, 6>& limits, FourierMap& map,
                            Reporter& reporter) {
  for (int i = 0; i < 3; ++i) map.axes[i] = MakeGridAxis(limits[2 * i], limits[2 * i + 1]);
  const GridAxis& ax = map.axes[0];
  const GridAxis& ay = map.axes[1];
  const GridAxis& az = map.axes[2];
  const int hMin = reflections.minimum[0];
  const int kMin = reflections.minimum[1];
  const int nh = reflections.maximum[0] - hMin + 1;
  const int nk = reflections.maximum[1] - kMin + 1;
  if (2 * nh * nk > kSummationWorkspace) {
    reporter.LogLine("NRSTOR TO LARGE");
    return FourierStatus::kFailed;
  }
  if (2 * ay.points * nh > kSummationWorkspace) {
    reporter.LogLine("NSSTOR TO LARGE");
    return FourierStatus::kFailed;
  }

  const CosineTable table;
  std::vector<float> re1(nh * nk), im1(nh * nk), re2(nh * ay.points), im2(nh * ay.points);
  map.values.assign(static_cast<size_t>(ax.points) * ay.points * az.points, 0.0f);
  float c = 0.0f, s = 0.0f;
  float z = az.minimum;
  for (int iz = 0; iz < az.points; ++iz, z += az.step) {
    std::fill(re1.begin(), re1.end(), 0.0f);
    std::fill(im1.begin(), im1.end(), 0.0f);
    for (int j = 0; j < reflections.Count(); ++j) {
      const auto& hkl = reflections.hkl[j];
      table.CosSin(static_cast<float>(hkl[2]) * z, c, s);
      const int cell = (hkl[0] - hMin) * nk + (hkl[1] - kMin);
      re1[cell] += c * reflections.a[j] + s * reflections.b[j];
      im1[cell] += c * reflections.b[j] - s * reflections.a[j];
    }
    std::fill(re2.begin(), re2.end(), 0.0f);
    std::fill(im2.begin(), im2.end(), 0.0f);
    for (int ih = 0; ih < nh; ++ih) {
      for (int ik = 0; ik < nk; ++ik) {
        const float re = re1[ih * nk + ik];
        const float im = im1[ih * nk + ik];
        const float k = static_cast<float>(ik + kMin);
        float u = k * ay.minimum;
        const float du = k * ay.step;
        for (int iy = 0; iy < ay.points; ++iy, u += du) {
          table.CosSin(u, c, s);
          re2[ih * ay.points + iy] += c * re + s * im;
          im2[ih * ay.points + iy] += c * im - s * re;
        }
      }
    }
    for (int iy = 0; iy < ay.points; ++iy) {
      for (int ih = 0; ih < nh; ++ih) {
        const float re = re2[ih * ay.points + iy];
        const float im = im2[ih * ay.points + iy];
        const float h = static_cast<float>(ih + hMin);
        float x = ax.minimum;
        for (int ix = 0; ix < ax.points; ++ix, x += ax.step) {
          table.CosSin(h * x, c, s);
          map.At(ix, iy, iz) += c * re + s * im;
        }
      }
    }
  }

  float rmax = 0.0f;
  for (float v : map.values) rmax = std::max(rmax, std::fabs(v));
  map.rmax = rmax == 0.0f ? 10.0f : rmax;
  reporter.LogLine("Fourier summation done");
  reporter.LogLine(FormatLine("( 7X,'RMAX = ',F10.5)", map.rmax));
  return FourierStatus::kOk;
}

}  // namespace kaldena
