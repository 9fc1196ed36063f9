#include "engine/profile_shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "engine/axial_divergence.h"

namespace kaldena {
namespace {

PeakResult Eval(int profile, const PeakInput& in) {
  std::vector<std::string> list;
  PeakResult r;
  EXPECT_EQ(PeakShape(profile, in, r, list), ProfileStatus::kOk);
  EXPECT_TRUE(list.empty());
  return r;
}

double Value(int profile, const PeakInput& in) { return Eval(profile, in).value; }

PeakInput Peak(float p, float h, float eta) {
  PeakInput in;
  in.p = p;
  in.x = p;
  in.H = h;
  in.eta = eta;
  in.tanTheta = std::tan(p / 2.0f / 57.29578f);
  return in;
}

// Trapezoidal integral over x from p - reach to p + reach.
double Integral(int profile, PeakInput in, double reach, double step) {
  const double p = in.p;
  const int n = static_cast<int>(std::ceil(2.0 * reach / step));
  double sum = 0.0;
  for (int i = 0; i <= n; ++i) {
    in.x = static_cast<float>(p - reach + i * (2.0 * reach / n));
    sum += (i == 0 || i == n ? 0.5 : 1.0) * Value(profile, in);
  }
  return sum * 2.0 * reach / n;
}

// Central difference of ln(value) to one input; the step is taken as it lands in float.
double LogSlope(int profile, const PeakInput& in, float PeakInput::*field, double step) {
  PeakInput lo = in, hi = in;
  lo.*field = static_cast<float>(in.*field - step);
  hi.*field = static_cast<float>(in.*field + step);
  return (std::log(Value(profile, hi)) - std::log(Value(profile, lo))) /
         (double(hi.*field) - double(lo.*field));
}

// 1 % of the numeric derivative, and never less than 1 % of a twentieth of the derivative's
// scale over the profile, where it passes through 0.
void ExpectSlope(double analytic, double numeric, double scale, const std::string& what) {
  EXPECT_NEAR(analytic, numeric, 0.01 * std::max(std::abs(numeric), 0.05 * scale)) << what;
}

// Offsets from the peak in halfwidths; 0 is left out where dP vanishes.
const std::vector<float> kOffsets = {-3.0f, -1.5f, -0.7f, -0.3f, 0.2f, 0.5f, 1.0f, 2.0f, 4.0f};

// Checks dH, dEta, dP and dTheta (= dP) against central differences at each offset.
void CheckShapeDerivatives(int profile, PeakInput in, double etaStep, const std::string& name) {
  const float p = in.p;
  for (float k : kOffsets) {
    in.x = p + k * in.H;
    const PeakResult r = Eval(profile, in);
    const std::string at = name + " at d/H = " + std::to_string(k);
    const double hStep = 1e-3 * in.H;
    ExpectSlope(r.dH, LogSlope(profile, in, &PeakInput::H, hStep), 1.0 / in.H, at + " dH");
    ExpectSlope(r.dEta, LogSlope(profile, in, &PeakInput::eta, etaStep), 1.0 / (in.eta + 0.1),
                at + " dEta");
    ExpectSlope(r.dP, LogSlope(profile, in, &PeakInput::p, hStep), 1.0 / in.H, at + " dP");
    EXPECT_EQ(r.dTheta, r.dP) << at;
    EXPECT_EQ(r.dA, 0.0f) << at;
  }
}

TEST(GammaApprox, FollowsTheGammaFunction) {
  for (float x = 0.05f; x < 30.0f; x += 0.173f) {
    EXPECT_NEAR(GammaApprox(x) / std::tgamma(double(x)), 1.0, 2e-6) << x;
  }
  EXPECT_NEAR(GammaApprox(-0.5f), -2.0 * std::sqrt(M_PI), 1e-5);
  EXPECT_EQ(GammaApprox(1.0f), 1.0f);
  EXPECT_EQ(GammaApprox(2.0f), 1.0f);
  // The fixed bound above 57 and the stand-in value at the poles.
  EXPECT_EQ(GammaApprox(57.5f), 100.0f);
  EXPECT_EQ(GammaApprox(80.0f), 100.0f);
  EXPECT_EQ(GammaApprox(0.0f), 1e-6f);
  EXPECT_EQ(GammaApprox(-2.0000001f), 1e-6f);
}

TEST(PeakShape, IllegalProfileNumbers) {
  for (int profile : {0, 10, -1}) {
    std::vector<std::string> list;
    PeakResult r;
    r.value = 5.0f;
    EXPECT_EQ(PeakShape(profile, Peak(30, 0.1f, 0.5f), r, list), ProfileStatus::kIllegalProfile);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0], "ILLEGAL PROFILE FUNCTION REQUEST");
    EXPECT_EQ(r.value, 0.0f);
  }
}

