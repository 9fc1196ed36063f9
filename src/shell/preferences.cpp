// Reading and rewriting the preferences file.
#include "shell/preferences.h"

#include <filesystem>
#include <fstream>

#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/number_text.h"
#include "util/temporary_file.h"
#include "util/text.h"

namespace kaldena {

namespace {

// More lines than this are not kept by a rewrite.
constexpr int kMaxRewrittenLines = 50;

// A key in upper or in lower case; mixed case does not match.
bool HasKey(std::string_view line, std::string_view upperKey) {
  if (line.size() < upperKey.size()) return false;
  const std::string_view head = line.substr(0, upperKey.size());
  return head == upperKey || head == LowerText(upperKey);
}

bool BeginsSection(std::string_view line) { return HasKey(line, "OLD KALDEN"); }
bool EndsSection(std::string_view line) { return HasKey(line, "END KALDEN"); }

// What follows the first "=", or nothing when there is none.
bool ValueOf(std::string_view line, std::string& value) {
  const std::size_t at = line.find('=');
  if (at == std::string_view::npos) return false;
  value = std::string(Trimmed(line.substr(at + 1)));
  return true;
}

bool IsSeparator(char c) { return c == '\\' || c == '/' || c == ':'; }

// A starting directory ends in a separator: "\" for a name written with backslashes, "/"
// otherwise.
std::string WithClosingSeparator(std::string dir) {
  if (dir.empty() || IsSeparator(dir.back())) return dir;
  const bool backslashes = dir.find('\\') != std::string::npos && dir.find('/') == std::string::npos;
  dir += backslashes ? '\\' : '/';
  return dir;
}

std::vector<std::string> ReadLines(std::ifstream& in, int maxLines, bool stopAtSection,
                                   bool& sectionFound) {
  std::vector<std::string> lines;
  std::string line;
  sectionFound = false;
  while (static_cast<int>(lines.size()) < maxLines && ReadRecordLine(in, line)) {
    lines.emplace_back(Trimmed(line));
    if (stopAtSection && BeginsSection(line)) {
      sectionFound = true;
      break;
    }
  }
  return lines;
}

// Replaced by rename, so that a kill never leaves a cut preferences file.
bool WriteLines(const std::string& file, const std::vector<std::string>& lines) {
  return WriteFileWhole(file, [&lines](std::ostream& out) {
    for (const std::string& line : lines) out << Trimmed(line) << '\n';
  });
}

std::string RealValue(double value) {
  const std::string text = LeftJustify(RealToText(value, 9, 5));
  return std::string(Trimmed(text));
}

std::string FileOf(const ShellState& state) {
  return state.programDir.empty() ? std::string(kPreferencesFileName)
                                  : ReplaceDirectory(state.programDir, kPreferencesFileName);
}

}  // namespace

Preferences BuiltInPreferences() {
  Preferences p;
#ifdef _WIN32
  p.startingDir = "C:\\";
  p.editorPath = "c:\\windows\\notepad.exe";
#else
  p.startingDir = "/";
  p.editorPath = "xdg-open";
#endif
  p.visualizerPath.clear();
  p.minimumU = 0.0;
  p.minimumV = 0.0;
  p.minimumW = 0.01;
  return p;
}

std::vector<std::string> DefaultPreferencesLines() {
#ifdef _WIN32
  const std::string dir = "C:\\Users\\";
  const std::string editor = "C:\\WINDOWS\\NOTEPAD.EXE";
  const std::string viewer = "C:\\Program files (x86)\\CCDC\\Mercury 3.6\\mercury.exe";
#else
  const std::string dir = "/home/";
  const std::string editor = "/usr/bin/xdg-open";
  const std::string viewer = "/opt/CCDC/Mercury/bin/mercury";
#endif
  return {"ini-file for kalden",
          "",
          "! Starting directory",
          "",
          "DIR=" + dir,
          "",
          "! Editor",
          "",
          "EDT=" + editor,
          "",
          "! Structure plot program",
          "",
          "VIS=" + viewer,
          "",
          "! Minimum Cagliotti parameters",
          "",
          "MINU=0.",
          "MINV=0.",
          "MINW=0.01",
          ""};
}

void ReadPreferences(ShellState& state, Toolkit& toolkit) {
  state.preferencesFile = FileOf(state);
  state.preferences = BuiltInPreferences();
  for (std::string& slot : state.recentProjects) slot.clear();
  const std::string& file = state.preferencesFile;
  std::error_code error;
  if (!std::filesystem::exists(file, error)) {
    if (!WriteLines(file, DefaultPreferencesLines())) {
      ShowMessage(toolkit, "Error", "Error creating ini-file");
      return;
    }
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    ShowMessage(toolkit, "Error", "Error opening ini-file");
    return;
  }
  Preferences& p = state.preferences;
  std::string line;
  std::string value;
  int recent = 0;
  while (ReadRecordLine(in, line)) {
    if (TrimmedLength(line) == 0) continue;
    if (HasKey(line, "EDT")) {
      if (ValueOf(line, value)) p.editorPath = value;
    } else if (HasKey(line, "DIR")) {
      if (ValueOf(line, value)) p.startingDir = WithClosingSeparator(value);
    } else if (HasKey(line, "VIS")) {
      if (ValueOf(line, value)) p.visualizerPath = value;
    } else if (HasKey(line, "MINU") || HasKey(line, "MINV") || HasKey(line, "MINW")) {
      double number = 0.0;
      if (!ValueOf(line, value) || Read(value, "(f10.0)", number) != ReadStatus::kOk) continue;
      const char which = UpperChar(line[3]);
      (which == 'U' ? p.minimumU : which == 'V' ? p.minimumV : p.minimumW) = number;
    } else if (BeginsSection(line)) {
      // Up to four entries; what follows a full section is read as ordinary lines.
      while (recent < kRecentSlots && ReadRecordLine(in, line)) {
        if (line.starts_with('!') || line.starts_with('[') || EndsSection(line)) break;
        if (TrimmedLength(line) == 0 || static_cast<unsigned char>(line[0]) < 33) continue;
        state.recentProjects[static_cast<std::size_t>(recent++)] = std::string(Trimmed(line));
      }
    }
  }
  in.close();
  ShowRecentProjects(state, toolkit);
  toolkit.IOsDirChange(p.startingDir);
}

void WritePreferences(ShellState& state, Toolkit& toolkit) {
  const std::string file = state.preferencesFile.empty() ? FileOf(state) : state.preferencesFile;
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    ShowMessage(toolkit, "Error", "Error opening inifile");
    return;
  }
  bool section = false;
  std::vector<std::string> lines = ReadLines(in, kMaxRewrittenLines, false, section);
  in.close();
  const Preferences& p = state.preferences;
  for (std::string& line : lines) {
    if (HasKey(line, "EDT")) {
      line = "EDT=" + std::string(Trimmed(p.editorPath));
    } else if (HasKey(line, "VIS")) {
      line = "VIS=" + std::string(Trimmed(p.visualizerPath));
    } else if (HasKey(line, "DIR")) {
      line = "DIR=" + std::string(Trimmed(p.startingDir));
    } else if (HasKey(line, "MINU")) {
      line = "MINU=" + RealValue(p.minimumU);
    } else if (HasKey(line, "MINV")) {
      line = "MINV=" + RealValue(p.minimumV);
    } else if (HasKey(line, "MINW")) {
      line = "MINU=" + RealValue(p.minimumW);  // the W line's old key text, kept as it was
    }
  }
  if (!WriteLines(file, lines)) ShowMessage(toolkit, "Error", "Error opening inifile");
}

