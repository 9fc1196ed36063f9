// kalden check: what a run would read differently from what the project's lines say.
#include <cstdio>
#include <string>
#include <vector>

#include "engine/project_check.h"
#include "main/commands.h"

namespace kaldena {

int CheckCommand(const std::vector<std::string>& args) {
  if (args.size() != 1) return kBadArguments;
  const std::vector<CheckNote> notes = CheckProject(args[0]);
  for (const CheckNote& note : notes) std::printf("%s\n", NoteText(note).c_str());
  return CheckExitCode(notes);
}

}  // namespace kaldena
