// Hands the first screen to its scene. Main thread only.
#pragma once

#include <utility>

#include "onboarding/BrandBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class BrandBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(bool markOn READ markOn NOTIFY changed)
  Q_PROPERTY(double markSide READ markSide CONSTANT)
  Q_PROPERTY(double trim READ trim NOTIFY advanced)

 public:
  explicit BrandBridge(std::shared_ptr<BrandBeat> screen)
      : BeatBridge(screen, QStringLiteral("BrandBeat"), {nullptr, &screen->sub, &screen->button}),
        screen_(std::move(screen)) {}

  [[nodiscard]] bool markOn() const { return screen_->mark.reveal().on(); }
  [[nodiscard]] static double markSide() { return DormelMarkDraw::SIDE; }
  [[nodiscard]] double trim() const { return screen_->mark.trim(); }

 private:
  std::shared_ptr<BrandBeat> screen_;
};

}  // namespace dormel
