#include "crystal/symbol_recipe.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kAlphabet = " CBAPFIRMND123456-/H.";

using Matrix = std::array<int, 9>;

constexpr Matrix kTwo110 = {0, 1, 0, 1, 0, 0, 0, 0, -1};     // y, x, -z
constexpr Matrix kTwo1m10 = {0, -1, 0, -1, 0, 0, 0, 0, -1};  // -y, -x, -z
constexpr Matrix kFourZ = {0, -1, 0, 1, 0, 0, 0, 0, 1};      // -y, x, z
constexpr Matrix kSixZ = {1, -1, 0, 1, 0, 0, 0, 0, 1};       // x-y, x, z

// A direction a field refers to, with its two-fold axis and the glide vectors of the plane
// normal to it (twelfths) by letter.
struct Direction {
  Matrix twoFold;
  std::array<int, 3> screwAxis;  // lattice vector along the axis, twelfths per full turn
  std::array<int, 3> a, b, c, n, d;
};

// Glide vectors: planes normal to x, y, z, the diagonal planes of tetragonal and cubic
// groups, those of the hexagonal groups and the rhombohedral axes. A zero vector marks a
// glide that does not lie in the plane.
constexpr Direction kAlongX = {kTwoFoldX, {12, 0, 0}, {0, 0, 0}, {0, 6, 0},
                               {0, 0, 6}, {0, 6, 6},  {0, 3, 3}};
constexpr Direction kAlongY = {kTwoFoldY, {0, 12, 0}, {6, 0, 0}, {0, 0, 0},
                               {0, 0, 6}, {6, 0, 6},  {3, 0, 3}};
constexpr Direction kAlongZ = {kTwoFoldZ, {0, 0, 12}, {6, 0, 0}, {0, 6, 0},
                               {0, 0, 0}, {6, 6, 0},  {3, 3, 0}};
// Plane normal to [1-10] (y, x, z) and the two-fold along [110].
constexpr Direction kDiagonal = {kTwo110,   {0, 0, 0}, {0, 0, 0}, {0, 0, 0},
                                 {0, 0, 6}, {6, 6, 6}, {3, 3, 3}};
// Hexagonal axes: second field two-fold along [110], plane -y, -x, z.
constexpr Direction kHexSecond = {kTwo110,   {0, 0, 0}, {0, 0, 0}, {0, 0, 0},
                                  {0, 0, 6}, {0, 0, 0}, {0, 0, 0}};
// Third field (and the second on rhombohedral axes): two-fold along [1-10], plane y, x, z.
constexpr Direction kHexThird = {kTwo1m10,  {0, 0, 0}, {0, 0, 0}, {0, 0, 0},
                                 {0, 0, 6}, {0, 0, 0}, {0, 0, 0}};
constexpr Direction kRhombohedral = {kTwo1m10,  {0, 0, 0}, {0, 0, 0}, {0, 0, 0},
                                     {6, 6, 6}, {0, 0, 0}, {0, 0, 0}};

// The parts of one field: an axis ("-4", "21", "63") and a plane letter behind it or alone.
struct FieldParts {
  bool bar = false;
  int digit = 0;  // 0 when the field is a plane alone
  int screw = 0;
  char letter = 0;
};

bool IsDigitChar(char c) { return c >= '0' && c <= '9'; }

std::optional<FieldParts> ReadField(std::string_view field) {
  FieldParts parts;
  size_t i = 0;
  if (i < field.size() && field[i] == '-') {
    parts.bar = true;
    ++i;
  }
  if (i < field.size() && IsDigitChar(field[i])) {
    parts.digit = field[i++] - '0';
    if (i < field.size() && IsDigitChar(field[i])) parts.screw = field[i++] - '0';
    if (i < field.size() && field[i] == '/') ++i;
  }
  for (; i < field.size(); ++i) {
    const char c = field[i];
    if (c == 'H') continue;
    if (std::string_view("ABCMND").find(c) == std::string_view::npos || parts.letter) return {};
    parts.letter = c;
  }
  const bool axisOk = parts.digit == 0 || parts.digit == 1 || parts.digit == 2 ||
                      parts.digit == 3 || parts.digit == 4 || parts.digit == 6;
  if (!axisOk || parts.screw >= std::max(parts.digit, 1) || (parts.bar && parts.digit == 2)) {
    return {};
  }
  if (parts.digit == 0 && !parts.letter) return {};
  if (parts.bar && (parts.digit == 0 || parts.letter)) return {};
  return parts;
}

