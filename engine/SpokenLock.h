// The lock for somebody who does not see it: while a screen reader is on, it says that it locked and which keys are
// asked for, each of them that counts or slips, the seconds before the end of a hold, the unlock, and the end of the
// grace. No key is needed to hear it again: it repeats itself for as long as nothing is held. Main thread only.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "challenge/BypassController.h"
#include "core/Observable.h"
#include "overlay/OverlaySession.h"
#include "platform/RunLoop.h"
#include "platform/Speech.h"

namespace dormel {

class SpokenLock : public std::enable_shared_from_this<SpokenLock> {
 public:
  /// Speaks of `session` while it lives. The session has its first keys already.
  [[nodiscard]] static std::shared_ptr<SpokenLock> create(const std::shared_ptr<OverlaySession>& session,
                                                          bool isRehearsal);

 private:
  /// What there is to speak of at one moment.
  struct Seen {
    SessionState state = SessionState::idle;
    std::vector<RequiredKey> keys;
    KeyCodeSet pressed;
    bool allHeld = false;
    std::optional<Seconds> heldSince;
    int graceLeft = 0;
  };

  SpokenLock(const std::shared_ptr<OverlaySession>& session, bool isRehearsal);
  [[nodiscard]] Seen now() const;
  void look();
  void lookAtKeys(const Seen& before);
  void followHold();
  void introduce();
  void repeat();
  void say(const std::string& text);
  [[nodiscard]] std::string keyName(const RequiredKey& key) const;
  [[nodiscard]] std::string keyNames() const;
  /// An action that runs `operation` on this if it still exists.
  [[nodiscard]] Task weakly(void (SpokenLock::*operation)());

  const std::weak_ptr<OverlaySession> session_;
  const std::shared_ptr<BypassController> controller_;
  const bool isRehearsal_;
  bool isReaderOn_ = false;
  bool isIntroducing_ = false;  // in a later turn, when the new keys are drawn
  Seen seen_;
  std::vector<Timer> countdown_;
  Timer repetition_;
  Observation sessionObservation_;
  Observation controllerObservation_;
  std::unique_ptr<Registration> reader_;
};

}  // namespace dormel
