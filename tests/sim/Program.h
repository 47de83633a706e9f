// A machine on which the whole program is installed, from its entry point on: blocking from 22 to 6, set up by its
// user, permitted to take keys. It is noon on 16 November 2026, and nothing runs yet.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/AgentManager.h"
#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "core/Config.h"
#include "core/Constants.h"
#include "core/DebugLog.h"
#include "overlay/BlockerOverlayView.h"
#include "platform/sim/SimMachine.h"
#include "tests/sim/Fingers.h"

namespace dormel {

inline const std::string PLIST = "/home/user/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist";
inline const std::string SERVICE = "gui/1000/" + std::string(BUNDLE_IDENTIFIER);
inline const std::string BOOTOUT = "run /bin/launchctl bootout " + SERVICE;
inline const std::string BOOTSTRAP = "run /bin/launchctl bootstrap gui/1000 " + PLIST;
inline const std::string PRINT = "run /bin/launchctl print " + SERVICE;

class Program {
 public:
  using Lines = std::vector<std::string>;

  explicit Program(const std::string& bundle = "/Applications/Dormel.app") : machine(startOptions()) {
    setHours(22, 6);
    machine.defaults.putBoolean(defaultsKey::onboardingComplete, true);
    machine.defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
    machine.files.putDirectory(Config::logDirectory());
    machine.files.putDirectory("/home/user/Library/LaunchAgents");
    place(bundle);
    machine.bundle.setPath(bundle);
    machine.workspace.registerApplication(bundle);
    machine.journal.clear();
    machine.windows.setFirstShown([](View& view) {
      if (view.kind() == ViewKind::blockerOverlay) static_cast<BlockerOverlayView&>(view).onAppear();
      if (view.kind() == ViewKind::onboarding) static_cast<OnboardingView&>(view).onAppear();
      if (view.kind() == ViewKind::settings) static_cast<SettingsView&>(view).onAppear();
    });
    // What main does.
    machine.setProgram([this](const Lines& arguments) -> std::shared_ptr<void> {
      cliArgs = {machine.bundle.path() + "/Contents/Linux/Dormel"};
      cliArgs.insert(cliArgs.end(), arguments.begin(), arguments.end());
      EntryPoint::runOneShotCommand();
      auto delegate = EntryPoint::startApplication();
      delegate_ = delegate;
      machine.application.setDelegate(delegate.get());
      delegate->didFinishLaunching();
      return delegate;
    });
  }

  /// Puts a bundle on the disk.
  void place(const std::string& bundle) { machine.files.put(bundle + "/Contents/Linux/Dormel", "program", 0755); }

  void setHours(int start, int end) {
    machine.defaults.putInteger(defaultsKey::blockStartHour, start);
    machine.defaults.putInteger(defaultsKey::blockEndHour, end);
  }

  /// The user, or a shell, starts the program.
  void open(const Lines& arguments = {}) {
    machine.launch(arguments);
    machine.settle();
  }
  /// As on a machine where the scheduler knows the job.
  void arm() {
    machine.run([] { AgentManager::install(); });
    machine.settle();
    machine.journal.clear();
  }
  /// The user presses a button of the newest alert.
  void answer(const std::string& button) {
    machine.alerts.answer(button);
    machine.settle();
  }

  [[nodiscard]] AppDelegate& delegate() const { return *delegate_.lock(); }
  [[nodiscard]] bool isArmed() const { return machine.scheduler.isLoaded(BUNDLE_IDENTIFIER); }

  /// What happened since the last time this was asked, without the times of day.
  [[nodiscard]] Lines effects() {
    Lines lines = machine.journal.lines();
    for (std::string& line : lines) line.erase(0, sizeof "21:00:00.000 " - 1);
    machine.journal.clear();
    return lines;
  }
  /// The debug log's lines, without the times of day.
  [[nodiscard]] static Lines trail() {
    Lines lines(DebugLog::shared().lines().begin(), DebugLog::shared().lines().end());
    for (std::string& line : lines) line.erase(0, sizeof "21:00:00.000  " - 1);
    return lines;
  }

  SimMachine machine;

 private:
  static SimMachine::Options startOptions() {
    SimMachine::Options options;
    options.start = "2026-11-16 11:00:00";
    options.processRuns = false;
    return options;
  }

  std::weak_ptr<AppDelegate> delegate_;
};

}  // namespace dormel
