// The menu bar on screen against the shell's menu table: every item found by its menu and
// caption carries the table's key, and choosing it reaches the same routine as the scripted
// toolkit's menu message; greying by project and phases.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTextDocument>

#include "modal_answerer.h"
#include "qt/qt_toolkit.h"
#include "qt_windows.h"
#include "shell/main_window.h"
#include "shell/project_lifecycle.h"
#include "toolkit/dialog_resources.h"
#include "toolkit/headless_toolkit.h"

namespace kaldena {
namespace {

using Lines = std::vector<std::string>;

// The action under a menu path ("Edit project, More phases") with that caption, found the
// way a user finds it.
QAction* FindAction(QMenuBar& bar, std::string_view path, const QString& caption) {
  QList<QAction*> actions = bar.actions();
  for (const QString& title : QString::fromUtf8(path.data(), path.size()).split(", ")) {
    QMenu* popup = nullptr;
    for (QAction* action : actions) {
      if (action->menu() && action->text() == title) popup = action->menu();
    }
    if (!popup) return nullptr;
    actions = popup->actions();
  }
  for (QAction* action : actions) {
    if (!action->menu() && action->text() == caption) return action;
  }
  return nullptr;
}

// Every slot of the routines notes its name, so that a command shows which routine it reached.
ShellRoutines RecordingRoutines(Lines& reached) {
  ShellRoutines r;
  auto note = [&reached](std::string name) {
    return [&reached, name](ShellState&, Toolkit&) { reached.push_back(name); };
  };
  r.redrawPlot = [&reached](ShellState&, Toolkit&, int a) {
    reached.push_back("redraw " + std::to_string(a));
  };
  r.fullPattern = note("full pattern");
  r.plotOptions = note("plot options");
  r.editFiles = note("files");
  r.editControls = note("controls");
  r.editGlobals = note("globals");
  r.editPhase = [&reached](ShellState& s, Toolkit&) {
    reached.push_back("phase " + std::to_string(s.currentPhase));
  };
  r.addPhase = note("add phase");
  r.deletePhase = [&reached](ShellState& s, Toolkit&) {
    reached.push_back("delete phase " + std::to_string(s.deletePhaseNumber));
  };
  r.fourierOptions = note("fourier options");
  r.addAtoms = note("add atoms");
  r.plotFourierMaps = note("fourier maps");
  r.tableOptions = note("table options");
  r.tablePlus = note("table+");
  r.distanceOptions = note("distance options");
  r.cif = note("cif");
  r.cifRawReport = note("cif raw");
  r.crystallinity = note("crystallinity");
  return r;
}

// What one command did: the routine slots it reached, the log lines, the boxes and the other
// modal windows by title.
struct Outcome {
  Lines reached;
  Lines log;
  Lines asked;
  bool exit = false;
};

// Commands with the toolkit's own windows (print, file and colour dialogs) ask on screen by
// the window's title only; the scripted toolkit notes selections, boxes and nothing for
// print and colour.
bool AsksOnlyOnScreen(int id) {
  return id == menu::kPrintGraphics || id == menu::kLogPrint || id == menu::kLogSave ||
         id == menu::kFrameColour;
}

Outcome OnScripted(int id) {
  Outcome out;
  ScriptedToolkit toolkit;
  ShellState state;
  toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
  state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
  const ShellRoutines routines = RecordingRoutines(out.reached);
  ShellContext shell{state, toolkit, routines};
  toolkit.QueueMenu(id);
  HandleMessage(shell, toolkit.WMessageGet());
  out.log = toolkit.WindowText(state.logWindow);
  for (const auto& selection : toolkit.Selections()) out.asked.push_back(selection.title);
  for (const auto& box : toolkit.Boxes()) out.asked.push_back(box.title + ": " + box.text);
  for (int dialog : toolkit.DialogsShown()) out.asked.push_back(FindDialogResource(dialog)->title);
  out.exit = state.exitRequested;
  return out;
}

class OnScreen {
 public:
  OnScreen() : toolkit_({"kaldena"}) { testing::OpenMainAndLog(toolkit_, state_); }
  ~OnScreen() { toolkit_.WindowClose(); }
  QtToolkit& Toolkit() { return toolkit_; }
  // The windows' own repaint and resize messages are passed over.
  Message NextMenuMessage() {
    Message message;
    do {
      message = toolkit_.WMessageGet();
    } while (message.type == kExpose || message.type == kResize);
    EXPECT_EQ(message.type, kMenuSelect);
    return message;
  }