// Each profile has unit area. The reach of 100 halfwidths leaves out at most 0.3 % of a
// Lorentzian's area, less with a Gaussian part.
TEST(PeakShape, EveryProfileHasUnitArea) {
  struct Case {
    int profile;
    PeakInput in;
  };
  std::vector<Case> cases;
  cases.push_back({1, Peak(40, 0.12f, 0.4f)});
  cases.push_back({8, Peak(40, 0.12f, 0.9f)});
  for (float m : {1.5f, 3.0f, 10.0f}) cases.push_back({2, Peak(40, 0.12f, m)});
  cases.push_back({3, Peak(60, 0.1f, 0.05f)});
  PeakInput wide = Peak(60, 0.1f, 0.05f);
  wide.widthFactor = 1.4f;
  cases.push_back({9, wide});
  PeakInput five = Peak(12, 0.1f, 0.4f);
  five.A = 0.02f;  // spreads the five peaks over 0.19 degrees at 12 degrees
  cases.push_back({4, five});
  five.eta = 0.04f;
  cases.push_back({5, five});
  PeakInput split = Peak(30, 0.1f, 0.3f);
  split.HR = 0.16f;
  split.etaR = 0.6f;
  cases.push_back({6, split});
  for (float p : {5.0f, 20.0f, 70.0f, 130.0f}) {
    PeakInput axial = Peak(p, 0.08f, 0.3f);
    axial.SL = 0.02f;
    axial.HL = 0.015f;
    cases.push_back({7, axial});
  }
  for (const Case& c : cases) {
    const double area = Integral(c.profile, c.in, 100.0 * c.in.H, c.in.H / 40.0);
    EXPECT_NEAR(area, 1.0, 0.005) << "profile " << c.profile << " p " << c.in.p << " eta "
                                  << c.in.eta;
  }
}

// Pearson VII at m = 0.6, the lowest the caller passes: the tails fall as |d|^-1.2, so the
// area beyond 2000 halfwidths is added from the asymptote C (4c)^-m (d/H)^-2m / H.
TEST(PeakShape, PearsonAtLowestExponent) {
  const float m = 0.6f, h = 0.1f;
  PeakInput in = Peak(40, h, m);
  const double c = std::pow(2.0, 1.0 / m) - 1.0;
  const double norm =
      2.0 * std::sqrt(c) * std::tgamma(m) / (std::sqrt(M_PI) * std::tgamma(m - 0.5));
  EXPECT_NEAR(Value(2, in), norm / h, 1e-5 * norm / h);
  const double reach = 2000.0 * h;
  const double tail =
      2.0 * norm * std::pow(4.0 * c, -m) * std::pow(reach / h, 1.0 - 2.0 * m) / (2.0 * m - 1.0);
  EXPECT_NEAR(Integral(2, in, reach, h / 20.0) + tail, 1.0, 0.005);
}

TEST(PeakShape, PseudoVoigtAtThePeakAndItsDerivatives) {
  for (float eta : {0.0f, 0.35f, 1.0f}) {
    const PeakInput in = Peak(35, 0.15f, eta);
    const PeakResult r = Eval(1, in);
    const float top = (0.93943727f * (1 - eta) + 0.63661975f * eta) / 0.15f;
    EXPECT_FLOAT_EQ(r.value, top);
    EXPECT_EQ(r.dP, 0.0f);
    EXPECT_FLOAT_EQ(r.dH, -1.0f / 0.15f);  // at d = 0 only the 1/H normalisation moves
  }
  CheckShapeDerivatives(1, Peak(35, 0.15f, 0.35f), 1e-3, "pseudo-Voigt");
  CheckShapeDerivatives(1, Peak(35, 0.15f, 0.9f), 1e-3, "pseudo-Voigt, Lorentzian");
  // Profile 8 is the same function; its transparency is applied outside.
  PeakInput in = Peak(35, 0.15f, 0.35f);
  in.x = 35.1f;
  const PeakResult a = Eval(1, in), b = Eval(8, in);
  EXPECT_EQ(a.value, b.value);
  EXPECT_EQ(a.dH, b.dH);
  EXPECT_EQ(a.dP, b.dP);
}

