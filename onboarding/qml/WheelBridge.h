// Hands a screen with a wheel to its scene: the questions about hours, and the choice of the lock hour. Main thread
// only.
#pragma once

#include <QPointF>
#include <QStringList>
#include <memory>

#include "onboarding/ScheduleBeat.h"
#include "onboarding/WheelQuestionBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class WheelBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(QStringList labels READ labels CONSTANT)
  Q_PROPERTY(int position READ position NOTIFY changed)
  Q_PROPERTY(bool wheelOn READ wheelOn NOTIFY changed)
  Q_PROPERTY(dormel::OnbTextValue whisper READ whisper NOTIFY changed)

 public:
  explicit WheelBridge(const std::shared_ptr<WheelQuestionBeat>& screen);
  explicit WheelBridge(const std::shared_ptr<ScheduleBeat>& screen);

  [[nodiscard]] QStringList labels() const;
  [[nodiscard]] int position() const { return wheel_.position(); }
  [[nodiscard]] bool wheelOn() const { return wheel_.reveal().on(); }
  [[nodiscard]] OnbTextValue whisper() const;

  Q_INVOKABLE void select(int row);
  /// One row down (1) or up (-1): for arrow keys that the wheel did not see by itself.
  Q_INVOKABLE void step(int by) { wheel_.step(by); }
  /// A scroll event as the toolkit reports it: pixels where the device knows them, and eighths of a degree.
  /// `byTicks` says that it comes from a wheel rather than from a finger.
  Q_INVOKABLE void scroll(const QPointF& pixels, const QPointF& angle, bool byTicks);

 private:
  OnbWheel& wheel_;
  const OnbText* whisper_;
};

}  // namespace dormel
