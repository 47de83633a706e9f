// Hands the overlay's state to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <memory>

#include "core/Constants.h"
#include "overlay/BlockerOverlayState.h"
#include "overlay/qml/KeyModel.h"
#include "platform/linux/qt/StateBridge.h"

namespace dormel {

class BlockerOverlayBridge : public StateBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the canvas")

  Q_PROPERTY(bool appeared READ appeared NOTIFY changed)
  Q_PROPERTY(int appearDuration READ appearDuration NOTIFY changed)  // ms; 0 for at once
  Q_PROPERTY(int fadeOutDuration READ fadeOutDuration CONSTANT)      // ms
  Q_PROPERTY(bool fadingOut READ fadingOut NOTIFY changed)
  Q_PROPERTY(QAbstractItemModel* keys READ keys CONSTANT)
  Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
  Q_PROPERTY(QColor statusColor READ statusColor NOTIFY changed)
  Q_PROPERTY(bool allKeysHeld READ allKeysHeld NOTIFY changed)
  Q_PROPERTY(double holdDuration READ holdDuration NOTIFY changed)  // seconds
  Q_PROPERTY(QString clock READ clock NOTIFY changed)
  Q_PROPERTY(QString amPm READ amPm NOTIFY changed)
  Q_PROPERTY(bool showUnlockConfirm READ showUnlockConfirm NOTIFY changed)
  Q_PROPERTY(QString relockText READ relockText NOTIFY changed)
  Q_PROPERTY(QString hint READ hint NOTIFY changed)
  Q_PROPERTY(QString confirmation READ confirmation NOTIFY changed)

  // What time alone changes: to be read again and again while all keys are held.
  Q_PROPERTY(double progress READ progress NOTIFY advanced)
  Q_PROPERTY(QColor progressColor READ progressColor NOTIFY advanced)
  Q_PROPERTY(QString secondsText READ secondsText NOTIFY advanced)

 public:
  explicit BlockerOverlayBridge(std::shared_ptr<PaintedView> view);

  [[nodiscard]] bool appeared() const { return state_.appeared; }
  [[nodiscard]] int appearDuration() const;
  [[nodiscard]] int fadeOutDuration() const { return static_cast<int>(OVERLAY_UI_FADE_OUT_DURATION * 1000); }
  [[nodiscard]] bool fadingOut() const { return state_.isFadingOut; }
  [[nodiscard]] QAbstractItemModel* keys() { return &keys_; }
  [[nodiscard]] QString statusText() const { return QString::fromStdString(state_.statusText); }
  [[nodiscard]] QColor statusColor() const;
  [[nodiscard]] bool allKeysHeld() const { return state_.allKeysHeld; }
  [[nodiscard]] double progress() const { return state_.progress(uptime()); }
  [[nodiscard]] QColor progressColor() const;
  [[nodiscard]] QString secondsText() const { return QString::fromStdString(state_.secondsText(uptime())); }
  [[nodiscard]] double holdDuration() const { return state_.hold.duration; }
  [[nodiscard]] QString clock() const { return QString::fromStdString(state_.clock); }
  [[nodiscard]] QString amPm() const { return QString::fromStdString(state_.amPm); }
  [[nodiscard]] bool showUnlockConfirm() const { return state_.showUnlockConfirm; }
  [[nodiscard]] QString relockText() const { return QString::fromStdString(state_.relockText); }
  [[nodiscard]] QString hint() const { return QString::fromStdString(state_.words.hint); }
  [[nodiscard]] QString confirmation() const { return QString::fromStdString(state_.words.unlocked); }

  /// Time has passed.
  Q_INVOKABLE void advance() { emit advanced(); }

 signals:
  void advanced();

 protected:
  bool take(std::string_view state) override;

 private:
  BlockerOverlayState state_;
  KeyModel keys_;
};

}  // namespace dormel
