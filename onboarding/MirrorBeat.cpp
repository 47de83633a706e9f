#include "onboarding/MirrorBeat.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

constexpr int TARGET_WITHOUT_ANSWERS = 10;
constexpr Seconds COUNT_START = 2.3;
constexpr Seconds COUNT_DURATION = 1.8;
constexpr Seconds COUNT_INTERVAL = 0.033;

bool isAheadOf(const OnboardingModel& model) { return *model.late && *model.want && **model.want >= **model.late; }

std::string habitLine(const OnboardingModel& model) {
  if (!isAheadOf(model)) return {};
  return translate("You get to bed by %1, and you want to be asleep by %2.",
                   {spokenHour(**model.late), spokenHour(**model.want)});
}

}  // namespace

MirrorBeat::MirrorBeat(const OnboardingModel& model, OnbAction go)
    : OnboardingScreen(OnboardingBeat::mirror),
      headline(*this, 0.3, isAheadOf(model) ? translate("You're almost there.") : translate("You're losing")),
      button(*this, isAheadOf(model) ? 4.4 : 5.0,
             {isAheadOf(model) ? translate("Keep me on track") : translate("I want to sleep better")}, std::move(go)),
      mirrorLine(*this, 3.4, model.mirrorLine()),
      habit(*this, 1.6, habitLine(model)),
      promise(*this, 3.0, translate("Dormel makes sure it stays that way.")),
      isAhead_(isAheadOf(model)),
      target_(model.weeklyHours().value_or(TARGET_WITHOUT_ANSWERS)) {}

void MirrorBeat::onAppear() {
  if (!isAhead_) at(COUNT_START, [this] { countUp(elapsed()); });
}

void MirrorBeat::countUp(Seconds since) {
  const double share = std::min(1.0, (elapsed() - since) / COUNT_DURATION);
  shown_ = static_cast<int>(std::lround(target_ * (1 - std::pow(1 - share, 3))));
  if (share < 1) at(elapsed() + COUNT_INTERVAL, [this, since] { countUp(since); });
}

}  // namespace dormel
