#include "platform/linux/x11/PointerGrab.h"

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr Seconds RETRY = 0.1;

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

PointerGrab::PointerGrab(std::shared_ptr<Connection> connection)
    : connection_(std::move(connection)), learnLater_(connection_->loop(), [this] { learn(); }) {
  makeWindow();
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

PointerGrab::~PointerGrab() {
  want(false);
  xcb_destroy_window(*connection_, window_);
}

void PointerGrab::makeWindow() {
  window_ = connection_->newId();
  const xcb_cursor_t cursor = makeBlankCursor(*connection_);
  const std::uint32_t values[] = {1, XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_STRUCTURE_NOTIFY, cursor};
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, window_, connection_->root(), -2, -2, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_CURSOR, values);
  xcb_free_cursor(*connection_, cursor);
}

void PointerGrab::want(bool wanted) {
  isWanted_ = wanted;
  if (wanted) {
    xcb_map_window(*connection_, window_);
    attempt();
    return;
  }
  retry_.invalidate();
  learnLater_.forget();
  const bool mayBeHeld = std::exchange(isHeld_, false) || asked_;
  asked_ = {};
  if (mayBeHeld) xcb_ungrab_pointer(*connection_, XCB_CURRENT_TIME);
  xcb_unmap_window(*connection_, window_);
  connection_->flush();
}

void PointerGrab::attempt() {
  retry_.invalidate();
  // Owner events: our own windows get theirs as usual.
  asked_ = {*connection_,
            xcb_grab_pointer(*connection_, 1, window_, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME)};
  connection_->flush();
  learnLater_.ask();
}

void PointerGrab::learn() {
  const auto reply = asked_.take();
  isHeld_ = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
  if (isHeld_ || !connection_->isAlive()) {
    retry_.invalidate();
  } else {
    if (reply && reply->status == XCB_GRAB_STATUS_NOT_VIEWABLE) xcb_map_window(*connection_, window_);
    retry_ = Timer::once(connection_->loop(), RETRY, [this] { attempt(); });
  }
}

void PointerGrab::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_LEAVE_NOTIFY: {
      const auto& leave = reinterpret_cast<const xcb_leave_notify_event_t&>(event);
      if (isWanted_ && leave.event == window_ && leave.mode == XCB_NOTIFY_MODE_UNGRAB) attempt();
      break;
    }
    case XCB_UNMAP_NOTIFY:
      if (reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window == window_ && isWanted_) want(true);
      break;
    case XCB_DESTROY_NOTIFY:
      if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window != window_) break;
      makeWindow();
      if (isWanted_) want(true);
      break;
    default:
      break;
  }
}

}  // namespace dormel::x11
