#include "crystal/space_group.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "crystal/generator_search.h"
#include "crystal/symbol_recipe.h"
#include "util/column_format.h"
#include "util/text.h"

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

// A number of a translation: "1/2", "0.25", "1".
bool ReadFraction(std::string_view text, float& value) {
  const std::size_t slash = text.find('/');
  const std::string top(text.substr(0, slash));
  char* end = nullptr;
  value = std::strtof(top.c_str(), &end);
  if (top.empty() || *end != '\0' || !std::isfinite(value)) return false;
  if (slash == std::string_view::npos) return true;
  const std::string bottom(text.substr(slash + 1));
  const long divisor = std::strtol(bottom.c_str(), &end, 10);
  if (bottom.empty() || *end != '\0' || divisor <= 0) return false;
  value /= static_cast<float>(divisor);
  return true;
}

// One row: signed terms, each a coordinate or a number.
bool ReadRow(std::string_view text, float* row) {
  std::fill(row, row + 4, 0.0f);
  std::size_t i = 0;
  while (i < text.size()) {
    float sign = 1.0f;
    if (text[i] == '+' || text[i] == '-') sign = text[i++] == '-' ? -1.0f : 1.0f;
    const std::size_t end = text.find_first_of("+-", i);
    const std::string_view term = text.substr(i, end == std::string_view::npos ? end : end - i);
    const std::size_t axis = std::string_view("xyz").find(LowerChar(term.empty() ? ' ' : term[0]));
    float value = 0.0f;
    if (term.size() == 1 && axis != std::string_view::npos) {
      row[axis] += sign;
    } else if (ReadFraction(term, value)) {
      row[3] += sign * value;
    } else {
      return false;
    }
    i = end == std::string_view::npos ? text.size() : end;
  }
  const bool unit = std::all_of(row, row + 3, [](float c) { return std::fabs(c) <= 1.0f; });
  return unit && (row[0] != 0.0f || row[1] != 0.0f || row[2] != 0.0f);
}

}  // namespace

std::string_view LaueClassLabel(int laueClass) {
  if (laueClass < 1 || laueClass > 14) return "        ";
  return kLaueLabels[laueClass - 1];
}

std::string OperatorText(const SymmetryOperator& op) {
  return RowText(&op[0]) + "," + RowText(&op[4]) + "," + RowText(&op[8]);
}

bool ReadOperatorText(std::string_view text, SymmetryOperator& op) {
  std::string compact;
  for (char c : text) {
    if (c != ' ' && c != '\t') compact += c;
  }
  std::string_view rest = compact;
  for (int row = 0; row < 3; ++row) {
    const std::size_t comma = rest.find(',');
    if ((row < 2) == (comma == std::string_view::npos)) return false;
    if (!ReadRow(rest.substr(0, comma), &op[4 * row])) return false;
    op[4 * row + 3] -= std::floor(op[4 * row + 3]);
    rest = row < 2 ? rest.substr(comma + 1) : std::string_view();
  }
  return true;
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
