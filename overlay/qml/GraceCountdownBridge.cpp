#include "overlay/qml/GraceCountdownBridge.h"

#include <utility>

#include "overlay/qml/InkColor.h"

namespace dormel {

GraceCountdownBridge::GraceCountdownBridge(std::shared_ptr<GraceCountdownView> view) : view_(std::move(view)) {
  observation_ = view_->observe([this] { emit changed(); });
}

QColor GraceCountdownBridge::urgencyColor() const { return toColor(view_->urgencyColor()); }

}  // namespace dormel
