// A refinement on the Qt toolkit runs beside the message loop: held inside its second cycle,
// the loop still serves posted events and repaints, the log holds the first cycle's lines,
// Stop ends the run after that cycle with its files written, and the plot follows the cycles.
#include "shell/engine_job.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <mutex>

#include "modal_answerer.h"
#include "qt/qt_toolkit.h"
#include "corundum_program.h"
#include "qt_windows.h"
#include "shell/main_window.h"
#include "shell/project_lifecycle.h"
#include "shell/tool_routines.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

// Holds the engine's thread in a chosen cycle until the test lets it go.
class CycleGate {
 public:
  void Hold(int cycle) {
    std::unique_lock lock(mutex_);
    held_ = cycle;
    changed_.notify_all();
    changed_.wait(lock, [this] { return released_; });
  }
  bool Held(int cycle) {
    std::lock_guard lock(mutex_);
    return held_ == cycle;
  }
  void Release() {
    std::lock_guard lock(mutex_);
    released_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int held_ = 0;
  bool released_ = false;
};


TEST(EngineJob, ARefinementHeldInACycleLeavesTheLoopServingAndStopsAfterThatCycle) {
  testing::CorundumProgram program;
  CycleGate gate;
  QImage afterCycle1, afterCycle2;
  program.state.hooks.afterCycleShown = [&](int cycle) {
    // The plot of this cycle stands on the window when the hook is called.
    program.toolkit.OnLoopThread(
        [&] { (cycle == 1 ? afterCycle1 : afterCycle2) = program.Plot(); });
    if (cycle == 2) gate.Hold(2);
  };

  int served = 0;
  std::string heldLog;
  bool stopOn = false, runGrey = false;
  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [&] {
    if (!gate.Held(2)) return;
    watcher.stop();
    // The loop's thread is free while the engine waits: posted events are served.
    QMetaObject::invokeMethod(
        qApp, [&] { ++served; }, Qt::QueuedConnection);
    QApplication::processEvents();
    program.toolkit.Window(kMainWindow)->Plot().repaint();
    heldLog = program.Log().toStdString();
    stopOn = program.toolkit.Menu()->Action(menu::kStopRun)->isEnabled();
    runGrey = !program.toolkit.Menu()->Action(menu::kRunProject)->isEnabled();
    program.toolkit.Menu()->Action(menu::kStopRun)->trigger();  // the user's Stop
    QTimer::singleShot(50, [&] { gate.Release(); });
  });
  watcher.start(5);

  const int status = RunProject(program.state, program.toolkit);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(served, 1);
  // The earlier cycles' lines stand in the log; the run's end does not yet.
  EXPECT_NE(heldLog.find("Max. shift/e.s.d."), std::string::npos) << heldLog;
  EXPECT_EQ(heldLog.find("BRAGG R-FACTOR"), std::string::npos) << heldLog;
  EXPECT_TRUE(stopOn);
  EXPECT_TRUE(runGrey);
  EXPECT_FALSE(program.toolkit.Menu()->Action(menu::kStopRun)->isEnabled());
  EXPECT_TRUE(program.toolkit.Menu()->Action(menu::kRunProject)->isEnabled());

  // Two cycles, not the five of a full refinement, with the results written.
  EXPECT_EQ(program.Log().count("Max. shift/e.s.d."), 2);
  EXPECT_TRUE(program.Log().contains("Outcome: stopped by the user"));
  EXPECT_TRUE(program.Log().contains(" Cycles:   2"));
  for (const char* file : {"corundum.par", "corundum.sum", "corundum.out", "corundum.fou"}) {
    EXPECT_TRUE(fs::exists(program.dir.Path() / file)) << file;
  }
  EXPECT_NE(testing::ReadBytes(program.dir.Path() / "corundum.par").find("RVAL"),
            std::string::npos);
  EXPECT_EQ(program.toolkit.Window(kMainWindow)->StatusText(3).toStdString(), "Cycle   2");

  // The live plot follows the refinement.
  ASSERT_FALSE(afterCycle1.isNull());
  ASSERT_FALSE(afterCycle2.isNull());
  EXPECT_EQ(afterCycle1.size(), afterCycle2.size());
  EXPECT_NE(afterCycle1, afterCycle2);
  EXPECT_TRUE(program.answerer.Seen().empty());
}

TEST(EngineJob, EscapeStopsAndClosingTheWindowEndsTheProgramAfterTheRun) {
  testing::CorundumProgram program;
  program.state.hooks.afterCycleShown = [&](int cycle) {
    if (cycle != 1) return;
    program.toolkit.OnLoopThread([&] {
      program.toolkit.Post({kKeyDown, kKeyEscape});
      program.toolkit.Post({kCloseRequest, 0, 0, 0, kMainWindow});
    });
    // The engine goes on once the loop has taken the key.
    while (!RunStopFlag()) QThread::yieldCurrentThread();
  };
  EXPECT_EQ(RunProject(program.state, program.toolkit), 0);
  EXPECT_TRUE(program.Log().contains("Outcome: stopped by the user"));
  EXPECT_TRUE(program.Log().contains(" Cycles:   1"));
  EXPECT_TRUE(program.state.exitRequested);
}

}  // namespace
}  // namespace kaldena