// Pearson VII: dEta leaves out on purpose the derivative of the normalisation (the gamma
// quotient and sqrt(c)), so it is compared with the slope of ln(V(d) / V(0)), where the
// normalisation cancels.
TEST(PeakShape, PearsonDerivatives) {
  for (float m : {0.6f, 1.2f, 2.5f, 8.0f}) {
    PeakInput in = Peak(50, 0.12f, m);
    const std::string name = "Pearson m = " + std::to_string(m);
    for (float k : kOffsets) {
      in.x = in.p + k * in.H;
      const PeakResult r = Eval(2, in);
      const std::string at = name + " at d/H = " + std::to_string(k);
      ExpectSlope(r.dH, LogSlope(2, in, &PeakInput::H, 1e-4), 1.0 / in.H, at + " dH");
      ExpectSlope(r.dP, LogSlope(2, in, &PeakInput::p, 1e-4), 1.0 / in.H, at + " dP");
      PeakInput top = in;
      top.x = top.p;
      const double shape =
          LogSlope(2, in, &PeakInput::eta, 1e-3 * m) - LogSlope(2, top, &PeakInput::eta, 1e-3 * m);
      ExpectSlope(r.dEta, shape, 1.0, at + " dEta");
      EXPECT_EQ(r.dTheta, r.dP);
    }
  }
}

// Voigt: the Lorentzian width is eta / cos(theta), set here through tanTheta.
TEST(PeakShape, VoigtDerivativesAndWidthFactor) {
  for (float eta : {0.02f, 0.1f, 0.3f}) {
    CheckShapeDerivatives(3, Peak(70, 0.1f, eta), 1e-3 * eta, "Voigt eta " + std::to_string(eta));
  }
  PeakInput in = Peak(70, 0.1f, 0.05f);
  in.widthFactor = 1.3f;
  CheckShapeDerivatives(9, in, 5e-5, "Voigt with width factor");  // dH is to H, not 1.3 H
  // Profile 9 is profile 3 at the multiplied width.
  PeakInput plain = in;
  plain.H = 0.13f;
  plain.widthFactor = 1.0f;
  for (float d : {-0.2f, 0.0f, 0.05f}) {
    in.x = plain.x = 70.0f + d;
    EXPECT_FLOAT_EQ(Value(9, in), Value(3, plain));
  }
  // Far out in a Gaussian-like Voigt the real part is held at 1e-5.
  PeakInput far = Peak(70, 0.1f, 0.0f);
  far.x = 71.0f;
  EXPECT_FLOAT_EQ(Value(3, far), 0.93943727f * 1e-5f / 0.1f);
}

// Five-peak profiles: dA by differences in A. dTheta - dP is the part that B = cot 2 theta
// carries, per degree of two-theta like dP: checked against a difference in tanTheta at fixed p for the
// pseudo-Voigt (the Voigt's Lorentzian width also moves with tanTheta, so there it is not).
TEST(PeakShape, FivePeakDerivatives) {
  for (int profile : {4, 5}) {
    PeakInput in = Peak(12, 0.1f, profile == 4 ? 0.4f : 0.04f);
    in.A = 0.02f;
    const double theta = std::atan(double(in.tanTheta));
    for (float k : kOffsets) {
      in.x = in.p + k * in.H;
      const PeakResult r = Eval(profile, in);
      const std::string at = "profile " + std::to_string(profile) + " at d/H " + std::to_string(k);
      ExpectSlope(r.dH, LogSlope(profile, in, &PeakInput::H, 1e-4), 1.0 / in.H, at + " dH");
      ExpectSlope(r.dEta, LogSlope(profile, in, &PeakInput::eta, 1e-3 * in.eta), 1.0 / in.eta,
                  at + " dEta");
      ExpectSlope(r.dP, LogSlope(profile, in, &PeakInput::p, 1e-4), 1.0 / in.H, at + " dP");
      ExpectSlope(r.dA, LogSlope(profile, in, &PeakInput::A, 2e-5), 20.0, at + " dA");
      if (profile == 4) {
        PeakInput lo = in, hi = in;
        const double step = 1e-4;
        lo.tanTheta = static_cast<float>(std::tan(theta - step));
        hi.tanTheta = static_cast<float>(std::tan(theta + step));
        const double perTwoTheta =
            (std::log(Value(4, hi)) - std::log(Value(4, lo))) / (4.0 * step) / 57.29578;
        ExpectSlope(r.dTheta - r.dP, perTwoTheta, 200.0 / 57.29578, at + " dTheta");
      }
    }
  }
}

