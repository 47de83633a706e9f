// The whole keyboard, or the pointer, for us alone: an active grab on a window of its own, kept for as long as it is
// wanted. Another program may hold the device at the moment (an open menu, a held button); then it is asked for again
// at once and every 100 ms. Main thread only; needs its connection to be pumped.
#pragma once

#include <memory>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

class InputGrab {
 public:
  enum class Device {
    keyboard,  ///< whoever wants it knows at once whether it is held
    pointer,   ///< with an invisible cursor; our own windows get their events as usual. Nobody waits for it
  };

  /// `onLost` is called when a grab that was held is gone, whether or not it could be taken again at once.
  InputGrab(std::shared_ptr<Connection> connection, Device device, Task onLost = {});
  InputGrab(const InputGrab&) = delete;
  InputGrab& operator=(const InputGrab&) = delete;
  ~InputGrab();

  void want(bool wanted);
  [[nodiscard]] bool isHeld() const { return isHeld_ && connection_->isAlive(); }

 private:
  void handle(const xcb_generic_event_t& event);
  void makeWindow();
  void attempt();
  void learn(std::uint8_t status);
  void lost();

  std::shared_ptr<Connection> connection_;
  const Device device_;
  Task onLost_;
  xcb_window_t window_ = XCB_NONE;
  bool isWanted_ = false;
  bool isHeld_ = false;
  bool menusToldToClose_ = false;
  Asked<&xcb_grab_pointer_reply> askedPointer_;
  CoalescedTimer learnLater_;
  Timer retry_;
  Subscription subscription_;
};

/// A cursor that shows nothing. The caller frees it.
[[nodiscard]] xcb_cursor_t makeBlankCursor(Connection& connection);

}  // namespace dormel::x11
