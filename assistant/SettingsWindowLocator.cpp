#include "assistant/SettingsWindowLocator.h"

#include "platform/Application.h"
#include "platform/CommonArea.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/Screens.h"
#include "platform/WindowList.h"

namespace dormel {
namespace {

constexpr double LEAST_WIDTH = 320;
constexpr double LEAST_HEIGHT = 240;

double area(const Rect& rect) { return rect.width * rect.height; }

/// The one in front, of several settings programs. A settings program may run a second process that never shows
/// anything.
std::optional<RunningApplication> settingsApplication() {
  const auto frontmost = platform().runningApplications.frontmost();
  std::optional<RunningApplication> chosen;
  for (const RunningApplication& one : platform().runningApplications.withBundleIdentifier(SYSTEM_SETTINGS)) {
    const bool isShown = one.activationPolicy != ActivationPolicy::prohibited;
    if (isShown && frontmost && one.processIdentifier == frontmost->processIdentifier) return one;
    const bool isBetter = chosen && chosen->activationPolicy == ActivationPolicy::prohibited &&
                          one.activationPolicy != ActivationPolicy::prohibited;
    if (!chosen || isBetter) chosen = one;
  }
  return chosen;
}

}  // namespace

bool SettingsWindowLocator::isSystemSettingsFrontmost() {
  const auto frontmost = platform().runningApplications.frontmost();
  return frontmost && frontmost->bundleIdentifier == SYSTEM_SETTINGS;
}

std::optional<SettingsWindowSnapshot> SettingsWindowLocator::frontmostWindow() {
  if (!isSystemSettingsFrontmost()) return {};
  const auto application = settingsApplication();
  if (!application) return {};
  const auto windows = platform().windowList.onScreen();
  if (!windows) return {};
  std::optional<SettingsWindowSnapshot> largest;
  for (const ListedWindow& window : *windows) {
    if (window.ownerPid != application->processIdentifier || window.layer != 0 || !window.bounds) continue;
    const Placed placed = userInterfaceGeometry(*window.bounds);
    if (placed.frame.width <= LEAST_WIDTH || placed.frame.height <= LEAST_HEIGHT) continue;
    if (largest && area(placed.frame) <= area(largest->frame)) continue;
    largest = {window.ownerPid, placed.frame, placed.visibleFrame};
  }
  return largest;
}

SettingsWindowLocator::Placed SettingsWindowLocator::userInterfaceGeometry(const Rect& bounds) {
  std::optional<Screen> best;
  double bestArea = 0;
  for (const Screen& screen : platform().screens.all()) {
    const double shared = screen.displayBounds ? commonArea(*screen.displayBounds, bounds) : 0;
    if (shared <= bestArea) continue;
    best = screen;
    bestArea = shared;
  }
  if (!best) {
    const auto main = platform().screens.main();
    return {bounds, main ? main->visibleFrame : Rect{0, 0, bounds.width, bounds.height}};
  }
  const double across = bounds.x - best->displayBounds->x;
  const double down = bounds.y - best->displayBounds->y;
  return {{best->frame.x + across, best->frame.top() - down - bounds.height, bounds.width, bounds.height},
          best->visibleFrame};
}

}  // namespace dormel
