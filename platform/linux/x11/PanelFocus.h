// The input focus of key panels. Whoever had it before the first of them gets it back after the last one.
// Main thread only, but for `owed`.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "platform/common/RateLimiter.h"
#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

class PanelFocus {
 public:
  PanelFocus(std::shared_ptr<Connection> connection, const Clock& clock);

  /// Focuses `window`, which must be mapped, and keeps it focused as long as it is the last one made key.
  void makeKey(xcb_window_t window);
  /// Before `window` is unmapped or destroyed; any window may be named.
  void resign(xcb_window_t window);

  /// Who is to get it back, while a panel has it; else none. Any thread.
  [[nodiscard]] xcb_window_t owed() const { return owed_; }

 private:
  void handle(const xcb_generic_event_t& event);
  void focus(xcb_window_t window);
  [[nodiscard]] xcb_window_t focused();

  std::shared_ptr<Connection> connection_;
  std::vector<xcb_window_t> keyWindows_;  ///< the last one has the focus
  std::atomic<xcb_window_t> owed_ = XCB_NONE;
  RateLimiter budget_;
  Subscription subscription_;
};

}  // namespace dormel::x11
