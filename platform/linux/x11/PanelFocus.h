// The input focus of key panels. Whoever had it before the first of them gets it back after the last one.
// Main thread only, but for `owed`.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/common/RateLimiter.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

class PanelFocus {
 public:
  PanelFocus(std::shared_ptr<Connection> connection, const Clock& clock);

  /// Focuses `window`, which must be mapped, and keeps it focused as long as it is the last one made key.
  void makeKey(xcb_window_t window);
  /// Before `window` is unmapped or destroyed; any window may be named.
  void resign(xcb_window_t window);

  /// Who is to get it back, while a panel has it; else none, also as long as the server has not answered a question
  /// that was sent after the panel was made key. Any thread; waits for nothing.
  [[nodiscard]] xcb_window_t owed() const;

 private:
  void handle(const xcb_generic_event_t& event);
  void focus(xcb_window_t window);

  std::shared_ptr<Connection> connection_;
  std::vector<xcb_window_t> keyWindows_;  ///< the last one has the focus
  mutable std::mutex mutex_;
  mutable Asked<&xcb_get_input_focus_reply> asked_;  ///< who had it; sent before it is taken. Under the mutex
  mutable xcb_window_t owed_ = XCB_NONE;             ///< under the mutex
  RateLimiter budget_;
  Subscription subscription_;
};

}  // namespace dormel::x11
