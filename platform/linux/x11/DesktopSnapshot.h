// What was on the desktop just before the first panel covered it: without a compositor, fades in and out are drawn
// over it. It is kept, on the server, as long as the desktop is covered; what lies under the panels later cannot be
// had without uncovering it. Main thread only.
#pragma once

#include <xcb/render.h>

#include <memory>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Visuals.h"

namespace dormel::x11 {

class DesktopSnapshot {
 public:
  DesktopSnapshot(std::shared_ptr<Connection> connection, const Visuals& visuals);
  DesktopSnapshot(const DesktopSnapshot&) = delete;
  DesktopSnapshot& operator=(const DesktopSnapshot&) = delete;
  ~DesktopSnapshot() { drop(); }

  /// Takes the picture now; keeps the one it has, if any. Where drawing is impossible there never is one.
  void take();
  void drop();
  [[nodiscard]] bool exists() const { return pixmap_ != XCB_NONE; }

  /// In root coordinates, black where there was no screen.
  [[nodiscard]] xcb_render_picture_t picture() const { return picture_; }

 private:
  std::shared_ptr<Connection> connection_;
  Visuals visuals_;
  xcb_pixmap_t pixmap_ = XCB_NONE;
  xcb_render_picture_t picture_ = XCB_NONE;
};

}  // namespace dormel::x11
