// The small floating pill that counts the grace period down: a ring and one line of text.
// Reads through from the session, which it holds weakly. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "core/Observable.h"
#include "overlay/Ink.h"
#include "overlay/OverlaySession.h"
#include "platform/View.h"

namespace dormel {

class GraceCountdownView : public View, public Observable, public std::enable_shared_from_this<GraceCountdownView> {
 public:
  [[nodiscard]] static std::shared_ptr<GraceCountdownView> create(const std::shared_ptr<OverlaySession>& session);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::graceCountdown; }

  /// How much of the grace period is left, 1 down to 0.
  [[nodiscard]] double graceProgress() const;
  /// White while there is time, orange in the last minute, red in its second half.
  [[nodiscard]] Ink urgencyColor() const;
  /// "4:05 remaining", "45s remaining".
  [[nodiscard]] std::string graceText() const;

 private:
  explicit GraceCountdownView(const std::shared_ptr<OverlaySession>& session);
  [[nodiscard]] int secondsRemaining() const;

  std::weak_ptr<OverlaySession> session_;
  Observation sessionObservation_;
};

}  // namespace dormel
