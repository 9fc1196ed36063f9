#include "engine/axial_divergence.h"

#include <algorithm>
#include <cmath>

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;
constexpr float kGaussScale = 1.6651092f;  // 2 sqrt(ln 2)
constexpr float kGaussNorm = 0.93943727f;
constexpr float kLorentzNorm = 0.63661975f;

// The pseudo-Voigt under the kernel, at offset d from its centre, with its derivatives to the
// centre, the width and the mixing. Its Gaussian is cut beyond 6 H, where it is below 1e-43.
struct PlainVoigt {
  float value, dP, dH, dEta;
};

PlainVoigt PlainPseudoVoigt(float d, float h, float eta) {
  float g = 0.0f, gP = 0.0f, gH = 0.0f;
  if (std::abs(d) / h <= 6.0f) {
    const float q = kGaussScale * d / h;
    g = kGaussNorm * std::exp(-q * q) / h;
    gP = 2.0f * kGaussScale * kGaussScale * d * g / (h * h);
    gH = (-1.0f + 2.0f * q * q) * g / h;
  }
  const float den = 4.0f * d * d + h * h;
  const float l = kLorentzNorm * h / den;
  const float lP = 8.0f * kLorentzNorm * h * d / (den * den);
  const float lH = kLorentzNorm * (4.0f * d * d - h * h) / (den * den);
  return {(1.0f - eta) * g + eta * l, (1.0f - eta) * gP + eta * lP, (1.0f - eta) * gH + eta * lH,
          l - g};
}

}  // namespace

std::span<const AxialNode> AxialNodes(float p, float pmin) {
  // K = int(400 (p - pmin)) in degrees. Beyond 90 degrees the kernel lies above p and the
  // difference is negative; its size is what counts, else back reflections would always get
  // the 6-point rule and shapes off by up to a third of the peak at 160 degrees.
  const int k = static_cast<int>(400.0f * std::abs(p - pmin));
  std::size_t j = 0;
  while (j + 1 < kAxialNodeCounts.size() && kAxialNodeCounts[j] < k) ++j;
  return {kAxialNodeTable.data() + kAxialNodeOffsets[j] + 1,
          static_cast<std::size_t>(kAxialNodeCounts[j] / 2)};
}

// The kernel runs over delta from pmin to p; with delta = pmin + (p - pmin) xi the integral
// over [0, 1] in xi is taken by the positive half of the Gauss-Legendre rule (the rule being
// symmetric, that half with its own weights integrates over [0, 1]). The constant Jacobian
// p - pmin cancels in S1 / S0 and is left out.
void AxialDivergenceProfile(const PeakInput& in, float hl, PeakResult& out) {
  const float sl = in.SL;
  const float p = in.p;
  const float cp = std::cos(p / kDegree);
  const float sum = sl + hl;

  // Inflection of the kernel, where the shorter of sample and slit stops limiting it.
  float pinf = p;
  if (sl != 0.0f && hl != 0.0f) {
    const float v = std::sqrt(1.0f + (sl - hl) * (sl - hl)) * cp;
    if (std::abs(v) <= 1.0f) pinf = std::acos(v) * kDegree;
  }
  // The lowest angle the divergence reaches, and its derivative to S/L and H/L (radians).
  const float g = 1.0f + sum * sum;
  const float v = std::sqrt(g) * cp;
  float pmin = v > 0.0f ? 0.0f : 180.0f;
  float dpmin = 0.0f;
  if (std::abs(v) <= 1.0f) {
    pmin = std::acos(v) * kDegree;
    const float q = (1.0f - cp * cp * g) * g;
    if (q > 0.0f) dpmin = -cp * sum / std::sqrt(q);
  }

  const float range = p - pmin;
  const float inflection = std::abs(pinf - pmin);
  float s0 = 0, s1 = 0, sh = 0, shv = 0, ss = 0, ssv = 0, d1 = 0, d2 = 0, d3 = 0, d4 = 0;
  for (const AxialNode& node : AxialNodes(p, pmin)) {
    const float delta = pmin + range * node.x;
    const float dd = (1.0f - node.x) * dpmin;
    float cd = std::cos(delta / kDegree);
    const float sd = std::sin(delta / kDegree);
    if (std::abs(cd) < 1e-15f) cd = std::copysign(1e-15f, cd);
    const float td = sd / cd;
    // cos^2 delta - cos^2 p as sin(p + delta) sin(p - delta): delta comes within 1e-6 of p
    // and the plain difference would lose every digit there, in single precision.
    const float t = std::sin((p + delta) / kDegree) * std::sin(range * (1.0f - node.x) / kDegree);
    float h = 0.0f, hs = 0.0f;
    if (t > 0.0f) {
      const float root = std::sqrt(t);
      h = std::abs(cp) / root;
      hs = cp * cd * sd * dd / (t * root);
    }
    float f, fh, fs;
    if (std::abs(delta - pmin) > inflection) {
      if (sl > hl) {
        f = 2.0f * hl * h / cd;
        fh = 2.0f * hl * (td * h * dd + hs) / cd;
        fs = 2.0f * h / cd + fh;
      } else {
        f = 2.0f * sl * h / cd;
        fs = 2.0f * sl * (td * h * dd + hs) / cd;
        fh = 2.0f * h / cd + fs;
      }
    } else {
      f = (-1.0f + h * sum) / cd;
      fh = fs = (h * sum * td * dd + h - td * dd + hs * sum) / cd;
    }
    const PlainVoigt pv = PlainPseudoVoigt(in.x - delta, in.H, in.eta);
    const float fw = f * node.w;
    s0 += fw;
    s1 += fw * pv.value;
    sh += fh * node.w;
    shv += fh * node.w * pv.value;
    ss += fs * node.w;
    ssv += fs * node.w * pv.value;
    d1 += fw * pv.dP;
    d2 += fw * pv.dH;
    d3 += fw * pv.dEta;
    d4 += fw * pv.dP * dd * kDegree;
  }
  if (s0 == 0.0f) s0 = 1.0f;
  out.value = s1 / s0;
  out.dP = d1 / s0;
  out.dH = d2 / s0;
  out.dEta = d3 / s0;
  out.dA = 0.0f;
  out.dHL = (d4 / kDegree + shv) / s0 - s1 * sh / kDegree / (s0 * s0);
  out.dSL = (d4 / kDegree + ssv) / s0 - s1 * ss / kDegree / (s0 * s0);
}

}  // namespace kaldena
