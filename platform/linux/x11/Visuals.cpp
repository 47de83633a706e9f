#include "platform/linux/x11/Visuals.h"

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr std::uint8_t ARGB_DEPTH = 32;

bool isArgb(const xcb_render_pictforminfo_t& format) {
  const auto& d = format.direct;
  return format.type == XCB_RENDER_PICT_TYPE_DIRECT && format.depth == ARGB_DEPTH && d.alpha_mask == 0xff &&
         d.alpha_shift == 24 && d.red_shift == 16 && d.green_shift == 8 && d.blue_shift == 0;
}

void findFormats(Connection& connection, Visuals& visuals) {
  const auto reply =
      owned(xcb_render_query_pict_formats_reply(connection, xcb_render_query_pict_formats(connection), nullptr));
  if (!reply) return;
  for (auto it = xcb_render_query_pict_formats_formats_iterator(reply.get()); it.rem > 0;
       xcb_render_pictforminfo_next(&it)) {
    if (visuals.argbFormat == 0 && isArgb(*it.data)) visuals.argbFormat = it.data->id;
  }
  auto screen = xcb_render_query_pict_formats_screens_iterator(reply.get());
  for (int i = 0; i < connection.screenNumber() && screen.rem > 1; ++i) xcb_render_pictscreen_next(&screen);
  if (screen.rem == 0) return;
  for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
       xcb_render_pictdepth_next(&depth)) {
    for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem > 0;
         xcb_render_pictvisual_next(&visual)) {
      if (visual.data->visual == visuals.rootVisual) visuals.rootFormat = visual.data->format;
      if (visuals.argbVisual == 0 && visuals.argbFormat != 0 && visual.data->format == visuals.argbFormat) {
        visuals.argbVisual = visual.data->visual;
      }
    }
  }
}

}  // namespace

Visuals Visuals::query(Connection& connection, const ServerFeatures& features) {
  Visuals visuals;
  visuals.rootVisual = connection.screen().root_visual;
  visuals.rootDepth = connection.screen().root_depth;
  if (features.render) findFormats(connection, visuals);
  if (visuals.argbVisual != 0) {
    visuals.argbColormap = connection.newId();
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, visuals.argbColormap, connection.root(),
                        visuals.argbVisual);
  }
  return visuals;
}

}  // namespace dormel::x11
