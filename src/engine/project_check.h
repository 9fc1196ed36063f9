// A check of a project before a run: the project is read by the engine's own input stage,
// with the lines it takes kept, and what it reads differently from what a hand edit meant is
// told with file, line and key.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "util/report.h"

namespace kaldena {

enum class NoteLevel { kWarning, kError };

struct CheckNote {
  std::string file;
  int line = 0;     // from 1; 0 for the file as a whole
  std::string key;  // blank for a note of no one record
  NoteLevel level = NoteLevel::kWarning;
  std::string text;
};

// "FILE:LINE: KEY: warning: text" (or error), the parts that a note has.
std::string NoteText(const CheckNote& note);

// Reads the project as a run's input stage would, without writing any file, and gives its
// notes in line order (notes of no line last).
std::vector<CheckNote> CheckProject(std::string_view projectName);

// 0 without notes, 2 with warnings only, 1 with an error.
int CheckExitCode(const std::vector<CheckNote>& notes);

}  // namespace kaldena
