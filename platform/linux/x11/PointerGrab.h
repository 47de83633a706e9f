// The pointer for this program's own windows alone, its cursor invisible: asked for again every 100 ms while another
// program has it. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

class PointerGrab {
 public:
  explicit PointerGrab(std::shared_ptr<Connection> connection);
  PointerGrab(const PointerGrab&) = delete;
  PointerGrab& operator=(const PointerGrab&) = delete;
  ~PointerGrab();

  void want(bool wanted);

 private:
  void handle(const xcb_generic_event_t& event);
  void makeWindow();
  void attempt();
  void learn();

  std::shared_ptr<Connection> connection_;
  xcb_window_t window_ = XCB_NONE;
  bool isWanted_ = false;
  bool isHeld_ = false;
  Asked<&xcb_grab_pointer_reply> asked_;  ///< looked at in the next turn: nobody waits for the pointer
  CoalescedTimer learnLater_;
  Timer retry_;
  Subscription subscription_;
};

/// A cursor that shows nothing. The caller frees it.
[[nodiscard]] xcb_cursor_t makeBlankCursor(Connection& connection);

}  // namespace dormel::x11
