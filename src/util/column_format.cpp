#include "util/column_format.h"

#include <algorithm>
#include <vector>

#include "util/column_fields.h"
#include "util/format_items.h"

namespace kaldena {

namespace {

using columns::FormatItem;
using columns::FormatWalk;
using columns::ItemKind;

// Moves of the position shared by X, T, TL and TR; the position never goes before the start.
std::size_t MovedColumn(std::size_t column, const FormatItem& item) {
  const std::size_t n = static_cast<std::size_t>(item.width);
  switch (item.kind) {
    case ItemKind::kTab:
      return n - 1;
    case ItemKind::kTabLeft:
      return column > n ? column - n : 0;
    default:
      return column + n;  // X, TR
  }
}

bool IsMove(ItemKind kind) {
  return kind == ItemKind::kSkip || kind == ItemKind::kTab || kind == ItemKind::kTabLeft ||
         kind == ItemKind::kTabRight;
}

// --- Writing ---

// The record being written. Moving the position writes nothing, so a skip at the end of a
// record leaves no trailing blanks; a field placed behind the text pads the gap with blanks.
class RecordWriter {
 public:
  void Put(std::string_view field) {
    if (column_ > record_.size()) record_.resize(column_, ' ');
    record_.replace(column_, std::min(field.size(), record_.size() - column_), field);
    column_ += field.size();
  }

  void Move(const FormatItem& item) { column_ = MovedColumn(column_, item); }

  void EndRecord() {
    text_ += record_;
    text_ += '\n';
    record_.clear();
    column_ = 0;
  }

  std::string Finish(bool lineEnd) {
    text_ += record_;
    if (lineEnd) text_ += '\n';
    return std::move(text_);
  }

 private:
  std::string text_;
  std::string record_;
  std::size_t column_ = 0;
};

// A value of the wrong kind for its item fills the field with asterisks; integers may go
// to F and E.
std::string Field(const FormatItem& item, const FormatArg& arg) {
  const auto* integer = std::get_if<long long>(&arg.Value());
  const auto* real = std::get_if<double>(&arg.Value());
  const auto* text = std::get_if<std::string_view>(&arg.Value());
  const int width = item.width;
  switch (item.kind) {
    case ItemKind::kText:
      return text ? columns::TextField(*text, width) : columns::Asterisks(std::max(width, 1));
    case ItemKind::kInteger:
      return integer ? columns::IntegerField(*integer, width, item.digits)
                     : columns::Asterisks(width);
    default:
      if (text) return columns::Asterisks(width);
      const double value = real ? *real : static_cast<double>(*integer);
      return item.kind == ItemKind::kFixed
                 ? columns::FixedField(value, width, item.digits)
                 : columns::ExponentField(value, width, item.digits, item.exponentDigits);
  }
}

// Once a '$' has been met, gfortran ends no more records: neither '/' nor reversion starts
// a new one.
std::string WriteItems(const std::vector<FormatItem>& items, std::span<const FormatArg> args) {
  RecordWriter writer;
  FormatWalk walk(items);
  std::size_t next = 0;
  bool noAdvance = false;
  while (true) {
    const FormatItem* item = walk.Next();
    if (item == nullptr) {
      if (next == args.size() || !walk.RevertsToData()) break;
      if (!noAdvance) writer.EndRecord();
      walk.Revert();
    } else if (columns::IsData(item->kind)) {
      if (next == args.size()) break;
      writer.Put(Field(*item, args[next++]));
    } else if (IsMove(item->kind)) {
      writer.Move(*item);
    } else if (item->kind == ItemKind::kLiteral) {
      writer.Put(item->literal);
    } else if (item->kind == ItemKind::kNextRecord) {
      if (!noAdvance) writer.EndRecord();
    } else {
      noAdvance = true;
    }
  }
  return writer.Finish(!noAdvance);
}

// --- Reading ---

class RecordReader {
 public:
  explicit RecordReader(std::string_view text) {
    std::size_t start = 0;
    while (true) {
      const std::size_t end = text.find('\n', start);
      std::string_view line = text.substr(start, end - start);
      if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
      records_.push_back(line);
      if (end == std::string_view::npos || end + 1 == text.size()) break;
      start = end + 1;
    }
  }

