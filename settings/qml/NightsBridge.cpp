#include "settings/qml/NightsBridge.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {

NightsBridge::NightsBridge(std::shared_ptr<NightsView> nights) : nights_(std::move(nights)) {
  observation_ = nights_->observe([this] { emit changed(); });
}

QStringList NightsBridge::plainLines() const {
  QStringList lines{QString::fromStdString(translate("Your nights"))};
  for (const NightsView::Figure& figure : nights_->figures()) {
    lines << QString::fromStdString(figure.value + " " + figure.text).replace(QLatin1Char('\n'), QLatin1Char(' '));
  }
  return lines << note();
}

QStringList NightsBridge::sentences() const {
  QStringList all;
  for (const std::string& sentence : nights_->sentences()) all << QString::fromStdString(sentence);
  return all;
}

QList<int> NightsBridge::unlocks() const {
  QList<int> all;
  for (const HistoryNight& night : nights_->history().nights) {
    all << (night.state() == HistoryNight::State::unrecorded ? -1 : static_cast<int>(night.unlocks.size()));
  }
  return all;
}

QStringList NightsBridge::months() const {
  QStringList all;
  for (const auto& [column, name] : nights_->history().months()) all << QString::fromStdString(name);
  return all;
}

QList<int> NightsBridge::monthColumns() const {
  QList<int> all;
  for (const auto& [column, name] : nights_->history().months()) all << column;
  return all;
}

QStringList NightsBridge::figures() const {
  QStringList all;
  for (const NightsView::Figure& figure : nights_->figures()) all << QString::fromStdString(figure.value);
  return all;
}

QStringList NightsBridge::figureTexts() const {
  QStringList all;
  for (const NightsView::Figure& figure : nights_->figures()) all << QString::fromStdString(figure.text);
  return all;
}

}  // namespace dormel
