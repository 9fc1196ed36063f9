// Text rules of the CIF writer: a value with its standard deviation as "1.2346(19)", the
// digit writer beneath it, and the quoting that keeps any text a single CIF value.
#pragma once

#include <string>
#include <string_view>

namespace kaldena {

// `value` with `decimals` decimals, digited out right-aligned in `width` characters with
// half-up rounding, then left-adjusted (no blanks). A zero before the point is kept, a minus
// sign stands in front of the first digit (none when every digit is 0), and a value that
// does not fit (or is not finite) comes back as a field of "*" with its point.
std::string CifNumberText(double value, int width, int decimals);

// A value and its esd in the value(esd) notation. The esd is first written with `decimals`
// decimals to find its first significant digit; its digits then decide those of the value:
// two digits in brackets when they begin below 1.95 ("1.2346(19)"), one otherwise
// ("1.235(3)", "1.235(10)" for 0.0095). An esd that shows no digit gives the value alone at
// `decimals`; an esd of 1 or more gives both as whole numbers ("123(4)").
std::string ValueWithEsdText(double value, double esd, int decimals);

// Text as one CIF value: as it stands when that is safe, otherwise between apostrophes, or
// double quotes, or as a text field (";" lines) when neither quote can hold it. Empty text
// is "?".
std::string CifValue(std::string_view text);

// Text between apostrophes as the layouts ask for ('R -3 C'); falls back to CifValue's other
// forms when an apostrophe inside would end the value early.
std::string CifQuoted(std::string_view text);

// A name fit for "data_": printable characters without blanks, at most 70 of them; blanks
// are dropped and other characters that a block code cannot hold become "_".
std::string CifBlockCode(std::string_view text);

// The site symmetry of a position code: "." for 1555, else "n_klm" (operator, "_", the three
// translation digits).
std::string SiteSymmetryText(int code);

// An atom label as a CIF value of its own: trailing blanks taken off, inner blanks as "_",
// quoted when it would read as something else; "?" when blank.
std::string CifLabel(std::string_view label);

}  // namespace kaldena
