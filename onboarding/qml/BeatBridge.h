// Hands one screen of the first run to its scene: what many screens have, a headline, a sub-line and a button. Screens
// with more derive from it. Keeps its screen for as long as it is drawn, which is longer than it is the current one.
// Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <memory>

#include "onboarding/OnboardingScreen.h"
#include "onboarding/qml/OnbValues.h"

namespace dormel {

class BeatBridge : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(dormel::OnbTextValue headline READ headline NOTIFY changed)
  Q_PROPERTY(dormel::OnbTextValue sub READ sub NOTIFY changed)
  Q_PROPERTY(dormel::OnbPillValue button READ button NOTIFY changed)

 public:
  /// Elements of the screen; null for those it has not.
  struct Parts {
    const OnbText* headline = nullptr;
    const OnbText* sub = nullptr;
    const OnbPill* button = nullptr;
  };

  /// `scene` is the name of the component that draws it.
  BeatBridge(std::shared_ptr<OnboardingScreen> screen, QString scene, const Parts& parts);

  [[nodiscard]] const std::shared_ptr<OnboardingScreen>& screen() const { return screen_; }
  [[nodiscard]] const QString& scene() const { return scene_; }

  [[nodiscard]] OnbTextValue headline() const;
  [[nodiscard]] OnbTextValue sub() const;
  [[nodiscard]] OnbPillValue button() const;

  /// The button was pressed.
  Q_INVOKABLE void press() const;
  /// A display frame has passed: what time alone changes is read again.
  Q_INVOKABLE void advance() { emit advanced(); }

 signals:
  void changed();
  void advanced();

 private:
  std::shared_ptr<OnboardingScreen> screen_;
  QString scene_;
  Parts parts_;
  Observation observation_;
};

/// The bridge of a screen, of the class that knows it.
[[nodiscard]] std::unique_ptr<BeatBridge> makeBeatBridge(const std::shared_ptr<OnboardingScreen>& screen);

}  // namespace dormel
