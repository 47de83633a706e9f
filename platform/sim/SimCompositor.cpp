#include "platform/sim/SimCompositor.h"

#include <algorithm>
#include <utility>

#include "platform/common/lock/FocusRetrier.h"
#include "platform/common/lock/LockController.h"

namespace dormel {
namespace {

/// A message's way to the compositor.
constexpr Seconds WAY = 0.001;
/// How long a compositor does not notice that a client is gone, and how long a process table counts it as living.
constexpr Seconds UNNOTICED = 0.005;
constexpr Seconds COUNTED = 0.05;

}  // namespace

/// The process's own side.
class SimCompositor::Client : public LockPlace {
  SimCompositor& compositor_;
  int number_;

 public:
  Client(SimCompositor& compositor, int number) : compositor_(compositor), number_(number) {}

  LockController keeper{*this};
  FocusRetrier focus{compositor_.clock_,
                     {[this] { return compositor_.isFocusHeld(); },
                      [this] {
                        if (!keeper.isUp()) compositor_.giveFocusBack();
                      },
                      [this] { compositor_.giveFocusBack(); }}};
  bool isEnding = false;

  bool mark() override {
    if (!compositor_.isMarkWritable_) return false;
    compositor_.mark_ = LockMark{own(), compositor_.compositorMark()};
    return true;
  }
  void unmark() override { compositor_.mark_.reset(); }
  void startWatching(bool isMarked) override {
    compositor_.watchers_.try_emplace(number_, Watcher{isMarked, compositor_.generation_, {}});
  }
  void stopWatching() override { compositor_.watchers_.erase(number_); }
  void ask() override {
    isEnding = false;
    compositor_.timeline_.addWorld(WAY, [&compositor = compositor_, number = number_] { compositor.asked(number); });
  }
  void giveBack(bool isUp) override {
    isEnding = isUp;
    if (isUp) compositor_.unlock();
  }
  void confirmEnd() override {
    compositor_.timeline_.addMain(2 * WAY, 0, [this] {
      if (std::exchange(isEnding, false)) keeper.ended();
    });
  }
  void changed() override {
    focus.setUnderLock(keeper.isUp());
    focus.setYielding(keeper.isRefused());
  }

