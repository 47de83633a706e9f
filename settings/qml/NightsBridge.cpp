#include "settings/qml/NightsBridge.h"

#include <utility>

#include "platform/linux/qt/QtStrings.h"

namespace dormel {

NightsBridge::NightsBridge(std::shared_ptr<NightsView> nights) : nights_(std::move(nights)) {
  observation_ = nights_->observe([this] { emit changed(); });
}

QStringList NightsBridge::sentences() const { return qtStrings(nights_->sentences()); }

QList<int> NightsBridge::unlocks() const {
  QList<int> all;
  for (const HistoryNight& night : nights_->history().nights) {
    all << (night.state() == HistoryNight::State::unrecorded ? -1 : static_cast<int>(night.unlocks.size()));
  }
  return all;
}

QStringList NightsBridge::months() const {
  return qtStrings(nights_->history().months(), [](const auto& month) { return month.second; });
}

QList<int> NightsBridge::monthColumns() const {
  QList<int> all;
  for (const auto& [column, name] : nights_->history().months()) all << column;
  return all;
}

QStringList NightsBridge::figures() const {
  return qtStrings(nights_->figures(), [](const auto& figure) { return figure.value; });
}

QStringList NightsBridge::figureTexts() const {
  return qtStrings(nights_->figures(), [](const auto& figure) { return figure.text; });
}

}  // namespace dormel
