#include "engine/SpokenLock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/Keyboard.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr Seconds REPETITION = 20.0;
constexpr std::array COUNTED_SECONDS{20, 10, 5};
constexpr int LAST_MINUTE = 60;
constexpr int LAST_SECONDS = 10;

struct SpokenModifier {
  KeyCode keyCode;
  bool isLeft;
  const char* name;
};
constexpr std::array MODIFIERS{
    SpokenModifier{56, true, translatable("left Shift")},    SpokenModifier{59, true, translatable("left Control")},
    SpokenModifier{58, true, translatable("left Option")},   SpokenModifier{55, true, translatable("left Command")},
    SpokenModifier{60, false, translatable("right Shift")},  SpokenModifier{61, false, translatable("right Option")},
    SpokenModifier{54, false, translatable("right Command")}};

}  // namespace

std::shared_ptr<SpokenLock> SpokenLock::create(const std::shared_ptr<OverlaySession>& session, bool isRehearsal) {
  std::shared_ptr<SpokenLock> lock(new SpokenLock(session, isRehearsal));
  lock->sessionObservation_ = session->observe(lock->weakly(&SpokenLock::look));
  lock->controllerObservation_ = lock->controller_->observe(lock->weakly(&SpokenLock::look));
  lock->reader_ = platform().speech.followReader([weak = std::weak_ptr(lock)](bool isOn) {
    const auto self = weak.lock();
    if (!self || std::exchange(self->isReaderOn_, isOn) == isOn) return;
    if (isOn && self->seen_.state == SessionState::blocked) self->introduce();
  });
  return lock;
}

SpokenLock::SpokenLock(const std::shared_ptr<OverlaySession>& session, bool isRehearsal)
    : session_(session), controller_(session->bypassController()), isRehearsal_(isRehearsal), seen_(now()) {}

Task SpokenLock::weakly(void (SpokenLock::*operation)()) {
  return [weak = weak_from_this(), operation] {
    if (const auto self = weak.lock()) (self.get()->*operation)();
  };
}

SpokenLock::Seen SpokenLock::now() const {
  const auto session = session_.lock();
  if (!session) return {};
  return {session->state(),           controller_->requiredKeys(), controller_->pressedKeys(),
          controller_->allKeysHeld(), controller_->hold().since,   session->graceSecondsRemaining()};
}

void SpokenLock::look() {
  const Seen before = std::exchange(seen_, now());
  if (seen_.heldSince != before.heldSince) followHold();
  if (seen_.state != before.state) {
    repetition_.invalidate();
    if (seen_.state == SessionState::blocked) {
      isIntroducing_ = true;
      platform().runLoop.async(weakly(&SpokenLock::introduce));
    } else if (seen_.state == SessionState::grace) {
      const int left = seen_.graceLeft;
      say(translate("Unlocked. Let go.") + " " +
          (left >= LAST_MINUTE ? translate("It locks again in %1 minutes.", {std::to_string(left / 60)})
                               : translate("It locks again in %1 seconds.", {std::to_string(left)})));
    }
    return;
  }
  if (seen_.state == SessionState::blocked && !isIntroducing_) lookAtKeys(before);
  if (seen_.state != SessionState::grace) return;
  const auto passes = [&](int mark) { return seen_.graceLeft <= mark && before.graceLeft > mark; };
  if (passes(LAST_MINUTE)) say(translate("It locks again in one minute."));
  if (passes(LAST_SECONDS)) say(translate("It locks again in ten seconds."));
}

void SpokenLock::lookAtKeys(const Seen& before) {
  if (seen_.keys != before.keys) {
    say(translate("New keys: %1.", {keyNames()}));
    return;
  }
  if (seen_.pressed == before.pressed) return;
  const std::string count = std::to_string(seen_.pressed.size());
  for (const RequiredKey& key : seen_.keys) {
    const bool is = seen_.pressed.contains(key.keyCode);
    if (is == before.pressed.contains(key.keyCode)) continue;
    const std::string name = keyName(key);
    if (seen_.allHeld) {
      say(translate("All five. Keep holding."));
    } else if (is) {
      say(translate("%1. %2 of 5.", {name, count}));
    } else if (before.allHeld) {
      say(translate("%1 slipped. Hold all five again.", {name}));
    } else {
      say(translate("%1 slipped. %2 of 5.", {name, count}));
    }
  }
}

void SpokenLock::followHold() {
  countdown_.clear();
  const Hold hold = controller_->hold();
  if (!hold.since) return;
  for (const int seconds : COUNTED_SECONDS) {
    if (hold.duration <= seconds) continue;
    const Seconds wait = *hold.since + hold.duration - seconds - platform().clock.uptime();
    countdown_.push_back(Timer::once(std::max(wait, 0.0), [weak = weak_from_this(), seconds] {
      if (const auto self = weak.lock()) self->say(translate("%1 seconds.", {std::to_string(seconds)}));
    }));
  }
}

void SpokenLock::introduce() {
  isIntroducing_ = false;
  if (seen_.state != SessionState::blocked) return;
  const std::string seconds = std::to_string(static_cast<int>(controller_->holdDuration()));
  std::string text = translate(
      "This %1 is locked. To open it, hold these keys together for %2 seconds: %3. Space gives you other keys.",
      {platform().wording.computer(), seconds, keyNames()});
  if (isRehearsal_) text += " " + translate("This is a rehearsal. Escape ends it.");
  say(text);
}

void SpokenLock::repeat() {
  const std::string seconds = std::to_string(static_cast<int>(controller_->holdDuration()));
  say(translate("Locked. Hold for %1 seconds: %2.", {seconds, keyNames()}));
}

void SpokenLock::say(const std::string& text) {
  if (!isReaderOn_) return;
  platform().speech.say(text);
  const bool isWaiting = seen_.state == SessionState::blocked && seen_.pressed.empty();
  repetition_ = isWaiting ? Timer::once(REPETITION, weakly(&SpokenLock::repeat)) : Timer();
}

std::string SpokenLock::keyName(const RequiredKey& key) const {
  if (!key.isModifier) {
    const std::string legend = controller_->legend(key.keyCode);
    return legend.empty() ? key.label : key.label + " (" + legend + ")";
  }
  const auto* const modifier = std::find_if(MODIFIERS.begin(), MODIFIERS.end(),
                                            [&](const SpokenModifier& one) { return one.keyCode == key.keyCode; });
  if (modifier == MODIFIERS.end()) return key.label;
  const std::string printed = platform().keyboardLayout.printedLegend(key.keyCode);
  if (printed.empty()) return translate(modifier->name);
  return modifier->isLeft ? translate("left %1", {printed}) : translate("right %1", {printed});
}

std::string SpokenLock::keyNames() const {
  std::string names;
  for (const RequiredKey& key : controller_->requiredKeys()) names += (names.empty() ? "" : ", ") + keyName(key);
  return names;
}

}  // namespace dormel
