// Alerts as dialogs of the desktop's: over the main window where there is one, in the middle of the screen where there
// is none. While one is open, no other window of the program can be operated. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "platform/Alerts.h"
#include "platform/linux/qt/WindowGroup.h"

namespace dormel {

class QtAlerts : public Alerts {
 public:
  explicit QtAlerts(std::shared_ptr<WindowGroup> group) : group_(std::move(group)) {}

  /// An alert that cannot be drawn is answered by its last button, the one that does least.
  [[nodiscard]] std::unique_ptr<ShownAlert> show(const Alert& alert, std::function<void(int)> onAnswer) override;

 private:
  std::shared_ptr<WindowGroup> group_;
};

}  // namespace dormel
