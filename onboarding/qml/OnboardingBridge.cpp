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

}  // namespace dormel
