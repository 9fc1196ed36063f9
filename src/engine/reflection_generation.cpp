#include "engine/reflection_generation.h"

#include <algorithm>
#include <cmath>

#include "engine/reflection_indices.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

constexpr float kDegree = 57.295776f;   // degrees to the radian
constexpr float kPi = 3.14159f;         // as the angle of a reflection is formed
constexpr int kReflectionLimit = 7998;  // leaves room for the doublet of the last one

// Flat-plate absorption with a Guinier tangent angle, normalised at 2 degrees.
struct FlatPlate {
  bool active = false;
  float sa = 0, a0 = 0, c0 = 1;
};

FlatPlate FlatPlateNormalisation(const ReflectionSetup& s) {
  FlatPlate f;
  f.active = s.flatPlateMuT > 0.01f && s.guinierAngle > 0.0f;
  if (!f.active) return f;
  f.sa = std::cos(s.guinierAngle / kDegree);
  const float sb = std::cos((2.0f - s.guinierAngle) / kDegree);
  f.a0 = std::exp(-s.flatPlateMuT / f.sa);
  f.c0 = (std::exp(-s.flatPlateMuT / sb) - f.a0) / (1.0f - f.sa / sb);
  return f;
}

float AbsorptionFactor(const ReflectionSetup& s, const FlatPlate& plate, float theta) {
  if (!s.cylinderAbsorption.empty()) {
    const int i = static_cast<int>(std::lround(theta * 10.0f));
    return s
        .cylinderAbsorption[std::clamp(i, 0, static_cast<int>(s.cylinderAbsorption.size()) - 1)];
  }
  if (!plate.active) return 1.0f;
  const float s2 = std::cos((2.0f * theta - s.guinierAngle) / kDegree);
  return ((std::exp(-s.flatPlateMuT / s2) - plate.a0) / (1.0f - plate.sa / s2)) / plate.c0;
}

float LorentzPolarisation(const ReflectionSetup& s, float absorption, float sinSquared,
                          float theta) {
  const float cos2Theta = 1.0f - 2.0f * sinSquared;
  const float root = sinSquared * std::sqrt(1.0f - sinSquared);
  float lp = absorption / (2.0f * root);
  if (s.xray) lp *= 1.0f + s.monoPolarisation * cos2Theta * cos2Theta;
  if (s.synchrotronPolarisation != 0.0f) {
    const float p = s.synchrotronPolarisation;
    lp = absorption * (1.0f - p + p * s.monoPolarisation * cos2Theta * cos2Theta) / root;
  }
  if (s.guinierAngle > 0.0f) lp /= std::cos((2.0f * theta - s.guinierAngle) / kDegree);
  return lp;
}

// Olivero-Longbothum approximation of the Voigt full width from its Gaussian and Lorentzian
// parts (J. Quant. Spectrosc. Radiat. Transfer 17 (1977) 233).
float VoigtFullWidth(float gaussian, float lorentzian) {
  return 0.5346f * lorentzian + std::sqrt(0.2166f * lorentzian * lorentzian + gaussian * gaussian);
}

float Polynomial(const std::array<float, 3>& c, float p) { return c[0] + c[1] * p + c[2] * p * p; }

int LineCount(const std::array<float, 2>& w) { return (w[1] == 0.0f || w[1] == w[0]) ? 1 : 2; }

// FWHM of a reflection at Bragg angle theta (degrees): the Voigt profiles combine the
// Gaussian width of U, V, W with their Lorentzian width.
float PeakWidth(const ReflectionSetup& s, float theta) {
  const float width = CagliotiWidth(s.halfwidth, std::tan(theta / kDegree));
  if (s.profile != 3 && s.profile != 5) return width;
  return VoigtFullWidth(width, s.shape[0] / std::cos(theta / kDegree));
}

// The full width that decides how far the peaks of the phase reach at two-theta p.
float ReachWidth(const ReflectionSetup& s, float p, bool& small) {
  const float tanTheta = std::tan(p / 2.0f / kDegree);
  const std::array<float, 3>& u = s.halfwidth;
  small = u[0] * tanTheta * tanTheta + u[1] * tanTheta + u[2] < 1e-7f;
  const float width = PeakWidth(s, p / 2.0f);
  if (s.profile != 6) return width;
  return (width + CagliotiWidth(s.rightHalfwidth, tanTheta)) / 2.0f;
}

// Fills the reals of the reflection just added for the line at two-theta p.
void SetReflectionValues(const ReflectionSetup& s, ReflectionStore& store, float p, float theta,
                         float lp) {
  const int i = store.Count() - 1;
  store.Value(ReflectionStore::kHalfwidth, i) = PeakWidth(s, theta);
  store.Value(ReflectionStore::kPosition, i) = p;
  store.Value(ReflectionStore::kLorentzPolarisation, i) = lp * store.Multiplicity(i);
  if (s.profile != 3 && s.profile != 5) {
    store.Value(ReflectionStore::kShapeParameter, i) = Polynomial(s.shape, p);
  }
  if (s.profile == 6) {
    store.Value(ReflectionStore::kRightHalfwidth, i) =
        CagliotiWidth(s.rightHalfwidth, std::tan(theta / kDegree));
    store.Value(ReflectionStore::kRightShape, i) = Polynomial(s.rightShape, p);
  }
}

}  // namespace

