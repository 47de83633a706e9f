// What a locked-out user sees on each screen: which texts, colours and opacities stand at this moment, handed out as
// one plain state. The layout, the fonts and the animations between two such states are the drawing side's
// (overlay/qml/).
//
// The view keeps nothing but its appearance flag; everything else is read through from the session and its bypass
// controller. It tells its own observers when either of them changes, and, looking once a second, when the clock reads
// differently: a night has thirty thousand seconds in which nothing changes. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Observable.h"
#include "overlay/BlockerOverlayState.h"
#include "overlay/OverlaySession.h"
#include "platform/RunLoop.h"

namespace dormel {

/// "23:05" or "11:05" for the moment, in the fixed English form whatever the locale.
[[nodiscard]] std::string clockText(Date date, bool use24Hour);
/// "AM" or "PM".
[[nodiscard]] std::string amPmText(Date date);
/// "4:05" for 245 seconds.
[[nodiscard]] std::string graceCountdownText(int seconds);

class BlockerOverlayView : public PaintedView,
                           public Observable,
                           public std::enable_shared_from_this<BlockerOverlayView> {
 public:
  /// Refers to the session weakly: once it is gone the view stands still, showing the last challenge.
  [[nodiscard]] static std::shared_ptr<BlockerOverlayView> create(const std::shared_ptr<OverlaySession>& session);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::blockerOverlay; }

  [[nodiscard]] BlockerOverlayState state() const;
  [[nodiscard]] std::vector<KeyIndicator> keys() const;

  /// With a fade-in, `appeared` turns true after half its length; otherwise at once.
  void onAppear() override;
  [[nodiscard]] std::string encodedState() const override { return encoded(state()); }
  [[nodiscard]] std::shared_ptr<const void> observeState(Task handler) override { return observe(std::move(handler)); }
  [[nodiscard]] bool isMoving() const override { return bypassController_->allKeysHeld(); }
  [[nodiscard]] Size fittingSize() const override { return {464, 523}; }
  [[nodiscard]] std::vector<std::string> plainLines(const CanWrite& canWrite) const override;

 private:
  explicit BlockerOverlayView(const std::shared_ptr<OverlaySession>& session);
  void startObserving();
  void tellOfClock();
  [[nodiscard]] Seconds appearDuration() const;
  [[nodiscard]] std::string statusText(bool showUnlockConfirm) const;

  std::weak_ptr<OverlaySession> session_;
  std::shared_ptr<BypassController> bypassController_;
  Published<bool> appeared_{this, false};
  Published<std::string> toldClock_{this, {}};
  bool onAppearCalled_ = false;
  Observation sessionObservation_;
  Observation controllerObservation_;
  Timer clockTimer_;
};

}  // namespace dormel
