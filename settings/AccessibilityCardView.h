// The card of a night without the permission: it says that the permission is missing, shows the switch in miniature
// and leads to the real one. It has no way to be closed: it goes when the permission arrives or the night ends.
// Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "core/Observable.h"
#include "platform/RunLoop.h"
#include "platform/View.h"

namespace dormel {

class AccessibilityCardView : public View,
                              public Observable,
                              public std::enable_shared_from_this<AccessibilityCardView> {
 public:
  [[nodiscard]] static std::shared_ptr<AccessibilityCardView> create(std::function<void()> onOpenSettings);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::accessibilityCard; }

  /// Called by the drawing side when the card comes on screen: the switch in miniature begins to flip every 1.4 s.
  void onAppear();
  [[nodiscard]] bool toggleOn() const { return toggleOn_; }
  /// The button.
  void openSettings() const { onOpenSettings_(); }

 private:
  explicit AccessibilityCardView(std::function<void()> onOpenSettings);

  std::function<void()> onOpenSettings_;
  Published<bool> toggleOn_{this, false};
  Timer tick_;
};

}  // namespace dormel
