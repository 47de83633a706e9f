// What a locked-out user sees on each screen: which texts, colours and opacities stand at this moment. The layout,
// the fonts and the animations between two such moments are the drawing side's (overlay/qml/).
//
// The view keeps nothing but its appearance flag; everything else is read through from the session and its bypass
// controller. It is notified about a change of either, once a second for the clock, and it tells its own observers.
// Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Observable.h"
#include "overlay/Ink.h"
#include "overlay/OverlaySession.h"
#include "platform/RunLoop.h"
#include "platform/View.h"

namespace dormel {

/// "23:05" or "11:05" for the moment, in the fixed English form whatever the locale.
[[nodiscard]] std::string clockText(Date date, bool use24Hour);
/// "AM" or "PM".
[[nodiscard]] std::string amPmText(Date date);
/// "4:05" for 245 seconds.
[[nodiscard]] std::string graceCountdownText(int seconds);

/// One key cap. Modifiers are wider, with a smaller label. Where this keyboard prints something else on a modifier, or
/// a letter's label does not say which key it is, there is a small legend below.
struct KeyIndicator {
  std::string label;
  std::string legend;
  KeyCode keyCode = 0;
  bool isPressed = false;
  bool isModifier = false;

  [[nodiscard]] double width() const { return isModifier ? 80 : 68; }
  [[nodiscard]] static constexpr double height() { return 68; }
  [[nodiscard]] double labelSize() const { return isModifier ? 13 : 28; }
  [[nodiscard]] Ink labelColor() const { return isPressed ? ink::black(1) : ink::white(0.70); }
  [[nodiscard]] Ink fill() const { return isPressed ? ink::white(1) : ink::white(isModifier ? 0.05 : 0.08); }
  [[nodiscard]] Ink border() const { return ink::white(isPressed ? 0 : 0.15); }
  friend bool operator==(const KeyIndicator&, const KeyIndicator&) = default;
};

class BlockerOverlayView : public View, public Observable, public std::enable_shared_from_this<BlockerOverlayView> {
 public:
  /// Refers to the session weakly: once it is gone the view stands still, showing the last challenge.
  [[nodiscard]] static std::shared_ptr<BlockerOverlayView> create(const std::shared_ptr<OverlaySession>& session);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::blockerOverlay; }

  /// Called by the drawing side when the view first comes on screen. With a fade-in, `appeared` turns true after
  /// half its length; otherwise at once.
  void onAppear();

  /// Drives the fade-in of the whole overlay (opacity 0 and, for the column, 20 lower, while false).
  [[nodiscard]] bool appeared() const { return appeared_; }
  /// How long the change of `appeared` is to be animated (ease-out): 2.5 s, or 0 for at once.
  [[nodiscard]] Seconds appearDuration() const;
  /// The column's opacity is 0 before it appeared and while this is true.
  [[nodiscard]] bool isFadingOut() const;

  [[nodiscard]] std::vector<KeyIndicator> keys() const;

  /// The line below the keys, and its colour.
  [[nodiscard]] std::string statusText() const;
  [[nodiscard]] Ink statusColor() const;

  /// While all keys are held the dial shows the seconds left and is to be redrawn on every display frame.
  [[nodiscard]] bool allKeysHeld() const;
  [[nodiscard]] double progress() const;
  [[nodiscard]] Ink progressColor() const;
  [[nodiscard]] std::string secondsText() const;

  /// Else it shows the time; `amPm` is empty in 24-hour form.
  [[nodiscard]] std::string clock() const;
  [[nodiscard]] std::string amPm() const;

  /// The "Unlocked. Let go." message in place of dial, keys and hint; `relockText` is empty outside a grace period.
  [[nodiscard]] bool showUnlockConfirm() const;
  [[nodiscard]] std::string relockText() const;

 private:
  explicit BlockerOverlayView(const std::shared_ptr<OverlaySession>& session);
  void startObserving();

  std::weak_ptr<OverlaySession> session_;
  std::shared_ptr<BypassController> bypassController_;
  Published<bool> appeared_{this, false};
  bool onAppearCalled_ = false;
  Observation sessionObservation_;
  Observation controllerObservation_;
  Timer clockTimer_;
};

}  // namespace dormel
