#include "overlay/qml/BlockerOverlayBridge.h"

#include <utility>

#include "overlay/qml/InkColor.h"

namespace dormel {

BlockerOverlayBridge::BlockerOverlayBridge(std::shared_ptr<BlockerOverlayView> view) : view_(std::move(view)) {
  observation_ = view_->observe([this] { refreshSoon(); });
  keys_.update(view_->keys());
}

void BlockerOverlayBridge::refreshSoon() {
  if (willRefresh_) return;
  willRefresh_ = true;
  QMetaObject::invokeMethod(
      this, [this] { refresh(); }, Qt::QueuedConnection);
}

void BlockerOverlayBridge::refresh() {
  willRefresh_ = false;
  keys_.update(view_->keys());
  emit changed();
  emit advanced();
}

int BlockerOverlayBridge::appearDuration() const { return static_cast<int>(view_->appearDuration() * 1000); }

QColor BlockerOverlayBridge::statusColor() const { return toColor(view_->statusColor()); }

QColor BlockerOverlayBridge::progressColor() const { return toColor(view_->progressColor()); }

QStringList BlockerOverlayBridge::plainLines() const {
  if (view_->showUnlockConfirm()) {
    return {QStringLiteral("Unlocked. Let go."), relockText()};
  }
  QStringList labels;
  for (const KeyIndicator& key : view_->keys()) {
    QString label = QString::fromStdString(key.label);
    if (!key.legend.empty()) label += QStringLiteral(" (%1)").arg(QString::fromStdString(key.legend));
    labels << (key.isPressed ? QStringLiteral("[%1]").arg(label) : label);
  }
  return {QStringLiteral("DORMEL"), allKeysHeld() ? secondsText() : (clock() + QLatin1Char(' ') + amPm()).trimmed(),
          labels.join(QStringLiteral("    ")), statusText(), QStringLiteral("Space to reshuffle keys")};
}

}  // namespace dormel
