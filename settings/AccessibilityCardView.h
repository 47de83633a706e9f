// The card of a night without the permission: it says that the permission is missing and what to do; where the desktop
// has a switch for it, it shows that in miniature and leads to the real one. It has no way to be closed: it goes when
// the permission arrives or the night ends. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Observable.h"
#include "platform/PaintedView.h"
#include "platform/RunLoop.h"
#include "settings/AccessibilityCardState.h"

namespace dormel {

class AccessibilityCardView : public PaintedView,
                              public Observable,
                              public std::enable_shared_from_this<AccessibilityCardView> {
 public:
  [[nodiscard]] static std::shared_ptr<AccessibilityCardView> create(std::function<void()> onOpenSettings);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::accessibilityCard; }

  [[nodiscard]] AccessibilityCardState state() const;

  /// The switch in miniature begins to flip every 1.4 s.
  void onAppear() override;
  [[nodiscard]] std::string encodedState() const override { return encoded(state()); }
  [[nodiscard]] std::shared_ptr<const void> observeState(Task handler) override { return observe(std::move(handler)); }
  [[nodiscard]] Size fittingSize() const override;
  void act(std::uint32_t action) override;
  [[nodiscard]] std::vector<std::string> plainLines(const CanWrite& canWrite) const override;

 private:
  explicit AccessibilityCardView(std::function<void()> onOpenSettings);

  std::function<void()> onOpenSettings_;
  Published<bool> toggleOn_{this, false};
  Timer tick_;
};

}  // namespace dormel
