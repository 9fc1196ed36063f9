// "Edit files": the title, file names, background factor, environmental value and raw data
// format of the project, and the buttons that set the job and update and run.
#include <array>
#include <filesystem>

#include "shell/edit_command.h"
#include "shell/edit_dialogs.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/job_records.h"
#include "store/record_catalogue.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

constexpr int kSelectOpen = 136;
constexpr int kSelectSave = 11;

constexpr std::array<std::string_view, 9> kFormatNames = {"gdf", "txt", "udf", "xrdml", "xy",
                                                          "dat", "uxd", "cif", "epf"};

// The four output files: key, extension, and their selection's title, pattern and caption.
struct OutputFile {
  std::string_view key, extension, title, pattern, caption;
};
constexpr std::array<OutputFile, 4> kOutputs = {{
    {"PWUT", ".out", "Select output file", "*.out", "List file"},
    {"PWPR", ".par", "Select parameter file", "*.par", "Parameter file"},
    {"PWSM", ".sum", "Select summary file", "*sum", "Sum file"},
    {"PWFO", ".fou", "Select Fourier file", "*fou", "Fourier file"},
}};

struct FilesRecords {
  JobValues job;
  std::string title;
  int format = 1;
  std::string data, weights, background;
  std::array<std::string, 4> outputs;
  float factor = 1.0f, factorSigma = 0.0f, factorCode = 0.0f;
  double environment = 0.0;
};

FilesRecords ReadFiles(RecordStore& store, const std::string& base) {
  FilesRecords r;
  ReadJobValues(store, r.job);
  r.title = ReadTitle(store);
  std::vector<std::string> ignored;
  ReadDataFormat(store, r.format, ignored);
  r.data = FindText(store, "PWDT", "");
  r.weights = FindText(store, "PWWG", "");
  r.background = FindText(store, "PWBG", "");
  for (std::size_t i = 0; i < kOutputs.size(); ++i) {
    r.outputs[i] = FindText(store, kOutputs[i].key, base + std::string(kOutputs[i].extension));
  }
  std::string data;
  if (store.jFindRec("BGSC", data) == 1) Read(data, "(2F10.0)", r.factor, r.factorSigma);
  if (store.jFindRec("CBGS", data) == 1) Read(data, "(F10.0)", r.factorCode);
  if (store.jFindRec("ENVI", data) == 1) Read(data, "(F15.0)", r.environment);
  return r;
}

