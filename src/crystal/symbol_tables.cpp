#include "crystal/symbol_tables.h"

#include <algorithm>
#include <span>
#include <vector>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::size_t kSymbolLength = 20;
constexpr std::size_t kNameLength = 12;

// ---- Class codes ----------------------------------------------------------------------------

// One row of the class table: the axes of the three symmetry fields, '*' matching any, and the
// lattice letter the row asks for, ' ' for any.
struct ClassRow {
  std::string_view axes;
  char lattice;
  int code;
};

// These rows see a missing field as a blank, so that "P 21/C" is told from "P 21/C 1 1".
constexpr ClassRow kMonoclinicRows[] = {
    {"M  ", ' ', kMonoclinicBClass},
    {"M11", ' ', kMonoclinicAClass},
    {"1M1", ' ', kMonoclinicBClass},
    {"11M", ' ', kMonoclinicCClass},
};

// These see a missing field as "1". The first row that fits gives the code.
constexpr ClassRow kClassRows[] = {
    {"111", ' ', kTriclinicClass},        {"MMM", ' ', kOrthorhombicClass},
    {"411", ' ', kTetragonalLowClass},    {"4MM", ' ', kTetragonalHighClass},
    {"311", 'P', kTrigonalLowClass},      {"3M1", 'P', kTrigonalM1Class},
    {"3**", 'P', kTrigonal1MClass},       {"311", 'R', kRhombohedralLowClass},
    {"3M*", 'R', kRhombohedralHighClass}, {"611", ' ', kHexagonalLowClass},
    {"6MM", ' ', kHexagonalHighClass},    {"M31", ' ', kCubicLowClass},
    {"M3M", ' ', kCubicHighClass},        {"43M", ' ', kCubicHighClass},
};

// The first character of a symmetry field, with a bar dropped and glides and two-folds taken
// as mirrors. A screw digit stands second, so "21" and "63" count as their plain axes.
char FieldAxis(std::string_view word) {
  if (!word.empty() && word.front() == '-') word.remove_prefix(1);
  if (word.empty()) return ' ';
  return std::string_view("ABCDN2").find(word.front()) == std::string_view::npos ? word.front()
                                                                                 : 'M';
}

bool RowFits(const ClassRow& row, std::string_view axes, char lattice) {
  if (row.lattice != ' ' && row.lattice != lattice) return false;
  for (std::size_t i = 0; i < axes.size(); ++i) {
    if (row.axes[i] != '*' && row.axes[i] != axes[i]) return false;
  }
  return true;
}

int FirstFittingCode(std::span<const ClassRow> rows, std::string_view axes, char lattice) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const ClassRow& r) { return RowFits(r, axes, lattice); });
  return row == rows.end() ? 0 : row->code;
}

// The symmetry words behind the lattice letter, without a trailing R or H field of an R
// lattice: that field only names the axes.
std::vector<std::string> SymmetryWords(std::string_view symbol) {
  std::vector<std::string> words;
  for (int n = 1; n <= 3; ++n) words.push_back(SplitWords(symbol.substr(2), n));
  const auto last =
      std::find_if(words.rbegin(), words.rend(), [](const std::string& w) { return !w.empty(); });
  if (symbol.front() == 'R' && last != words.rend() && (*last == "R" || *last == "H")) {
    last->clear();
  }
  return words;
}

// ---- Crystal systems ------------------------------------------------------------------------

constexpr std::string_view kSystemNames[] = {
    "Triclinic", "Monoclinic", "Orthorhombic", "Hexagonal", "Rhombohedral", "Tetragonal", "Cubic"};

// 1-based row of kSystemNames. A cell with a equal to b is never named below tetragonal,
// whatever its angles.
int CrystalSystemNumber(const std::array<float, 6>& cell) {
  const auto [a, b, c, alpha, beta, gamma] = cell;
  if (a == b) {
    int number = gamma == 120.0f ? 4 : 6;
    if (b == c) number = alpha == 90.0f ? 7 : 5;
    return number;
  }
  if (alpha == 90.0f && beta == 90.0f && gamma == 90.0f) return 3;
  const bool twoRightAngles =
      (alpha == 90.0f && (beta == 90.0f || gamma == 90.0f)) || (beta == 90.0f && gamma == 90.0f);
  return twoRightAngles ? 2 : 1;
}

// ---- Origin choices -------------------------------------------------------------------------

constexpr std::string_view kOriginChoiceGroups[] = {
    "PNNN",    "PBAN",    "PMMN",   "CCCA",   "FDDD",    "P4/N",    "P42/N",   "I41/A",
    "P4/NBM",  "P4/NNC",  "P4/NMM", "P4/NCC", "P42/NBC", "P42/NNM", "P42/NMC", "P42/NCM",
    "I41/AMD", "I41/ACD", "PN3N",   "PN3M",   "FD3M",    "FD3C"};

constexpr std::string_view kCubicBars[] = {"M-3", "N-3", "D-3", "A-3"};

// ---- Printed symbols ------------------------------------------------------------------------

