// The blocks of the CIF, for cif_writer.cpp, cif_writer_phase.cpp and cif_writer_geometry.cpp.
#pragma once

#include <ostream>
#include <set>
#include <string>
#include <string_view>

#include "tools/cif_writer.h"
#include "tools/cif_writer_records.h"
#include "tools/distances.h"
#include "util/column_format.h"

namespace kaldena {

// The open CIF and the writing helpers every block shares.
struct CifOutput {
  std::ostream& out;

  template <typename... T>
  void Write(std::string_view format, const T&... args) {
    out << Format(format, args...);
  }
  // One line as it stands.
  void Line(std::string_view text) { out << Format("(a)", text); }
  // A data name and its value on one line, the value in column 36 or behind the name.
  void Item(std::string_view name, std::string_view value);
  // A data name followed by a text field holding "?".
  void UnknownText(std::string_view name);
};

void WriteGlobalBlock(CifOutput& cif, const CifOutProject& project, std::string_view date);

// One phase's block; `phase` from 0. kFailed after " CELL record missing. Program
// terminated" or " SPGR record missing. Program terminated" in the log. `blockCodes` holds
// the codes used so far, so that every block gets a code of its own.
CifStatus WritePhaseBlock(CifOutput& cif, const CifOutProject& project, int phase,
                          std::set<std::string>& blockCodes, Reporter& reporter);

// The angle and bond loops of one phase (from 0) of the silent distance search; nothing for a
// phase the search did not reach. With two or more phases the loops are headed by the comment
// "#  * PHASE NO. n: title *".
void WriteGeometryLoops(CifOutput& cif, const DistanceTable& table, size_t phase);

// The element symbol of an atom: the type's name when the project has an atom type table,
// else read from the label ("AL1" is "Al", "O2" is "O"); "?" when neither gives one.
std::string AtomTypeSymbol(const CifOutProject& project, const CifOutAtom& atom);

}  // namespace kaldena
