// Built-in atomic data for H to Cf plus water oxygen "Ow" (Z 99) and deuterium "D " (Z 100):
// symbols, masses, X-ray form factors with anomalous dispersion, neutron scattering lengths.
// The engine copies these per atom type so that a project's records can override them.
#pragma once

#include <array>
#include <string_view>

namespace kaldena {

inline constexpr int kElementCount = 100;

// Wavelengths (angstrom) at which f' and f'' are tabulated; no interpolation between them.
inline constexpr int kAnomalousWavelengthCount = 5;
inline constexpr std::array<float, kAnomalousWavelengthCount> kAnomalousWavelengths = {
    0.215947f, 0.55941f, 0.70926f, 1.54052f, 1.788965f};

// a1 b1 a2 b2 a3 b3 a4 b4 c of f0(s) = c + sum a exp(-b s^2), s = sin(theta)/lambda, then
// f' and f''. For neutrons the form factor is zero and f' holds the scattering length (fm).
using ScatteringData = std::array<float, 11>;

// The mass in atomic mass units, 0 when z is outside 1 to 100.
float GetAtomicMass(int z);

// Z of a two-character, blank-padded symbol ("Fe", "O ", "Ow"), matched exactly and with case;
// 0 when no entry matches.
int ElementNumber(std::string_view symbol);

// Z of the element that a name names, as a type's or an atom's name does: its leading letters
// with case folded, two of them when they make a symbol, else the first ("FE", "Fe2" and "fe3+"
// name iron, "O2-" oxygen, "OW" water oxygen); 0 when they name none.
int ElementNamed(std::string_view name);

// The two-character symbol of z, two blanks when z is outside 1 to 100.
std::string_view ElementSymbol(int z);

// Which of kAnomalousWavelengths serves a wavelength: the nearest, the longer of two within
// 0.0001 of each other.
int AnomalousWavelengthIndex(float wavelength);

// The scattering data of z at a wavelength; a wavelength of 0 or below means neutrons.
// All zero when z is outside 1 to 100.
ScatteringData GetScatteringData(float wavelength, int z);

// Brings fractional coordinates into [0, 1) by whole cells.
void WrapCoordinate(float& x, float& y, float& z);

}  // namespace kaldena
