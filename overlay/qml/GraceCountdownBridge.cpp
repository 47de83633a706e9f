#include "overlay/qml/GraceCountdownBridge.h"

#include <utility>

#include "overlay/qml/QtColor.h"

namespace dormel {

GraceCountdownBridge::GraceCountdownBridge(std::shared_ptr<PaintedView> view) : StateBridge(std::move(view)) {
  takeFirst();
}

bool GraceCountdownBridge::take(std::string_view state) {
  auto next = decodedGraceCountdown(state);
  if (!next || *next == state_) return false;
  state_ = std::move(*next);
  return true;
}

QColor GraceCountdownBridge::urgencyColor() const { return toColor(state_.urgencyColor); }

}  // namespace dormel
