// kalden: the headless command-line tool. Log lines go to standard output, message boxes
// (title and text) to standard error; exit code 0 on success, 1 on failure.
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "main/cif_commands.h"
#include "main/commands.h"
#include "main/fourier_commands.h"
#include "main/plot_commands.h"
#include "main/project_commands.h"
#include "main/tool_commands.h"
#include "store/record_store.h"
#include "util/report.h"
#include "util/text.h"

namespace {

using kaldena::ConsoleReporter;
using kaldena::RecordStore;

struct Command {
  std::string_view name;
  std::string_view usage;
  std::string_view brief;
  std::string_view summary;
  int (*run)(const std::vector<std::string>& args);
};

int Help(const std::vector<std::string>& args);
int Version(const std::vector<std::string>& args);
int Records(const std::vector<std::string>& args);

constexpr Command kCommands[] = {
    {"help", "kalden help [COMMAND]", "the commands, or the usage of one",
     "print the commands, or the usage of one", Help},
    {"--version", "kalden --version", "the version", "print the version", Version},
    {"records", "kalden records FILE KEY...", "records as the store reads them",
     "print the records of each key as the record store reads them, one per line, data from "
     "column 1 (labelled keys: label in columns 1 to 10); a key's block is headed \"== KEY\"",
     Records},
    {"spacegroup", "kalden spacegroup SYMBOL [--json]", "how a space-group symbol is read",
     "how a space-group symbol is read (fields separated by blanks, \"P 21/C\"; compact "
     "\"P21/c\" is converted): Laue class, unique axis, centric code, polar axes, generator "
     "words and operators",
     kaldena::SpaceGroupCommand},
    {"element", "kalden element SYMBOL [--wavelength W]", "scattering data of an element",
     "atomic number, mass and the eleven scattering values of an element at a wavelength "
     "(default 1.54052; 0 or below for neutrons)",
     kaldena::ElementCommand},
    {"rawdata",
     "kalden rawdata FILE --format N [--background F] [--weights F] [--autodivergence V] "
     "[--points]",
     "a pattern read as the engine reads it",
     "read a raw data file (format 1 gdf, 2 txt, 3 udf, 4 xrdml, 5 xy, 6 dat, 7 uxd, 8 cif, "
     "9 epf) as the engine would and print start, step, stop and the number of points; with "
     "--points one line per point (two-theta, intensity, variance, background)",
     kaldena::RawDataCommand},
    {"run", "kalden run PROJECT|BATCH [--debug] [--update-all]",
     "refine, calculate or compare",
     "run the engine on a project (.rec), or on each project of a batch (.mlt list, .exp "
     "chain, .edt edits): list file, summary, Fourier file and, for a refinement, the updated "
     "parameter file, beside the project unless its PW.. records name another place; Ctrl+C "
     "ends a refinement after the current cycle. After a .mlt or .edt batch --update-all "
     "takes every parameter file over as its project. One line per cycle (Rwp, CHI2, largest "
     "shift/esd) and a closing summary; exit code 0 converged, cycle limit reached or "
     "stopped, 1 failed (the list file's reason is printed), 3 diverging (the best cycle is "
     "kept); a batch gives the worst of its runs",
     kaldena::RunCommand},
    {"update", "kalden update PROJECT", "parameter file over project file",
     "copy the project's output parameter file (PWPR, or %BASE.par beside the project) over "
     "the project file",
     kaldena::UpdateCommand},
    {"table", "kalden table PROJECT|LIST.mlt [--date YYYY-MM-DD]", "the printable result table",
     "write the result table of a refined project (settings, phases with their parameters and "
     "atoms and every esd, global results, extracted intensities) beside it with the extension "
     ".tab; a .mlt list gives one table of all its projects",
     kaldena::TableCommand},
    {"crystallinity", "kalden crystallinity PROJECT [--min 2THETA] [--max 2THETA]",
     "crystalline fraction of a finished run",
     "the share of the observed scattering above the background in the project's summary "
     "file, s-weighted and unweighted, between the limits (default those of the CRYS record); "
     "the limits and results are written into the project as CRYS",
     kaldena::CrystallinityCommand},
    {"distances",
     "kalden distances PROJECT|LIST.mlt [--out FILE] [--min D] [--max D] [--angle-min D] "
     "[--angle-max D] [--extended] [--no-angles] [--date YYYY-MM-DD]",
     "distances and angles (.dis)",
     "list interatomic distances and bond angles with standard deviations per phase into the "
     "project's .dis file (a .mlt list: all projects into one file); the options replace the "
     "DIST record's values for this run",
     kaldena::DistancesCommand},
    {"cif", "kalden cif PROJECT [--date YYYY-MM-DD]", "the CIF of a refined project",
     "write the CIF of a refined project beside it with the extension .cif: a global block "
     "(experiment and refinement), one block per phase (symmetry, cell, atom sites, "
     "anisotropic displacements) and the bond and angle loops of the distance search",
     kaldena::CifCommand},
    {"cif-raw", "kalden cif-raw PROJECT", "the CIF raw data report (.rcf)",
     "write the observed and calculated pattern of the project's summary file, with the "
     "weight of each point, as a small CIF beside the project with the extension .rcf",
     kaldena::CifRawCommand},
    {"plot",
     "kalden plot PROJECT --out FILE.(png|svg|pdf|eps|jpg|bmp) [--halfwidths] "
     "[--fourier AXIS SECTION] [--range 2THETA1 2THETA2]",
     "pattern, halfwidth or Fourier contour plot into a file",
     "draw the pattern plot of the project's summary and Fourier files (observed, calculated, "
     "difference, background, Bragg ticks, residuals) into a PNG, SVG, PDF, EPS, JPG or BMP "
     "file; --halfwidths draws the halfwidth and peak-shape curves, --fourier X|Y|Z N the "
     "contours of section N of BASE.plo, --range the two-theta range shown",
     kaldena::PlotCommand},
    {"fourier", "kalden fourier PROJECT", "Fourier map and peak search",
     "sum the Fourier map of the project's Fourier file (FORD map type and levels, FLIM box, "
     "PTIT title) into BASE.plo and search its peaks into BASE.prm",
     kaldena::FourierCommand},
    {"add-peaks", "kalden add-peaks PROJECT [--atom N]", "Fourier peaks into the project",
     "append every peak of BASE.prm to PROJECT as XYZ lines and list the distances of the "
     "result into BASE.dis; with --atom N, peak N becomes the last atom of phase 1 and the "
     "atoms of later phases move on",
     kaldena::AddPeaksCommand},
    {"new", "kalden new PROJECT.rec [--use-existing] [--from-cif FILE.cif]",
     "a project from defaults or from a CIF",
     "create a project from defaults (one phase \"H\" in P 1, the edit dialogs' default "
     "records), or with the phase of a CIF, that runs at once as an X-ray pattern "
     "calculation; an existing file is left alone unless --use-existing, which adds the new "
     "phase behind what is there",
     kaldena::NewCommand},
    {"backup", "kalden backup PROJECT", "working copy to BASE.bck",
     "copy the project's parameter file (PWPR, or BASE.par) to BASE.bck beside the project, "
     "replacing an older backup",
     kaldena::BackupCommand},
    {"restore", "kalden restore PROJECT [BACKUP]", "backup over the working copy",
     "copy BACKUP (default BASE.bck) over the project's parameter file; the project file "
     "stays as it is until the next update",
     kaldena::RestoreCommand},
};

const Command* FindCommand(std::string_view name) {
  for (const Command& c : kCommands) {
    if (c.name == name) return &c;
  }
  return nullptr;
}

int Usage(const Command& command) {
  std::fprintf(stderr, "usage: %.*s\n", static_cast<int>(command.usage.size()),
               command.usage.data());
  return 1;
}

int Help(const std::vector<std::string>& args) {
  if (!args.empty()) {
    const Command* command = FindCommand(args[0]);
    if (!command) {
      std::fprintf(stderr, "kalden: unknown command '%s'\n", args[0].c_str());
      return 1;
    }
    std::printf("usage: %.*s\n\n  %.*s\n", static_cast<int>(command->usage.size()),
                command->usage.data(), static_cast<int>(command->summary.size()),
                command->summary.data());
    return 0;
  }
  std::printf("kalden: Rietveld refinement of powder diffraction patterns, without a window\n\n");
  for (const Command& c : kCommands) {
    std::printf("  %-15.*s %.*s\n", static_cast<int>(c.name.size()), c.name.data(),
                static_cast<int>(c.brief.size()), c.brief.data());
  }
  std::printf("\n'kalden help COMMAND' tells more of one command.\n");
  return 0;
}

int Version(const std::vector<std::string>& /*args*/) {
  std::printf("kalden %s\n", KALDENA_VERSION);
  return 0;
}

int Records(const std::vector<std::string>& args) {
  if (args.size() < 2) return kaldena::kBadArguments;
  ConsoleReporter reporter;
  RecordStore store(reporter);
  if (store.jReadRecFile(args[0]) < 1) return 1;
  for (size_t i = 1; i < args.size(); ++i) {
    std::string key = kaldena::UpperText(args[i]);
    key.resize(4, ' ');
    std::printf("== %s\n", key.c_str());
    std::string data;
    while (store.jFindRec(key, data) == 1) {
      std::printf("%s\n", std::string(kaldena::Trimmed(data)).c_str());
    }
  }
  store.jCloseRec();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    Help({});
    return 1;
  }
  const Command* command = FindCommand(argv[1]);
  if (!command) {
    std::fprintf(stderr, "kalden: unknown command '%s'; 'kalden help' lists the commands\n",
                 argv[1]);
    return 1;
  }
  const int code = command->run(std::vector<std::string>(argv + 2, argv + argc));
  return code == kaldena::kBadArguments ? Usage(*command) : code;
}
