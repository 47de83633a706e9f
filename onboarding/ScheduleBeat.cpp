#include "onboarding/ScheduleBeat.h"

#include <utility>

#include "core/Config.h"
#include "onboarding/OnboardingOptions.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr std::int64_t END_HOUR = 6;

void commit(OnboardingModel& model, bool preview, int hour) {
  model.lockNight = hour;
  if (preview) return;
  platform().defaults.set(defaultsKey::blockStartHour, {std::int64_t{dayHour(hour)}});
  platform().defaults.set(defaultsKey::blockEndHour, {END_HOUR});
}

}  // namespace

ScheduleBeat::ScheduleBeat(const std::shared_ptr<OnboardingModel>& model, bool preview, OnbAction go)
    : WheelQuestionBeat(OnboardingBeat::schedule,
                        translate("When should your %1 lock?", {platform().wording.computer()}),
                        onboardingOptions::lock(), model->suggestedLock(), translate("Set my dormel"),
                        [model, preview, go = std::move(go)](int hour) {
                          commit(*model, preview, hour);
                          go();
                        }) {
  add(Kind::whisper, 2.8, translate("You can change this anytime."), {.above = 20});
}

}  // namespace dormel
