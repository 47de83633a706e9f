// Whether a compositing manager runs, and the notice when one comes or goes: only with one does a window's opacity
// mean anything. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class Compositor {
 public:
  /// Without XFixes, what is found now counts for good.
  Compositor(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  [[nodiscard]] bool isRunning() const {
    learn();
    return isRunning_;
  }
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }

 private:
  void handle(const xcb_generic_event_t& event);
  void learn() const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_atom_t selection_;
  mutable Asked<&xcb_get_selection_owner_reply> asked_;
  mutable bool isRunning_ = false;
  Task onChange_;
  Subscription subscription_;
};

}  // namespace dormel::x11
