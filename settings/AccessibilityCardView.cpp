#include "settings/AccessibilityCardView.h"

#include <utility>

namespace dormel {
namespace {

constexpr Seconds FLIP_INTERVAL = 1.4;

}  // namespace

std::shared_ptr<AccessibilityCardView> AccessibilityCardView::create(std::function<void()> onOpenSettings) {
  return std::shared_ptr<AccessibilityCardView>(new AccessibilityCardView(std::move(onOpenSettings)));
}

AccessibilityCardView::AccessibilityCardView(std::function<void()> onOpenSettings)
    : onOpenSettings_(std::move(onOpenSettings)) {}

void AccessibilityCardView::onAppear() {
  if (tick_) return;
  tick_ = Timer::repeating(FLIP_INTERVAL, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->toggleOn_ = !self->toggleOn_;
  });
}

void AccessibilityCardView::act(std::uint32_t action) {
  if (action == AccessibilityCardState::OPEN_SETTINGS) onOpenSettings_();
}

std::vector<std::string> AccessibilityCardView::plainLines(const CanWrite& /*canWrite*/) const {
  return AccessibilityCardState::plainLines();
}

}  // namespace dormel
