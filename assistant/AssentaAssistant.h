// Helps the user to grant a permission: opens the privacy page of the system settings and docks a floating guide beside
// the settings window. Self-contained: knows platform/ only. Main thread only.
#pragma once

#include <memory>
#include <optional>

#include "assistant/AssentaHostApp.h"
#include "assistant/AssentaPanel.h"
#include "platform/Geometry.h"

namespace dormel {

class AssentaAssistant {
 public:
  /// The one of the platform in force, made on first use.
  [[nodiscard]] static AssentaAssistant& shared();

  /// Shows the guide for a page in place of any other, and opens that page. With a source rectangle (in screen
  /// coordinates) the guide flies in from there.
  void present(AssentaPanel panel, const AssentaHostApp& hostApp, const std::optional<Rect>& sourceFrameInScreen);
  /// Closes any guide and stops all tracking. Safe when nothing is shown.
  void dismiss();

  [[nodiscard]] std::optional<AssentaPanel> activePanel() const { return activePanel_; }

 private:
  std::optional<AssentaPanel> activePanel_;
};

}  // namespace dormel