std::optional<std::array<int, 3>> GlideVector(const Direction& d, char letter) {
  const std::array<int, 3> zero{0, 0, 0};
  std::array<int, 3> v{};
  switch (letter) {
    case 'M':
      return zero;
    case 'A':
      v = d.a;
      break;
    case 'B':
      v = d.b;
      break;
    case 'C':
      v = d.c;
      break;
    case 'N':
      v = d.n;
      break;
    case 'D':
      v = d.d;
      break;
    default:
      return {};
  }
  if (v == zero) return {};
  return v;
}

// Splits the symbol into fields of up to four characters.
SymbolStatus Tokenise(const std::string& symbol, std::vector<std::string>& fields) {
  for (char c : symbol) {
    if (kAlphabet.find(c) == std::string_view::npos) return SymbolStatus::kBadCharacter;
  }
  std::string current;
  for (char c : symbol) {
    if (c == ' ') {
      if (!current.empty()) fields.push_back(std::exchange(current, {}));
      continue;
    }
    if (current.size() == 4) fields.push_back(std::exchange(current, {}));
    if (fields.size() == 4) break;
    current.push_back(c);
  }
  if (!current.empty() && fields.size() < 4) fields.push_back(current);
  if (fields.size() < 2 || fields[0].size() != 1 ||
      kAlphabet.find(fields[0][0]) > kAlphabet.find('R')) {
    return SymbolStatus::kSyntax;
  }
  return SymbolStatus::kOk;
}

void SetLattice(SymbolRecipe& r) {
  switch (r.lattice) {
    case 'A':
      r.centringWords = {kACentringWord};
      break;
    case 'B':
      r.centringWords = {kBCentringWord};
      break;
    case 'C':
      r.centringWords = {kCCentringWord};
      break;
    case 'I':
      r.centringWords = {kICentringWord};
      break;
    case 'F':
      r.centringWords = {kACentringWord, kBCentringWord};
      break;
    default:
      break;
  }
  if (r.lattice != 'R') return;
  std::vector<std::string>& f = r.fields;
  if (f.size() >= 2 && f.back()[0] == 'R') {
    r.rhombohedralAxes = true;
    f.pop_back();
    return;
  }
  r.centringWords = {kRhombohedralCentringWord};
  if (!f.empty() && f.back() == "H") f.pop_back();
}

char AxisDigit(const std::string& field) { return field[0] == '-' ? field[1] : field[0]; }

bool SetLaueClass(SymbolRecipe& r) {
  const std::vector<std::string>& f = r.fields;
  const int n = static_cast<int>(f.size()) + 2;
  if (r.lattice == 'R') {
    if (n != 3 && n != 4) return false;
    r.laueClass = n + (r.rhombohedralAxes ? 3 : 5);
    return true;
  }
  if (n == 3) {
    const bool bar = f[0][0] == '-';
    const char d = bar ? (f[0].size() > 1 ? f[0][1] : ' ') : f[0][0];
    const std::string_view digits = "6341";
    constexpr int kClasses[] = {11, 8, 4, 1};
    const size_t k = digits.find(d);
    if (k != std::string_view::npos) {
      r.laueClass = kClasses[k];
      return true;
    }
    if (bar) return false;
    r.laueClass = 2;
    r.uniqueAxis = 2;
    return true;
  }
  if (n == 4) {
    r.laueClass = 13;
    return f[1][0] == '3';
  }
  const bool second1 = f[1] == "1";
  const bool third1 = f[2] == "1";
  if (f[1][0] == '3') {
    r.laueClass = 14;
  } else if (AxisDigit(f[0]) == '6') {
    r.laueClass = 12;
  } else if (AxisDigit(f[0]) == '4') {
    r.laueClass = 5;
  } else if (AxisDigit(f[0]) == '3') {
    if (second1 == third1) return false;
    r.laueClass = second1 ? 10 : 9;
  } else if (f[0] == "1") {
    if (second1 == third1) return false;
    r.laueClass = 2;
    r.uniqueAxis = second1 ? 3 : 2;
  } else if (second1) {
    if (!third1) return false;
    r.laueClass = 2;
    r.uniqueAxis = 1;
  } else {
    r.laueClass = 3;
  }
  return true;
}

