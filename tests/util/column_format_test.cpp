#include "util/column_format.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <variant>
#include <vector>

#include "support/test_files.h"

namespace kaldena {
namespace {

// --- The gfortran tables (tests/data/column_format, made by make_cases.sh) ---

// One block of a table: "case" line up to "end", with the text between '|' marks of the
// lines that carry one.
struct TableCase {
  int line = 0;
  std::string format = {};
  std::vector<std::string> lines = {};  // the lines between "fmt" and "end"
  std::string end = {};                 // the "end" line
};

std::string Quoted(const std::string& line) {
  const std::size_t first = line.find('|');
  return line.substr(first + 1, line.rfind('|') - first - 1);
}

std::vector<TableCase> LoadTable(const std::string& name) {
  std::ifstream in(testing::TestData("column_format/" + name));
  std::vector<TableCase> cases;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.starts_with("case ")) {
      cases.push_back({.line = number});
    } else if (line.starts_with("fmt ")) {
      cases.back().format = line.substr(4);
    } else if (line.starts_with("end")) {
      cases.back().end = line;
    } else if (!line.starts_with("#")) {
      cases.back().lines.push_back(line);
    }
  }
  return cases;
}

template <typename Bits>
Bits HexBits(const std::string& line, std::size_t at) {
  return static_cast<Bits>(std::stoull(line.substr(at, 2 * sizeof(Bits)), nullptr, 16));
}

using TableValue = std::variant<long long, float, double, std::string>;

TableValue ParseValue(const std::string& line) {  // "val KIND ..."
  switch (line[4]) {
    case 'i':
      return std::stoll(line.substr(6));
    case 'f':
      return std::bit_cast<float>(HexBits<std::uint32_t>(line, 6));
    case 'd':
      return std::bit_cast<double>(HexBits<std::uint64_t>(line, 6));
    default:
      return Quoted(line);
  }
}

// Writes the case's values, float ones through the float constructor, and returns the text.
std::string RunWrite(const TableCase& c, std::string& expected) {
  std::vector<TableValue> values;
  for (const std::string& line : c.lines) {
    if (line.starts_with("val ")) values.push_back(ParseValue(line));
    if (line.starts_with("out ")) expected += Quoted(line) + "\n";
    if (line.starts_with("part ")) expected += Quoted(line);
  }
  std::vector<FormatArg> args;
  for (const TableValue& value : values) {
    std::visit([&args](const auto& v) { args.emplace_back(v); }, value);
  }
  return WriteFormatted(c.format, args);
}

// Where gfortran spells out a non-finite value ("NaN", "-Inf", "Infinity"), the writer fills
// the field with asterisks instead, so that no file ever holds such a word.
std::string WithoutNonFiniteWords(const std::string& text) {
  static const std::regex word(" *-?(Infinity|Inf|NaN)");
  std::string out;
  auto from = text.cbegin();
  for (std::sregex_iterator m(text.begin(), text.end(), word), end; m != end; ++m) {
    out.append(from, (*m)[0].first);
    out.append(static_cast<size_t>((*m)[0].length()), '*');
    from = (*m)[0].second;
  }
  return out.append(from, text.cend());
}

TEST(ColumnFormatTable, WritesAsGfortran) {
  const std::vector<TableCase> cases = LoadTable("write_cases.txt");
  ASSERT_GE(cases.size(), 150u);
  for (const TableCase& c : cases) {
    std::string expected;
    const std::string written = RunWrite(c, expected);
    expected = WithoutNonFiniteWords(expected);
    EXPECT_EQ(written, expected) << "write_cases.txt:" << c.line << " format " << c.format;
  }
}

// The read targets of a case, filled with values no case reads.
struct Targets {
  std::vector<int> ints;
  std::vector<float> floats;
  std::vector<double> doubles;
  std::vector<std::string> strings;
  std::vector<ReadTarget> list;

  explicit Targets(const std::vector<std::string>& kinds) {
    ints.reserve(kinds.size());
    floats.reserve(kinds.size());
    doubles.reserve(kinds.size());
    strings.reserve(kinds.size());
    for (const std::string& line : kinds) {
      if (line[4] == 'i') list.emplace_back(ints.emplace_back(-999));
      if (line[4] == 'f') list.emplace_back(floats.emplace_back(-999.0f));
      if (line[4] == 'd') list.emplace_back(doubles.emplace_back(-999.0));
      if (line[4] == 's') list.emplace_back(strings.emplace_back("?"));
    }
  }
};

// Compares the targets with the "tgt" lines; a string is compared padded to the length of
// the Fortran variable it was read into.
std::string Mismatches(const Targets& got, const std::vector<std::string>& lines) {
  std::ostringstream out;
  std::size_t i = 0, f = 0, d = 0, s = 0;
  for (const std::string& line : lines) {
    if (line[4] == 'i' && got.ints[i++] != std::stoll(line.substr(6))) out << " " << line;
    if (line[4] == 'f' &&
        std::bit_cast<std::uint32_t>(got.floats[f++]) != HexBits<std::uint32_t>(line, 6)) {
      out << " " << line << " got " << got.floats[f - 1];
    }
    if (line[4] == 'd' &&
        std::bit_cast<std::uint64_t>(got.doubles[d++]) != HexBits<std::uint64_t>(line, 6)) {
      out << " " << line << " got " << got.doubles[d - 1];
    }
    if (line[4] == 's') {
      const std::string text = got.strings[s++];
      const std::string expected = Quoted(line);
      if (text.size() > expected.size() ||
          text + std::string(expected.size() - text.size(), ' ') != expected) {
        out << " " << line << " got |" << text << "|";
      }
    }
  }
  return out.str();
}

