// What a canvas draws: the QML scene of a view, or where that cannot be had, the view's plain text.
// Main thread only.
#pragma once

#include <QImage>
#include <optional>
#include <vector>

#include "platform/Geometry.h"
#include "platform/common/Canvas.h"

namespace dormel {

class Picture {
 public:
  virtual ~Picture() = default;

  /// The size in points at which it is as it wants to be.
  [[nodiscard]] virtual Size fittingSize() const = 0;

  /// Draws into `image` at `size` points from now on; the image's device pixel ratio is the scale. Its pixels are
  /// the picture's alone until the next call, since only what changed is drawn again.
  virtual void setTarget(QImage& image, const Size& size) = 0;

  virtual void setShowing(bool showing) = 0;

  /// Brings the target up to date. False when that cannot be done and will not work later either.
  [[nodiscard]] virtual bool draw() = 0;
  /// Outside of this rectangle, in pixels, the last `draw` changed nothing. Nothing where it cannot tell.
  [[nodiscard]] virtual std::optional<PixelRect> drawn() const { return {}; }

  /// Where a press is taken, in points from the top left.
  [[nodiscard]] virtual std::vector<Rect> pressableAreas() const { return {}; }

  /// As Canvas::pointer.
  virtual bool pointer(PointerAction action, double x, double y) = 0;
};

}  // namespace dormel
