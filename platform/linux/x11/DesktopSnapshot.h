// What was on the desktop just before the first panel covered it: without a compositor, fades in and out are drawn
// over it. It is kept, on the server, as long as the desktop is covered; what lies under the panels later cannot be
// had without uncovering it.
//
// The server takes milliseconds to copy large screens, and nobody is to wait for that before the keyboard is taken. A
// window that is mapped without a ground leaves what it covers on the screen, so the copy can be made at the first
// look: as long as nothing has been painted over it. Main thread only.
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

  /// There is one from now on, of what is on the screen now; it keeps the one it has. Where drawing is impossible there
  /// never is one.
  void want() { isWanted_ = visuals_.canDraw(); }
  /// Copies what is on the screen, if that has not been done: it is about to be painted over.
  void settle() const;
  void drop();
  [[nodiscard]] bool exists() const { return isWanted_; }

  /// In root coordinates, black where there was no screen. None if the server has no room for it.
  [[nodiscard]] xcb_render_picture_t picture() const {
    settle();
    return picture_;
  }

 private:
  std::shared_ptr<Connection> connection_;
  Visuals visuals_;
  bool isWanted_ = false;
  mutable xcb_pixmap_t pixmap_ = XCB_NONE;
  mutable xcb_render_picture_t picture_ = XCB_NONE;
};

}  // namespace dormel::x11
