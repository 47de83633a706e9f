// Whether the whole keyboard can be taken here: on a real X server with XInput 2.2 yes; through the X bridge of a
// Wayland compositor, which shows a client only the keys that are meant for X clients, no; without a display no.
#pragma once

#include <memory>

#include "platform/Accessibility.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class AccessibilityX11 : public Accessibility {
 public:
  AccessibilityX11(std::shared_ptr<Connection> connection, const ServerFeatures& features)
      : connection_(std::move(connection)), isCapable_(features.xinput22 && !features.xwayland) {}
  [[nodiscard]] bool isProcessTrusted() const override { return connection_ && connection_->isAlive() && isCapable_; }

 private:
  std::shared_ptr<Connection> connection_;
  bool isCapable_;
};

}  // namespace dormel::x11
