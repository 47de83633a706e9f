#include "onboarding/qml/VisibleScreens.h"

#include <QQmlEngine>
#include <algorithm>

#include "onboarding/qml/HowItWorksBridge.h"

namespace dormel {
namespace {

std::unique_ptr<BeatBridge> bridgeTo(const std::shared_ptr<OnboardingScreen>& screen) {
  if (auto scripted = std::dynamic_pointer_cast<HowItWorksBeat>(screen)) {
    return std::make_unique<HowItWorksBridge>(std::move(scripted));
  }
  return std::make_unique<BeatBridge>(screen);
}

}  // namespace

void VisibleScreens::enter(const std::shared_ptr<OnboardingScreen>& screen) {
  if (current() != nullptr && current()->screen() == screen) return;
  const int row = rowCount();
  beginInsertRows({}, row, row);
  beats_.push_back(bridgeTo(screen));
  QQmlEngine::setObjectOwnership(beats_.back().get(), QQmlEngine::CppOwnership);
  endInsertRows();
  if (row > 0) emit dataChanged(index(row - 1), index(row - 1), {gone});
}

void VisibleScreens::forget(const QObject* bridge) {
  const auto at =
      std::find_if(beats_.begin(), beats_.end(), [bridge](const auto& beat) { return beat.get() == bridge; });
  if (at == beats_.end() || at->get() == current()) return;
  const int row = static_cast<int>(at - beats_.begin());
  beginRemoveRows({}, row, row);
  QObject* gone = at->release();
  beats_.erase(at);
  endRemoveRows();
  gone->deleteLater();  // after its scene, which goes in a later turn, too, and reads it to the last
}

int VisibleScreens::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(beats_.size());
}

QVariant VisibleScreens::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  BeatBridge* bridge = beats_.at(static_cast<std::size_t>(index.row())).get();
  switch (role) {
    case beat:
      return QVariant::fromValue<QObject*>(bridge);
    case gone:
      return bridge != current();
    default:
      return {};
  }
}

QHash<int, QByteArray> VisibleScreens::roleNames() const { return {{beat, "beat"}, {gone, "gone"}}; }

}  // namespace dormel
