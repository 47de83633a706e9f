// The event tap on X: the server's raw key events, which everybody who asks gets under anybody's grab, tell what
// the keys do; a grab of the whole keyboard keeps them from everybody else. The grab is what "enabled" means. What
// the grab swallowed cannot be passed on after all: the verdict of the callback has no effect here.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/Keyboard.h"
#include "platform/linux/x11/AccessXSuspension.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class EventTapsX11 : public EventTaps {
 public:
  /// Every tap gets a connection of its own to the same display, and holds `care` while it is to be enabled. Without a
  /// connection there are no taps, and no care.
  EventTapsX11(std::shared_ptr<Connection> connection, const ServerFeatures& features,
               std::shared_ptr<AccessXSuspension> care);

  /// Called from the run loop when a tap made from now on loses its connection: it neither swallows nor tells
  /// anything any more, and enabling it again does not help.
  void setOnLost(Task onLost) { onLost_ = std::move(onLost); }

  [[nodiscard]] std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) override;

 private:
  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  std::shared_ptr<AccessXSuspension> care_;
  Task onLost_;
};

}  // namespace dormel::x11
