// Helps the user to grant a permission: opens the privacy page of the system settings and docks a floating guide at
// the settings window, which it follows. Self-contained: knows platform/ only. Main thread only.
#pragma once

#include <memory>
#include <optional>

#include "assistant/AssentaHostApp.h"
#include "assistant/AssentaPanel.h"
#include "platform/Geometry.h"
#include "platform/RunLoop.h"

namespace dormel {

class OverlayWindowController;
class Registration;
class ShownAlert;

class AssentaAssistant : public std::enable_shared_from_this<AssentaAssistant> {
 public:
  /// The one of the platform in force, made on first use.
  [[nodiscard]] static AssentaAssistant& shared();
  AssentaAssistant(const AssentaAssistant&) = delete;
  AssentaAssistant& operator=(const AssentaAssistant&) = delete;
  ~AssentaAssistant();

  /// Shows the guide for a page in place of any other, and opens that page. With a source rectangle (in screen
  /// coordinates) the guide flies in from there. It is seen while the settings program is in front. Where the page
  /// cannot be opened an alert says where to look instead.
  void present(AssentaPanel panel, const AssentaHostApp& hostApp, const std::optional<Rect>& sourceFrameInScreen);
  /// Closes any guide and stops all tracking. Safe when nothing is shown.
  void dismiss();

  [[nodiscard]] std::optional<AssentaPanel> activePanel() const { return activePanel_; }
  [[nodiscard]] bool didPresentCurrentOverlay() const { return didPresentCurrentOverlay_; }
  /// The guide; null when there is none.
  [[nodiscard]] const std::shared_ptr<OverlayWindowController>& overlayController() const { return overlayController_; }

 private:
  AssentaAssistant();
  void startTracking();
  void refreshPosition();

  std::shared_ptr<OverlayWindowController> overlayController_;
  Timer trackingTimer_;
  std::unique_ptr<Registration> activationObserver_;
  std::unique_ptr<ShownAlert> advice_;
  std::optional<AssentaPanel> activePanel_;
  std::optional<Rect> pendingSourceFrameInScreen_;
  bool didPresentCurrentOverlay_ = false;
};

}  // namespace dormel
