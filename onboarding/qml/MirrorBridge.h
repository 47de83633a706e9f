// Hands what the answers come to to its scene. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "onboarding/MirrorBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class MirrorBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(bool ahead READ ahead CONSTANT)
  Q_PROPERTY(bool figureOn READ figureOn NOTIFY changed)
  Q_PROPERTY(QString figure READ figure NOTIFY changed)
  /// What the figure comes to. A screen reader is told this once, and not each step of the counting.
  Q_PROPERTY(QString figureName READ figureName CONSTANT)
  Q_PROPERTY(dormel::OnbTextValue unit READ unit NOTIFY changed)
  Q_PROPERTY(dormel::OnbTextValue promise READ promise NOTIFY changed)

 public:
  /// Its sub-line is the sentence about the habit, whichever it is.
  explicit MirrorBridge(std::shared_ptr<MirrorBeat> screen)
      : BeatBridge(screen, QStringLiteral("MirrorBeat"),
                   {&screen->headline, screen->isAhead() ? &screen->habit : &screen->mirrorLine, &screen->button}),
        screen_(std::move(screen)) {}

  [[nodiscard]] bool ahead() const { return screen_->isAhead(); }
  [[nodiscard]] bool figureOn() const { return screen_->figure.on(); }
  [[nodiscard]] QString figure() const { return QString::number(screen_->shown()); }
  [[nodiscard]] QString figureName() const { return QString::number(screen_->target()); }
  [[nodiscard]] OnbTextValue unit() const { return OnbTextValue::line(screen_->unit); }
  [[nodiscard]] OnbTextValue promise() const { return OnbTextValue::line(screen_->promise); }

 private:
  std::shared_ptr<MirrorBeat> screen_;
};

}  // namespace dormel