constexpr std::string_view kLatticeLetters = "PFABCIR";
constexpr std::string_view kPlaneLetters = "MABCDNE";
constexpr std::size_t kMostFields = 3;

// One symmetry field of a symbol being read.
struct Field {
  std::string text;  // as it is written out: "21/C", "-3", "M"
  char axis = ' ';   // '1' to '6' for a rotation, ' ' for a mirror or glide
  bool screw = false;
};

std::string WithoutBrackets(std::string_view text) {
  std::string result;
  int depth = 0;
  for (const char c : text) {
    if (c == '(') {
      ++depth;
    } else if (c == ')') {
      depth = std::max(depth - 1, 0);
    } else if (depth == 0) {
      result += c;
    }
  }
  return result;
}

// Takes the setting off behind the symbol: ":R", ":H", ":1" or, for an R lattice, a last word
// "R" or "H". True for rhombohedral axes, which the reader takes from a trailing R field;
// hexagonal axes are its default, and an origin choice it cannot be told.
bool SplitSetting(std::string& text) {
  std::string setting;
  const std::size_t colon = text.find(':');
  const std::size_t lastBlank = text.rfind(' ');
  if (colon != std::string::npos) {
    setting = StrippedText(std::string_view(text).substr(colon + 1));
    text.erase(colon);
  } else if (text.front() == 'R' && lastBlank != std::string::npos) {
    setting = text.substr(lastBlank + 1);
    if (setting == "R" || setting == "H") text.erase(lastBlank);
  }
  return text.front() == 'R' && setting == "R";
}

// A rotation field of `length` characters (bar, axis, screw digit), with the "/" plane that
// may follow a two-, four- or six-fold axis.
Field RotationField(std::string_view rest, std::size_t length, bool screw) {
  const char axis = rest[length - (screw ? 2 : 1)];
  const bool plane = length + 1 < rest.size() && rest[length] == '/' &&
                     std::string_view("246").find(axis) != std::string_view::npos &&
                     kPlaneLetters.find(rest[length + 1]) != std::string_view::npos;
  return Field{std::string(rest.substr(0, plane ? length + 2 : length)), axis, screw};
}

// The readings of the field at the start of `rest`. A digit behind an axis may be its screw
// or the next field ("P3121" against "P312"), so both readings are offered, the screw first.
std::vector<Field> FieldReadings(std::string_view rest) {
  if (kPlaneLetters.find(rest.front()) != std::string_view::npos) {
    return {Field{std::string(1, rest.front())}};
  }
  const bool bar = rest.front() == '-';
  const std::size_t length = bar ? 2 : 1;
  const std::string_view axes = bar ? "1346" : "12346";
  if (rest.size() < length || axes.find(rest[length - 1]) == std::string_view::npos) return {};
  std::vector<Field> readings;
  const char axis = rest[length - 1];
  if (!bar && length < rest.size() && rest[length] >= '1' && rest[length] < axis) {
    readings.push_back(RotationField(rest, length + 1, true));
  }
  readings.push_back(RotationField(rest, length, false));
  return readings;
}

bool IsOne(const Field& field) { return field.text == "1"; }
// A two-fold, screw or not, or a mirror or glide: what an orthorhombic field holds.
bool IsPlane(const Field& field) { return field.axis == '2' || field.axis == ' '; }
// The same without a screw: the side fields of trigonal, hexagonal and cubic symbols.
bool IsPlainPlane(const Field& field) { return IsPlane(field) && !field.screw; }
bool IsPlainThree(const Field& field) { return field.axis == '3' && !field.screw; }

// "P 1 21/C 1" and its kind, or orthorhombic.
bool IsLowSymbol(const std::vector<Field>& fields) {
  const auto ones = std::count_if(fields.begin(), fields.end(), IsOne);
  const auto planes = std::count_if(fields.begin(), fields.end(), IsPlane);
  return (ones == 2 && planes == 1) || planes == 3;
}

bool IsThreeFieldSymbol(const std::vector<Field>& fields) {
  const Field& first = fields[0];
  if (IsPlainThree(fields[1])) {  // cubic
    return (IsPlane(first) || first.axis == '4') && IsPlainPlane(fields[2]);
  }
  switch (first.axis) {
    case '3':
      return IsOne(fields[1]) != IsOne(fields[2]) &&
             IsPlainPlane(IsOne(fields[1]) ? fields[2] : fields[1]);
    case '4':
      return IsPlane(fields[1]) && IsPlainPlane(fields[2]);
    case '6':
      return IsPlainPlane(fields[1]) && IsPlainPlane(fields[2]);
    default:
      return IsLowSymbol(fields);
  }
}

// Whether the fields make a Hermann-Mauguin symbol: this is what decides between the readings
// of the digits behind an axis.
bool IsSymbol(char lattice, const std::vector<Field>& fields) {
  switch (fields.size()) {
    case 1:
      return lattice != 'R' || IsPlainThree(fields[0]);
    case 2:
      return lattice == 'R' ? IsPlainThree(fields[0]) && IsPlainPlane(fields[1])
                            : IsPlane(fields[0]) && IsPlainThree(fields[1]);
    case 3:
      return IsThreeFieldSymbol(fields);
    default:
      return false;
  }
}

