// A night without the permission to take the keyboard: nothing is locked, a card explains, and the lock starts the
// moment the permission arrives within the hours.
#include <algorithm>

#include "core/Config.h"
#include "core/DebugLog.h"
#include "engine/ScreenManager.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {
namespace {

constexpr double CARD_MARGIN = 10;

}  // namespace

void ScreenManager::enterDegradedMode() {
  if (isDegraded_) return;
  isDegraded_ = true;
  state_ = State::idle;
  platform().output.print(
      "[a11y] Accessibility is OFF — NOT locking the screen (P2.2r). Showing the permission card and watching.");
  DebugLog::shared().append("═══ DEGRADED · dormel hour reached with no Accessibility · not blocking ═══");
  showPermissionCard();
  startAccessibilityWatch();
  startTimeCheck();
  startWatchdog();
}

void ScreenManager::showPermissionCard() {
  if (*permissionWindow_ || !permissionCard_) return;
  const auto screen = platform().screens.main();
  if (!screen) return;
  const std::shared_ptr<BlockerWindow> card = BlockerWindow::permission(permissionCard_());
  const Size fitting = card->window().contentFittingSize();
  const double width = std::max(440.0, fitting.width);
  const double height = std::max(220.0, fitting.height);
  const Rect& area = screen->visibleFrame;
  card->window().setFrame({area.right() - width - CARD_MARGIN, area.top() - height - CARD_MARGIN, width, height});
  card->window().orderFrontRegardless();
  permissionWindow_ = card;
}

void ScreenManager::pollAccessibilityDegraded() {
  if (!hasAccessibility_) return;
  if (!Config::isBlockingNow(platform().clock.now())) {
    platform().output.print("[a11y] Accessibility granted, but the blocking hours have ended. Exiting.");
    leaveDegradedMode();
    platform().process.exit(0);
  }
  platform().output.print("[a11y] Accessibility granted — starting the block now.");
  DebugLog::shared().append("═══ DEGRADED → BLOCKING · Accessibility granted mid-night ═══");
  leaveDegradedMode();
  beginBlocking();
}

void ScreenManager::leaveDegradedMode() {
  isDegraded_ = false;
  if (*permissionWindow_) permissionWindow_->get()->window().orderOut();
  permissionWindow_ = nullptr;
  timeCheckTimer_.invalidate();
  stopWatchdog();
  accessibilityTimer_.invalidate();
}

}  // namespace dormel