  // Chooses the action and runs the message it posts through the message loop's handling.
  // A fresh shell state unless `keep`.
  Outcome Choose(QAction& action, bool keep = false) {
    Outcome out;
    const ShellRoutines routines = RecordingRoutines(out.reached);
    ShellContext shell{state_, toolkit_, routines};
    if (!keep) state_ = ShellState{};
    state_.logWindow = 1;
    state_.logLineCount = 0;
    toolkit_.Window(1)->Editor()->clear();
    answerer_.Clear();
    // An earlier command may have greyed it (Stop is on only during a run); the greying has
    // its own test.
    action.setEnabled(true);
    action.trigger();
    const Message message = NextMenuMessage();
    HandleMessage(shell, message);
    const QTextDocument& log = *toolkit_.Window(1)->Editor()->document();
    if (!log.isEmpty()) {
      for (const QString& line : log.toPlainText().split('\n'))
        out.log.push_back(line.toStdString());
    }
    out.asked = answerer_.Seen();
    out.exit = state_.exitRequested;
    lastMessage = message;
    return out;
  }

  Message lastMessage;

 private:
  testing::ModalAnswerer answerer_;
  QtToolkit toolkit_;
  ShellState state_;
};

TEST(MenuBar, EveryItemStandsUnderItsMenuWithItsKeyAndReachesTheScriptedRoutine) {
  OnScreen screen;
  QMenuBar& bar = *screen.Toolkit().Window(kMainWindow)->menuBar();
  int checked = 0;
  for (const MenuEntry& entry : MenuTable()) {
    SCOPED_TRACE(entry.id);
    const bool recent = entry.id >= menu::kRecentFirst && entry.id < menu::kRecentFirst + 4;
    // A recent item shows its project, "empty" at first; only its place tells it.
    QAction* action =
        recent ? screen.Toolkit().Menu()->Action(entry.id)
               : FindAction(bar, entry.menu,
                            QString::fromUtf8(entry.caption.data(), entry.caption.size()));
    ASSERT_NE(action, nullptr) << entry.menu << " / " << entry.caption;
    EXPECT_EQ(action->shortcut(),
              QKeySequence(QString::fromUtf8(entry.key.data(), entry.key.size())));
    if (recent) {
      EXPECT_EQ(action->text(), "empty");
    }

    const Outcome shown = screen.Choose(*action);
    EXPECT_EQ(screen.lastMessage.value, entry.id);
    const Outcome scripted = OnScripted(entry.id);
    if (entry.id == menu::kPrintGraphics) {
      // The print dialog was cancelled: only the way back to the screen redraws.
      EXPECT_EQ(shown.reached, Lines{"redraw 0"});
    } else {
      EXPECT_EQ(shown.reached, scripted.reached);
    }
    EXPECT_EQ(shown.log, scripted.log);
    EXPECT_EQ(shown.exit, scripted.exit);
    if (!AsksOnlyOnScreen(entry.id)) {
      EXPECT_EQ(shown.asked, scripted.asked);
    }
    ++checked;
  }
  EXPECT_EQ(checked, 73);
}

TEST(MenuBar, PopupsHaveTheIdsThatGreyThem) {
  OnScreen screen;
  MenuBar& menu = *screen.Toolkit().Menu();
  const std::pair<int, const char*> popups[] = {
      {40001, "File"},          {40017, "New project"},  {40003, "Save graphics"},
      {40010, "Log text size"}, {40012, "Settings"},     {40014, "Edit project"},
      {40036, "More phases"},   {40067, "Delete phase"}, {40040, "Run"},
      {40007, "Plot"},          {40048, "Fourier"},      {40053, "Output"}};
  for (const auto& [id, title] : popups) {
    ASSERT_NE(menu.Action(id), nullptr) << id;
    EXPECT_EQ(menu.Action(id)->text(), title);
    EXPECT_NE(menu.Action(id)->menu(), nullptr) << id;
  }
}

// The project and phase greying as the menu shows it.
struct Greying {
  bool project = false;
  int phases = 1;
};

void ExpectGreying(QtToolkit& toolkit, const Greying& g) {
  MenuBar& menu = *toolkit.Menu();
  auto on = [&](int id) { return menu.Action(id)->isEnabled(); };
  for (int popup : {menu::kEditProject, menu::kRun, menu::kPlot, menu::kFourier, menu::kOutput}) {
    EXPECT_EQ(on(popup), g.project) << popup;
  }
  EXPECT_TRUE(on(menu::kFile));
  if (!g.project) return;  // the phase items keep their state under a grey menu
  EXPECT_TRUE(on(menu::kEditPhase1));
  EXPECT_TRUE(on(menu::kDeletePhase1));
  EXPECT_EQ(on(menu::kEditPhase2), g.phases >= 2);
  EXPECT_EQ(on(menu::kEditPhase3), g.phases >= 3);
  EXPECT_EQ(on(menu::kMorePhases), g.phases >= 4);
  EXPECT_EQ(on(menu::kEditPhase4), g.phases >= 4);
  for (int phase = 5; phase <= 10; ++phase) {
    EXPECT_EQ(on(menu::kEditPhase5 + phase - 5), g.phases >= phase) << phase;
  }
  EXPECT_EQ(on(menu::kDeletePhase), g.phases >= 2);
  for (int phase = 2; phase <= 10; ++phase) {
    EXPECT_EQ(on(menu::kDeletePhase1 + phase - 1), g.phases >= phase) << phase;
  }
}

TEST(MenuBar, GreysByProjectAndPhases) {
  OnScreen screen;
  QtToolkit& toolkit = screen.Toolkit();
  ShellState state;
  EnableProjectMenus(state, toolkit, 0);
  ExpectGreying(toolkit, {false, 1});

  for (int phases : {1, 10, 3}) {
    SCOPED_TRACE(phases);
    state.job.values[2] = phases;
    EnableProjectMenus(state, toolkit, 1);
    EnablePhaseMenus(state, toolkit);
    ExpectGreying(toolkit, {true, phases});
  }
  // A greyed item does not post its message.
  toolkit.Menu()->Action(menu::kEditPhase5)->trigger();
  toolkit.Menu()->Action(menu::kDebug)->trigger();
  EXPECT_EQ(screen.NextMenuMessage().value, menu::kDebug);
}

TEST(MenuBar, DebugShowsItsCheckMark) {
  OnScreen screen;
  QtToolkit& toolkit = screen.Toolkit();
  QAction& debug = *toolkit.Menu()->Action(menu::kDebug);
  EXPECT_FALSE(debug.isChecked());
  screen.Choose(debug, true);
  EXPECT_TRUE(debug.isChecked());
  screen.Choose(debug, true);
  EXPECT_FALSE(debug.isChecked());
}

TEST(MenuBar, RecentProjectsShowTheirNamesLiterally) {
  OnScreen screen;
  QtToolkit& toolkit = screen.Toolkit();
  ShellState state;
  state.recentProjects = {"/data/a&b.rec", "", "c.rec", ""};
  ShowRecentProjects(state, toolkit);
  EXPECT_EQ(toolkit.Menu()->Action(menu::kRecentFirst)->text(), "/data/a&&b.rec");
  EXPECT_EQ(toolkit.Menu()->Action(menu::kRecentFirst + 1)->text(), "empty");
  EXPECT_EQ(toolkit.Menu()->Action(menu::kRecentFirst + 2)->text(), "c.rec");
}

}  // namespace
}  // namespace kaldena
