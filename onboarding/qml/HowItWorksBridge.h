// Hands the screen with the scripted scene to its scene. Main thread only.
#pragma once

#include <QStringList>
#include <memory>
#include <utility>

#include "onboarding/HowItWorksBeat.h"
#include "onboarding/qml/BeatBridge.h"
#include "platform/linux/qt/QtStrings.h"

namespace dormel {

class HowItWorksBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(int phase READ phase NOTIFY changed)
  Q_PROPERTY(QString clock READ clock CONSTANT)
  Q_PROPERTY(QString caption READ caption CONSTANT)
  Q_PROPERTY(QVariantList snoozeSpans READ snoozeSpans CONSTANT)
  Q_PROPERTY(QString snoozeLine READ snoozeLine CONSTANT)
  Q_PROPERTY(QStringList keycaps READ keycaps CONSTANT)
  Q_PROPERTY(int heldCount READ heldCount NOTIFY changed)
  Q_PROPERTY(double ringProgress READ ringProgress NOTIFY changed)
  Q_PROPERTY(int ringDuration READ ringDuration CONSTANT)  // milliseconds
  Q_PROPERTY(QVariantList graceSpans READ graceSpans CONSTANT)
  Q_PROPERTY(QString graceLine READ graceLine CONSTANT)

 public:
  explicit HowItWorksBridge(std::shared_ptr<HowItWorksBeat> screen) : BeatBridge(screen), screen_(std::move(screen)) {}

  [[nodiscard]] int phase() const { return screen_->phase(); }
  [[nodiscard]] QString clock() const { return QString::fromStdString(screen_->clock()); }
  [[nodiscard]] QString caption() const { return QString::fromStdString(screen_->caption()); }
  [[nodiscard]] static QVariantList snoozeSpans() { return spanList(HowItWorksBeat::snoozeLine()); }
  [[nodiscard]] static QString snoozeLine() { return QString::fromStdString(plainText(HowItWorksBeat::snoozeLine())); }
  [[nodiscard]] static QStringList keycaps() { return qtStrings(HowItWorksBeat::keycaps()); }
  [[nodiscard]] int heldCount() const { return screen_->heldCount(); }
  [[nodiscard]] double ringProgress() const { return screen_->ringProgress(); }
  [[nodiscard]] static int ringDuration() { return static_cast<int>(1000 * HowItWorksBeat::RING_DURATION); }
  [[nodiscard]] static QVariantList graceSpans() { return spanList(HowItWorksBeat::graceLine()); }
  [[nodiscard]] static QString graceLine() { return QString::fromStdString(plainText(HowItWorksBeat::graceLine())); }

 private:
  std::shared_ptr<HowItWorksBeat> screen_;
};

}  // namespace dormel
