// The pointer for this program's own windows alone, its cursor invisible: asked for again every 100 ms while another
// program has it. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

class PointerGrab {
 public:
  explicit PointerGrab(std::shared_ptr<Connection> connection);
  PointerGrab(const PointerGrab&) = delete;
  PointerGrab& operator=(const PointerGrab&) = delete;
  ~PointerGrab();

  void want(bool wanted);
  [[nodiscard]] bool isHeld() const { return isHeld_; }

 private:
  void handle(const xcb_generic_event_t& event);
  void makeWindow();
  void attempt();

  std::shared_ptr<Connection> connection_;
  xcb_window_t window_ = XCB_NONE;
  bool isWanted_ = false;
  bool isHeld_ = false;
  Timer retry_;
  Subscription subscription_;
};

/// A cursor that shows nothing. The caller frees it.
[[nodiscard]] xcb_cursor_t makeBlankCursor(Connection& connection);

}  // namespace dormel::x11
