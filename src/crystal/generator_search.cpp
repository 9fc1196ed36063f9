#include "crystal/generator_search.h"

#include <algorithm>
#include <unordered_set>

#include "util/text.h"

namespace kaldena {

namespace {

using Matrix = std::array<int, 9>;
using Vector = std::array<int, 3>;

// A set of operations, kept modulo whole cells.
class OperationSet {
 public:
  bool Contains(const Seitz& op) const { return keys_.count(op.Key()) > 0; }
  bool Add(const Seitz& op) {
    if (!keys_.insert(op.Key()).second) return false;
    ops_.push_back(op);
    return true;
  }
  const std::vector<Seitz>& Ops() const { return ops_; }

 private:
  std::unordered_set<int> keys_;
  std::vector<Seitz> ops_;
};

// The point group of the rotations, or an empty list when they make none: a crystal's point
// group has at most 48 elements.
std::vector<Matrix> RotationClosure(const std::vector<Matrix>& generators) {
  constexpr size_t kLargestPointGroup = 48;
  std::vector<Matrix> group = {Seitz().r};
  for (size_t i = 0; i < group.size(); ++i) {
    if (group.size() > kLargestPointGroup) return {};
    for (const Matrix& g : generators) {
      const Matrix product = Compose({g, {}}, {group[i], {}}).r;
      if (std::find(group.begin(), group.end(), product) == group.end()) group.push_back(product);
    }
  }
  return group;
}

bool HasInversion(const std::vector<Matrix>& group) {
  return std::find(group.begin(), group.end(), kInversionRotation) != group.end();
}

// The rotation a field contributes to the generators: its axis, or its plane alone.
Matrix FieldRotation(const SymbolRecipe& r, size_t field) {
  const FieldElements& f = r.fieldElements[field];
  return f.hasAxis ? f.axis.r : f.plane.r;
}

size_t MonoclinicField(const SymbolRecipe& r) {
  for (size_t i = 0; i < r.fields.size(); ++i) {
    if (r.fields[i] != "1") return i;
  }
  return 0;
}

Matrix Cube(const Matrix& m) {
  const Seitz s{m, {}};
  return Compose(s, Compose(s, s)).r;
}

// Rotations of the generators in expansion order, before the centre of symmetry.
std::vector<Matrix> SlotRotations(const SymbolRecipe& r) {
  switch (r.laueClass) {
    case 1:
      return {};
    case 2:
      return {FieldRotation(r, MonoclinicField(r))};
    case 3:
      return {FieldRotation(r, 0), FieldRotation(r, 1)};
    case 4:
      return {kTwoFoldZ, FieldRotation(r, 0)};
    case 5:
      return {kTwoFoldZ, FieldRotation(r, 0), FieldRotation(r, 1)};
    case 6:
    case 8:
      return {r.laueClass == 6 ? kThreeFold111 : kThreeFoldZ};
    case 7:
    case 9:
      return {r.laueClass == 7 ? kThreeFold111 : kThreeFoldZ, FieldRotation(r, 1)};
    case 10:
      return {kThreeFoldZ, FieldRotation(r, 2)};
    case 11:
      return {kThreeFoldZ, Cube(FieldRotation(r, 0))};
    case 12:
      return {kThreeFoldZ, Cube(FieldRotation(r, 0)), FieldRotation(r, 1)};
    case 13:
      return {kTwoFoldZ, kTwoFoldX, kThreeFold111};
    default: {
      const FieldElements& first = r.fieldElements[0];
      const bool fourFold = first.hasAxis && RotationOrder(first.axis.r) == 4;
      return {kTwoFoldZ, kTwoFoldX, kThreeFold111, fourFold ? first.axis.r : FieldRotation(r, 2)};
    }
  }
}

struct Slot {
  Matrix r;
  std::vector<Vector> candidates;
  bool named = false;  // an axis of the symbol: the generator carries its screw
  Vector screw{0, 0, 0};
};

bool IsThreeFoldWord(const Matrix& m) { return m == kThreeFoldZ || m == kThreeFold111; }

std::vector<Vector> Candidates(const SymbolRecipe& recipe, const Matrix& m) {
  if (m == kInversionRotation || m == kThreeFold111) return {{0, 0, 0}};
  if (m == kThreeFoldZ) return {{0, 0, 0}, {0, 0, 4}, {0, 0, 8}};
  std::vector<Vector> list;
  if (recipe.laueClass >= 8 && recipe.laueClass <= 12) {
    for (int z : {0, 6, 4, 8, 2, 10}) list.push_back({0, 0, z});
    return list;
  }
  const std::vector<int> steps =
      recipe.quarterSteps ? std::vector<int>{0, 6, 3, 9} : std::vector<int>{0, 6};
  for (int z : steps) {
    for (int y : steps) {
      for (int x : steps) list.push_back({x, y, z});
    }
  }
  auto nonZero = [](const Vector& v) { return (v[0] != 0) + (v[1] != 0) + (v[2] != 0); };
  std::stable_sort(list.begin(), list.end(),
                   [&](const Vector& a, const Vector& b) { return nonZero(a) < nonZero(b); });
  return list;
}

std::vector<Slot> Slots(const SymbolRecipe& recipe, bool centric) {
  std::vector<Slot> slots;
  for (Matrix m : SlotRotations(recipe)) {
    if (centric && Determinant(m) < 0) m = Negated(m);
    Slot slot{m, Candidates(recipe, m)};
    for (const SymbolElement& e : recipe.elements) {
      if (!e.plane && e.op.r == m) {
        slot.named = true;
        slot.screw = e.op.t;
      }
    }
    slots.push_back(slot);
  }
  if (centric) slots.push_back({kInversionRotation, {{0, 0, 0}}});
  return slots;
}

OperationSet LatticeTranslations(const std::vector<GeneratorWord>& centringWords) {
  OperationSet set;
  set.Add(Seitz());
  for (GeneratorWord word : centringWords) {
    const Seitz centring = UnpackWord(word);
    const std::vector<Seitz> before = set.Ops();
    for (const Seitz& op : before) {
      set.Add(Compose(centring, op));
      set.Add(Compose(centring, Compose(centring, op)));
    }
  }
  return set;
}

// True when g extends the group by the factor `index`: g^index lies in it, g does not, and g
// maps the group onto itself by conjugation.
bool Extends(const OperationSet& group, const Seitz& g, int index) {
  if (group.Contains(g)) return false;
  Seitz power = g;
  for (int i = 1; i < index; ++i) power = Compose(g, power);
  if (!group.Contains(power)) return false;
  const Seitz inverse = Inverse(g);
  for (const Seitz& h : group.Ops()) {
    if (!group.Contains(Compose(g, Compose(h, inverse)))) return false;
  }
  return true;
}

OperationSet Extended(const OperationSet& group, const Seitz& g, int index) {
  OperationSet next = group;
  Seitz power = g;
  for (int i = 1; i < index; ++i) {
    for (const Seitz& h : group.Ops()) next.Add(Compose(power, h));
    power = Compose(g, power);
  }
  return next;
}

// A named element as its rotation and screw or glide part, in every direction that the
// point group makes equivalent: "2" in the last field of P 42 3 2 is a pure two-fold along
// [1-10], while the two-fold along [110] is a screw.
struct NamedElement {
  std::vector<Seitz> variants;
  bool plane = false;
  bool dGlide = false;  // a d-glide is met by either sense of its quarter translation
};

std::vector<NamedElement> NamedElements(const SymbolRecipe& recipe,
                                        const std::vector<Matrix>& pointGroup) {
  std::vector<NamedElement> named;
  for (const SymbolElement& e : recipe.elements) {
    NamedElement n;
    n.plane = e.plane;
    n.dGlide =
        e.plane && std::any_of(e.op.t.begin(), e.op.t.end(), [](int t) { return t % 6 != 0; });
    for (const Matrix& p : pointGroup) {
      if (!e.anyDirection && !e.plane && p != Seitz().r) continue;
      const Seitz rotate{p, {0, 0, 0}};
      const Seitz moved = Compose(rotate, Compose(e.op, Inverse(rotate)));
      if (std::find(n.variants.begin(), n.variants.end(), moved) == n.variants.end()) {
        n.variants.push_back(moved);
      }
    }
    named.push_back(n);
  }
  return named;
}

bool Matches(const Seitz& op, const Seitz& variant, bool dGlide) {
  if (op.r != variant.r) return false;
  const Vector intrinsic = IntrinsicTranslation(op);
  for (int i = 0; i < 3; ++i) {
    const int want = variant.t[i];
    if (dGlide ? Wrap12(2 * intrinsic[i]) != Wrap12(2 * want) : intrinsic[i] != want) {
      return false;
    }
  }
  return true;
}

// The operations that the generators make without the centring translations.
std::vector<Seitz> Representatives(const std::vector<Seitz>& generators) {
  std::vector<Seitz> reps = {Seitz()};
  for (const Seitz& g : generators) {
    const size_t before = reps.size();
    const int index = IsThreeFoldWord(g.r) ? 3 : 2;
    Seitz power = g;
    for (int i = 1; i < index; ++i) {
      for (size_t k = 0; k < before; ++k) reps.push_back(Compose(power, reps[k]));
      power = Compose(g, power);
    }
  }
  return reps;
}

// Every screw and glide that the symbol names stands in the group. Axes must stand among the
// operations that the generators make without the centring: so "I 21 21 21" keeps its screws
// apart from the two-folds that the centring brings, and does not become I 2 2 2 elsewhere.
bool NamesAreMet(const std::vector<NamedElement>& named, const std::vector<Seitz>& reps,
                 const OperationSet& group) {
  for (const NamedElement& element : named) {
    bool met = false;
    for (const Seitz& op : element.plane ? group.Ops() : reps) {
      for (const Seitz& v : element.variants) met = met || Matches(op, v, element.dGlide);
      if (met) break;
    }
    if (!met) return false;
  }
  return true;
}

// Where the site symmetry leaves the origin open, the International Tables put it on an element
// that the symbol names: in a monoclinic group on its glide plane ("C 1 n 1" has the n-glide
// through the origin, not the c-glide that the centring makes of it a quarter cell away), in
// an orthorhombic group without a centre on its axis ("P b c 21" on the 21).
bool NamedThroughOrigin(const SymbolRecipe& recipe, const SymbolElement& e) {
  if (recipe.laueClass == 2) return e.plane;
  return recipe.laueClass == 3 && !e.plane && Determinant(e.op.r) > 0;
}

// How well an origin serves: the order of its site symmetry, then the number of proper
// rotations through it, then the number of named elements that the rule above puts on it.
// The standard settings put the origin on the highest site symmetry.
int OriginScore(const OperationSet& group, const SymbolRecipe& recipe) {
  int site = 0;
  int proper = 0;
  for (const Seitz& op : group.Ops()) {
    if (op.t != Vector{0, 0, 0}) continue;
    ++site;
    if (Determinant(op.r) > 0) ++proper;
  }
  int named = 0;
  for (const SymbolElement& e : recipe.elements) {
    if (NamedThroughOrigin(recipe, e) && group.Contains(e.op)) ++named;
  }
  return 10000 * site + 100 * proper + named;
}

struct SearchState {
  const SymbolRecipe& recipe;
  const std::vector<NamedElement>& named;
  const std::vector<Slot>& slots;
  std::vector<Seitz> chosen;
  std::vector<Seitz> best;
  int bestScore = -1;
};

void Search(SearchState& s, size_t k, const OperationSet& group) {
  if (k == s.slots.size()) {
    if (!NamesAreMet(s.named, Representatives(s.chosen), group)) return;
    const int score = OriginScore(group, s.recipe);
    if (score > s.bestScore) {
      s.bestScore = score;
      s.best = s.chosen;
    }
    return;
  }
  const int index = IsThreeFoldWord(s.slots[k].r) ? 3 : 2;
  for (const Vector& t : s.slots[k].candidates) {
    const Seitz g{s.slots[k].r, t};
    if (s.slots[k].named && IntrinsicTranslation(g) != s.slots[k].screw) continue;
    if (!Extends(group, g, index)) continue;
    s.chosen.push_back(g);
    Search(s, k + 1, Extended(group, g, index));
    s.chosen.pop_back();
  }
}

// "I 21 21 21" and "I 21 3" differ from "I 2 2 2" and "I 2 3" only in that their two-fold
// axes do not meet; with the body centring both kinds of axis stand in either group. Their
// screws are therefore settled as in the primitive group, and the centring added after.
bool ScrewsApart(const SymbolRecipe& recipe) {
  if (recipe.lattice != 'I') return false;
  bool screw = false;
  for (const SymbolElement& e : recipe.elements) {
    if (e.plane || RotationOrder(e.op.r) != 2) continue;
    if (e.op.t == Vector{0, 0, 0}) return false;
    screw = true;
  }
  return screw;
}

// Standard origins that the site-symmetry rule leaves open: groups whose highest site
// symmetry stands at several inequivalent points, or that have no special site at all. The
// International Tables choose one by convention; each row moves the origin that the search
// found to that one, in 24ths of the cell edges. The other settings of a group keep the origin
// of its standard setting under the change of axes; they have a row where the search, which
// tries shifts along x before y before z, lands on another of the open origins (the last rows:
// settings of P 2 2 21, C 2 2 21, C m m a, C c c a and I m m a).
struct OriginShift {
  std::string_view symbol;
  Vector shift;
};

constexpr OriginShift kOriginShifts[] = {
    {"P 21 21 21", {0, 6, 0}}, {"I 21 21 21", {0, 6, 0}},  {"C C C A", {6, 6, 0}},
    {"I B C A", {6, 6, 6}},    {"I 41", {0, 12, 0}},       {"P 42/N", {0, 12, 0}},
    {"I 41/A", {6, 6, 6}},     {"P 4 21 2", {0, 12, 0}},   {"P 41 2 2", {0, 0, 6}},
    {"P 41 21 2", {0, 0, 6}},  {"P 43 2 2", {0, 0, 6}},    {"I 41 2 2", {0, 12, 6}},
    {"I 41 M D", {0, 12, 0}},  {"I 41 C D", {0, 12, 0}},   {"P -4 2 C", {0, 0, 6}},
    {"P -4 C 2", {0, 0, 6}},   {"P -4 B 2", {0, 12, 0}},   {"P -4 N 2", {0, 12, 6}},
    {"I -4 C 2", {0, 0, 6}},   {"I 41/A M D", {6, 18, 6}}, {"I 41/A C D", {6, 18, 6}},
    {"P 31 1 2", {0, 0, 4}},   {"P 32 1 2", {0, 0, 8}},    {"P 61 2 2", {0, 0, 8}},
    {"P 65 2 2", {0, 0, 4}},   {"P 62 2 2", {0, 0, 4}},    {"P 64 2 2", {0, 0, 8}},
    {"I A 3", {6, 6, 6}},      {"P 43 3 2", {9, 9, 9}},    {"P 41 3 2", {3, 3, 3}},
    {"I 41 3 2", {9, 9, 9}},   {"I -4 3 D", {6, 6, 6}},    {"I 4 3 D", {6, 6, 6}},
    {"I A 3 D", {6, 6, 6}},    {"P 2 21 2", {0, 6, 0}},    {"B 2 21 2", {0, 6, 0}},
    {"C M M B", {6, 6, 0}},    {"A C M M", {0, 6, 6}},     {"B M C M", {6, 0, 6}},
    {"A B A A", {0, 6, 6}},    {"B B A B", {6, 0, 6}},     {"I M M B", {6, 6, 6}},
    {"I B M M", {6, 6, 6}},    {"I M C M", {6, 6, 6}},
};

// The generators seen from an origin at p (24ths): t' = t + (R - I) p. A centre of symmetry
// moved onto a centring vector is brought back to the origin.
bool ShiftOrigin(std::string_view symbol, const OperationSet& lattice,
                 std::vector<Seitz>& generators) {
  const auto row = std::find_if(std::begin(kOriginShifts), std::end(kOriginShifts),
                                [&](const OriginShift& o) { return o.symbol == symbol; });
  if (row == std::end(kOriginShifts)) return true;
  for (Seitz& g : generators) {
    for (int i = 0; i < 3; ++i) {
      int moved = 2 * g.t[i] - row->shift[i];
      for (int j = 0; j < 3; ++j) moved += g.r[3 * i + j] * row->shift[j];
      if (moved % 2 != 0) return false;
      g.t[i] = Wrap12(moved / 2);
    }
    if (g.r != kInversionRotation) continue;
    for (const Seitz& c : lattice.Ops()) {
      if (c.t == g.t) g.t = {0, 0, 0};
    }
  }
  return true;
}

GeneratorWord WordOf(const Seitz& g) {
  if (g.r == kThreeFold111) return kDiagonalThreeFoldWord;
  if (g.r == kThreeFoldZ) return kRhombohedralCentringWord + 4 * (1 + g.t[2] / 4);
  return PackWord(g);
}

}  // namespace

bool FindGeneratorWords(const SymbolRecipe& recipe, std::vector<GeneratorWord>& words) {
  std::vector<Matrix> namedRotations;
  for (const SymbolElement& e : recipe.elements) namedRotations.push_back(e.op.r);
  const std::vector<Matrix> pointGroup = RotationClosure(namedRotations);
  if (pointGroup.empty()) return false;
  const bool centric = HasInversion(pointGroup);
  const std::vector<Slot> slots = Slots(recipe, centric);

  // The generators must span the point group that the fields name, no more and no less.
  std::vector<Matrix> slotRotations;
  for (const Slot& s : slots) slotRotations.push_back(s.r);
  if (RotationClosure(slotRotations).size() != pointGroup.size()) return false;

  const std::vector<NamedElement> named = NamedElements(recipe, pointGroup);
  SearchState state{recipe, named, slots, {}, {}, -1};
  Search(state, 0,
         LatticeTranslations(ScrewsApart(recipe) ? std::vector<GeneratorWord>{}
                                                 : recipe.centringWords));
  if (state.bestScore < 0) return false;
  const OperationSet lattice = LatticeTranslations(recipe.centringWords);
  if (!ShiftOrigin(Trimmed(recipe.symbol), lattice, state.best)) return false;
  words = recipe.centringWords;
  for (const Seitz& g : state.best) {
    const GeneratorWord word = WordOf(g);
    if (word < 0) return false;
    words.push_back(word);
  }
  return true;
}

}  // namespace kaldena
