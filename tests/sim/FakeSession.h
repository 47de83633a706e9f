// A session that is whatever a test says.
#pragma once

#include "overlay/OverlaySession.h"

namespace dormel {

class FakeSession : public OverlaySession {
 public:
  [[nodiscard]] SessionState state() const override { return phase; }
  [[nodiscard]] bool showUnlockConfirm() const override { return confirm; }
  [[nodiscard]] bool isFadingOut() const override { return fadingOut; }
  [[nodiscard]] bool overlayFadesIn() const override { return fadesIn; }
  [[nodiscard]] int graceSecondsRemaining() const override { return secondsRemaining; }
  [[nodiscard]] double graceTotal() const override { return total; }
  [[nodiscard]] const std::shared_ptr<BypassController>& bypassController() const override { return controller; }

  std::shared_ptr<BypassController> controller = BypassController::create();
  Published<SessionState> phase{this, SessionState::blocked};
  Published<bool> confirm{this, false};
  Published<bool> fadingOut{this, false};
  Published<bool> fadesIn{this, true};
  Published<int> secondsRemaining{this, 300};
  Published<double> total{this, 300.0};
};

}  // namespace dormel
