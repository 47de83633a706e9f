#include "platform/linux/x11/KeyboardGrab.h"

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr Seconds RETRY = 0.1;

}  // namespace

KeyboardGrab::KeyboardGrab(std::shared_ptr<Connection> connection, Task onLost)
    : connection_(std::move(connection)), onLost_(std::move(onLost)) {
  makeWindow();
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

KeyboardGrab::~KeyboardGrab() {
  want(false);
  xcb_destroy_window(*connection_, window_);
}

void KeyboardGrab::makeWindow() {
  // A grab window must be viewable; it need not be visible. Off the screen it is in nobody's way.
  window_ = connection_->newId();
  const std::uint32_t values[] = {1, XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, window_, connection_->root(), -2, -2, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    values);
  xcb_map_window(*connection_, window_);
}

void KeyboardGrab::want(bool wanted) {
  isWanted_ = wanted;
  if (wanted) {
    menusToldToClose_ = false;
    attempt();
    return;
  }
  retry_.invalidate();
  if (!std::exchange(isHeld_, false)) return;
  xcb_ungrab_keyboard(*connection_, XCB_CURRENT_TIME);
  connection_->sync();  // whoever asks next, on another connection, finds it free
}

void KeyboardGrab::attempt() {
  const auto cookie =
      xcb_grab_keyboard(*connection_, 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto reply = owned(xcb_grab_keyboard_reply(*connection_, cookie, nullptr));
  isHeld_ = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
  if (isHeld_ || !connection_->isAlive()) {
    retry_.invalidate();
    return;
  }
  if (reply && reply->status == XCB_GRAB_STATUS_NOT_VIEWABLE) xcb_map_window(*connection_, window_);
  if (!std::exchange(menusToldToClose_, true)) {
    // An open menu goes away, and its grab with it, when it loses the input focus.
    xcb_set_input_focus(*connection_, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME);
  }
  connection_->flush();
  retry_ = Timer::once(connection_->loop(), RETRY, [this] { attempt(); });
}

void KeyboardGrab::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_FOCUS_OUT: {
      const auto& focus = reinterpret_cast<const xcb_focus_out_event_t&>(event);
      if (focus.event == window_ && focus.mode == XCB_NOTIFY_MODE_UNGRAB) lost();
      break;
    }
    case XCB_UNMAP_NOTIFY:
      if (reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window != window_) break;
      xcb_map_window(*connection_, window_);
      lost();
      break;
    case XCB_DESTROY_NOTIFY:
      if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window != window_) break;
      makeWindow();
      lost();
      break;
    default:
      break;
  }
}

void KeyboardGrab::lost() {
  if (!isWanted_) return;
  const bool wasHeld = std::exchange(isHeld_, false);
  menusToldToClose_ = false;
  attempt();
  if (wasHeld && onLost_) onLost_();
}

}  // namespace dormel::x11
