// Free-form numbers in records: a hand-edited line such as "CELL  5.43  5.43 5.43" becomes the
// comma list "5.43,5.43,5.43" that the column reader takes field by field.
#pragma once

#include <string>

namespace kaldena {

// Turns the numbers behind the first 10 x `keptFields` columns into a comma list, in place.
// A record with any other letter than E or e in that area is text and stays as it is (only
// control characters before that letter have become blanks).
void NormaliseNumericField(std::string& record, int keptFields);

enum class LineStatus { kNumbers = 0, kEmpty = 1 };

// The same rewrite for a whole line of raw data, from column 1; every character that cannot
// belong to a number first becomes a blank, so the line is never refused.
LineStatus NormaliseNumericLine(std::string& line);

}  // namespace kaldena
