#include "platform/linux/x11/DesktopSnapshot.h"

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

DesktopSnapshot::DesktopSnapshot(std::shared_ptr<Connection> connection, const Visuals& visuals)
    : connection_(std::move(connection)), visuals_(visuals) {}

void DesktopSnapshot::settle() const {
  if (!isWanted_ || pixmap_ != XCB_NONE) return;
  Connection& c = *connection_;
  const auto root = owned(xcb_get_geometry_reply(c, xcb_get_geometry(c, c.root()), nullptr));
  if (!root) return;
  pixmap_ = c.newId();
  picture_ = c.newId();
  xcb_create_pixmap(c, visuals_.rootDepth, pixmap_, c.root(), root->width, root->height);
  const xcb_gcontext_t gc = c.newId();
  const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(c, gc, c.root(), XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
  xcb_copy_area(c, c.root(), pixmap_, gc, 0, 0, 0, 0, root->width, root->height);
  xcb_free_gc(c, gc);
  xcb_render_create_picture(c, picture_, pixmap_, visuals_.rootFormat, 0, nullptr);
}

void DesktopSnapshot::drop() {
  isWanted_ = false;
  if (pixmap_ == XCB_NONE) return;
  xcb_render_free_picture(*connection_, std::exchange(picture_, XCB_NONE));
  xcb_free_pixmap(*connection_, std::exchange(pixmap_, XCB_NONE));
}

}  // namespace dormel::x11
