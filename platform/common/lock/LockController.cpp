#include "platform/common/lock/LockController.h"

namespace dormel {
namespace {

constexpr Seconds RETRY = 1.0;

}  // namespace

void LockController::apply() {
  switch (stages_.next()) {
    case LockStages::Step::lock:
      // Before the request: from the moment it is sent, the lock may be up and this process may die.
      place_.startWatching(place_.mark());
      place_.ask();
      break;
    case LockStages::Step::unlock:
      place_.changed();
      place_.giveBack(true);
      place_.confirmEnd();
      break;
    case LockStages::Step::nothing:
      break;
  }
}

void LockController::answered(bool isUp) {
  if (isUp) {
    isRefused_ = false;
    stages_.locked();
    place_.changed();
    apply();  // it may have been wanted no more meanwhile
    return;
  }
  const bool wasUp = this->isUp();
  isRefused_ = true;
  stages_.finished();
  place_.changed();
  place_.giveBack(wasUp);
  // The mark and the watcher stay: it may have been a lock that one of us left behind, whose end the compositor has not
  // noticed yet.
  retry_ = Timer::once(RETRY, [this] { retry(); });
}

void LockController::retry() {
  stages_.retry();
  apply();
  if (stages_.stage() != LockStages::Stage::open) return;
  isRefused_ = false;  // nothing is to be locked any more
  forget();
  place_.changed();
}

void LockController::ended() { forget(); }

void LockController::forget() {
  place_.unmark();
  place_.stopWatching();
}

}  // namespace dormel
