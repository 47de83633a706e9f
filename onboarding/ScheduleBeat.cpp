#include "onboarding/ScheduleBeat.h"

#include <utility>

#include "core/Config.h"
#include "onboarding/OnboardingOptions.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

constexpr std::int64_t END_HOUR = 6;

}  // namespace

ScheduleBeat::ScheduleBeat(std::shared_ptr<OnboardingModel> model, bool preview, OnbAction go)
    : OnboardingScreen(OnboardingBeat::schedule),
      wheel(*this, 1.2, onboardingOptions::lock(), model->suggestedLock()),
      button(*this, 2.0, {translate("Set my dormel")}, [this] { commit(); }),
      model_(std::move(model)),
      preview_(preview),
      go_(std::move(go)) {}

void ScheduleBeat::commit() {
  model_->lockNight = wheel.selection();
  if (!preview_) {
    platform().defaults.set(defaultsKey::blockStartHour, {std::int64_t{dayHour(wheel.selection())}});
    platform().defaults.set(defaultsKey::blockEndHour, {END_HOUR});
  }
  go_();
}

}  // namespace dormel
