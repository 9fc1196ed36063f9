// The items of a column format and the walk through them, shared by the reader and the writer
// of column_format.h.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kaldena::columns {

enum class ItemKind {
  kText,        // Aw, A
  kInteger,     // Iw, Iw.m
  kFixed,       // Fw.d
  kExponent,    // Ew.d, Ew.dEe
  kSkip,        // nX
  kTab,         // Tn
  kTabLeft,     // TLn
  kTabRight,    // TRn
  kNextRecord,  // '/'
  kLiteral,     // 'text' or "text"
  kNoAdvance,   // '$'
  kGroupOpen,
  kGroupClose,
};

struct FormatItem {
  ItemKind kind;
  int repeat = 1;          // data items, '/' and groups
  int width = 0;           // field width (0 for A without width), or the count of X, T, TL, TR
  int digits = -1;         // d of F and E, m of I; -1 when not given
  int exponentDigits = 0;  // e of Ew.dEe; 0 when not given
  std::string literal = {};
  std::size_t partner = 0;  // index of the other parenthesis of a group
};

bool IsData(ItemKind kind);

// The items in order, groups bracketed by kGroupOpen/kGroupClose; outer parentheses around the
// whole format are dropped. Empty when the text is not a valid format.
std::optional<std::vector<FormatItem>> ParseFormat(std::string_view text);

// Walks the items as Fortran format control does: repeat counts unrolled, groups repeated,
// and on request reverted to the last top-level group.
class FormatWalk {
 public:
  explicit FormatWalk(const std::vector<FormatItem>& items);

  // The next item other than a parenthesis; nullptr at the end of the format.
  const FormatItem* Next();
  // Starts again at the last top-level group, or at the beginning when there is none.
  void Revert();
  // False when the part that Revert repeats has no data item, so reverting could never end.
  bool RevertsToData() const { return revertsToData_; }

 private:
  struct OpenGroup {
    std::size_t start;
    int left;
  };

  const std::vector<FormatItem>& items_;
  std::size_t reversionStart_ = 0;
  bool revertsToData_ = false;
  std::size_t index_ = 0;
  const FormatItem* current_ = nullptr;
  int currentLeft_ = 0;
  std::vector<OpenGroup> groups_;
};

}  // namespace kaldena::columns
