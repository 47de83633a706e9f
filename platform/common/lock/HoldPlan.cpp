#include "platform/common/lock/HoldPlan.h"

#include <chrono>

namespace dormel {
namespace {

/// Where nobody has said how long we may go on.
constexpr Seconds LONGEST = 24.0 * 3600;
/// The same end is computed anew at each look.
constexpr std::chrono::seconds SAME_END{2};

}  // namespace

HoldPlan::Step HoldPlan::next(const Panels& panels, Date now, const Limit& limit) {
  if (!isWanted(panels)) {
    const bool wasHolding = isHolding();
    forget();
    return wasHolding ? Step::release : Step::nothing;
  }
  const bool isCovered = isLockdown_ && panels.isAnyBlack && panels.areBlackOpaque;
  if (isCovered) wasCovered_ = false;
  ShellHold hold;
  hold.cover = isCovered || wasCovered_;
  hold.keys = areKeysWanted_ || panels.isAnyKey || wasCovered_;
  if (isLockdown_ || wasCovered_) {
    const std::chrono::duration<Seconds> left(limit().value_or(LONGEST));
    hold.absence = ABSENCE;
    hold.until = std::chrono::round<std::chrono::seconds>(now + std::chrono::duration_cast<Date::duration>(left));
    if (told_ && told_->until && *hold.until - *told_->until < SAME_END && *told_->until - *hold.until < SAME_END) {
      hold.until = told_->until;
    }
  }
  if (told_ == hold) return Step::nothing;
  const Step step = told_ ? Step::hold : Step::holdAnew;
  told_ = hold;
  return step;
}

}  // namespace dormel