  bool NextRecord() {
    ++index_;
    column_ = 0;
    return index_ < records_.size();
  }

  void Move(const FormatItem& item) { column_ = MovedColumn(column_, item); }

  // The field at the position, cut at the record end. A comma ends a numeric field early and
  // the next field begins behind it.
  std::string_view Take(std::size_t width, bool numeric) {
    const std::string_view record = records_[index_];
    const std::string_view field = record.substr(std::min(column_, record.size()), width);
    const std::size_t comma = numeric ? field.find(',') : std::string_view::npos;
    if (comma != std::string_view::npos) {
      column_ += comma + 1;
      return field.substr(0, comma);
    }
    column_ += width;
    return field;
  }

  std::string_view Rest() {
    const std::string_view record = records_[index_];
    const std::string_view rest = record.substr(std::min(column_, record.size()));
    column_ = std::max(column_, record.size());
    return rest;
  }

 private:
  std::vector<std::string_view> records_;
  std::size_t index_ = 0;
  std::size_t column_ = 0;
};

// A reads the rest of the record; Aw always w characters, blanks behind the record end.
void ReadText(RecordReader& reader, const FormatItem& item, std::string& target) {
  if (item.width == 0) {
    target = reader.Rest();
  } else {
    target = reader.Take(item.width, false);
    target.resize(item.width, ' ');
  }
}

template <typename Value>
bool Store(const std::optional<Value>& value, Value& target) {
  if (value) target = *value;
  return value.has_value();
}

// Fills one target from the field of a data item; false for a bad field or a target of the
// wrong kind.
bool ReadField(RecordReader& reader, const FormatItem& item, const ReadTarget& target) {
  const auto& slot = target.Target();
  if (item.kind == ItemKind::kText) {
    auto* text = std::get_if<std::string*>(&slot);
    if (text) ReadText(reader, item, **text);
    return text != nullptr;
  }
  const std::string_view field = reader.Take(item.width, true);
  if (item.kind == ItemKind::kInteger) {
    return std::holds_alternative<int*>(slot) &&
           Store(columns::ReadIntegerField(field), *std::get<int*>(slot));
  }
  if (auto* single = std::get_if<float*>(&slot)) {
    return Store(columns::ReadRealField<float>(field, item.digits), **single);
  }
  if (auto* real = std::get_if<double*>(&slot)) {
    return Store(columns::ReadRealField<double>(field, item.digits), **real);
  }
  return false;
}

// Literals have no meaning in input and are errors, as in gfortran; so is moving to a record
// that is not there, by reversion or by '/' (even behind the last target).
ReadStatus ReadItems(std::string_view text, const std::vector<FormatItem>& items,
                     std::span<const ReadTarget> targets) {
  RecordReader reader(text);
  FormatWalk walk(items);
  std::size_t next = 0;
  while (true) {
    const FormatItem* item = walk.Next();
    if (item == nullptr) {
      if (next == targets.size()) return ReadStatus::kOk;
      if (!walk.RevertsToData() || !reader.NextRecord()) return ReadStatus::kError;
      walk.Revert();
    } else if (columns::IsData(item->kind)) {
      if (next == targets.size()) return ReadStatus::kOk;
      if (!ReadField(reader, *item, targets[next++])) return ReadStatus::kError;
    } else if (IsMove(item->kind)) {
      reader.Move(*item);
    } else if (item->kind == ItemKind::kNextRecord) {
      if (!reader.NextRecord()) return ReadStatus::kError;
    } else if (item->kind == ItemKind::kLiteral) {
      return ReadStatus::kError;
    }
  }
}

}  // namespace

std::string WriteFormatted(std::string_view format, std::span<const FormatArg> args) {
  const auto items = columns::ParseFormat(format);
  return items ? WriteItems(*items, args) : std::string();
}

ReadStatus ReadFormatted(std::string_view text, std::string_view format,
                         std::span<const ReadTarget> targets) {
  const auto items = columns::ParseFormat(format);
  return items ? ReadItems(text, *items, targets) : ReadStatus::kError;
}

}  // namespace kaldena
