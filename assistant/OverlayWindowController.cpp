#include "assistant/OverlayWindowController.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "assistant/OverlayContentView.h"
#include "assistant/PassiveOverlayPanel.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr double SIDEBAR = 170;
constexpr double NUDGE = -8;
constexpr double ABOVE_BOTTOM = 14;
constexpr double MARGIN = 8;

constexpr double LIFT_OF_DISTANCE = 0.18;
constexpr double LEAST_LIFT = 44;
constexpr double MOST_LIFT = 140;

/// Where there is no room for both bounds, the upper one wins.
double within(double value, double least, double most) { return std::min(std::max(value, least), most); }

}  // namespace

std::shared_ptr<OverlayWindowController> OverlayWindowController::create(const AssentaHostApp& hostApp,
                                                                         AssentaPanel panel,
                                                                         std::function<void()> onBack) {
  std::shared_ptr<OverlayWindowController> controller(new OverlayWindowController);
  const auto content = std::make_shared<OverlayContentView>(hostApp, panel, std::move(onBack));
  controller->window_ = PassiveOverlayPanel::create(windowSize);
  content->dragSource()->setWindow(controller->window_);
  controller->window_->setContent(content);
  return controller;
}

Rect OverlayWindowController::anchoredFrame(const Rect& settingsFrame, const Rect& visibleFrame) {
  const double room = std::max(settingsFrame.width - SIDEBAR, windowSize.width);
  const double x = settingsFrame.x + SIDEBAR + (room - windowSize.width) * 0.5 + NUDGE;
  const double y = settingsFrame.y + ABOVE_BOTTOM;
  return {within(x, visibleFrame.x + MARGIN, visibleFrame.right() - windowSize.width - MARGIN),
          within(y, visibleFrame.y + MARGIN, visibleFrame.top() - windowSize.height - MARGIN), windowSize.width,
          windowSize.height};
}

double OverlayWindowController::launchProgress(Seconds elapsed) {
  // The closed form of a spring without overshoot; any other damping would have another one.
  static_assert(launchAnimationDampingFraction == 1.0);
  constexpr double OMEGA = 2 * std::numbers::pi / launchAnimationResponse;
  return std::clamp(1 - std::exp(-OMEGA * elapsed) * (1 + OMEGA * elapsed), 0.0, 1.0);
}

Rect OverlayWindowController::curvedFrame(const Rect& from, const Rect& to, double progress) {
  const double fromX = from.x + from.width / 2;
  const double fromY = from.y + from.height / 2;
  const double toX = to.x + to.width / 2;
  const double toY = to.y + to.height / 2;
  const double lift = std::clamp(std::hypot(toX - fromX, toY - fromY) * LIFT_OF_DISTANCE, LEAST_LIFT, MOST_LIFT);
  const double controlX = (fromX + toX) / 2;
  const double controlY = std::max(fromY, toY) + lift;
  const double left = 1 - progress;
  const auto bezier = [&](double a, double c, double b) {
    return left * left * a + 2 * progress * left * c + progress * progress * b;
  };
  const double width = from.width + (to.width - from.width) * progress;
  const double height = from.height + (to.height - from.height) * progress;
  return {bezier(fromX, controlX, toX) - width / 2, bezier(fromY, controlY, toY) - height / 2, width, height};
}

void OverlayWindowController::present(const std::optional<Rect>& from, const Rect& settingsFrame,
                                      const Rect& visibleFrame) {
  launchDisplayLink_.reset();
  if (!window_) return;
  const Rect place = anchoredFrame(settingsFrame, visibleFrame);
  isAnimatingLaunch_ = from && from->width > 0 && from->height > 0;
  if (!isAnimatingLaunch_) {
    window_->setAlpha(1);
    window_->setFrame(place);
    window_->orderFrontRegardless();
    return;
  }
  launchFromFrame_ = *from;
  launchToFrame_ = place;
  launchStartTime_ = platform().clock.uptime();
  window_->setAlpha(initialAlpha);
  window_->setFrame(*from);
  window_->orderFrontRegardless();
  launchStep();
  launchDisplayLink_ = platform().windows.makeDisplayLink([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->launchStep();
  });
}

void OverlayWindowController::launchStep() {
  if (!window_) {
    launchDisplayLink_.reset();
    return;
  }
  const Seconds elapsed = std::max(0.0, platform().clock.uptime() - launchStartTime_);
  if (elapsed >= launchAnimationDuration) {
    isAnimatingLaunch_ = false;
    launchDisplayLink_.reset();
    window_->setAlpha(1);
    window_->setFrame(launchToFrame_);
    return;
  }
  const double progress = launchProgress(elapsed);
  window_->setAlpha(initialAlpha + (1 - initialAlpha) * progress);
  window_->setFrame(curvedFrame(launchFromFrame_, launchToFrame_, progress));
}

void OverlayWindowController::follow(const Rect& settingsFrame, const Rect& visibleFrame) {
  if (!window_) return;
  const Rect place = anchoredFrame(settingsFrame, visibleFrame);
  launchToFrame_.x = place.x;
  launchToFrame_.y = place.y;
  if (isAnimatingLaunch_) return;
  if (window_->frame() != place) window_->setFrame(place);
  window_->orderFrontRegardless();
}

void OverlayWindowController::hide() {
  if (window_) window_->orderOut();
}

void OverlayWindowController::close() {
  launchDisplayLink_.reset();
  isAnimatingLaunch_ = false;
  if (!window_) return;
  window_->orderOut();
  window_.reset();
}

}  // namespace dormel
