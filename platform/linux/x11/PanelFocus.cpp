#include "platform/linux/x11/PanelFocus.h"

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

PanelFocus::PanelFocus(std::shared_ptr<Connection> connection, const Clock& clock)
    : connection_(std::move(connection)), budget_(clock, 10, 1.0) {
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

xcb_window_t PanelFocus::owed() const {
  const std::lock_guard lock(mutex_);
  if (const auto reply = asked_.takeIfHere()) owed_ = reply->focus;
  return owed_;
}

void PanelFocus::focus(xcb_window_t window) {
  xcb_set_input_focus(*connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
}

void PanelFocus::makeKey(xcb_window_t window) {
  if (keyWindows_.empty()) {
    const std::lock_guard lock(mutex_);
    asked_ = {*connection_, xcb_get_input_focus(*connection_)};
  }
  std::erase(keyWindows_, window);
  keyWindows_.push_back(window);
  focus(window);
}

void PanelFocus::resign(xcb_window_t window) {
  if (std::erase(keyWindows_, window) == 0) return;
  if (!keyWindows_.empty()) {
    focus(keyWindows_.back());
    return;
  }
  // Somebody may have been given it meanwhile; it is theirs then.
  const auto reply = Asked<&xcb_get_input_focus_reply>(*connection_, xcb_get_input_focus(*connection_)).take();
  const xcb_window_t current = reply ? reply->focus : static_cast<xcb_window_t>(XCB_NONE);
  const xcb_window_t before = owed();  // known by now: it was asked first
  if (current == window || current == XCB_NONE || current == XCB_INPUT_FOCUS_POINTER_ROOT) focus(before);
  const std::lock_guard lock(mutex_);
  owed_ = XCB_NONE;
}

void PanelFocus::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != XCB_FOCUS_OUT || keyWindows_.empty()) return;
  const auto& out = reinterpret_cast<const xcb_focus_out_event_t&>(event);
  const bool byGrab = out.mode == XCB_NOTIFY_MODE_GRAB || out.mode == XCB_NOTIFY_MODE_UNGRAB;
  if (out.event != keyWindows_.back() || byGrab || out.detail == XCB_NOTIFY_DETAIL_INFERIOR) return;
  if (budget_.spend()) focus(out.event);
}

}  // namespace dormel::x11
