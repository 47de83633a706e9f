// Between drawing and showing: a view drawn into pixels by one part of this family (qt/) and put on screen by
// another (x11/, and whatever display system comes next). Neither knows the other.
// Main thread only. Pixels are 32-bit premultiplied ARGB in the machine's byte order, rows from the top.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/Geometry.h"
#include "platform/View.h"
#include "platform/common/PixelRect.h"

namespace dormel {

/// Pixels in memory that others may be shown without a copy: it can neither shrink nor go away.
struct SharedPixels {
  std::shared_ptr<const void> memory;  ///< one and the same as long as it is the same memory
  int descriptor = -1;                 ///< of that memory; valid as long as `memory` is held
  std::size_t bytes = 0;               ///< its size
  std::size_t offset = 0;              ///< of these pixels, in bytes
  /// To be held by whoever goes on reading these pixels after the call that brought them; they stay as they are so
  /// long.
  std::shared_ptr<const void> hold;
};

struct Pixels {
  const std::uint32_t* data = nullptr;
  int width = 0;
  int height = 0;
  std::ptrdiff_t stride = 0;             ///< pixels from one row to the next
  const SharedPixels* shared = nullptr;  ///< where `data` lies, if that is such memory
};

enum class PointerAction { press, move, release, leave };

/// One view being drawn. It draws only when something changed, at most once per display frame.
class Canvas {
 public:
  virtual ~Canvas() = default;

  /// The size in points at which the content is as it wants to be.
  [[nodiscard]] virtual Size fittingSize() const = 0;

  /// Draws at `size` points with `scale` pixels to the point from now on; pixel sizes are rounded up.
  virtual void resize(const Size& size, double scale) = 0;

  /// Called with the whole picture and the part of it that changed since the last call. The pixels are valid during
  /// the call only, but for those of which a hold is kept. The first call after `resize` covers everything.
  virtual void setOnFrame(std::function<void(const Pixels& pixels, const PixelRect& changed)> onFrame) = 0;

  /// The view is on screen from now on (true: its entry animation starts) or is not (false: nothing is drawn).
  virtual void setShowing(bool showing) = 0;

  /// A pointer event with the main button, in points from the top left. True when something in the picture takes
  /// it (a button); false leaves it to the window (dragging by the background).
  virtual bool pointer(PointerAction action, double x, double y) = 0;
};

class CanvasFactory {
 public:
  virtual ~CanvasFactory() = default;
  /// A canvas that shares ownership of `view`. Never null: a view that cannot be drawn is reported once on
  /// standard error and yields an empty picture.
  [[nodiscard]] virtual std::unique_ptr<Canvas> make(std::shared_ptr<View> view) = 0;
};

}  // namespace dormel
