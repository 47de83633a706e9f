// The one window class of a blocking session: the full-screen black blocker, the grace pill, the permission card.
// It passes key events that reach it to the bypass controller, which is the only road when the system-wide
// interceptor could not start. Main thread only.
#pragma once

#include <memory>
#include <vector>

#include "overlay/OverlaySession.h"
#include "platform/Geometry.h"
#include "platform/Screens.h"
#include "platform/Windows.h"

namespace dormel {

class BlockerWindow {
 public:
  enum class Kind { blocker, gracePill, permission };

  /// A blocker over all of `screen`, showing the session's overlay; above everything, on every space, black, not
  /// ordered in. Refers to the session weakly: key events that come after it is gone do nothing.
  [[nodiscard]] static std::shared_ptr<BlockerWindow> blocker(const Screen& screen,
                                                              const std::shared_ptr<OverlaySession>& session);

  /// The grace countdown, a clear floating pill with a shadow that can be dragged, laid out at 400 × 80.
  [[nodiscard]] static std::shared_ptr<BlockerWindow> gracePill(const std::shared_ptr<OverlaySession>& session);

  /// The permission card, a clear floating panel laid out at 520 × 400; belongs to no session.
  [[nodiscard]] static std::shared_ptr<BlockerWindow> permission(std::shared_ptr<View> card);

  BlockerWindow(const BlockerWindow&) = delete;
  BlockerWindow& operator=(const BlockerWindow&) = delete;
  ~BlockerWindow() = default;

  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] bool canBecomeKeyWindow() const { return kind_ == Kind::blocker; }
  [[nodiscard]] bool canBecomeMainWindow() const { return kind_ == Kind::blocker; }

  [[nodiscard]] Window& window() const { return *window_; }
  [[nodiscard]] const std::shared_ptr<Window>& sharedWindow() const { return window_; }

 private:
  BlockerWindow(Kind kind, const Rect& contentRect, const std::shared_ptr<OverlaySession>& session);

  std::weak_ptr<OverlaySession> session_;
  Kind kind_;
  std::shared_ptr<Window> window_;
};

}  // namespace dormel
