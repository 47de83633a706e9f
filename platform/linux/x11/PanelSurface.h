// What a panel's window looks like: its ground (black, or clear), the picture of its content on it, and its alpha.
//
// With a compositor the alpha is the window's opacity. Without one, a black panel below alpha 1 is drawn over the
// picture of the desktop that it covers; where there is no such picture it stays black. A change of mind in between
// never shows the desktop more than the alpha says. A clear panel takes its outline from the content's alpha
// channel where there is no compositor. Main thread only.
#pragma once

#include <memory>
#include <vector>

#include "platform/Windows.h"
#include "platform/common/Canvas.h"
#include "platform/linux/x11/PanelContext.h"
#include "platform/linux/x11/ServerPixmap.h"

namespace dormel::x11 {

class PanelSurface {
 public:
  /// `environment` outlives it.
  PanelSurface(const PanelContext& environment, WindowBackground ground);
  PanelSurface(const PanelSurface&) = delete;
  PanelSurface& operator=(const PanelSurface&) = delete;
  ~PanelSurface();

  /// Attributes for the window's creation, and the window once it is made (again after it was destroyed).
  [[nodiscard]] bool isArgb() const { return isArgb_; }
  void attach(xcb_window_t window, const PixelRect& area);
  void setArea(const PixelRect& area);

  void setAlpha(double alpha);
  /// Whether nothing of what lies under it shows through.
  [[nodiscard]] bool covers() const;
  [[nodiscard]] double alpha() const { return alpha_; }

  /// Around the map request: what the server itself paints at that moment is the first thing seen.
  void prepareMap();
  void finishMap();
  void unmapped() { isMapped_ = false; }

  void updateContent(const Pixels& pixels, const PixelRect& changed);
  void clearContent();
  /// Where the content stands in the window, in pixels.
  [[nodiscard]] PixelRect contentArea() const;

  void expose(const PixelRect& exposed);
  void compositorChanged();

  // A black window is whole and, once it has faded in, opaque; other programs can change both.
  void opacitySet();
  void shapeSet(std::uint8_t kind);

 private:
  [[nodiscard]] bool isDrawnFade() const;
  void applyAlpha();
  void setOpacityProperty(double opacity);
  void paintContent(const PixelRect& part);
  void paintFade();
  [[nodiscard]] std::vector<xcb_rectangle_t> aroundContent() const;
  void applyShape();
  void groundBlack();

  const PanelContext& env_;
  WindowBackground ground_;
  bool isArgb_;

  xcb_window_t window_ = XCB_NONE;
  xcb_gcontext_t gc_ = XCB_NONE;
  xcb_render_picture_t picture_ = XCB_NONE;
  PixelRect area_;
  std::unique_ptr<ServerPixmap> content_;
  std::vector<xcb_rectangle_t> outline_;
  double alpha_ = 1;
  std::uint32_t opacity_ = UINT32_MAX;  ///< as the property says; absent means opaque
  bool isMapped_ = false;
  bool fadeWasDrawn_ = false;
};

}  // namespace dormel::x11
