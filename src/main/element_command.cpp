// kalden element: the built-in data of one element at one wavelength, as the engine takes it.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/elements.h"
#include "main/commands.h"

namespace kaldena {

namespace {

constexpr float kDefaultWavelength = 1.54052f;

struct ElementRequest {
  std::string symbol;
  float wavelength = kDefaultWavelength;
};

std::optional<ElementRequest> ParseArguments(const std::vector<std::string>& args) {
  ElementRequest request;
  bool haveSymbol = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--wavelength") {
      if (i + 1 == args.size()) return std::nullopt;
      const std::optional<float> wavelength = NumberArgument(args[++i]);
      if (!wavelength) return std::nullopt;
      request.wavelength = *wavelength;
    } else if (haveSymbol || args[i].starts_with("--")) {
      return std::nullopt;
    } else {
      request.symbol = args[i];
      haveSymbol = true;
    }
  }
  if (!haveSymbol) return std::nullopt;
  return request;
}

// The table pads one-letter symbols with a blank; people do not type it.
int LookUp(std::string symbol) {
  if (symbol.size() == 1) symbol += ' ';
  return ElementNumber(symbol);
}

void PrintRadiation(float wavelength) {
  if (wavelength <= 0.0f) {
    std::printf("%-12s neutrons\n", "radiation");
    return;
  }
  const float tabulated = kAnomalousWavelengths[AnomalousWavelengthIndex(wavelength)];
  std::printf("%-12s X-rays, %g A (f' and f'' of %g A)\n", "radiation", wavelength, tabulated);
}

// A labelled value lined up on its decimal point, in the digits the tables carry.
void PrintValue(const char* label, float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  const std::string digits = text;
  const std::size_t point = std::min(digits.find('.'), digits.size());
  std::printf("%-12s %6s%s\n", label, digits.substr(0, point).c_str(),
              digits.substr(point).c_str());
}

void PrintScattering(const ScatteringData& data, bool neutrons) {
  static constexpr const char* kFormFactorLabels[] = {"a1", "b1", "a2", "b2", "a3",
                                                      "b3", "a4", "b4", "c"};
  for (int i = 0; i < 9; ++i) PrintValue(kFormFactorLabels[i], data[i]);
  PrintValue(neutrons ? "b (fm)" : "f'", data[9]);
  PrintValue(neutrons ? "(unused)" : "f''", data[10]);
}

}  // namespace

int ElementCommand(const std::vector<std::string>& args) {
  const std::optional<ElementRequest> request = ParseArguments(args);
  if (!request) return kBadArguments;
  const int z = LookUp(request->symbol);
  if (z == 0) {
    std::fprintf(stderr, "kalden element: unknown element '%s'\n", request->symbol.c_str());
    return 1;
  }
  const std::string_view symbol = ElementSymbol(z);
  std::printf("%-12s %.*s\n", "element", symbol.back() == ' ' ? 1 : 2, symbol.data());
  std::printf("%-12s %d\n", "Z", z);
  std::printf("%-12s %.3f\n", "mass", GetAtomicMass(z));
  PrintRadiation(request->wavelength);
  PrintScattering(GetScatteringData(request->wavelength, z), request->wavelength <= 0.0f);
  return 0;
}

}  // namespace kaldena
