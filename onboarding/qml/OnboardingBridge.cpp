#include "onboarding/qml/OnboardingBridge.h"

#include <utility>

namespace dormel {

OnboardingBridge::OnboardingBridge(std::shared_ptr<OnboardingView> view) : view_(std::move(view)) {
  beats_.enter(view_->screen());
  observation_ = view_->observe([this] {
    beats_.enter(view_->screen());
    emit changed();
  });
}

QStringList OnboardingBridge::plainLines() const {
  return QStringList{QStringLiteral("Dormel")} + beats_.current()->plainLines();
}

}  // namespace dormel
