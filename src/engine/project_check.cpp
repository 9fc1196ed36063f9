#include "engine/project_check.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

#include "crystal/space_group.h"
#include "engine/engine_input.h"
#include "engine/engine_state.h"
#include "engine/model_warnings.h"
#include "engine/run_files.h"
#include "store/record_store.h"
#include "util/file_names.h"
#include "util/text.h"

namespace kaldena {

namespace {

using TakenLine = RecordStore::TakenLine;

// The boxes of the input stage (a data file that does not open), kept to be told as notes.
class HeldReporter : public Reporter {
 public:
  void LogLine(std::string_view) override {}
  void ShowMessage(std::string_view title, std::string_view text) override {
    boxes.push_back(std::string(title) + ": " + std::string(text));
  }
  bool AskYesNo(std::string_view, std::string_view) override { return false; }
  std::vector<std::string> boxes;
};

class Notes {
 public:
  explicit Notes(std::string file) : file_(std::move(file)) {}
  void Add(const TakenLine* line, NoteLevel level, std::string text) {
    notes_.push_back({file_, line ? line->line : 0, line ? std::string(Trimmed(line->key)) : "",
                      level, std::move(text)});
  }
  std::vector<CheckNote> Sorted() && {
    std::stable_sort(notes_.begin(), notes_.end(), [](const CheckNote& a, const CheckNote& b) {
      return (a.line == 0 ? INT32_MAX : a.line) < (b.line == 0 ? INT32_MAX : b.line);
    });
    return std::move(notes_);
  }

 private:
  std::string file_;
  std::vector<CheckNote> notes_;
};

// The lines taken of each key, in the order they were read.
using LinesByKey = std::map<std::string, std::vector<const TakenLine*>>;

const TakenLine* LineOf(const LinesByKey& lines, const std::string& key, size_t index) {
  auto found = lines.find(key);
  if (found == lines.end() || index >= found->second.size()) return nullptr;
  return found->second[index];
}

// Columns 5 to 10 are read only for a delimiter; anything else there is lost. CXYZ and CBET
// carry the atom's label there as a comment.
void CheckKeyColumns(const TakenLine& line, Notes& notes) {
  if (line.key == "CXYZ" || line.key == "CBET") return;
  const std::string_view field = std::string_view(line.text).substr(0, 10);
  const size_t from = std::min<size_t>(Trimmed(line.key).size(), 4);
  for (size_t i = from; i < field.size(); ++i) {
    if (field[i] == ',' || static_cast<unsigned char>(field[i]) < 32) return;
  }
  const std::string_view ignored = Trimmed(field.substr(4));
  if (ignored.empty()) return;
  notes.Add(&line, NoteLevel::kWarning,
            "\"" + std::string(ignored) +
                "\" in columns 5 to 10 is not read: data begin in column 11, or behind a comma "
                "or tab right after the key");
}

// Lines of a key of which the engine read some but not these: beyond the counts of JOBT and
// PHNA, or beyond what the key holds.
void CheckUnreadLines(const RecordStore& store, const LinesByKey& taken, Notes& notes) {
  for (const TakenLine& line : store.UntakenLines()) {
    auto read = taken.find(line.key);
    if (read == taken.end()) continue;
    notes.Add(&line, NoteLevel::kWarning,
              "line not read: only the first " + std::to_string(read->second.size()) +
                  " lines of this key are read (the counts of JOBT and PHNA)");
  }
}

// The averaged rotation of the operators that leave a position where it is: a coordinate
// whose row is zero is fixed by the site's symmetry.
std::array<bool, 3> FixedCoordinates(const SpaceGroupInfo& group, std::array<float, 3> p) {
  std::array<float, 9> sum{};
  int count = 0;
  for (const SymmetryOperator& op : group.operators) {
    bool onSite = true;
    for (int r = 0; r < 3 && onSite; ++r) {
      const float image =
          op[4 * r] * p[0] + op[4 * r + 1] * p[1] + op[4 * r + 2] * p[2] + op[4 * r + 3];
      const float d = image - p[r];
      onSite = std::abs(d - std::round(d)) < 1e-3f;
    }
    if (!onSite) continue;
    ++count;
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) sum[3 * r + c] += op[4 * r + c];
    }
  }
  std::array<bool, 3> fixed{};
  for (int r = 0; r < 3 && count > 0; ++r) {
    fixed[r] =
        std::abs(sum[3 * r]) + std::abs(sum[3 * r + 1]) + std::abs(sum[3 * r + 2]) < 1e-3f * count;
  }
  return fixed;
}

