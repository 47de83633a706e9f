// Hands the last screen to its scene. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "onboarding/FinaleBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class FinaleBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(dormel::OnbTextValue locksAt READ locksAt NOTIFY changed)
  Q_PROPERTY(QVariantList locksAtSpans READ locksAtSpans CONSTANT)
  Q_PROPERTY(dormel::OnbTextValue everyNight READ everyNight NOTIFY changed)
  Q_PROPERTY(dormel::OnbTextValue goneByMorning READ goneByMorning NOTIFY changed)

 public:
  explicit FinaleBridge(std::shared_ptr<FinaleBeat> screen)
      : BeatBridge(screen, QStringLiteral("FinaleBeat"), {&screen->headline, nullptr, &screen->button}),
        screen_(std::move(screen)) {}

  [[nodiscard]] OnbTextValue locksAt() const { return OnbTextValue::line(screen_->locksAt); }
  [[nodiscard]] QVariantList locksAtSpans() const { return spanList(screen_->locksAtSpans()); }
  [[nodiscard]] OnbTextValue everyNight() const { return OnbTextValue::line(screen_->everyNight); }
  [[nodiscard]] OnbTextValue goneByMorning() const { return OnbTextValue::line(screen_->goneByMorning); }

 private:
  std::shared_ptr<FinaleBeat> screen_;
};

}  // namespace dormel