  [[nodiscard]] ProcessMark own() const { return {4711, static_cast<unsigned long long>(number_)}; }
};

SimCompositor::SimCompositor(SimTimeline& timeline, SimJournal& journal, SimWindowServer& windows,
                             SimKeyboard& keyboard, const Clock& clock)
    : timeline_(timeline), journal_(journal), windows_(windows), keyboard_(keyboard), clock_(clock) {}

SimCompositor::~SimCompositor() = default;

void SimCompositor::setKeysWanted(bool wanted) {
  if (client_) client_->focus.want(wanted);
}

bool SimCompositor::isAbandoned() const {
  return mark_ && mark_->compositor == compositorMark() && !isRunning(static_cast<int>(mark_->owner.startedAt));
}

void SimCompositor::processStarts() {
  ++launches_;
  if (!isInForce()) return;
  client_ = std::make_unique<Client>(*this, launches_);
  if (mark_ && mark_->compositor != compositorMark()) mark_.reset();
  if (isAbandoned()) client_->keeper.stages().setAbandoned();
}

void SimCompositor::processExits() {
  if (!client_) return;
  const bool isUp = client_->keeper.isUp();
  if (isUp) unlock();
  // One that was asked for and not answered may still come: the mark stays for it.
  if (isUp || client_->isEnding) mark_.reset();
  if (isAbandoned() && release() == LockRelease::released) mark_.reset();
}

void SimCompositor::processEnded() {
  if (!isInForce()) return;
  client_.reset();
  diedAt_ = timeline_.uptime();
  timeline_.addWorld(UNNOTICED, [this, process = launches_] { isOwnerGone_ = isOwnerGone_ || owner_ == process; });
  const auto watcher = watchers_.find(launches_);
  if (watcher == watchers_.end()) return;
  const ProcessMark owner{4711, static_cast<unsigned long long>(launches_)};
  watcher->second.watch.emplace(owner, watcher->second.isMarked, timeline_.uptime());
  look(launches_);
}

void SimCompositor::setLockdown(bool on) {
  if (!client_) return;
  client_->keeper.stages().setLockdown(on);
  panelsChanged();
}

void SimCompositor::panelsChanged() {
  if (desktop_ != Desktop::sessionLock || !client_ || !timeline_.processRuns()) return;
  LockStages& stages = client_->keeper.stages();
  bool isAnyBlack = false;
  bool isAllBlack = true;
  bool isLowering = false;
  for (const SimWindow* window : windows_.visible()) {
    if (window->style().background != WindowBackground::black) continue;
    isAnyBlack = true;
    isAllBlack = isAllBlack && window->alpha() >= 1;
    isLowering = isLowering || window->isLowering();
  }
  stages.setCovered(isAnyBlack && isAllBlack);
  stages.setLowering(isLowering);
  client_->keeper.apply();
}

void SimCompositor::asked(int process) {
  const bool isGranted = holder_ == Holder::nobody || (isLockedByUs() && isOwnerGone_);
  if (isGranted) {
    holder_ = Holder::process;
    owner_ = process;
    isOwnerGone_ = !isRunning(process);
    journal_.note("session locked");
  } else {
    journal_.note("session lock refused");
  }
  keyboard_.setKeysReachNobody(holder_ != Holder::nobody);
  if (!isRunning(process)) return;  // it died while its request was on the way
  timeline_.addMain(WAY, 0, [this, isGranted] { client_->keeper.answered(isGranted); });
}

void SimCompositor::unlock() {
  holder_ = Holder::nobody;
  keyboard_.setKeysReachNobody(false);
  journal_.note("session unlocked");
}

LockRelease SimCompositor::release() {
  if (isLockedByAnother() || (isLockedByUs() && !isOwnerGone_)) return LockRelease::owned;
  if (isLockedByUs()) unlock();
  return LockRelease::released;
}

void SimCompositor::look(int process) {
  const auto found = watchers_.find(process);
  if (found == watchers_.end()) return;
  AbandonedLockPolicy& watch = *found->second.watch;
  AbandonedLockPolicy::Seen seen{mark_};
  if (mark_) {
    const int owner = static_cast<int>(mark_->owner.startedAt);
    const bool isCounted = owner == launches_ && timeline_.uptime() < diedAt_ + COUNTED;
    seen.isOwnerAlive = isRunning(owner) || isCounted;
  }
  seen.isCompositorAlive = found->second.compositor == generation_;
  const AbandonedLockPolicy::Step step = watch.next(seen, timeline_.uptime());
  const LockRelease result = step == AbandonedLockPolicy::Step::release ? release() : LockRelease::failed;
  if (result == LockRelease::released) mark_.reset();
  if (step == AbandonedLockPolicy::Step::end || result == LockRelease::released) {
    watchers_.erase(found);
    return;
  }
  if (step == AbandonedLockPolicy::Step::release) watch.tried(result);
  timeline_.addWorld(AbandonedLockPolicy::PAUSE, [this, process] { look(process); });
}

void SimCompositor::stealFocus() {
  if (!isInForce() || !keyboard_.isTaken()) return;
  isFocusStolen_ = true;
  focusChanged();
}

void SimCompositor::keepFocus(bool keeps) {
  isFocusKept_ = keeps;
  focusChanged();
}

void SimCompositor::giveFocusBack() {
  timeline_.addWorld(WAY, [this] {
    isFocusStolen_ = false;
    focusChanged();
  });
}

void SimCompositor::focusChanged() {
  keyboard_.setGrabDenied(!isFocusHeld());
  if (client_) client_->focus.look();
}

void SimCompositor::lockForAnother(bool on) {
  if (desktop_ != Desktop::sessionLock) return;
  if (on && holder_ == Holder::nobody) {
    holder_ = Holder::another;
    journal_.note("session locked by another program");
  } else if (!on && isLockedByAnother()) {
    unlock();
  }
  focusChanged();
}

void SimCompositor::restart() {
  ++generation_;
  if (holder_ != Holder::nobody) unlock();
  isFocusStolen_ = false;
  focusChanged();
}

}  // namespace dormel
