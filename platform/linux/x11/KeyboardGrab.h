// The whole keyboard, for us alone: an active grab on a window of its own, kept for as long as it is wanted.
// Another program may hold the keyboard at the moment (an open menu, a held button); then it is asked for again at
// once and every 100 ms. Main thread only; needs its connection to be pumped.
#pragma once

#include <functional>
#include <memory>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

class KeyboardGrab {
 public:
  /// `onLost` is called when a grab that was held is gone, whether or not it could be taken again at once.
  KeyboardGrab(std::shared_ptr<Connection> connection, Task onLost);
  KeyboardGrab(const KeyboardGrab&) = delete;
  KeyboardGrab& operator=(const KeyboardGrab&) = delete;
  ~KeyboardGrab();

  void want(bool wanted);
  [[nodiscard]] bool isHeld() const { return isHeld_ && connection_->isAlive(); }

 private:
  void handle(const xcb_generic_event_t& event);
  void makeWindow();
  void attempt();
  void lost();

  std::shared_ptr<Connection> connection_;
  Task onLost_;
  xcb_window_t window_ = XCB_NONE;
  bool isWanted_ = false;
  bool isHeld_ = false;
  bool menusToldToClose_ = false;
  Timer retry_;
  Subscription subscription_;
};

}  // namespace dormel::x11
