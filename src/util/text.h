// Case folding, blank handling and word splitting of text. A blank is the space character;
// texts are often blank-padded record fields, so the operations that keep a field's length
// say so, and searches ignore trailing blanks.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kaldena {

// Fold one character; only "a" to "z" and "A" to "Z" change, whatever the locale.
char UpperChar(char c);
char LowerChar(char c);

// A record key: the first four characters folded, padded with blanks to four.
std::string UpperKey(std::string_view key);
std::string LowerKey(std::string_view key);

// The text folded; its length is kept.
std::string UpperText(std::string_view text);
std::string LowerText(std::string_view text);

// The non-blank characters moved to the left in their order, padded with blanks to the
// text's length.
std::string RemoveBlanks(std::string_view text);

// 1-based place of the first `part` in `text`, 0 when absent; trailing blanks of both are
// ignored. A blank `part` is absent everywhere, so that an unset key never matches.
int IndexOf(std::string_view text, std::string_view part);

// The text without its leading blanks, padded with blanks to the text's length.
std::string LeftJustify(std::string_view text);

// The text without leading and trailing blanks, ended at the last of `width` characters.
// A text longer than the field keeps its first `width` characters.
std::string RightJustify(std::string_view text, std::size_t width);

// The n-th (1-based) blank-separated word of the line; empty when the line has fewer words.
std::string SplitWords(std::string_view line, int n);

// The lines of a text as the column writer makes it: split at each '\n', where a final '\n'
// ends the last line rather than starting an empty one.
std::vector<std::string_view> SplitLines(std::string_view text);

// Length of the text without its trailing blanks.
std::size_t TrimmedLength(std::string_view text);

// The text without its trailing blanks.
std::string_view Trimmed(std::string_view text);

// The text without its leading and trailing blanks.
std::string StrippedText(std::string_view text);

// The next line of a text file without its end, "\r\n" as well as "\n", as files written on
// Windows end theirs; false at the end of the file.
bool GetTextLine(std::istream& in, std::string& line);

// True when the text holds only blanks, "E", "e" and the characters "+" to "9" (that is
// "+,-./" and the digits): how the raw data readers tell a line of numbers from a header.
// A tab counts as a blank, as many data files separate their columns with tabs.
bool IsNumberText(std::string_view text);

}  // namespace kaldena
