// Canvases for views that a painter draws: see Painter.h for the process, Messages.h for what is said. Views of other
// kinds stay empty. Main thread only.
//
// Nothing here ever waits. Until the painter's picture comes the last one stays; when a view has had no true picture
// for two seconds, or three painters in a row have failed before its first one, what it says is shown as plain lines.
#pragma once

#include <memory>

#include "platform/common/Canvas.h"
#include "platform/common/paint/Painter.h"

namespace dormel::paint {

class PaintedCanvases final : public CanvasFactory {
 public:
  /// `launcher` outlives it and every canvas.
  explicit PaintedCanvases(PainterLauncher& launcher) : painter_(std::make_shared<Painter>(launcher)) {}

  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> view) override;

 private:
  std::shared_ptr<Painter> painter_;
};

}  // namespace dormel::paint