// The direction each field refers to, by Laue class and field position.
const Direction* FieldDirection(const SymbolRecipe& r, size_t field) {
  const int laue = r.laueClass;
  if (laue == 2) {
    constexpr const Direction* kAxes[] = {&kAlongX, &kAlongY, &kAlongZ};
    return kAxes[r.uniqueAxis - 1];
  }
  if (laue == 3) {
    constexpr const Direction* kAxes[] = {&kAlongX, &kAlongY, &kAlongZ};
    return kAxes[field];
  }
  if (field == 0) return &kAlongZ;
  if (laue == 4 || laue == 5) return field == 1 ? &kAlongX : &kDiagonal;
  if (laue == 6 || laue == 7) return &kRhombohedral;
  if (laue >= 13) return &kDiagonal;
  return field == 1 ? &kHexSecond : &kHexThird;
}

// Rotation and screw of an axis field along `dir` (or of its first field along z).
Seitz AxisElement(const FieldParts& p, const Direction& dir, bool cubicThreeFold) {
  Seitz op;
  if (p.digit == 1) {
    op.r = p.bar ? kInversionRotation : kIdentityRotation;
    return op;
  }
  Matrix rot = kIdentityRotation;
  if (cubicThreeFold) {
    rot = kThreeFold111;
  } else if (p.digit == 2) {
    rot = dir.twoFold;
  } else if (p.digit == 3) {
    rot = kThreeFoldZ;
  } else if (p.digit == 4) {
    rot = kFourZ;
  } else if (p.digit == 6) {
    rot = kSixZ;
  }
  if (p.bar) rot = Negated(rot);
  op.r = rot;
  for (int i = 0; i < 3; ++i) op.t[i] = Wrap12(dir.screwAxis[i] * p.screw / p.digit);
  return op;
}

bool AddFieldElements(SymbolRecipe& r) {
  for (size_t i = 0; i < r.fields.size(); ++i) {
    std::optional<FieldParts> parts = ReadField(r.fields[i]);
    if (!parts) return false;
    // "I 4 3 D" is read as the group it can only mean, I -4 3 D.
    if (r.laueClass == 14 && i == 0 && parts->digit == 4 && !parts->bar && r.fields[2] == "D") {
      parts->bar = true;
    }
    const Direction& dir = *FieldDirection(r, i);
    const bool diagonal = &dir != &kAlongX && &dir != &kAlongY && &dir != &kAlongZ;
    const bool threeFold111 = (r.laueClass >= 13 && i == 1) || (r.rhombohedralAxes && i == 0);
    FieldElements field;
    if (parts->digit && !(parts->digit == 1 && !parts->bar)) {
      field.hasAxis = true;
      field.axis = AxisElement(*parts, dir, threeFold111);
      r.elements.push_back({field.axis, false, diagonal});
    }
    if (parts->letter) {
      const std::optional<std::array<int, 3>> glide = GlideVector(dir, parts->letter);
      if (!glide) return false;
      field.hasPlane = true;
      field.plane = Seitz{Negated(dir.twoFold), *glide};
      r.elements.push_back({field.plane, true, diagonal});
    }
    r.quarterSteps =
        r.quarterSteps || parts->letter == 'D' || (parts->digit == 4 && parts->screw % 2 == 1);
    r.fieldElements.push_back(field);
  }
  return true;
}

}  // namespace

std::string CanonicalSymbolText(std::string_view text) {
  std::string s = UpperText(text.substr(0, std::min<size_t>(text.size(), kSymbolLength)));
  s.resize(kSymbolLength, ' ');
  const std::string_view middle = std::string_view(s).substr(2, 4);
  if (middle == "M -3" || middle == "N -3" || middle == "D -3" || middle == "A -3") {
    s.erase(4, 1);
    s.push_back(' ');
  }
  return s;
}

SymbolStatus ReadSymbolRecipe(std::string_view text, SymbolRecipe& recipe) {
  recipe = SymbolRecipe{};
  recipe.symbol = CanonicalSymbolText(text);
  std::vector<std::string> fields;
  const SymbolStatus status = Tokenise(recipe.symbol, fields);
  if (status != SymbolStatus::kOk) return status;
  recipe.lattice = fields[0][0];
  recipe.fields.assign(fields.begin() + 1, fields.end());
  SetLattice(recipe);
  if (recipe.fields.empty() || !SetLaueClass(recipe) || !AddFieldElements(recipe)) {
    return SymbolStatus::kSyntax;
  }
  return SymbolStatus::kOk;
}

}  // namespace kaldena