// Reads the text behind the lattice letter into `fields`, trying the readings of each field in
// turn until the fields make a symbol. A blank always ends a field: "P 3 21 2" is not "P3212".
bool ReadFields(std::string_view rest, char lattice, std::vector<Field>& fields) {
  const std::size_t start = rest.find_first_not_of(' ');
  if (start == std::string_view::npos) return IsSymbol(lattice, fields);
  rest.remove_prefix(start);
  if (fields.size() == kMostFields) return false;
  for (Field& field : FieldReadings(rest)) {
    const std::size_t length = field.text.size();
    fields.push_back(std::move(field));
    if (ReadFields(rest.substr(length), lattice, fields)) return true;
    fields.pop_back();
  }
  return false;
}

// "P4_2/mnm" is "P42/mnm": the screw digit is written as a subscript.
std::string WithoutUnderscores(std::string_view text) {
  std::string result(text);
  std::erase(result, '_');
  return result;
}

// The reader knows no e-glide. Its plane holds the centring vector, so either glide in the
// plane serves: b for the plane normal to a, c for b, a for c ("CMCE" is "CMCA").
std::string WithoutEGlide(std::string text, std::size_t place) {
  std::replace(text.begin(), text.end(), 'E', "BCA"[place]);
  return text;
}

std::string Written(char lattice, std::vector<Field> fields, bool rhombohedralAxes) {
  // The standard monoclinic setting is written with its one field, "P 21/C".
  if (fields.size() == 3 && IsOne(fields[0]) && IsOne(fields[2])) fields = {fields[1]};
  std::string result(1, lattice);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    result += ' ' + WithoutEGlide(fields[i].text, i);
  }
  if (rhombohedralAxes) result += " R";
  return result;
}

// One pass over the text: a long symbol is joined in linear time.
std::string JoinedWords(std::string_view text) {
  std::string result;
  for (std::size_t end = 0;;) {
    const std::size_t start = text.find_first_not_of(' ', end);
    if (start == std::string_view::npos) return result;
    end = std::min(text.find(' ', start), text.size());
    if (!result.empty()) result += ' ';
    result += text.substr(start, end - start);
  }
}

}  // namespace

int SymbolClass(std::string_view symbol) {
  const std::string text = UpperText(LeftJustify(symbol.substr(0, kSymbolLength)));
  if (text.size() < 2) return kTriclinicClass;
  const std::vector<std::string> words = SymmetryWords(text);
  std::string axes;
  for (const std::string& word : words) axes += FieldAxis(word);
  if (const int code = FirstFittingCode(kMonoclinicRows, axes, text.front())) return code;
  std::replace(axes.begin() + 1, axes.end(), ' ', '1');
  const int code = FirstFittingCode(kClassRows, axes, text.front());
  return code == 0 ? kTriclinicClass : code;
}

std::string CrystalSystemName(const std::array<float, 6>& cell) {
  std::string name(kSystemNames[CrystalSystemNumber(cell) - 1]);
  name.resize(kNameLength, ' ');
  return name;
}

int OriginChoiceIndex(std::string_view symbol) {
  std::string text(Trimmed(RemoveBlanks(UpperText(symbol))));
  if (text.size() >= 4 &&
      std::ranges::find(kCubicBars, text.substr(1, 3)) != std::end(kCubicBars)) {
    text.erase(2, 1);
  }
  const auto row = std::ranges::find(kOriginChoiceGroups, text);
  return row == std::end(kOriginChoiceGroups) ? 0 : static_cast<int>(row - kOriginChoiceGroups) + 1;
}

int PrintedOriginChoice(std::string_view symbol) {
  const std::string text = UpperText(symbol);
  for (const std::string_view mark : {":", "ORIGIN CHOICE", "ORIGIN"}) {
    const std::size_t at = text.find(mark);
    if (at == std::string::npos) continue;
    const std::size_t digit = text.find_first_not_of(' ', at + mark.size());
    if (digit == std::string::npos) return 0;
    return text[digit] == '1' ? 1 : text[digit] == '2' ? 2 : 0;
  }
  return 0;
}

std::string ConvertPrintedSymbol(std::string_view symbol) {
  const std::string text = StrippedText(UpperText(WithoutBrackets(symbol)));
  if (text.empty() || kLatticeLetters.find(text.front()) == std::string_view::npos) {
    return std::string(symbol);
  }
  std::string symmetry = text;
  const bool rhombohedralAxes = SplitSetting(symmetry);
  std::vector<Field> fields;
  if (!ReadFields(WithoutUnderscores(std::string_view(symmetry).substr(1)), text.front(), fields)) {
    return JoinedWords(text);
  }
  return Written(text.front(), std::move(fields), rhombohedralAxes);
}

}  // namespace kaldena
