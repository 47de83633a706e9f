// The narrow face of a blocking session that the overlay reads. The engine implements it; the overlay knows nothing
// else of the engine, so that the session may make windows and a window may show its session.
#pragma once

#include <memory>

#include "challenge/BypassController.h"
#include "core/Observable.h"

namespace dormel {

/// The phase of a session.
enum class SessionState {
  blocked,  ///< blocker windows cover the screens, holds are measured
  grace,    ///< a hold was completed; the overlay is lowered or lowering, the grace countdown runs
  idle,     ///< no lock
};

/// Observers are told after any of these values changed. Main thread only.
class OverlaySession : public Observable {
 public:
  [[nodiscard]] virtual SessionState state() const = 0;
  /// The "unlocked" message is showing in place of the challenge.
  [[nodiscard]] virtual bool showUnlockConfirm() const = 0;
  /// The overlay's content is fading out before the lock lifts.
  [[nodiscard]] virtual bool isFadingOut() const = 0;
  /// Whether the present overlay was built with a fade-in.
  [[nodiscard]] virtual bool overlayFadesIn() const = 0;
  /// The grace countdown, whole seconds, and the length of the whole grace period in seconds.
  [[nodiscard]] virtual int graceSecondsRemaining() const = 0;
  [[nodiscard]] virtual double graceTotal() const = 0;
  /// The session's challenge; never null, the same one for the session's whole life.
  [[nodiscard]] virtual const std::shared_ptr<BypassController>& bypassController() const = 0;
};

}  // namespace dormel
