// The normalised peak profiles of the engine: value of one reflection at one pattern point with
// the logarithmic derivatives the normal equations need, all in one pass.
#pragma once

#include <string>
#include <vector>

namespace kaldena {

// Profile numbers: 1 pseudo-Voigt, 2 Pearson VII, 3 Voigt, 4 pseudo-Voigt and 5 Voigt with the
// five-peak asymmetry, 6 split pseudo-Voigt, 7 pseudo-Voigt with axial divergence, 8
// pseudo-Voigt and 9 Voigt for the transparency asymmetry (applied by the caller).
inline constexpr int kFirstProfile = 1;
inline constexpr int kLastProfile = 9;

// One reflection at one point. Angles in degrees of two-theta.
struct PeakInput {
  float x = 0;         // point two-theta
  float p = 0;         // peak two-theta
  float H = 0;         // FWHM (left side for the split profile)
  float eta = 0;       // mixing (pseudo-Voigt), m (Pearson VII), Lorentzian width (Voigt)
  float tanTheta = 0;  // of the Bragg angle
  float A = 0;         // asymmetry parameter of the phase (five-peak profiles)
  float HR = 0;        // right FWHM and shape (split profile)
  float etaR = 0;
  float SL = 0;               // S/L (axial divergence)
  float HL = 0;               // H/L
  float scaleDivergence = 1;  // multiplied into HL (profile 7)
  float widthFactor = 1;      // multiplied into H (profile 9)
};

// The value and its derivatives, each as (1/value) d value / d parameter. dP is to the peak
// position, dTheta to the Bragg angle (equal to dP except for the five-peak profiles, where B =
// cot 2 theta moves too, also per degree of two-theta). Derivatives a profile does not
// have are 0.
struct PeakResult {
  float value = 0;
  float dH = 0, dEta = 0, dA = 0, dP = 0, dTheta = 0;
  float dHR = 0, dEtaR = 0;  // split profile, right side
  float dSL = 0, dHL = 0;    // axial divergence; the caller replaces them by differences
};

enum class ProfileStatus {
  kOk = 0,
  kIllegalProfile = 1,  // number outside 1 to 9: result all zero, one list line written
};

// Evaluates profile `profile` for `in`. Profile 9 is profile 3 at width H widthFactor, with dH
// to H itself (the factor's own dependence on the point is the caller's). For a number outside 1 to
// 9 it appends "ILLEGAL PROFILE FUNCTION REQUEST" to listLines (the engine's list file) and leaves
// the result zero; nothing else is ever written there.
ProfileStatus PeakShape(int profile, const PeakInput& in, PeakResult& out,
                        std::vector<std::string>& listLines);

// Gamma function by a degree-7 polynomial on (1, 2) and the recurrence, in single precision.
// Above 57 it gives 100, a bound that stands for the Pearson normalisation. Within 1e-6 of an
// integer at or below 0 (the poles) it gives 1e-6.
float GammaApprox(float x);

}  // namespace kaldena
