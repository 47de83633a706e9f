// When it looks, the process's life, and what is said on standard output. The state of the lock and the files have
// sources of their own.
#include "tools/nights/NightWatch.h"

#include <algorithm>

#include "core/Config.h"

namespace dormel::nights {
namespace {

constexpr std::uint32_t NOTHING_TAKEN = 0;

bool isModifier(KeyCode keyCode) { return keyCode >= 54 && keyCode <= 62 && keyCode != 57; }

/// The key of the same kind on the other side.
KeyCode twin(KeyCode keyCode) {
  constexpr std::array<std::array<KeyCode, 2>, 4> PAIRS{{{54, 55}, {56, 60}, {58, 61}, {59, 62}}};
  for (const auto& pair : PAIRS) {
    if (pair[0] == keyCode) return pair[1];
    if (pair[1] == keyCode) return pair[0];
  }
  return keyCode;
}

}  // namespace

NightWatch::NightWatch(SimMachine& machine, Epoch epoch)
    : machine_(machine),
      epoch_(std::move(epoch)),
      optionsAtStart_(NOTHING_TAKEN),
      endings_(machine.endings().size()),
      lines_(machine.output.lines().size()) {
  knowFiles();
  machine_.timeline.setAfterEvent([this] { afterEvent(); });
}

NightWatch::~NightWatch() { machine_.timeline.setAfterEvent({}); }

void NightWatch::fail(Rule rule, const std::string& what) {
  if (!fault_) fault_ = Fault{rule, machine_.timeOfDay() + " " + what};
}

// Time.

void NightWatch::afterEvent() {
  const SimTimeline& timeline = machine_.timeline;
  if (!dirty_ && machine_.journal.effects() == effects_ && timeline.uptime() < lookAt_ && timeline.now() < hoursEdge_) {
    return;
  }
  look();
}

NightWatch::Moment NightWatch::now() const {
  const Seconds up = machine_.timeline.uptime();
  return {up, up - stalledBefore_ - std::max(0.0, std::min(up, stallEnds_) - stallBegan_)};
}

bool NightWatch::isStalled() const { return machine_.timeline.uptime() < stallEnds_; }

bool NightWatch::late(const Moment& from, Seconds patience) {
  const Moment present = now();
  const Seconds left = from.working + patience - present.working;
  if (left < -1e-9) return true;
  lookAt_ = std::min(lookAt_, present.up + left + 0.002);
  return false;
}

bool NightWatch::lateByUptime(const Moment& from, Seconds patience) {
  const Seconds left = from.up + patience - now().up;
  if (left < -1e-9) return true;
  lookAt_ = std::min(lookAt_, now().up + left + 0.002);
  return false;
}

bool NightWatch::lasts(std::optional<Moment>& since, bool isSo, Seconds patience) {
  if (!isSo) return since.reset(), false;
  if (!since) since = now();
  return lateByUptime(*since, patience);
}

void NightWatch::promise(Promise which, bool kept, Seconds patience, Rule rule, const char* what) {
  std::optional<Moment>& since = broken_.at(which);
  if (kept) {
    since.reset();
    return;
  }
  if (!since) since = now();
  if (late(*since, patience)) fail(rule, what);
}

// The world.

void NightWatch::processStarts(bool scheduled, bool byScheduler) {
  starting_ = dirty_ = true;
  scheduled_ = scheduled;
  byScheduler_ = byScheduler;
  optionsAtStart_ = machine_.application.presentationOptions();
  diedAt_.reset();
  termAt_.reset();
  isDisplayGone_ = false;
  deathExpected_ = quitAsked_ = epochMustGrow_ = programGone_ = false;
  lastEpoch_ = 0;
  unlocks_ = 0;
  phase_ = scheduled ? Phase::none : Phase::opened;
  panelsSince_.reset();
  escapeAt_.reset();
  wasBlind_ = machine_.screens.all().empty();
  broken_ = {};
  lastEffect_ = now();
}

void NightWatch::keyChanges(KeyCode keyCode, bool down, bool told) {
  Key& key = keys_.at(keyCode);
  const Moment present = now();
  dirty_ = true;
  if (down) {
    const bool isBreak = !key.stuck && (!key.up || present.working - key.up->working > 0.0501);
    if (isBreak) key.since = present;
    key.down = true;
    key.told = told;
    key.clean = told && !isStalled();
    key.stuck = false;
    key.pressed = present;
    key.up.reset();
    if (keyCode == 49) {
      disturbed_ = present;
      refresh_ = present;
      draws_ = present.working - drawAsked_.working > 1.1 ? 1 : draws_ + 1;
      drawAsked_ = present;
    }
    if (keyCode == 53 && key.clean && phase_ == Phase::opened && wasTaken_ && panels().blockers > 0)
      escapeAt_ = present;
    return;
  }
  key.down = false;
  key.up = present;
  const bool sides = (machine_.keyboard.flags() & 0xFFFFU) != 0 || machine_.keyboard.flags() == 0;
  key.stuck = isModifier(keyCode) && (!told || isStalled() || (!sides && keys_.at(twin(keyCode)).down));
}

void NightWatch::mainStalls(Seconds duration) {
  const Seconds up = now().up;
  if (up >= stallEnds_) {
    stalledBefore_ += stallEnds_ - stallBegan_;
    stallBegan_ = stallEnds_ = up;
  }
  stallEnds_ = std::max(stallEnds_, up + duration);
}

void NightWatch::sleeps() {
  disturbed_ = now();
  if (!isStalled()) held_ = disturbed_;  // else the poll may look before it hears of the sleep
}

void NightWatch::diskTrouble(int change, bool unreadable) {
  troubles_ += change;
  unreadable_ = troubles_ > 0 && (unreadable_ || unreadable);
  for (UnlockLine& line : dueLines_) line.isDue = false;
  if (dueRecord_) dueRecord_->isDue = false;
}

void NightWatch::queuesHang(bool hang) {
  if (hang == hanging_) return;
  diskTrouble(hang ? 1 : -1, false);
  hanging_ = hang;
}

void NightWatch::terminationSignal() {
  if (machine_.timeline.processRuns() && !termAt_) termAt_ = now();
}

// A look.

void NightWatch::look() {
  if (fault_) return;
  const bool hasEffects = effects_ != machine_.journal.effects();
  dirty_ = false;
  effects_ = machine_.journal.effects();
  lookAt_ = std::numeric_limits<Seconds>::infinity();
  phaseBefore_ = phase_;
  if (hasEffects) lastEffect_ = now();
  std::vector<PixelRect> areas = machine_.screens.pixels();
  if (areas != screens_) {
    screens_ = std::move(areas);
    screensChanged_ = now();
  }
  wasBlind_ = wasBlind_ || screens_.empty();
  checkHours();
  readOutput();
  if (hasEffects || !dueLines_.empty() || dueRecord_) checkFiles();
  if (starting_) checkStart();
  if (machine_.endings().size() != endings_) processEnded();
  if (refresh_ && late(*refresh_, 0.01)) refresh_.reset();
  if (termAt_ && late(*termAt_, 0.2)) fail(Rule::status, "still there after the termination signal");

  const std::size_t foreign = machine_.keyboard.foreignKeys().size();
  const bool taken = machine_.keyboard.isTaken();
  if (foreign != foreign_ && wasTaken_ && taken) fail(Rule::keys, "another application got a key");
  foreign_ = foreign;
  wasTakenBefore_ = std::exchange(wasTaken_, taken);

  switch (phase_) {
    case Phase::none:
      checkNone();
      break;
    case Phase::locked:
      checkLocked();
      break;
    case Phase::grace:
      checkGrace();
      break;
    case Phase::degraded:
      checkDegraded();
      break;
    case Phase::opened:
      checkOpened();
      break;
  }
  checkOwner();
  checkTimers();
  checkEpoch();
}

void NightWatch::readOutput() {
  const auto& lines = machine_.output.lines();
  while (lines_ < lines.size()) readLine(lines[lines_++]);
}

void NightWatch::readLine(const std::string& line) {
  const auto is = [&](const char* text) { return line.starts_with(text); };
  if (is("Accessibility permission OK.") || is("[a11y] Accessibility granted — starting the block now.")) {
    lockBegins(false);
  } else if (is("[a11y] Accessibility is OFF")) {
    phase_ = Phase::degraded;
    phaseBegan_ = now();
    cardDue_ = !screens_.empty();
    broken_ = {};
  } else if (is("[a11y] Accessibility changed → true")) {
    tapPromised_ = true;
  } else if (is("Warning: KeyInterceptor failed to start")) {
    tapPromised_ = false;
  } else if (is("[grace] unlock #")) {
    unlockSeen(line);
  } else if (is("[reblock]")) {
    if (line != "[reblock] next bypass requires 60s hold (unlock #" + std::to_string(unlocks_ + 1) + ")") {
      fail(Rule::grace, line);
    }
    if (!hoursOn_) fail(Rule::hours, "locked again outside the hours");
    if (now().up - phaseBegan_.up < 300 - 1e-6) {
      fail(Rule::grace, "locked again after " + std::to_string(now().up - phaseBegan_.up) + " s");
    }
    lockBegins(true);
  } else if (is("Terminate blocked")) {
    quitAsked_ = false;
  } else if (is("The display is gone.")) {
    isDisplayGone_ = machine_.shell.isInForce() && machine_.shell.isOutOfReach();
  } else if (is("A display has come up.")) {
    isDisplayGone_ = machine_.shell.isInForce() && phase_ == Phase::degraded;
  }
}

void NightWatch::lockBegins(bool again) {
  phase_ = Phase::locked;
  phaseBegan_ = held_ = disturbed_ = now();
  tapPromised_ = true;
  epochMustGrow_ = true;
  broken_ = {};
  liftedAt_.reset();
  mustSwallow_ = false;
  if (!asked_.empty()) askedBefore_ = std::move(asked_);
  asked_.clear();
  replaced_.clear();
  if (!again) expectRecord();
}

bool NightWatch::hoursWereOn() const { return hoursAreOn(machine_.timeline.now() - std::chrono::milliseconds(2100)); }

void NightWatch::checkStart() {
  starting_ = false;
  if (!scheduled_) return;
  const bool armed =
      hoursOn_ && storedFlag(defaultsKey::blockingEnabled, true) && storedFlag(defaultsKey::onboardingComplete, false);
  if (!armed) {
    // The first line that any scheduled run prints looks like a lock's.
    phase_ = Phase::none;
    dueRecord_.reset();
    if (machine_.timeline.processRuns()) fail(Rule::lock, "a run that had nothing to lock goes on");
    return;
  }
  if (!machine_.timeline.processRuns()) {
    if (hoursWereOn()) fail(Rule::lock, "a run inside the hours ended at once");
  } else if (phase_ != (machine_.accessibility.isProcessTrusted() ? Phase::locked : Phase::degraded)) {
    fail(Rule::lock, "a run inside the hours neither locks nor asks for the permission");
  }
}

bool NightWatch::isHungRehearsal() const {
  // The shortest rehearsal's time, 30 s, counts from its last step, and what shows that step may come 3.9 s later. Its
  // watchdog waits 10 s more, in which the main thread must have been stuck: it would have ended the rehearsal.
  constexpr Seconds SLACK = 10;
  if (phaseBefore_ != Phase::opened || !isStalled()) return false;
  const Seconds up = now().up;
  return up - stallBegan_ > SLACK - 1e-6 && (panelsSince_ ? up - panelsSince_->up > 30 - 3.9 + SLACK : wasBlind_);
}

void NightWatch::processEnded() {
  endings_ = machine_.endings().size();
  const int status = machine_.endings().back().status;
  const bool wasArmed =
      storedFlag(defaultsKey::blockingEnabled, true) && storedFlag(defaultsKey::onboardingComplete, false);
  const bool hoursBegin = scheduled_ && wasArmed && phaseBefore_ == Phase::none && !hoursWereOn() &&
                          hoursAreOn(machine_.timeline.now() + std::chrono::milliseconds(250));
  if (status == 0) {
    const bool nothingLocked = phaseBefore_ == Phase::degraded || phaseBefore_ == Phase::opened;
    const bool neverBegan = phaseBefore_ == Phase::none && !wasArmed;
    if (scheduled_ ? !(!hoursOn_ || neverBegan || (quitAsked_ && nothingLocked)) : !quitAsked_) {
      fail(Rule::status, "status 0 that was not planned");
    }
  } else if (status == 1 ? !(termAt_ || hoursBegin || isDisplayGone_ || isHungRehearsal()) : !deathExpected_) {
    fail(Rule::status, "ended with " + std::to_string(status) + ", and nobody asked for it");
  }
  if (deathExpected_) {
    for (UnlockLine& line : dueLines_) line.isDue = false;
  }
  if (!deathExpected_ && dueRecord_ && dueRecord_->isDue) fail(Rule::records, "the record was not written");
  dueRecord_.reset();
  phase_ = Phase::none;
  broken_ = {};
  termAt_.reset();
  if (status != 0 && scheduled_ && byScheduler_ && !programGone_) diedAt_ = now();
  isLockLeft_ = (hasMarks_ && machine_.compositor.isLockedByUs()) || machine_.shell.isLocking();
  isCoverLeft_ = status != 0 && machine_.shell.isLocking();
  deathExpected_ = quitAsked_ = false;
  hoursOverSince_.reset();
  lastEpoch_.reset();
  stallEnds_ = std::min(stallEnds_, std::max(stallBegan_, now().up));
}

void NightWatch::checkHours() {
  const Date date = machine_.timeline.now();
  constexpr std::chrono::minutes QUARTER(15);
  hoursEdge_ = Date(std::chrono::floor<std::chrono::minutes>(date.time_since_epoch()) / QUARTER * QUARTER + QUARTER);
  hoursOn_ = hoursAreOn(date);
  const bool isWatching = phase_ == Phase::locked || phase_ == Phase::grace || phase_ == Phase::degraded;
  if (hoursOn_ || !isWatching || !machine_.timeline.processRuns()) {
    hoursOverSince_.reset();
    return;
  }
  if (!hoursOverSince_) hoursOverSince_ = now();
  if (lateByUptime(*hoursOverSince_, 10.1)) fail(Rule::hours, "still there after the hours");
}

bool NightWatch::hoursAreOn(Date date) const {
  const int hour = machine_.calendar.localTime(date).hour;
  const int start = storedHour(defaultsKey::blockStartHour, 0);
  const int end = storedHour(defaultsKey::blockEndHour, 6);
  // Counted from the start hour on, the day's hours below the end's are the night.
  return (hour - start + 24) % 24 < (end - start + 24) % 24;
}

int NightWatch::storedHour(const char* key, int absent) const {
  const auto value = machine_.defaults.stored(key);
  const auto* number = value ? value->as<std::int64_t>() : nullptr;
  return number == nullptr ? absent : static_cast<int>(*number);
}

bool NightWatch::storedFlag(const char* key, bool absent) const {
  const auto value = machine_.defaults.stored(key);
  const auto* flag = value ? value->as<bool>() : nullptr;
  return flag == nullptr ? absent : *flag;
}

void NightWatch::checkNone() {
  if (!machine_.windows.visible().empty()) fail(Rule::nothing, "a window without a lock");
  if (machine_.keyboard.isTaken()) fail(Rule::nothing, "the keyboard is taken without a lock");
  if (diedAt_ && lateByUptime(*diedAt_, 1.1)) fail(Rule::restart, "not started again");
}

void NightWatch::checkOwner() {
  const SimCompositor& compositor = machine_.compositor;
  if (lasts(ownerlessSince_, compositor.isOwnerless(), 15.1)) fail(Rule::owner, "a session lock without an owner");
  const bool isLocked = compositor.isLockedByUs() || machine_.shell.isLocking();
  if (diedAt_ && isLockLeft_ && hoursOn_ && !isLocked) fail(Rule::owner, "open before it was started again");
  if (lasts(lockedOutsideSince_, compositor.isLockedByUs() && !hoursOn_, 15.1)) {
    fail(Rule::owner, "the session is locked outside the hours");
  }
  if (machine_.shell.isInForce()) checkShell();
}

void NightWatch::checkShell() {
  // It was told how long it may go on alone, and until when, which a stuck program may have told it late.
  constexpr Seconds ALONE = 121.1;
  constexpr Seconds TO_THE_END = 21.2;
  constexpr Seconds TOLD_LATE = 6;
  const SimShell& shell = machine_.shell;
  const bool isAlone = shell.isOwnerless();
  if (lasts(abandonedSince_, isAlone, ALONE)) fail(Rule::owner, "held without an owner");
  if (lasts(untakenSince_, isAlone && !shell.isOutOfReach(), 15.1)) fail(Rule::owner, "nobody took over what is held");
  const bool isKnown = !isAlone || abandonedSince_->working - hoursMoved_.working > TOLD_LATE;
  if (lasts(heldOutsideSince_, shell.isLocking() && !hoursOn_ && isKnown, TO_THE_END)) {
    fail(Rule::owner, "the shell covers outside the hours");
  }
  // A run that was killed covered the monitors: nobody sees them before the next one covers them, too.
  if (phase_ == Phase::locked && shell.isLocking()) {
    const Panels seen = panels();
    if (seen.blockers > 0 && seen.opaque) isCoverLeft_ = false;
  } else if (phase_ == Phase::locked && isCoverLeft_ && hoursOn_) {
    fail(Rule::owner, "uncovered by the next run");
  } else if (phase_ != Phase::none || !shell.isLocking()) {
    isCoverLeft_ = false;
  }
}

void NightWatch::checkEpoch() {
  const auto epoch = epoch_();
  if (!epoch || !lastEpoch_) return;
  if (*epoch < *lastEpoch_) fail(Rule::epochs, "the overlay's generation went back");
  if (epochMustGrow_ && *epoch == *lastEpoch_) fail(Rule::epochs, "a lock or an unlock of the same generation");
  epochMustGrow_ = false;
  lastEpoch_ = epoch;
}

}  // namespace dormel::nights
