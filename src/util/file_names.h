// File-name handling. A name's directory part ends at its last separator, where "\", "/" and
// the ":" of a drive all count, so that names written on either system are taken apart alike.
// Trailing blanks of the arguments are ignored, as names often come from padded record fields.
#pragma once

#include <string>
#include <string_view>

namespace kaldena {

// The name with its extension replaced by `extension` (given without the point), or with a
// point and the extension appended when the name has none. Only a point behind the last
// separator counts, so "run.d/data" becomes "run.d/data.ext" and "./data" becomes "./data.ext".
std::string ForceExtension(std::string_view name, std::string_view extension);

// Everything up to and including the last separator; empty when there is none.
std::string DirectoryOf(std::string_view path);

// What follows the last separator, up to but not including its last point: "x.v1.rec" gives
// "x.v1", so that two projects of one stem never share their outputs.
std::string BaseNameOf(std::string_view path);

// Whether a name taken from a file would write outside the folder it is read against: an
// absolute name, one with a drive, or one with a ".." part ("\\" counts as a separator).
bool LeavesFolder(std::string_view name);

// The name with `directory` in front, unless the name has a drive or a directory of its own.
// A separator is put between the two when the directory does not end in one.
std::string ReplaceDirectory(std::string_view directory, std::string_view name);

}  // namespace kaldena
