// The pixel formats of a server's windows, as far as panels need them.
#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

struct Visuals {
  xcb_visualid_t rootVisual = 0;
  std::uint8_t rootDepth = 0;
  xcb_render_pictformat_t rootFormat = 0;  ///< 0 without Render

  /// 32 bits with an alpha channel; 0 where the server has none.
  xcb_visualid_t argbVisual = 0;
  xcb_colormap_t argbColormap = 0;
  xcb_render_pictformat_t argbFormat = 0;

  [[nodiscard]] bool canDraw() const { return rootFormat != 0 && argbFormat != 0; }

  /// Makes the colormap, which lives as long as the connection.
  [[nodiscard]] static Visuals query(Connection& connection, const ServerFeatures& features);
};

}  // namespace dormel::x11
