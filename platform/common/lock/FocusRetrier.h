// Keeps the keyboard for as long as it is wanted: asks for it when it is somebody else's, at once and then every 100
// ms, and no more than 20 times a second, so that two programs that both insist do not fight at full speed for ever. It
// decides; the compositor's language is spoken by its hooks. Main thread only.
#pragma once

#include <functional>

#include "platform/RunLoop.h"
#include "platform/common/RateLimiter.h"

namespace dormel {

class FocusRetrier {
 public:
  struct Hooks {
    std::function<bool()> isHeld;
    /// Asks once more for a surface that is there.
    Task askAgain;
    /// Puts up a fresh surface that asks for it: what helps where asking again does not.
    Task mapAnew;
  };

  FocusRetrier(const Clock& clock, Hooks hooks);

  void want(bool wanted);
  [[nodiscard]] bool isWanted() const { return isWanted_; }
  /// Under a session lock only a fresh surface gets the keyboard back.
  void setUnderLock(bool isUnderLock) { isUnderLock_ = isUnderLock; }
  /// While another program's lock is up the keyboard is its own: somebody types a password there.
  void setYielding(bool isYielding);
  /// The answer of `isHeld` may be another than before. The keyboard is asked for in a turn of its own.
  void look();

 private:
  void attempt();

  Hooks hooks_;
  RateLimiter budget_;
  bool isWanted_ = false;
  bool isUnderLock_ = false;
  bool isYielding_ = false;
  bool asksAnew_ = false;
  Timer next_;
};

}  // namespace dormel
