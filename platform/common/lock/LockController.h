// What a process does about its compositor's session lock: when it takes it and gives it back, and in which order it
// sees to it that somebody ends it. The lock outlives its client, so a mark is written and a process that watches over
// this one is started before the lock is asked for; both go only when the lock surely has ended. Main thread only.
#pragma once

#include <functional>

#include "platform/RunLoop.h"
#include "platform/common/lock/LockStages.h"

namespace dormel {

/// What it is done with: a compositor, a runtime folder, processes.
class LockPlace {
 public:
  virtual ~LockPlace() = default;
  /// Writes this process's mark. False when it cannot be written.
  virtual bool mark() = 0;
  virtual void unmark() = 0;
  /// Starts the process that watches over this one, if none does yet; `isMarked`: what `mark` answered.
  virtual void startWatching(bool isMarked) = 0;
  virtual void stopWatching() = 0;
  /// Asks the compositor; the answer comes by `LockController::answered`.
  virtual void ask() = 0;
  /// Gives back what was asked for, or `isUp`.
  virtual void giveBack(bool isUp) = 0;
  /// Has `LockController::ended` called when the compositor has carried out everything so far; never, if `ask` comes
  /// first.
  virtual void confirmEnd() = 0;
  /// The lock came, is about to end, or was refused: what is shown where is another matter now.
  virtual void changed() = 0;
};

class LockController {
 public:
  /// `place` outlives it.
  explicit LockController(LockPlace& place) : place_(place) {}

  /// Tells what has changed; `apply` then does what is due.
  [[nodiscard]] LockStages& stages() { return stages_; }
  void apply();

  /// The compositor's answers: the lock is up; or another program's is, or ours was taken away.
  void answered(bool isUp);
  void ended();

  [[nodiscard]] bool isUp() const { return stages_.stage() == LockStages::Stage::locked; }
  /// Another program's lock is up, as far as is known.
  [[nodiscard]] bool isRefused() const { return isRefused_; }

 private:
  void retry();
  void forget();

  LockPlace& place_;
  LockStages stages_;
  bool isRefused_ = false;  // by the last answer: asking again does not change it
  Timer retry_;
};

}  // namespace dormel
