#include "util/format_items.h"

#include <cctype>

namespace kaldena::columns {

namespace {

// Bounds that keep a malformed format from asking for absurd fields or deep recursion.
constexpr int kMaxNumber = 32767;
constexpr int kMaxDepth = 32;

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  std::optional<std::vector<FormatItem>> Run() {
    if (!ParseList(0) || tooLarge_) return std::nullopt;
    DropOuterParentheses();
    return std::move(items_);
  }

 private:
  // Items up to the ')' closing a group (depth > 0) or to the end of the text (depth 0).
  bool ParseList(int depth) {
    while (true) {
      SkipSeparators();
      if (AtEnd()) return depth == 0;
      if (Peek() == ')') {
        ++pos_;
        return depth > 0;
      }
      if (!ParseItem(depth)) return false;
    }
  }

  bool ParseItem(int depth) {
    std::optional<int> count = Number();
    if (AtEnd() || count == 0) return false;
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(text_[pos_++])));
    switch (letter) {
      case '(':
        return ParseGroup(count.value_or(1), depth);
      case '\'':
      case '"':
        return !count && ParseLiteral(letter);
      case '/':
        return Add({.kind = ItemKind::kNextRecord, .repeat = count.value_or(1)});
      case '$':
        return !count && Add({.kind = ItemKind::kNoAdvance});
      case 'X':
        return Add({.kind = ItemKind::kSkip, .width = count.value_or(1)});
      case 'T':
        return !count && ParseTab();
      case 'A':
        return Add(
            {.kind = ItemKind::kText, .repeat = count.value_or(1), .width = Number().value_or(0)});
      case 'I':
        return ParseNumeric(ItemKind::kInteger, count.value_or(1));
      case 'F':
        return ParseNumeric(ItemKind::kFixed, count.value_or(1));
      case 'E':
        return ParseNumeric(ItemKind::kExponent, count.value_or(1));
      default:
        return false;
    }
  }

  bool ParseGroup(int repeat, int depth) {
    if (depth >= kMaxDepth) return false;
    const std::size_t open = items_.size();
    items_.push_back({.kind = ItemKind::kGroupOpen, .repeat = repeat});
    if (!ParseList(depth + 1)) return false;
    items_[open].partner = items_.size();
    items_.push_back({.kind = ItemKind::kGroupClose, .partner = open});
    return true;
  }

  // A doubled quote inside the literal stands for one quote.
  bool ParseLiteral(char quote) {
    std::string text;
    while (!AtEnd()) {
      const char c = text_[pos_++];
      if (c != quote) {
        text += c;
      } else if (!AtEnd() && Peek() == quote) {
        text += quote;
        ++pos_;
      } else {
        return Add({.kind = ItemKind::kLiteral, .literal = std::move(text)});
      }
    }
    return false;
  }

  bool ParseTab() {
    ItemKind kind = ItemKind::kTab;
    if (!AtEnd() && (Peek() == 'L' || Peek() == 'l')) kind = ItemKind::kTabLeft;
    if (!AtEnd() && (Peek() == 'R' || Peek() == 'r')) kind = ItemKind::kTabRight;
    if (kind != ItemKind::kTab) ++pos_;
    const std::optional<int> n = Number();
    return n > 0 && Add({.kind = kind, .width = *n});
  }

  // Iw[.m], Fw.d, Ew.d[Ee]: widths must be positive, F and E need d, E needs d > 0.
  bool ParseNumeric(ItemKind kind, int repeat) {
    FormatItem item{.kind = kind, .repeat = repeat};
    const std::optional<int> width = Number();
    if (!(width > 0)) return false;
    item.width = *width;
    if (Accept('.')) {
      const std::optional<int> digits = Number();
      if (!digits) return false;
      item.digits = *digits;
    }
    if (kind == ItemKind::kFixed && item.digits < 0) return false;
    if (kind == ItemKind::kExponent) {
      if (item.digits <= 0) return false;
      if (Accept('E') || Accept('e')) {
        const std::optional<int> e = Number();
        if (!(e > 0)) return false;
        item.exponentDigits = *e;
      }
    }
    return Add(std::move(item));
  }

  std::optional<int> Number() {
    std::optional<int> value;
    while (!AtEnd() && std::isdigit(static_cast<unsigned char>(Peek()))) {
      value = value.value_or(0) * 10 + (text_[pos_++] - '0');
      if (*value > kMaxNumber) {
        tooLarge_ = true;
        value = 1;
      }
    }
    return value;
  }

  bool Add(FormatItem item) {
    items_.push_back(std::move(item));
    return true;
  }

  // Blanks are insignificant between items; commas between items may be left out.
  void SkipSeparators() {
    while (!AtEnd() && (Peek() == ' ' || Peek() == ',')) ++pos_;
  }

  bool Accept(char c) {
    if (AtEnd() || Peek() != c) return false;
    ++pos_;
    return true;
  }

  void DropOuterParentheses() {
    if (items_.size() >= 2 && items_.front().kind == ItemKind::kGroupOpen &&
        items_.front().repeat == 1 && items_.front().partner == items_.size() - 1) {
      items_.pop_back();
      items_.erase(items_.begin());
      for (FormatItem& item : items_) --item.partner;
    }
  }

  bool AtEnd() const { return pos_ >= text_.size(); }
  char Peek() const { return text_[pos_]; }

  std::string_view text_;
  std::size_t pos_ = 0;
  bool tooLarge_ = false;
  std::vector<FormatItem> items_;
};

}  // namespace

bool IsData(ItemKind kind) {
  return kind == ItemKind::kText || kind == ItemKind::kInteger || kind == ItemKind::kFixed ||
         kind == ItemKind::kExponent;
}

std::optional<std::vector<FormatItem>> ParseFormat(std::string_view text) {
  return Parser(text).Run();
}

FormatWalk::FormatWalk(const std::vector<FormatItem>& items) : items_(items) {
  int depth = 0;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].kind == ItemKind::kGroupOpen && depth++ == 0) reversionStart_ = i;
    if (items_[i].kind == ItemKind::kGroupClose) --depth;
  }
  for (std::size_t i = reversionStart_; i < items_.size(); ++i) {
    revertsToData_ = revertsToData_ || IsData(items_[i].kind);
  }
}

const FormatItem* FormatWalk::Next() {
  if (currentLeft_ > 0) {
    --currentLeft_;
    return current_;
  }
  while (index_ < items_.size()) {
    const FormatItem& item = items_[index_++];
    if (item.kind == ItemKind::kGroupOpen) {
      groups_.push_back({index_, item.repeat});
    } else if (item.kind == ItemKind::kGroupClose) {
      if (--groups_.back().left > 0) {
        index_ = groups_.back().start;
      } else {
        groups_.pop_back();
      }
    } else {
      current_ = &item;
      currentLeft_ = item.repeat - 1;
      return current_;
    }
  }
  return nullptr;
}

void FormatWalk::Revert() {
  index_ = reversionStart_;
  currentLeft_ = 0;
  groups_.clear();
}

}  // namespace kaldena::columns
