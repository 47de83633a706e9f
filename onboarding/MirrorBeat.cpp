#include "onboarding/MirrorBeat.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr int TARGET_WITHOUT_ANSWERS = 10;
constexpr Seconds COUNT_START = 2.3;
constexpr Seconds COUNT_DURATION = 1.8;
constexpr Seconds COUNT_INTERVAL = 0.033;

bool isAheadOf(const OnboardingModel& model) { return *model.late && *model.want && **model.want >= **model.late; }

std::string habitLine(const OnboardingModel& model) {
  if (!isAheadOf(model)) return {};
  return "You get to bed by " + spokenHour(**model.late) + ", and you want to be asleep by " +
         spokenHour(**model.want) + ".";
}

}  // namespace

MirrorBeat::MirrorBeat(const OnboardingModel& model, OnbAction go)
    : OnboardingScreen(OnboardingBeat::mirror),
      headline(*this, 0.3, isAheadOf(model) ? "You're almost there." : "You're losing"),
      button(*this, isAheadOf(model) ? 4.4 : 5.0, {isAheadOf(model) ? "Keep me on track" : "I want to sleep better"},
             std::move(go)),
      mirrorLine(*this, 3.4, model.mirrorLine()),
      habit(*this, 1.6, habitLine(model)),
      promise(*this, 3.0, "Dormel makes sure it stays that way."),
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
