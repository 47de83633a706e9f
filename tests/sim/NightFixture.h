// A machine on which the program is installed: blocking from 22 to 6, set up by its user, permitted to take keys.
// Two screens; it is 21:59:50 on 16 November 2026, and nothing runs yet.
#pragma once

#include <memory>
#include <string>

#include "core/Config.h"
#include "core/Constants.h"
#include "engine/ScreenManager.h"
#include "overlay/BlockerOverlayView.h"
#include "platform/sim/SimMachine.h"
#include "tests/sim/Fingers.h"

namespace dormel {

/// A card that shows nothing.
class BlankCard : public View {
 public:
  [[nodiscard]] ViewKind kind() const override { return ViewKind::accessibilityCard; }
};

class NightFixture {
 public:
  NightFixture() : machine(startOptions()) {
    setHours(22, 6);
    machine.defaults.putBoolean(defaultsKey::onboardingComplete, true);
    machine.keyboard.setIdle(InputKind::mouseMoved, 12.5);
    machine.journal.setEnabled(false);
    machine.screens.plug("DP-2", {1920, 0, 1280, 1024});
    machine.journal.setEnabled(true);
    machine.windows.setFittingSize([](const View& view) {
      return view.kind() == ViewKind::graceCountdown ? Size{230, 40} : Size{};
    });
    machine.windows.setFirstShown([](View& view) {
      if (view.kind() == ViewKind::blockerOverlay) static_cast<BlockerOverlayView&>(view).onAppear();
    });
    // What a scheduled run does, and nothing else.
    machine.setProgram([this](const std::vector<std::string>&) -> std::shared_ptr<void> {
      machine.process.onTerminationSignal([this] { machine.process.exit(1); });
      auto session = ScreenManager::create([] { return std::make_shared<BlankCard>(); });
      session_ = session;
      session->activate(machine.accessibility.isProcessTrusted());
      return session;
    });
  }

  void setHours(int start, int end) {
    machine.defaults.putInteger(defaultsKey::blockStartHour, start);
    machine.defaults.putInteger(defaultsKey::blockEndHour, end);
  }

  /// Starts a scheduled run, at this moment or at a local one.
  void begin() {
    machine.launch({"--scheduled"});
    machine.settle();
  }
  void begin(const std::string& localMoment) {
    machine.advanceTo(localMoment);
    begin();
  }

  /// Lets the job scheduler start the program from now on, and restart it.
  void arm(int startHour) {
    const std::string plist = "/home/user/Library/LaunchAgents/" + std::string(BUNDLE_IDENTIFIER) + ".plist";
    const PropertyListDictionary job{
        {"Label", {std::string(BUNDLE_IDENTIFIER)}},
        {"ProgramArguments", {PropertyListArray{{machine.bundle.path()}, {std::string("--scheduled")}}}},
        {"KeepAlive", {PropertyListDictionary{{"SuccessfulExit", {false}}}}},
        {"StartCalendarInterval",
         {PropertyListDictionary{{"Hour", {std::int64_t{startHour}}}, {"Minute", {std::int64_t{0}}}}}}};
    machine.files.put(plist, writeXmlPropertyList({job}).value());
    machine.scheduler.logIn();
  }

  [[nodiscard]] ScreenManager& session() const { return *session_.lock(); }
  [[nodiscard]] bool hasSession() const { return !session_.expired(); }
  [[nodiscard]] BypassController& controller() const { return *session().bypassController(); }

  /// Holds the keys asked for until the lock gives way, and lets go; the seconds it took.
  Seconds unlock() {
    const int before = session().unlockCount();
    const Seconds since = machine.timeline.uptime();
    pressAll(machine, controller());
    machine.timeline.advanceUntil([&] { return !hasSession() || session().unlockCount() != before; }, 100);
    const Seconds took = machine.timeline.uptime() - since;
    machine.advance(1);
    releaseAll(machine);
    return took;
  }

  SimMachine machine;

 private:
  static SimMachine::Options startOptions() {
    SimMachine::Options options;
    options.start = "2026-11-16 20:59:50";
    options.processRuns = false;
    return options;
  }

  std::weak_ptr<ScreenManager> session_;
};

}  // namespace dormel
