// What the process does that outlives the owner of a session lock: it waits for somebody to take the lock over, and
// ends the lock itself when nobody has within 10 s. Plain computation; times are seconds of any clock that goes on.
//
// It begins when the owner is known to be dead. The owner's mark says nothing against that: what a system tells of a
// dying process changes piece by piece.
#pragma once

#include <algorithm>
#include <limits>
#include <optional>

#include "platform/Time.h"
#include "platform/common/lock/LockMark.h"

namespace dormel {

/// How an attempt to end an abandoned lock went.
enum class LockRelease {
  released,  ///< it was taken over and given back
  owned,     ///< somebody else's lock is up
  failed,    ///< the compositor did not answer
};

class AbandonedLockPolicy {
 public:
  enum class Step { look, release, end };

  static constexpr Seconds PATIENCE = 10;
  /// How long to wait between two looks, and between two attempts.
  static constexpr Seconds PAUSE = 0.25;

  /// What there is to see: the mark in the runtime folder, whether its owner lives, and whether the compositor does.
  struct Seen {
    std::optional<LockMark> mark;
    bool isOwnerAlive = false;
    bool isCompositorAlive = true;
  };

  /// `owner` has died at `now`. `isMarked`: its mark could be written. Where it could not, only the compositor knows
  /// whether somebody has the lock.
  AbandonedLockPolicy(const ProcessMark& owner, bool isMarked, Seconds now)
      : owner_(owner), isMarked_(isMarked), deadline_(now + PATIENCE) {}

  [[nodiscard]] Step next(const Seen& seen, Seconds now) {
    if (!seen.isCompositorAlive) return Step::end;  // the lock went with it
    if (isMarked_ && !seen.mark) return Step::end;  // it was taken over and given back
    const bool isOther = seen.mark && seen.mark->owner != owner_;
    if (isOther && seen.isOwnerAlive) {
      // Whoever has had it for a while has a watcher, too.
      settledAt_ = std::min(settledAt_, now + SETTLED);
      return now >= settledAt_ ? Step::end : Step::look;
    }
    settledAt_ = NEVER;
    if (isOther) {
      // It has died as well, and is to be started again as the one before was.
      owner_ = seen.mark->owner;
      deadline_ = now + PATIENCE;
    }
    if (now < deadline_) return Step::look;
    return refusals_ < MOST_REFUSALS ? Step::release : Step::end;
  }

  void tried(LockRelease result) {
    // A compositor that was busy may hear the new client before it notices that the old one is gone.
    if (result == LockRelease::owned) ++refusals_;
  }

 private:
  static constexpr int MOST_REFUSALS = 20;
  static constexpr Seconds SETTLED = 1;
  static constexpr Seconds NEVER = std::numeric_limits<Seconds>::infinity();

  ProcessMark owner_;
  bool isMarked_;
  Seconds deadline_;
  Seconds settledAt_ = NEVER;  ///< when the new owner will have had it for long enough
  int refusals_ = 0;
};

}  // namespace dormel
