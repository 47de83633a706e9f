#include "platform/linux/display/PanelCanvas.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace dormel {

PanelCanvas::PanelCanvas(RunLoop& loop, CanvasFactory& canvases, const WindowStyle& style, Panel panel)
    : canvases_(canvases),
      isBlack_(style.background == WindowBackground::black),
      isMovable_(style.isMovableByBackground),
      panel_(std::move(panel)),
      showLater_(loop, [this] { showNow(); }),
      layOutLater_(loop, [this] { panel_.layOut(); }) {}

void PanelCanvas::setView(std::shared_ptr<View> view) {
  canvas_.reset();
  size_ = {};
  view_ = std::move(view);
  if (isShown_) showLater_.ask();
}

Canvas* PanelCanvas::canvas() const {
  if (!canvas_ && view_) canvas_ = canvases_.make(view_);
  return canvas_.get();
}

Size PanelCanvas::fittingSize() const { return canvas() != nullptr ? canvas_->fittingSize() : Size{}; }

void PanelCanvas::show() {
  isShown_ = true;
  showLater_.ask();
}

void PanelCanvas::showNow() {
  if (!isShown_ || canvas() == nullptr) return;
  canvas_->setOnFrame([this](const Pixels& pixels, const PixelRect& changed) {
    panel_.onFrame(pixels, changed);
    // The content may have come to want another size; it is not asked to change while it is drawing.
    if (isBlack_ && canvas_ && canvas_->fittingSize() != fitting_) layOutLater_.ask();
  });
  panel_.layOut();
  canvas_->setShowing(true);
}

void PanelCanvas::hide() {
  isShown_ = false;
  drag_.reset();
  if (canvas_) canvas_->setShowing(false);
}

void PanelCanvas::fit(const Size& room, double scale) {
  if (!canvas_) return;
  Size size = room;
  if (isBlack_) {
    fitting_ = canvas_->fittingSize();
    size = {std::min(fitting_.width, room.width), std::min(fitting_.height, room.height)};
  }
  if (size == size_ && scale == scale_) return;
  size_ = size;
  scale_ = scale;
  canvas_->resize(size, scale);
}

bool PanelCanvas::tell(PointerAction action, double x, double y) { return canvas_ && canvas_->pointer(action, x, y); }

std::optional<PanelCanvas::Move> PanelCanvas::pointer(PointerAction action, double x, double y) {
  if (action == PointerAction::press) {
    if (!tell(action, x, y) && isMovable_) drag_ = Move{x, y};
    return std::nullopt;
  }
  if (!drag_) {
    tell(action, x, y);
    return std::nullopt;
  }
  if (action == PointerAction::release) drag_.reset();
  if (action != PointerAction::move) return std::nullopt;
  const Move move{x - drag_->right, y - drag_->down};
  const bool isFarEnough = std::abs(move.right) >= 1 || std::abs(move.down) >= 1;
  return isFarEnough ? std::optional(move) : std::nullopt;
}

}  // namespace dormel