TEST(ColumnFormatTable, ReadsAsGfortran) {
  const std::vector<TableCase> cases = LoadTable("read_cases.txt");
  ASSERT_GE(cases.size(), 80u);
  for (const TableCase& c : cases) {
    std::string text;
    std::vector<std::string> targetLines;
    for (const std::string& line : c.lines) {
      if (line.starts_with("rec ")) text += Quoted(line) + "\n";
      if (line.starts_with("tgt ")) targetLines.push_back(line);
    }
    Targets targets(targetLines);
    const ReadStatus status = ReadFormatted(text, c.format, targets.list);
    const bool error = c.end == "end error";
    EXPECT_EQ(status, error ? ReadStatus::kError : ReadStatus::kOk)
        << "read_cases.txt:" << c.line << " format " << c.format;
    if (!error && status == ReadStatus::kOk) {
      EXPECT_EQ(Mismatches(targets, targetLines), "") << "read_cases.txt:" << c.line;
    }
  }
}

// --- What the tables cannot show ---

TEST(ColumnFormat, FormatTakesMixedArguments) {
  const std::string name = "count";
  const std::size_t count = 42;
  EXPECT_EQ(Format("(a,i8,f10.0,a)", name, count, 1234.5f, "!"), "count      42     1234.!\n");
  EXPECT_EQ(Format("(1x,a3,2i3)", std::string_view("abcdef"), -1, 7L), " abc -1  7\n");
  EXPECT_EQ(Format("(f6.1)", 3), "   3.0\n") << "an integer may go to F";
  EXPECT_EQ(Format("(i3,a2,f4.1)", 2.5, 7, "x"), "*********\n") << "wrong kinds give asterisks";
}

TEST(ColumnFormat, BadFormatsFailWithoutHarm) {
  for (const char* format :
       {"(i5", "i5)", "(q5)", "(f10)", "(f.5)", "(e10.0)", "(e10.3e)", "(i)", "(i0)", "('abc)",
        "(3'ab')", "(t)", "(t0)", "(2$)", "(0i3)", "(f99999.2)", "(a40000)", "(i5,))",
        "((((((((((((((((((((((((((((((((((i3))))))))))))))))))))))))))))))))))"}) {
    int value = 5;
    EXPECT_EQ(WriteFormatted(format, std::vector<FormatArg>{1, 2.0, "x"}), "") << format;
    EXPECT_EQ(Read("123", format, value), ReadStatus::kError) << format;
    EXPECT_EQ(value, 5) << format;
  }
}

TEST(ColumnFormat, FormatsWithoutDataStop) {
  EXPECT_EQ(Format("(' x')", 1, 2), " x\n");
  EXPECT_EQ(Format("(i2,(' x'))", 1, 2), " 1 x\n");
  int a = 0, b = 0;
  EXPECT_EQ(Read(" 1\n 2\n", "(i2,(' x'))", a, b), ReadStatus::kError);
}

TEST(ColumnFormat, ReadsLinesAsRecords) {
  int a = 0, b = 0, c = 0;
  EXPECT_EQ(Read("  1\r\n  2\r\n  3\r", "(i3)", a, b, c), ReadStatus::kOk);
  EXPECT_EQ((std::vector{a, b, c}), (std::vector{1, 2, 3}));
  EXPECT_EQ(Read("  4", "(i3)", a), ReadStatus::kOk) << "no line end after the last record";
  EXPECT_EQ(a, 4);
  EXPECT_EQ(Read("", "(i3)", a), ReadStatus::kOk) << "an empty text is one blank record";
  EXPECT_EQ(a, 0);
  EXPECT_EQ(Read("  1\n", "(i3/i3)", a, b), ReadStatus::kError) << "a final newline adds none";
  EXPECT_EQ(Read(" \r1", "(i3)", a), ReadStatus::kError) << "a '\\r' inside a line is text";
}

TEST(ColumnFormat, ReadsTextFields) {
  std::string fixed = "?", rest = "?";
  EXPECT_EQ(Read("ab,cdef  ", "(a4,a)", fixed, rest), ReadStatus::kOk);
  EXPECT_EQ(fixed, "ab,c");
  EXPECT_EQ(rest, "def  ") << "A takes the rest of the record as it stands";
  EXPECT_EQ(Read("ab", "(a4,a)", fixed, rest), ReadStatus::kOk);
  EXPECT_EQ(fixed, "ab  ");
  EXPECT_EQ(rest, "");
}

TEST(ColumnFormat, StopsAtTheFirstBadTarget) {
  int a = 0, c = -1;
  double b = -1;
  EXPECT_EQ(Read(" 12 3.5  7", "(i3,f4.1,i3)", a, c, b), ReadStatus::kError);
  EXPECT_EQ(a, 12);
  EXPECT_EQ(c, -1) << "an F field does not fill an int";
  EXPECT_EQ(b, -1);
  std::string text;
  EXPECT_EQ(Read("abc", "(i3)", text), ReadStatus::kError);
  EXPECT_EQ(Read("2147483648", "(i10)", a), ReadStatus::kError) << "beyond int";
}

// Every double and float survives writing with enough digits and reading back.
TEST(ColumnFormat, RoundTripsRandomReals) {
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 2000; ++i) {
    const double value = std::bit_cast<double>(random());
    const float single = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(value) || !std::isfinite(single)) continue;
    double readValue = 0;
    float readSingle = 0;
    const std::string text = Format("(e25.17e3,e16.9e2)", value, single);
    ASSERT_EQ(Read(text, "(e25.17,e16.9)", readValue, readSingle), ReadStatus::kOk) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(readValue), std::bit_cast<std::uint64_t>(value)) << text;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(readSingle), std::bit_cast<std::uint32_t>(single))
        << text;
  }
}

}  // namespace
}  // namespace kaldena
