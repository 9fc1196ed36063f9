// Copying one file over another for the toolkits' file service: the target is replaced as a
// whole or not at all, and a write-protected target stays as it is.
#pragma once

#include <string_view>

namespace kaldena {

// Copies `from` over `to` through a temporary file beside the target and a rename, so that a
// failed copy leaves the old target whole. Trailing blanks of both names are ignored. False
// when the source is not a regular file, the target is write-protected (honoured for every
// user, root included) or the copy fails.
bool CopyFileReplacing(std::string_view from, std::string_view to);

}  // namespace kaldena
