// Hands the first run to its scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>

#include "onboarding/OnboardingView.h"
#include "onboarding/qml/VisibleScreens.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class OnboardingBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(QAbstractItemModel* beats READ beats CONSTANT)
  Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY changed)
  Q_PROPERTY(double areaWidth READ areaWidth CONSTANT)
  Q_PROPERTY(double areaHeight READ areaHeight CONSTANT)

 public:
  explicit OnboardingBridge(std::shared_ptr<OnboardingView> view);

  [[nodiscard]] QAbstractItemModel* beats() { return &beats_; }
  [[nodiscard]] bool canGoBack() const { return view_->backTarget().has_value(); }
  [[nodiscard]] static double areaWidth() { return OnboardingView::SIZE.width; }
  [[nodiscard]] static double areaHeight() { return OnboardingView::SIZE.height; }

  Q_INVOKABLE void goBack() { view_->goBack(); }
  /// A leaving screen has gone up like vapour. `beat` is its bridge.
  Q_INVOKABLE void evaporated(QObject* beat) { beats_.forget(beat); }

 protected:
  void appear() override { view_->onAppear(); }

 private:
  std::shared_ptr<OnboardingView> view_;
  VisibleScreens beats_;
  Observation observation_;
};

}  // namespace dormel
