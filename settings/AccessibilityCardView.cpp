#include "settings/AccessibilityCardView.h"

#include <utility>

#include "platform/Platform.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr Seconds FLIP_INTERVAL = 1.4;
constexpr double WIDTH = 440;
constexpr double HEIGHT_WITH_SWITCH = 263.4;
// Room for seven lines, which is more than any of its texts has.
constexpr double HEIGHT = 240;
constexpr double BUTTON_HEIGHT = 50;

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

AccessibilityCardState AccessibilityCardView::state() const { return {toggleOn_, platform().wording.permissionCard()}; }

Size AccessibilityCardView::fittingSize() const {
  const PermissionCardWords words = platform().wording.permissionCard();
  if (!words.switchHint.empty()) return {WIDTH, HEIGHT_WITH_SWITCH};
  return {WIDTH, HEIGHT + (words.button.empty() ? 0 : BUTTON_HEIGHT)};
}

void AccessibilityCardView::act(std::uint32_t action) {
  if (action == AccessibilityCardState::OPEN_SETTINGS) onOpenSettings_();
}

std::vector<std::string> AccessibilityCardView::plainLines(const CanWrite& /*canWrite*/) const {
  return state().plainLines();
}

}  // namespace dormel
