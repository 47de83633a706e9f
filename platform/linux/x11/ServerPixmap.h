// A canvas's picture on the server's side; exposures are answered from here. Only what changed is handed on: a small
// part over the wire, a large one by memory that the painter and the server share, where there is such memory.
//
// The server says when it has read that memory, and only then may it be painted into again. One such read is on its way
// at most: should its end never be told, pictures go on over the wire.
#pragma once

#include <xcb/render.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"
#include "platform/linux/x11/Visuals.h"

namespace dormel::x11 {

class ServerPixmap {
 public:
  /// `depth` is that of the pixmap when the server cannot draw (no Render): the window's own.
  ServerPixmap(std::shared_ptr<Connection> connection, const ServerFeatures& features, const Visuals& visuals,
               std::uint8_t depth);
  ServerPixmap(const ServerPixmap&) = delete;
  ServerPixmap& operator=(const ServerPixmap&) = delete;
  ~ServerPixmap();

  /// Takes `changed` over from `pixels`; everything when the size is another than before.
  void update(const Pixels& pixels, const PixelRect& changed);

  [[nodiscard]] bool isEmpty() const { return pixmap_ == XCB_NONE; }
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] xcb_pixmap_t pixmap() const { return pixmap_; }
  [[nodiscard]] xcb_render_picture_t picture() const { return picture_; }

 private:
  void allocate(int width, int height);
  void release();
  /// `part`, row after row without gaps; good until the next call.
  [[nodiscard]] const std::uint32_t* rowsOf(const Pixels& pixels, const PixelRect& part);
  [[nodiscard]] bool isShared(const Pixels& pixels, const PixelRect& part);
  [[nodiscard]] bool attach(const SharedPixels& shared);
  void detach();
  void handle(const xcb_generic_event_t& event);

  std::shared_ptr<Connection> connection_;
  Visuals visuals_;
  std::uint8_t depth_;
  int width_ = 0;
  int height_ = 0;
  xcb_pixmap_t pixmap_ = XCB_NONE;
  xcb_gcontext_t gc_ = XCB_NONE;
  xcb_render_picture_t picture_ = XCB_NONE;
  std::vector<std::uint32_t> band_;  ///< rows on their way
  bool canShare_;
  std::uint8_t completionEvent_;
  std::shared_ptr<const void> memory_;   ///< what the server has mapped
  std::uint32_t segment_ = XCB_NONE;     ///< and how it is called there
  std::shared_ptr<const void> reading_;  ///< while the server reads it
  Subscription subscription_;
};

}  // namespace dormel::x11
