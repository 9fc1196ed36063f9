#include "tools/cif_import_symmetry.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "crystal/space_group.h"
#include "crystal/space_group_settings.h"
#include "crystal/symbol_tables.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr float kParts = 24.0f;  // moves in 24ths of the cell edges

// The group that the items of the file name, before its operators are looked at.
struct NamedGroup {
  std::string symbol = "P 1";
  bool named = false;      // an item named a group: P 1 is not a fallback
  bool originOne = false;  // the item says origin choice 1
  int line = -1;           // the item's line
};

// The text of an item behind its data name: the quoted text, or the unquoted rest of the line.
// Nothing behind the name (the value on a later line) is an error, as in the classic layout.
std::optional<std::string> ItemText(std::string_view rest) {
  const std::size_t quote = rest.find_first_of("'\"");
  if (quote != std::string_view::npos) {
    const std::size_t close = rest.find(rest[quote], quote + 1);
    return std::string(rest.substr(
        quote + 1, close == std::string_view::npos ? std::string_view::npos : close - quote - 1));
  }
  const std::vector<std::string> words = CifWords(rest);
  if (words.empty()) return std::nullopt;
  // An unquoted symbol is one word in a proper CIF; a messy file may still space it out.
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

bool Expand(std::string_view symbol, SpaceGroupInfo& info) {
  return ParseSpaceGroupSymbol(symbol, info) == SymbolStatus::kOk &&
         ExpandOperators(info) == ExpandStatus::kOk;
}

std::optional<CifItem> FirstItem(const CifText& text, std::string_view name,
                                 std::string_view alias) {
  std::optional<CifItem> item = FindCifItem(text, name);
  return item ? item : FindCifItem(text, alias);
}

// The Hermann-Mauguin symbol. `problem` tells why there is none, for the line that follows.
NamedGroup BySymbol(const CifText& text, Reporter& reporter, std::string& problem) {
  NamedGroup group;
  const std::optional<CifItem> item =
      FirstItem(text, "_symmetry_space_group_name_H-M", "_space_group_name_H-M_alt");
  if (!item) {
    reporter.LogLine("Spacegroup symbol not found");
    problem = text.fileName + ": no space group symbol";
    return group;
  }
  const std::optional<std::string> raw = ItemText(item->rest);
  if (!raw || Trimmed(LeftJustify(*raw)).empty()) {
    reporter.LogLine("Error in spacegroup symbol");
    problem = text.Where(item->line) + ": no symbol on the line of its name";
    return group;
  }
  const std::string symbol(Trimmed(ConvertPrintedSymbol(Trimmed(LeftJustify(*raw)))));
  SpaceGroupInfo info;
  if (!Expand(symbol.substr(0, kSymbolLength), info)) {
    reporter.LogLine("Error in spacegroup symbol");
    problem = text.Where(item->line) + ": space group '" + *raw + "' is not understood";
    return group;
  }
  return {symbol.substr(0, kSymbolLength), true, PrintedOriginChoice(item->rest) == 1, item->line};
}

// The setting of a Hall symbol, else the standard setting of a group number; `note` tells
// which item gave it.
NamedGroup ByHallOrNumber(const CifText& text, std::string& note) {
  const SpaceGroupSetting* setting = nullptr;
  std::optional<CifItem> item =
      FirstItem(text, "_space_group_name_Hall", "_symmetry_space_group_name_Hall");
  if (item) setting = SettingOfHall(ItemText(item->rest).value_or(""));
  if (!setting) {
    item = FirstItem(text, "_space_group_IT_number", "_symmetry_Int_Tables_number");
    const CifNumber number = ReadCifNumber(item ? ColumnWord(item->rest, 1) : "?");
    const float value = number.value.value;
    if (number.kind == CifNumber::Kind::kValue && value >= 1.0f && value <= 230.0f) {
      setting = StandardSetting(static_cast<int>(std::lround(value)));
    }
  }
  if (!setting) return {};
  note = text.Where(item->line) + ": " + CifWords(text.lines[item->line])[0] + " read as " +
         std::string(setting->printed);
  return {std::string(setting->symbol), true, setting->originChoice == 1, item->line};
}

struct FileOperators {
  std::vector<SymmetryOperator> operators;
  int line = -1;
};

// The symmetry-operator loop; none when the file has none or an operator does not read.
std::optional<FileOperators> ReadFileOperators(const CifText& text, Reporter& reporter) {
  static constexpr std::string_view kNames[] = {"_symmetry_equiv_pos_as_xyz",
                                                "_space_group_symop_operation_xyz"};
  const auto isOperatorName = [](const std::string& name) {
    return SameCifName(name, kNames[0]) || SameCifName(name, kNames[1]);
  };
  const std::optional<CifLoop> loop = FindCifLoop(text, [&](const std::vector<std::string>& names) {
    return std::any_of(names.begin(), names.end(), isOperatorName);
  });
  if (!loop) return std::nullopt;
  const int column = std::max(loop->Column(kNames[0]), loop->Column(kNames[1]));
  FileOperators file{{}, loop->line};
  for (std::size_t row = 0; row < loop->rows.size(); ++row) {
    SymmetryOperator op{};
    if (!ReadOperatorText(loop->rows[row][column], op)) {
      reporter.LogLine(text.Where(loop->rowLines[row]) + ": symmetry operator '" +
                       loop->rows[row][column] + "' is not read, the file's operators not used");
      return std::nullopt;
    }
    file.operators.push_back(op);
  }
  return file;
}

// The file's operators with the centring translations of the named group: files may list
// the operators of one lattice point only.
std::vector<SymmetryOperator> WithCentrings(const std::vector<SymmetryOperator>& listed,
                                            const SpaceGroupInfo& group) {
  std::vector<SymmetryOperator> all;
  for (const SymmetryOperator& centring : group.operators) {
    if (centring[0] != 1.0f || centring[5] != 1.0f || centring[10] != 1.0f) continue;
    for (SymmetryOperator op : listed) {
      for (int i = 3; i < 12; i += 4) {
        op[i] += centring[i];
        op[i] -= std::floor(op[i]);
      }
      all.push_back(op);
    }
  }
  return all;
}

// The setting of the file's coordinates: the named one or its origin choice 1 by the file's
// operators; another setting of the named group, or any setting when nothing named one, that
// the operators are. Null for a named symbol that no setting of the table has.
const SpaceGroupSetting* SettingOfFile(const CifText& text, const NamedGroup& named,
                                       const SpaceGroupInfo& group, const FileOperators& file,
                                       Reporter& reporter) {
  const SpaceGroupSetting* second = SettingOfOperators(group.operators);
  const SpaceGroupSetting* first = second ? OriginChoiceOne(*second) : nullptr;
  const std::vector<SymmetryOperator> operators = WithCentrings(file.operators, group);
  if (SameOperators(operators, group.operators)) return second;
  if (first && SameOperators(operators, InOriginChoiceOne(group.operators, *first))) {
    return first;
  }
  const SpaceGroupSetting* found = SettingOfOperators(operators);
  if (found && (!named.named || (second && found->number == second->number))) {
    reporter.LogLine(text.Where(file.line) + ": the symmetry operators are those of " +
                     std::string(found->printed) + ", which is used");
    return found;
  }
  reporter.LogLine(text.Where(file.line) + ": the symmetry operators are not those of " +
                   named.symbol + ", the symbol's are used");
  return named.originOne && first ? first : second;
}

// A move in 24ths as the shortest fraction of the cell edge, for the message.
float SignedMove(int twentyFourths) {
  return static_cast<float>(twentyFourths > 12 ? twentyFourths - 24 : twentyFourths) / kParts;
}

}  // namespace

