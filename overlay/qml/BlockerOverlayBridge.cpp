#include "overlay/qml/BlockerOverlayBridge.h"

#include <utility>

#include "overlay/qml/QtColor.h"

namespace dormel {

BlockerOverlayBridge::BlockerOverlayBridge(std::shared_ptr<PaintedView> view) : StateBridge(std::move(view)) {
  connect(this, &ViewBridge::changed, this, &BlockerOverlayBridge::advanced);
  takeFirst();
}

bool BlockerOverlayBridge::take(std::string_view state) {
  auto next = decodedBlockerOverlay(state);
  if (!next || (*next == state_ && !next->allKeysHeld)) return false;
  state_ = std::move(*next);
  keys_.update(state_.keys);
  return true;
}

int BlockerOverlayBridge::appearDuration() const { return static_cast<int>(state_.appearDuration * 1000); }

QColor BlockerOverlayBridge::statusColor() const { return toColor(state_.statusColor); }

QColor BlockerOverlayBridge::progressColor() const { return toColor(state_.progressColor(uptime())); }

}  // namespace dormel
