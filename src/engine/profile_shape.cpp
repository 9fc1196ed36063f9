#include "engine/profile_shape.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/axial_divergence.h"
#include "engine/complex_error_function.h"

namespace kaldena {

namespace {

constexpr float kSigmaPerFwhm = 0.6005612f;  // 1 / (2 sqrt(ln 2))
constexpr float kLorentzScale = 1.2011224f;  // 2 sqrt(ln 2): y = 2 d / H
constexpr float kGaussNorm = 0.93943727f;    // 2 sqrt(ln 2 / pi)
constexpr float kLorentzNorm = 0.63661975f;  // 2 / pi
constexpr float kGaussSlope = 1.5642657f;    // kGaussNorm / kSigmaPerFwhm
constexpr float kLorentzSlope = 1.2732395f;  // 4 / pi
constexpr float kTwoOverSqrtPi = 1.1283792f;
constexpr float kLn2 = 0.6931472f;
// B = cot 2 theta moves by -(1 + B^2) per radian: per degree, like dP, in dTheta.
constexpr float kDegreesPerRadian = 57.29578f;
constexpr float kSmallestVoigt = 1e-5f;  // floor of Re w, keeps the logarithms finite

// The five-peak profiles: offsets (in units of A cot 2 theta) and Simpson weights over 12.
constexpr std::array<float, 5> kFiveOffsets = {0.0f, 0.0625f, 0.25f, 0.5625f, 1.0f};
constexpr std::array<float, 5> kFiveWeights = {1.0f, 4.0f, 2.0f, 4.0f, 1.0f};
constexpr std::array<float, 5> kFiveAsymmetry = {0.0f, 1.0f, 2.0f, 9.0f, 4.0f};  // 4 w_i c_i

// Gaussian and Lorentzian of the scaled offset u = d / (0.6005612 H), with their derivatives
// to u and to y = 1.2011224 u respectively.
struct GaussLorentz {
  float y, g, dG, l, dL;
};

inline GaussLorentz Pair(float u) {
  const float y = kLorentzScale * u;
  const float g = std::exp(-u * u);
  const float l = 1.0f / (1.0f + y * y);
  return {y, g, -2.0f * u * g, l, -2.0f * y * l * l};
}

// Pseudo-Voigt at offset d (profiles 1, 8, each side of 6, and 7 without divergence). Sets
// value, dH, dEta, dP as logarithmic derivatives; the rest untouched.
inline void PseudoVoigt(float d, float h, float eta, PeakResult& out) {
  const float u = d / (kSigmaPerFwhm * h);
  const GaussLorentz gl = Pair(u);
  const float gauss = kGaussNorm * (1.0f - eta), lorentz = kLorentzNorm * eta;
  const float v = (gauss * gl.g + lorentz * gl.l) / h;
  out.value = v;
  if (v == 0.0f) {  // far Gaussian tail underflowed: nothing to differentiate
    out.dH = out.dEta = out.dP = 0.0f;
    return;
  }
  const float hv = 1.0f / (h * v);
  const float t = gauss * u * gl.dG + lorentz * gl.y * gl.dL;
  out.dH = -1.0f / h - t * hv / h;
  out.dEta = (kLorentzNorm * gl.l - kGaussNorm * gl.g) * hv;
  out.dP = -(kGaussSlope * (1.0f - eta) * gl.dG + kLorentzSlope * eta * gl.dL) * hv / h;
}

// Pearson VII with m = eta. The derivative of the normalisation to m is left out.
void PearsonSeven(float d, float h, float m, PeakResult& out) {
  const float r = (d / h) * (d / h);
  const float c = std::exp2(1.0f / m) - 1.0f;
  const float b = 1.0f + 4.0f * c * r;
  const float lnB = std::log(b);
  const float norm = kTwoOverSqrtPi * std::sqrt(c) * GammaApprox(m) / GammaApprox(m - 0.5f);
  out.value = norm * std::exp(-m * lnB) / h;
  const float e = 4.0f * m * c / b;
  out.dH = (-1.0f + 2.0f * e * r) / h;
  out.dEta = kLn2 * 4.0f * (c + 1.0f) * r / (b * m) - lnB;
  out.dP = 2.0f * e * d / (h * h);
}

// Re w and its derivatives to u and w for the Voigt profiles.
struct VoigtTerms {
  float r, ru, rw;
};

inline VoigtTerms Voigt(float u, float w) {
  const std::complex<double> z = ComplexErrorFunction(u, w);
  const float r = std::max(static_cast<float>(z.real()), kSmallestVoigt);
  const float i = static_cast<float>(z.imag());
  return {r, 2.0f * w * i - 2.0f * u * r, 2.0f * w * r + (-kTwoOverSqrtPi + 2.0f * u * i)};
}

// Voigt of Gaussian FWHM h and Lorentzian FWHM eta / cos(theta) (profiles 3 and 9).
void VoigtProfile(float d, float h, float eta, float tanTheta, PeakResult& out) {
  const float s = kSigmaPerFwhm * h;
  const float c = std::sqrt(1.0f + tanTheta * tanTheta);
  const float u = d / s;
  const float w = 0.5f * eta * c / s;
  const VoigtTerms t = Voigt(u, w);
  out.value = kGaussNorm * t.r / h;
  // With value = 0.93943727 R / H the logarithmic derivatives reduce to ratios of R.
  const float inv = 1.0f / t.r;
  out.dH = -(t.r + u * t.ru + w * t.rw) * inv / h;
  out.dEta = 0.5f * t.rw * c * inv / s;
  out.dP = -t.ru * inv / s;
}

// B = cot 2 theta from tan theta, which sets the spread of the five peaks.
inline float CotTwoTheta(float tanTheta) {
  return (1.0f - tanTheta * tanTheta) / (2.0f * tanTheta);
}

// Five pseudo-Voigts displaced towards low angle by c_i A B (profile 4).
void FivePseudoVoigt(const PeakInput& in, PeakResult& out) {
  const float d = in.x - in.p;
  const float s = kSigmaPerFwhm * in.H;
  const float b = CotTwoTheta(in.tanTheta);
  const float shift = in.A * b;
  float sumG = 0, sumL = 0, sumUdG = 0, sumYdL = 0, sumDG = 0, sumDL = 0, asymG = 0, asymL = 0;
  for (int i = 0; i < 5; ++i) {
    const float u = (d + kFiveOffsets[i] * shift) / s;
    const GaussLorentz gl = Pair(u);
    const float w = kFiveWeights[i];
    sumG += w * gl.g;
    sumL += w * gl.l;
    sumUdG += w * u * gl.dG;
    sumYdL += w * gl.y * gl.dL;
    sumDG += w * gl.dG;
    sumDL += w * gl.dL;
    asymG += kFiveAsymmetry[i] * gl.dG;
    asymL += kFiveAsymmetry[i] * gl.dL;
  }
  const float eta = in.eta, h = in.H;
  const float v = (0.07828644f * (1.0f - eta) * sumG + 0.053051647f * eta * sumL) / h;
  out.value = v;
  if (v == 0.0f) return;
  const float inv = 1.0f / (h * h * v);
  out.dH = -1.0f / h - (0.07828644f * (1.0f - eta) * sumUdG + 0.053051647f * eta * sumYdL) * inv;
  out.dEta = (0.053051647f * sumL - 0.07828644f * sumG) * h * inv;
  // dA / B, kept apart so that dTheta needs no division by B (0 at 2 theta = 90).
  const float dAperB = (0.03258887f * (1.0f - eta) * asymG + 0.026525823f * eta * asymL) * inv;
  out.dA = b * dAperB;
  out.dP = -(0.13035548f * (1.0f - eta) * sumDG + 0.10610329f * eta * sumDL) * inv;
  out.dTheta = out.dP - in.A * dAperB * (1.0f + b * b) / kDegreesPerRadian;
}

// Five Voigts displaced as in profile 4 (profile 5).
void FiveVoigt(const PeakInput& in, PeakResult& out) {
  const float d = in.x - in.p;
  const float h = in.H;
  const float s = kSigmaPerFwhm * h;
  const float c = std::sqrt(1.0f + in.tanTheta * in.tanTheta);
  const float w = 0.5f * in.eta * c / s;
  const float b = CotTwoTheta(in.tanTheta);
  const float shift = in.A * b;
  float sumR = 0, sumWidth = 0, sumRw = 0, sumRu = 0, asym = 0;
  for (int i = 0; i < 5; ++i) {
    const float u = (d + kFiveOffsets[i] * shift) / s;
    const VoigtTerms t = Voigt(u, w);
    const float wi = kFiveWeights[i];
    sumR += wi * t.r;
    sumWidth += wi * (u * t.ru + w * t.rw);
    sumRw += wi * t.rw;
    sumRu += wi * t.ru;
    asym += kFiveAsymmetry[i] * t.ru;
  }
  const float v = 0.07828644f * sumR / h;
  out.value = v;
  const float inv = 1.0f / (h * h * v);
  out.dH = -(1.0f / h + 0.07828644f * sumWidth * inv);
  out.dEta = 0.06517774f * c * sumRw * inv;
  const float dAperB = 0.03258887f * asym * inv;
  out.dA = b * dAperB;
  out.dP = -0.13035548f * sumRu * inv;
  out.dTheta = out.dP - in.A * dAperB * (1.0f + b * b) / kDegreesPerRadian;
}

// Split pseudo-Voigt: each side its own width and shape, scaled to meet at d = 0 and to keep
// unit area. The factor's own derivatives are left out: each side's derivatives are those of
// its pseudo-Voigt.
void SplitPseudoVoigt(const PeakInput& in, PeakResult& out) {
  const float d = in.x - in.p;
  const float left = (kGaussNorm * (1.0f - in.eta) + kLorentzNorm * in.eta) / in.H;
  const float right = (kGaussNorm * (1.0f - in.etaR) + kLorentzNorm * in.etaR) / in.HR;
  const float ratio = right / left;
  const float factor = 2.0f / (1.0f + ratio);
  if (d <= 0.0f) {
    PseudoVoigt(d, in.H, in.eta, out);
    out.value *= factor * ratio;
  } else {
    PseudoVoigt(d, in.HR, in.etaR, out);
    out.value *= factor;
    out.dHR = out.dH;
    out.dEtaR = out.dEta;
    out.dH = out.dEta = 0.0f;
  }
}

void AxialProfile(const PeakInput& in, PeakResult& out) {
  const float hl = in.HL * in.scaleDivergence;
  if (in.SL == 0.0f && hl == 0.0f) {
    PseudoVoigt(in.x - in.p, in.H, in.eta, out);
    return;
  }
  AxialDivergenceProfile(in, hl, out);
  const float v = out.value;
  if (v == 0.0f) {
    out = PeakResult{};
    return;
  }
  out.dP /= v;
  out.dH /= v;
  out.dEta /= v;
  out.dSL /= v;
  out.dHL /= v;
}

}  // namespace

ProfileStatus PeakShape(int profile, const PeakInput& in, PeakResult& out,
                        std::vector<std::string>& listLines) {
  out = PeakResult{};
  switch (profile) {
    case 1:
    case 8:  // the transparency shift is the caller's
      PseudoVoigt(in.x - in.p, in.H, in.eta, out);
      break;
    case 2:
      PearsonSeven(in.x - in.p, in.H, in.eta, out);
      break;
    case 3:
      VoigtProfile(in.x - in.p, in.H, in.eta, in.tanTheta, out);
      break;
    case 4:
      FivePseudoVoigt(in, out);
      return ProfileStatus::kOk;  // dTheta set apart from dP
    case 5:
      FiveVoigt(in, out);
      return ProfileStatus::kOk;
    case 6:
      SplitPseudoVoigt(in, out);
      break;
    case 7:
      AxialProfile(in, out);
      break;
    case 9:
      // The caller's width rows are to H, so dH carries the factor by the chain rule.
      VoigtProfile(in.x - in.p, in.H * in.widthFactor, in.eta, in.tanTheta, out);
      out.dH *= in.widthFactor;
      break;
    default:
      listLines.emplace_back("ILLEGAL PROFILE FUNCTION REQUEST");
      return ProfileStatus::kIllegalProfile;
  }
  out.dTheta = out.dP;
  return ProfileStatus::kOk;
}

float GammaApprox(float x) {
  if (x > 57.0f) return 100.0f;
  if (x == 1.0f || x == 2.0f) return 1.0f;
  // Up or down to (1, 2] by Gamma(x + 1) = x Gamma(x). Near the poles at 0, -1, -2, ... the
  // value is 1e-6; so is everything below -57, where the loop would run on a float that no
  // longer changes by 1 (the profiles never come there: Pearson's m - 1/2 is above 0.1).
  float product = 1.0f, divisor = 1.0f;
  while (x < 1.0f) {
    if (x < -57.0f || std::abs(x - std::nearbyint(x)) <= 1e-6f) return 1e-6f;
    divisor *= x;
    x += 1.0f;
  }
  if (x == 1.0f || x == 2.0f) return 1.0f / divisor;
  while (x > 2.0f) {
    x -= 1.0f;
    product *= x;
  }
  const float z = x - 1.0f;
  const float poly =
      1.0f +
      z * (-0.5771017f +
           z * (0.985854f +
                z * (-0.8764218f +
                     z * (0.8328212f + z * (-0.5684729f + z * (0.2548205f - 0.0514993f * z))))));
  return product * poly / divisor;
}

}  // namespace kaldena
