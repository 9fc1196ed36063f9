// "kalden new --from-cif", which drives the shell's own "New project from CIF", once for each
// CIF; with --data the project is then set up to refine that pattern at once.
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "main/cif_import_commands.h"
#include "main/commands.h"
#include "shell/cif_phase_import.h"
#include "shell/data_project.h"
#include "shell/default_project.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_state.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "toolkit/headless_toolkit.h"
#include "util/file_names.h"
#include "util/text.h"

namespace kaldena {

namespace {

struct FromCifArguments {
  std::string project;
  std::vector<std::string> cifs;
  bool useExisting = false;
  std::string data;
  int format = 0;
  std::optional<Radiation> radiation;
};

// Phases in a project file, 0 when it does not open.
int PhaseCount(const std::string& file) {
  RecordingReporter quiet;
  RecordStore store(quiet);
  if (store.jReadRecFile(file) < 1) return 0;
  const int count = static_cast<int>(FindRecords(store, "PHNA").size());
  store.jCloseRec();
  return count;
}

std::optional<float> Number(const std::string& text) {
  float value = 0;
  if (text.empty() || text.starts_with("--") || Read(text, "(F20.0)", value) != ReadStatus::kOk) {
    return std::nullopt;
  }
  return value;
}

// --wavelength W1 [W2 RATIO]: one line, or a doublet.
bool ReadWavelengths(const std::vector<std::string>& args, std::size_t& i, Radiation& r) {
  const std::optional<float> first = i + 1 < args.size() ? Number(args[i + 1]) : std::nullopt;
  if (!first || !(*first > 0)) return false;
  r.wavelengths = {*first, 0.0f, 0.0f};
  ++i;
  if (i + 2 < args.size() && Number(args[i + 1]) && Number(args[i + 2])) {
    r.wavelengths[1] = *Number(args[i + 1]);
    r.wavelengths[2] = *Number(args[i + 2]);
    i += 2;
  }
  return true;
}

bool ParseArguments(const std::vector<std::string>& args, FromCifArguments& a) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool valued = i + 1 < args.size();
    if (arg == "--from-cif" && valued) {
      a.cifs.push_back(args[++i]);
    } else if (arg == "--use-existing") {
      a.useExisting = true;
    } else if (arg == "--data" && valued && a.data.empty()) {
      a.data = args[++i];
    } else if (arg == "--format" && valued && a.format == 0) {
      const std::optional<float> format = Number(args[++i]);
      if (!format || *format < 1 || *format > 9) return false;
      a.format = static_cast<int>(*format);
    } else if (arg == "--radiation" && valued && !a.radiation) {
      a.radiation = RadiationNamed(args[++i]);
      if (!a.radiation) return false;
    } else if (arg == "--wavelength" && !a.radiation) {
      Radiation r;
      if (!ReadWavelengths(args, i, r)) return false;
      a.radiation = r;
    } else if (a.project.empty() && !arg.starts_with("--")) {
      a.project = arg;
    } else {
      return false;
    }
  }
  const bool dataOptions = a.format != 0 || a.radiation.has_value();
  return !a.project.empty() && !a.cifs.empty() && (!dataOptions || !a.data.empty());
}

// One CIF's phase into the project through the dialog "New project from CIF"; an existing
// project takes it behind its phases when `addToExisting`.
bool ImportOne(const std::string& project, const std::string& cif, bool addToExisting) {
  ScriptedToolkit toolkit{true};
  ShellState state;
  state.newProjectMode = 2;
  bool imported = false;
  state.hooks.importCif = [&](ShellState& s, Toolkit& t, const std::string& name, NewPhase& phase) {
    imported = ImportCifPhase(s, t, name, phase);
    return imported;
  };
  const std::string recFile = ForceExtension(project, "rec");
  const int phasesBefore = PhaseCount(recFile);
  toolkit.QueueDialog({128, {{1382, cif}, {1383, project}}, {kIdOk}});
  toolkit.QueueAnswer(addToExisting);
  NewProject(state, toolkit);
  // NewProject reports its failures itself; the project stands when a phase was added.
  if (!imported || state.projectFileName.empty()) return false;
  return PhaseCount(recFile) > phasesBefore;
}

std::string JoinedTitles(const std::vector<std::string>& titles) {
  std::string joined;
  for (const std::string& title : titles) joined += (joined.empty() ? "" : " + ") + title;
  return joined.substr(0, 72);
}

int SetUpData(const FromCifArguments& a) {
  DataSetup setup;
  setup.dataFile = a.data;
  setup.format = a.format;
  if (setup.format == 0) {
    setup.format = FormatOfExtension(a.data);
    if (setup.format == 0) {
      std::cerr << "The format of " << a.data
                << " is not known by its extension: give --format N\n";
      return 1;
    }
    std::cout << "Data format " << setup.format << " from the extension of " << a.data
              << " (--format N chooses another)\n";
  }
  setup.radiation = a.radiation.value_or(*RadiationNamed("CuKa"));
  if (!a.radiation) {
    std::cout << "Radiation Cu K alpha 1 and 2, 1.540593 and 1.544414 A, ratio 0.5 "
                 "(International Tables C, Table 4.2.2.1; --radiation or --wavelength for "
                 "another)\n";
  }
  for (const std::string& cif : a.cifs) {
    const std::string title = CifTitle(cif);
    setup.phaseTitles.push_back(title.empty() ? BaseNameOf(cif) : title);
  }
  setup.title = JoinedTitles(setup.phaseTitles);
  const std::string recFile = ForceExtension(a.project, "rec");
  ConsoleReporter reporter;
  if (!SetUpRefinement(recFile, setup, reporter)) return 1;
  std::cout << "Project " << recFile << " refines the scale, background and zero point of "
            << a.data << ". Next:\n"
            << "  kalden run " << recFile << "      refine; see the list file and R-values\n"
            << "  kalden plot " << recFile << " --out fit.png\n"
            << "  kalden update " << recFile << "   take the refined values, then switch on,\n"
            << "  one step a run (run, look, update), the records:\n";
  int n = 0;
  for (const std::string& step : NextRefinementSteps(recFile)) {
    std::cout << "  " << ++n << ". " << step << "\n";
  }
  return 0;
}

}  // namespace

int NewFromCifCommand(const std::vector<std::string>& args) {
  FromCifArguments a;
  if (!ParseArguments(args, a)) return kBadArguments;
  const std::string recFile = ForceExtension(a.project, "rec");
  const bool existed = std::filesystem::exists(recFile);
  for (std::size_t i = 0; i < a.cifs.size(); ++i) {
    if (!ImportOne(a.project, a.cifs[i], i > 0 || a.useExisting)) return 1;
  }
  if (a.data.empty()) return 0;
  const int status = SetUpData(a);
  if (status != 0 && !existed) {
    // A pattern that does not serve leaves no half project behind to trip the next try.
    std::error_code ignored;
    std::filesystem::remove(recFile, ignored);
    std::filesystem::remove(ForceExtension(recFile, "par"), ignored);
  }
  return status;
}

}  // namespace kaldena