float CagliotiWidth(const std::array<float, 3>& uvw, float tanTheta) {
  float squared = uvw[0] * tanTheta * tanTheta + uvw[1] * tanTheta + uvw[2];
  if (squared < 1e-7f) squared = 0.0001f;
  const float width = std::sqrt(squared);
  return width > 0.0f ? width : 0.01f;
}

void ExtendUpperRange(const ReflectionSetup& setup, bool firstPhase, UpperRange& range, float& stop,
                      std::vector<std::string>& listLines) {
  const float userStop = firstPhase ? stop : range.excludedRegions.back()[0] - range.step;
  bool small = false;
  const float width = ReachWidth(setup, userStop, small);
  if (small && !range.smallWidthReported) {
    listLines.push_back(" Halfwidth squared below 1.0E-07 at the end of the range: 0.0001 used");
    range.smallWidthReported = true;
  }
  const float lastPoint = setup.start + range.step * static_cast<float>(kMaxPoints - 10);
  const float top = std::min(userStop + 0.5f * range.base * width, lastPoint);
  if (firstPhase) {
    range.excludedRegions.push_back({userStop + range.step, top});
    stop = top;
  } else if (top > stop) {
    stop = top;
    range.excludedRegions.back()[1] = top;
  }
}

GenerationStatus GenerateReflections(const SpaceGroupInfo& group, const ReflectionSetup& s,
                                     ReflectionStore& store, AbsorptionRange& absorption,
                                     std::vector<std::string>& listLines) {
  if (group.uniqueAxis > 3) {
    listLines.push_back("Error K.GT.3");
    return GenerationStatus::kFailed;
  }
  listLines.push_back("");
  listLines.push_back(FormatLine("(' LAUE SYMMETRY ',A8,' WILL BE USED TO GENERATE INDICES')",
                                 LaueClassLabel(group.laueClass)));
  const FlatPlate plate = FlatPlateNormalisation(s);
  const int lines = LineCount(s.wavelengths);
  const float shortest =
      lines == 2 ? std::min(s.wavelengths[0], s.wavelengths[1]) : s.wavelengths[0];
  const float sinMax = std::sin(s.stop / 2.0f / kDegree);
  const float limit = sinMax * sinMax / (shortest * shortest);
  Hkl limits;
  for (int i = 0; i < 3; ++i) {
    // The packed index holds -128 to 127.
    const float largest = 2.0f * s.cellEdges[i] * std::sqrt(limit);
    limits[i] = std::isfinite(largest) ? static_cast<int>(std::clamp(largest, 0.0f, 127.0f)) : 0;
  }
  const int first = store.Count();
  const IndexSymmetry symmetry(group);
  EquivalentFilter filter(symmetry);
  bool overflow = false;
  ForEachLoopIndex(group, limits, [&](const Hkl& h) {
    if (overflow || h == Hkl{0, 0, 0}) return;
    const float* m = s.metric.data();
    const float q = (m[0] * h[0] * h[0] + m[1] * h[1] * h[1] + m[2] * h[2] * h[2] +
                     m[3] * h[0] * h[1] + m[4] * h[0] * h[2] + m[5] * h[1] * h[2]) /
                    4.0f;
    if (q > limit || symmetry.IsAbsent(h)) return;
    const int multiplicity = filter.Add(h);
    if (multiplicity == 0) return;
    for (int line = 0; line < lines; ++line) {
      const float sinSquared = q * s.wavelengths[line] * s.wavelengths[line];
      if (sinSquared >= 1.0f) continue;
      const float theta = std::atan(std::sqrt(sinSquared / (1.0f - sinSquared))) * 180.0f / kPi;
      const float p = 2.0f * theta + s.zeroShifts[0] + s.zeroShifts[1] * std::cos(theta / kDegree) +
                      s.zeroShifts[2] * std::sin(2.0f * theta / kDegree);
      if (p > s.stop || p < s.start) continue;
      if (store.Count() > kReflectionLimit) {
        overflow = true;
        return;
      }
      const float a = AbsorptionFactor(s, plate, theta);
      absorption.smallest = std::min(absorption.smallest, a);
      absorption.largest = std::max(absorption.largest, a);
      store.Add(ReflectionStore::PackIndex(s.phase, line + 1, h[0], h[1], h[2]), multiplicity);
      SetReflectionValues(s, store, p, theta, LorentzPolarisation(s, a, sinSquared, theta));
    }
  });
  if (overflow) {
    listLines.push_back("Too many reflections");
    return GenerationStatus::kFailed;
  }
  store.SortByPosition(first, store.Count() - 1);
  return GenerationStatus::kOk;
}

}  // namespace kaldena
