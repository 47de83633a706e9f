// What was on the desktop just before the first panel covered it, kept on the server: without a compositor a fade is
// drawn over it. Main thread only.
#pragma once

#include <xcb/render.h>

#include <memory>

#include "platform/linux/Canvas.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Visuals.h"

namespace dormel::x11 {

class DesktopPicture {
 public:
  DesktopPicture(std::shared_ptr<Connection> connection, const Visuals& visuals);
  DesktopPicture(const DesktopPicture&) = delete;
  DesktopPicture& operator=(const DesktopPicture&) = delete;
  ~DesktopPicture() { drop(); }

  /// Takes the picture now; keeps the one it has, if any. Where drawing is impossible there never is one.
  void take();
  void drop();
  [[nodiscard]] bool exists() const { return pixmap_ != XCB_NONE; }

  /// In root coordinates, black where there was no screen.
  [[nodiscard]] xcb_render_picture_t picture() const { return picture_; }
  /// A pixmap of the root's depth with that part of it. The caller frees it.
  [[nodiscard]] xcb_pixmap_t copy(const PixelRect& area) const;

 private:
  std::shared_ptr<Connection> connection_;
  Visuals visuals_;
  xcb_pixmap_t pixmap_ = XCB_NONE;
  xcb_render_picture_t picture_ = XCB_NONE;
};

}  // namespace dormel::x11
