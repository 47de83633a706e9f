// Keeps our windows where they belong among the children of the root: screen-saver panels above everything that
// ever maps or raises itself, floating and status ones above whatever covers them. Acts only when a foreign window
// really is in the way, and no faster than its budget, so that it never fights another such program at full speed. Main
// thread only.
#pragma once

#include <memory>
#include <vector>

#include "platform/Windows.h"
#include "platform/common/RateLimiter.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

class Stacking {
 public:
  Stacking(std::shared_ptr<Connection> connection, const Clock& clock);

  /// From now on `window` is kept in its place; it need not be mapped yet. Also brings one that is kept already to
  /// the top of its level.
  void raise(xcb_window_t window, WindowLevel level);
  void remove(xcb_window_t window);
  [[nodiscard]] bool hasBlockers() const;

 private:
  struct Kept {
    xcb_window_t window;
    WindowLevel level;
  };
  struct Foreign {
    bool aboveScreenSaver = false;
    bool aboveFloating = false;
  };

  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] bool isOurs(xcb_window_t window) const;
  void check();
  [[nodiscard]] Foreign foreignAbove();
  /// Those, or all others in their order.
  void raiseAll(bool screenSavers);

  std::shared_ptr<Connection> connection_;
  std::vector<Kept> kept_;  ///< from bottom to top, as they should be
  RateLimiter screenSaverBudget_;
  RateLimiter floatingBudget_;
  CoalescedTimer later_;
  Subscription subscription_;
};

}  // namespace dormel::x11