std::vector<Record> FilesRecordLines(const FilesRecords& r) {
  const auto& v = r.job.values;
  std::vector<Record> records = {
      TextRecord("TITL", r.title),
      MakeRecord("FRMT", "(i5)", r.format),
      MakeRecord("JOBT", "(8i5)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]),
      TextRecord("PWDT", r.data),
      TextRecord("PWWG", r.weights),
      TextRecord("PWBG", r.background),
  };
  for (std::size_t i = 0; i < kOutputs.size(); ++i) {
    records.push_back(TextRecord(kOutputs[i].key, r.outputs[i]));
  }
  records.push_back(MakeRecord("BGSC", "(2f10.6)", r.factor, r.factorSigma));
  records.push_back(MakeRecord("CBGS", "(f10.3)", r.factorCode));
  records.push_back(MakeRecord("ENVI", "(f15.5)", r.environment));
  return records;
}

void PutFiles(Toolkit& toolkit, const FilesRecords& r, const std::string& base) {
  toolkit.WDialogPutString(kFilesTitle, r.title);
  toolkit.WDialogPutString(kFilesRawData, r.data);
  toolkit.WDialogPutString(kFilesWeights, r.weights);
  toolkit.WDialogPutString(kFilesBackground, r.background);
  for (int i = 0; i < 4; ++i) {
    toolkit.WDialogPutString(kFilesList + i, r.outputs[i]);
    const bool isDefault = r.outputs[i] == base + std::string(kOutputs[i].extension);
    toolkit.WDialogPutCheckBox(kFilesDefaultFirst + i, isDefault ? 1 : 0);
  }
  toolkit.WDialogPutReal(kFilesBackgroundFactor, r.factor);
  toolkit.WDialogPutCheckBox(kFilesRefineFactor, r.factorCode != 0.0f ? 1 : 0);
  toolkit.WDialogPutReal(kFilesEnvironment, r.environment);
  // A format outside 1 to 9 shows no button and stays unless one is chosen.
  if (r.format >= 1 && r.format <= 8) {
    toolkit.WDialogPutRadioButton(kFilesFormatFirst + r.format - 1);
  } else if (r.format == 9) {
    toolkit.WDialogPutRadioButton(kFilesFormatEpf);
  }
}

void TakeFiles(DialogValues& values, Toolkit& toolkit, FilesRecords& r, const std::string& base,
               CodewordNumbering codes) {
  r.title = values.Text(kFilesTitle);
  r.data = StrippedText(values.Text(kFilesRawData));
  r.weights = StrippedText(values.Text(kFilesWeights));
  r.background = StrippedText(values.Text(kFilesBackground));
  for (int i = 0; i < 4; ++i) {
    r.outputs[i] = StrippedText(values.Text(kFilesList + i));
    if (toolkit.WDialogGetCheckBox(kFilesDefaultFirst + i) != 0) {
      r.outputs[i] = base + std::string(kOutputs[i].extension);
    }
  }
  r.factor = static_cast<float>(values.Real(kFilesBackgroundFactor));
  r.factorCode = codes.Take(toolkit.WDialogGetCheckBox(kFilesRefineFactor) != 0, r.factorCode);
  r.environment = values.Real(kFilesEnvironment);
  const int chosen = toolkit.WDialogGetRadioButton(kFilesFormatFirst, kFilesFormatLast);
  if (chosen > 0) r.format = chosen;
  if (toolkit.WDialogGetCheckBox(kFilesFormatEpf) != 0) r.format = 9;
}

// A selected file in the project's directory is named without the directory.
std::string NameInProject(const ShellState& state, const std::string& selected) {
  const fs::path path(selected);
  if (!state.projectDir.empty() && fs::path(state.projectDir).lexically_normal() ==
                                       (path.parent_path() / "").lexically_normal()) {
    return path.filename().string();
  }
  return selected;
}

// A Browse button: the selection puts its name into the field beside it.
void Browse(ShellState& state, Toolkit& toolkit, int field, std::string_view filter, int flags,
            std::string_view title) {
  std::string name = std::string(Trimmed(toolkit.WDialogGetString(field)));
  toolkit.WSelectFile(filter, flags, name, title);
  toolkit.WDialogSelect(kFilesDialog);
  if (!NoSelection(name)) toolkit.WDialogPutString(field, NameInProject(state, name));
}

std::string RawDataFilter(Toolkit& toolkit) {
  int format = toolkit.WDialogGetRadioButton(kFilesFormatFirst, kFilesFormatLast);
  if (toolkit.WDialogGetCheckBox(kFilesFormatEpf) != 0) format = 9;
  const std::string pattern =
      format > 0 ? "*." + std::string(kFormatNames[format - 1]) : std::string("*.*");
  return "Raw data|" + pattern + "|All files|*.*|";
}

// The buttons other than OK and Cancel; the job buttons set the first value of JOBT, keeping
// the radiation, and leave with "update and run".
int FilesButton(ShellState& state, Toolkit& toolkit, FilesRecords& r, int button) {
  const int radiation = r.job.values[0] % 2;
  switch (button) {
    case kFilesCompare:
      r.job.values[0] = 4 + radiation;
      return kEditAndRun;
    case kFilesRefine:
      r.job.values[0] = radiation;
      return kEditAndRun;
    case kFilesCalculate:
      r.job.values[0] = 2 + radiation;
      return kEditAndRun;
    case kFilesBrowseRawData:
      Browse(state, toolkit, kFilesRawData, RawDataFilter(toolkit), kSelectOpen,
             "Select raw data file");
      return -1;
    case kFilesBrowseRawData + 1:
      Browse(state, toolkit, kFilesWeights, "All files|*.*|", kSelectOpen, "Select weighting file");
      return -1;
    case kFilesBrowseRawData + 2:
      Browse(state, toolkit, kFilesBackground, "All files|*.*|", kSelectOpen,
             "Select background file");
      return -1;
    default:
      break;
  }
  const int output = button - kFilesBrowseList;
  if (output >= 0 && output < 4) {
    const OutputFile& o = kOutputs[output];
    Browse(state, toolkit, kFilesList + output,
           std::string(o.caption) + "|" + std::string(o.pattern) + "|", kSelectSave, o.title);
  }
  return -1;
}

// A new parameter file name: the old file is copied to it first and the edit goes there.
bool MoveParameterFile(ShellState& state, Toolkit& toolkit, const std::string& newName) {
  if (newName == StrippedText(state.parameterFileName)) return true;
  if (!CopyFileChecked(toolkit, InProjectDir(state, state.parameterFileName),
                       InProjectDir(state, newName))) {
    LogLine(state, toolkit, "Error copying file. No file update.");
    return false;
  }
  state.parameterFileName = newName;
  return true;
}

}  // namespace

void EditFilesDialog(ShellState& state, Toolkit& toolkit) {
  EditCommand edit(state, toolkit, "Edit files");
  const std::string base = StrippedText(state.projectBaseName);
  FilesRecords r;
  if (!edit.Read([&](RecordStore& store) { r = ReadFiles(store, base); })) return;
  const CodewordNumbering codes(HighestCodewordGroup(state, toolkit));
  edit.Load(kFilesDialog);
  PutFiles(toolkit, r, base);
  const int result =
      edit.Run([&](int button) { return FilesButton(state, toolkit, r, button); },
               [&](DialogValues& values) { TakeFiles(values, toolkit, r, base, codes); });
  if (result == kEditCancelled) return;
  if (!MoveParameterFile(state, toolkit, r.outputs[1])) return;
  if (!edit.Write(FilesRecordLines(r))) return;
  if (result == kEditAndRun) UpdateAndRun(state, toolkit);
}

void EditNewProject(ShellState& state, Toolkit& toolkit, const ShellRoutines& routines) {
  EditFilesDialog(state, toolkit);
  EditControlsDialog(state, toolkit);
  EditGlobalsDialog(state, toolkit);
  if (!routines.editPhase) return;
  for (int phase = 1; phase <= state.job.Phases(); ++phase) {
    state.currentPhase = phase;
    routines.editPhase(state, toolkit);
  }
}

void AddEditRoutines(ShellRoutines& routines) {
  routines.editFiles = EditFilesDialog;
  routines.editControls = EditControlsDialog;
  routines.editGlobals = EditGlobalsDialog;
}

}  // namespace kaldena
