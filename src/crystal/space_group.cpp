#include "crystal/space_group.h"

#include <cmath>

#include "crystal/generator_search.h"
#include "crystal/symbol_recipe.h"
#include "util/column_format.h"

namespace kaldena {

namespace {

constexpr std::string_view kLaueLabels[] = {
    "1BAR    ", "2/M     ", "MMM     ", "4/M     ", "4/MMM   ", "3BAR   R", "3BAR M R",
    "3BAR    ", "3BAR M 1", "3BAR 1 M", "6/M     ", "6/MMM   ", "M3      ", "M3M     "};

const std::string kResetSymbol = "P 1                 ";

// "1/2" and the like for a translation in twelfths.
std::string Fraction(int twelfths) {
  int num = twelfths, den = 12;
  for (int d : {2, 2, 3}) {
    if (num % d == 0 && den % d == 0) {
      num /= d;
      den /= d;
    }
  }
  return std::to_string(num) + "/" + std::to_string(den);
}

std::string RowText(const float* row) {
  static const char kAxes[] = {'x', 'y', 'z'};
  std::string text;
  for (int j = 0; j < 3; ++j) {
    if (row[j] == 0.0f) continue;
    if (row[j] < 0.0f) {
      text += '-';
    } else if (!text.empty()) {
      text += '+';
    }
    text += kAxes[j];
  }
  const int twelfths = static_cast<int>(std::lround(row[3] * 12.0f)) % 12;
  if (twelfths != 0) text += "+" + Fraction(twelfths);
  return text;
}

}  // namespace

std::string_view LaueClassLabel(int laueClass) {
  if (laueClass < 1 || laueClass > 14) return "        ";
  return kLaueLabels[laueClass - 1];
}

std::string OperatorText(const SymmetryOperator& op) {
  return RowText(&op[0]) + "," + RowText(&op[4]) + "," + RowText(&op[8]);
}

SymbolStatus ParseSpaceGroupSymbol(std::string_view symbol, SpaceGroupInfo& info) {
  SymbolRecipe recipe;
  info = SpaceGroupInfo{};
  info.symbol = CanonicalSymbolText(symbol);
  const SymbolStatus status = ReadSymbolRecipe(symbol, recipe);
  if (status != SymbolStatus::kOk) return status;
  info.laueClass = recipe.laueClass;
  info.uniqueAxis = recipe.uniqueAxis;
  if (!FindGeneratorWords(recipe, info.generatorWords)) return SymbolStatus::kSyntax;
  return SymbolStatus::kOk;
}

SpaceGroupInfo GetSpaceGroupOperators(std::string& symbol, Reporter& reporter) {
  SpaceGroupInfo info;
  symbol = CanonicalSymbolText(symbol);
  if (ParseSpaceGroupSymbol(symbol, info) != SymbolStatus::kOk) {
    reporter.ShowMessage("Spacegroup problems (1)", "Reset to P 1");
    symbol = kResetSymbol;
    ParseSpaceGroupSymbol(symbol, info);
  }
  if (ExpandOperators(info) != ExpandStatus::kOk) {
    reporter.ShowMessage("Spacegroup problems (2)", "Reset to P 1");
    symbol = kResetSymbol;
    ParseSpaceGroupSymbol(symbol, info);
    ExpandOperators(info);
  }
  return info;
}

int ReadPhaseSpaceGroup(std::string_view symbol, SpaceGroupInfo& info,
                        std::vector<std::string>& listLines) {
  const std::string text = CanonicalSymbolText(symbol);
  listLines.push_back(" THE SPACE GROUP IS " + text);
  switch (ParseSpaceGroupSymbol(text, info)) {
    case SymbolStatus::kOk:
      break;
    case SymbolStatus::kBadCharacter:
      listLines.push_back(" *** WARNING  UNINTERPRETED SPACE GROUP SYMBOL " + text);
      return 1;
    case SymbolStatus::kSyntax:
      listLines.push_back(" ***** DID YOU TYPE THIS RECORD CORRECTLY?");
      listLines.push_back("       ERRORS OF SOME SORT WERE DETECTED.");
      listLines.push_back("       THE RECORD WAS READ AS: " + text);
      info.uniqueAxis = 4;
      return 1;
  }
  const ExpandStatus status = ExpandOperators(info);
  if (status == ExpandStatus::kCentreOffOrigin) {
    listLines.push_back(" A CENTER IS PRESENT, BUT NOT AT 0,0,0");
    return 1;
  }
  if (status == ExpandStatus::kWrongOperator) {
    for (GeneratorWord w : info.generatorWords) {
      if (IsValidGeneratorWord(w)) continue;
      listLines.push_back(FormatLine("(' SYMMETRY OPERATOR ',I6,' IS WRONG')", w));
    }
    listLines.push_back("Wrong symmetry operator");
    return 1;
  }
  return 0;
}

}  // namespace kaldena
