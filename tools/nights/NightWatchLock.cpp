// What the watch holds a lock, a grace, a night without the permission and a rehearsal to.
#include <algorithm>
#include <set>
#include <utility>

#include "core/Config.h"
#include "platform/common/paint/PlainLines.h"
#include "platform/sim/SimPainter.h"
#include "tools/nights/NightWatch.h"

namespace dormel::nights {
namespace {

constexpr std::uint32_t LOCKDOWN = 378;

}  // namespace

NightWatch::Panels NightWatch::panels() const {
  Panels seen;
  std::vector<int> on(screens_.size());
  for (const SimWindow* window : machine_.windows.visible()) {
    const WindowStyle& style = window->style();
    if (style.level != WindowLevel::screenSaver) {
      ++seen.others;
      continue;
    }
    ++seen.blockers;
    seen.fit = seen.fit && style.isOpaque && style.background == WindowBackground::black;
    seen.opaque = seen.opaque && window->alpha() > 1 - 1e-9;
    for (std::size_t i = 0; i < screens_.size(); ++i) on[i] += screens_[i] == window->area() ? 1 : 0;
  }
  const bool oneEach = std::all_of(on.begin(), on.end(), [](int count) { return count == 1; });
  seen.fit = seen.fit && oneEach && seen.blockers == static_cast<int>(screens_.size());
  return seen;
}

std::vector<KeyIndicator> NightWatch::shownKeys() const {
  const std::vector<SimWindow*> visible = machine_.windows.visible();
  for (auto window = visible.rbegin(); window != visible.rend(); ++window) {
    const auto& content = (*window)->content();
    if (content && content->kind() == ViewKind::blockerOverlay) {
      return static_cast<const BlockerOverlayView&>(*content).keys();
    }
  }
  return {};
}

void NightWatch::checkLocked() {
  const Panels seen = panels();
  promise(covered, seen.fit, 0.1, Rule::cover, "not one blocker for each screen");
  promise(opaque, seen.opaque, 2.7, Rule::black, "a blocker that does not get opaque");
  const std::uint32_t options = machine_.application.presentationOptions();
  promise(lockdown, options == LOCKDOWN, 0.1, Rule::options, "locked without the lockdown options");
  promise(tapped, !tapPromised_ || denied_ || machine_.keyboard.isTaken(), 5.2, Rule::tap,
          "locked without the keyboard");
  const SimCompositor& compositor = machine_.compositor;
  const bool isDue = compositor.desktop() == SimCompositor::Desktop::sessionLock && seen.blockers > 0 && seen.opaque;
  promise(sessionLocked, !isDue || compositor.isLockedByUs() || compositor.isLockedByAnother(), 2, Rule::owner,
          "locked without the session lock");
  const SimShell& shell = machine_.shell;
  const bool isShellDue = shell.isInForce() && !shell.isOutOfReach() && seen.blockers > 0 && seen.opaque;
  promise(shellCovers, !isShellDue || shell.isLocking(), 2, Rule::owner, "locked, and the shell does not hold it");
  if (seen.others != 0) fail(Rule::cover, "something else is on a screen");

  SimWindowServer& windows = machine_.windows;
  if (phaseBefore_ == Phase::locked && windows.leastCover() < leastCover_ - 1e-9) {
    fail(Rule::black, "a screen got less black");
  }
  windows.watchCover();
  leastCover_ = windows.leastCover();

  checkPictures();
  const std::vector<KeyIndicator> keys = shownKeys();
  checkChallenge(keys);
  checkLetOut(keys);
}

void NightWatch::checkPictures() {
  bool isTrue = true;
  for (const SimWindow* window : machine_.windows.visible()) {
    const auto* view = dynamic_cast<const PaintedView*>(window->content().get());
    if (view == nullptr || window->corner() == paint::PLAIN_GROUND) continue;  // plain lines are drawn at once
    isTrue = isTrue && window->corner() == SimPainter::colorOf(view->encodedState());
  }
  // A true picture may have come and gone between two looks.
  if (!isTrue) lookAt_ = std::min(lookAt_, now().up + 0.1);
  promise(pictured, isTrue, 3.3, Rule::picture, "a blocker does not show what is true");
}

void NightWatch::checkChallenge(const std::vector<KeyIndicator>& keys) {
  std::vector<KeyCode> codes;
  for (const KeyIndicator& key : keys) codes.push_back(key.keyCode);
  if (codes.empty()) drawnUnseen_ = drawnUnseen_ || draws_ > 0;
  if (codes.empty() || codes == asked_) return;
  const bool isFirst = asked_.empty();
  const bool isAsked = draws_ > 0 && !late(drawAsked_, 1.1);
  if (!isFirst && !isAsked && !drawnUnseen_) fail(Rule::challenge, "other keys, and nobody pressed Space anew");
  draws_ = isFirst || !isAsked ? 0 : draws_ - 1;
  drawnUnseen_ = false;
  replaced_ = std::exchange(asked_, codes);
  replacedAt_ = now();
  disturbed_ = now();
  if (isFirst) {
    // Once may be chance, a second time is not.
    sameKeys_ = codes == askedBefore_ ? sameKeys_ + 1 : 0;
    if (sameKeys_ == 2) fail(Rule::challenge, "the same keys for the third lock running");
  }
  static const std::set<KeyCode> LEFT{0, 1, 2, 3, 5, 12, 13, 14, 15, 17, 6, 7, 8, 9, 11};
  static const std::set<KeyCode> RIGHT{4, 38, 40, 37, 32, 34, 31, 35, 45, 46, 16};
  const auto kind = [](KeyCode code) {
    if (code == 54 || code == 55) return 1;
    if (code == 56 || code == 60) return 2;
    if (code == 58 || code == 61) return 3;
    return code == 59 ? 4 : 0;
  };
  const std::set<KeyCode> LEFT_HAND{55, 56, 58, 59};
  const std::set<KeyCode> RIGHT_HAND{54, 60, 61};
  const bool good = codes.size() == 5 && LEFT_HAND.contains(codes[0]) && RIGHT_HAND.contains(codes[1]) &&
                    kind(codes[0]) != kind(codes[1]) && LEFT.contains(codes[2]) && LEFT.contains(codes[3]) &&
                    codes[2] != codes[3] && RIGHT.contains(codes[4]);
  if (!good) fail(Rule::challenge, "keys that may not be asked for");
}

void NightWatch::checkLetOut(const std::vector<KeyIndicator>& keys) {
  if (keys.empty()) return;
  Moment complete = disturbed_;
  for (const KeyIndicator& shown : keys) {
    const Key& key = keys_.at(shown.keyCode);
    if (!key.down || !key.clean || key.pressed.up <= disturbed_.up) return;
    if (key.pressed.up > complete.up) complete = key.pressed;
  }
  if (late(complete, required() + 0.2)) fail(Rule::letOut, "held for long enough, and still locked");
}

void NightWatch::unlockSeen(const std::string& line) {
  if (phase_ != Phase::locked) fail(Rule::grace, "an unlock without a lock");
  checkEarned();
  const int held = static_cast<int>(required());
  ++unlocks_;
  if (line != "[grace] unlock #" + std::to_string(unlocks_) + " logged") fail(Rule::grace, line);
  phase_ = Phase::grace;
  phaseBegan_ = now();
  epochMustGrow_ = true;
  broken_ = {};
  blockersAtUnlock_ = panels().blockers;

  const LocalTime t = machine_.calendar.localTime(machine_.timeline.now());
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d — unlocked (#%d, held %ds)\n", t.year, t.month,
                t.day, t.hour, t.minute, t.second, unlocks_, held);
  const std::chrono::sys_days today = std::chrono::year(t.year) / t.month / t.day;
  const std::chrono::sys_days yesterday = today - std::chrono::days(1);
  const int endHour = storedHour(defaultsKey::blockEndHour, 6);
  const bool isToday = t.hour >= endHour;
  SeenUnlock unlock{dayText(today) + "T" + std::string(text.data() + 11, 8),
                    dayText(isToday ? today : yesterday),
                    dayText(isToday ? yesterday : today),
                    storedHour(defaultsKey::blockStartHour, 0),
                    endHour,
                    hoursAreOn(machine_.timeline.now())};
  dueLines_.push_back({text.data(), std::move(unlock), now(), troubles_ == 0});
}

void NightWatch::checkEarned() {
  const Moment present = now();
  const bool inThisTurn = !replaced_.empty() && present.up - replacedAt_.up < 0.01;
  const std::vector<KeyCode>& asked = inThisTurn ? replaced_ : asked_;
  if (asked.empty()) fail(Rule::earned, "unlocked without any keys on a screen");
  for (const KeyCode code : asked) {
    const Key& key = keys_.at(code);
    const bool isDown = key.down || key.stuck || (key.up && present.working - key.up->working <= 0.0501);
    const Seconds held = present.up - std::max(key.since.up, held_.up);
    if (isDown && held >= required() - 1e-6) continue;
    fail(Rule::earned, "unlocked with key " + std::to_string(code) + (isDown ? " held for " : " up, after ") +
                           std::to_string(held) + " s");
  }
}

void NightWatch::checkGrace() {
  const Panels seen = panels();
  const Seconds since = now().up - phaseBegan_.up;
  const std::uint32_t options = machine_.application.presentationOptions();
  if (since < 2.45 && seen.blockers != blockersAtUnlock_) fail(Rule::grace, "the overlay went before its time");
  if (since < 3.65 && options != LOCKDOWN) fail(Rule::options, "the lockdown options went before their time");
  if (late(phaseBegan_, 3.9)) {
    if (seen.blockers != 0) fail(Rule::grace, "the overlay is still there");
    if (machine_.compositor.isLockedByUs() || machine_.shell.isLocking()) {
      fail(Rule::owner, "the session is still locked");
    }
    if (options != 0) fail(Rule::options, "the lockdown options stayed");
    const bool isSure = screensChanged_.up < phaseBegan_.up;
    if (seen.others > 1 || (isSure && seen.others != (screens_.empty() ? 0 : 1))) fail(Rule::grace, "not one pill");
  }
  if (options == 0 && !liftedAt_) {
    liftedAt_ = now();
    mustSwallow_ = wasTakenBefore_;
  }
  if (mustSwallow_ && now().up - liftedAt_->up > 2 - 1e-6) mustSwallow_ = false;
  if (mustSwallow_ && !machine_.keyboard.isTaken()) fail(Rule::keys, "given back while five keys are being let go");
  if (late(phaseBegan_, 5.9) && (machine_.keyboard.isTaken() || machine_.shell.hasKeys()))
    fail(Rule::free, "the keyboard is still taken");
  if (late(phaseBegan_, 300.1)) fail(Rule::grace, "a grace without end");
}

void NightWatch::checkDegraded() {
  const Panels seen = panels();
  if (seen.blockers != 0) fail(Rule::lock, "a blocker without the permission");
  if (seen.others != (cardDue_ ? 1 : 0)) fail(Rule::lock, "not one card");
  if (machine_.keyboard.isTaken()) fail(Rule::free, "the keyboard is taken without the permission");
  if (machine_.application.presentationOptions() != optionsAtStart_) fail(Rule::options, "touched without a lock");
  promise(granted, !machine_.accessibility.isProcessTrusted(), 3.2, Rule::lock,
          "the permission came, and nothing is locked");
}

void NightWatch::checkOpened() {
  const Panels seen = panels();
  const bool any = seen.blockers + seen.others > 0;
  const std::uint32_t options = machine_.application.presentationOptions();
  if (options != 0 && options != optionsAtStart_) fail(Rule::options, "a rehearsal took the lockdown options");
  if (!any) {
    panelsSince_.reset();
    escapeAt_.reset();
    // The pill comes a turn after the overlay has gone. A rehearsal that began without a screen shows nothing at all.
    promise(tapped, !machine_.keyboard.isTaken(), wasBlind_ ? 190 : 0.1, Rule::rehearsal,
            "the keyboard is taken without a rehearsal");
    return;
  }
  broken_.at(tapped).reset();
  const bool pill = seen.others > 0;
  if (!panelsSince_ || pill != pillBefore_) panelsSince_ = now();
  pillBefore_ = pill;
  if (late(*panelsSince_, 93.9)) fail(Rule::rehearsal, "a rehearsal without end");
  if (escapeAt_ && late(*escapeAt_, 0.2)) fail(Rule::rehearsal, "Escape did not end it");
}

bool NightWatch::isShowingSettings() const {
  const std::shared_ptr<View> front = machine_.mainWindows.front();
  return front && front->kind() == ViewKind::settings;
}

void NightWatch::checkTimers() {
  if (!machine_.timeline.processRuns() || !late(lastEffect_, 0.25)) return;
  const Panels seen = panels();
  int due = 3;  // the hours, the permission, the watchdog
  bool exactly = false;
  switch (phase_) {
    case Phase::none:
      return;
    case Phase::locked:
      due += seen.blockers + (tapPromised_ ? 1 : 0);  // their clocks; the tap's health
      break;
    case Phase::grace:
      if (!late(phaseBegan_, 5.9)) return;
      due += 1;  // the countdown
      exactly = true;
      break;
    case Phase::degraded:
      due += seen.others;  // the card's switch
      exactly = true;
      break;
    case Phase::opened:
      if (seen.blockers + seen.others > 0 || wasBlind_) return;
      due = isShowingSettings() ? 1 : 0;  // they look around every two seconds
      exactly = true;
      break;
  }
  // One more while a key is counted, which is only while one can be heard.
  const int repeat = machine_.timeline.repeatingTimers();
  if (repeat < due || repeat > due + (exactly ? 0 : 1)) {
    fail(Rule::timers, std::to_string(repeat) + " timers instead of " + std::to_string(due));
  }
}

}  // namespace dormel::nights
