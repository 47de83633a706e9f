// A whole machine in memory, with virtual time: what logic under test runs on.
//
// Constructing one puts its services in force; time stands still until somebody lets it pass. The code that calls
// counts as the main thread of the machine's process, and everything else runs on the caller's thread too, in an
// order that depends on nothing but what was asked for: a night takes milliseconds and always goes the same way.
//
// The members are the services, each with its worldly side: screens to plug, keys to press, disks to fill. Objects
// made from the services go before the machine does, except windows of a process that has ended.
//
// A process under test is either the test itself, or a program that is launched: then it can exit, be killed, and be
// started again by the scheduler. When it ends, nothing of it runs any more.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/sim/SimAlerts.h"
#include "platform/sim/SimCompositor.h"
#include "platform/sim/SimDefaults.h"
#include "platform/sim/SimDesktop.h"
#include "platform/sim/SimDragging.h"
#include "platform/sim/SimFiles.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimKeyboard.h"
#include "platform/sim/SimMainWindow.h"
#include "platform/sim/SimOtherApplications.h"
#include "platform/sim/SimProcess.h"
#include "platform/sim/SimQueues.h"
#include "platform/sim/SimRandom.h"
#include "platform/sim/SimScheduler.h"
#include "platform/sim/SimScreens.h"
#include "platform/sim/SimShell.h"
#include "platform/sim/SimSpeech.h"
#include "platform/sim/SimTexts.h"
#include "platform/sim/SimTime.h"
#include "platform/sim/SimTimeline.h"
#include "platform/sim/SimUpdater.h"
#include "platform/sim/SimWindows.h"
#include "platform/sim/SimWording.h"
#include "platform/sim/SimWorkspace.h"

namespace dormel {

class SimMachine {
 public:
  struct Options {
    std::uint64_t seed = 1;
    /// What the wall clock shows at first, UTC; the zone is an hour east of it.
    std::string start = "2026-11-16 20:00:00";
    /// False: nothing runs until something is launched.
    bool processRuns = true;
  };

  /// One process's end.
  struct ExitResult {
    int status;
    Date at;
  };

  /// The program: it sets everything up on the main thread and answers what lives as long as the process.
  using Program = std::function<std::shared_ptr<void>(const std::vector<std::string>& arguments)>;

  SimMachine() : SimMachine(Options{}) {}
  explicit SimMachine(const Options& options);
  SimMachine(const SimMachine&) = delete;
  SimMachine& operator=(const SimMachine&) = delete;
  ~SimMachine();

  [[nodiscard]] Platform services();

  // Time.
  void advance(Seconds duration) { timeline.advance(duration); }
  /// To a local moment, "2026-11-17 06:00:00".
  void advanceTo(const std::string& localMoment) { timeline.advanceTo(calendar.at(localMoment)); }
  void settle() { timeline.settle(); }
  void after(Seconds delay, Task worldDoes) { timeline.addWorld(delay, std::move(worldDoes)); }
  /// Sets the wall clock, to a local moment or by some seconds; uptime does not notice.
  void setWallClock(const std::string& localMoment);
  void jumpWallClock(Seconds by);
  void jumpUptime(Seconds by) { timeline.jumpUptime(by); }
  void stallMain(Seconds duration) { timeline.stallMain(duration); }
  /// The machine sleeps: the notices are given, the wall clock goes on, uptime stands still.
  void sleep(Seconds duration);

  // The process.
  /// What `launch` and the scheduler start.
  void setProgram(Program program) { program_ = std::move(program); }
  /// Starts the program, if none runs, within this call.
  void launch(const std::vector<std::string>& arguments, const std::string& logPath = {});
  /// Runs `work` as the process's main thread. False when that ended the process.
  bool run(const Task& work) { return timeline.perform(work); }
  [[nodiscard]] const std::vector<ExitResult>& endings() const { return endings_; }
  /// The last process's exit status; nothing while one runs.
  [[nodiscard]] std::optional<int> exitStatus() const;

  // Journal.
  void setJournalEnabled(bool enabled) { journal.setEnabled(enabled); }
  [[nodiscard]] std::string timeOfDay() const;

  SimTimeline timeline;
  SimJournal journal;
  SimClock clock;
  SimCalendar calendar;
  SimRunLoop runLoop;
  SimQueues queues;
  SimFiles files;
  SimOutput output;
  SimDefaults defaults;
  SimProcess process;
  SimChildProcesses childProcesses;
  SimRandom random;
  SimAccessibility accessibility;
  SimNotices notices;
  SimScreens screens;
  SimWindowServer windows;
  SimKeyboard keyboard;
  SimKeyboardLayout layout;
  SimApplication application;
  SimAlerts alerts;
  SimMainWindows mainWindows;
  SimMainMenu mainMenu;
  SimWorkspace workspace;
  SimLoginItems loginItems;
  SimBundle bundle;
  SimUpdater updater;
  SimOtherApplications others;
  SimDragging dragging;
  SimWording wording;
  SimTexts texts;
  SimSpeech speech;
  SimScheduler scheduler;
  SimCompositor compositor;
  SimShell shell;

 private:
  void processEnded(int status);

  Platform services_;
  std::optional<PlatformScope> scope_;
  Program program_;
  std::shared_ptr<void> launched_;
  std::vector<ExitResult> endings_;
};

}  // namespace dormel