void WriteRecentProjects(ShellState& state, Toolkit& toolkit) {
  const std::string& file = state.preferencesFile;
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    ShowMessage(toolkit, "Error", "Error opening inifile");
    return;
  }
  bool section = false;
  std::vector<std::string> lines = ReadLines(in, kMaxRewrittenLines, true, section);
  in.close();
  if (!section) lines.emplace_back("OLD KALDEN FILES");
  for (const std::string& slot : state.recentProjects) lines.emplace_back(Trimmed(slot));
  lines.emplace_back("END KALDEN FILES");
  if (!WriteLines(file, lines)) ShowMessage(toolkit, "Error", "Error opening inifile");
}

void PreferencesDialog(ShellState& state, Toolkit& toolkit) {
  constexpr int kDialog = 133;
  constexpr int kEditor = 1426, kViewer = 1427, kDir = 1428;
  constexpr int kBrowseEditor = 1429, kBrowseViewer = 1430, kBrowseDir = 1431;
  constexpr int kMinU = 1432, kMinV = 1433, kMinW = 1434;
  Preferences& p = state.preferences;
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kDialog);
  toolkit.WDialogPutString(kEditor, p.editorPath);
  toolkit.WDialogPutString(kViewer, p.visualizerPath);
  toolkit.WDialogPutString(kDir, p.startingDir);
  toolkit.WDialogPutReal(kMinU, p.minimumU);
  toolkit.WDialogPutReal(kMinV, p.minimumV);
  toolkit.WDialogPutReal(kMinW, p.minimumW);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  bool accepted = false;
  while (const int button = NextDialogButton(toolkit)) {
    if (button == kIdOk || button == kIdCancel) {
      accepted = button == kIdOk;
      break;
    }
    std::string name;
    int field = 0;
    if (button == kBrowseEditor || button == kBrowseViewer) {
      const bool editor = button == kBrowseEditor;
      field = editor ? kEditor : kViewer;
      name = "*.exe";
      toolkit.WSelectFile("Program|*.exe|", 136, name,
                          editor ? "Select editor" : "Select visualizer");
    } else if (button == kBrowseDir) {
      field = kDir;
      toolkit.WSelectDir(0, name, "Select starting directory");
    } else {
      continue;
    }
    if (!NoSelection(name)) toolkit.WDialogPutString(field, StrippedText(name));
  }
  if (accepted) {
    p.editorPath = toolkit.WDialogGetString(kEditor);
    p.visualizerPath = toolkit.WDialogGetString(kViewer);
    p.startingDir = toolkit.WDialogGetString(kDir);
    p.minimumU = toolkit.WDialogGetReal(kMinU);
    p.minimumV = toolkit.WDialogGetReal(kMinV);
    p.minimumW = toolkit.WDialogGetReal(kMinW);
  }
  toolkit.WDialogUnload();
  if (accepted) WritePreferences(state, toolkit);
}

}  // namespace kaldena
