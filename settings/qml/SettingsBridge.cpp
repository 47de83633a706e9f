#include "settings/qml/SettingsBridge.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QScreen>
#include <algorithm>
#include <utility>
#include <vector>

#include "core/Config.h"
#include "platform/linux/qt/QtStrings.h"

namespace dormel {
namespace {

/// Where the item is on the screens, from the main one's bottom left as logic has it; nothing while it is on none.
std::optional<Rect> frameOnScreen(const QQuickItem* item) {
  const QScreen* primary = QGuiApplication::primaryScreen();
  if (item == nullptr || item->window() == nullptr || primary == nullptr) return {};
  const QRectF main = primary->geometry();
  const QPointF corner = item->mapToGlobal(QPointF(0, item->height()));
  return Rect{corner.x() - main.left(), main.bottom() - corner.y(), item->width(), item->height()};
}

}  // namespace

SettingsBridge::SettingsBridge(std::shared_ptr<SettingsView> settings) : settings_(std::move(settings)) {
  observation_ = settings_->observe([this] { emit changed(); });
}

SettingsBridge::~SettingsBridge() { settings_->onDisappear(); }

QStringList SettingsBridge::startHours() const { return qtStrings(settings_->startHourOptions(), hourLabel); }

int SettingsBridge::startHour() const {
  const std::vector<int> hours = settings_->startHourOptions();
  return static_cast<int>(std::find(hours.begin(), hours.end(), settings_->startHour()) - hours.begin());
}

void SettingsBridge::chooseStartHour(int index) {
  settings_->setStartHour(settings_->startHourOptions().at(static_cast<std::size_t>(index)));
}

void SettingsBridge::openAccessibilitySettings(QQuickItem* from) {
  settings_->openAccessibilitySettings(frameOnScreen(from));
}

}  // namespace dormel