// Split profile: the two sides meet at d = 0 (the left side is taken there) and each side's
// derivatives are its own pseudo-Voigt's; those of the joining factor are left out on purpose.
TEST(PeakShape, SplitPseudoVoigtSides) {
  PeakInput in = Peak(30, 0.1f, 0.3f);
  in.HR = 0.16f;
  in.etaR = 0.6f;
  PeakInput left = in, right = in;
  right.H = in.HR;
  right.eta = in.etaR;

  const PeakResult top = Eval(6, in);
  EXPECT_EQ(top.dH, Eval(1, left).dH);
  EXPECT_EQ(top.dHR, 0.0f);
  EXPECT_EQ(top.dEtaR, 0.0f);
  in.x = 30.0f + 1e-4f;
  EXPECT_NEAR(Value(6, in), top.value, 1e-3 * top.value);

  for (float k : kOffsets) {
    in.x = left.x = right.x = 30.0f + k * 0.1f;
    const PeakResult r = Eval(6, in);
    const PeakResult own = Eval(1, k <= 0 ? left : right);
    const std::string at = "split at " + std::to_string(k);
    ExpectSlope(r.dP, LogSlope(6, in, &PeakInput::p, 1e-4), 10.0, at + " dP");
    EXPECT_EQ(r.dTheta, r.dP);
    EXPECT_FLOAT_EQ(k <= 0 ? r.dH : r.dHR, own.dH) << at;
    EXPECT_FLOAT_EQ(k <= 0 ? r.dEta : r.dEtaR, own.dEta) << at;
    EXPECT_EQ(k <= 0 ? r.dHR : r.dH, 0.0f) << at;
    EXPECT_EQ(k <= 0 ? r.dEtaR : r.dEta, 0.0f) << at;
  }
  // Of the profile 1 derivatives, which the split sides reuse, the differences are checked in
  // PseudoVoigtAtThePeakAndItsDerivatives.
}

// Values the point loop meets without a NaN reaching the normal equations: a Gaussian tail that
// underflows single precision, and the five peaks at 2 theta = 90 degrees where B = 0.
TEST(PeakShape, FiniteAtTheEdges) {
  PeakInput gauss = Peak(40, 0.1f, 0.0f);
  gauss.x = 42.0f;  // 20 halfwidths: exp(-1100)
  for (int profile : {1, 4, 6, 8}) {
    gauss.HR = 0.1f;
    const PeakResult r = Eval(profile, gauss);
    EXPECT_EQ(r.value, 0.0f) << profile;
    EXPECT_EQ(r.dH, 0.0f) << profile;
    EXPECT_EQ(r.dP, 0.0f) << profile;
    EXPECT_EQ(r.dEta, 0.0f) << profile;
  }
  for (int profile : {4, 5}) {
    PeakInput in = Peak(90, 0.1f, 0.3f);
    in.A = 0.02f;
    in.x = 90.05f;
    const PeakResult r = Eval(profile, in);
    EXPECT_NEAR(r.dA, 0.0f, 1e-5) << profile;  // next to no spread at 90 degrees
    EXPECT_TRUE(std::isfinite(r.dTheta)) << profile;
    EXPECT_GT(r.value, 0.0f) << profile;
  }
}

// An independent axial-divergence profile: the Finger-Cox-Jephcoat weight
// W = (S + H - h) / (h cos delta) up to the inflection and 2 min(S, H) / (h cos delta) beyond,
// h = L sqrt(cos^2 delta / cos^2 p - 1), convolved in double with the pseudo-Voigt by a
// midpoint rule in tau, delta = p - (p - pmin) tau^2, which removes the singularity at p.
double ReferenceAxial(double x, double p, double fwhm, double eta, double sl, double hl) {
  const double rad = M_PI / 180.0;
  const double cp = std::cos(p * rad);
  const double pmin = std::acos(std::sqrt(1.0 + (sl + hl) * (sl + hl)) * cp) / rad;
  const double pinf = std::acos(std::sqrt(1.0 + (sl - hl) * (sl - hl)) * cp) / rad;
  const int n = 20000;
  double weight = 0.0, sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double tau = (i + 0.5) / n;
    const double delta = p - (p - pmin) * tau * tau;
    const double cd = std::cos(delta * rad);
    const double h = std::sqrt(cd * cd / (cp * cp) - 1.0);  // over L
    const double w =
        (std::abs(delta - pmin) < std::abs(pinf - pmin) ? sl + hl - h : 2.0 * std::min(sl, hl)) /
        (h * cd) * tau;  // tau: d delta / d tau up to a constant
    const double d = x - delta;
    const double g = 2.0 * std::sqrt(std::log(2.0) / M_PI) / fwhm *
                     std::exp(-4.0 * std::log(2.0) * d * d / (fwhm * fwhm));
    const double l = 2.0 / (M_PI * fwhm) / (1.0 + 4.0 * d * d / (fwhm * fwhm));
    weight += w;
    sum += w * ((1.0 - eta) * g + eta * l);
  }
  return sum / weight;
}

