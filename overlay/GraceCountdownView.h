// The small floating pill that counts the grace period down: a ring and one line of text.
// Reads through from the session, which it holds weakly. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Observable.h"
#include "overlay/GraceCountdownState.h"
#include "overlay/OverlaySession.h"
#include "platform/PaintedView.h"

namespace dormel {

class GraceCountdownView : public PaintedView,
                           public Observable,
                           public std::enable_shared_from_this<GraceCountdownView> {
 public:
  [[nodiscard]] static std::shared_ptr<GraceCountdownView> create(const std::shared_ptr<OverlaySession>& session);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::graceCountdown; }

  [[nodiscard]] GraceCountdownState state() const;

  [[nodiscard]] std::string encodedState() const override { return encoded(state()); }
  [[nodiscard]] std::shared_ptr<const void> observeState(Task handler) override { return observe(std::move(handler)); }
  /// Room for the widest of its texts.
  [[nodiscard]] Size fittingSize() const override { return {212, 56}; }
  [[nodiscard]] std::vector<std::string> plainLines(const CanWrite& /*canWrite*/) const override {
    return {state().text};
  }

 private:
  explicit GraceCountdownView(const std::shared_ptr<OverlaySession>& session);

  std::weak_ptr<OverlaySession> session_;
  Observation sessionObservation_;
};

}  // namespace dormel