void CheckAtom(const EngineState& state, const Phase& phase, int index, const LinesByKey& taken,
               Notes& notes) {
  const Atom& atom = state.atoms[index];
  const TakenLine* xyz = LineOf(taken, "XYZ ", index);
  const int types = static_cast<int>(state.atomTypes.size());
  if (atom.type > types) {
    notes.Add(xyz, NoteLevel::kError,
              "atom type " + std::to_string(atom.type) + " points beyond the " +
                  std::to_string(types) + " ANOM lines");
  }
  std::array<float, 3> position{atom.values[kAtomX].value, atom.values[kAtomY].value,
                                atom.values[kAtomZ].value};
  SiteSymmetry site;
  std::vector<std::string> ignored;
  const ExpandStatus status = SitePosition(phase.group, position, site, ignored);
  if ((status != ExpandStatus::kOk && status != ExpandStatus::kPositionMoved) ||
      !(site.multiplicityFactor > 0)) {
    return;
  }
  const int factor = std::max(1, static_cast<int>(std::lround(1.0f / site.multiplicityFactor)));
  if (atom.siteFactorFromGroup) {
    notes.Add(xyz, NoteLevel::kWarning,
              "site factor blank or 0: the space group gives " + std::to_string(factor) +
                  " at this position, which the run takes");
  } else if (atom.siteFactor != factor) {
    notes.Add(xyz, NoteLevel::kWarning,
              "site factor " + std::to_string(atom.siteFactor) + ", but the space group gives " +
                  std::to_string(factor) + " at this position");
  }
  const std::array<bool, 3> fixed = FixedCoordinates(phase.group, position);
  const TakenLine* codes = LineOf(taken, "CXYZ", index);
  for (int i = 0; i < 3; ++i) {
    if (fixed[i] && atom.values[kAtomX + i].number != 0) {
      notes.Add(codes ? codes : xyz, NoteLevel::kWarning,
                std::string(1, "xyz"[i]) + " of " + std::string(Trimmed(atom.label)) +
                    " is refined, but the symmetry of its site fixes it");
    }
  }
}

void CheckModel(const EngineState& state, const LinesByKey& taken, Notes& notes) {
  for (const Phase& phase : state.phases) {
    for (int a = phase.firstAtom; a < phase.firstAtom + phase.atoms; ++a) {
      CheckAtom(state, phase, a, taken, notes);
    }
  }
  const auto& limits = state.controls.limits;
  for (size_t i = 0; i < limits.size(); ++i) {
    if (std::abs(limits[i].number) > state.parameters) {
      notes.Add(LineOf(taken, "LIMP", i), NoteLevel::kWarning,
                "parameter " + std::to_string(std::abs(limits[i].number)) +
                    " does not exist: " + std::to_string(state.parameters) + " are refined");
    }
  }
  for (const std::string& warning : ModelWarnings(state)) {
    notes.Add(nullptr, NoteLevel::kWarning, std::string(Trimmed(warning)));
  }
}

// Why the input stage stopped: the boxes of a data file that does not open, else the last
// line of the list file, told at the data file's record when the pattern was being read and
// at the line last taken otherwise.
void NoteFailure(const EngineState& state, const HeldReporter& reporter, const RecordStore& store,
                 const LinesByKey& taken, Notes& notes) {
  const TakenLine* data = LineOf(taken, "PWDT", 0);
  // The data file's name behind a message that does not give it already.
  auto naming = [&](const std::string& text) {
    return text.find(state.files.data) != std::string::npos ? text
                                                            : text + " (" + state.files.data + ")";
  };
  for (const std::string& box : reporter.boxes) notes.Add(data, NoteLevel::kError, naming(box));
  const auto& lines = state.list.Lines();
  auto last = std::find_if(lines.rbegin(), lines.rend(),
                           [](const std::string& l) { return !Trimmed(l).empty(); });
  if (!reporter.boxes.empty() || last == lines.rend()) return;
  const std::string reason = StrippedText(*last);
  const bool inPattern =
      std::find(lines.begin(), lines.end(), " STARTING RAW DATA INPUT") != lines.end() &&
      !taken.contains("PHNA");
  const auto& all = store.TakenLines();
  const TakenLine* at = all.empty() ? nullptr : &all.back();
  if (inPattern) at = data;
  if (reason.ends_with("missing")) at = nullptr;
  notes.Add(at, NoteLevel::kError, at && at == data ? naming(reason) : reason);
}

}  // namespace

std::string NoteText(const CheckNote& note) {
  std::string text = note.file + ":";
  if (note.line > 0) text += std::to_string(note.line) + ":";
  if (!note.key.empty()) text += " " + note.key + ":";
  text += note.level == NoteLevel::kError ? " error: " : " warning: ";
  return text + note.text;
}

std::vector<CheckNote> CheckProject(std::string_view projectName) {
  HeldReporter reporter;
  RecordStore store(reporter);
  EngineState state;
  ZeroEngineState(state);
  state.projectFile = std::string(projectName);
  state.directory = DirectoryOf(state.projectFile);
  Notes notes(state.projectFile);
  if (store.jReadRecFile(state.projectFile) < 1) {
    notes.Add(nullptr, NoteLevel::kError, "the project does not open or holds no line");
    return std::move(notes).Sorted();
  }
  store.KeepTakenLines();
  NameInputFiles(state, store);
  state.list.OpenInMemory();
  const bool read = ReadEngineInput(state, store, reporter) == InputStatus::kOk;

  LinesByKey taken;
  for (const TakenLine& line : store.TakenLines()) {
    taken[line.key].push_back(&line);
    CheckKeyColumns(line, notes);
  }
  if (read) {
    CheckUnreadLines(store, taken, notes);
    CheckModel(state, taken, notes);
  } else {
    NoteFailure(state, reporter, store, taken, notes);
  }
  return std::move(notes).Sorted();
}

int CheckExitCode(const std::vector<CheckNote>& notes) {
  if (notes.empty()) return 0;
  const bool error = std::any_of(notes.begin(), notes.end(),
                                 [](const CheckNote& n) { return n.level == NoteLevel::kError; });
  return error ? 1 : 2;
}

}  // namespace kaldena
