// Today's date as the headings of lists and tables show it.
#pragma once

#include <string>

namespace kaldena {

// The local date in the form 2016-07-08.
std::string TodayText();

}  // namespace kaldena
