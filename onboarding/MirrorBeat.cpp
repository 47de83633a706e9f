#include "onboarding/MirrorBeat.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/Texts.h"

namespace dormel {
namespace {

constexpr int TARGET_WITHOUT_ANSWERS = 10;
constexpr Seconds COUNT_START = 2.3;
constexpr Seconds COUNT_DURATION = 1.8;
constexpr Seconds COUNT_INTERVAL = 0.033;

}  // namespace

MirrorBeat::MirrorBeat(const OnboardingModel& model, OnbAction go)
    : OnboardingScreen(OnboardingBeat::mirror), target_(model.weeklyHours().value_or(TARGET_WITHOUT_ANSWERS)) {
  if (*model.late && *model.want && **model.want >= **model.late) {
    praise(model, std::move(go));
  } else {
    warn(model, std::move(go));
  }
}

void MirrorBeat::praise(const OnboardingModel& model, OnbAction go) {
  add(Kind::headline, 0.3, translate("You're almost there."));
  add(Kind::sub, 1.6,
      translate("You get to bed by %1, and you want to be asleep by %2.",
                {spokenHour(**model.late), spokenHour(**model.want)}),
      {.above = 16});
  add(Kind::sub, 3.0, translate("Dormel makes sure it stays that way."), {.above = 8});
  addButton(4.4, translate("Keep me on track"), {.above = 48}, std::move(go));
}

void MirrorBeat::warn(const OnboardingModel& model, OnbAction go) {
  add(Kind::headline, 0.3, translate("You're losing"), {.size = 30});
  figure_ = &add(Kind::figure, 1.4, std::to_string(target_), {.above = 4});
  show(0);
  add(Kind::headline, 1.4, translate("hours of sleep a week"), {.above = 4, .size = 30});
  add(Kind::sub, 3.4, model.mirrorLine(), {.above = 24});
  addButton(5.0, translate("I want to sleep better"), {.above = 40}, std::move(go));
}

void MirrorBeat::onAppear() {
  if (figure_ != nullptr) at(COUNT_START, [this] { countUp(elapsed()); });
}

void MirrorBeat::show(int hours) {
  shown_ = hours;
  figure_->parts = {std::to_string(hours)};
}

void MirrorBeat::countUp(Seconds since) {
  const double share = std::min(1.0, (elapsed() - since) / COUNT_DURATION);
  show(static_cast<int>(std::lround(target_ * (1 - std::pow(1 - share, 3)))));
  if (share < 1) at(elapsed() + COUNT_INTERVAL, [this, since] { countUp(since); });
}

}  // namespace dormel
