#include "platform/linux/x11/InputGrab.h"

#include <utility>

namespace dormel::x11 {
namespace {

constexpr Seconds RETRY = 0.1;
constexpr std::uint8_t NO_ANSWER = 0xff;

template <typename T>
std::uint8_t statusOf(const Reply<T>& reply) {
  return reply ? reply->status : NO_ANSWER;
}

}  // namespace

xcb_cursor_t makeBlankCursor(Connection& connection) {
  const xcb_pixmap_t bitmap = connection.newId();
  const xcb_gcontext_t gc = connection.newId();
  const xcb_cursor_t cursor = connection.newId();
  xcb_create_pixmap(connection, 1, bitmap, connection.root(), 1, 1);
  const std::uint32_t foreground = 0;
  xcb_create_gc(connection, gc, bitmap, XCB_GC_FOREGROUND, &foreground);
  const xcb_rectangle_t all{0, 0, 1, 1};
  xcb_poly_fill_rectangle(connection, bitmap, gc, 1, &all);
  xcb_create_cursor(connection, cursor, bitmap, bitmap, 0, 0, 0, 0, 0, 0, 0, 0);
  xcb_free_gc(connection, gc);
  xcb_free_pixmap(connection, bitmap);
  return cursor;
}

InputGrab::InputGrab(std::shared_ptr<Connection> connection, Device device, Task onLost)
    : connection_(std::move(connection)),
      device_(device),
      onLost_(std::move(onLost)),
      learnLater_(connection_->loop(), [this] { learn(statusOf(askedPointer_.take())); }) {
  makeWindow();
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

InputGrab::~InputGrab() {
  want(false);
  xcb_destroy_window(*connection_, window_);
}

void InputGrab::makeWindow() {
  // A grab window must be viewable; it need not be visible. Off the screen it is in nobody's way.
  window_ = connection_->newId();
  const bool isPointer = device_ == Device::pointer;
  const std::uint32_t told = isPointer ? XCB_EVENT_MASK_LEAVE_WINDOW : XCB_EVENT_MASK_FOCUS_CHANGE;
  const xcb_cursor_t cursor = isPointer ? makeBlankCursor(*connection_) : xcb_cursor_t{XCB_NONE};
  const std::uint32_t values[] = {1, told | XCB_EVENT_MASK_STRUCTURE_NOTIFY, cursor};
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, window_, connection_->root(), -2, -2, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_CURSOR, values);
  if (isPointer) xcb_free_cursor(*connection_, cursor);
  xcb_map_window(*connection_, window_);
}

void InputGrab::want(bool wanted) {
  isWanted_ = wanted;
  if (wanted) {
    menusToldToClose_ = false;
    attempt();
    return;
  }
  retry_.invalidate();
  learnLater_.forget();
  const bool mayBeHeld = std::exchange(isHeld_, false) || askedPointer_;
  askedPointer_ = {};
  if (!mayBeHeld) return;
  if (device_ == Device::pointer) {
    xcb_ungrab_pointer(*connection_, XCB_CURRENT_TIME);
  } else {
    xcb_ungrab_keyboard(*connection_, XCB_CURRENT_TIME);
  }
  connection_->sync();  // whoever asks next, on another connection, finds it free
}

void InputGrab::attempt() {
  retry_.invalidate();
  if (device_ == Device::pointer) {
    askedPointer_ = {
        *connection_,
        xcb_grab_pointer(*connection_, 1, window_, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME)};
    connection_->flush();
    learnLater_.ask();
    return;
  }
  const auto cookie =
      xcb_grab_keyboard(*connection_, 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  learn(statusOf(owned(xcb_grab_keyboard_reply(*connection_, cookie, nullptr))));
}

void InputGrab::learn(std::uint8_t status) {
  isHeld_ = status == XCB_GRAB_STATUS_SUCCESS;
  if (isHeld_ || !connection_->isAlive()) return;
  if (status == XCB_GRAB_STATUS_NOT_VIEWABLE) xcb_map_window(*connection_, window_);
  if (device_ == Device::keyboard && !std::exchange(menusToldToClose_, true)) {
    // An open menu goes away, and its grab with it, when it loses the input focus.
    xcb_set_input_focus(*connection_, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME);
  }
  connection_->flush();
  retry_ = Timer::once(connection_->loop(), RETRY, [this] { attempt(); });
}

void InputGrab::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_FOCUS_OUT: {
      const auto& focus = reinterpret_cast<const xcb_focus_out_event_t&>(event);
      if (focus.event == window_ && focus.mode == XCB_NOTIFY_MODE_UNGRAB) lost();
      break;
    }
    case XCB_LEAVE_NOTIFY: {
      const auto& leave = reinterpret_cast<const xcb_leave_notify_event_t&>(event);
      if (leave.event == window_ && leave.mode == XCB_NOTIFY_MODE_UNGRAB) lost();
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

void InputGrab::lost() {
  if (!isWanted_) return;
  const bool wasHeld = std::exchange(isHeld_, false);
  menusToldToClose_ = false;
  attempt();
  if (wasHeld && onLost_) onLost_();
}

}  // namespace dormel::x11
