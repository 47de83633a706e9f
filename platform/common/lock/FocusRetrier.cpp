#include "platform/common/lock/FocusRetrier.h"

#include <utility>

namespace dormel {
namespace {

constexpr std::size_t MOST_ATTEMPTS = 20;  // in a second
constexpr Seconds RETRY = 0.1;

}  // namespace

FocusRetrier::FocusRetrier(const Clock& clock, Hooks hooks)
    : hooks_(std::move(hooks)), budget_(clock, MOST_ATTEMPTS, 1.0) {}

void FocusRetrier::want(bool wanted) {
  if (std::exchange(isWanted_, wanted) != wanted) asksAnew_ = false;
  look();
}

void FocusRetrier::setYielding(bool isYielding) {
  isYielding_ = isYielding;
  look();
}

void FocusRetrier::look() {
  if (!isWanted_ || isYielding_ || hooks_.isHeld()) {
    next_.invalidate();
    asksAnew_ = false;
    return;
  }
  if (!next_) next_ = Timer::once(0, [this] { attempt(); });
}

void FocusRetrier::attempt() {
  next_ = Timer::once(RETRY, [this] { attempt(); });
  if (hooks_.isHeld()) {
    next_.invalidate();
    return;
  }
  if (!budget_.spend()) return;
  // By turns: what was asked for again may be gone, or be on an output that went dark.
  if (isUnderLock_ || std::exchange(asksAnew_, !asksAnew_)) {
    hooks_.mapAnew();
  } else {
    hooks_.askAgain();
  }
}

}  // namespace dormel