// Within 1 % of the peak height, in front and in back reflection, where the kernel lies above
// p. (The reference needs pmin above 0: sqrt(1 + (S/L + H/L)^2) cos p at most 1.)
TEST(PeakShape, AxialDivergenceShape) {
  for (float p : {8.0f, 25.0f, 60.0f, 150.0f}) {
    PeakInput in = Peak(p, 0.08f, 0.3f);
    in.SL = 0.025f;
    in.HL = 0.012f;
    double top = 0.0;
    for (int i = -40; i <= 40; ++i) {
      in.x = p + i * 0.02f;
      top = std::max(top, Value(7, in));
    }
    for (int i = -40; i <= 40; ++i) {
      in.x = p + i * 0.02f;
      const double expected = ReferenceAxial(in.x, p, 0.08, 0.3, 0.025, 0.012);
      EXPECT_NEAR(Value(7, in), expected, 0.01 * top) << "p " << p << " x " << in.x;
    }
  }
}

// Profile 7: dP, dH, dEta against differences. dSL and dHL are not checked: the caller
// replaces them by its own differences in S/L and H/L. dP moves the pseudo-Voigt under a fixed
// kernel; the kernel's own slow change with p stays well inside the tolerance.
TEST(PeakShape, AxialDivergenceDerivatives) {
  PeakInput in = Peak(25, 0.08f, 0.3f);
  in.SL = 0.025f;
  in.HL = 0.008f;
  in.scaleDivergence = 1.5f;
  CheckShapeDerivatives(7, in, 1e-3, "axial divergence");
  // The scale goes into H/L alone.
  PeakInput same = in;
  same.HL = 0.012f;
  same.scaleDivergence = 1.0f;
  for (float d : {-0.3f, -0.05f, 0.0f, 0.07f}) {
    in.x = same.x = 25.0f + d;
    EXPECT_FLOAT_EQ(Value(7, in), Value(7, same));
  }
}

// Without divergence the axial profile is the plain pseudo-Voigt, with no S/L or H/L slope.
TEST(PeakShape, AxialWithoutDivergenceIsPseudoVoigt) {
  PeakInput in = Peak(25, 0.08f, 0.3f);
  in.scaleDivergence = 2.0f;
  for (float d : {-0.3f, -0.05f, 0.0f, 0.07f}) {
    in.x = 25.0f + d;
    const PeakResult a = Eval(7, in), b = Eval(1, in);
    EXPECT_EQ(a.value, b.value);
    EXPECT_EQ(a.dH, b.dH);
    EXPECT_EQ(a.dEta, b.dEta);
    EXPECT_EQ(a.dP, b.dP);
    EXPECT_EQ(a.dSL, 0.0f);
    EXPECT_EQ(a.dHL, 0.0f);
  }
}

// The quadrature grows with the width of the kernel, 400 steps per degree, up to 1000.
TEST(AxialNodes, RuleFollowsKernelWidth) {
  EXPECT_EQ(AxialNodes(30.0f, 29.99f).size(), 3u);    // K = 4: N = 6
  EXPECT_EQ(AxialNodes(30.0f, 29.9f).size(), 20u);    // K = 40: N = 40
  EXPECT_EQ(AxialNodes(30.0f, 29.0f).size(), 200u);   // K = 400: N = 400
  EXPECT_EQ(AxialNodes(30.0f, 28.0f).size(), 400u);   // K = 800: N = 800
  EXPECT_EQ(AxialNodes(30.0f, 27.0f).size(), 500u);   // K = 1200: the last, N = 1000
  EXPECT_EQ(AxialNodes(120.0f, 120.1f).size(), 20u);  // above 90 by the size of p - pmin
  // Each block is the positive half of a rule: weights sum to 1, abscissas in (0, 1).
  for (int n : kAxialNodeCounts) {
    const float pmin = 30.0f - n / 400.0f;
    double sum = 0.0, second = 0.0;
    for (const AxialNode& node : AxialNodes(30.0f, pmin)) {
      EXPECT_GT(node.x, 0.0f);
      EXPECT_LT(node.x, 1.0f);
      sum += node.w;
      second += node.w * node.x * node.x;
    }
    EXPECT_NEAR(sum, 1.0, 1e-6) << n;
    EXPECT_NEAR(second, 1.0 / 3.0, 1e-6) << n;
  }
}

}  // namespace
}  // namespace kaldena
