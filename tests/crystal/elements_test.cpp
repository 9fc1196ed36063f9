#include "crystal/elements.h"

#include <gtest/gtest.h>

#include <utility>

namespace kaldena {
namespace {

constexpr float kCopperKAlpha1 = 1.54052f;
constexpr int kIron = 26;
constexpr int kUranium = 92;
constexpr int kWaterOxygen = 99;
constexpr int kDeuterium = 100;

TEST(ElementsTest, SymbolsMatchExactlyAndRoundTrip) {
  EXPECT_EQ(ElementNumber("H "), 1);
  EXPECT_EQ(ElementNumber("O "), 8);
  EXPECT_EQ(ElementNumber("Fe"), kIron);
  EXPECT_EQ(ElementNumber("Cf"), 98);
  EXPECT_EQ(ElementNumber("Ow"), kWaterOxygen);
  EXPECT_EQ(ElementNumber("D "), kDeuterium);
  for (const char* unknown : {"FE", "fe", "H", "Fe ", "", "  ", "Xx", "OW"}) {
    EXPECT_EQ(ElementNumber(unknown), 0) << '"' << unknown << '"';
  }
  for (int z = 1; z <= kElementCount; ++z) {
    ASSERT_EQ(ElementSymbol(z).size(), 2u) << z;
    EXPECT_EQ(ElementNumber(ElementSymbol(z)), z) << ElementSymbol(z);
  }
  EXPECT_EQ(ElementSymbol(kUranium), "U ");
}

TEST(ElementsTest, NamesGiveTheElementOfTheirLetters) {
  for (const char* iron : {"FE", "Fe2", "fe3+", " Fe", "FE1A"}) {
    EXPECT_EQ(ElementNamed(iron), kIron) << '"' << iron << '"';
  }
  EXPECT_EQ(ElementNamed("O2-"), 8);
  EXPECT_EQ(ElementNamed("OX"), 8);  // no element "Ox": the first letter
  EXPECT_EQ(ElementNamed("OW"), kWaterOxygen);
  EXPECT_EQ(ElementNamed("d "), kDeuterium);
  for (const char* none : {"X1", "QQ", "1Fe", "", "  ", "+"}) {
    EXPECT_EQ(ElementNamed(none), 0) << '"' << none << '"';
  }
}

TEST(ElementsTest, OutOfRangeNumbersGiveNothing) {
  const ScatteringData zero{};
  for (int z : {-1, 0, kElementCount + 1, 1000}) {
    EXPECT_EQ(GetAtomicMass(z), 0.0f) << z;
    EXPECT_EQ(ElementSymbol(z), "  ") << z;
    EXPECT_EQ(GetScatteringData(kCopperKAlpha1, z), zero) << z;
    EXPECT_EQ(GetScatteringData(0.0f, z), zero) << z;
  }
}

TEST(ElementsTest, MassesOfTheOlderTables) {
  const std::pair<const char*, float> kMasses[] = {
      {"H ", 1.008f}, {"C ", 12.011f}, {"O ", 15.999f}, {"Fe", 55.847f}, {"U ", 238.029f},
      {"Pm", 145.0f}, {"Po", 209.0f},  {"Cf", 251.0f},  {"Ow", 18.015f}, {"D ", 2.0f},
  };
  for (const auto& [symbol, mass] : kMasses) {
    EXPECT_FLOAT_EQ(GetAtomicMass(ElementNumber(symbol)), mass) << symbol;
  }
  // A row shifted against its symbol would break this: A/Z stays near 2 to 2.6 beyond H.
  for (int z = 2; z <= 98; ++z) {
    EXPECT_GT(GetAtomicMass(z) / z, 1.9f) << ElementSymbol(z);
    EXPECT_LT(GetAtomicMass(z) / z, 2.7f) << ElementSymbol(z);
  }
}

TEST(ElementsTest, FormFactorRowsKeepTheirSourceOrder) {
  const ScatteringData oxygen = GetScatteringData(kCopperKAlpha1, 8);
  EXPECT_FLOAT_EQ(oxygen[0], 0.867f);
  EXPECT_FLOAT_EQ(oxygen[1], 32.9089f);
  EXPECT_FLOAT_EQ(oxygen[8], 0.2508f);
  const ScatteringData water = GetScatteringData(kCopperKAlpha1, kWaterOxygen);
  EXPECT_FLOAT_EQ(water[0], 3.7504f);
  EXPECT_FLOAT_EQ(water[1], 16.5151f);
  EXPECT_FLOAT_EQ(water[8], 0.24206f);
  EXPECT_EQ(GetScatteringData(kCopperKAlpha1, kDeuterium), GetScatteringData(kCopperKAlpha1, 1));
}

// f0 at s = 0 is c + sum of a: the electron count, to the accuracy of the four-Gaussian fit.
TEST(ElementsTest, FormFactorAtZeroAngleCountsElectrons) {
  for (int z = 1; z <= kElementCount; ++z) {
    const ScatteringData data = GetScatteringData(kCopperKAlpha1, z);
    const int electrons = z == kWaterOxygen ? 10 : z == kDeuterium ? 1 : z;
    const float f0 = data[8] + data[0] + data[2] + data[4] + data[6];
    EXPECT_NEAR(f0, electrons, 0.07f) << ElementSymbol(z);
    for (int b = 1; b < 8; b += 2) EXPECT_GT(data[b], 0.0f) << ElementSymbol(z);
  }
}

TEST(ElementsTest, AnomalousDispersionAtCopper) {
  const ScatteringData iron = GetScatteringData(kCopperKAlpha1, kIron);
  EXPECT_FLOAT_EQ(iron[9], -1.1336f);
  EXPECT_FLOAT_EQ(iron[10], 3.1974f);
  const ScatteringData uranium = GetScatteringData(kCopperKAlpha1, kUranium);
  EXPECT_FLOAT_EQ(uranium[9], -4.3638f);
  EXPECT_FLOAT_EQ(uranium[10], 13.409f);
  const ScatteringData hydrogen = GetScatteringData(kCopperKAlpha1, 1);
  EXPECT_EQ(hydrogen[9], 0.0f);
  EXPECT_EQ(hydrogen[10], 0.0f);
  // Absorption, f'', is never negative: a sign slip in a source column would show here.
  for (float wavelength : kAnomalousWavelengths) {
    for (int z = 1; z <= kElementCount; ++z) {
      EXPECT_GE(GetScatteringData(wavelength, z)[10], 0.0f) << ElementSymbol(z) << wavelength;
    }
  }
}

TEST(ElementsTest, NearestTabulatedWavelengthServes) {
  for (int i = 0; i < kAnomalousWavelengthCount; ++i) {
    EXPECT_EQ(AnomalousWavelengthIndex(kAnomalousWavelengths[i]), i);
  }
  EXPECT_EQ(AnomalousWavelengthIndex(1.5418f), 3);
  EXPECT_EQ(AnomalousWavelengthIndex(1.66f), 3);  // 0.1195 away against 0.1290
  EXPECT_EQ(AnomalousWavelengthIndex(1.70f), 4);
  EXPECT_EQ(AnomalousWavelengthIndex(0.1f), 0);
  EXPECT_EQ(AnomalousWavelengthIndex(0.71073f), 2);
  EXPECT_EQ(AnomalousWavelengthIndex(50.0f), 4);
  // Within 0.0001 of the nearest counts as a tie, and ties go to the longer wavelength.
  EXPECT_EQ(AnomalousWavelengthIndex(0.634335f), 2);
  EXPECT_EQ(AnomalousWavelengthIndex(0.63429f), 2);
  EXPECT_EQ(AnomalousWavelengthIndex(0.6342f), 1);

  const ScatteringData atTable = GetScatteringData(kCopperKAlpha1, kIron);
  EXPECT_EQ(GetScatteringData(1.5418f, kIron), atTable);
  EXPECT_EQ(GetScatteringData(1.66f, kIron), atTable);
  EXPECT_NE(GetScatteringData(1.788965f, kIron)[9], atTable[9]);
}

TEST(ElementsTest, NeutronsCarryTheScatteringLengthAlone) {
  const std::pair<const char*, float> kLengths[] = {
      {"H ", -3.739f}, {"Ti", -3.438f}, {"V ", -0.382f}, {"Mn", -3.73f},
      {"O ", 5.803f},  {"Po", 0.0f},    {"At", 0.0f},    {"Rn", 0.0f},
      {"Fr", 0.0f},    {"Ow", 5.803f},  {"D ", 6.0f},
  };
  for (const auto& [symbol, length] : kLengths) {
    for (float wavelength : {0.0f, -1.0f}) {
      ScatteringData expected{};
      expected[9] = length;
      EXPECT_EQ(GetScatteringData(wavelength, ElementNumber(symbol)), expected) << symbol;
    }
  }
}

TEST(ElementsTest, WrapCoordinateBringsIntoTheUnitCell) {
  float x = -0.25f;
  float y = 2.5f;
  float z = 1.0f;
  WrapCoordinate(x, y, z);
  EXPECT_EQ(x, 0.75f);
  EXPECT_EQ(y, 0.5f);
  EXPECT_EQ(z, 0.0f);

  // A tiny negative value plus 1 rounds to 1, which is not inside.
  x = -1.0e-9f;
  y = -3.0f;
  z = 0.999f;
  WrapCoordinate(x, y, z);
  EXPECT_EQ(x, 0.0f);
  EXPECT_EQ(y, 0.0f);
  EXPECT_EQ(z, 0.999f);
}

}  // namespace
}  // namespace kaldena
