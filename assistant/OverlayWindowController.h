// Places and shows one guide: docked at the bottom of the settings window, and flown in from wherever the user asked
// for it. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "assistant/AssentaHostApp.h"
#include "assistant/AssentaPanel.h"
#include "platform/Registration.h"
#include "platform/Time.h"
#include "platform/Windows.h"

namespace dormel {

class OverlayWindowController : public std::enable_shared_from_this<OverlayWindowController> {
 public:
  static constexpr Size windowSize{530, 109};
  static constexpr Seconds launchAnimationDuration = 0.72;
  static constexpr Seconds launchAnimationResponse = 0.72;
  static constexpr double launchAnimationDampingFraction = 1.0;
  static constexpr double initialAlpha = 0.9;

  [[nodiscard]] static std::shared_ptr<OverlayWindowController> create(const AssentaHostApp& hostApp,
                                                                       AssentaPanel panel,
                                                                       std::function<void()> onBack);

  /// Shows the guide in its place; with a source that is not empty it flies there from it.
  void present(const std::optional<Rect>& from, const Rect& settingsFrame, const Rect& visibleFrame);
  /// Keeps it in its place, in front of everything of its level. A launch that is under way ends there.
  void follow(const Rect& settingsFrame, const Rect& visibleFrame);
  void hide();
  /// Stops everything and lets go of the window, for good.
  void close();

  /// Null once it was closed.
  [[nodiscard]] const std::shared_ptr<Window>& window() const { return window_; }

  /// The guide's place: in the middle of what the settings window has right of its sidebar, near its bottom edge, and
  /// inside the visible frame.
  [[nodiscard]] static Rect anchoredFrame(const Rect& settingsFrame, const Rect& visibleFrame);
  /// How far the launch has come after `elapsed`, 0 to 1: a critically damped spring.
  [[nodiscard]] static double launchProgress(Seconds elapsed);
  /// The frame on the way from one to the other, along an arc that rises first.
  [[nodiscard]] static Rect curvedFrame(const Rect& from, const Rect& to, double progress);

 private:
  OverlayWindowController() = default;
  void launchStep();

  std::shared_ptr<Window> window_;
  std::unique_ptr<Registration> launchDisplayLink_;
  Seconds launchStartTime_ = 0;
  Rect launchFromFrame_;
  Rect launchToFrame_;
  bool isAnimatingLaunch_ = false;
};

}  // namespace dormel
