// What a window shows, as logic sees it: an object that decides texts, colours and timings. The drawing side knows
// each concrete view by its kind and lays it out; logic never learns how.
#pragma once

namespace dormel {

enum class ViewKind {
  blockerOverlay,
  graceCountdown,
  accessibilityCard,
  settings,
  nights,
  assistantGuide,
  assistantDragRow,
  onboarding,
  alert,       ///< the platform's own: logic names an alert by its texts (Alerts.h)
  aboutPanel,  ///< the platform's own, behind the menu's command
};

class View {
 public:
  virtual ~View() = default;
  [[nodiscard]] virtual ViewKind kind() const = 0;
};

}  // namespace dormel
