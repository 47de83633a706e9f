#include "platform/sim/SimShell.h"

#include <utility>

namespace dormel {
namespace {

/// A message's way to the shell.
constexpr Seconds WAY = 0.001;
/// How long it does not notice that a program is gone.
constexpr Seconds UNNOTICED = 0.005;
/// Its looks at the clock.
constexpr Seconds LOOK_EVERY = 1;
/// The program's looks for an extension that was not there when it started.
constexpr Seconds LOOK_FOR_IT_EVERY = 3;

}  // namespace

/// The process's own side.
struct SimShell::Client {
  HoldPlan plan;
  bool isScheduled = false;
  bool isConnected = false;
  bool isLockdown = false;
  bool hasFamily = false;  // it was there when the process started
};

SimShell::SimShell(SimTimeline& timeline, SimJournal& journal, SimWindowServer& windows, SimKeyboard& keyboard,
                   SimAccessibility& accessibility, SimProcess& process, SimOutput& output)
    : timeline_(timeline),
      journal_(journal),
      windows_(windows),
      keyboard_(keyboard),
      accessibility_(accessibility),
      process_(process),
      output_(output) {}

SimShell::~SimShell() = default;

bool SimShell::isConnected() const { return client_ && client_->isConnected; }

// The process.

void SimShell::processStarts(bool isScheduled) {
  ++launches_;
  if (!isInForce_) return;
  client_ = std::make_unique<Client>();
  client_->isScheduled = isScheduled;
  keyboard_.setGrabDenied(true);
  client_->hasFamily = connect();
  if (!client_->hasFamily) lookForIt();
}

void SimShell::processExits(bool comesBack) {
  if (!isConnected() || (comesBack && client_->isLockdown)) return;
  if (hold_ && (holder_ == launches_ || (leftAt_ && client_->isScheduled))) end(false);
}

void SimShell::processEnded() {
  if (!isInForce_) return;
  client_.reset();
  timeline_.addWorld(UNNOTICED, [this, process = launches_] { left(process); });
}

void SimShell::setLockdown(bool on) {
  if (!client_) return;
  client_->isLockdown = on;
  client_->plan.setLockdown(on);
  update();
}

void SimShell::setKeysWanted(bool wanted) {
  if (!client_) return;
  client_->plan.setKeysWanted(wanted);
  update();
}

void SimShell::panelsChanged() { update(); }

bool SimShell::connect() {
  client_->isConnected = isEnabled_ && listens_;
  accessibility_.setTrusted(client_->isConnected);
  if (!client_->isConnected) return false;
  client_->plan.connected(hold_ && hold_->cover);
  lookAgain(launches_);
  return true;
}

void SimShell::disconnect() {
  if (!isConnected()) return;
  client_->isConnected = false;
  client_->plan.lost(timeline_.uptime());
  accessibility_.setTrusted(false);
  changed();
  timeline_.addMain(HoldPlan::COME_BACK_EVERY, 0, [this] { comeBack(); });
}

void SimShell::comeBack() {
  if (isConnected()) return;
  if (connect()) return update();
  if (!client_->isScheduled || !client_->plan.isGivenUp(timeline_.uptime())) {
    timeline_.addMain(HoldPlan::COME_BACK_EVERY, 0, [this] { comeBack(); });
    return;
  }
  output_.print("The display is gone. Exiting, to be started again.");
  process_.exit(1);
}

void SimShell::lookForIt() {
  timeline_.addMain(LOOK_FOR_IT_EVERY, 0, [this] {
    if (!isEnabled_ || !listens_) return lookForIt();
    if (client_->isScheduled) {
      output_.print("A display has come up. Starting again on it.");
      process_.exit(1);
    }
    connect();
    update();
  });
}

void SimShell::lookAgain(int process) {
  timeline_.addMain(HoldPlan::LOOK_EVERY, 0, [this, process] {
    if (process != launches_ || !isConnected()) return;
    update();
    lookAgain(process);
  });
}

void SimShell::update() {
  if (!isConnected() || !timeline_.processRuns()) return;
  HoldPlan::Panels seen;
  for (const SimWindow* window : windows_.visible()) {
    const bool isBlack = window->style().background == WindowBackground::black;
    seen.areAny = true;
    seen.isAnyBlack = seen.isAnyBlack || isBlack;
    seen.areBlackOpaque = seen.areBlackOpaque && (!isBlack || window->alpha() >= 1);
    seen.isAnyKey = seen.isAnyKey || window->style().canBecomeKey;
  }
  const HoldPlan::Step step = client_->plan.next(seen, timeline_.now(), [this] { return process_.timeLeft(); });
  if (step == HoldPlan::Step::nothing) return;
  if (step == HoldPlan::Step::release) {
    timeline_.addWorld(WAY, [this, process = launches_] {
      if (hold_ && (holder_ == process || leftAt_)) end(false);
    });
    return;
  }
  timeline_.addWorld(WAY, [this, process = launches_, hold = client_->plan.hold()] { held(process, hold); });
}

// The extension.

void SimShell::held(int process, const ShellHold& hold) {
  if (!isEnabled_ || process != launches_ || !isConnected()) return;
  const bool wasHolding = hold_.has_value();
  holder_ = process;
  leftAt_.reset();
  hold_ = hold;
  kept_ = hold.absence > 0 ? hold_ : std::nullopt;
  journal_.note("the shell holds", hold.cover ? " the cover" : "", hold.keys ? " the keys" : "");
  if (!wasHolding) look();
  changed();
}

void SimShell::left(int process) {
  if (!hold_ || holder_ != process) return;
  if (hold_->absence <= 0) return end(false);
  leftAt_ = timeline_.uptime();
}

void SimShell::look() {
  timeline_.addWorld(LOOK_EVERY, [this] {
    if (!hold_) return;
    const bool isOver = hold_->until && timeline_.now() >= *hold_->until;
    if (isOver || (leftAt_ && timeline_.uptime() - *leftAt_ >= hold_->absence)) return end(true);
    look();
  });
}

void SimShell::end(bool isOver) {
  hold_.reset();
  kept_.reset();
  leftAt_.reset();
  journal_.note("the shell lets go");
  if (isOver && isConnected()) {
    client_->plan.refused();
    timeline_.addMain(WAY, 0, [this] { update(); });
  }
  changed();
}

void SimShell::takeUp() {
  hold_ = kept_ && timeline_.now() < *kept_->until ? kept_ : std::nullopt;
  kept_ = hold_;
  if (!hold_) return;
  holder_ = 0;
  leftAt_ = timeline_.uptime();
  journal_.note("the shell takes up what was held");
  look();
}

void SimShell::changed() {
  keyboard_.setKeysReachNobody(hasKeys());
  keyboard_.setGrabDenied(!(hasKeys() && isConnected() && holder_ == launches_));
}

void SimShell::setEnabled(bool on) {
  if (!isInForce_ || std::exchange(isEnabled_, on) == on) return;
  journal_.note("the extension is switched ", on ? "on" : "off");
  if (on) {
    takeUp();
  } else {
    hold_.reset();
    disconnect();
  }
  changed();
}

void SimShell::setLockScreen(bool up) {
  if (!isInForce_) return;
  isLockScreen_ = up;
  journal_.note("the lock screen is ", up ? "up" : "gone");
  changed();
}

void SimShell::setKeysElsewhere(bool elsewhere) {
  if (!isInForce_) return;
  areKeysElsewhere_ = elsewhere;
  changed();
}

void SimShell::stealKeys() {
  if (!hasKeys()) return;
  setKeysElsewhere(true);
  timeline_.addWorld(WAY, [this] { setKeysElsewhere(false); });
}

void SimShell::restart() {
  if (!isInForce_) return;
  hold_.reset();
  isLockScreen_ = areKeysElsewhere_ = false;
  if (isEnabled_) takeUp();
  changed();
}

}  // namespace dormel
