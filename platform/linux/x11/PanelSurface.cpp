#include "platform/linux/x11/PanelSurface.h"

#include <xcb/shape.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/common/PixelRect.h"
#include "platform/linux/x11/AlphaRegion.h"

namespace dormel::x11 {
namespace {

xcb_render_picture_t makeShade(Connection& connection, double alpha) {
  const xcb_render_picture_t shade = connection.newId();
  const auto a = static_cast<std::uint16_t>(std::lround(std::clamp(alpha, 0.0, 1.0) * 0xffff));
  xcb_render_create_solid_fill(connection, shade, {0, 0, 0, a});
  return shade;
}

std::int16_t s16(int value) { return static_cast<std::int16_t>(value); }
std::uint16_t u16(int value) { return static_cast<std::uint16_t>(value); }

}  // namespace

PanelSurface::PanelSurface(const PanelContext& environment, WindowBackground ground)
    : env_(environment),
      ground_(ground),
      isArgb_(ground == WindowBackground::clear && environment.visuals.argbVisual != 0) {}

PanelSurface::~PanelSurface() { attach(XCB_NONE, {}); }

void PanelSurface::attach(xcb_window_t window, const PixelRect& area) {
  Connection& c = *env_.connection;
  if (picture_ != XCB_NONE) xcb_render_free_picture(c, std::exchange(picture_, XCB_NONE));
  if (gc_ != XCB_NONE) xcb_free_gc(c, std::exchange(gc_, XCB_NONE));
  window_ = window;
  area_ = area;
  isMapped_ = false;
  fadeWasDrawn_ = false;
  opacity_ = UINT32_MAX;
  if (window == XCB_NONE) return;
  gc_ = c.newId();
  const std::uint32_t noExposures = 0;
  xcb_create_gc(c, gc_, window, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
  if (env_.visuals.canDraw()) {
    picture_ = c.newId();
    xcb_render_create_picture(c, picture_, window, isArgb_ ? env_.visuals.argbFormat : env_.visuals.rootFormat, 0,
                              nullptr);
  }
  applyAlpha();
  applyShape();
}

void PanelSurface::setArea(const PixelRect& area) {
  area_ = area;
  if (isDrawnFade() && isMapped_) paintFade();
}

void PanelSurface::setAlpha(double alpha) {
  alpha_ = std::clamp(alpha, 0.0, 1.0);
  applyAlpha();
}

bool PanelSurface::isDrawnFade() const {
  return ground_ == WindowBackground::black && alpha_ < 1 && !env_.compositor.isRunning() && env_.desktop.exists();
}

bool PanelSurface::covers() const {
  return ground_ == WindowBackground::black && opacity_ == UINT32_MAX && !isDrawnFade();
}

void PanelSurface::applyAlpha() {
  if (window_ == XCB_NONE) return;
  setOpacityProperty(env_.compositor.isRunning() ? alpha_ : 1);
  if (ground_ == WindowBackground::clear) {
    if (!env_.compositor.isRunning()) applyShape();
    return;
  }
  if (!isMapped_) return;
  if (isDrawnFade()) {
    fadeWasDrawn_ = true;
    paintFade();
  } else if (std::exchange(fadeWasDrawn_, false)) {
    groundBlack();
    for (const auto& r : aroundContent()) {
      if (r.width > 0 && r.height > 0) xcb_clear_area(*env_.connection, 0, window_, r.x, r.y, r.width, r.height);
    }
    paintContent(contentArea());
  }
}

void PanelSurface::setOpacityProperty(double opacity) {
  const auto value = static_cast<std::uint32_t>(std::llround(opacity * UINT32_MAX));
  if (value == opacity_) return;
  opacity_ = value;
  if (value == UINT32_MAX) {
    xcb_delete_property(*env_.connection, window_, env_.connection->atom("_NET_WM_WINDOW_OPACITY"));
  } else {
    xcb_change_property(*env_.connection, XCB_PROP_MODE_REPLACE, window_,
                        env_.connection->atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 32, 1, &value);
  }
}

void PanelSurface::groundBlack() {
  const std::uint32_t black = env_.connection->screen().black_pixel;
  xcb_change_window_attributes(*env_.connection, window_, XCB_CW_BACK_PIXEL, &black);
}

void PanelSurface::prepareMap() {
  applyAlpha();
  if (ground_ == WindowBackground::clear) return;
  if (!isDrawnFade()) {
    groundBlack();
    return;
  }
  // The server paints nothing of its own then: what is on the screen stays there until we paint over it.
  const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
  xcb_change_window_attributes(*env_.connection, window_, XCB_CW_BACK_PIXMAP, &none);
}

void PanelSurface::finishMap() {
  isMapped_ = true;
  if (!isDrawnFade()) return;
  fadeWasDrawn_ = true;
  if (alpha_ > 0) paintFade();
}

PixelRect PanelSurface::contentArea() const {
  if (!content_) return {};
  if (ground_ == WindowBackground::clear) return {0, 0, content_->width(), content_->height()};
  return {(area_.width - content_->width()) / 2, (area_.height - content_->height()) / 2, content_->width(),
          content_->height()};
}

void PanelSurface::updateContent(const Pixels& pixels, const PixelRect& changed) {
  if (!content_) {
    const std::uint8_t depth = isArgb_ ? std::uint8_t{32} : env_.visuals.rootDepth;
    content_ = std::make_unique<ServerPixmap>(env_.connection, env_.features, env_.visuals, depth);
  }
  const PixelRect before = contentArea();
  content_->update(pixels, changed);
  const PixelRect now = contentArea();
  if (ground_ == WindowBackground::clear) {
    auto outline = opaqueRegion(pixels);
    const bool isSame =
        std::equal(outline.begin(), outline.end(), outline_.begin(), outline_.end(), [](const auto& a, const auto& b) {
          return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
        });
    if (!isSame) {
      outline_ = std::move(outline);
      applyShape();
    }
  }
  if (window_ == XCB_NONE || !isMapped_) return;
  if (isDrawnFade()) {
    paintFade();
    return;
  }
  if (before != now && !before.empty()) {
    xcb_clear_area(*env_.connection, 0, window_, s16(before.x), s16(before.y), u16(before.width), u16(before.height));
  }
  const PixelRect part{now.x + changed.x, now.y + changed.y, changed.width, changed.height};
  paintContent(before == now ? part : now);
}

void PanelSurface::clearContent() {
  const PixelRect before = contentArea();
  content_.reset();
  if (window_ == XCB_NONE || !isMapped_ || before.empty()) return;
  if (isDrawnFade()) {
    paintFade();
  } else {
    xcb_clear_area(*env_.connection, 0, window_, s16(before.x), s16(before.y), u16(before.width), u16(before.height));
  }
}

void PanelSurface::paintContent(const PixelRect& part) {
  const PixelRect content = contentArea();
  const PixelRect p = intersection(part, content);
  if (p.empty()) return;
  const int sourceX = p.x - content.x;
  const int sourceY = p.y - content.y;
  if (picture_ != XCB_NONE) {
    // "Source": on the black ground premultiplied pixels are what blending would give, and nothing flickers.
    xcb_render_composite(*env_.connection, XCB_RENDER_PICT_OP_SRC, content_->picture(), XCB_RENDER_PICTURE_NONE,
                         picture_, s16(sourceX), s16(sourceY), 0, 0, s16(p.x), s16(p.y), u16(p.width), u16(p.height));
  } else {
    xcb_copy_area(*env_.connection, content_->pixmap(), window_, gc_, s16(sourceX), s16(sourceY), s16(p.x), s16(p.y),
                  u16(p.width), u16(p.height));
  }
}

std::vector<xcb_rectangle_t> PanelSurface::aroundContent() const {
  const PixelRect window{0, 0, area_.width, area_.height};
  const PixelRect content = intersection(contentArea(), window);
  if (content.empty()) return {{0, 0, u16(window.width), u16(window.height)}};
  const int right = content.x + content.width;
  const int bottom = content.y + content.height;
  return {{0, 0, u16(window.width), u16(content.y)},
          {0, s16(content.y), u16(content.x), u16(content.height)},
          {s16(right), s16(content.y), u16(window.width - right), u16(content.height)},
          {0, s16(bottom), u16(window.width), u16(window.height - bottom)}};
}

void PanelSurface::paintFade() {
  Connection& c = *env_.connection;
  const xcb_render_picture_t remaining = makeShade(c, 1 - alpha_);
  const PixelRect window{0, 0, area_.width, area_.height};
  const PixelRect content = intersection(contentArea(), window);

  // The desktop as far as it still shows, everywhere but under the content.
  const auto around = aroundContent();
  xcb_render_set_picture_clip_rectangles(c, picture_, 0, 0, static_cast<std::uint32_t>(around.size()), around.data());
  xcb_render_composite(c, XCB_RENDER_PICT_OP_SRC, env_.desktop.picture(), remaining, picture_, s16(area_.x),
                       s16(area_.y), 0, 0, 0, 0, u16(window.width), u16(window.height));
  const std::uint32_t noClip = XCB_NONE;
  xcb_render_change_picture(c, picture_, XCB_RENDER_CP_CLIP_MASK, &noClip);

  // Under it and the content itself, put together out of sight: the window never shows one without the other.
  if (!content.empty()) {
    const xcb_pixmap_t buffer = c.newId();
    const xcb_render_picture_t bufferPicture = c.newId();
    xcb_create_pixmap(c, env_.visuals.rootDepth, buffer, window_, u16(content.width), u16(content.height));
    xcb_render_create_picture(c, bufferPicture, buffer, env_.visuals.rootFormat, 0, nullptr);
    xcb_render_composite(c, XCB_RENDER_PICT_OP_SRC, env_.desktop.picture(), remaining, bufferPicture,
                         s16(area_.x + content.x), s16(area_.y + content.y), 0, 0, 0, 0, u16(content.width),
                         u16(content.height));
    const xcb_render_picture_t present = makeShade(c, alpha_);
    const PixelRect whole = contentArea();
    // "Add": the share of the desktop that the content hides is gone already. "Over" would take it a second time, and
    // the content would stand in a darker box.
    xcb_render_composite(c, XCB_RENDER_PICT_OP_ADD, content_->picture(), present, bufferPicture,
                         s16(content.x - whole.x), s16(content.y - whole.y), 0, 0, 0, 0, u16(content.width),
                         u16(content.height));
    xcb_copy_area(c, buffer, window_, gc_, 0, 0, s16(content.x), s16(content.y), u16(content.width),
                  u16(content.height));
    xcb_render_free_picture(c, present);
    xcb_render_free_picture(c, bufferPicture);
    xcb_free_pixmap(c, buffer);
  }
  xcb_render_free_picture(c, remaining);
}

void PanelSurface::applyShape() {
  if (window_ == XCB_NONE || ground_ != WindowBackground::clear || !env_.features.shape) return;
  // A shadow is nothing that a click meets.
  xcb_shape_rectangles(*env_.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_YX_BANDED, window_, 0,
                       0, static_cast<std::uint32_t>(outline_.size()), outline_.data());
  if (env_.compositor.isRunning()) {
    xcb_shape_mask(*env_.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0, XCB_PIXMAP_NONE);
    return;
  }
  const std::size_t count = alpha_ < 0.5 ? 0 : outline_.size();
  xcb_shape_rectangles(*env_.connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED, window_,
                       0, 0, static_cast<std::uint32_t>(count), outline_.data());
}

void PanelSurface::expose(const PixelRect& exposed) {
  if (isDrawnFade()) {
    paintFade();
  } else {
    paintContent(exposed);
  }
}

void PanelSurface::opacitySet() {
  if (ground_ != WindowBackground::black || opacity_ != UINT32_MAX) return;  // in a fade it is set every moment
  xcb_delete_property(*env_.connection, window_, env_.connection->atom("_NET_WM_WINDOW_OPACITY"));
  env_.connection->flush();
}

void PanelSurface::shapeSet(std::uint8_t kind) {
  if (ground_ != WindowBackground::black) return;
  xcb_shape_mask(*env_.connection, XCB_SHAPE_SO_SET, kind, window_, 0, 0, XCB_PIXMAP_NONE);
  env_.connection->flush();
}

void PanelSurface::compositorChanged() {
  if (window_ == XCB_NONE) return;
  applyAlpha();
  applyShape();
}

}  // namespace dormel::x11
