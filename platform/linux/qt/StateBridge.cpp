#include "platform/linux/qt/StateBridge.h"

#include <utility>

namespace dormel {

StateBridge::StateBridge(std::shared_ptr<PaintedView> view) : view_(std::move(view)) {
  observation_ = view_->observeState([this] { refreshSoon(); });
}

void StateBridge::refreshSoon() {
  if (willRefresh_) return;
  willRefresh_ = true;
  const auto refresh = [this] {
    willRefresh_ = false;
    if (take(view_->encodedState())) emit changed();
  };
  QMetaObject::invokeMethod(this, refresh, Qt::QueuedConnection);
}

}  // namespace dormel
