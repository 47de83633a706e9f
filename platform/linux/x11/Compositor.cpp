#include "platform/linux/x11/Compositor.h"

#include <xcb/xfixes.h>

#include <utility>

namespace dormel::x11 {

Compositor::Compositor(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features) {
  selection_ = connection_->atom("_NET_WM_CM_S" + std::to_string(connection_->screenNumber()));
  if (features_.xfixes) {
    xcb_xfixes_select_selection_input(*connection_, connection_->root(), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  }
  asked_ = {*connection_, xcb_get_selection_owner(*connection_, selection_)};
}

void Compositor::learn() const {
  if (!asked_) return;
  const auto owner = asked_.take();
  isRunning_ = owner && owner->owner != XCB_NONE;
}

void Compositor::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != features_.xfixesEvent + XCB_XFIXES_SELECTION_NOTIFY) return;
  const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
  if (notify.selection != selection_) return;
  learn();
  const bool runs = notify.owner != XCB_NONE;
  if (std::exchange(isRunning_, runs) != runs && onChange_) onChange_();
}

}  // namespace dormel::x11