CifSpaceGroup ReadCifSpaceGroup(const CifText& text, Reporter& reporter) {
  std::string problem;
  NamedGroup named = BySymbol(text, reporter, problem);
  if (!named.named) {
    std::string note;
    named = ByHallOrNumber(text, note);
    reporter.LogLine(named.named ? problem : problem + ", P 1 used");
    if (named.named) reporter.LogLine(note);
  }
  SpaceGroupInfo group;
  Expand(named.symbol, group);
  const SpaceGroupSetting* second = SettingOfOperators(group.operators);
  const SpaceGroupSetting* setting = second;
  if (named.originOne && second && OriginChoiceOne(*second)) setting = OriginChoiceOne(*second);
  int line = named.line;
  if (const std::optional<FileOperators> file = ReadFileOperators(text, reporter)) {
    const SpaceGroupSetting* fileSetting = SettingOfFile(text, named, group, *file, reporter);
    if (fileSetting != setting) line = file->line;
    setting = fileSetting;
  }
  CifSpaceGroup result;
  result.symbol = named.symbol;
  if (!setting) return result;
  if (!second || setting->symbol != second->symbol) result.symbol = setting->symbol;
  if (setting->originChoice != 1) return result;
  result.originMove = setting->originMove;
  const auto& d = setting->originMove;
  reporter.LogLine(text.Where(line) + ": origin choice 1 (" + std::string(setting->printed) +
                   "), coordinates moved by" +
                   FormatLine("(3f8.4)", SignedMove(d[0]), SignedMove(d[1]), SignedMove(d[2])));
  return result;
}

void MoveToOriginChoiceTwo(const CifSpaceGroup& group, std::vector<CifAtom>& atoms) {
  if (group.originMove == std::array<int, 3>{}) return;
  for (CifAtom& atom : atoms) {
    for (int k = 0; k < 3; ++k) {
      const float moved = atom.values[k] + static_cast<float>(group.originMove[k]) / kParts;
      atom.values[k] = moved - std::floor(moved);
    }
  }
}

}  // namespace kaldena
